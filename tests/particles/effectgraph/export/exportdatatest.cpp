#include "particles/effectgraph/export/exporttestgraph.h"

namespace {
using TTexts = std::vector<std::string>;

// A trigger, an emitter and a stage around one node of the process.
struct TChain
{
    TChain(const std::vector<TTestPort>& inputs, const std::vector<TTestPort>& outputs, int type = TY_VECTOR3,
           const char* wired = "In")
    {
        TEffectNode* trigger = G.Node("Trigger", TU_TRIGGER, {}, {"Trigger"});
        Emitter = G.Node("Emitter", TU_EMITTER, {"Emission Trigger"}, {{"Out", type}});
        Node = G.Node("Node", TU_PROCESS, inputs, outputs);
        Stage = G.Node("Stage", TU_RENDER, {{"Place", type}}, {});
        G.Wire(trigger, 0, Emitter, 0);
        G.Wire(Emitter, "Out", Node, wired);
        G.Wire(Node, 0, Stage, 0);
    }
    std::string AssertionIn(const std::function<void(TExportData&)>& work)
    {
        TExported e(G);
        e.Place(Node);
        const std::string result = AssertionOf([&] { work(*e); });
        e->Flush();
        return result;
    }

    TTestGraph G;
    TEffectNode* Emitter;
    TEffectNode* Node;
    TEffectNode* Stage;
};

float BigFloat(const TDataBlock& block, int at)
{
    uint32_t word = 0;
    for (int i = 0; i < 4; ++i)
        word = word << 8 | block[at + i];
    float value;
    memcpy(&value, &word, 4);
    return value;
}
} // namespace

TEST(TExportData, UnconnectedInputBecomesAConstantAheadOfTheCommand)
{
    TChain chain({{"In", TY_VECTOR3}, {"Turn", TY_QUATERNION}, {"By", TY_SCALAR}}, {{"In", TY_VECTOR3}});
    chain.G.InputValue(chain.Node, "Turn", {1, 2, 3});
    chain.G.InputValue(chain.Node, "By", {4});
    TExported e(chain.G);
    e.Speak(chain.Node, [](TExportData& data) {
        data.SetCommand("IdAdd", 8);
        data.AddInput(0, 0, 3);
        data.AddInput(1, 0, -1);
        data.AddInput(2, 0, 2);
        data.AddOutput(0, 1, 2);
    });
    const int index = e.GroupOf(chain.Node);
    EXPECT_EQ(TextsOf(e.Group(index).Process.Execute),
              (TTexts{"IdConstantEmitter out t1 t2 t3 t4 t5 t6 data 3f80000040000000404000000000000040800000"
                      "00000000",
                      "IdAdd in 0 1 2 t1 t2 t3 t4 t5 t6 out 1 2"}));
    EXPECT_EQ(e.Group(index).NumTemps, 7);
    EXPECT_EQ(e.Group(index).Process.Flags[0][0], 1);
    EXPECT_EQ(e.Group(index).Process.Flags[0][1], 3);
    EXPECT_EQ(e.Group(index).Process.Execute.Commands[1].Workspace, 8u);
    EXPECT_TRUE(e->OutputEmpty());
}

TEST(TExportData, RowWrittenBeforeItIsReadKeepsItsFlags)
{
    TChain chain({{"In", TY_VECTOR3}}, {{"In", TY_VECTOR3}});
    TExported e(chain.G);
    e.Speak(chain.Node, [](TExportData& data) {
        data.SetCommand("IdAdd", 0);
        data.AddOutput(0, 0, 1);
        data.AddInput(0, 0, 2);
    });
    EXPECT_EQ(e.Group(1).Process.Flags[0][0], 2);
    EXPECT_EQ(e.Group(1).Process.Flags[0][1], 1);
}

