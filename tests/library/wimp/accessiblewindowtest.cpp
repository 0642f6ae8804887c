#include "windowfixture.h"

#include "library/wimp/accessiblecontents.h"

#include <QtGui/QAccessible>

namespace {

// Parents with two children each, and how often somebody has asked for them.
class TCountedContents : public TAccessibleContents
{
public:
    void ListItems(vector<TAccessibleItem>& items) override
    {
        ++NumLists;
        for (int i = 0; i < NumParents; ++i) {
            TAccessibleItem parent;
            parent.Name.Format("%s %d", ParentPrefix, i);
            parent.IsSelected = i == Selected;
            parent.IsEnabled = i != Disabled;
            parent.HasFocus = i == Focused;
            parent.IsLive = IsLive;
            items.push_back(parent);
            for (int k = 0; k < 2; ++k) {
                TAccessibleItem child;
                child.Role = AR_CHECK;
                child.Name.Format("%s %d", Prefix, k);
                child.Parent = 3 * i;
                child.IsCheckable = true;
                child.IsChecked = 3 * i + k + 1 == Checked;
                child.Description = items.size() == 1 ? ChildHelp : "";
                child.Left = 10 * k;
                child.Top = i;
                child.Width = 10;
                child.Height = 1;
                items.push_back(child);
            }
        }
    }
    void PressItem(int item) override { Checked = item; }

    int NumLists = 0;
    int NumParents = 3;
    int Selected = -1;
    int Disabled = -1;
    int Focused = -1;
    int Checked = -1;
    // Of the first child; empty for none.
    const char* ChildHelp = "";
    bool IsLive = false;
    const char* Prefix = "Child";
    const char* ParentPrefix = "Parent";
};

class AccessibleWindow : public TWindowClassTest
{
protected:
    void SetUp() override
    {
        TWindowClassTest::SetUp();
        // Before anything makes the window known to tools.
        ASSERT_TRUE(MakeChild(Child));
        Child.SetAccessible(&Contents, "Contents");
        Told.clear();
        SetAccessibleHook(&AccessibleWindow::Hear);
        TWindow::TellContents();
    }
    void TearDown() override { SetAccessibleHook(nullptr); }
    static void Hear(const TAccessibleItem& item, TAccessibleChange change)
    {
        static const char* const names[] = {"value", "state", "description", "focus", "items"};
        Told.push_back(std::string(names[change]) + (change == AC_ITEMS ? "" : " " + Text(item.Name)));
    }
    QAccessibleInterface& Whole() { return *QAccessible::queryAccessibleInterface(Child.GetHandle()); }
    // What is told after the change.
    std::vector<std::string> Tell()
    {
        Told.clear();
        Child.Redraw();
        TWindow::TellContents();
        return Told;
    }
    using TList = std::vector<std::string>;

    TCountedContents Contents;
    TWindow Child;
    static inline std::vector<std::string> Told;
};

// Everything that a tool asks of everything.
int AskAll(QAccessibleInterface& parent)
{
    int count = 0;
    for (int i = 0; i < parent.childCount(); ++i) {
        QAccessibleInterface& child = *parent.child(i);
        EXPECT_EQ(child.parent(), &parent);
        EXPECT_EQ(parent.indexOfChild(&child), i);
        EXPECT_FALSE(child.text(QAccessible::Name).isEmpty());
        EXPECT_NE(child.role(), QAccessible::NoRole);
        EXPECT_FALSE(child.state().invalid);
        child.rect();
        count += 1 + AskAll(child);
    }
    return count;
}

} // namespace

TEST_F(AccessibleWindow, ItsContentsAreListedOnceForAllThatIsAsked)
{
    Contents.NumParents = 1000;
    Child.Redraw();
    Contents.NumLists = 0;
    EXPECT_EQ(AskAll(Whole()), 3000);
    EXPECT_EQ(Contents.NumLists, 1);
    EXPECT_EQ(AskAll(Whole()), 3000);
    EXPECT_EQ(Contents.NumLists, 1);
    const QPoint at = Child.GetHandle()->mapToGlobal(QPoint(15, 7));
    ASSERT_NE(Whole().childAt(at.x(), at.y()), nullptr);
    EXPECT_EQ(Whole().childAt(at.x(), at.y()), Whole().child(7)->child(1));
    EXPECT_EQ(Contents.NumLists, 1);
}

