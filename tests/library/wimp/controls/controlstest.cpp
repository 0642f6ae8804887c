#include "library/wimp/controls/button.h"
#include "library/wimp/controls/checkbox.h"
#include "library/wimp/controls/comboboxcontrol.h"
#include "library/wimp/controls/edit.h"
#include "library/wimp/controls/gridlayout.h"
#include "library/wimp/controls/label.h"
#include "library/wimp/controls/listbox.h"
#include "library/wimp/controls/numberedit.h"
#include "library/wimp/controls/pageframe.h"
#include "library/wimp/controls/splitwindow.h"
#include "library/wimp/controls/tree.h"
#include "library/wimp/controls/wimpdialogsize.h"
#include "support/windowtest.h"

#include <QtTest/QTest>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDoubleSpinBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QPlainTextEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QTreeWidget>

#include <memory>

namespace {

class TWimpControls : public TWindowTest
{
protected:
    void SetUp() override { ShowTopWindow(Window, Class); }

    TWindowClass Class{"test_controls"};
    TRecordingWindow Window;
};

// An owner as a document window is one.
class TSplitOwner : public TRecordingWindow
{
public:
    bool OnMessage(const TMessage& message) override
    {
        TRecordingWindow::OnMessage(message);
        LastTaken = Split.OnMessage(message);
        return LastTaken;
    }
    TSplitWindow Split;
    bool LastTaken = false;
};

class TSplitWindowTest : public TWindowTest
{
protected:
    void SetUp() override
    {
        Owner.Split.Attach(&Owner);
        ShowTopWindow(Owner, Class, 404, 300);
        for (TRecordingWindow& pane : Panes) {
            TWindowParams params;
            params.Class = &PaneClass;
            params.Owner = &Owner;
            ASSERT_TRUE(pane.Create(params));
        }
    }
    QRect Place(int pane) { return Panes[pane].GetHandle()->geometry(); }
    QWidget* Widget() { return Owner.GetHandle(); }

    TWindowClass Class{"test_split"};
    TWindowClass PaneClass{"test_pane"};
    TSplitOwner Owner;
    TRecordingWindow Panes[3];
};

} // namespace

TEST_F(TWimpControls, AButtonReportsCode7)
{
    TButton button;
    ASSERT_TRUE(button.Create(&Window, 42, "Update", "update"));
    QPushButton* widget = Window.GetHandle()->findChild<QPushButton*>("update");
    ASSERT_NE(widget, nullptr);
    EXPECT_EQ(widget->text(), QString("Update"));
    QTest::mouseClick(widget, Qt::LeftButton);
    ASSERT_EQ(Window.Commands.size(), 1u);
    EXPECT_EQ(Window.Commands[0].Control, &button);
    EXPECT_EQ(Window.Commands[0].Argument, 42);
    EXPECT_EQ(Window.Commands[0].Code, CC_BUTTON);
}

TEST_F(TWimpControls, ADisabledButtonReportsNothing)
{
    TButton button;
    ASSERT_TRUE(button.Create(&Window, 1, "x", "x"));
    button.Enable(false);
    QTest::mouseClick(button.GetHandle(), Qt::LeftButton);
    EXPECT_TRUE(Window.Commands.empty());
}

TEST_F(TWimpControls, AButtonShowsAPictureWithATip)
{
    TButton button;
    ASSERT_TRUE(button.Create(&Window, 1, "", "pause"));
    button.SetIcon(131, "Pause");
    const QPushButton* widget = qobject_cast<QPushButton*>(button.GetHandle());
    EXPECT_FALSE(widget->icon().isNull());
    EXPECT_EQ(widget->toolTip(), QString("Pause"));
}

TEST_F(TWimpControls, OnlyTheProgramPressesAButtonForGood)
{
    TButton button;
    ASSERT_TRUE(button.Create(&Window, 1, "", "pause"));
    button.SetPressed(true);
    const QPushButton* widget = qobject_cast<QPushButton*>(button.GetHandle());
    EXPECT_TRUE(widget->isChecked());
    QTest::mouseClick(button.GetHandle(), Qt::LeftButton);
    EXPECT_TRUE(widget->isChecked());
    button.SetPressed(false);
    EXPECT_FALSE(widget->isChecked());
}

TEST_F(TWimpControls, AButtonAndItsWindowMayGoInTheAnswer)
{
    auto button = std::make_unique<TButton>();
    ASSERT_TRUE(button->Create(&Window, 1, "x", "x"));
    Window.AnswerCommand = [&](const TRecordingWindow::TCommand&) {
        button.reset();
        Window.Destroy();
    };
    QTest::mouseClick(button->GetHandle(), Qt::LeftButton);
    EXPECT_EQ(button, nullptr);
    Settle();
    EXPECT_EQ(Window.GetHandle(), nullptr);
}

