#include "scenetest.h"

#include "particles/cindermill/graph/operations/addgraphedgeop.h"
#include "particles/cindermill/graph/operations/changegraphedgeop.h"
#include "particles/cindermill/graph/operations/deletegraphedgeop.h"
#include "particles/cindermill/graph/operations/deletegraphnodeop.h"

#include <set>

namespace {

// The pan of a view, say.
class TOtherDrag : public TMouseDrag
{
public:
    void OnMouseMove(double, double, int) override {}
};

// The ports of a graph under the keys.
class PortWalk : public TSceneTest
{
protected:
    TPortWalk& Walk() { return Scene().GetPortWalk(); }
    // From the node on, which is selected as it would be.
    void Enter(TToolNode* node)
    {
        Document.SelectNode(node, true);
        ASSERT_TRUE(Walk().Enter(*node, Renderer));
    }
    void EnterAt(TPort& port)
    {
        Document.SelectNode(port.GetNode()->GetToolNode(), true);
        Walk().EnterAt(port, Renderer);
    }
    bool Keys(std::initializer_list<int> keys)
    {
        bool taken = true;
        for (const int key : keys)
            taken = Key(key) && taken;
        return taken;
    }
    bool Character(char character)
    {
        TMessage message;
        message.Type = MT_CHAR;
        message.Character = static_cast<uint32_t>(character);
        return TRenderObject::Route(Renderer, Scene().GetRoot(), message);
    }
    // As "in Velocity of Gravity"; "" for none.
    std::string Marked()
    {
        const TPort* port = Walk().GetMarked();
        if (port == nullptr)
            return "";
        return (port->IsInput() ? "in " : "out ") + Text(port->GetLabel()) + " of " +
               Text(port->GetNode()->GetToolNode()->GetNodeType()->Name);
    }
    static TToolEdge* EdgeAt(TToolNode* node, const char* input)
    {
        return static_cast<TToolEdge*>(node->GetInput(node->GetNodeType()->FindInput(input)));
    }
    template <class T>
    bool IsLast(int before)
    {
        return NumOperations() == before + 1 &&
               Document.GetOperationStack()->GetOperation(before)->GetClassId() == T::NameID();
    }
    // Nothing is left of a wire on its way.
    void ExpectNoWire()
    {
        EXPECT_FALSE(Walk().IsWiring());
        EXPECT_FALSE(Canvas().GetDraft().IsOn());
        EXPECT_FALSE(Canvas().HasRubber());
        const TEffectGraph& graph = *Document.GetGraph();
        for (int i = 0; i < graph.GetNumNodes(); ++i) {
            TNodeObj& object = Object(static_cast<TToolNode*>(graph.GetNode(i)));
            for (const bool input : {true, false})
                for (int n = 0; n < object.GetNumPorts(input); ++n) {
                    EXPECT_FALSE(object.GetPort(input, n).IsMarked());
                    EXPECT_FALSE(object.GetPort(input, n).IsAimedAt());
                }
        }
        for (int i = 0; i < graph.GetNumEdges(); ++i)
            EXPECT_FALSE(Scene().FindEdge(static_cast<TToolEdge*>(graph.GetEdge(i)))->IsHidden());
    }
    void ExpectEnded()
    {
        EXPECT_FALSE(Walk().IsOn());
        EXPECT_EQ(Marked(), "");
        EXPECT_NE(TRenderObject::GetFocus(), &Walk());
        ExpectNoWire();
    }
};

TEST_F(PortWalk, TheArrowsLeadThroughTheInputsAndTheOutputs)
{
    TToolNode* emitter = Add("Emitter", 100, 100);
    Enter(emitter);
    EXPECT_EQ(TRenderObject::GetFocus(), &Walk());
    EXPECT_EQ(Marked(), "in Rate of Emitter");
    EXPECT_EQ(Host.Status, "Emitter, Rate: Scalar, not wired");
    EXPECT_TRUE(Key(KEY_DOWN));
    EXPECT_EQ(Marked(), "in Start Delay of Emitter");
    // It ends there.
    EXPECT_TRUE(Key(KEY_DOWN));
    EXPECT_EQ(Marked(), "in Start Delay of Emitter");
    EXPECT_TRUE(Key(KEY_RIGHT));
    EXPECT_EQ(Marked(), "out Time of Emitter");
    EXPECT_TRUE(Key(KEY_UP));
    EXPECT_EQ(Marked(), "out Count of Emitter");
    EXPECT_TRUE(Keys({KEY_UP, KEY_END}));
    EXPECT_EQ(Marked(), "out Time of Emitter");
    EXPECT_TRUE(Key(KEY_HOME));
    EXPECT_EQ(Marked(), "out Count of Emitter");
    EXPECT_TRUE(Keys({KEY_LEFT, KEY_END}));
    EXPECT_EQ(Marked(), "in Start Delay of Emitter");
    EXPECT_TRUE(Key(KEY_ESCAPE));
    ExpectEnded();
    EXPECT_EQ(TRenderObject::GetFocus(), &Scene().GetRoot());
    EXPECT_EQ(Document.GetSelection().size(), 1);
}

TEST_F(PortWalk, ANodeWithOutputsAloneBeginsWithThese)
{
    TToolNode* effect = Add("Effect", 100, 100);
    Enter(effect);
    EXPECT_EQ(Marked(), "out Time of Effect");
    // There is no other side.
    EXPECT_TRUE(Key(KEY_LEFT));
    EXPECT_EQ(Marked(), "out Time of Effect");
}

TEST_F(PortWalk, AKeyFollowsAWireToItsOtherEndAndTheNodeThereIsSelected)
{
    TToolNode* effect = Add("Effect", 100, 100);
    TToolNode* age = Add("Age", 400, 300);
    TToolNode* curve = Add("Scalar Over Life", 400, 100);
    Connect(effect, "Time", age, "Max Age");
    Connect(effect, "Time", curve, "Life");
    Connect(effect, "Time", curve, "Time");
    const int before = NumOperations();
    Enter(effect);
    EXPECT_EQ(Host.Status, "Effect, Time: Scalar, wired to 3 inputs: Age, Max Age; Scalar Over Life, Life; "
                           "Scalar Over Life, Time");
    // The first as one reads, not as they were made.
    EXPECT_TRUE(Key(KEY_RIGHT));
    EXPECT_EQ(Marked(), "in Time of Scalar Over Life");
    EXPECT_EQ(Host.Status, "Scalar Over Life, Time: Scalar, wired from Effect, Time");
    ASSERT_EQ(Document.GetSelection().size(), 1);
    EXPECT_EQ(Document.GetSelection()[0], curve);
    // And the others that it feeds.
    EXPECT_TRUE(Key(KEY_PAGEDOWN));
    EXPECT_EQ(Marked(), "in Life of Scalar Over Life");
    EXPECT_TRUE(Key(KEY_PAGEDOWN));
    EXPECT_EQ(Marked(), "in Max Age of Age");
    EXPECT_TRUE(Key(KEY_PAGEDOWN));
    EXPECT_EQ(Marked(), "in Max Age of Age");
    EXPECT_TRUE(Key(KEY_PAGEUP));
    EXPECT_EQ(Marked(), "in Life of Scalar Over Life");
    EXPECT_TRUE(Key(KEY_LEFT));
    EXPECT_EQ(Marked(), "out Time of Effect");
    EXPECT_EQ(Document.GetSelection()[0], effect);
    // Where nothing is wired it stays.
    EnterAt(OutputPort(curve, "Value"));
    EXPECT_TRUE(Key(KEY_RIGHT));
    EXPECT_EQ(Marked(), "out Value of Scalar Over Life");
    EXPECT_EQ(NumOperations(), before);
}

TEST_F(PortWalk, ReturnTakesUpAWireTheArrowsLeadItToWhatTakesItAndReturnWires)
{
    TToolNode* effect = Add("Effect", 100, 100);
    TToolNode* curve = Add("Scalar Over Life", 400, 100);
    TToolNode* grid = Add("Grid", 400, 300);
    Enter(effect);
    EXPECT_TRUE(Key(KEY_RETURN));
    EXPECT_TRUE(Walk().IsWiring());
    EXPECT_EQ(Marked(), "in Time of Scalar Over Life");
    EXPECT_TRUE(Canvas().HasRubber());
    EXPECT_EQ(Canvas().GetRubber().GetCurve()[3], Input(curve, "Time"));
    EXPECT_TRUE(InputPort(curve, "Time").IsAimedAt());
    EXPECT_EQ(Host.Status, "Wire from Effect, Time to Scalar Over Life, Time: Scalar, not wired");
    // Only what can take it.
    std::set<TPort*> walked;
    walked.insert(Walk().GetMarked());
    for (int i = 0; i < 20; ++i) {
        EXPECT_TRUE(Key(KEY_DOWN));
        walked.insert(Walk().GetMarked());
    }
    EXPECT_EQ(walked.count(&InputPort(curve, "Life")), 1u);
    EXPECT_EQ(walked.count(&InputPort(grid, "Emission Trigger")), 1u);
    for (const TPort* port : walked)
        EXPECT_TRUE(port->IsMarked());
    size_t marked = 0;
    for (TToolNode* node : {effect, curve, grid})
        for (const bool input : {true, false})
            for (int i = 0; i < Object(node).GetNumPorts(input); ++i)
                marked += Object(node).GetPort(input, i).IsMarked();
    EXPECT_EQ(walked.size(), marked);
    // Node by node, and to both ends.
    EXPECT_TRUE(Key(KEY_HOME));
    EXPECT_EQ(Marked(), "in Time of Scalar Over Life");
    EXPECT_TRUE(Key(KEY_RIGHT));
    EXPECT_EQ(Walk().GetMarked()->GetNode(), &Object(grid));
    EXPECT_TRUE(Keys({KEY_END, KEY_LEFT}));
    EXPECT_EQ(Marked(), "in Time of Scalar Over Life");
    EXPECT_TRUE(Keys({KEY_DOWN}));
    EXPECT_EQ(Marked(), "in Life of Scalar Over Life");
    // Nothing is selected meanwhile but the node where the wire was taken up.
    ASSERT_EQ(Document.GetSelection().size(), 1);
    EXPECT_EQ(Document.GetSelection()[0], effect);
    const int before = NumOperations();
    EXPECT_TRUE(Key(KEY_RETURN));
    EXPECT_TRUE(IsLast<TAddGraphEdgeOp>(before));
    ASSERT_NE(EdgeAt(curve, "Life"), nullptr);
    EXPECT_EQ(EdgeAt(curve, "Life")->GetSrcNode(), effect);
    ExpectNoWire();
    // It goes on where the wire was taken up.
    EXPECT_EQ(Marked(), "out Time of Effect");
    EXPECT_EQ(Host.Status, "Effect, Time: Scalar, wired to Scalar Over Life, Life");
    Document.Undo();
    EXPECT_EQ(Document.GetGraph()->GetNumEdges(), 0);
    EXPECT_EQ(Marked(), "out Time of Effect");
}

TEST_F(PortWalk, AWireFromAnInputBeginsWithWhatStandsBeforeIt)
{
    TToolNode* far = Add("Effect", -300, 100);
    TToolNode* effect = Add("Effect", 100, 100);
    TToolNode* curve = Add("Scalar Over Life", 400, 100);
    Add("Age", 800, 100);
    Enter(curve);
    EXPECT_TRUE(Key(KEY_RETURN));
    EXPECT_EQ(Walk().GetMarked(), &OutputPort(effect, "Time"));
    EXPECT_EQ(Host.Status, "Wire to Scalar Over Life, Time from Effect, Time: Scalar, not wired");
    EXPECT_TRUE(Key(KEY_UP));
    EXPECT_EQ(Walk().GetMarked(), &OutputPort(far, "Time"));
    EXPECT_TRUE(Key(KEY_RETURN));
    ASSERT_NE(EdgeAt(curve, "Time"), nullptr);
    EXPECT_EQ(EdgeAt(curve, "Time")->GetSrcNode(), far);
}

// Types that would have to be converted are not what is meant first.
TEST_F(PortWalk, AWireBeginsWithAPortOfItsOwnTypeIfThereIsOne)
{
    TToolNode* emitter = Add("Emitter", 100, 100);
    TToolNode* gravity = Add("Gravity", 300, 100);
    Add("Point Emitter", 500, 100);
    Enter(emitter);
    EXPECT_TRUE(Keys({KEY_RIGHT, KEY_RETURN}));
    EXPECT_TRUE(InputPort(gravity, "Acceleration").IsMarked());
    EXPECT_EQ(Marked(), "in Emission Trigger of Point Emitter");
    EXPECT_TRUE(Key(KEY_LEFT));
    EXPECT_EQ(Walk().GetMarked()->GetNode(), &Object(gravity));
}

TEST_F(PortWalk, AWireThatEndsAtATakenInputReplacesTheOneThere)
{
    TToolNode* effect = Add("Effect", 100, 100);
    TToolNode* other = Add("Effect", 100, 200);
    TToolNode* curve = Add("Scalar Over Life", 400, 100);
    TToolEdge* edge = Connect(effect, "Time", curve, "Time");
    const int before = NumOperations();
    Enter(other);
    EXPECT_TRUE(Key(KEY_RETURN));
    EXPECT_EQ(Marked(), "in Time of Scalar Over Life");
    EXPECT_TRUE(Key(KEY_RETURN));
    EXPECT_TRUE(IsLast<TChangeGraphEdgeOp>(before));
    EXPECT_EQ(EdgeAt(curve, "Time"), edge);
    EXPECT_EQ(edge->GetSrcNode(), other);
    Document.Undo();
    EXPECT_EQ(edge->GetSrcNode(), effect);
}

// As with the mouse, it is the wire's end that is taken up at a wired input.
TEST_F(PortWalk, TheWireOfAnInputIsPutElsewhereInOneStep)
{
    TToolNode* effect = Add("Effect", 100, 100);
    TToolNode* other = Add("Effect", 100, 300);
    TToolNode* curve = Add("Scalar Over Life", 400, 100);
    TToolEdge* moved = Connect(effect, "Time", curve, "Time");
    TToolEdge* replaced = Connect(other, "Time", curve, "Life");
    Enter(curve);
    EXPECT_TRUE(Key(KEY_RETURN));
    EXPECT_TRUE(Scene().FindEdge(moved)->IsHidden());
    // It begins where it is: Return puts it back.
    EXPECT_EQ(Marked(), "in Time of Scalar Over Life");
    const int before = NumOperations();
    EXPECT_TRUE(Key(KEY_RETURN));
    EXPECT_EQ(NumOperations(), before);
    ExpectNoWire();
    EXPECT_TRUE(Keys({KEY_RETURN, KEY_DOWN}));
    EXPECT_EQ(Marked(), "in Life of Scalar Over Life");
    EXPECT_TRUE(Key(KEY_RETURN));
    EXPECT_EQ(EdgeAt(curve, "Time"), nullptr);
    EXPECT_EQ(EdgeAt(curve, "Life"), moved);
    Document.Undo();
    EXPECT_EQ(EdgeAt(curve, "Time"), moved);
    EXPECT_EQ(EdgeAt(curve, "Life"), replaced);
    ExpectNoWire();
}

TEST_F(PortWalk, EscapeGivesUpTheWireFirstAndThenLeaves)
{
    TToolNode* effect = Add("Effect", 100, 100);
    TToolNode* curve = Add("Scalar Over Life", 400, 100);
    Connect(effect, "Time", curve, "Time");
    const int before = NumOperations();
    Enter(curve);
    EXPECT_TRUE(Keys({KEY_RETURN, KEY_DOWN, KEY_ESCAPE}));
    ExpectNoWire();
    EXPECT_EQ(Marked(), "in Time of Scalar Over Life");
    EXPECT_EQ(Host.Status, "Scalar Over Life, Time: Scalar, wired from Effect, Time");
    EXPECT_TRUE(Key(KEY_ESCAPE));
    ExpectEnded();
    EXPECT_EQ(NumOperations(), before);
}

TEST_F(PortWalk, DeleteTakesTheWireOffAnInputAndNeverTheNodeAway)
{
    TToolNode* effect = Add("Effect", 100, 100);
    TToolNode* curve = Add("Scalar Over Life", 400, 100);
    TToolEdge* edge = Connect(effect, "Time", curve, "Time");
    const int before = NumOperations();
    Enter(effect);
    EXPECT_TRUE(Key(KEY_DELETE));
    EXPECT_EQ(NumOperations(), before);
    EXPECT_EQ(Host.Status, "A wire is taken off at the input where it ends");
    EXPECT_TRUE(Keys({KEY_RIGHT, KEY_DELETE}));
    EXPECT_TRUE(IsLast<TDeleteGraphEdgeOp>(before));
    EXPECT_EQ(EdgeAt(curve, "Time"), nullptr);
    EXPECT_EQ(Marked(), "in Time of Scalar Over Life");
    EXPECT_EQ(Host.Status, "Scalar Over Life, Time: Scalar, not wired");
    for (const int key : {KEY_DELETE, KEY_BACKSPACE})
        EXPECT_TRUE(Key(key));
    EXPECT_EQ(NumOperations(), before + 1);
    EXPECT_EQ(Host.Status, "Nothing is wired to this input");
    EXPECT_EQ(Document.GetGraph()->GetNumNodes(), 2);
    Document.Undo();
    EXPECT_EQ(EdgeAt(curve, "Time"), edge);
    // Of one that has been taken up.
    EXPECT_TRUE(Keys({KEY_RETURN, KEY_BACKSPACE}));
    EXPECT_EQ(EdgeAt(curve, "Time"), nullptr);
    ExpectNoWire();
}

TEST_F(PortWalk, SpaceAndTabSearchForANodeThatCanBeWired)
{
    TToolNode* effect = Add("Effect", 100, 100);
    TToolNode* curve = Add("Scalar Over Life", 400, 100);
    Enter(effect);
    EXPECT_TRUE(Character(' '));
    ASSERT_EQ(Host.Searches.size(), 1u);
    EXPECT_EQ(Host.Searches[0].End.Node, effect);
    EXPECT_EQ(Host.Searches[0].End.Port, effect->GetNodeType()->FindOutput("Time"));
    EXPECT_FALSE(Host.Searches[0].End.IsInput);
    // Behind the port, and not upon another node.
    EXPECT_GT(Host.Searches[0].Place[0], Output(effect, "Time")[0]);
    EXPECT_EQ(Scene().NodeAt(Host.Searches[0].Place), nullptr);
    Add("Age", static_cast<int>(Host.Searches[0].Place[0]), static_cast<int>(Host.Searches[0].Place[1]) - 10);
    EXPECT_TRUE(Key(KEY_TAB));
    ASSERT_EQ(Host.Searches.size(), 2u);
    EXPECT_EQ(Scene().NodeAt(Host.Searches[1].Place), nullptr);
    EXPECT_GT(Host.Searches[1].Place[1], Host.Searches[0].Place[1]);
    // A wire on its way is given up for it.
    EnterAt(InputPort(curve, "Life"));
    EXPECT_TRUE(Key(KEY_RETURN));
    EXPECT_TRUE(Walk().IsWiring());
    EXPECT_TRUE(Character(' '));
    ExpectNoWire();
    ASSERT_EQ(Host.Searches.size(), 3u);
    EXPECT_EQ(Host.Searches[2].End.Node, curve);
    EXPECT_TRUE(Host.Searches[2].End.IsInput);
    EXPECT_LT(Host.Searches[2].Place[0], Input(curve, "Life")[0]);
}

TEST_F(PortWalk, WhereNothingCanTakeItNoWireIsTakenUp)
{
    TToolNode* effect = Add("Effect", 100, 100);
    Enter(effect);
    EXPECT_TRUE(Key(KEY_RETURN));
    ExpectNoWire();
    EXPECT_EQ(Marked(), "out Time of Effect");
    EXPECT_EQ(Host.Status, "No port here can take the wire; Space searches for a node that can");
}

TEST_F(PortWalk, APortThatIsPressedAndRefusesTheWireTellsWhyAndTheWireStays)
{
    TToolNode* effect = Add("Effect", 100, 100);
    TToolNode* curve = Add("Scalar Over Life", 400, 100);
    TToolNode* grid = Add("Grid", 400, 300);
    Enter(effect);
    EXPECT_TRUE(Key(KEY_RETURN));
    Walk().Press(InputPort(grid, "Transform"));
    EXPECT_EQ(Host.Status,
              "\"Time\" of Effect is a Scalar, which \"Transform\" of Grid (Transform) does not take");
    EXPECT_TRUE(Walk().IsWiring());
    EXPECT_EQ(Document.GetGraph()->GetNumEdges(), 0);
    Walk().Press(InputPort(curve, "Life"));
    ExpectNoWire();
    EXPECT_NE(EdgeAt(curve, "Life"), nullptr);
}

TEST_F(PortWalk, APressOfTheMouseEndsIt)
{
    TToolNode* effect = Add("Effect", 100, 100);
    TToolNode* curve = Add("Scalar Over Life", 400, 100);
    Enter(effect);
    EXPECT_TRUE(Key(KEY_RETURN));
    Click(TitleOf(curve));
    ExpectEnded();
    Enter(effect);
    EXPECT_TRUE(Key(KEY_RETURN));
    // The mouse takes up a wire of its own.
    DragTo(Output(effect, "Time"), Input(curve, "Life"));
    ExpectEnded();
    EXPECT_NE(EdgeAt(curve, "Life"), nullptr);
}

TEST_F(PortWalk, AnotherSelectionEndsIt)
{
    TToolNode* effect = Add("Effect", 100, 100);
    TToolNode* curve = Add("Scalar Over Life", 400, 100);
    Enter(effect);
    EXPECT_TRUE(Key(KEY_RETURN));
    Document.SelectNode(curve, false);
    ExpectEnded();
    Enter(effect);
    Document.ClearSelection();
    ExpectEnded();
    // Of several nodes it is the one that was selected last, and they stay selected.
    Document.SelectNode(curve, false);
    Document.SelectNode(effect, false);
    ASSERT_TRUE(Walk().Enter(*effect, Renderer));
    EXPECT_TRUE(Key(KEY_ESCAPE));
    EXPECT_EQ(Document.GetSelection().size(), 2);
}

TEST_F(PortWalk, ANodeThatGoesEndsIt)
{
    TToolNode* curve = Add("Scalar Over Life", 400, 100);
    TToolNode* effect = Add("Effect", 100, 100);
    Enter(effect);
    EXPECT_TRUE(Key(KEY_RETURN));
    Document.Undo();
    ASSERT_EQ(Document.GetGraph()->GetNumNodes(), 1);
    ExpectEnded();
    EXPECT_FALSE(Key(KEY_DOWN));
    Document.Redo();
    Enter(curve);
    Document.CutSelection();
    ExpectEnded();
}

TEST_F(PortWalk, AWireOnItsWayEndsWithAnyChangeOfTheGraphAndTheWalkGoesOn)
{
    TToolNode* effect = Add("Effect", 100, 100);
    TToolNode* curve = Add("Scalar Over Life", 400, 100);
    TToolNode* other = Add("Age", 400, 300);
    TToolEdge* edge = Connect(effect, "Time", other, "Max Age");
    Enter(effect);
    EXPECT_TRUE(Key(KEY_RETURN));
    Document.Undo();
    ASSERT_EQ(Document.GetGraph()->GetNumEdges(), 0);
    ExpectNoWire();
    EXPECT_EQ(Marked(), "out Time of Effect");
    Document.Redo();
    EnterAt(InputPort(other, "Max Age"));
    EXPECT_TRUE(Key(KEY_RETURN));
    EXPECT_TRUE(Scene().FindEdge(edge)->IsHidden());
    vector<TToolNode*> nodes;
    nodes.push_back(curve);
    Document.ApplyOperation(new TDeleteGraphNodeOp(nodes));
    ExpectNoWire();
    EXPECT_EQ(Marked(), "in Max Age of Age");
    EXPECT_TRUE(Key(KEY_RETURN));
    Add("Grid", 700, 100);
    ExpectNoWire();
    EXPECT_TRUE(Key(KEY_RETURN));
    EXPECT_TRUE(Scene().CancelDrags());
    ExpectNoWire();
    EXPECT_FALSE(Scene().CancelDrags());
}

TEST_F(PortWalk, UnderADragItDoesNothing)
{
    TToolNode* effect = Add("Effect", 100, 100);
    TToolNode* curve = Add("Scalar Over Life", 400, 100);
    Connect(effect, "Time", curve, "Time");
    Enter(curve);
    const int before = NumOperations();
    TOtherDrag drag;
    TWimp::Get().SetMouseDrag(&drag, Host.Window);
    for (const int key : {KEY_DELETE, KEY_RETURN, KEY_TAB, KEY_DOWN})
        EXPECT_TRUE(Key(key));
    EXPECT_TRUE(Character(' '));
    TWimp::Get().ClearMouseDrag();
    EXPECT_EQ(NumOperations(), before);
    EXPECT_TRUE(Host.Searches.empty());
    EXPECT_EQ(Marked(), "in Time of Scalar Over Life");
    ExpectNoWire();
}

TEST_F(PortWalk, AWindowThatLosesTheKeysGivesUpTheWireAndKeepsThePort)
{
    TToolNode* effect = Add("Effect", 100, 100);
    Add("Scalar Over Life", 400, 100);
    Enter(effect);
    EXPECT_TRUE(Key(KEY_RETURN));
    TMessage message;
    message.Type = MT_FOCUSLOST;
    TRenderObject::Route(Renderer, Scene().GetRoot(), message);
    ExpectNoWire();
    EXPECT_EQ(Marked(), "out Time of Effect");
    message.Type = MT_FOCUSGAINED;
    TRenderObject::Route(Renderer, Scene().GetRoot(), message);
    EXPECT_TRUE(Key(KEY_RETURN));
    EXPECT_TRUE(Walk().IsWiring());
}

} // namespace