TEST_F(AccessibleWindow, WhatHasChangedIsListedAnew)
{
    QAccessibleInterface& whole = Whole();
    ASSERT_EQ(whole.childCount(), 3);
    QAccessibleInterface* last = whole.child(2);
    Contents.NumParents = 2;
    Child.Redraw();
    EXPECT_EQ(whole.childCount(), 2);
    EXPECT_FALSE(last->isValid());
    EXPECT_TRUE(last->state().invalid);
    EXPECT_EQ(whole.child(2), nullptr);
    EXPECT_EQ(whole.child(-1), nullptr);
    EXPECT_EQ(whole.indexOfChild(last), -1);
    EXPECT_EQ(whole.indexOfChild(whole.child(0)->child(0)), -1);
    // Another size, and the keys that come or go.
    const auto isListed = [&] {
        const bool listed = Contents.NumLists > 0;
        Contents.NumLists = 0;
        return listed;
    };
    isListed();
    whole.childCount();
    EXPECT_FALSE(isListed());
    Child.GetHandle()->resize(Child.GetHandle()->width() + 10, Child.GetHandle()->height());
    whole.childCount();
    EXPECT_TRUE(isListed());
    QFocusEvent focus(QEvent::FocusIn);
    QApplication::sendEvent(Child.GetHandle(), &focus);
    whole.childCount();
    EXPECT_TRUE(isListed());
    // What is done to an item may be seen in it at once.
    QAccessibleInterface& check = *whole.child(1)->child(0);
    EXPECT_FALSE(check.state().checked);
    check.actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_TRUE(check.state().checked);
}

TEST_F(AccessibleWindow, TheItemWithTheKeysIsTheOneInTheWindow)
{
    EXPECT_EQ(Whole().focusChild(), nullptr);
    Contents.Focused = 1;
    Child.Redraw();
    EXPECT_EQ(Whole().focusChild(), Whole().child(1));
    EXPECT_TRUE(Whole().child(1)->state().focused);
}

TEST_F(AccessibleWindow, StatesAreToldOfTheItemsWhoseStatesHaveChanged)
{
    EXPECT_EQ(Tell(), TList());
    Contents.Checked = 2;
    EXPECT_EQ(Tell(), TList({"state Child 1"}));
    EXPECT_EQ(Tell(), TList());
    Contents.Checked = -1;
    Contents.Selected = 1;
    EXPECT_EQ(Tell(), TList({"state Child 1", "state Parent 1"}));
    Contents.Selected = 2;
    EXPECT_EQ(Tell(), TList({"state Parent 1", "state Parent 2"}));
    Contents.Disabled = 2;
    EXPECT_EQ(Tell(), TList({"state Parent 2"}));
    Contents.Focused = 0;
    EXPECT_EQ(Tell(), TList({"focus Parent 0"}));
    Contents.ChildHelp = "wired";
    EXPECT_EQ(Tell(), TList({"description Child 0"}));
    EXPECT_EQ(Tell(), TList());
}

TEST_F(AccessibleWindow, OtherItemsAreToldOnceAndWhoHasTheKeysAmongThem)
{
    Contents.NumParents = 4;
    EXPECT_EQ(Tell(), TList({"items"}));
    Contents.Prefix = "Part";
    Contents.Checked = 2;
    EXPECT_EQ(Tell(), TList({"items"}));
    Contents.Focused = 1;
    Contents.NumParents = 2;
    EXPECT_EQ(Tell(), TList({"items", "focus Parent 1"}));
    EXPECT_EQ(Tell(), TList());
    // The same place is another item's now.
    Contents.Prefix = "Child";
    EXPECT_EQ(Tell(), TList({"items", "focus Parent 1"}));
}

// They would be told for ever.
TEST_F(AccessibleWindow, NamesOfItemsThatChangeByThemselvesMakeNoOtherItems)
{
    Contents.ParentPrefix = "Line";
    EXPECT_EQ(Tell(), TList({"items"}));
    Contents.IsLive = true;
    Tell();
    Contents.ParentPrefix = "Row";
    EXPECT_EQ(Tell(), TList());
    Contents.NumParents = 2;
    EXPECT_EQ(Tell(), TList({"items"}));
}