TEST_F(TWimpControls, AControlNeedsAnOwner)
{
    TButton button;
    EXPECT_FALSE(button.Create(nullptr, 1, "x", "x"));
    TEdit field;
    EXPECT_FALSE(field.Create(nullptr, 1, "x"));
    TLabel label;
    EXPECT_FALSE(label.Create(nullptr, "x", "x"));
    TCheckBox check;
    EXPECT_FALSE(check.Create(nullptr, 1, "x", "x"));
    TListBox list;
    EXPECT_FALSE(list.Create(nullptr, 1, "x"));
    TComboBoxControl combo;
    EXPECT_FALSE(combo.Create(nullptr, 1, "x"));
    TNumberEdit number;
    EXPECT_FALSE(number.Create(nullptr, 1, "x"));
}

TEST_F(TWimpControls, AControlIsMovedAndHidden)
{
    TButton button;
    ASSERT_TRUE(button.Create(&Window, 1, "x", "x"));
    button.MoveTo(10, 20, 80, 24);
    EXPECT_EQ(button.GetHandle()->geometry(), QRect(10, 20, 80, 24));
    button.Show(false);
    EXPECT_FALSE(button.GetHandle()->isVisible());
}

TEST_F(TWimpControls, AnEditShowsItsText)
{
    TEdit field;
    ASSERT_TRUE(field.Create(&Window, 5, "time", true));
    field.SetText("1.25");
    const QLineEdit* widget = Window.GetHandle()->findChild<QLineEdit*>("time");
    ASSERT_NE(widget, nullptr);
    EXPECT_EQ(widget->text(), QString("1.25"));
    EXPECT_TRUE(widget->isReadOnly());
    TString text;
    field.GetText(text);
    EXPECT_EQ(Text(text), "1.25");
    field.AppendFormat(" of %d", 7);
    field.GetText(text);
    EXPECT_EQ(Text(text), "1.25 of 7");
    // Only a person's changes are told.
    EXPECT_TRUE(Window.Commands.empty());
}

TEST_F(TWimpControls, AnEditTellsWhatAPersonTypes)
{
    TEdit field;
    ASSERT_TRUE(field.Create(&Window, 19, "address"));
    QTest::keyClicks(field.GetHandle(), "10");
    ASSERT_EQ(Window.Commands.size(), 2u);
    EXPECT_EQ(Window.Commands[1].Control, &field);
    EXPECT_EQ(Window.Commands[1].Argument, 19);
    EXPECT_EQ(Window.Commands[1].Code, CC_EDITED);
    TString text;
    field.GetText(text);
    EXPECT_EQ(Text(text), "10");
}

TEST_F(TWimpControls, AnEditOfSeveralLinesGrowsAtItsEnd)
{
    TEdit field;
    ASSERT_TRUE(field.Create(&Window, 1, "report", true, true));
    field.SetText("one\n");
    field.AppendFormat("%s\n%d", "two", 3);
    TString text;
    field.GetText(text);
    EXPECT_EQ(Text(text), "one\ntwo\n3");
    EXPECT_NE(Window.GetHandle()->findChild<QPlainTextEdit*>("report"), nullptr);
}

TEST_F(TWimpControls, AFieldOfSeveralLinesIsAsHighAsItsLinesAndKeepsThemWhole)
{
    TEdit field;
    ASSERT_TRUE(field.Create(&Window, 1, "page", true, true));
    QPlainTextEdit* edit = Window.GetHandle()->findChild<QPlainTextEdit*>("page");
    ASSERT_NE(edit, nullptr);
    EXPECT_NE(edit->lineWrapMode(), QPlainTextEdit::NoWrap);
    field.SetFixedPitch();
    EXPECT_EQ(edit->lineWrapMode(), QPlainTextEdit::NoWrap);
    field.SetText("1\n2\n3\n4");
    field.SetNumLines(4);
    QWidget* inside = edit->viewport();
    EXPECT_GE(edit->height(), 4 * edit->fontMetrics().lineSpacing());
    EXPECT_LT(edit->height(), 6 * edit->fontMetrics().lineSpacing());
    EXPECT_TRUE(inside->isVisible());
    field.SetNumLines(2);
    EXPECT_LT(edit->height(), 4 * edit->fontMetrics().lineSpacing());
}

