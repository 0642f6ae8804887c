#include "window/programgraphfixture.h"

#include "particles/cindermill/graph/operations/addgraphedgeop.h"
#include "particles/cindermill/graph/operations/addgraphnodeop.h"
#include "particles/cindermill/graph/operations/deletegraphedgeop.h"
#include "particles/cindermill/graph/operations/movegraphnodeop.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/interface/graph/graphedits.h"
#include "particles/cindermill/interface/graph/nodesearch.h"
#include "particles/cindermill/interface/graph/wireinsertion.h"
#include "particles/cindermill/main/documentstep.h"

#include <algorithm>

TEST_F(ProgramGraph, ANodeIsSearchedForAtThePointerAndAtAWiresEnd)
{
    TProgram program(Screen);
    TWorkshop workshop(Screen, program);
    StartWithNewDocument(program, workshop);
    if (HasFatalFailure())
        return;
    TDocument& document = workshop.GetDocument();
    TCindermillApp& app = workshop.GetApp();

    SearchAt(workshop, 150, 120, "Tab", "velcone");
    document.ApplyOperation(
        new TAddGraphNodeOp(document, *app.GetNodeTypes().FindType("Velocity Cone"), 150, 120));
    TToolNode* cone = workshop.GetLast();
    Screen.Save(program.GetMainRectangle(), Screenshot("search-added"));

    int x = 0;
    int y = 0;
    PortAt(workshop, cone, false, "Velocity", x, y);
    Screen.Drag(x, y, workshop.ScreenX(420), workshop.ScreenY(260));
    Screen.Type("integ");
    Screen.Save(program.GetMainRectangle(), Screenshot("search-wire"));
    Screen.Key("Return");
    const TWireEnd end = {cone, cone->GetNodeType()->FindOutput("Velocity"), false};
    TToolNode* integrate =
        AddNodeToWire(document, *app.GetNodeTypes().FindType("Integrate"), TVector2(420, 260), end);
    ASSERT_NE(integrate, nullptr);
    document.SelectNode(integrate, true);
    CheckFile(program, workshop, true);

    // With its wire, one step back.
    Screen.Keys({"ctrl+d", "ctrl+z", "ctrl+y"});
    DuplicateSelection(document);
    document.Undo();
    document.Redo();
    CheckFile(program, workshop, false);
    Screen.Keys({"ctrl+z", "ctrl+z"});
    document.Undo();
    document.Undo();
    EXPECT_EQ(document.GetGraph()->GetNumNodes(), 1);
    CheckFile(program, workshop, false);
    Screen.Keys({"ctrl+y", "ctrl+y"});
    document.Redo();
    document.Redo();
    CheckFile(program, workshop, false);
    Exit(program);
}

TEST_F(ProgramGraph, TwoNodesAreWiredByKeysAlone)
{
    TProgram program(Screen);
    TWorkshop workshop(Screen, program);
    StartWithNewDocument(program, workshop);
    if (HasFatalFailure())
        return;
    TDocument& document = workshop.GetDocument();
    const TNodeTypeLibrary& types = workshop.GetApp().GetNodeTypes();
    SearchAt(workshop, 120, 150, "Tab", "effect");
    document.ApplyOperation(new TAddGraphNodeOp(document, *types.FindType("Effect"), 120, 150));
    TToolNode* effect = workshop.GetLast();
    SearchAt(workshop, 620, 150, "Tab", "scalar over life");
    document.ApplyOperation(new TAddGraphNodeOp(document, *types.FindType("Scalar Over Life"), 620, 150));
    TToolNode* curve = workshop.GetLast();

    Screen.Keys({"ctrl+Prior", "p", "Return", "Down"});
    Screen.Save(program.GetMainRectangle(), Screenshot("ports-wire"));
    // Held until it repeats, which takes up no other wire.
    for (int i = 0; i < 4; ++i)
        Screen.HoldKey("Return");
    Screen.LetKey("Return");
    document.ApplyOperation(
        new TAddGraphEdgeOp(document, effect, 0, curve, curve->GetNodeType()->FindInput("Life")));
    CheckFile(program, workshop, true);
    // Along the wire, off with it, and back.
    Screen.Keys({"Right", "Delete", "ctrl+z"});
    document.ApplyOperation(new TDeleteGraphEdgeOp(static_cast<TToolEdge*>(document.GetGraph()->GetEdge(0))));
    document.Undo();
    Screen.Save(program.GetMainRectangle(), Screenshot("ports-walk"));
    CheckFile(program, workshop, false);
    // Back to the output, and a new node for it.
    Screen.Keys({"Left", "space"});
    Screen.Type("age");
    Screen.Key("Return");
    const TVector2 port = GetPortOffset(false, 0, MeasureNode(*effect->GetNodeType())[0]);
    const TVector2 place(static_cast<float>(effect->GetX()) + port[0] + 60,
                         static_cast<float>(effect->GetY()) + port[1]);
    ASSERT_NE(AddNodeToWire(document, *types.FindType("Age"), place, TWireEnd{effect, 0, false}), nullptr);
    CheckFile(program, workshop, false);
    Screen.Key("ctrl+z");
    document.Undo();
    CheckFile(program, workshop, false);
    Exit(program);
}

