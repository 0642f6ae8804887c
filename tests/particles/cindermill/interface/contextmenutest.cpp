#include "graphwindowfixture.h"

#include "particles/cindermill/interface/controls/fieldwalk.h"
#include "particles/cindermill/interface/particles/previewmenu.h"

#include <QtGui/QKeySequence>

namespace {

class ContextMenu : public GraphWindow
{
protected:
    void SetUp() override
    {
        GraphWindow::SetUp();
        Frame.BringToTop();
        Press(Graph(), Empty);
        Release(Graph(), Empty);
        ASSERT_TRUE(WaitFor([&] { return Graph().HasFocus(); }));
    }
    // How many entries with letters the work's menu has; its first one's text. None if no menu opens.
    std::string Letters(const std::function<void()>& work)
    {
        std::string first;
        NumEntries = 0;
        QTimer watch;
        QObject::connect(&watch, &QTimer::timeout, [&] {
            QMenu* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            if (menu == nullptr)
                return;
            NumEntries = ExpectLetters(*menu);
            first = ShownText(*menu->actions().constFirst());
            menu->close();
        });
        watch.start(20);
        work();
        if (NumEntries == 0)
            Settle();
        return first;
    }

    int NumEntries = 0;
};

} // namespace

TEST_F(ContextMenu, TheMenuOfANodeHasALetterForEachEntry)
{
    EXPECT_EQ(Letters([&] {
                  Press(Graph(), MiddleOf(*Document, First), Qt::RightButton);
                  Release(Graph(), MiddleOf(*Document, First), Qt::RightButton);
              }),
              "Focus Node Group");
    EXPECT_GT(NumEntries, 15);
}

TEST_F(ContextMenu, ShiftF10AndTheMenuKeyOpenTheMenuOfTheSelectedNode)
{
    EXPECT_EQ(Letters([&] { Key(Graph(), Qt::Key_F10, Qt::ShiftModifier); }), "");
    Document->SelectNode(First, true);
    Document->SelectNode(Second, false);
    EXPECT_EQ(Letters([&] { Key(Graph(), Qt::Key_F10, Qt::ShiftModifier); }), "Focus Node Group");
    EXPECT_EQ(Letters([&] { Key(Graph(), Qt::Key_Menu); }), "Focus Node Group");
    // Of the one that was selected last, wherever the view is; and what it does stays with all.
    SetView(Graph(), 50000, 50000, 1);
    MeetMenu([&](QMenu& menu) {
        for (QAction* action : menu.actions())
            if (ShownText(*action).rfind("Bypass", 0) == 0)
                action->trigger();
        menu.close();
    });
    Key(Graph(), Qt::Key_F10, Qt::ShiftModifier);
    EXPECT_EQ(NumSelected(), 2);
    EXPECT_TRUE(Second->GetNodeType()->IsBypassed());
}

TEST_F(ContextMenu, InAPanelItIsTheMenuOfTheControlWithTheKeys)
{
    Document->SelectNode(Second, true);
    Key(Graph(), Qt::Key_Return);
    const TNodeObj* object = WindowsOf(*Document).GetScene().FindNode(Second);
    ASSERT_FALSE(object->IsCollapsed());
    ASSERT_TRUE(TRenderObject::GetFocus()->IsIn(*object));
    EXPECT_EQ(Letters([&] { Key(Graph(), Qt::Key_F10, Qt::ShiftModifier); }), "Copy Value");
    EXPECT_EQ(NumEntries, 3);
}

TEST_F(ContextMenu, ReturnOpensAPanelAndGivesItTheKeysAndClosesIt)
{
    Document->SelectNode(Second, true);
    const TNodeObj* object = WindowsOf(*Document).GetScene().FindNode(Second);
    Key(Graph(), Qt::Key_Return);
    ASSERT_FALSE(object->IsCollapsed());
    EXPECT_TRUE(TRenderObject::GetFocus()->IsIn(*object));
    // Nodes are walked from within a panel too, and the keys are the graph's then.
    Key(Graph(), Qt::Key_PageUp, Qt::ControlModifier);
    EXPECT_TRUE(IsSelected(First));
    EXPECT_EQ(TTextEdit::GetFocused(), nullptr);
    Document->SelectNode(Second, true);
    Key(Graph(), Qt::Key_Return);
    EXPECT_TRUE(object->IsCollapsed());
    EXPECT_FALSE(TRenderObject::GetFocus()->IsIn(*object));
}

TEST_F(ContextMenu, TheMenusOfThePreviewHaveALetterForEachEntry)
{
    TParticleWindow& preview = *WindowsOf(*Document).GetParticleWindow();
    preview.Show();
    Settle();
    EXPECT_EQ(Letters([&] { Key(preview.GetRenderWindow(), Qt::Key_Menu); }), "Restart\tHome");
    EXPECT_GT(NumEntries, 40);
    EXPECT_EQ(Letters([&] { preview.OpenSpeedMenu(preview, 0, 0); }), "1/8x");
    EXPECT_GT(NumEntries, 5);
    // There Shift+F10 keeps a camera, as the menu says.
    EXPECT_EQ(Letters([&] { Key(preview.GetRenderWindow(), Qt::Key_F10, Qt::ShiftModifier); }), "");
}