TEST_F(TWimpControls, ALabelShowsItsText)
{
    TLabel label;
    ASSERT_TRUE(label.Create(&Window, "Time:", "timelabel"));
    const QLabel* widget = Window.GetHandle()->findChild<QLabel*>("timelabel");
    EXPECT_EQ(widget->text(), QString("Time:"));
    label.SetText("<b>");
    EXPECT_EQ(widget->text(), QString("<b>"));
    EXPECT_EQ(widget->textFormat(), Qt::PlainText);
}

TEST_F(TWimpControls, ACheckBoxReportsAClickAndKeepsItsCheck)
{
    TCheckBox box;
    ASSERT_TRUE(box.Create(&Window, 1024, "Automatically", "auto"));
    EXPECT_FALSE(box.GetCheck());
    box.SetCheck(true);
    EXPECT_TRUE(box.GetCheck());
    EXPECT_TRUE(Window.Commands.empty());
    qobject_cast<QCheckBox*>(box.GetHandle())->click();
    EXPECT_FALSE(box.GetCheck());
    ASSERT_EQ(Window.Commands.size(), 1u);
    EXPECT_EQ(Window.Commands[0].Control, &box);
    EXPECT_EQ(Window.Commands[0].Argument, 1024);
    EXPECT_EQ(Window.Commands[0].Code, CC_BUTTON);
}

TEST_F(TWimpControls, AListBoxReportsASelectionAsCode11)
{
    TListBox list;
    ASSERT_TRUE(list.Create(&Window, 1006, "pages"));
    EXPECT_EQ(list.GetSelection(), -1);
    for (const char* page : {"General", "Resources", "Policy Options"})
        list.AddString(page);
    list.SetSelection(0);
    EXPECT_EQ(list.GetSelection(), 0);
    EXPECT_EQ(list.GetNumStrings(), 3);
    EXPECT_TRUE(Window.Commands.empty());
    QTest::keyClick(list.GetHandle(), Qt::Key_Down);
    EXPECT_EQ(list.GetSelection(), 1);
    ASSERT_EQ(Window.Commands.size(), 1u);
    EXPECT_EQ(Window.Commands[0].Argument, 1006);
    EXPECT_EQ(Window.Commands[0].Code, CC_SELECTION);
}

TEST_F(TWimpControls, AComboBoxSelectsByPositionAndByText)
{
    TComboBoxControl box;
    ASSERT_TRUE(box.Create(&Window, 1018, "camera"));
    EXPECT_EQ(box.GetSelection(), -1);
    box.AddString("Maya Camera");
    box.AddString("Quake Camera");
    box.SetSelection(1);
    EXPECT_EQ(box.GetSelection(), 1);
    box.SetSelection("Maya Camera");
    EXPECT_EQ(box.GetSelection(), 0);
    EXPECT_TRUE(Window.Commands.empty());
    QTest::keyClick(box.GetHandle(), Qt::Key_Down);
    EXPECT_EQ(box.GetSelection(), 1);
    ASSERT_EQ(Window.Commands.size(), 1u);
    EXPECT_EQ(Window.Commands[0].Argument, 1018);
    EXPECT_EQ(Window.Commands[0].Code, CC_SELECTION);
    TString text;
    box.GetString(1, text);
    EXPECT_EQ(Text(text), "Quake Camera");
}

TEST_F(TWimpControls, AComboBoxIsClearedWithoutAReport)
{
    TComboBoxControl box;
    ASSERT_TRUE(box.Create(&Window, 1, "box"));
    box.AddString("one");
    box.AddString("two");
    box.SetSelection(1);
    box.Clear();
    EXPECT_EQ(box.GetNumStrings(), 0);
    EXPECT_EQ(box.GetSelection(), -1);
    EXPECT_TRUE(Window.Commands.empty());
}

TEST_F(TWimpControls, SelectingAMissingComboBoxLineIsAnAssertion)
{
    const char* const missing = "0 : Item not found for combo box selection";
    TComboBoxControl box;
    ASSERT_TRUE(box.Create(&Window, 1, "box"));
    box.AddString("one");
    EXPECT_EQ(AssertionOf([&] { box.SetSelection("two"); }), missing);
    EXPECT_EQ(AssertionOf([&] { box.SetSelection("One"); }), missing);
    EXPECT_EQ(AssertionOf([&] { box.SetSelection(1); }), missing);
    EXPECT_EQ(AssertionOf([&] { box.SetSelection(-1); }), missing);
}

TEST_F(TWimpControls, DeletingAMissingComboBoxLineIsAnAssertion)
{
    TComboBoxControl box;
    ASSERT_TRUE(box.Create(&Window, 1, "box"));
    box.AddString("one");
    box.AddString("two");
    box.DeleteString("one");
    EXPECT_EQ(box.GetNumStrings(), 1);
    EXPECT_EQ(AssertionOf([&] { box.DeleteString("one"); }),
              "delidx != -1 : Attempt to delete non-existent combo box entry");
}

