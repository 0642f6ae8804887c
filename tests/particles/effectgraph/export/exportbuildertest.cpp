#include "particles/effectgraph/export/efxtestfile.h"

namespace {
using TTexts = std::vector<std::string>;

// A population whose particles fire a second one, at moments that the trigger group decides.
struct TChildGraph
{
    explicit TChildGraph(bool ownTrigger = true)
    {
        Trigger = G.Node("Trigger", TU_TRIGGER, {}, {"Trigger"});
        Parent = AddPopulation("Parent", {});
        Child = AddPopulation("Child", {{"From", TY_VECTOR3}});
        G.Wire(Trigger, 0, Parent, 0);
        if (ownTrigger)
            G.Wire(Trigger, 0, Child, 0);
        G.Wire(Parent, 0, Child, 1);
    }
    TEffectNode* AddPopulation(const char* name, const std::vector<TTestPort>& more)
    {
        std::vector<TTestPort> inputs{{"Emission Trigger"}};
        inputs.insert(inputs.end(), more.begin(), more.end());
        TEffectNode* emitter = G.Node(name, TU_EMITTER, inputs, {{"Position", TY_VECTOR3}});
        Stages.push_back(AddSprite(G));
        G.Wire(emitter, 0, Stages.back(), 0);
        return emitter;
    }

    TTestGraph G;
    TEffectNode* Trigger;
    TEffectNode* Parent;
    TEffectNode* Child;
    std::vector<TEffectNode*> Stages;
};
} // namespace

TEST(TExportBuilder, RenderAttributeLiesInTheRecord)
{
    const TSmallGraph small;
    TExported e(small.G);
    small.Fill(e);
    ASSERT_EQ(e.Build(), "");
    const TExportGroup& group = e.Group(1);
    EXPECT_EQ(group.Attributes[e.Find(1, "Place")].Offset, 0);
    EXPECT_EQ(group.Attributes[e.Find(1, "Emission Trigger")].Offset, -1);
    EXPECT_EQ(group.Stride, 12);
    EXPECT_EQ(TextsOf(group.Emission.Pack), (TTexts{"IdPackFloatN in 0 1 2 0 data 00030000"}));
    EXPECT_EQ(TextsOf(group.Process.Unpack), (TTexts{"IdUnpackFloatN out 0 1 2 3 data 00000000"}));
    EXPECT_EQ(TextsOf(group.Process.Pack), (TTexts{"IdPackFloatN in 0 1 2 0 data 00030000"}));
    EXPECT_EQ(group.Process.Rows, 4);
    EXPECT_TRUE(e.Errors.empty());
}

TEST(TExportBuilder, LogsBothPhasesOfEachGroup)
{
    const TSmallGraph small;
    TExported e(small.G);
    small.Fill(e);
    e.Build();
    EXPECT_EQ(e.Log,
              "Emission[0]:\n\nRow usage before preprocess\n\n"
              "\nProcess[0]:\n\nRow usage before preprocess\nCommand 0: in: out: 0\nCommand 1: in: 0 out:\n\n"
              "Row 0 : [0->2]\n\n\n"
              "Emission[1]:\n\nRow usage before preprocess\nCommand 0: in: out: 0 1 2\n\n"
              "Row 0 : [0->1]\nRow 1 : [0->1]\nRow 2 : [0->1]\n"
              "\nProcess[1]:\n\nRow usage before preprocess\n\n"
              "Row 0 : [0->0]\nRow 1 : [0->0]\nRow 2 : [0->0]\n\n\n");
}

