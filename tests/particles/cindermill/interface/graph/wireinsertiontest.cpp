#include "scenetest.h"
#include "support/sampledocument.h"

#include "particles/cindermill/graph/operations/changegraphedgeop.h"
#include "particles/cindermill/graph/operations/movegraphnodeop.h"

namespace {

// The middle of a chain that goes on: something that passes a scalar through.
class WireInsertion : public TSceneTest
{
protected:
    void SetUp() override
    {
        Effect = Add("Effect", 100, 100);
        Curve = Add("Scalar Over Life", 500, 100);
        Edge = Connect(Effect, "Time", Curve, "Time");
    }
    TVector2 OnWire() { return (Output(Effect, "Time") + Input(Curve, "Time")) * 0.5f; }
    bool IsLit(TToolEdge* edge) { return Scene().FindEdge(edge)->IsLit(); }
    static TToolEdge* EdgeAt(TToolNode* node, const char* input)
    {
        return static_cast<TToolEdge*>(node->GetInput(node->GetNodeType()->FindInput(input)));
    }
    bool IsBetween(TToolNode* node)
    {
        return Edge->GetSrcNode() == node && EdgeAt(Curve, "Time") == Edge && node->GetInput(0) != nullptr &&
               node->GetInput(0)->GetSrcNode() == Effect && Document.GetGraph()->GetNumEdges() == 2;
    }

    // What is drawn between the two nodes and is no edge of the graph.
    std::vector<TToolEdgeRenderer*> FindShownJoins(TToolNode* source, TToolNode* destination)
    {
        std::vector<TToolEdgeRenderer*> joins;
        for (TRenderObject* object : Canvas().GetObjects()) {
            if (object->GetClassId() != TToolEdgeRenderer::NameID())
                continue;
            TToolEdgeRenderer* edge = static_cast<TToolEdgeRenderer*>(object);
            const TEffectGraph& graph = *Document.GetGraph();
            bool isOfGraph = false;
            for (int i = 0; i < graph.GetNumEdges(); ++i)
                isOfGraph = isOfGraph || Scene().FindEdge(static_cast<TToolEdge*>(graph.GetEdge(i))) == edge;
            if (!isOfGraph && !edge->IsHidden() && edge->GetOutputNode() == Scene().FindNode(source) &&
                edge->GetInputNode() == Scene().FindNode(destination))
                joins.push_back(edge);
        }
        return joins;
    }