TEST_F(TWimpControls, AComboBoxLineHasLessThan1024Characters)
{
    TComboBoxControl box;
    ASSERT_TRUE(box.Create(&Window, 1, "box"));
    const std::string longest(1023, 'x');
    box.AddString(longest.c_str());
    TString text;
    box.GetString(0, text);
    EXPECT_EQ(Text(text), longest);
    box.AddString((longest + "x").c_str());
    EXPECT_EQ(AssertionOf([&] { box.GetString(1, text); }),
              "SendMessage(GetHandle(), CB_GETLBTEXTLEN, i, 0) < 1024 : Combo box string length > 1024");
}

TEST_F(TWimpControls, ANumberEditKeepsItsRangeAndTellsChanges)
{
    TNumberEdit number;
    ASSERT_TRUE(number.Create(&Window, 1016, "recent"));
    const QDoubleSpinBox* widget = qobject_cast<QDoubleSpinBox*>(number.GetHandle());
    number.SetRange(1, 16);
    EXPECT_EQ(number.GetValue(), 1.0f);
    number.SetValue(100);
    EXPECT_EQ(number.GetValue(), 16.0f);
    EXPECT_EQ(widget->text(), QString("16"));
    number.SetValue(4);
    EXPECT_TRUE(Window.Commands.empty());
    QTest::keyClick(number.GetHandle(), Qt::Key_Up);
    EXPECT_EQ(number.GetValue(), 5.0f);
    ASSERT_EQ(Window.Commands.size(), 1u);
    EXPECT_EQ(Window.Commands[0].Argument, 1016);
    EXPECT_EQ(Window.Commands[0].Code, CC_EDITED);
}

TEST_F(TWimpControls, ANumberWithDecimalsIsShownToFourPlaces)
{
    TNumberEdit number;
    ASSERT_TRUE(number.Create(&Window, 1041, "minx"));
    const QDoubleSpinBox* widget = qobject_cast<QDoubleSpinBox*>(number.GetHandle());
    number.SetDecimals(2);
    number.SetRange(-100000, 100000);
    number.SetValue(-12345.5f);
    EXPECT_EQ(widget->text(), QString("-12345.5000"));
    QTest::keyClick(number.GetHandle(), Qt::Key_Up);
    EXPECT_EQ(widget->text(), QString("-12345.4900"));
    number.SetDecimals(0);
    EXPECT_EQ(widget->text(), QString("-12345"));
}