TEST(TExportBuilder, RowOnlyWrittenAtBirthTakesTwoPlaces)
{
    // The value goes from one node of the emission to another; the process never touches it.
    TTestGraph g;
    TEffectNode* trigger = AddTrigger(g);
    TEffectNode* emitter = g.Node("Emitter", TU_EMITTER, {"Emission Trigger"}, {"Value"});
    TEffectNode* node = g.Node("Node", TU_PROCESS, {"In"}, {{"Position", TY_VECTOR3}});
    TEffectNode* stage = AddSprite(g);
    g.Wire(trigger, 0, emitter, 0);
    g.Wire(emitter, 0, node, 0);
    g.Wire(node, 0, stage, 0);
    TExported e(g);
    WriteOutputs(e, emitter);
    WriteOutputs(e, node);
    ASSERT_EQ(e.Build(), "");
    const int index = e.GroupOf(emitter);
    const TExportGroup& group = e.Group(index);
    const int in = e.Find(index, "In");
    ASSERT_EQ(group.Emission.Flags[in][0], 2);
    ASSERT_EQ(group.Process.Flags[in][0], 0);
    // Behind 12 bytes of the stage's place it is packed at 12 and unpacked at 16. The trigger, which the
    // emitter did not tell, is the last.
    EXPECT_EQ(group.Stride, 24);
    EXPECT_EQ(group.Emission.Pack.Commands[0].Data[1], 4);
    EXPECT_EQ(group.Emission.Pack.Commands[0].Data[3], 0);
    EXPECT_EQ(group.Process.Unpack.Commands[1].Data[3], 16);
}

TEST(TExportBuilder, AnOutputThatNobodyReadsTakesNoPlaceInTheRecord)
{
    TTestGraph g;
    TEffectNode* emitter = AddFiredEmitter(g);
    TEffectNode* node = g.Node("Node", TU_PROCESS, {{"Position", TY_VECTOR3}},
                               {{"Position", TY_VECTOR3}, {"More", TY_COLOUR}});
    g.Wire(emitter, 0, node, 0);
    g.Wire(node, 0, AddSprite(g), 0);
    TExported e(g);
    e.Speak(emitter, [](TExportData& data) { data.SetEmitterTrigger(0); });
    WriteOutputs(e, emitter);
    WriteOutputs(e, node);
    ASSERT_EQ(e.Build(), "");
    const TExportGroup& group = e.Group(e.GroupOf(node));
    EXPECT_EQ(group.Stride, 12);
    ASSERT_EQ(group.Process.Execute.Commands.size(), 1);
    EXPECT_EQ(group.Process.Execute.Commands[0].Outputs.size(), 7);
    EXPECT_EQ(TextsOf(group.Process.Pack), (TTexts{"IdPackFloatN in 0 1 2 0 data 00030000"}));
}

TEST(TExportBuilder, PackCommandsMapTheirRowsTwice)
{
    TTestGraph g;
    TEffectNode* emitter = AddFiredEmitter(g);
    TEffectNode* swap = g.Node("Swap", TU_PROCESS, {{"Position", TY_VECTOR3}}, {{"Position", TY_VECTOR3}});
    TEffectNode* stage = AddSprite(g);
    g.Wire(emitter, 0, swap, 0);
    g.Wire(swap, 0, stage, 0);
    TExported e(g);
    e.Speak(emitter, [](TExportData& data) { data.SetEmitterTrigger(0); });
    // Row 0 takes row 1, row 1 takes row 2.
    e.Speak(swap, [](TExportData& data) {
        data.PassThrough(0, 0, 1, 1, 0);
        data.PassThrough(0, 0, 2, 1, 1);
    });
    ASSERT_EQ(e.Build(), "");
    const TExportGroup& group = e.Group(e.GroupOf(swap));
    // The mapped {1, 2, 2} become {2, 2, 2}, and the padding's 0 becomes 1. Nobody packs row 0.
    EXPECT_EQ(TextsOf(group.Process.Unpack), (TTexts{"IdUnpackFloatN out 0 0 1 2 data 00000000"}));
    EXPECT_EQ(TextsOf(group.Process.Pack), (TTexts{"IdPackFloatN in 1 1 1 0 data 00030000"}));
}

TEST(TExportBuilder, GroupConstantsLieBehindTheAttributes)
{
    const TSmallGraph small;
    TExported e(small.G);
    e.Speak(small.Trigger, [](TExportData& data) {
        const float values[2] = {1, 2};
        data.SetCommand("IdEffect", 0);
        data.AddOutput(0, 0, -1);
        data.AddGroupConstants(values, 2);
    });
    ASSERT_EQ(e.Build(), "");
    const TExportGroup& group = e.Group(0);
    EXPECT_EQ(group.Stride, 12);
    EXPECT_EQ(TextsOf(group.Emission.Execute), (TTexts{"IdConstantEmitter out 0 1 data 3f80000040000000"}));
    EXPECT_EQ(TextsOf(group.Emission.Pack), (TTexts{"IdPackFloatN in 0 1 2 2 data 00020004"}));
    EXPECT_EQ(TextsOf(group.Process.Pack), (TTexts{"IdPackFloatN in 0 1 2 0 data 00030000"}));
}

