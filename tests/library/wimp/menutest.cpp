#include "library/wimp/menu.h"

#include "support/windowtest.h"

#include <QtGui/QAction>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMenu>

namespace {

class TMenuTest : public TWindowTest
{
protected:
    void SetUp() override { ShowTopWindow(Window, Class); }

    // What is done to the popup while it waits.
    void Track(TMenu& menu, const std::function<void(QMenu&)>& work)
    {
        MeetMenu([work](QMenu& open) {
            work(open);
            if (open.isVisible())
                open.close();
        });
        menu.Track(Window, 10, 10);
    }

    TWindowClass Class{"test_menu"};
    TRecordingWindow Window;
};

} // namespace

TEST_F(TMenuTest, AChosenItemReportsItsIdAsCode1)
{
    TMenu menu;
    menu.AddItem(40215, "Focus Node Group");
    menu.AddItem(40216, "Node Properties...");
    Track(menu, [](QMenu& open) {
        ASSERT_EQ(open.actions().size(), 2);
        open.setActiveAction(open.actions()[1]);
        QTest::keyClick(&open, Qt::Key_Return);
    });
    ASSERT_EQ(Window.Commands.size(), 1u);
    EXPECT_EQ(Window.Commands[0].Control, nullptr);
    EXPECT_EQ(Window.Commands[0].Argument, 40216);
    EXPECT_EQ(Window.Commands[0].Code, CC_MENU);
}

TEST_F(TMenuTest, ACancelledMenuReportsNothing)
{
    TMenu menu;
    menu.AddItem(1, "One");
    Track(menu, [](QMenu& open) { QTest::keyClick(&open, Qt::Key_Escape); });
    EXPECT_TRUE(Window.Commands.empty());
}

TEST_F(TMenuTest, TheAnswerMayDestroyTheWindow)
{
    TMenu menu;
    menu.AddItem(1, "One");
    Window.AnswerCommand = [&](const TRecordingWindow::TCommand&) { Window.Destroy(); };
    Track(menu, [](QMenu& open) {
        open.setActiveAction(open.actions()[0]);
        QTest::keyClick(&open, Qt::Key_Return);
    });
    EXPECT_EQ(Window.GetHandle(), nullptr);
}

TEST_F(TMenuTest, AKeyBehindATabIsShownAndIsNoShortcut)
{
    TMenu menu;
    menu.AddItem(57600, "New\tCtrl+N");
    Track(menu, [](QMenu& open) {
        EXPECT_EQ(open.actions()[0]->text(), QString("&New\tCtrl+N"));
        EXPECT_TRUE(open.actions()[0]->shortcut().isEmpty());
        EXPECT_EQ(open.actions()[0]->objectName(), QString("menu57600"));
    });
}

TEST_F(TMenuTest, AnAmpersandIsShown)
{
    TMenu menu;
    menu.AddItem(1, "sparks & smoke.effect");
    Track(menu,
          [](QMenu& open) { EXPECT_EQ(open.actions()[0]->text(), QString("&sparks && smoke.effect")); });
}

TEST_F(TMenuTest, PopupsAreFoundByTheirIdAtAnyDepth)
{
    TMenu menu;
    TMenu& file = menu.AddPopup("File");
    TMenu& recent = file.AddPopup("Recent Files", 40009);
    EXPECT_EQ(menu.FindPopup(40009), &recent);
    EXPECT_EQ(menu.FindPopup(4), nullptr);
    EXPECT_EQ(menu.GetNumItems(), 1);
    EXPECT_EQ(file.GetNumItems(), 1);
}

TEST_F(TMenuTest, ItemsAreInsertedAndCleared)
{
    TMenu menu;
    menu.InsertItem(0, 40010, "oldest");
    menu.InsertItem(0, 40011, "newest");
    menu.InsertItem(99, 40012, "last");
    Track(menu, [](QMenu& open) {
        ASSERT_EQ(open.actions().size(), 3);
        EXPECT_EQ(open.actions()[0]->text(), QString("&newest"));
        EXPECT_EQ(open.actions()[2]->text(), QString("&last"));
    });
    menu.Clear();
    EXPECT_EQ(menu.GetNumItems(), 0);
}

