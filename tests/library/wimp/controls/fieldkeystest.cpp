#include "library/wimp/controls/button.h"
#include "library/wimp/controls/edit.h"
#include "library/wimp/controls/listbox.h"
#include "library/wimp/controls/numberedit.h"
#include "support/windowtest.h"

#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMenu>

namespace {

// The window system's own fields and buttons, under the keys.
class FieldKeys : public TWindowTest
{
protected:
    void SetUp() override { ShowTopWindow(Window, Class); }

    TWindowClass Class{"test_fieldkeys"};
    TRecordingWindow Window;
};

} // namespace

// As the Menu key, of which the window system makes one by itself.
TEST_F(FieldKeys, ShiftF10OpensTheMenusOfFields)
{
    TEdit line;
    TEdit lines;
    TNumberEdit number;
    TButton button;
    ASSERT_TRUE(line.Create(&Window, 1, "line") && lines.Create(&Window, 2, "lines", true, true) &&
                number.Create(&Window, 3, "number") && button.Create(&Window, 4, "Press", "button"));
    for (TWimpControl* field : {static_cast<TWimpControl*>(&line), static_cast<TWimpControl*>(&lines),
                                static_cast<TWimpControl*>(&number)}) {
        int entries = 0;
        MeetMenu([&](QMenu& menu) {
            entries = static_cast<int>(menu.actions().size());
            menu.close();
        });
        QTest::keyClick(field->GetHandle(), Qt::Key_F10, Qt::ShiftModifier);
        EXPECT_TRUE(WaitFor([&] { return entries > 0; })) << field->GetHandle()->objectName().toStdString();
    }
    // Whose button that is may have another use for it.
    Window.Forget();
    QTest::keyClick(button.GetHandle(), Qt::Key_F10, Qt::ShiftModifier);
    EXPECT_EQ(Window.Last(MT_KEYDOWN).Key, KEY_MENU);
    QTest::keyClick(line.GetHandle(), Qt::Key_F10);
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
}

TEST_F(FieldKeys, WhatHasTheKeysCanBeSeen)
{
    TListBox list;
    TEdit lines;
    TButton button;
    TButton other;
    ASSERT_TRUE(list.Create(&Window, 1, "list") && lines.Create(&Window, 2, "lines", true, true) &&
                button.Create(&Window, 3, "OK", "ok") && other.Create(&Window, 4, "Cancel", "cancel"));
    list.AddString("one");
    list.SetSelection(0);
    // The default button is drawn like one that is about to be pressed, wherever the keys are.
    button.TakeReturn(true);
    int top = 0;
    for (TWimpControl* control : {static_cast<TWimpControl*>(&list), static_cast<TWimpControl*>(&lines),
                                  static_cast<TWimpControl*>(&button), static_cast<TWimpControl*>(&other)}) {
        control->MoveTo(0, top, 100, 40);
        top += 45;
    }
    Window.BringToTop();
    ASSERT_TRUE(WaitFor([&] { return QApplication::activeWindow() == Window.GetHandle(); }));
    for (TWimpControl* control : {static_cast<TWimpControl*>(&list), static_cast<TWimpControl*>(&lines),
                                  static_cast<TWimpControl*>(&button)}) {
        QWidget& widget = *control->GetHandle();
        other.SetFocus();
        const QImage without = widget.grab().toImage();
        widget.setFocus(Qt::TabFocusReason);
        ASSERT_TRUE(widget.hasFocus());
        int changed = 0;
        const QImage with = widget.grab().toImage();
        // A frame, not just a caret.
        for (int x = 0; x < with.width(); ++x)
            for (const int y : {0, 3})
                changed += with.pixel(x, y) != without.pixel(x, y) ? 1 : 0;
        EXPECT_GT(changed, 80) << widget.objectName().toStdString();
    }
}
