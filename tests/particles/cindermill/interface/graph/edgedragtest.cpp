#include "scenetest.h"

#include "particles/cindermill/graph/operations/addgraphedgeop.h"
#include "particles/cindermill/graph/operations/changegraphedgeop.h"
#include "particles/cindermill/graph/operations/deletegraphedgeop.h"
#include "particles/cindermill/interface/graph/porttext.h"
#include "particles/cindermill/interface/graph/wiring.h"
#include "particles/effectgraph/canconnect.h"

namespace {

class EdgeDrag : public TSceneTest
{
protected:
    const TToolEdgeRenderer& Rubber() { return Canvas().GetRubber(); }
    // The only operation since the count.
    template <class T>
    bool IsLast(int before)
    {
        return NumOperations() == before + 1 &&
               Document.GetOperationStack()->GetOperation(before)->GetClassId() == T::NameID();
    }
    static TToolEdge* EdgeAt(TToolNode* node, const char* input)
    {
        return static_cast<TToolEdge*>(node->GetInput(node->GetNodeType()->FindInput(input)));
    }
};

TEST_F(EdgeDrag, FromAnOutputToAnInputAddsAnEdge)
{
    TToolNode* effect = Add("Effect", 100, 100);
    TToolNode* curve = Add("Scalar Over Life", 400, 100);
    const int before = NumOperations();
    DragTo(Output(effect, "Time"), Input(curve, "Life"));
    EXPECT_TRUE(IsLast<TAddGraphEdgeOp>(before));
    ASSERT_NE(EdgeAt(curve, "Life"), nullptr);
    EXPECT_EQ(EdgeAt(curve, "Life")->GetSrcNode(), effect);
    EXPECT_NE(Scene().FindEdge(EdgeAt(curve, "Life")), nullptr);
    EXPECT_TRUE(InputPort(curve, "Life").IsConnected());
    EXPECT_FALSE(Canvas().HasRubber());
    EXPECT_EQ(Host.Drag, nullptr);
    TToolEdge* edge = EdgeAt(curve, "Life");
    Document.Undo();
    EXPECT_EQ(EdgeAt(curve, "Life"), nullptr);
    EXPECT_EQ(Scene().FindEdge(edge), nullptr);
    EXPECT_FALSE(InputPort(curve, "Life").IsConnected());
    Document.Redo();
    EXPECT_NE(Scene().FindEdge(edge), nullptr);
    EXPECT_EQ(Scene().FindEdge(edge)->GetStyle(), TToolEdgeRenderer::ES_NORMAL);
}

TEST_F(EdgeDrag, FromAnUnconnectedInputToAnOutputAddsAnEdge)
{
    TToolNode* effect = Add("Effect", 100, 100);
    TToolNode* curve = Add("Scalar Over Life", 400, 100);
    const int before = NumOperations();
    DragTo(Input(curve, "Time"), Output(effect, "Time"));
    EXPECT_TRUE(IsLast<TAddGraphEdgeOp>(before));
    ASSERT_NE(EdgeAt(curve, "Time"), nullptr);
    EXPECT_EQ(EdgeAt(curve, "Time")->GetSrcNode(), effect);
}

TEST_F(EdgeDrag, ThePressNeitherSelectsNorMovesTheNode)
{
    TToolNode* effect = Add("Effect", 100, 100);
    DragTo(Output(effect, "Time"), TVector2(600, 400));
    EXPECT_TRUE(Document.GetSelection().empty());
    EXPECT_EQ(effect->GetX(), 100);
}

TEST_F(EdgeDrag, MarksThePortsThatCanTakeTheEdgeAndUnmarksThemAtTheEnd)
{
    TToolNode* effect = Add("Effect", 100, 100);
    TToolNode* curve = Add("Scalar Over Life", 400, 100);
    TToolNode* grid = Add("Grid", 400, 200);
    TToolNode* other = Add("Effect", 400, 300);
    Connect(other, "Time", curve, "Time");
    Press(Output(effect, "Time"));
    EXPECT_TRUE(InputPort(curve, "Life").IsMarked());
    EXPECT_TRUE(InputPort(grid, "Emission Trigger").IsMarked());
    // One that is taken would get the new edge instead.
    EXPECT_TRUE(InputPort(curve, "Time").IsMarked());
    // Of another type, an output, its own.
    EXPECT_FALSE(InputPort(grid, "Transform").IsMarked());
    EXPECT_FALSE(OutputPort(curve, "Value").IsMarked());
    EXPECT_FALSE(OutputPort(effect, "Time").IsMarked());
    Release(TVector2(700, 500));
    EXPECT_FALSE(InputPort(curve, "Life").IsMarked());
    EXPECT_FALSE(InputPort(grid, "Emission Trigger").IsMarked());
}

TEST_F(EdgeDrag, MarksOutputsForADragFromAnInput)
{
    TToolNode* effect = Add("Effect", 100, 100);
    TToolNode* cone = Add("Velocity Cone", 100, 200);
    TToolNode* grid = Add("Grid", 400, 100);
    Press(Input(grid, "Emission Trigger"));
    EXPECT_TRUE(OutputPort(effect, "Time").IsMarked());
    EXPECT_EQ(OutputPort(cone, "Velocity").IsMarked(),
              CanConnect(cone, 0, grid, grid->GetNodeType()->FindInput("Emission Trigger")));
    EXPECT_FALSE(InputPort(cone, "Direction").IsMarked());
    EXPECT_FALSE(OutputPort(grid, "Start Transform").IsMarked());
    Release(TVector2(700, 500));
}

TEST_F(EdgeDrag, ALoopIsRefused)
{
    TToolNode* first = Add("Add", 100, 100);
    TToolNode* second = Add("Add", 400, 100);
    Connect(first, "Sum", second, "A");
    const int before = NumOperations();
    DragTo(Output(second, "Sum"), Input(first, "B"));
    EXPECT_EQ(NumOperations(), before);
    EXPECT_EQ(EdgeAt(first, "B"), nullptr);
}

TEST_F(EdgeDrag, ANodeIsNotConnectedToItself)
{
    TToolNode* node = Add("Add", 100, 100);
    const int before = NumOperations();
    DragTo(Output(node, "Sum"), Input(node, "A"));
    DragTo(Input(node, "A"), Output(node, "Sum"));
    EXPECT_EQ(NumOperations(), before);
}

TEST_F(EdgeDrag, TwoPortsOfOneKindAreNotConnected)
{
    TToolNode* a = Add("Add", 100, 100);
    TToolNode* b = Add("Add", 400, 100);
    const int before = NumOperations();
    DragTo(Output(a, "Sum"), Output(b, "Sum"));
    DragTo(Input(a, "A"), Input(b, "A"));
    EXPECT_EQ(NumOperations(), before);
}

TEST_F(EdgeDrag, OtherTypesAreRefused)
{
    TToolNode* effect = Add("Effect", 100, 100);
    TToolNode* grid = Add("Grid", 400, 100);
    const int before = NumOperations();
    DragTo(Output(effect, "Time"), Input(grid, "Transform"));
    EXPECT_EQ(NumOperations(), before);
}

TEST_F(EdgeDrag, AWireDroppedOnATakenInputReplacesTheOneThere)
{
    TToolNode* effect = Add("Effect", 100, 100);
    TToolNode* other = Add("Effect", 100, 200);
    TToolNode* curve = Add("Scalar Over Life", 400, 100);
    TToolEdge* edge = Connect(effect, "Time", curve, "Time");
    const int before = NumOperations();
    DragTo(Output(other, "Time"), Input(curve, "Time"));
    EXPECT_TRUE(IsLast<TChangeGraphEdgeOp>(before));
    EXPECT_EQ(EdgeAt(curve, "Time"), edge);
    EXPECT_EQ(edge->GetSrcNode(), other);
    EXPECT_FALSE(OutputPort(effect, "Time").IsConnected());
    EXPECT_EQ(Document.GetGraph()->GetNumEdges(), 1);
    Document.Undo();
    EXPECT_EQ(edge->GetSrcNode(), effect);
    EXPECT_TRUE(OutputPort(effect, "Time").IsConnected());
    Document.Redo();
    EXPECT_EQ(edge->GetSrcNode(), other);
}

TEST_F(EdgeDrag, TheWireThatIsThereAlreadyIsNoEdit)
{
    TToolNode* effect = Add("Effect", 100, 100);
    TToolNode* curve = Add("Scalar Over Life", 400, 100);
    Connect(effect, "Time", curve, "Time");
    const int before = NumOperations();
    DragTo(Output(effect, "Time"), Input(curve, "Time"));
    EXPECT_EQ(NumOperations(), before);
    EXPECT_EQ(Host.Status, "The two are wired already");
}

TEST_F(EdgeDrag, AnEdgePickedUpReplacesAnotherInOneStep)
{
    TToolNode* effect = Add("Effect", 100, 100);
    TToolNode* other = Add("Effect", 100, 300);
    TToolNode* curve = Add("Scalar Over Life", 400, 100);
    TToolEdge* moved = Connect(effect, "Time", curve, "Time");
    TToolEdge* replaced = Connect(other, "Time", curve, "Life");
    DragTo(Input(curve, "Time"), Input(curve, "Life"));
    EXPECT_EQ(EdgeAt(curve, "Time"), nullptr);
    EXPECT_EQ(EdgeAt(curve, "Life"), moved);
    EXPECT_EQ(Document.GetGraph()->GetNumEdges(), 1);
    Document.Undo();
    EXPECT_EQ(EdgeAt(curve, "Time"), moved);
    EXPECT_EQ(EdgeAt(curve, "Life"), replaced);
    EXPECT_EQ(Document.GetGraph()->GetNumEdges(), 2);
    Document.Redo();
    EXPECT_EQ(EdgeAt(curve, "Life"), moved);
    EXPECT_EQ(EdgeAt(curve, "Time"), nullptr);
}

TEST_F(EdgeDrag, ANewWireLetGoInEmptySpaceIsSearchedFor)
{
    TToolNode* effect = Add("Effect", 100, 100);
    TToolNode* curve = Add("Scalar Over Life", 400, 100);
    DragTo(Output(effect, "Time"), TVector2(600, 500));
    ASSERT_EQ(Host.Searches.size(), 1u);
    EXPECT_EQ(Host.Searches[0].Place, TVector2(600, 500));
    EXPECT_EQ(Host.Searches[0].End.Node, effect);
    EXPECT_EQ(Host.Searches[0].End.Port, effect->GetNodeType()->FindOutput("Time"));
    EXPECT_FALSE(Host.Searches[0].End.IsInput);
    DragTo(Input(curve, "Life"), TVector2(300, 500));
    ASSERT_EQ(Host.Searches.size(), 2u);
    EXPECT_EQ(Host.Searches[1].End.Node, curve);
    EXPECT_TRUE(Host.Searches[1].End.IsInput);
    // Upon a node, outside of the view, the end of an edge that was there, a click.
    DragTo(Output(effect, "Time"), TitleOf(effect));
    DragTo(Output(effect, "Time"), TVector2(900, 500));
    Connect(effect, "Time", curve, "Time");
    DragTo(Input(curve, "Time"), TVector2(600, 500));
    Click(Output(effect, "Time"));
    EXPECT_EQ(Host.Searches.size(), 2u);
}

TEST_F(EdgeDrag, WhyAWireWasRefusedIsTold)
{
    TToolNode* first = Add("Add", 100, 100);
    TToolNode* second = Add("Add", 400, 100);
    TToolNode* effect = Add("Effect", 100, 300);
    TToolNode* grid = Add("Grid", 400, 300);
    Connect(first, "Sum", second, "A");
    EXPECT_EQ(Host.Status, "");
    DragTo(Output(second, "Sum"), Input(first, "B"));
    EXPECT_EQ(Host.Status, "The wire would run in a circle");
    DragTo(Output(second, "Sum"), Input(second, "B"));
    EXPECT_EQ(Host.Status, "A node cannot be wired to itself");
    DragTo(Output(first, "Sum"), Output(second, "Sum"));
    EXPECT_EQ(Host.Status, "Two outputs cannot be wired");
    DragTo(Input(first, "A"), Input(second, "B"));
    EXPECT_EQ(Host.Status, "Two inputs cannot be wired");
    DragTo(Output(effect, "Time"), Input(grid, "Transform"));
    EXPECT_EQ(Host.Status,
              "\"Time\" of Effect is a Scalar, which \"Transform\" of Grid (Transform) does not take");
}

// What keeps a wire away is read to its end, however long the names are.
TEST_F(EdgeDrag, ARefusalShortensNamesOfTheGreatestLength)
{
    const std::string inner(4083, 'x');
    const auto name = [&](TToolNode* node) {
        node->GetNodeType()->Name = ("Begin" + inner + "the end").c_str();
        return node;
    };
    TToolNode* effect = name(Add("Effect", 100, 300));
    TToolNode* grid = name(Add("Grid", 9000, 300));
    const int transform = grid->GetNodeType()->FindInput("Transform");
    grid->GetNodeType()->GetInput(transform)->Name = ("Place" + inner + "in\nspace").c_str();
    const std::string told = "Begin" + std::string(9, 'x') + "..." + std::string(6, 'x') + "the end";
    ASSERT_EQ(told.size(), 30u);
    TString text;
    GetWireRefusal(effect, 0, grid, transform, text);
    EXPECT_EQ(Text(text), "\"Time\" of " + told + " is a Scalar, which \"Place" + std::string(9, 'x') +
                              "..." + std::string(5, 'x') + "in space\" of " + told +
                              " (Transform) does not take");
    const TPort& port = Object(effect).GetPort(false, 0);
    TellPortName(port, text);
    EXPECT_EQ(Text(text), told + ", Time");
    Connect(effect, "Time", name(Add("Scalar Over Life", 20000, 300)), "Time");
    TellPort(port, text);
    EXPECT_EQ(Text(text), "Scalar, wired to " + told + ", Time");
}

TEST_F(EdgeDrag, ANewEdgeReleasedOverNothingIsNone)
{
    TToolNode* effect = Add("Effect", 100, 100);
    const int before = NumOperations();
    DragTo(Output(effect, "Time"), TVector2(600, 500));
    EXPECT_EQ(NumOperations(), before);
    EXPECT_EQ(Document.GetGraph()->GetNumEdges(), 0);
}

TEST_F(EdgeDrag, AClickOnAnOutputIsNoEdge)
{
    TToolNode* effect = Add("Effect", 100, 100);
    const int before = NumOperations();
    Click(Output(effect, "Time"));
    EXPECT_EQ(NumOperations(), before);
    EXPECT_FALSE(Canvas().IsDragging());
}

TEST_F(EdgeDrag, AnEdgePickedUpAtItsInputMovesToAnotherInput)
{
    TToolNode* effect = Add("Effect", 100, 100);
    TToolNode* curve = Add("Scalar Over Life", 400, 100);
    TToolNode* other = Add("Age", 400, 250);
    TToolEdge* edge = Connect(effect, "Time", curve, "Time");
    const int before = NumOperations();
    DragTo(Input(curve, "Time"), Input(other, "Max Age"));
    EXPECT_TRUE(IsLast<TChangeGraphEdgeOp>(before));
    EXPECT_EQ(EdgeAt(curve, "Time"), nullptr);
    EXPECT_EQ(EdgeAt(other, "Max Age"), edge);
    EXPECT_FALSE(InputPort(curve, "Time").IsConnected());
    EXPECT_TRUE(InputPort(other, "Max Age").IsConnected());
    EXPECT_FALSE(Scene().FindEdge(edge)->IsHidden());
    EXPECT_EQ(Scene().FindEdge(edge)->GetCurve()[3], Input(other, "Max Age"));
    Document.Undo();
    EXPECT_EQ(EdgeAt(curve, "Time"), edge);
    EXPECT_EQ(Scene().FindEdge(edge)->GetCurve()[3], Input(curve, "Time"));
    EXPECT_TRUE(InputPort(curve, "Time").IsConnected());
}

TEST_F(EdgeDrag, AnEdgePickedUpMovesToAnotherInputOfTheSameNode)
{
    TToolNode* effect = Add("Effect", 100, 100);
    TToolNode* curve = Add("Scalar Over Life", 400, 100);
    TToolEdge* edge = Connect(effect, "Time", curve, "Time");
    DragTo(Input(curve, "Time"), Input(curve, "Life"));
    EXPECT_EQ(EdgeAt(curve, "Time"), nullptr);
    EXPECT_EQ(EdgeAt(curve, "Life"), edge);
}

TEST_F(EdgeDrag, AnEdgesEndReleasedOverNothingDeletesTheEdge)
{
    TToolNode* effect = Add("Effect", 100, 100);
    TToolNode* curve = Add("Scalar Over Life", 400, 100);
    TToolEdge* edge = Connect(effect, "Time", curve, "Time");
    const int before = NumOperations();
    DragTo(Input(curve, "Time"), TVector2(600, 500));
    EXPECT_TRUE(IsLast<TDeleteGraphEdgeOp>(before));
    EXPECT_EQ(EdgeAt(curve, "Time"), nullptr);
    EXPECT_EQ(Scene().FindEdge(edge), nullptr);
    EXPECT_FALSE(OutputPort(effect, "Time").IsConnected());
    Document.Undo();
    EXPECT_EQ(EdgeAt(curve, "Time"), edge);
    ASSERT_NE(Scene().FindEdge(edge), nullptr);
    EXPECT_FALSE(Scene().FindEdge(edge)->IsHidden());
    EXPECT_TRUE(OutputPort(effect, "Time").IsConnected());
}

TEST_F(EdgeDrag, AnEdgesEndPutBackWhereItWasChangesNothing)
{
    TToolNode* effect = Add("Effect", 100, 100);
    TToolNode* curve = Add("Scalar Over Life", 400, 100);
    TToolEdge* edge = Connect(effect, "Time", curve, "Time");
    const int before = NumOperations();
    Click(Input(curve, "Time"));
    DragTo(Input(curve, "Time"), Input(curve, "Time") + TVector2(3, 2));
    EXPECT_EQ(NumOperations(), before);
    EXPECT_EQ(EdgeAt(curve, "Time"), edge);
    EXPECT_FALSE(Scene().FindEdge(edge)->IsHidden());
}

TEST_F(EdgeDrag, AnEdgesEndReleasedOverAPortThatRefusesItStays)
{
    TToolNode* effect = Add("Effect", 100, 100);
    TToolNode* curve = Add("Scalar Over Life", 400, 100);
    TToolNode* grid = Add("Grid", 400, 250);
    TToolEdge* edge = Connect(effect, "Time", curve, "Time");
    const int before = NumOperations();
    DragTo(Input(curve, "Time"), Input(grid, "Transform"));
    EXPECT_EQ(NumOperations(), before);
    EXPECT_EQ(EdgeAt(curve, "Time"), edge);
}

TEST_F(EdgeDrag, ThePickedEdgeDoesNotStandInItsOwnWay)
{
    // Wired to a vector, the constant gives vectors only; its edge may still go where a transform is wanted.
    TToolNode* constant = Add("Constant", 100, 100);
    TToolNode* cone = Add("Velocity Cone", 400, 100);
    TToolNode* grid = Add("Grid", 400, 250);
    Connect(constant, "Result", cone, "Direction");
    const int scale = grid->GetNodeType()->FindInput("Transform");
    ClearCanConnectCache();
    TToolNode* fresh = Add("Constant", 100, 300);
    const bool free = CanConnect(fresh, 0, grid, scale);
    Press(Input(cone, "Direction"));
    EXPECT_EQ(InputPort(grid, "Transform").IsMarked(), free);
    EXPECT_TRUE(InputPort(cone, "Direction").IsMarked());
    Canvas().CancelDrag();
    EXPECT_TRUE(free);
}

TEST_F(EdgeDrag, PickingAnEdgeUpKeepsTheOrderOfItsOutputsEdges)
{
    TToolNode* effect = Add("Effect", 100, 100);
    TToolNode* curve = Add("Scalar Over Life", 400, 100);
    TToolNode* age = Add("Age", 400, 250);
    TToolEdge* first = Connect(effect, "Time", curve, "Time");
    TToolEdge* second = Connect(effect, "Time", curve, "Life");
    TToolEdge* third = Connect(effect, "Time", age, "Age");
    Press(Input(curve, "Life"));
    Drag(TVector2(600, 500));
    Canvas().CancelDrag();
    ASSERT_EQ(effect->GetNumOutputEdges(0), 3);
    EXPECT_EQ(effect->GetOutputEdge(0, 0), first);
    EXPECT_EQ(effect->GetOutputEdge(0, 1), second);
    EXPECT_EQ(effect->GetOutputEdge(0, 2), third);
    EXPECT_EQ(EdgeAt(curve, "Life"), second);
    EXPECT_FALSE(Scene().FindEdge(second)->IsHidden());
}

TEST_F(EdgeDrag, ADragMayEndAnywhereInThePortsRow)
{
    TToolNode* effect = Add("Effect", 100, 100);
    TToolNode* curve = Add("Scalar Over Life", 400, 100);
    DragTo(Output(effect, "Time"), Input(curve, "Life") + TVector2(20, 4));
    EXPECT_NE(EdgeAt(curve, "Life"), nullptr);
}

TEST_F(EdgeDrag, ANewWireLetGoOnANodeGoesToThePortThatItMeans)
{
    TToolNode* cone = Add("Velocity Cone", 100, 100);
    TToolNode* integrate = Add("Integrate", 400, 100);
    const int before = NumOperations();
    Press(Output(cone, "Velocity"));
    Drag(TitleOf(integrate));
    // It is seen where it would go.
    EXPECT_TRUE(InputPort(integrate, "Velocity").IsAimedAt());
    EXPECT_EQ(Canvas().GetRubber().GetCurve()[3], Input(integrate, "Velocity"));
    Release(TitleOf(integrate));
    ASSERT_NE(EdgeAt(integrate, "Velocity"), nullptr);
    EXPECT_EQ(EdgeAt(integrate, "Velocity")->GetSrcNode(), cone);
    EXPECT_EQ(NumOperations(), before + 1);
    EXPECT_TRUE(Host.Searches.empty());

    // From an input back to an output, which may have other wires.
    TToolNode* other = Add("Integrate", 400, 400);
    DragTo(Input(other, "Velocity"), TitleOf(cone));
    ASSERT_NE(EdgeAt(other, "Velocity"), nullptr);
    EXPECT_EQ(EdgeAt(other, "Velocity")->GetSrcNode(), cone);
}

TEST_F(EdgeDrag, ANewWireLetGoOnANodeTakesNoOtherWiresPlace)
{
    TToolNode* effect = Add("Effect", 100, 100);
    TToolNode* add = Add("Add", 400, 100);
    TToolEdge* first = Connect(effect, "Time", add, "A");
    TToolNode* second = Add("Effect", 100, 300);
    DragTo(Output(second, "Time"), TitleOf(add));
    EXPECT_EQ(EdgeAt(add, "A"), first);
    ASSERT_NE(EdgeAt(add, "B"), nullptr);
    EXPECT_EQ(EdgeAt(add, "B")->GetSrcNode(), second);
    const int before = NumOperations();
    TToolNode* third = Add("Effect", 100, 500);
    DragTo(Output(third, "Time"), TitleOf(add));
    EXPECT_EQ(NumOperations(), before + 1);
    EXPECT_EQ(Host.Status, "Add has no free input that takes the wire");
}

TEST_F(EdgeDrag, TheEndOfAnOldWireLetGoOnANodeIsOffAllTheSame)
{
    TToolNode* effect = Add("Effect", 100, 100);
    TToolNode* add = Add("Add", 400, 100);
    TToolNode* other = Add("Add", 400, 400);
    Connect(effect, "Time", add, "A");
    const int before = NumOperations();
    Press(Input(add, "A"));
    Drag(TitleOf(other));
    EXPECT_FALSE(InputPort(other, "A").IsAimedAt());
    Release(TitleOf(other));
    EXPECT_TRUE(IsLast<TDeleteGraphEdgeOp>(before));
    EXPECT_EQ(Document.GetGraph()->GetNumEdges(), 0);
}

TEST_F(EdgeDrag, OutsideTheViewThereIsNothingToConnectTo)
{
    TToolNode* effect = Add("Effect", 100, 100);
    TToolNode* seen = Add("Scalar Over Life", 400, 100);
    TToolNode* hidden = Add("Scalar Over Life", 900, 100);
    const int before = NumOperations();
    DragTo(Output(effect, "Time"), Input(hidden, "Time"));
    EXPECT_EQ(NumOperations(), before);
    EXPECT_EQ(EdgeAt(hidden, "Time"), nullptr);
    Connect(effect, "Time", seen, "Time");
    const int connected = NumOperations();
    DragTo(Input(seen, "Time"), Input(hidden, "Time"));
    EXPECT_TRUE(IsLast<TDeleteGraphEdgeOp>(connected));
}

TEST_F(EdgeDrag, EscapeEndsIt)
{
    TToolNode* effect = Add("Effect", 100, 100);
    TToolNode* curve = Add("Scalar Over Life", 400, 100);
    TToolEdge* edge = Connect(effect, "Time", curve, "Time");
    const int before = NumOperations();
    Press(Input(curve, "Time"));
    Drag(TVector2(600, 500));
    EXPECT_TRUE(Key(KEY_ESCAPE));
    EXPECT_FALSE(Canvas().HasRubber());
    EXPECT_FALSE(InputPort(curve, "Life").IsMarked());
    Release(TVector2(600, 500));
    EXPECT_EQ(NumOperations(), before);
    EXPECT_EQ(EdgeAt(curve, "Time"), edge);
}

TEST_F(EdgeDrag, TheViewScrollsAtItsEdges)
{
    TToolNode* effect = Add("Effect", 100, 100);
    Press(Output(effect, "Time"));
    Drag(TVector2(795, 300));
    EXPECT_EQ(Host.ScrolledAt, std::make_pair(795.0, 300.0));
    Canvas().CancelDrag();
}

TEST_F(EdgeDrag, TheRubberEdgesFreeEndPointsAtItsOther)
{
    TToolNode* effect = Add("Effect", 100, 100);
    Press(Output(effect, "Time"));
    const TVector2 from = Output(effect, "Time");
    Drag(TVector2(600, 400));
    ASSERT_TRUE(Canvas().HasRubber());
    const TVector2 to(600, 400);
    const float half = (to - from).Length() * 0.5f;
    TVector2 back = from - to;
    back.Normalise();
    EXPECT_EQ(Rubber().GetCurve()[0], from);
    EXPECT_EQ(Rubber().GetCurve()[1], from + TVector2(half, 0));
    EXPECT_NEAR((Rubber().GetCurve()[2] - (to + back * half)).Length(), 0, 1e-3);
    EXPECT_EQ(Rubber().GetCurve()[3], to);
    EXPECT_NE(Rubber().GetStyle(), 2);
    Canvas().CancelDrag();
}

TEST_F(EdgeDrag, TheRubberEdgeFromAnInputHasItsFreeEndAtTheSource)
{
    TToolNode* curve = Add("Scalar Over Life", 400, 100);
    const TVector2 to = Input(curve, "Time");
    Press(to);
    Drag(TVector2(200, 300));
    EXPECT_EQ(Rubber().GetCurve()[0], TVector2(200, 300));
    EXPECT_EQ(Rubber().GetCurve()[3], to);
    EXPECT_EQ(Rubber().GetCurve()[2][1], to[1]);
    EXPECT_LT(Rubber().GetCurve()[2][0], to[0]);
    Canvas().CancelDrag();
}

TEST_F(EdgeDrag, AnEdgeOverAPortThatTakesItHasStyle2AndWidth4)
{
    TToolNode* effect = Add("Effect", 100, 100);
    TToolNode* curve = Add("Scalar Over Life", 400, 100);
    Press(Output(effect, "Time"));
    Drag(Input(curve, "Life") + TVector2(2, 1));
    EXPECT_EQ(Rubber().GetStyle(), 2);
    EXPECT_EQ(Rubber().GetWidth(), 4.0f);
    EXPECT_EQ(Rubber().GetCurve()[3], Input(curve, "Life"));
    EXPECT_TRUE(InputPort(curve, "Life").IsAimedAt());
    Drag(TVector2(600, 500));
    EXPECT_NE(Rubber().GetStyle(), 2);
    EXPECT_LT(Rubber().GetWidth(), 4.0f);
    EXPECT_FALSE(InputPort(curve, "Life").IsAimedAt());
    Canvas().CancelDrag();
}

TEST_F(EdgeDrag, TheRubberEdgeStandsInFrontAndThePickedEdgeIsHidden)
{
    TToolNode* effect = Add("Effect", 100, 100);
    TToolNode* curve = Add("Scalar Over Life", 400, 100);
    TToolEdge* edge = Connect(effect, "Time", curve, "Time");
    Press(Input(curve, "Time"));
    EXPECT_EQ(Canvas().GetObjects().back(), &Rubber());
    EXPECT_TRUE(Scene().FindEdge(edge)->IsHidden());
    Canvas().CancelDrag();
    EXPECT_FALSE(Scene().FindEdge(edge)->IsHidden());
}

TEST_F(EdgeDrag, AChangeOfTheGraphMeanwhileEndsIt)
{
    TToolNode* effect = Add("Effect", 100, 100);
    TToolNode* curve = Add("Scalar Over Life", 400, 100);
    Connect(effect, "Time", curve, "Time");
    Press(Input(curve, "Time"));
    Document.Undo();
    EXPECT_FALSE(Canvas().IsDragging());
    Release(TVector2(600, 500));
    EXPECT_EQ(Document.GetGraph()->GetNumEdges(), 0);
}

TEST_F(EdgeDrag, ACurveLeavesTheSourceToTheRightAndEntersTheDestinationFromTheLeft)
{
    TToolNode* effect = Add("Effect", 300, 100);
    TToolNode* curve = Add("Scalar Over Life", 100, 250);
    TToolEdge* edge = Connect(effect, "Time", curve, "Life");
    const TVector2* points = Scene().FindEdge(edge)->GetCurve();
    const TVector2 from = Output(effect, "Time");
    const TVector2 to = Input(curve, "Life");
    const float half = (to - from).Length() * 0.5f;
    EXPECT_EQ(points[0], from);
    EXPECT_EQ(points[1], from + TVector2(half, 0));
    EXPECT_EQ(points[2], to - TVector2(half, 0));
    EXPECT_EQ(points[3], to);
}

TEST_F(EdgeDrag, AnEdgeWithoutAnyNodeIsAnAssertion)
{
    TToolEdgeRenderer renderer(Scene());
    EXPECT_EQ(AssertionOf([&] { renderer.Init(nullptr, 0, nullptr, 0); }), "output != 0 || input != 0");
}

TEST_F(EdgeDrag, AnEdgeWhoseEndsCoincideHasACurve)
{
    TToolNode* effect = Add("Effect", 100, 100);
    TToolEdgeRenderer renderer(Scene());
    renderer.Init(&Object(effect), 0, nullptr, 0);
    renderer.SetFreeEnd(Output(effect, "Time"));
    renderer.Layout();
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(renderer.GetCurve()[i], Output(effect, "Time"));
}

} // namespace