TEST(TExportBuilder, GroupFiresTheOneThatItTriggers)
{
    const TSmallGraph small;
    TExported e(small.G);
    small.Fill(e);
    ASSERT_EQ(e.Build(), "");
    const TExportGroup& group = e.Group(0);
    EXPECT_EQ(TextsOf(group.Process.Execute),
              (TTexts{"IdRandomEmitter out 0", "IdWriteEvents in 0 data 00000000000000000000006400000000"}));
    EXPECT_EQ(group.Process.Execute.Commands[1].Workspace, 1024u);
    ASSERT_EQ(group.Events.size(), 1);
    EXPECT_EQ(group.Events[0].TargetGroup, 1);
    // Behind the first command, its row and the size word.
    EXPECT_EQ(group.Events[0].Offset, 12);
    EXPECT_TRUE(group.Triggers.empty());
    EXPECT_EQ(group.Process.Execute.PatchLocations.at(0).first, NameToCrc("event 0"));
}

TEST(TExportBuilder, ChildTakesItsTriggerThroughAConstant)
{
    TChildGraph graph;
    TExported e(graph.G);
    const int parent = e.GroupOf(graph.Parent);
    const int child = e.GroupOf(graph.Child);
    e.Speak(graph.Parent, [](TExportData& data) { data.SetEmitterTrigger(0); });
    e.Speak(graph.Child, [](TExportData& data) { data.SetEmitterTrigger(0); });
    WriteOutputs(e, graph.Parent);
    ASSERT_EQ(e.Build(), "");
    const TExportGroup& trigger = e.Group(e.GroupOf(graph.Trigger));
    ASSERT_EQ(trigger.Triggers.size(), 1);
    EXPECT_EQ(trigger.Triggers[0].Group, parent);
    EXPECT_EQ(trigger.Triggers[0].Number, 0);
    EXPECT_EQ(trigger.Triggers[0].Row, 0);
    const TExportGroup& firing = e.Group(parent);
    EXPECT_EQ(TextsOf(firing.Process.Execute),
              (TTexts{"IdConstantEmitter out 3 data 00000000",
                      "IdWriteEvents in 0 1 2 0 3 data 00000000000000100000006400000000"}));
    ASSERT_EQ(firing.Events.size(), 1);
    EXPECT_EQ(firing.Events[0].TargetGroup, child);
    const auto location = firing.Process.Execute.PatchLocations.find(NameToCrc("trigger 0"));
    ASSERT_NE(location, firing.Process.Execute.PatchLocations.end());
    EXPECT_EQ(location->second.Type, 1);
    EXPECT_EQ(e.Group(child).EventSize, 16);
}

TEST(TExportBuilder, EventWithoutATriggerGroupHasNoTriggerRow)
{
    TChildGraph graph(false);
    TExported e(graph.G);
    e.Speak(graph.Parent, [](TExportData& data) { data.SetEmitterTrigger(0); });
    e.Speak(graph.Child, [](TExportData& data) { data.SetEmitterTrigger(0); });
    WriteOutputs(e, graph.Parent);
    ASSERT_EQ(e.Build(), "");
    EXPECT_TRUE(e.Group(e.GroupOf(graph.Trigger)).Triggers.empty());
    const TExportGroup& firing = e.Group(e.GroupOf(graph.Parent));
    ASSERT_EQ(firing.Process.Execute.Commands.size(), 1);
    EXPECT_EQ(firing.Process.Execute.Commands[0].Inputs.size(), 4);
}