TEST(TExportData, OutputThatNobodyReadsGoesToTheDumpRow)
{
    TChain chain({{"In", TY_VECTOR3}}, {{"In", TY_VECTOR3}, {"More", TY_COLOUR}});
    TExported e(chain.G);
    e.Speak(chain.Node, [](TExportData& data) {
        data.SetCommand("IdAdd", 0);
        data.AddOutput(1, 0, -1);
    });
    EXPECT_EQ(TextsOf(e.Group(1).Process.Execute), (TTexts{"IdAdd out t0 t0 t0 t0"}));
}

TEST(TExportData, CountOfMoreThanFourInputRowsStops)
{
    TChain chain({{"In", TY_TRANSFORM}, {"Free", TY_TRANSFORM}}, {{"In", TY_TRANSFORM}}, TY_TRANSFORM);
    EXPECT_EQ(chain.AssertionIn([](TExportData& data) { data.AddInput(0, 0, -1); }), "count <= 4");
    EXPECT_EQ(chain.AssertionIn([](TExportData& data) { data.AddInput(1, 0, -1); }), "count <= 4");
    EXPECT_EQ(chain.AssertionIn([](TExportData& data) { data.AddInput(0, 3, -1); }), "");
    EXPECT_EQ(chain.AssertionIn([](TExportData& data) { data.AddOutput(0, 0, -1); }), "");
}

TEST(TExportData, CountAboveTheAttributesRowsStops)
{
    TChain chain({{"In", TY_VECTOR3}}, {{"In", TY_VECTOR3}});
    EXPECT_EQ(chain.AssertionIn([](TExportData& data) { data.AddInput(0, 0, 4); }), "count <= attr.RowCount");
    EXPECT_EQ(chain.AssertionIn([](TExportData& data) { data.AddOutput(0, 0, 4); }),
              "count <= attr.RowCount");
}

TEST(TExportData, SetDataTwiceStops)
{
    TChain chain({{"In", TY_VECTOR3}}, {{"In", TY_VECTOR3}});
    EXPECT_EQ(
        chain.AssertionIn([](TExportData& data) { data.SetData(nullptr, 4), data.SetData(nullptr, 4); }),
        "LastData == 0");
}

TEST(TExportData, DataLeftPendingStopsTheDestructor)
{
    TChain chain({{"In", TY_VECTOR3}}, {{"In", TY_VECTOR3}});
    const TScheduled scheduled(chain.G);
    EXPECT_EQ(AssertionOf([&] {
                  TExportData data(scheduled.Schedule);
                  data.SetData(nullptr, 4);
              }),
              "LastData == 0");
}

TEST(TExportData, SetDataAndSetCommandEndThePendingCommandOnly)
{
    TChain chain({{"In", TY_VECTOR3}}, {{"In", TY_VECTOR3}});
    TExported e(chain.G);
    e.Speak(chain.Node, [](TExportData& data) {
        data.AddPatch("early", 5, 1);
        const uint8_t bytes[4] = {1, 2, 3, 4};
        data.SetData(bytes, 4);
        data.SetCommand("IdAdd", 0);
        data.AddInput(0, 0, 1);
        data.SetData(nullptr, 2);
        EXPECT_FALSE(data.OutputEmpty());
        data.SetCommand("IdPrune", 0);
        data.SetCommand("IdUpdateAge", 0);
    });
    const TCommandStream& stream = e.Group(1).Process.Execute;
    EXPECT_EQ(TextsOf(stream), (TTexts{"IdAdd in 0 data 01020304", "IdPrune data 0000", "IdUpdateAge"}));
    ASSERT_EQ(stream.Commands[0].Patches.size(), 1);
    EXPECT_EQ(stream.Commands[0].Patches[0].NameId, NameToCrc("early"));
    EXPECT_EQ(stream.Commands[0].Patches[0].Type, 5u);
    EXPECT_EQ(stream.Commands[0].Patches[0].Offset, 1u);
}

