#include "graphwindowfixture.h"

#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/interface/graph/gridrender.h"

namespace {

// With the keyboard in the graph, as after a click.
class GraphActions : public GraphWindow
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
    // The entries of a node's menu that are greyed, those of the popups in it too.
    TNames GreyEntries(TToolNode* node)
    {
        TNames grey;
        MeetMenu([&](QMenu& menu) {
            AddGrey(menu, grey);
            menu.close();
        });
        const QPoint at = MiddleOf(*Document, node);
        Press(Graph(), at, Qt::RightButton);
        Release(Graph(), at, Qt::RightButton);
        Settle();
        return grey;
    }
    static void AddGrey(const QMenu& menu, TNames& grey)
    {
        for (const QAction* action : menu.actions()) {
            if (!action->isSeparator() && !action->isEnabled())
                grey.push_back(action->text().remove(QLatin1Char('&')).section('\t', 0, 0).toStdString());
            if (action->menu() != nullptr && action->isEnabled())
                AddGrey(*action->menu(), grey);
        }
    }
    // Two more nodes, joined by hand.
    void AddWire()
    {
        Effect = AddNode(*Document, "Effect", 100, 500);
        Curve = AddNode(*Document, "Scalar Over Life", 600, 500);
        TGraphScene& scene = WindowsOf(*Document).GetScene();
        const int time = Curve->GetNodeType()->FindInput("Time");
        Drag(Graph(), PixelOf(Graph(), scene.FindNode(Effect)->GetPortPosition(false, 0)),
             PixelOf(Graph(), scene.FindNode(Curve)->GetPortPosition(true, time)));
    }

    TToolNode* Effect = nullptr;
    TToolNode* Curve = nullptr;
};

} // namespace