TEST(TExportBuilder, SecondParentGroupIsReportedAndTaken)
{
    TChildGraph graph;
    TEffectNode* grandchild = graph.AddPopulation("Third", {{"A", TY_VECTOR3}, {"B", TY_VECTOR3}});
    graph.G.Wire(graph.Trigger, 0, grandchild, 0);
    graph.G.Wire(graph.Parent, 0, grandchild, 1);
    graph.G.Wire(graph.Child, 0, grandchild, 2);
    TExported e(graph.G);
    for (TEffectNode* emitter : {graph.Parent, graph.Child, grandchild})
        e.Speak(emitter, [](TExportData& data) { data.SetEmitterTrigger(0); });
    ASSERT_EQ(e.Build(), "");
    EXPECT_EQ(e.Errors, (TTexts{"Cannot export effect - multiple parent groups detected."}));
    const TExportGroup& last = e.Group(e.GroupOf(graph.Child));
    const TExportGroup& first = e.Group(e.GroupOf(graph.Parent));
    const int target = e.GroupOf(grandchild);
    int fired = 0;
    for (const TExportEvent& event : last.Events)
        fired += event.TargetGroup == target ? 1 : 0;
    for (const TExportEvent& event : first.Events)
        fired += event.TargetGroup == target ? 10 : 0;
    EXPECT_EQ(fired, 1);
    // Three rows of the last parent, padded, and the trigger's.
    EXPECT_EQ(last.Process.Execute.Commands.back().Inputs.size(), 5);
    EXPECT_EQ(TEfxBytes(WriteAndRead(*e)).U32(0), static_cast<uint32_t>(e->GetResult().Groups.size()));
}

// A value that both fires the emitter and is drawn has no place in the particle record.
TEST(TExportBuilder, TriggerThatIsDrawnIsListedAtMinusOne)
{
    TTestGraph g;
    TEffectNode* random = g.Node("Random", TU_PROCESS, {}, {"Value"}, FL_PROCESSHINT);
    TEffectNode* emitter = g.Node("Emitter", TU_EMITTER, {"Emission Trigger"}, {{"Position", TY_VECTOR3}});
    TEffectNode* stage = g.Node("Stage", TU_RENDER, {{"Place", TY_VECTOR3}, "Blend"}, {});
    g.Wire(random, 0, emitter, 0);
    g.Wire(random, 0, stage, 1);
    g.Wire(emitter, 0, stage, 0);
    TExported e(g);
    e.Speak(emitter, [](TExportData& data) { data.SetEmitterTrigger(0); });
    ASSERT_EQ(e.Build(), "");
    const int group = e.GroupOf(stage);
    ASSERT_EQ(e.Group(group).RenderAttributes.size(), 2);
    EXPECT_EQ(e.Group(group).RenderAttributes[0].Offset, 0);
    EXPECT_EQ(e.Group(group).RenderAttributes[1].Offset, 0xFF);
}

TEST(TExportBuilder, RenderAttributeIsNamedUpToItsFirstBlank)
{
    const TSmallGraph small("colour of smoke", TY_COLOUR);
    TExported e(small.G);
    small.Fill(e);
    ASSERT_EQ(e.Build(), "");
    ASSERT_EQ(e.Group(1).RenderAttributes.size(), 1);
    const TRenderAttribute& attribute = e.Group(1).RenderAttributes[0];
    EXPECT_EQ(attribute.NameId, NameToCrc("colour"));
    EXPECT_EQ(attribute.Offset, 0);
    EXPECT_EQ(attribute.VertexType, 2);
    EXPECT_EQ(attribute.NumComponents, 4);
    EXPECT_EQ(e.Group(1).Attributes[e.Find(1, "colour of smoke")].NameId, NameToCrc("colour of smoke"));
}

TEST(TExportBuilder, TransformYieldsTwoRenderAttributes)
{
    const TSmallGraph small("position x", TY_TRANSFORM);
    TExported e(small.G);
    small.Fill(e);
    ASSERT_EQ(e.Build(), "");
    ASSERT_EQ(e.Group(1).RenderAttributes.size(), 2);
    EXPECT_EQ(e.Group(1).RenderAttributes[0].NumComponents, 3);
    EXPECT_EQ(e.Group(1).RenderAttributes[1].NameId, NameToCrc("position_q"));
    EXPECT_EQ(e.Group(1).RenderAttributes[1].Offset, 12);
    EXPECT_EQ(e.Group(1).RenderAttributes[1].NumComponents, 3);
}

TEST(TExportBuilder, ParticleCountTimesStrideIsAMultipleOf16)
{
    struct TCase
    {
        int Type;
        int Count;
        int Expected;
    };
    for (const TCase& c :
         {TCase{TY_VECTOR3, 100, 100}, TCase{TY_VECTOR3, 101, 104}, TCase{TY_COLOUR, 101, 101},
          TCase{TY_SCALE, 7, 8}, TCase{TY_SCALE, -3, -2}, TCase{TY_SCALAR, 0, 0}}) {
        TSmallGraph small("Place", c.Type);
        small.G.Int(small.Emitter, "Particle Count", c.Count);
        TExported e(small.G);
        small.Fill(e);
        ASSERT_EQ(e.Build(), "");
        EXPECT_EQ(e.Group(1).ParticleCount, c.Expected) << c.Type << ' ' << c.Count;
    }
}