TEST(TExportData, TransformsAreNumberedInTheGroupsList)
{
    TChain chain({{"In", TY_VECTOR3}, {"Dir", TY_VECTOR3}}, {{"In", TY_VECTOR3}});
    TExported e(chain.G);
    e.Speak(chain.Node, [](TExportData& data) {
        data.SetData(nullptr, 8);
        data.AddDataTransform(4, 4);
        data.SetCommand("IdAdd", 0);
        data.AddInputTransform(0, 9);
        data.AddInput(1, 0, 1);
        data.AddInputTransform(1, 3);
        data.AddInput(1, 0, 3);
    });
    const TExportGroup& group = e.Group(1);
    ASSERT_EQ(group.Process.Transforms.size(), 2);
    EXPECT_EQ(group.Process.Transforms[0].Type, 3);
    EXPECT_EQ(group.Process.Transforms[1].Type, 4);
    const vector<TCommand>& commands = group.Process.Execute.Commands;
    ASSERT_EQ(commands.size(), 2);
    EXPECT_EQ(commands[0].Patches[0].NameId, NameToCrc("transform 0"));
    EXPECT_EQ(commands[0].Patches[0].Type, 0u);
    EXPECT_EQ(commands[0].Patches[0].Offset, 4u);
    EXPECT_EQ(commands[1].Patches[0].NameId, NameToCrc("transform 1"));
    EXPECT_EQ(commands[1].Patches[0].Offset, 4u);
}

TEST(TExportData, TransformOrPatchWithoutDataStops)
{
    const char* text = "!Commands.empty() && Commands.back().Data != 0";
    TChain chain({{"In", TY_VECTOR3}, {"Dir", TY_VECTOR3}}, {{"In", TY_VECTOR3}});
    const std::function<void(TExportData&)> works[] = {
        [](TExportData& data) { data.AddDataTransform(4, 4); },
        [](TExportData& data) { data.AddPatch("x", 0, 0); },
    };
    for (const auto& work : works) {
        TExported e(chain.G);
        e.Place(chain.Node);
        EXPECT_EQ(AssertionOf([&] {
                      e->SetCommand("IdAdd", 0);
                      e->AddInput(1, 0, 3);
                      work(*e);
                      e->Flush();
                  }),
                  text);
    }
}

TEST(TExportData, PassThroughOfAnAttributeMapsRows)
{
    // Nothing of it is per particle, so that it runs at a particle's birth.
    TChain chain({{"In", TY_VECTOR3}}, {{"Out", TY_VECTOR3}});
    TExported e(chain.G);
    const int in = e.Find(1, "In");
    const int out = e.Find(1, "Place");
    ASSERT_NE(in, out);
    e.Speak(chain.Node, [](TExportData& data) {
        data.PassThrough(0, 0, 2, 1, 0);
        data.PassThrough(0, 0, 0, -1, 1);
    });
    const TExportGroup& group = e.Group(1);
    const uint32_t from = static_cast<uint32_t>(group.Attributes[in].RowStart);
    const int to = group.Attributes[out].RowStart;
    EXPECT_EQ(group.Emission.RowMap[to], from + 2);
    EXPECT_EQ(group.Emission.RowMap[to + 1], from);
    EXPECT_EQ(group.Emission.RowMap[to + 2], from + 1);
    EXPECT_EQ(group.Process.RowMap[to], static_cast<uint32_t>(to));
    EXPECT_EQ(group.Emission.Flags[out][2], 2);
    EXPECT_EQ(group.Emission.Flags[in][0], 0);
    EXPECT_TRUE(group.Emission.Execute.Commands.empty());
}

