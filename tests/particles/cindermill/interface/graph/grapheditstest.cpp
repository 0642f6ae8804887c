#include "scenetest.h"
#include "support/dice.h"

#include "library/system/clock.h"
#include "particles/cindermill/graph/operations/movegraphnodeop.h"
#include "particles/cindermill/interface/graph/graphedits.h"
#include "particles/cindermill/interface/graph/graphlayout.h"

namespace {

class GraphEdits : public TSceneTest
{
protected:
    void SetUp() override
    {
        Effect = Add("Effect", 100, 100);
        First = Add("Add", 300, 110);
        Second = Add("Multiply", 520, 160);
        Curve = Add("Scalar Over Life", 730, 90);
        Connect(Effect, "Time", First, "A");
        Connect(First, "Sum", Second, "A");
        Connect(Second, "Product", Curve, "Time");
    }
    void Select(const std::vector<TToolNode*>& nodes)
    {
        Document.ClearSelection();
        for (TToolNode* node : nodes)
            Document.SelectNode(node, false);
    }
    bool IsSelected(TToolNode* node) { return node->IsSelected(); }
    TVector2 Min(TToolNode* node)
    {
        TVector2 min;
        TVector2 max;
        Object(node).GetRectangle(min, max);
        return min;
    }
    TVector2 Max(TToolNode* node)
    {
        TVector2 min;
        TVector2 max;
        Object(node).GetRectangle(min, max);
        return max;
    }