TEST(TExportBuilder, HeadersTellWhatAPhaseNeeds)
{
    const TFullGraph full;
    TExported e(full.G);
    full.Fill(e);
    ASSERT_EQ(e.Build(), "");
    const TExportGroup& trigger = e.Group(e.GroupOf(full.Trigger));
    EXPECT_EQ(trigger.Emission.Header.Phase, 0);
    EXPECT_EQ(trigger.Emission.Header.InputBuffers, 1);
    EXPECT_EQ(trigger.Emission.Header.OutputBuffers, 1);
    EXPECT_EQ(trigger.Emission.Header.WorkspaceKilobytes, 0);
    EXPECT_EQ(trigger.Process.Header.Phase, 1);
    EXPECT_EQ(trigger.Process.Header.InputBuffers, 1);
    const TExportGroup& group = e.Group(e.GroupOf(full.Force));
    EXPECT_EQ(group.Emission.Header.InputBuffers, 1);
    EXPECT_EQ(group.Emission.Header.Rows, group.Emission.Rows);
    EXPECT_EQ(group.Process.Header.ExecuteWords, group.Process.Execute.Words.size());
    EXPECT_EQ(group.Process.Header.NumParams, group.Process.Execute.Commands.size());
    EXPECT_EQ(group.Process.Header.WorkspaceKilobytes, 1);
    int size = 48 + 32;
    for (const TCommandStream* stream : {&group.Process.Unpack, &group.Process.Execute, &group.Process.Pack})
        size += (stream->Words.size() + 3) / 4 * 16;
    size += 32 * group.Process.Execute.Commands.size();
    EXPECT_EQ(group.Process.Header.ProgramKilobytes, (size + 1023) / 1024);
}

TEST(TExportBuilder, EmissionWithoutAPayloadHasNoInputBuffer)
{
    const TSmallGraph small;
    TExported e(small.G);
    small.Fill(e);
    ASSERT_EQ(e.Build(), "");
    EXPECT_EQ(e.Group(1).EventSize, 0);
    EXPECT_EQ(e.Group(1).Emission.Header.InputBuffers, 0);
    EXPECT_EQ(e.Group(0).Emission.Header.InputBuffers, 1);
}

TEST(TExportBuilder, TransformsAndBoxesAreResolvedToPatches)
{
    const TFullGraph full;
    TExported e(full.G);
    full.Fill(e);
    ASSERT_EQ(e.Build(), "");
    const TExportGroup& group = e.Group(e.GroupOf(full.Force));
    auto idAt = [](const TCommandStream& stream, int n) { return stream.PatchLocations.at(n).first; };
    EXPECT_EQ(idAt(group.Emission.Execute, group.Emission.Transforms[0].Ordinal), NameToCrc("transform 0"));
    EXPECT_EQ(idAt(group.Process.Execute, group.Process.Transforms[0].Ordinal), NameToCrc("transform 0"));
    EXPECT_EQ(idAt(group.Process.Execute, group.Bounds[0].Ordinal), NameToCrc("bb 0"));
    EXPECT_EQ(group.Bounds[1].Ordinal, -1);
}

TEST(TExportBuilder, ANodesPatchWithAnEventsNameStops)
{
    const TSmallGraph small;
    TExported e(small.G);
    small.Fill(e);
    e.Speak(small.Trigger, [](TExportData& data) {
        data.SetData(nullptr, 4);
        data.AddPatch("event 0", 0, 0);
        data.SetCommand("IdEffect", 0);
    });
    EXPECT_EQ(e.Build(), "it->second.Offsets.size() == 1");
}