TEST(TExportData, RowsArePassedOnToTheCommandsBehind)
{
    TTestGraph g;
    TEffectNode* emitter = AddFiredEmitter(g);
    TEffectNode* turn = AddForce(g, "Turn");
    TEffectNode* force = AddForce(g);
    g.Wire(emitter, 0, turn, 0);
    g.Wire(turn, 0, force, 0);
    g.Wire(force, 0, AddSprite(g), 0);
    TExported e(g);
    // Row 0 takes what row 2 holds.
    e.Speak(turn, [](TExportData& data) { data.PassThrough(0, 0, 2, 1, 0); });
    e.Speak(force, [](TExportData& data) {
        data.SetCommand("IdAdd", 0);
        data.AddInput(0, 0, 2);
        data.AddOutput(0, 0, 1);
    });
    EXPECT_EQ(TextsOf(e.Group(1).Process.Execute), (TTexts{"IdAdd in 2 1 out 2"}));
    // The flags are the attribute's rows', whatever row holds them.
    EXPECT_EQ(e.Group(1).Process.Flags[0][0], 2);
    EXPECT_EQ(e.Group(1).Process.Flags[0][1], 1);
    EXPECT_EQ(e.Group(1).Process.Flags[0][2], 0);
}

TEST(TExportData, PassThroughOfAFixedValueWritesTheOutputsRows)
{
    TChain chain({{"In", TY_VECTOR3}, {"Fix", TY_COLOUR}}, {{"Out", TY_VECTOR3}});
    chain.G.InputValue(chain.Node, "Fix", {1, 2, 4, 8});
    TExported e(chain.G);
    e.Speak(chain.Node, [](TExportData& data) { data.PassThrough(1, 0, 0, -1, -1); });
    const TExportGroup& group = e.Group(1);
    const TExportAttribute& out = group.Attributes[e.Find(1, "Place")];
    ASSERT_EQ(group.Emission.Execute.Commands.size(), 1);
    const TCommand& command = group.Emission.Execute.Commands[0];
    ASSERT_EQ(command.Outputs.size(), 3);
    EXPECT_EQ(command.Outputs[2], static_cast<uint32_t>(out.RowStart + 2));
    EXPECT_EQ(BigFloat(command.Data, 8), 4.0f);
    EXPECT_EQ(group.Emission.Flags[e.Find(1, "Place")][0], 2);
}

TEST(TExportData, PassThroughToNobodyDoesNothing)
{
    TChain chain({{"In", TY_VECTOR3}}, {{"In", TY_VECTOR3}, {"More", TY_COLOUR}});
    TExported e(chain.G);
    e.Place(chain.Node);
    e->PassThrough(0, 1, 0, -1, -1);
    EXPECT_TRUE(e->OutputEmpty());
}

TEST(TExportData, BypassedNodePassesTheNamesakeOrZeros)
{
    TTestGraph g;
    TEffectNode* emitter = AddFiredEmitter(g);
    TEffectNode* node = g.Node("Node", TU_PROCESS, {{"position", TY_VECTOR3}, {"Fix", TY_SCALAR}},
                               {{"Position", TY_VECTOR3}, {"Fix", TY_SCALAR}, {"New", TY_COLOUR}});
    g.InputValue(node, "Fix", {3});
    TEffectNode* stage =
        g.Node("Stage", TU_RENDER, {{"Place", TY_VECTOR3}, {"Size"}, {"Tint", TY_COLOUR}}, {});
    g.Wire(emitter, 0, node, 0);
    for (int port = 0; port < 3; ++port)
        g.Wire(node, port, stage, port);
    TExported e(g);
    const int index = e.GroupOf(node);
    e.Speak(node, [](TExportData& data) { data.ExportBypassed(); });
    const TExportGroup& group = e.Group(index);
    const int size = group.Attributes[e.Find(index, "Size")].RowStart;
    const int tint = group.Attributes[e.Find(index, "Tint")].RowStart;
    ASSERT_EQ(group.Process.Execute.Commands.size(), 1);
    const TCommand& command = group.Process.Execute.Commands[0];
    ASSERT_EQ(command.Outputs.size(), 4);
    EXPECT_EQ(command.Outputs[0], static_cast<uint32_t>(tint));
    EXPECT_EQ(BigFloat(command.Data, 12), 0.0f);
    EXPECT_EQ(group.Process.Flags[e.Find(index, "Tint")][3], 2);
    // The namesakes share an attribute, which starts with the port's value.
    EXPECT_EQ(group.Process.RowMap[size], static_cast<uint32_t>(size));
    EXPECT_EQ(group.Process.Flags[e.Find(index, "Size")][0], 2);
    EXPECT_EQ(CommandText(group.Emission.Execute.Commands[0]),
              "IdConstantEmitter out " + std::to_string(size) + " data 40400000");
}