TEST_F(ProgramGraph, ANodeGoesIntoAWireAndOutOfItAgain)
{
    TProgram program(Screen);
    TWorkshop workshop(Screen, program);
    StartWithNewDocument(program, workshop);
    if (HasFatalFailure())
        return;
    TDocument& document = workshop.GetDocument();
    SearchAt(workshop, 120, 150, "Tab", "effect");
    document.ApplyOperation(
        new TAddGraphNodeOp(document, *workshop.GetApp().GetNodeTypes().FindType("Effect"), 120, 150));
    TToolNode* effect = workshop.GetLast();
    SearchAt(workshop, 520, 150, "Tab", "scalar over life");
    document.ApplyOperation(new TAddGraphNodeOp(
        document, *workshop.GetApp().GetNodeTypes().FindType("Scalar Over Life"), 520, 150));
    TToolNode* curve = workshop.GetLast();
    workshop.Connect(effect, "Time", curve, "Time");
    SearchAt(workshop, 300, 400, "space", "add");
    document.ApplyOperation(
        new TAddGraphNodeOp(document, *workshop.GetApp().GetNodeTypes().FindType("Add"), 300, 400));
    TToolNode* add = workshop.GetLast();
    document.SelectNode(add, true);

    // By its title onto the middle of the wire.
    int fromX = 0;
    int fromY = 0;
    int toX = 0;
    int toY = 0;
    PortAt(workshop, effect, false, "Time", fromX, fromY);
    PortAt(workshop, curve, true, "Time", toX, toY);
    const int titleX = workshop.ScreenX(add->GetX() + 24);
    const int titleY = workshop.ScreenY(add->GetY() + 7);
    Screen.Drag(titleX, titleY, (fromX + toX) / 2, (fromY + toY) / 2);
    {
        const TDocumentStep step(document);
        vector<TToolNode*> moved;
        moved.push_back(add);
        document.ApplyOperation(
            new TMoveGraphNodeOp(moved, (fromX + toX) / 2 - titleX, (fromY + toY) / 2 - titleY));
        TInsertion insertion;
        ASSERT_TRUE(
            FindInsertion(*add, *static_cast<TToolEdge*>(document.GetGraph()->GetEdge(0)), insertion));
        InsertIntoWire(document, add, insertion);
    }
    Screen.Save(program.GetMainRectangle(), Screenshot("wire-insertion"));
    CheckFile(program, workshop, true);
    Screen.Key("ctrl+e");
    EXPECT_TRUE(TakeSelectionOut(document));
    CheckFile(program, workshop, false);
    Screen.Keys({"ctrl+z", "ctrl+z"});
    document.Undo();
    document.Undo();
    EXPECT_EQ(add->GetY() + 7, titleY - workshop.GetGraph().Y);
    CheckFile(program, workshop, false);
    Exit(program);
}

TEST_F(ProgramGraph, ADragThatRestsAtTheEdgeScrollsUntilEscape)
{
    TProgram program(Screen);
    TWorkshop workshop(Screen, program);
    StartWithNewDocument(program, workshop);
    if (HasFatalFailure())
        return;
    TDocument& document = workshop.GetDocument();
    SearchAt(workshop, 150, 120, "Tab", "effect");
    document.ApplyOperation(
        new TAddGraphNodeOp(document, *workshop.GetApp().GetNodeTypes().FindType("Effect"), 150, 120));
    const TToolNode* effect = workshop.GetLast();
    const TRectangle graph = workshop.GetGraph();
    const int titleX = workshop.ScreenX(effect->GetX() + 24);
    const int titleY = workshop.ScreenY(effect->GetY() + 7);
    Screen.MoveTo(titleX, titleY);
    Screen.Press();
    Screen.MoveTo(titleX + 60, titleY);
    Screen.MoveTo(graph.X + graph.Width - 3, titleY);
    // The mouse rests from here on.
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(IsMoving(graph));
    Screen.Save(program.GetMainRectangle(), Screenshot("edge-scroll"));
    Screen.Key("Escape");
    EXPECT_TRUE(Screen.WaitUntilStill(graph));
    Screen.Release();
    CheckFile(program, workshop, true);
    Exit(program);
}

TEST_F(ProgramGraph, ASearchPointsAtTheNodeThatIsMeant)
{
    TProgram program(Screen);
    TWorkshop workshop(Screen, program);
    StartWithNewDocument(program, workshop);
    if (HasFatalFailure())
        return;
    SearchAt(workshop, 120, 80, "Tab", "noise");
    SearchAt(workshop, 140, 240, "Tab", "noise");
    const auto count = [&](int y) {
        constexpr uint32_t PointerColour = 0x1454DB;
        const TPicture picture =
            Screen.Grab(TRectangle{workshop.ScreenX(20), workshop.ScreenY(y - 60), 240, 120});
        return std::count_if(picture.Pixels.begin(), picture.Pixels.end(),
                             [](uint32_t pixel) { return (pixel & 0xFFFFFF) == PointerColour; });
    };
    const auto pointsAt = [&](int y, int other) {
        return WaitUntil([&] { return count(y) > 200 && count(other) < 20; });
    };
    Screen.MoveTo(workshop.ScreenX(420), workshop.ScreenY(300));
    Screen.Key("ctrl+g");
    Screen.Type("noise");
    EXPECT_TRUE(pointsAt(80, 240));
    Screen.Key("Down");
    EXPECT_TRUE(pointsAt(240, 80));
    Screen.Save(program.GetMainRectangle(), Screenshot("search-nodes"));
    Screen.Key("Escape");
    EXPECT_TRUE(WaitUntil([&] { return count(80) == 0 && count(240) == 0; }));
    SaveTo(program, program.Path("hand.effect"));
    Exit(program);
}