TEST(TExportBuilder, WhatDoesNotFitTheFileStops)
{
    TSmallGraph small;
    small.G.Int(small.Trigger, "Per frame max emission", 65536);
    TExported e(small.G);
    small.Fill(e);
    EXPECT_EQ(e.Build(), "value <= 0xFFFF : maximum emission of 65536 does not fit the file");
    const TSmallGraph again;
    TExported shared(again.G);
    again.Fill(shared);
    const std::vector<uint8_t> bytes(65000);
    shared->AddSharedData("a", bytes.data(), 65000);
    shared->AddSharedData("b", bytes.data(), 65000);
    shared->AddSharedData("c", bytes.data(), 1);
    EXPECT_EQ(shared.Build(), "value <= 0xFFFF : shared data offset of 130000 does not fit the file");
}

namespace {
// Four children of one population, each with a trigger of the trigger group.
std::vector<TEffectNode*> AddChildren(TChildGraph& graph, int count)
{
    std::vector<TEffectNode*> children = {graph.Child};
    for (int i = 1; i < count; ++i) {
        TEffectNode* trigger = graph.G.Node("Other", TU_TRIGGER, {}, {"Unused", "Due"});
        TEffectNode* child = graph.AddPopulation("Child", {{"From", TY_VECTOR3}});
        graph.G.Wire(trigger, 1, child, 0);
        graph.G.Wire(graph.Parent, 0, child, 1);
        children.push_back(child);
    }
    return children;
}

void TellTriggers(TExported& e, const std::vector<TEffectNode*>& emitters)
{
    for (TEffectNode* emitter : emitters)
        e.Speak(emitter, [](TExportData& data) { data.SetEmitterTrigger(0); });
}
} // namespace

TEST(TExportBuilder, EachChildOfAParentHasATriggerNumberOfItsOwn)
{
    TChildGraph graph;
    std::vector<TEffectNode*> emitters = AddChildren(graph, 4);
    emitters.push_back(graph.Parent);
    TExported e(graph.G);
    TellTriggers(e, emitters);
    ASSERT_EQ(e.Build(), "");
    const TExportGroup& trigger = e.Group(e.GroupOf(graph.Trigger));
    ASSERT_EQ(trigger.Triggers.size(), 4);
    const TExportGroup& parent = e.Group(e.GroupOf(graph.Parent));
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(trigger.Triggers[i].Group, e.GroupOf(graph.Parent));
        EXPECT_EQ(trigger.Triggers[i].Number, i);
        const std::string name = "trigger " + std::to_string(i);
        const auto location = parent.Process.Execute.PatchLocations.find(NameToCrc(name.c_str()));
        ASSERT_NE(location, parent.Process.Execute.PatchLocations.end()) << name;
        EXPECT_EQ(location->second.Offsets.size(), 1);
    }
    // Each names the row of its own count, not the first.
    for (int i = 0; i < 4; ++i) {
        const TExportGroup& child = e.Group(e.GroupOf(emitters[static_cast<size_t>(i)]));
        EXPECT_EQ(trigger.Triggers[i].Row, trigger.Attributes[child.TriggerAttrib].RowStart);
    }
}

TEST(TExportBuilder, ATriggersRowIsLookedUpInTheGroupThatHasIt)
{
    TChildGraph graph;
    TEffectNode* swap = graph.G.Node("Swap", TU_TRIGGER, {"In"}, {"Out"});
    graph.G.Wire(graph.Trigger, 0, swap, 0);
    TEffectNode* child = graph.AddPopulation("Late", {{"From", TY_VECTOR3}});
    graph.G.Wire(swap, 0, child, 0);
    graph.G.Wire(graph.Parent, 0, child, 1);
    TExported e(graph.G);
    TellTriggers(e, {graph.Parent, graph.Child, child});
    WriteOutputs(e, graph.Trigger);
    e.Speak(swap, [](TExportData& data) { data.PassThrough(0, 0, 0, -1, -1); });
    ASSERT_EQ(e.Build(), "");
    const TExportGroup& trigger = e.Group(e.GroupOf(graph.Trigger));
    ASSERT_EQ(trigger.Triggers.size(), 2);
    // What the swap passes on lies in the row that it comes from.
    EXPECT_EQ(trigger.Triggers[1].Row, trigger.Triggers[0].Row);
    EXPECT_NE(e.Group(e.GroupOf(child)).TriggerAttrib, e.Group(e.GroupOf(graph.Child)).TriggerAttrib);
}