    TFakeClock Clock{10000};
    TToolNode* Effect = nullptr;
    TToolNode* First = nullptr;
    TToolNode* Second = nullptr;
    TToolNode* Curve = nullptr;
};

TEST_F(GraphEdits, ADuplicateHasTheWiresAmongItAndThoseFromWithout)
{
    Select({First, Second});
    EXPECT_TRUE(DuplicateSelection(Document));
    ASSERT_EQ(Document.GetSelection().size(), 2);
    TToolNode* first = Document.GetSelection()[0];
    TToolNode* second = Document.GetSelection()[1];
    EXPECT_NE(first, First);
    EXPECT_EQ(first->GetX(), First->GetX() + 32);
    EXPECT_EQ(first->GetY(), First->GetY() + 32);
    ASSERT_NE(first->GetInput(0), nullptr);
    EXPECT_EQ(first->GetInput(0)->GetSrcNode(), Effect);
    ASSERT_NE(second->GetInput(0), nullptr);
    EXPECT_EQ(second->GetInput(0)->GetSrcNode(), first);
    EXPECT_EQ(second->GetNumOutputEdges(0), 0);
    EXPECT_EQ(Curve->GetInput(Curve->GetNodeType()->FindInput("Time"))->GetSrcNode(), Second);
    Document.Undo();
    EXPECT_EQ(Document.GetGraph()->GetNumNodes(), 4);
    EXPECT_EQ(Document.GetGraph()->GetNumEdges(), 3);
    Document.Redo();
    EXPECT_EQ(Document.GetGraph()->GetNumNodes(), 6);
    EXPECT_EQ(Document.GetGraph()->GetNumEdges(), 5);
}

TEST_F(GraphEdits, ADuplicateLeavesTheClipboardAlone)
{
    Select({Curve});
    Document.CopySelection();
    Select({First});
    DuplicateSelection(Document);
    Document.Paste();
    ASSERT_EQ(Document.GetSelection().size(), 1);
    EXPECT_EQ(Text(Document.GetSelection()[0]->GetNodeType()->Name), "Scalar Over Life");
}

TEST_F(GraphEdits, ADuplicatesFileLoads)
{
    Select({First, Second});
    DuplicateSelection(Document);
    Document.Undo();
    Document.Redo();
    ASSERT_TRUE(Document.SaveAs(App.Path("duplicate.effect").c_str()));
    TDocument other(App.Get());
    ASSERT_TRUE(other.Load(App.Path("duplicate.effect").c_str()));
    EXPECT_EQ(other.GetGraph()->GetNumEdges(), 5);
    while (other.CanUndo())
        other.Undo();
    EXPECT_EQ(other.GetGraph()->GetNumEdges(), 0);
}

TEST_F(GraphEdits, BypassIsForAllOfTheSelectionThatCan)
{
    TToolNode* gravity = Add("Gravity", 100, 400);
    TToolNode* turbulence = Add("Turbulence", 300, 400);
    TToolNode* cannot = nullptr;
    for (TToolNode* node : {Effect, First, Curve})
        if (!node->GetNodeType()->HasFlag(FL_BYPASSABLE))
            cannot = node;
    ASSERT_NE(cannot, nullptr);
    ASSERT_TRUE(gravity->GetNodeType()->HasFlag(FL_BYPASSABLE));
    Select({gravity, turbulence, cannot});
    EXPECT_TRUE(BypassSelection(Document));
    EXPECT_TRUE(gravity->GetNodeType()->IsBypassed());
    EXPECT_TRUE(turbulence->GetNodeType()->IsBypassed());
    EXPECT_FALSE(cannot->GetNodeType()->IsBypassed());
    EXPECT_TRUE(BypassSelection(Document));
    EXPECT_FALSE(gravity->GetNodeType()->IsBypassed());
    Document.Undo();
    EXPECT_TRUE(gravity->GetNodeType()->IsBypassed());
    EXPECT_TRUE(turbulence->GetNodeType()->IsBypassed());
    Document.Undo();
    EXPECT_FALSE(turbulence->GetNodeType()->IsBypassed());
    // Of a mixed selection the rest is bypassed.
    Select({gravity});
    BypassSelection(Document);
    Select({gravity, turbulence});
    BypassSelection(Document);
    EXPECT_TRUE(gravity->GetNodeType()->IsBypassed());
    EXPECT_TRUE(turbulence->GetNodeType()->IsBypassed());
    Select({cannot});
    const int before = NumOperations();
    EXPECT_FALSE(BypassSelection(Document));
    EXPECT_EQ(NumOperations(), before);
}

TEST_F(GraphEdits, TheSelectionLeavesItsWiresInOneStep)
{
    Select({First, Second});
    EXPECT_TRUE(TakeSelectionOut(Document));
    EXPECT_EQ(Document.GetGraph()->GetNumEdges(), 1);
    EXPECT_EQ(Curve->GetInput(Curve->GetNodeType()->FindInput("Time"))->GetSrcNode(), Effect);
    EXPECT_FALSE(TakeSelectionOut(Document));
    Document.Undo();
    EXPECT_EQ(Document.GetGraph()->GetNumEdges(), 3);
    EXPECT_EQ(Curve->GetInput(Curve->GetNodeType()->FindInput("Time"))->GetSrcNode(), Second);
}

TEST_F(GraphEdits, SelectsUpAndDownstream)
{
    const int before = NumOperations();
    Select({First});
    EXPECT_TRUE(SelectReached(Document, WD_DOWNSTREAM));
    EXPECT_TRUE(IsSelected(First) && IsSelected(Second) && IsSelected(Curve));
    EXPECT_FALSE(IsSelected(Effect));
    EXPECT_FALSE(SelectReached(Document, WD_DOWNSTREAM));
    Select({Second});
    EXPECT_TRUE(SelectReached(Document, WD_UPSTREAM));
    EXPECT_TRUE(IsSelected(First) && IsSelected(Second) && IsSelected(Effect));
    EXPECT_FALSE(IsSelected(Curve));
    EXPECT_EQ(NumOperations(), before);
}

TEST_F(GraphEdits, MovesByKeysThatFollowEachOtherAreOneStep)
{
    const auto moveOn = [this](uint32_t after) {
        Clock.Set(GetTickCount() + after);
        EXPECT_TRUE(MoveSelectionByKey(Document, 16, -1));
    };
    Select({First, Second});
    moveOn(0);
    moveOn(1999);
    moveOn(1999);
    EXPECT_EQ(First->GetX(), 348);
    EXPECT_EQ(Second->GetY(), 157);
    EXPECT_EQ(Curve->GetX(), 730);
    // A pause, another selection and a save each end the run, and so does a step back.
    moveOn(2000);
    Select({Second});
    moveOn(0);
    ASSERT_TRUE(Document.SaveAs(App.Path("moved.effect").c_str()));
    moveOn(0);
    Document.Undo();
    EXPECT_FALSE(Document.IsModified());
    moveOn(0);
    for (const int x : {600, 584, 568, 520}) {
        Document.Undo();
        EXPECT_EQ(Second->GetX(), x);
    }
    EXPECT_EQ(First->GetX(), 300);
    EXPECT_EQ(First->GetY(), 110);
    Document.Redo();
    Select({First, Second});
    moveOn(0);
    Document.Undo();
    EXPECT_EQ(Second->GetX(), 568);
}

// A drag is a step by itself, whatever comes after it.
TEST_F(GraphEdits, AMoveByKeyJoinsNoOtherMove)
{
    Select({First});
    Document.ApplyOperation(new TMoveGraphNodeOp(Document.GetSelection(), 100, 0));
    EXPECT_TRUE(MoveSelectionByKey(Document, 16, 0));
    Document.ApplyOperation(new TMoveGraphNodeOp(Document.GetSelection(), 100, 0));
    EXPECT_TRUE(MoveSelectionByKey(Document, 16, 0));
    for (const int x : {516, 416, 400, 300}) {
        Document.Undo();
        EXPECT_EQ(First->GetX(), x);
    }
    Document.ClearSelection();
    EXPECT_FALSE(MoveSelectionByKey(Document, 16, 0));
}

TEST_F(GraphEdits, AlignsEdgesInOneStep)
{
    Select({First, Second, Curve});
    EXPECT_TRUE(AlignSelection(Scene(), AL_TOP));
    for (TToolNode* node : {First, Second, Curve})
        EXPECT_EQ(node->GetY(), 90);
    EXPECT_EQ(Second->GetX(), 520);
    EXPECT_FALSE(AlignSelection(Scene(), AL_TOP));
    Document.Undo();
    EXPECT_EQ(First->GetY(), 110);
    EXPECT_EQ(Second->GetY(), 160);
    AlignSelection(Scene(), AL_LEFT);
    EXPECT_EQ(Second->GetX(), 300);
    EXPECT_EQ(Curve->GetX(), 300);
    Document.Undo();
    const float right = Max(Curve)[0];
    AlignSelection(Scene(), AL_RIGHT);
    EXPECT_NEAR(Max(First)[0], right, 1.0f);
    EXPECT_NEAR(Max(Second)[0], right, 1.0f);
    Document.Undo();
    const float bottom = std::max({Max(First)[1], Max(Second)[1], Max(Curve)[1]});
    AlignSelection(Scene(), AL_BOTTOM);
    for (TToolNode* node : {First, Second, Curve})
        EXPECT_NEAR(Max(node)[1], bottom, 1.0f);
    Select({First});
    EXPECT_FALSE(AlignSelection(Scene(), AL_BOTTOM));
}

TEST_F(GraphEdits, DistributesSoThatTheGapsAreEqual)
{
    Second->SetPosition(400, 160);
    Select({Curve, Second, First});
    EXPECT_TRUE(DistributeSelection(Scene(), 0));
    EXPECT_EQ(First->GetX(), 300);
    EXPECT_EQ(Curve->GetX(), 730);
    EXPECT_NEAR(Min(Second)[0] - Max(First)[0], Min(Curve)[0] - Max(Second)[0], 1.01f);
    EXPECT_EQ(Second->GetY(), 160);
    Document.Undo();
    EXPECT_EQ(Second->GetX(), 400);
    Select({First, Second});
    EXPECT_FALSE(DistributeSelection(Scene(), 0));
}

TEST_F(GraphEdits, WhereThereIsNoRoomToDistributeNoNodeComesUponAnother)
{
    First->SetPosition(300, 110);
    Second->SetPosition(310, 160);
    Curve->SetPosition(320, 90);
    Select({Curve, Second, First});
    EXPECT_TRUE(DistributeSelection(Scene(), 0));
    EXPECT_EQ(First->GetX(), 300);
    EXPECT_GE(Min(Second)[0], Max(First)[0]);
    EXPECT_NEAR(Min(Second)[0] - Max(First)[0], Min(Curve)[0] - Max(Second)[0], 1.01f);
    EXPECT_FALSE(DistributeSelection(Scene(), 0));
    Document.Undo();
    EXPECT_EQ(Second->GetX(), 310);
    EXPECT_EQ(Curve->GetX(), 320);
}

TEST_F(GraphEdits, TidiedANodeStandsRightOfAllThatFeedItAndOnNone)
{
    TToolNode* noise = Add("Noise", 900, 900);
    Connect(noise, "Value", Second, "B");
    Curve->SetPosition(0, 0);
    Effect->SetPosition(500, 500);
    Document.ClearSelection();
    const int steps = NumOperations();
    EXPECT_TRUE(TidyNodes(Scene()));
    EXPECT_GT(NumOperations(), steps);
    const std::vector<TToolNode*> all = {Effect, First, Second, Curve, noise};
    for (TToolNode* node : all) {
        for (int i = 0; i < node->GetNumInputs(); ++i)
            if (node->GetInput(i) != nullptr) {
                EXPECT_GT(Min(node)[0], Max(static_cast<TToolNode*>(node->GetInput(i)->GetSrcNode()))[0]);
            }
        for (TToolNode* other : all)
            if (other != node) {
                EXPECT_FALSE(Object(node).OverlapsBox(Min(other), Max(other)));
            }
    }
    // What nothing feeds stands beside what it feeds.
    EXPECT_EQ(noise->GetX(), First->GetX());
    EXPECT_FALSE(TidyNodes(Scene()));
    Document.Undo();
    EXPECT_EQ(Curve->GetX(), 0);
    EXPECT_EQ(Effect->GetY(), 500);
}

TEST_F(GraphEdits, WhatNoWireConnectsIsTidiedApart)
{
    // Two chains, drawn through each other.
    TToolNode* effect = Add("Effect", 320, 100);
    TToolNode* curve = Add("Scalar Over Life", 90, 170);
    Connect(effect, "Time", curve, "Time");
    TToolNode* lone = Add("Noise", 400, 130);
    Document.ClearSelection();
    EXPECT_TRUE(TidyNodes(Scene()));
    float end = 0;
    for (TToolNode* node : {Effect, First, Second, Curve})
        end = std::max(end, Max(node)[1]);
    EXPECT_GT(Min(effect)[1], end);
    EXPECT_GT(Min(curve)[1], end);
    EXPECT_GT(Min(lone)[1], std::max(Max(effect)[1], Max(curve)[1]));
    // A wire that is alone is level.
    EXPECT_NEAR(Output(effect, "Time")[1], Input(curve, "Time")[1], 1.0f);
    EXPECT_FALSE(TidyNodes(Scene()));
}

TEST_F(GraphEdits, ManyNodesWithLongNamesAndManyWiresAreTidiedInOneStep)
{
    const char* const types[] = {"Add", "Sprite Render Stage", "Multiply", "Wind", "Integrate"};
    TDice dice(7);
    std::vector<TToolNode*> nodes;
    for (int i = 0; i < 300; ++i) {
        TToolNode* node =
            Add(types[i % 5], static_cast<int>(dice.Below(2000)), static_cast<int>(dice.Below(2000)));
        if (i % 7 == 0) {
            node->GetNodeType()->Name = "A name that tells all that anybody wishes to know of the node";
            Object(node).Relayout();
        }
        nodes.push_back(node);
        for (int port = 0; i > 0 && port < node->GetNumInputs(); ++port) {
            TToolNode* source = nodes[dice.Below(static_cast<uint32_t>(i))];
            for (int output = 0; output < source->GetNumOutputs(); ++output)
                if (node->GetInput(port) == nullptr && CanConnect(source, output, node, port))
                    Document.ApplyOperation(new TAddGraphEdgeOp(Document, source, output, node, port));
        }
    }
    Object(nodes[10]).Resize(TVector2(500, 400));
    ASSERT_GT(Document.GetGraph()->GetNumEdges(), 200);
    std::vector<TVector2> before;
    for (TToolNode* node : nodes)
        before.push_back(Min(node));
    Document.ClearSelection();
    EXPECT_TRUE(TidyNodes(Scene()));
    for (size_t i = 0; i < nodes.size(); ++i) {
        for (size_t n = 0; n < i; ++n)
            EXPECT_FALSE(Object(nodes[i]).OverlapsBox(Min(nodes[n]), Max(nodes[n]))) << i << " " << n;
        for (int port = 0; port < nodes[i]->GetNumInputs(); ++port)
            if (const TEffectEdge* edge = nodes[i]->GetInput(port)) {
                EXPECT_GT(Min(nodes[i])[0], Max(static_cast<TToolNode*>(edge->GetSrcNode()))[0]) << i;
            }
    }
    EXPECT_FALSE(TidyNodes(Scene()));
    Document.Undo();
    for (size_t i = 0; i < nodes.size(); ++i)
        EXPECT_EQ(Min(nodes[i]), before[i]) << i;
}

TEST_F(GraphEdits, OfASelectionOnlyItsOwnNodesAreTidied)
{
    Select({Second, First});
    First->SetPosition(600, 300);
    TidyNodes(Scene());
    EXPECT_EQ(Effect->GetX(), 100);
    EXPECT_EQ(Curve->GetX(), 730);
    EXPECT_LT(Max(First)[0], Min(Second)[0]);
}

} // namespace
