#include "particles/cindermill/interface/particles/previewdiagnosis.h"

#include "support/sampledocument.h"

#include "particles/cindermill/graph/operations/bypassflagop.h"
#include "particles/cindermill/graph/operations/deletegraphedgeop.h"
#include "particles/cindermill/graph/operations/deletegraphnodeop.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/effectgraph/simpleparameters.h"
#include "particles/effectgraph/usage.h"
#include "particles/effectgraph/valueparameters.h"

namespace {

class PreviewDiagnosis : public testing::Test
{
protected:
    std::string Told(int onlyGroup = -1)
    {
        Diagnosis.Tick(*Sample, onlyGroup);
        return Text(Diagnosis.GetText());
    }
    bool Tells(const std::string& part, int onlyGroup = -1)
    {
        return Told(onlyGroup).find(part) != std::string::npos;
    }
    TEffectNode* Find(const char* className)
    {
        for (int i = 0; i < Sample->GetGraph()->GetNumNodes(); ++i)
            if (Sample->GetGraph()->GetNode(i)->GetNodeType()->ClassName.Compare(className) == 0)
                return Sample->GetGraph()->GetNode(i);
        return nullptr;
    }
    static void DelayFor(TEffectNode& emitter, float seconds)
    {
        static_cast<TNodeScalarParameter*>(emitter.GetNodeType()->GetInput(1))->SetValue(&seconds);
    }
    void BypassStages(bool bypassed)
    {
        for (int i = 0; i < Sample->GetGraph()->GetNumNodes(); ++i) {
            TEffectNode* node = Sample->GetGraph()->GetNode(i);
            if (node->GetNodeType()->Category == TU_RENDER)
                node->GetNodeType()->SetFlag(FL_BYPASSED, bypassed);
        }
    }