TEST(TExportBuilder, AValueOfBirthThatOnlyAChildUsesHasOnePlace)
{
    TTestGraph g;
    TEffectNode* trigger = AddTrigger(g);
    TEffectNode* emitter =
        g.Node("Emitter", TU_EMITTER, {"Emission Trigger"}, {{"Position", TY_VECTOR3}, "Mark"});
    TEffectNode* child =
        g.Node("Child", TU_EMITTER, {"Emission Trigger", "Mark"}, {{"Position", TY_VECTOR3}});
    g.Wire(trigger, 0, emitter, 0);
    g.Wire(trigger, 0, child, 0);
    g.Wire(emitter, 1, child, 1);
    for (TEffectNode* source : {emitter, child})
        g.Wire(source, 0, AddSprite(g), 0);
    TExported e(g);
    TellTriggers(e, {emitter, child});
    WriteOutputs(e, emitter);
    ASSERT_EQ(e.Build(), "");
    const int index = e.GroupOf(emitter);
    const TExportGroup& group = e.Group(index);
    const int mark =
        e.GetSchedule().GetAttributeExternalAttrib(e.GroupOf(child), e.Find(e.GroupOf(child), "Mark"));
    EXPECT_EQ(group.Emission.Flags[mark][0], TRowFlags::Written);
    EXPECT_EQ(group.Process.Flags[mark][0], TRowFlags::Read);
    // Three rows of the place and one of the mark.
    EXPECT_EQ(group.Stride, 16);
    EXPECT_EQ(TextsOf(group.Emission.Pack), (TTexts{"IdPackFloatN in 0 1 2 3 data 00040000"}));
    EXPECT_EQ(TextsOf(group.Process.Unpack), (TTexts{"IdUnpackFloatN out 0 1 2 3 data 00000000"}));
}

TEST(TExportBuilder, RowsThatTheirFirstWriterLeavesOutAreZero)
{
    TSmallGraph small("Place", TY_TRANSFORM);
    TExported e(small.G);
    WriteOutputs(e, small.Trigger);
    e.Speak(small.Emitter, [](TExportData& data) {
        data.SetEmitterTrigger(0);
        data.SetCommand("IdRandomEmitter", 0);
        data.AddOutput(0, 0, 3);
    });
    ASSERT_EQ(e.Build(), "");
    const TExportGroup& group = e.Group(1);
    EXPECT_EQ(
        TextsOf(group.Emission.Execute),
        (TTexts{"IdConstantEmitter out 0 1 2 data 000000000000000000000000", "IdRandomEmitter out 3 4 5"}));
    EXPECT_EQ(TextsOf(group.Emission.Pack),
              (TTexts{"IdPackFloatN in 3 4 5 0 data 00040000", "IdPackFloatN in 1 2 3 3 data 00020010"}));
    EXPECT_EQ(group.Stride, 24);
}

TEST(TExportBuilder, AnAttributeOfANodeWithoutACommandIsZero)
{
    TSmallGraph small;
    TEffectNode* noise = small.G.Node("Noise", TU_PROCESS, {{"At", TY_VECTOR3}}, {"Value"});
    TEffectNode* user =
        small.G.Node("User", TU_PROCESS, {"Value", {"Place", TY_VECTOR3}}, {{"Place", TY_VECTOR3}});
    TEffectNode* stage = AddSprite(small.G);
    small.G.Wire(small.Emitter, 0, noise, 0);
    small.G.Wire(noise, 0, user, 0);
    small.G.Wire(small.Emitter, 0, user, 1);
    small.G.Wire(user, 0, stage, 0);
    TExported e(small.G);
    small.Fill(e);
    e.Speak(user, [](TExportData& data) {
        data.SetCommand("IdAdd", 0);
        data.AddInput(0, 0, 1);
        data.AddInput(1, 0, 3);
        data.AddOutput(0, 0, 3);
    });
    const int index = e.GroupOf(user);
    ASSERT_EQ(e.Build(), "");
    const TExportGroup& group = e.Group(index);
    int value = -1;
    for (int a = 0; a < group.Attributes.size(); ++a)
        if (group.Attributes[a].RowCount == 1 && group.Attributes[a].FirstWriter != -1)
            value = a;
    ASSERT_NE(value, -1);
    EXPECT_EQ(group.Emission.Flags[value][0], TRowFlags::Written);
    EXPECT_NE(group.Process.Flags[value][0], 0);
    EXPECT_EQ(CommandText(group.Emission.Execute.Commands[0]).substr(0, 23), "IdConstantEmitter out 0");
}