TEST_F(TWimpControls, ANumberTypedOutsideTheRangeIsBroughtIntoIt)
{
    TNumberEdit number;
    ASSERT_TRUE(number.Create(&Window, 1016, "recent"));
    number.SetRange(10, 200);
    number.SetValue(50);
    const auto type = [&](const char* text) {
        QTest::keyClick(number.GetHandle(), Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(number.GetHandle(), text);
    };
    type("5000");
    number.EndEdit();
    EXPECT_EQ(number.GetValue(), 200.0f);
    type("7");
    QTest::keyClick(number.GetHandle(), Qt::Key_Return);
    EXPECT_EQ(number.GetValue(), 10.0f);
    type("-");
    number.EndEdit();
    EXPECT_EQ(number.GetValue(), 10.0f);
    number.SetReadOnly(true);
    type("99");
    EXPECT_EQ(number.GetValue(), 10.0f);
    number.SetValue(99);
    EXPECT_EQ(number.GetValue(), 99.0f);
}

TEST_F(TWimpControls, AComboBoxMaySelectNothing)
{
    TComboBoxControl box;
    ASSERT_TRUE(box.Create(&Window, 1, "box"));
    box.AddString("one");
    box.SetSelection(0);
    box.ClearSelection();
    EXPECT_EQ(box.GetSelection(), -1);
    EXPECT_TRUE(Window.Commands.empty());
}

TEST_F(TWimpControls, AListIsAsWideAsItsLongestLine)
{
    TListBox list;
    ASSERT_TRUE(list.Create(&Window, 1, "list"));
    list.AddString("a");
    list.FitLines();
    const int narrow = list.GetHandle()->width();
    list.AddString("a much longer line");
    list.FitLines();
    EXPECT_GT(list.GetHandle()->width(), narrow + 50);
}

TEST_F(TWimpControls, AGridKeepsItsControlsApartAndAHiddenOnesPlaceFree)
{
    TLabel label;
    TEdit edit;
    TCheckBox first;
    TCheckBox second;
    ASSERT_TRUE(label.Create(&Window, "A label:", "label"));
    ASSERT_TRUE(edit.Create(&Window, 1, "edit"));
    ASSERT_TRUE(first.Create(&Window, 2, "One of two", "first"));
    ASSERT_TRUE(second.Create(&Window, 3, "The other", "second"));
    TGridLayout grid;
    grid.Add(label, 0, 0);
    grid.Add(edit, 0, 1);
    TGridLayout below;
    below.Add(first, 0, 0);
    below.StretchColumn(1);
    grid.Add(below, 1, 0, 2);
    grid.Add(second, 2, 0, 2);
    grid.StretchRow(3);
    grid.Fill(Window);
    Settle();
    const auto place = [](TWimpControl& control) { return control.GetHandle()->geometry(); };
    EXPECT_GT(place(edit).left(), place(label).right());
    EXPECT_GE(place(edit).right(), Window.GetHandle()->width() - 20);
    EXPECT_GT(place(first).top(), place(edit).bottom());
    const int top = place(second).top();
    EXPECT_GT(top, place(first).bottom());
    first.Show(false);
    Settle();
    EXPECT_EQ(place(second).top(), top);
}

TEST_F(TWimpControls, APageFrameShowsOnePageAndScrollsWhatDoesNotFit)
{
    TPageFrame frame;
    EXPECT_FALSE(frame.Create(nullptr, "frame"));
    ASSERT_TRUE(frame.Create(&Window, "frame"));
    TRecordingWindow pages[2];
    TLabel labels[2];
    for (int i = 0; i < 2; ++i) {
        TWindowParams params;
        params.Owner = &Window;
        ASSERT_TRUE(pages[i].Create(params));
        ASSERT_TRUE(
            labels[i].Create(&pages[i], i == 0 ? "short" : "a line that is as long as this", "label"));
        TGridLayout grid;
        grid.Add(labels[i], 0, 0);
        grid.Fill(pages[i]);
        frame.AddPage(pages[i]);
    }
    EXPECT_GT(frame.GetHandle()->sizeHint().width(), labels[1].GetHandle()->sizeHint().width());
    frame.MoveTo(0, 0, 280, 100);
    Settle();
    EXPECT_TRUE(pages[0].IsShown());
    EXPECT_FALSE(pages[1].IsShown());
    frame.ShowPage(1);
    EXPECT_FALSE(pages[0].IsShown());
    EXPECT_TRUE(pages[1].IsShown());
    const QScrollArea* area = qobject_cast<QScrollArea*>(frame.GetHandle());
    EXPECT_EQ(area->horizontalScrollBar()->maximum(), 0);
    frame.MoveTo(0, 0, 80, 100);
    Settle();
    EXPECT_GT(area->horizontalScrollBar()->maximum(), 0);
}

TEST_F(TWimpControls, AControlMayGoInItsAnswer)
{
    auto list = std::make_unique<TListBox>();
    ASSERT_TRUE(list->Create(&Window, 1, "list"));
    list->AddString("one");
    list->AddString("two");
    QListWidget* widget = qobject_cast<QListWidget*>(list->GetHandle());
    Window.AnswerCommand = [&](const TRecordingWindow::TCommand&) {
        list.reset();
        // The widget stays until the event is over, and tells nobody any more.
        widget->setCurrentRow(1);
    };
    QTest::keyClick(list->GetHandle(), Qt::Key_Down);
    EXPECT_EQ(list, nullptr);
    EXPECT_EQ(Window.Commands.size(), 1u);
    auto edit = std::make_unique<TEdit>();
    ASSERT_TRUE(edit->Create(&Window, 1, "edit"));
    Window.AnswerCommand = [&](const TRecordingWindow::TCommand&) { edit.reset(); };
    QTest::keyClick(edit->GetHandle(), Qt::Key_A);
    EXPECT_EQ(edit, nullptr);
    Settle();
}

TEST_F(TWimpControls, AControlWhoseOwnerGoesTellsNoOneAnyMore)
{
    TNumberEdit number;
    ASSERT_TRUE(number.Create(&Window, 1, "number"));
    QDoubleSpinBox* widget = qobject_cast<QDoubleSpinBox*>(number.GetHandle());
    Window.Answer = [&](const TMessage& message) {
        if (message.Type != MT_LEFTDOWN)
            return;
        Window.Destroy();
        // The widget stays until the message has been dealt with.
        widget->setValue(55);
    };
    QTest::mousePress(Window.GetHandle(), Qt::LeftButton, {}, QPoint(250, 180));
    Settle();
    EXPECT_TRUE(Window.Commands.empty());
    EXPECT_EQ(Window.GetHandle(), nullptr);
    EXPECT_EQ(number.GetHandle(), nullptr);
    EXPECT_EQ(number.GetValue(), 0.0f);
}

TEST_F(TWimpControls, AnchoredControlsKeepTheirDistances)
{
    TButton ok;
    TButton fixed;
    TListBox list;
    ASSERT_TRUE(ok.Create(&Window, 1, "OK", "ok"));
    ASSERT_TRUE(fixed.Create(&Window, 2, "Help", "help"));
    ASSERT_TRUE(list.Create(&Window, 3, "list"));
    ok.MoveTo(200, 150, 80, 24);
    fixed.MoveTo(10, 150, 80, 24);
    list.MoveTo(10, 10, 270, 130);
    TWimpDialogSize size;
    constexpr int All = DM_RIGHT | DM_BOTTOM;
    size.Anchor(ok, All, All);
    size.Anchor(fixed.GetHandle(), DM_BOTTOM, DM_BOTTOM);
    size.Anchor(list, DM_NONE, All);
    size.OnSize(300, 200);
    EXPECT_EQ(list.GetHandle()->geometry(), QRect(10, 10, 270, 130));
    size.OnSize(400, 260);
    EXPECT_EQ(ok.GetHandle()->geometry(), QRect(300, 210, 80, 24));
    EXPECT_EQ(fixed.GetHandle()->geometry(), QRect(10, 210, 80, 24));
    EXPECT_EQ(list.GetHandle()->geometry(), QRect(10, 10, 370, 190));
    // Too small and back again: nothing is lost.
    size.OnSize(20, 20);
    EXPECT_EQ(list.GetHandle()->width(), 0);
    size.OnSize(300, 200);
    EXPECT_EQ(ok.GetHandle()->geometry(), QRect(200, 150, 80, 24));
    EXPECT_EQ(list.GetHandle()->geometry(), QRect(10, 10, 270, 130));
}

TEST_F(TWimpControls, ATreeHoldsItemsBelowItems)
{
    TTree tree;
    ASSERT_TRUE(tree.Create(&Window, 30, "tree"));
    const QTreeWidget* widget = qobject_cast<QTreeWidget*>(tree.GetHandle());
    TTreeItem* forces = tree.Add("Forces");
    TTreeItem* wind = tree.Add("Wind", forces);
    TTreeItem* maths = tree.Add("Maths");
    EXPECT_EQ(tree.GetRoots().size(), 2);
    EXPECT_EQ(wind->GetParent(), forces);
    EXPECT_EQ(widget->topLevelItem(0)->child(0)->text(0), QString("Wind"));
    tree.Move(forces, maths);
    EXPECT_EQ(tree.GetRoots().size(), 1);
    EXPECT_TRUE(maths->HasChild(wind));
    EXPECT_EQ(widget->topLevelItem(0)->child(0)->child(0)->text(0), QString("Wind"));
    tree.Move(wind, nullptr);
    EXPECT_EQ(widget->topLevelItemCount(), 2);
    tree.Remove(maths);
    EXPECT_EQ(widget->topLevelItemCount(), 1);
    EXPECT_EQ(tree.GetRoots()[0], wind);
    EXPECT_EQ(Text(wind->GetText()), "Wind");
    EXPECT_TRUE(Window.Commands.empty());
}

TEST_F(TWimpControls, ATreeReportsASelectionAsCode11)
{
    TTree tree;
    ASSERT_TRUE(tree.Create(&Window, 30, "tree"));
    EXPECT_EQ(tree.GetSelection(), nullptr);
    TTreeItem* first = tree.Add("first");
    TTreeItem* second = tree.Add("second", first);
    tree.SetSelection(first);
    tree.Expand(first, true);
    EXPECT_EQ(tree.GetSelection(), first);
    EXPECT_TRUE(Window.Commands.empty());
    QTest::keyClick(tree.GetHandle(), Qt::Key_Down);
    EXPECT_EQ(tree.GetSelection(), second);
    ASSERT_EQ(Window.Commands.size(), 1u);
    EXPECT_EQ(Window.Commands[0].Argument, 30);
    EXPECT_EQ(Window.Commands[0].Code, CC_SELECTION);
    tree.SetSelection(nullptr);
    EXPECT_EQ(tree.GetSelection(), nullptr);
}

TEST_F(TWimpControls, ATreesItemsAreItsOwnAndNeverBelowThemselves)
{
    TTree tree;
    TTree other;
    ASSERT_TRUE(tree.Create(&Window, 1, "tree"));
    ASSERT_TRUE(other.Create(&Window, 2, "other"));
    TTreeItem* parent = tree.Add("parent");
    TTreeItem* child = tree.Add("child", parent);
    EXPECT_EQ(AssertionOf([&] { tree.Move(parent, child); }), "!item->HasChild(parent)");
    EXPECT_EQ(AssertionOf([&] { tree.Move(parent, parent); }), "!item->HasChild(parent)");
    EXPECT_EQ(AssertionOf([&] { other.Remove(parent); }), "ValidateItem(item)");
    EXPECT_EQ(AssertionOf([&] { other.Add("x", parent); }), "ValidateItem(item)");
    EXPECT_EQ(AssertionOf([&] { other.SetSelection(child); }), "ValidateItem(item)");
    EXPECT_EQ(other.GetRoots().size(), 0);
}

TEST_F(TSplitWindowTest, APaneNeedsAWindow)
{
    EXPECT_EQ(AssertionOf([&] { Owner.Split.AddPane(nullptr, false, nullptr, -1); }), "window != 0");
}

TEST_F(TSplitWindowTest, TheOnlyPaneFillsItsOwner)
{
    Owner.Split.AddPane(&Panes[0], false, nullptr, -1);
    EXPECT_EQ(Place(0), QRect(0, 0, 404, 300));
}

TEST_F(TSplitWindowTest, TheBoundIsTheSizeOfThePaneBeforeTheGap)
{
    Owner.Split.AddPane(&Panes[0], false, nullptr, -1);
    Owner.Split.AddPane(&Panes[1], false, &Panes[0], 200);
    EXPECT_EQ(Place(0), QRect(0, 0, 200, 300));
    EXPECT_EQ(Place(1), QRect(204, 0, 200, 300));
}

TEST_F(TSplitWindowTest, MinusOneIsHalfOfTheNeighbour)
{
    Owner.Split.AddPane(&Panes[0], false, nullptr, -1);
    Owner.Split.AddPane(&Panes[1], true, &Panes[0], -1);
    EXPECT_EQ(Place(0), QRect(0, 0, 404, 150));
    EXPECT_EQ(Place(1), QRect(0, 154, 404, 146));
    Owner.Split.AddPane(&Panes[2], false, &Panes[1], -1);
    EXPECT_EQ(Place(1), QRect(0, 154, 202, 146));
    EXPECT_EQ(Place(2), QRect(206, 154, 198, 146));
}

TEST_F(TSplitWindowTest, APaneInsertedBetweenTakesFromItsNeighbourOnly)
{
    Owner.Split.AddPane(&Panes[0], false, nullptr, -1);
    Owner.Split.AddPane(&Panes[1], false, &Panes[0], 200);
    Owner.Split.AddPane(&Panes[2], false, &Panes[0], -1);
    EXPECT_EQ(Place(0), QRect(0, 0, 100, 300));
    EXPECT_EQ(Place(2), QRect(104, 0, 96, 300));
    EXPECT_EQ(Place(1), QRect(204, 0, 200, 300));
}

TEST_F(TSplitWindowTest, APaneAfterNoOneComesFirst)
{
    Owner.Split.AddPane(&Panes[0], false, nullptr, -1);
    Owner.Split.AddPane(&Panes[1], false, nullptr, 50);
    EXPECT_EQ(Place(1), QRect(0, 0, 50, 300));
    EXPECT_EQ(Place(0), QRect(54, 0, 350, 300));
}

TEST_F(TSplitWindowTest, TheLastPaneTakesAResize)
{
    Owner.Split.AddPane(&Panes[0], false, nullptr, -1);
    Owner.Split.AddPane(&Panes[1], false, &Panes[0], 200);
    Owner.MoveTo(40, 40, 504, 350);
    ASSERT_TRUE(WaitFor([&] { return Place(1).width() == 300; }));
    EXPECT_EQ(Place(0), QRect(0, 0, 200, 350));
    EXPECT_EQ(Place(1), QRect(204, 0, 300, 350));
}

TEST_F(TSplitWindowTest, AnOwnerTooSmallLeavesNoPaneOutside)
{
    Owner.Split.AddPane(&Panes[0], false, nullptr, -1);
    Owner.Split.AddPane(&Panes[1], false, &Panes[0], 200);
    Owner.MoveTo(40, 40, 120, 60);
    ASSERT_TRUE(WaitFor([&] { return Place(0).height() == 60; }));
    EXPECT_EQ(Place(0), QRect(0, 0, 116, 60));
    EXPECT_EQ(Place(1).width(), 0);
}

TEST_F(TSplitWindowTest, AGapIsDragged)
{
    Owner.Split.AddPane(&Panes[0], false, nullptr, -1);
    Owner.Split.AddPane(&Panes[1], false, &Panes[0], 200);
    QTest::mousePress(Widget(), Qt::LeftButton, {}, QPoint(201, 100));
    EXPECT_TRUE(Owner.LastTaken);
    EXPECT_EQ(QWidget::mouseGrabber(), Widget());
    QTest::mouseMove(Widget(), QPoint(251, 120));
    EXPECT_EQ(Place(0), QRect(0, 0, 250, 300));
    EXPECT_EQ(Place(1), QRect(254, 0, 150, 300));
    QTest::mouseMove(Widget(), QPoint(-100, 120));
    EXPECT_EQ(Place(0).width(), 10);
    QTest::mouseMove(Widget(), QPoint(1000, 120));
    EXPECT_EQ(Place(1).width(), 10);
    QTest::mouseMove(Widget(), QPoint(101, 120));
    QTest::mouseRelease(Widget(), Qt::LeftButton, {}, QPoint(101, 120));
    EXPECT_EQ(QWidget::mouseGrabber(), nullptr);
    QTest::mouseMove(Widget(), QPoint(300, 120));
    EXPECT_EQ(Place(0).width(), 100);
}

TEST_F(TSplitWindowTest, ADragThatLosesTheMouseIsOver)
{
    Owner.Split.AddPane(&Panes[0], false, nullptr, -1);
    Owner.Split.AddPane(&Panes[1], false, &Panes[0], 200);
    QTest::mousePress(Widget(), Qt::LeftButton, {}, QPoint(201, 100));
    QTest::mouseMove(Widget(), QPoint(251, 120));
    // As when a dialog opens: the release is never heard of.
    TWimp::Get().LoseMouseDrag();
    EXPECT_EQ(QWidget::mouseGrabber(), nullptr);
    QTest::mouseMove(Widget(), QPoint(301, 120));
    EXPECT_EQ(Place(0).width(), 250);
}

TEST_F(TSplitWindowTest, AnUprightGapIsDragged)
{
    Owner.Split.AddPane(&Panes[0], true, nullptr, -1);
    Owner.Split.AddPane(&Panes[1], true, &Panes[0], 100);
    QTest::mousePress(Widget(), Qt::LeftButton, {}, QPoint(50, 102));
    QTest::mouseMove(Widget(), QPoint(60, 82));
    QTest::mouseRelease(Widget(), Qt::LeftButton, {}, QPoint(60, 82));
    EXPECT_EQ(Place(0), QRect(0, 0, 404, 80));
}

TEST_F(TSplitWindowTest, APressBesideTheGapIsTheOwners)
{
    TMessage message;
    message.Type = MT_LEFTDOWN;
    Owner.Split.AddPane(&Panes[0], false, nullptr, -1);
    Owner.Split.AddPane(&Panes[1], false, &Panes[0], 200);
    message.X = 199;
    EXPECT_FALSE(Owner.Split.OnMessage(message));
    message.X = 204;
    EXPECT_FALSE(Owner.Split.OnMessage(message));
    message.X = 203;
    EXPECT_TRUE(Owner.Split.OnMessage(message));
    message.Type = MT_LEFTUP;
    EXPECT_TRUE(Owner.Split.OnMessage(message));
    EXPECT_FALSE(Owner.Split.OnMessage(message));
}

TEST_F(TSplitWindowTest, ThePointerChangesOverAGap)
{
    Owner.Split.AddPane(&Panes[0], false, nullptr, -1);
    Owner.Split.AddPane(&Panes[1], false, &Panes[0], 200);
    Owner.Split.AddPane(&Panes[2], true, &Panes[1], 100);
    TMessage message;
    message.Type = MT_MOUSEMOVE;
    message.X = 202;
    Owner.Split.OnMessage(message);
    EXPECT_EQ(Widget()->cursor().shape(), Qt::SplitHCursor);
    message.X = 300;
    message.Y = 101;
    Owner.Split.OnMessage(message);
    EXPECT_EQ(Widget()->cursor().shape(), Qt::SplitVCursor);
    message.Type = MT_MOUSELEAVE;
    Owner.Split.OnMessage(message);
    EXPECT_EQ(Widget()->cursor().shape(), Qt::ArrowCursor);
}

TEST_F(TSplitWindowTest, TheGapHasTheColourOfButtons)
{
    Owner.Split.AddPane(&Panes[0], false, nullptr, -1);
    Owner.Split.AddPane(&Panes[1], false, &Panes[0], 200);
    Settle();
    const QImage image = Widget()->grab().toImage();
    EXPECT_EQ(image.pixel(201, 50) & 0xFFFFFF, GetButtonColour());
}