    TToolNode* Effect = nullptr;
    TToolNode* Curve = nullptr;
    TToolEdge* Edge = nullptr;
};

TEST_F(WireInsertion, ANodeDroppedOnAWireGoesInBetweenInOneStep)
{
    TToolNode* add = Add("Add", 300, 400);
    const TVector2 grab = TitleOf(add);
    Press(grab);
    Drag(OnWire() + TVector2(0, 80));
    EXPECT_FALSE(IsLit(Edge));
    Drag(OnWire());
    EXPECT_TRUE(IsLit(Edge));
    Release(OnWire());
    EXPECT_FALSE(IsLit(Edge));
    EXPECT_TRUE(IsBetween(add));
    EXPECT_NE(add->GetY(), 400);
    Document.Undo();
    EXPECT_EQ(add->GetY(), 400);
    EXPECT_EQ(Edge->GetSrcNode(), Effect);
    EXPECT_EQ(Document.GetGraph()->GetNumEdges(), 1);
    Document.Redo();
    EXPECT_TRUE(IsBetween(add));
}

TEST_F(WireInsertion, MovedAwayFromTheWireAgainItOnlyMoves)
{
    TToolNode* add = Add("Add", 300, 400);
    const int before = NumOperations();
    Press(TitleOf(add));
    Drag(OnWire());
    Drag(TVector2(300, 500));
    EXPECT_FALSE(IsLit(Edge));
    Release(TVector2(300, 500));
    EXPECT_EQ(NumOperations(), before + 1);
    EXPECT_EQ(Edge->GetSrcNode(), Effect);
}

TEST_F(WireInsertion, EscapePutsAllBack)
{
    TToolNode* add = Add("Add", 300, 400);
    const int before = NumOperations();
    Press(TitleOf(add));
    Drag(OnWire());
    Key(KEY_ESCAPE);
    EXPECT_FALSE(IsLit(Edge));
    Release(OnWire());
    EXPECT_EQ(NumOperations(), before);
    EXPECT_EQ(add->GetY(), 400);
}

TEST_F(WireInsertion, ANodeThatIsWiredOrDoesNotFitOrComesWithOthersOnlyMoves)
{
    TToolNode* wired = Add("Add", 300, 400);
    TToolNode* other = Add("Effect", 100, 400);
    Connect(other, "Time", wired, "A");
    DragTo(TitleOf(wired), OnWire());
    EXPECT_EQ(Edge->GetSrcNode(), Effect);
    DragTo(TitleOf(wired), TVector2(300, 400));

    TToolNode* stage = Add("Quad Render Stage", 300, 300);
    DragTo(TitleOf(stage), OnWire());
    EXPECT_EQ(Edge->GetSrcNode(), Effect);
    DragTo(OnWire(), TVector2(400, 550));

    TToolNode* a = Add("Add", 300, 480);
    TToolNode* b = Add("Add", 600, 480);
    Document.SelectNode(a, true);
    Document.SelectNode(b, false);
    DragTo(TitleOf(a), OnWire());
    EXPECT_EQ(Edge->GetSrcNode(), Effect);
    EXPECT_EQ(Document.GetGraph()->GetNumEdges(), 2);
}

TEST_F(WireInsertion, WhatComesOutMustFitAsWell)
{
    // Out of it comes a transform, which is no time.
    TToolNode* make = Add("Make Transform", 300, 400);
    DragTo(TitleOf(make), OnWire());
    EXPECT_EQ(Edge->GetSrcNode(), Effect);
    // A node for several types follows the wire.
    TToolNode* cone = Add("Velocity Cone", 100, 300);
    TToolNode* grid = Add("Integrate", 500, 300);
    TToolEdge* vectors = Connect(cone, "Velocity", grid, "Velocity");
    TToolNode* add = Add("Add", 300, 500);
    DragTo(TitleOf(add), (Output(cone, "Velocity") + Input(grid, "Velocity")) * 0.5f);
    EXPECT_EQ(vectors->GetSrcNode(), add);
    EXPECT_EQ(add->GetNodeType()->GetOutputType(0), TY_VECTOR3);
}

TEST_F(WireInsertion, PortsOfOneNameAreTheWayThroughANode)
{
    TToolNode* cone = Add("Velocity Cone", 100, 300);
    TToolNode* integrate = Add("Integrate", 500, 300);
    TToolEdge* edge = Connect(cone, "Velocity", integrate, "Velocity");
    TToolNode* gravity = Add("Gravity", 300, 480);
    DragTo(TitleOf(gravity), (Output(cone, "Velocity") + Input(integrate, "Velocity")) * 0.5f);
    EXPECT_EQ(edge->GetSrcNode(), gravity);
    ASSERT_NE(EdgeAt(gravity, "Velocity"), nullptr);
    EXPECT_EQ(EdgeAt(gravity, "Velocity")->GetSrcNode(), cone);
}

TEST_F(WireInsertion, WithAltANodeLeavesItsWiresAndTheNeighboursAreJoined)
{
    TToolNode* add = Add("Add", 300, 400);
    DragTo(TitleOf(add), OnWire());
    ASSERT_TRUE(IsBetween(add));
    TToolEdge* first = EdgeAt(add, "A");
    const int x = add->GetX();
    KeyFlags = KF_ALT;
    Press(TitleOf(add));
    Drag(TitleOf(add) + TVector2(0, 200));
    EXPECT_TRUE(Scene().FindEdge(Edge)->IsHidden());
    EXPECT_TRUE(Scene().FindEdge(first)->IsHidden());
    Release(TVector2(static_cast<float>(x + 30), 500));
    EXPECT_EQ(Edge->GetSrcNode(), Effect);
    EXPECT_EQ(EdgeAt(Curve, "Time"), Edge);
    EXPECT_FALSE(Scene().FindEdge(Edge)->IsHidden());
    EXPECT_EQ(Document.GetGraph()->GetNumEdges(), 1);
    EXPECT_GT(add->GetY(), 400);
    Document.Undo();
    EXPECT_TRUE(IsBetween(add));
    EXPECT_FALSE(Scene().FindEdge(first)->IsHidden());
    Document.Redo();
    EXPECT_EQ(Document.GetGraph()->GetNumEdges(), 1);
}

TEST_F(WireInsertion, WhatWillJoinTheNeighboursIsSeenDuringTheDrag)
{
    TToolNode* add = Add("Add", 300, 400);
    DragTo(TitleOf(add), OnWire());
    ASSERT_TRUE(IsBetween(add));
    KeyFlags = KF_ALT;
    const TVector2 grab = TitleOf(add);
    Press(grab);
    // A click takes nothing out.
    EXPECT_FALSE(Scene().FindEdge(Edge)->IsHidden());
    EXPECT_TRUE(FindShownJoins(Effect, Curve).empty());
    Drag(grab + TVector2(0, 200));
    const std::vector<TToolEdgeRenderer*> joins = FindShownJoins(Effect, Curve);
    ASSERT_EQ(joins.size(), 1u);
    EXPECT_TRUE(joins[0]->IsLit());
    EXPECT_EQ(joins[0]->GetCurve()[0], Output(Effect, "Time"));
    EXPECT_EQ(joins[0]->GetCurve()[3], Input(Curve, "Time"));
    // Back where it was, it stays in its wires.
    Drag(grab);
    EXPECT_TRUE(FindShownJoins(Effect, Curve).empty());
    EXPECT_FALSE(Scene().FindEdge(Edge)->IsHidden());
    Drag(grab + TVector2(0, 100));
    EXPECT_EQ(FindShownJoins(Effect, Curve).size(), 1u);
    Key(KEY_ESCAPE);
    EXPECT_TRUE(FindShownJoins(Effect, Curve).empty());
    EXPECT_FALSE(Scene().FindEdge(Edge)->IsHidden());
    Release(grab + TVector2(0, 100));
    EXPECT_TRUE(IsBetween(add));
    // Without Alt nothing is joined.
    KeyFlags = 0;
    Press(grab);
    Drag(grab + TVector2(0, 100));
    EXPECT_TRUE(FindShownJoins(Effect, Curve).empty());
    EXPECT_FALSE(Scene().FindEdge(Edge)->IsHidden());
    Release(grab);
}

TEST_F(WireInsertion, WhatWillJoinTheNeighboursIsWhatJoinsThem)
{
    int joined = 0;
    for (const std::string& name : GetSampleNames()) {
        TTestApp app;
        TSampleDocument sample(app, name);
        const TEffectGraph& graph = *sample->GetGraph();
        for (int i = 0; i < graph.GetNumNodes(); ++i) {
            TToolNode* node = static_cast<TToolNode*>(graph.GetNode(i));
            std::vector<std::pair<TEffectEdge*, const TEffectEdge*>> ways;
            for (int output = 0; output < node->GetNumOutputs(); ++output)
                for (int n = 0; n < node->GetNumOutputEdges(output); ++n) {
                    TEffectEdge* edge = node->GetOutputEdge(output, n);
                    ways.push_back({edge, FindWayPast(*node, *edge)});
                }
            std::vector<std::pair<TEffectNode*, int>> sources;
            for (const auto& [edge, way] : ways)
                sources.push_back(
                    {way != nullptr ? way->GetSrcNode() : nullptr, way != nullptr ? way->GetSrcPort() : -1});
            if (IsUnwired(*node))
                continue;
            TakeOutOfWires(*sample, node);
            for (size_t n = 0; n < ways.size(); ++n) {
                TEffectEdge* edge = ways[n].first;
                ASSERT_EQ(graph.Has(edge), sources[n].first != nullptr) << name << " node " << i;
                if (sources[n].first == nullptr)
                    continue;
                EXPECT_EQ(edge->GetSrcNode(), sources[n].first) << name << " node " << i;
                EXPECT_EQ(edge->GetSrcPort(), sources[n].second) << name << " node " << i;
                ++joined;
            }
            sample->Undo();
        }
    }
    EXPECT_GT(joined, 20);
}

TEST_F(WireInsertion, AClickWithAltAndEscapeChangeNothing)
{
    TToolNode* add = Add("Add", 300, 400);
    DragTo(TitleOf(add), OnWire());
    const int before = NumOperations();
    KeyFlags = KF_ALT;
    Click(TitleOf(add));
    EXPECT_TRUE(IsBetween(add));
    Press(TitleOf(add));
    Drag(TVector2(300, 500));
    Key(KEY_ESCAPE);
    Release(TVector2(300, 500));
    EXPECT_TRUE(IsBetween(add));
    EXPECT_FALSE(Scene().FindEdge(Edge)->IsHidden());
    EXPECT_EQ(NumOperations(), before);
}

TEST_F(WireInsertion, AllThatAnOutputFeedsGoesOn)
{
    TToolNode* add = Add("Add", 300, 400);
    DragTo(TitleOf(add), OnWire());
    TToolNode* age = Add("Age", 500, 300);
    TToolEdge* second = Connect(add, "Sum", age, "Max Age");
    KeyFlags = KF_ALT;
    DragTo(TitleOf(add), TVector2(300, 550));
    EXPECT_EQ(Edge->GetSrcNode(), Effect);
    EXPECT_EQ(second->GetSrcNode(), Effect);
    Document.Undo();
    EXPECT_EQ(second->GetSrcNode(), add);
}

TEST_F(WireInsertion, WithCtrlANodeSnapsToTheGrid)
{
    TToolNode* add = Add("Add", 301, 403);
    KeyFlags = 0;
    Press(TitleOf(add));
    Key(KEY_CTRL);
    Drag(TitleOf(add) + TVector2(41, 66));
    Release(TVector2(0, 0) + TitleOf(add) + TVector2(41, 66));
    EXPECT_EQ(add->GetX(), 336);
    EXPECT_EQ(add->GetY(), 464);
}

// An effect that runs, so that schedule and engine follow the graph.
TEST_F(WireInsertion, TheGraphIsLookedAtOnceForAStep)
{
    int heard = 0;
    Document.GetGraph()->AddCallback([](void* data) { ++*static_cast<int*>(data); }, &heard);
    TToolNode* add = Add("Add", 300, 400);
    heard = 0;
    DragTo(TitleOf(add), OnWire());
    EXPECT_EQ(heard, 1);
    Document.Undo();
    EXPECT_EQ(heard, 2);
    Document.Redo();
    EXPECT_EQ(heard, 3);
}

TEST_F(WireInsertion, TheFileIsThatOfTheOperationsAlone)
{
    TToolNode* add = Add("Add", 300, 400);
    DragTo(TitleOf(add), OnWire());
    ASSERT_TRUE(Document.SaveAs(App.Path("hand.effect").c_str()));

    TDocument other(App.Get());
    ASSERT_TRUE(other.New());
    const auto addNode = [&](const char* type, int x, int y) {
        TAddGraphNodeOp* op = new TAddGraphNodeOp(other, App.Type(type), 0, 0);
        TToolNode* node = op->GetNode();
        other.ApplyOperation(op);
        node->SetPosition(x, y);
        return node;
    };
    TToolNode* effect = addNode("Effect", 100, 100);
    TToolNode* curve = addNode("Scalar Over Life", 500, 100);
    TAddGraphEdgeOp* edge = new TAddGraphEdgeOp(other, effect, effect->GetNodeType()->FindOutput("Time"),
                                                curve, curve->GetNodeType()->FindInput("Time"));
    TToolEdge* wire = edge->GetEdge();
    other.ApplyOperation(edge);
    TToolNode* between = addNode("Add", 300, 400);
    vector<TToolNode*> moved;
    moved.push_back(between);
    other.ApplyOperation(new TMoveGraphNodeOp(moved, add->GetX() - 300, add->GetY() - 400));
    other.ApplyOperation(new TAddGraphEdgeOp(other, effect, effect->GetNodeType()->FindOutput("Time"),
                                             between, between->GetNodeType()->FindInput("A")));
    other.ApplyOperation(new TChangeGraphEdgeOp(wire, between, between->GetNodeType()->FindOutput("Sum"),
                                                curve, curve->GetNodeType()->FindInput("Time")));
    ASSERT_TRUE(other.SaveAs(App.Path("operations.effect").c_str()));
    EXPECT_TRUE(ReadBytes(App.Path("hand.effect")) == ReadBytes(App.Path("operations.effect")));
}

} // namespace