TEST(TExportBuilder, ACountThatIsATriggerAndAValueIsWrittenForBoth)
{
    TTestGraph g;
    TEffectNode* trigger = AddTrigger(g);
    TEffectNode* emitter =
        g.Node("Emitter", TU_EMITTER, {"Emission Trigger", "Number"}, {{"Position", TY_VECTOR3}});
    g.Wire(trigger, 0, emitter, 0);
    g.Wire(trigger, 0, emitter, 1);
    g.Wire(emitter, 0, AddSprite(g), 0);
    TExported e(g);
    TellTriggers(e, {emitter});
    WriteOutputs(e, trigger);
    ASSERT_EQ(e.Build(), "");
    EXPECT_EQ(e.Errors, TTexts{});
    const TExportGroup& parent = e.Group(e.GroupOf(trigger));
    // The value with its padding, and the trigger.
    EXPECT_EQ(CommandText(parent.Process.Execute.Commands.back()).substr(0, 26),
              "IdWriteEvents in 0 0 0 0 0");
    const TExportGroup& fired = e.Group(e.GroupOf(emitter));
    EXPECT_EQ(fired.EventSize, 16);
    EXPECT_EQ(fired.Emission.Unpack.Commands.size(), 1);
}

TEST(TExportBuilder, ACountOfAnotherGroupThanTheParentIsNoValueAndStartsAtZero)
{
    TChildGraph graph;
    TEffectNode* child = graph.AddPopulation("Counter", {"Number", {"From", TY_VECTOR3}});
    graph.G.Wire(graph.Trigger, 0, child, 0);
    graph.G.Wire(graph.Trigger, 0, child, 1);
    graph.G.Wire(graph.Parent, 0, child, 2);
    TExported e(graph.G);
    TellTriggers(e, {graph.Parent, graph.Child, child});
    WriteOutputs(e, graph.Parent);
    ASSERT_EQ(e.Build(), "");
    EXPECT_EQ(e.Errors, TTexts{});
    const int index = e.GroupOf(child);
    const TExportGroup& fired = e.Group(index);
    const int number = e.Find(index, "Number");
    EXPECT_EQ(fired.EventSize, 16);
    EXPECT_EQ(fired.Emission.Unpack.Commands.size(), 1);
    EXPECT_EQ(fired.Emission.Flags[number][0] & TRowFlags::Written, TRowFlags::Written);
    ASSERT_FALSE(fired.Emission.Execute.Commands.empty());
    EXPECT_EQ(CommandText(fired.Emission.Execute.Commands[0]).substr(0, 17), "IdConstantEmitter");
}

TEST(TExportBuilder, ABypassedEmittersTriggerIsNoValue)
{
    TTestGraph g;
    TEffectNode* trigger = AddTrigger(g);
    TEffectNode* emitter = AddEmitter(g);
    g.Wire(trigger, 0, emitter, 0);
    g.Wire(emitter, 0, AddSprite(g), 0);
    TExported e(g);
    // The emitter does not tell its trigger.
    ASSERT_EQ(e.Build(), "");
    const TExportGroup& fired = e.Group(e.GroupOf(emitter));
    EXPECT_EQ(fired.EventSize, 0);
    EXPECT_TRUE(fired.Emission.Unpack.Commands.empty());
    EXPECT_TRUE(e.Group(e.GroupOf(trigger)).Events.empty());
}

TEST(TExportBuilder, AnEmittersTriggerIsNoValueWhateverItsName)
{
    TTestGraph g;
    TEffectNode* trigger = AddTrigger(g);
    TEffectNode* emitter = g.Node("Emitter", TU_EMITTER, {"Births"}, {{"Position", TY_VECTOR3}});
    g.Wire(trigger, 0, emitter, 0);
    g.Wire(emitter, 0, AddSprite(g), 0);
    TExported e(g);
    TellTriggers(e, {emitter});
    ASSERT_EQ(e.Build(), "");
    const TExportGroup& fired = e.Group(e.GroupOf(emitter));
    EXPECT_EQ(fired.EventSize, 0);
    EXPECT_TRUE(fired.Emission.Unpack.Commands.empty());
    EXPECT_EQ(e.Group(e.GroupOf(trigger)).Events.size(), 1);
}