TEST_F(GraphActions, CtrlDDuplicatesTheSelection)
{
    Document->SelectNode(First, true);
    Key(Graph(), Qt::Key_D, Qt::ControlModifier);
    ASSERT_EQ(Document->GetGraph()->GetNumNodes(), 3);
    EXPECT_EQ(NumSelected(), 1);
    EXPECT_FALSE(IsSelected(First));
    Key(Graph(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Document->GetGraph()->GetNumNodes(), 2);
}

TEST_F(GraphActions, CtrlBBypassesTheSelection)
{
    Document->SelectNode(Second, true);
    Key(Graph(), Qt::Key_B, Qt::ControlModifier);
    EXPECT_TRUE(Second->GetNodeType()->IsBypassed());
    Key(Graph(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_FALSE(Second->GetNodeType()->IsBypassed());
}

// What a key switches would else end on or off as chance has it.
TEST_F(GraphActions, AHeldKeySwitchesOnce)
{
    Document->SelectNode(Second, true);
    HoldKey(Graph(), Qt::Key_B, 2, Qt::ControlModifier);
    EXPECT_TRUE(Second->GetNodeType()->IsBypassed());
    HoldKey(Graph(), Qt::Key_M, 2, Qt::ControlModifier);
    EXPECT_TRUE(Graph().GetMinimap().IsShown());
    HoldKey(Graph(), Qt::Key_D, 5, Qt::ControlModifier);
    EXPECT_EQ(Document->GetGraph()->GetNumNodes(), 3);
    TNodeObj* object = WindowsOf(*Document).GetScene().FindNode(First);
    Document->SelectNode(First, true);
    HoldKey(Graph(), Qt::Key_Return, 2);
    EXPECT_FALSE(object->IsCollapsed());
}

TEST_F(GraphActions, TheArrowsMoveTheSelectionInOneStep)
{
    const int steps = NumUndoSteps();
    Document->SelectNode(First, true);
    Document->SelectNode(Second, false);
    HoldKey(Graph(), Qt::Key_Right, 3);
    Key(Graph(), Qt::Key_Up);
    EXPECT_EQ(First->GetX(), 200 + 3 * TGridRender::Step);
    EXPECT_EQ(First->GetY(), 200 - TGridRender::Step);
    EXPECT_EQ(Second->GetX(), First->GetX());
    Key(Graph(), Qt::Key_Left, Qt::ShiftModifier);
    Key(Graph(), Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(First->GetX(), 199 + 3 * TGridRender::Step);
    EXPECT_EQ(Second->GetY(), 401 - TGridRender::Step);
    EXPECT_EQ(NumUndoSteps(), steps + 1);
    Key(Graph(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(First->GetX(), 200);
    EXPECT_EQ(Second->GetY(), 400);
    Document->ClearSelection();
    Key(Graph(), Qt::Key_Left);
    EXPECT_EQ(First->GetX(), 200);
    EXPECT_TRUE(Frame.IsLastNote("No node is selected"));
}

TEST_F(GraphActions, WhatTheArrowsMoveStaysInSight)
{
    Document->SelectNode(First, true);
    HoldKey(Graph(), Qt::Key_Left, 20);
    ASSERT_LT(First->GetX(), 0);
    for (int i = 0; i < 20 && Graph().IsFocusing(); ++i)
        Graph().OnIdle();
    EXPECT_GE(PixelOf(Graph(), TVector2(static_cast<float>(First->GetX()), 200)).x(), 0);
    EXPECT_EQ(Offset()[1], 0);
}

// They are a control's, and a port's, as long as it has the keys.
TEST_F(GraphActions, TheArrowsOfAFieldMoveNoNode)
{
    Document->SelectNode(Second, true);
    Key(Graph(), Qt::Key_Return);
    ASSERT_FALSE(WindowsOf(*Document).GetScene().FindNode(Second)->IsCollapsed());
    for (const auto keys : {Qt::NoModifier, Qt::ShiftModifier})
        Key(Graph(), Qt::Key_Up, keys);
    EXPECT_EQ(Second->GetY(), 400);
    Document->SelectNode(First, true);
    Press(Graph(), Empty);
    Release(Graph(), Empty);
    Document->SelectNode(First, true);
    Type(Graph(), Qt::Key_P, "p", Qt::NoModifier);
    ASSERT_TRUE(WindowsOf(*Document).GetScene().GetPortWalk().IsOn());
    for (const auto keys : {Qt::NoModifier, Qt::ShiftModifier})
        Key(Graph(), Qt::Key_Down, keys);
    EXPECT_EQ(First->GetY(), 200);
}

TEST_F(GraphActions, CtrlAndShiftWithTheArrowsAlign)
{
    Second->SetPosition(340, 400);
    Document->SelectNode(First, true);
    Document->SelectNode(Second, false);
    Key(Graph(), Qt::Key_Left, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(Second->GetX(), 200);
    EXPECT_EQ(Second->GetY(), 400);
    Key(Graph(), Qt::Key_Up, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(Second->GetY(), 200);
    Document->Undo();
    Document->Undo();
    EXPECT_EQ(Second->GetX(), 340);
}

TEST_F(GraphActions, CtrlAndTheArrowsSelectAlongTheWires)
{
    AddWire();
    ASSERT_EQ(Document->GetGraph()->GetNumEdges(), 1);
    Document->SelectNode(Effect, true);
    Key(Graph(), Qt::Key_Right, Qt::ControlModifier);
    EXPECT_EQ(NumSelected(), 2);
    EXPECT_TRUE(IsSelected(Curve));
    Document->SelectNode(Curve, true);
    Key(Graph(), Qt::Key_Left, Qt::ControlModifier);
    EXPECT_TRUE(IsSelected(Effect));
    Key(Graph(), Qt::Key_T, Qt::ControlModifier);
    EXPECT_LT(Curve->GetX(), 600);
}

TEST_F(GraphActions, TheEntriesOfANodesMenuActOnTheSelection)
{
    // As in other programs, a node that is not selected becomes the selection.
    MeetMenu([&](QMenu& menu) {
        for (QAction* action : menu.actions())
            if (ShownText(*action).rfind("Duplicate", 0) == 0)
                action->trigger();
        menu.close();
    });
    const QPoint at = MiddleOf(*Document, First);
    Press(Graph(), at, Qt::RightButton);
    Release(Graph(), at, Qt::RightButton);
    Settle();
    EXPECT_EQ(Document->GetGraph()->GetNumNodes(), 3);
}

TEST_F(GraphActions, TheEntriesOfTheMainMenuShowWhatHasSomethingToDoAndActOnTheSelection)
{
    TMenu menu;
    TGraphActions::FillMenu(menu);
    // The texts of what can be chosen; the entry that begins so is.
    const auto open = [&](const char* chosen) {
        std::string active;
        int id = 0;
        TGraphActions::ShowEntries(menu, &Graph().GetActions(), true);
        MeetMenu([&](QMenu& shown) {
            ExpectLetters(shown);
            for (const QAction* action : shown.actions()) {
                const std::string text = ShownText(*action);
                if (action->isEnabled() && !action->isSeparator())
                    active += text.substr(0, text.find('\t')) + "\n";
                if (text.rfind(chosen, 0) == 0)
                    id = action->objectName().mid(4).toInt();
            }
            shown.close();
        });
        menu.Track(Frame, 0, 0);
        EXPECT_TRUE(TGraphActions::IsEntry(id));
        Graph().GetActions().OnMainMenu(id);
        Settle();
        return active;
    };
    Document->ClearSelection();
    EXPECT_EQ(open("Map"), "Add Node...\nFind Node...\nTidy\nMap\n");
    EXPECT_TRUE(Graph().GetMinimap().IsShown());
    Document->SelectNode(First, true);
    const std::string active = open("Duplicate");
    EXPECT_NE(active.find("Duplicate\n"), std::string::npos);
    EXPECT_EQ(active.find("Align\n"), std::string::npos);
    EXPECT_EQ(active.find("Take Out"), std::string::npos);
    EXPECT_EQ(Document->GetGraph()->GetNumNodes(), 3);
    Document->SelectNode(Second, false);
    EXPECT_NE(open("Find").find("Align\n"), std::string::npos);
    EXPECT_TRUE(Graph().GetActions().GetSearch().IsOpen());
    Key(Graph().GetActions().GetSearch(), Qt::Key_Escape);
    // The search to add stands in the middle of the view then, where the node comes to be.
    open("Add");
    EXPECT_TRUE(Graph().GetActions().GetSearch().IsOpen());
}

TEST_F(GraphActions, WhereThereIsNothingToDoTheStatusBarSaysSo)
{
    Document->SelectNode(First, true);
    Key(Graph(), Qt::Key_E, Qt::ControlModifier);
    EXPECT_TRUE(Frame.IsLastNote("There is nothing to do for the selected nodes"));
    // Of all nodes, as none is selected.
    Document->ClearSelection();
    Key(Graph(), Qt::Key_T, Qt::ControlModifier);
    const int steps = NumUndoSteps();
    Key(Graph(), Qt::Key_T, Qt::ControlModifier);
    EXPECT_EQ(NumUndoSteps(), steps);
    EXPECT_TRUE(Frame.IsLastNote("The nodes stand where they are tidy"));
}

TEST_F(GraphActions, WithNothingSelectedTheStatusBarSaysSo)
{
    Document->ClearSelection();
    const int steps = NumUndoSteps();
    Key(Graph(), Qt::Key_D, Qt::ControlModifier);
    EXPECT_EQ(Document->GetGraph()->GetNumNodes(), 2);
    EXPECT_EQ(NumUndoSteps(), steps);
    EXPECT_TRUE(Frame.IsLastNote("No node is selected"));
    // So do the keys of the Edit menu.
    const std::pair<int, const char*> keys[] = {{Qt::Key_C, "No node is selected"},
                                                {Qt::Key_Y, "There is nothing to redo"},
                                                {Qt::Key_X, "No node is selected"},
                                                {Qt::Key_Y, "There is nothing to redo"},
                                                {Qt::Key_F, "No node is selected"}};
    for (const auto& [key, note] : keys) {
        Key(Graph(), key, Qt::ControlModifier);
        EXPECT_TRUE(Frame.IsLastNote(note)) << note;
    }
    while (Document->CanUndo())
        Document->Undo();
    Key(Graph(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(Frame.IsLastNote("There is nothing to undo"));
    Key(Graph(), Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(Frame.IsLastNote("The graph is empty"));
}

TEST_F(GraphActions, WithAltANodeIsTakenOutOfItsWire)
{
    TToolNode* effect = AddNode(*Document, "Effect", 100, 500);
    TToolNode* add = AddNode(*Document, "Add", 350, 500);
    TToolNode* curve = AddNode(*Document, "Scalar Over Life", 600, 500);
    TGraphScene& scene = WindowsOf(*Document).GetScene();
    const auto portOf = [&](TToolNode* node, bool isInput, int port) {
        return PixelOf(Graph(), scene.FindNode(node)->GetPortPosition(isInput, port));
    };
    Drag(Graph(), portOf(effect, false, 0), portOf(add, true, 0));
    Drag(Graph(), portOf(add, false, 0), portOf(curve, true, curve->GetNodeType()->FindInput("Time")));
    ASSERT_EQ(Document->GetGraph()->GetNumEdges(), 2);
    const int steps = NumUndoSteps();
    const QPoint title = PixelOf(Graph(), TVector2(380, 507));
    Drag(Graph(), title, title + QPoint(0, 100), Qt::LeftButton, Qt::AltModifier);
    ASSERT_EQ(Document->GetGraph()->GetNumEdges(), 1);
    EXPECT_EQ(Document->GetGraph()->GetEdge(0)->GetSrcNode(), effect);
    EXPECT_EQ(Document->GetGraph()->GetEdge(0)->GetDstNode(), curve);
    EXPECT_EQ(add->GetY(), 600);
    EXPECT_EQ(NumUndoSteps(), steps + 1);
}

TEST_F(GraphActions, WithCtrlADraggedNodeSnapsToTheGrid)
{
    First->SetPosition(203, 205);
    const QPoint title = PixelOf(Graph(), TVector2(233, 212));
    Drag(Graph(), title, title + QPoint(50, 40), Qt::LeftButton, Qt::ControlModifier);
    EXPECT_EQ(First->GetX() % 16, 0);
    EXPECT_EQ(First->GetY() % 16, 0);
    EXPECT_EQ(First->GetX(), 256);
    EXPECT_EQ(First->GetY(), 240);
}

TEST_F(GraphActions, TheMenuOfANodeGreysWhatHasNothingToDo)
{
    const TNames never = {"Focus Node Group", "Insert Node..."};
    const auto with = [&](TNames more) {
        more.insert(more.begin(), never.begin(), never.end());
        return more;
    };
    // The node becomes the selection, whatever is selected: it has no wire and nothing to be aligned with.
    Document->SelectNode(Second, true);
    EXPECT_EQ(GreyEntries(First),
              with({"Bypass", "Take Out of Wires", "Select Upstream", "Select Downstream", "Align"}));
    EXPECT_EQ(GreyEntries(Second),
              with({"Take Out of Wires", "Select Upstream", "Select Downstream", "Align"}));
    Document->SelectNode(First, false);
    EXPECT_EQ(GreyEntries(Second), with({"Take Out of Wires", "Select Upstream", "Select Downstream",
                                         "Distribute Across", "Distribute Down"}));
}

TEST_F(GraphActions, TheMenuOfAWiredNodeOffersItsWires)
{
    AddWire();
    ASSERT_EQ(Document->GetGraph()->GetNumEdges(), 1);
    const TNames grey = GreyEntries(Effect);
    EXPECT_EQ(std::count(grey.begin(), grey.end(), "Select Upstream"), 1);
    EXPECT_EQ(std::count(grey.begin(), grey.end(), "Select Downstream"), 0);
    EXPECT_EQ(std::count(grey.begin(), grey.end(), "Take Out of Wires"), 0);
}