TEST_F(TMenuTest, AnEmptyPopupIsGrey)
{
    TMenu menu;
    TMenu& recent = menu.AddPopup("Recent Files", 40009);
    Track(menu, [](QMenu& open) { EXPECT_FALSE(open.actions()[0]->isEnabled()); });
    recent.AddItem(40010, "a.effect");
    Track(menu, [](QMenu& open) { EXPECT_TRUE(open.actions()[0]->isEnabled()); });
    recent.Clear();
    Track(menu, [](QMenu& open) { EXPECT_FALSE(open.actions()[0]->isEnabled()); });
}

TEST_F(TMenuTest, ItemsOfPopupsAreSwitchedByTheirId)
{
    TMenu menu;
    menu.AddPopup("Edit").AddItem(57643, "Undo\tCtrl+Z");
    menu.EnableItem(57643, false);
    Track(menu, [](QMenu& open) { EXPECT_FALSE(open.actions()[0]->menu()->actions()[0]->isEnabled()); });
    menu.EnableItem(57643, true);
    Track(menu, [](QMenu& open) { EXPECT_TRUE(open.actions()[0]->menu()->actions()[0]->isEnabled()); });
}

TEST_F(TMenuTest, EachEntryIsChosenByALetterOfItsOwn)
{
    TMenu menu;
    menu.AddItem(1, "Copy Value");
    menu.AddItem(2, "Cut & Paste");
    menu.AddSeparator();
    menu.AddPopup("Colour").AddItem(3, "Grey");
    menu.AddItem(4, "C");
    // Tracked again, a menu has the letters that it had.
    for (int i = 0; i < 2; ++i)
        Track(menu, [](QMenu& open) {
            const QList<QAction*> entries = open.actions();
            // It has another, which the last entry has not.
            EXPECT_EQ(entries[0]->text(), QString("Copy &Value"));
            EXPECT_EQ(entries[1]->text(), QString("Cut && &Paste"));
            EXPECT_EQ(entries[3]->text(), QString("C&olour"));
            EXPECT_EQ(entries[3]->menu()->actions()[0]->text(), QString("&Grey"));
            EXPECT_EQ(entries[4]->text(), QString("&C"));
            QTest::keyClick(&open, Qt::Key_P);
        });
    ASSERT_EQ(Window.Commands.size(), 2u);
    EXPECT_EQ(Window.Commands[0].Argument, 2);
    EXPECT_EQ(Window.Commands[1].Argument, 2);
}

TEST_F(TMenuTest, TellsWhenItIsSeenAndWhenItGoesAndAChoiceComesLast)
{
    TMenu menu;
    menu.AddItem(1, "One");
    menu.AddItem(2, "Two");
    std::vector<int> told;
    struct TTold
    {
        std::vector<int>* List;
        TRecordingWindow* Window;
    } context{&told, &Window};
    menu.SetOnShow(
        [](TMenu& shownMenu, bool shown, void* data) {
            const TTold& where = *static_cast<TTold*>(data);
            where.List->push_back(shown ? 1 : 0);
            shownMenu.EnableItem(1, !shown);
            EXPECT_TRUE(where.Window->Commands.empty());
        },
        &context);
    Track(menu, [](QMenu& open) {
        EXPECT_FALSE(open.actions()[0]->isEnabled());
        open.setActiveAction(open.actions()[1]);
        QTest::keyClick(&open, Qt::Key_Return);
    });
    EXPECT_EQ(told, (std::vector<int>{1, 0}));
    ASSERT_EQ(Window.Commands.size(), 1u);
    EXPECT_EQ(Window.Commands[0].Argument, 2);
}