    TQuiet Quiet;
    TTestApp App;
    TSampleDocument Sample{App, "fountain"};
    TPreviewDiagnosis Diagnosis;
};

TEST_F(PreviewDiagnosis, AnEffectThatShowsSomethingIsLeftAlone)
{
    EXPECT_EQ(Told(), "") << "it has had no time yet";
    Sample.Run(2);
    EXPECT_EQ(Told(), "");
}

TEST_F(PreviewDiagnosis, AnEmptyGraphTellsHowToBegin)
{
    TDocument fresh(App.Get());
    ASSERT_TRUE(fresh.New());
    Diagnosis.Tick(fresh, -1);
    EXPECT_NE(Text(Diagnosis.GetText()).find("The graph is empty"), std::string::npos);
}

TEST_F(PreviewDiagnosis, AnEffectThatIsNotRunningTellsHowToStartIt)
{
    Sample->ClearEngine();
    EXPECT_TRUE(Tells("not running"));
    EXPECT_TRUE(Tells("Update"));
}

TEST_F(PreviewDiagnosis, AStageWithoutTextureIsNamed)
{
    TEffectNode* stage = Find("TSpriteRenderStage");
    ASSERT_NE(stage, nullptr);
    Sample->ClearEngine();
    stage->GetNodeType()->FindParameterOf<TNodeTextureParameter>("Texture", PK_TEXTURE)->SetValue("");
    EXPECT_TRUE(Tells("\"Sprite Render Stage\" has no texture"));
}

TEST_F(PreviewDiagnosis, BypassedStagesAreTold)
{
    Sample.Run(1);
    BypassStages(true);
    EXPECT_TRUE(Tells("all render stages are bypassed"));
    BypassStages(false);
    EXPECT_EQ(Told(), "");
}

TEST_F(PreviewDiagnosis, AnEffectWithoutAnyStageSaysSo)
{
    Sample.Run(1);
    EXPECT_EQ(Told(), "");
    vector<TToolNode*> stages;
    stages.push_back(static_cast<TToolNode*>(Find("TSpriteRenderStage")));
    ASSERT_NE(stages[0], nullptr);
    Sample->ApplyOperation(new TDeleteGraphNodeOp(stages));
    ASSERT_TRUE(Sample->GetEngine().IsInited());
    EXPECT_TRUE(Tells("no render stage is wired"));
    Sample->Undo();
    EXPECT_EQ(Told(), "");
}

// Of two groups, one that is drawn has no particles yet, and one that has particles is not drawn.
TEST_F(PreviewDiagnosis, AGroupThatEmitsButIsNotDrawnIsNamed)
{
    TEffectGraph& graph = *Sample->GetGraph();
    const int count = graph.GetNumNodes();
    for (int i = 0; i < count; ++i)
        Sample->SelectNode(static_cast<TToolNode*>(graph.GetNode(i)), false);
    Sample->CopySelection();
    Sample->Paste();
    DelayFor(*Find("TEmitter"), 100);
    const TEffectNode* stage = nullptr;
    for (int i = count; i < graph.GetNumNodes(); ++i)
        if (graph.GetNode(i)->GetNodeType()->Category == TU_RENDER)
            stage = graph.GetNode(i);
    ASSERT_NE(stage, nullptr);
    stage->GetNodeType()->SetFlag(FL_BYPASSED, true);
    Sample->RebuildSchedule(true);
    const int group = Sample->GetSchedule().FindGroupOf(*stage);
    ASSERT_NE(group, -1);
    Sample.Run(0.5f);
    EXPECT_EQ(Told(), "");
    Sample.Run(1);
    EXPECT_TRUE(Tells("Group " + std::to_string(group) + " emits, but has no render stage")) << Told();
    stage->GetNodeType()->SetFlag(FL_BYPASSED, false);
    EXPECT_EQ(Told(), "");
}

TEST_F(PreviewDiagnosis, AnEffectThatEmitsNothingNamesItsEmitterAfterAWhile)
{
    TEffectNode* emitter = Find("TEmitter");
    ASSERT_NE(emitter, nullptr);
    DelayFor(*emitter, 100);
    Sample.Run(0.5f);
    EXPECT_EQ(Told(), "");
    Sample.Run(1);
    EXPECT_TRUE(Tells("Nothing has been emitted yet"));
    EXPECT_TRUE(Tells("\"Emitter\""));
}

TEST_F(PreviewDiagnosis, WhatEmitsWithoutATriggerIsNamedThoughAnEmitterIsThere)
{
    TEffectNode* emission = Find("TPointEmitter");
    ASSERT_NE(emission, nullptr);
    const int input = emission->GetNodeType()->FindInput("Emission Trigger");
    Sample->ApplyOperation(new TDeleteGraphEdgeOp(static_cast<TToolEdge*>(emission->GetInput(input))));
    Sample.Run(2);
    EXPECT_TRUE(Tells("Emission Trigger of \"Point Emitter\"")) << Told();
}

// A second group that is not finished may keep the first one from running.
TEST_F(PreviewDiagnosis, AStageThatLacksAWireIsNamedWhereNothingIsEmitted)
{
    const int numNodes = Sample->GetGraph()->GetNumNodes();
    Sample->ClearSelection();
    for (int i = 0; i < numNodes; ++i)
        Sample->SelectNode(static_cast<TToolNode*>(Sample->GetGraph()->GetNode(i)), false);
    Sample->CopySelection();
    Sample->Paste();
    ASSERT_EQ(Sample->GetGraph()->GetNumNodes(), 2 * numNodes);
    Sample->ClearSelection();
    for (int i = numNodes; i < 2 * numNodes; ++i) {
        TEffectNode* node = Sample->GetGraph()->GetNode(i);
        if (node->GetNodeType()->Name.Compare("Integrate") == 0)
            Sample->SelectNode(static_cast<TToolNode*>(node), false);
    }
    Sample->ApplyOperation(new TDeleteGraphNodeOp(Sample->GetSelection()));
    ASSERT_EQ(Sample->GetGraph()->GetNumNodes(), 2 * numNodes - 1);
    Sample.Run(2);
    EXPECT_TRUE(Tells("Wire the Transform of \"Sprite Render Stage\"")) << Told();
    // However long the names in a file are.
    const std::string name = "first" + std::string(4085, 'n') + "last";
    for (int i = 0; i < Sample->GetGraph()->GetNumNodes(); ++i) {
        TEffectNode* node = Sample->GetGraph()->GetNode(i);
        if (node->FindUnwired() == -1)
            continue;
        node->GetNodeType()->GetInput(node->FindUnwired())->Name = name.c_str();
        node->GetNodeType()->Name = name.c_str();
    }
    EXPECT_LT(Told().size(), 200u);
    EXPECT_TRUE(Tells("nnlast\", or delete")) << Told();
}

TEST_F(PreviewDiagnosis, AnEffectWhoseParticlesHaveDiedSaysSo)
{
    Sample.Run(1);
    EXPECT_EQ(Told(), "");
    TEffectNode* emitter = Find("TEmitter");
    DelayFor(*emitter, 100);
    for (int i = 0; i < 20; ++i) {
        Sample.Run(1);
        Told();
    }
    EXPECT_TRUE(Tells("All particles have died"));
    // The start is another run.
    Sample->RebuildSchedule(true);
    EXPECT_EQ(Told(), "");
}

TEST_F(PreviewDiagnosis, AGroupShownAloneThatHasNoParticlesTellsHowToSeeAll)
{
    Sample.Run(2);
    int trigger = -1;
    for (int g = 0; g < Sample->GetSchedule().GetNumGroups(); ++g)
        trigger = Sample->GetSchedule().IsTriggerGroup(g) ? g : trigger;
    ASSERT_NE(trigger, -1);
    EXPECT_TRUE(Tells("Escape shows all", trigger));
    EXPECT_EQ(Told(), "");
}

} // namespace