TEST(TExportData, GroupConstantsAreReadAndWritten)
{
    TChain chain({{"In", TY_VECTOR3}}, {{"In", TY_VECTOR3}});
    TExported e(chain.G);
    e.Speak(chain.Node, [](TExportData& data) {
        const float values[2] = {1, 2};
        data.SetCommand("IdAdd", 0);
        data.AddGroupConstants(values, 2);
        data.AddOutputRow(data.AllocTempRow());
        EXPECT_EQ(data.GetTotalRows(), data.GetResult().Groups[1].NumRows + 2);
    });
    EXPECT_EQ(TextsOf(e.Group(1).Process.Execute), (TTexts{"IdAdd in c0 c1 out c0 c1 t1"}));
    EXPECT_EQ(e.Group(1).Constants[1], 2.0f);
}

TEST(TExportData, EmitterTriggerIsWhereTheInputComesFrom)
{
    const TFullGraph full;
    TExported e(full.G);
    const int index = e.GroupOf(full.Emitter);
    e.Speak(full.Emitter, [](TExportData& data) { data.SetEmitterTrigger(1); });
    EXPECT_EQ(e.Group(index).TriggerInput, -1);
    e.Speak(full.Emitter, [](TExportData& data) { data.SetEmitterTrigger(0); });
    const TExportGroup& group = e.Group(index);
    EXPECT_EQ(group.TriggerInput, e.Find(index, "Emission Trigger"));
    EXPECT_EQ(group.TriggerGroup, e.GroupOf(full.Trigger));
    EXPECT_EQ(group.TriggerAttrib, e.GetSchedule().GetAttributeExternalAttrib(index, group.TriggerInput));
}

TEST(TExportData, EmitterNodesSpeakToTheEmissionStream)
{
    const TFullGraph full;
    TExported e(full.G);
    full.Fill(e);
    const TExportGroup& group = e.Group(e.GroupOf(full.Emitter));
    const int where = e.Find(e.GroupOf(full.Emitter), "position of it");
    ASSERT_EQ(group.Emission.Transforms.size(), 1);
    EXPECT_EQ(group.Emission.Transforms[0].Type, 2);
    EXPECT_EQ(group.Emission.Execute.Commands[0].Outputs.size(), 6);
    EXPECT_EQ(group.Emission.Flags[where][5], 2);
    EXPECT_EQ(group.Process.Flags[where][5], 0);
    ASSERT_EQ(group.Process.Transforms.size(), 1);
    EXPECT_EQ(group.Process.Transforms[0].Type, 7);
}

TEST(TExportData, StageConstantsByType)
{
    TTestGraph g;
    TEffectNode* emitter = AddFiredEmitter(g);
    TEffectNode* stage = g.Node("Stage", TU_RENDER,
                                {{"Place", TY_VECTOR3},
                                 {"A", TY_SCALAR},
                                 {"B", TY_SCALE},
                                 {"C", TY_VECTOR3},
                                 {"D", TY_QUATERNION},
                                 {"E", TY_COLOUR},
                                 {"F", TY_TRANSFORM},
                                 {"G", TY_TEXCOORDS},
                                 {"H", TY_TRANSFORM}},
                                {});
    g.InputValue(stage, "A", {1});
    g.InputValue(stage, "B", {1, 2});
    g.InputValue(stage, "C", {1, 2, 3});
    g.InputValue(stage, "D", {1, 2, 3});
    g.InputValue(stage, "E", {1, 2, 3, 4});
    g.InputValue(stage, "F", {1, 2, 3, 4, 5, 6});
    g.InputValue(stage, "G", {1, 2, 3, 4});
    g.InputValue(stage, "H", {6, 5, 4, 3, 2, 1});
    g.Wire(emitter, 0, stage, 0);
    TExported e(g);
    vector<int> attribs;
    for (const int attrib : {-1, 10, 11, 12, 13, 14, 15, 16, 17, 18, -1})
        attribs.push_back(attrib);
    e.Speak(stage, [&](TExportData& data) { data.AddRenderStage("IdQuadRenderStage", attribs, 0); });
    const TRenderStageData& data = e.Group(e.GroupOf(stage)).RenderStages[0];
    const float expected[][5] = {{10, 1, 0, 0, 0}, {11, 1, 2, 0, 0}, {12, 1, 2, 3, 0},
                                 {13, 1, 2, 3, 0}, {14, 1, 2, 3, 4}, {15, 1, 2, 3, 0},
                                 {16, 4, 5, 6, 0}, {17, 1, 2, 3, 4}, {18, 6, 5, 4, 0}};
    ASSERT_EQ(data.Constants.size(), 9);
    for (int i = 0; i < 9; ++i) {
        EXPECT_EQ(static_cast<float>(data.Constants[i].Attrib), expected[i][0]);
        for (int k = 0; k < 4; ++k)
            EXPECT_EQ(data.Constants[i].Value[k], expected[i][k + 1]) << i << ' ' << k;
    }
    EXPECT_TRUE(e.Group(e.GroupOf(stage)).Bounds.empty());
    attribs[1] = -1;
    e.Place(stage);
    EXPECT_EQ(AssertionOf([&] { e->AddRenderStage("IdQuadRenderStage", attribs, 0); }),
              "attribmap[aidx] != -1");
}

TEST(TExportData, StageWithBothBoxesHasTwoEntries)
{
    const TFullGraph full;
    TExported e(full.G);
    full.Fill(e);
    const TExportGroup& group = e.Group(e.GroupOf(full.Stage));
    ASSERT_EQ(group.Bounds.size(), 2);
    EXPECT_EQ(group.Bounds[0].Index, 0);
    EXPECT_EQ(group.Bounds[0].Max[0], 0.0f);
    EXPECT_EQ(group.Bounds[1].Index, -1);
    EXPECT_EQ(group.Bounds[1].Min[2], -3.0f);
    EXPECT_EQ(group.NumDynamicBounds, 1);
    const TCommand& command = group.Process.Execute.Commands.back();
    EXPECT_EQ(command.Name, NameToCrc("IdComputeBounds"));
    EXPECT_EQ(command.Workspace, 96u);
    EXPECT_EQ(command.Inputs.size(), 3);
    EXPECT_EQ(command.Data.size(), 4);
    EXPECT_EQ(command.Patches[0].NameId, NameToCrc("bb 0"));
    EXPECT_EQ(Text(group.RenderStages[0].Textures[0]), "smoke.dds");
    EXPECT_EQ(group.RenderStages[0].State.GetWords().size(), 5);
    EXPECT_EQ(e->GetResult().Table.GetId(0), NameToCrc("IdSpriteRenderStage"));
}

TEST(TExportData, InputAttributeTellsARowCount)
{
    const TFullGraph full;
    TExported e(full.G);
    e.Place(full.Force);
    ASSERT_NE(e->GetInputAttribute(0), nullptr);
    EXPECT_EQ(e->GetInputAttribute(0)->RowCount, 6);
    EXPECT_EQ(e->GetInputAttribute(1), nullptr);
    ASSERT_NE(e->GetOutputAttribute(0), nullptr);
    EXPECT_EQ(e->GetOutputAttribute(0), e->GetInputAttribute(0));
}
