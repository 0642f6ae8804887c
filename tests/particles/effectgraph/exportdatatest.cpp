#include "particles/effectgraph/exporttestgraph.h"

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

TEST(TExportData, AttributesOfAGroupFollowEachOther)
{
    const TFullGraph full;
    TExported e(full.G);
    const TExportGroup& group = e.Group(e.GroupOf(full.Force));
    ASSERT_EQ(group.Attributes.size(), 4);
    int row = 0;
    for (const TExportAttribute& attr : group.Attributes) {
        EXPECT_EQ(attr.RowStart, row);
        EXPECT_EQ(attr.ByteSize, attr.RowCount * 4);
        EXPECT_EQ(attr.NameId, NameToCrc(attr.Name.Print()));
        EXPECT_EQ(attr.Offset, -1);
        row += attr.RowCount;
    }
    EXPECT_EQ(group.NumRows, 9);
    EXPECT_EQ(group.NumRows, row);
    for (int i = 0; i < row; ++i) {
        EXPECT_EQ(group.EmissionRowMap[i], static_cast<uint32_t>(i));
        EXPECT_EQ(group.ProcessRowMap[i], static_cast<uint32_t>(i));
    }
    EXPECT_EQ(group.ParticleCount, 50);
    EXPECT_FALSE(group.IsTriggerGroup);
}

TEST(TExportData, TriggerGroupHasOneParticle)
{
    const TFullGraph full;
    TExported e(full.G);
    const TExportGroup& group = e.Group(e.GroupOf(full.Trigger));
    EXPECT_TRUE(group.IsTriggerGroup);
    EXPECT_EQ(group.ParticleCount, 1);
    EXPECT_EQ(group.TriggerGroup, -1);
    EXPECT_TRUE(group.EmissionUnpack.Commands.empty());
}

TEST(TExportData, AttributeReadFirstGetsItsPortsValue)
{
    // The emitter reads and writes its output in place.
    TTestGraph g;
    TEffectNode* trigger = AddTrigger(g);
    TEffectNode* first = g.Node("First", TU_TRIGGER, {{"Value", TY_VECTOR3}}, {{"Value", TY_VECTOR3}});
    TEffectNode* emitter = AddEmitter(g);
    g.Wire(trigger, 0, emitter, 0);
    TEffectNode* sprite = AddSprite(g);
    g.Wire(emitter, 0, sprite, 0);
    g.InputValue(first, "Value", {1, 2, 3});
    TEffectNode* second = g.Node("Second", TU_TRIGGER, {{"Value", TY_VECTOR3}}, {});
    g.Wire(first, 0, second, 0);
    TExported e(g);
    const int group = e.GroupOf(first);
    const int attrib = e.Find(group, "Value");
    ASSERT_NE(attrib, -1);
    const TExportAttribute& attr = e.Group(group).Attributes[attrib];
    const std::string row = std::to_string(attr.RowStart);
    EXPECT_EQ(attr.EmissionFlags[0], 2);
    EXPECT_EQ(attr.EmissionFlags[2], 2);
    EXPECT_EQ(attr.EmissionFlags[3], 0);
    EXPECT_EQ(TextsOf(e.Group(group).EmissionExecute),
              (TTexts{"IdConstantEmitter out " + row + " " + std::to_string(attr.RowStart + 1) + " " +
                      std::to_string(attr.RowStart + 2) + " data 3f8000004000000040400000"}));
}

TEST(TExportData, PayloadIsUnpackedInFours)
{
    TTestGraph g;
    TEffectNode* trigger = g.Node("Trigger", TU_TRIGGER, {}, {"Trigger", {"Where", TY_TRANSFORM}, "Late"});
    TEffectNode* emitter =
        g.Node("Emitter", TU_EMITTER, {"emission trigger", {"Start", TY_TRANSFORM}, "Delay"},
               {{"Position", TY_VECTOR3}});
    TEffectNode* sprite = AddSprite(g);
    g.Wire(trigger, 0, emitter, 0);
    g.Wire(trigger, 1, emitter, 1);
    g.Wire(trigger, 2, emitter, 2);
    g.Wire(emitter, 0, sprite, 0);
    TExported e(g);
    const int index = e.GroupOf(emitter);
    const TExportGroup& group = e.Group(index);
    const int start = e.Find(index, "Start");
    const int delay = e.Find(index, "Delay");
    ASSERT_LT(start, delay);
    const int row = group.Attributes[start].RowStart;
    auto text = [](int n) { return " " + std::to_string(n); };
    EXPECT_EQ(
        TextsOf(group.EmissionUnpack),
        (TTexts{"IdUnpackFloatN out" + text(row) + text(row + 1) + text(row + 2) + text(row + 3) +
                    " data 00000000",
                "IdUnpackFloatN out" + text(row + 4) + text(row + 5) + " t0 t0 data 00000010",
                "IdUnpackFloatN out" + text(group.Attributes[delay].RowStart) + " t0 t0 t0 data 00000018"}));
    EXPECT_EQ(group.EventSize, 32);
    EXPECT_EQ(group.Attributes[start].EmissionFlags[5], 1);
    EXPECT_EQ(group.Attributes[e.Find(index, "emission trigger")].EmissionFlags[0], 0);
}

TEST(TExportData, RowsThatTheParentLacksAreZeroed)
{
    TTestGraph g;
    TEffectNode* trigger = g.Node("Trigger", TU_TRIGGER, {}, {"Trigger", {"Size", TY_SCALAR}});
    TEffectNode* probe = g.Node("Probe", TU_TRIGGER, {{"Probe", TY_SCALAR}}, {});
    TEffectNode* emitter =
        g.Node("Emitter", TU_EMITTER, {"Emission Trigger", {"Wide", TY_VECTOR3}}, {{"Position", TY_VECTOR3}});
    TEffectNode* sprite = AddSprite(g);
    g.Wire(trigger, 0, emitter, 0);
    g.Wire(trigger, 1, probe, 0);
    g.Wire(trigger, 1, emitter, 1);
    g.Wire(emitter, 0, sprite, 0);
    TExported e(g);
    const int index = e.GroupOf(emitter);
    const TExportGroup& group = e.Group(index);
    const TExportAttribute& wide = group.Attributes[e.Find(index, "Wide")];
    EXPECT_EQ(wide.EmissionFlags[0], 1);
    EXPECT_EQ(wide.EmissionFlags[1], 3);
    EXPECT_EQ(wide.EmissionFlags[2], 3);
    EXPECT_EQ(group.EventSize, 16);
    ASSERT_EQ(group.EmissionExecute.Commands.size(), 1);
    EXPECT_EQ(CommandText(group.EmissionExecute.Commands[0]),
              "IdConstantEmitter out " + std::to_string(wide.RowStart + 1) + " " +
                  std::to_string(wide.RowStart + 2) + " data 0000000000000000");
}

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
    EXPECT_EQ(TextsOf(e.Group(index).ProcessExecute),
              (TTexts{"IdConstantEmitter out t1 t2 t3 t4 t5 t6 data 3f80000040000000404000000000000040800000"
                      "00000000",
                      "IdAdd in 0 1 2 t1 t2 t3 t4 t5 t6 out 1 2"}));
    EXPECT_EQ(e.Group(index).NumTemps, 7);
    EXPECT_EQ(e.Group(index).Attributes[0].ProcessFlags[0], 1);
    EXPECT_EQ(e.Group(index).Attributes[0].ProcessFlags[1], 3);
    EXPECT_EQ(e.Group(index).ProcessExecute.Commands[1].Workspace, 8u);
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
    EXPECT_EQ(e.Group(1).Attributes[0].ProcessFlags[0], 2);
    EXPECT_EQ(e.Group(1).Attributes[0].ProcessFlags[1], 1);
}

TEST(TExportData, OutputThatNobodyReadsGoesToTheDumpRow)
{
    TChain chain({{"In", TY_VECTOR3}}, {{"In", TY_VECTOR3}, {"More", TY_COLOUR}});
    TExported e(chain.G);
    e.Speak(chain.Node, [](TExportData& data) {
        data.SetCommand("IdAdd", 0);
        data.AddOutput(1, 0, -1);
    });
    EXPECT_EQ(TextsOf(e.Group(1).ProcessExecute), (TTexts{"IdAdd out t0 t0 t0 t0"}));
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
    const TCommandStream& stream = e.Group(1).ProcessExecute;
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
    ASSERT_EQ(group.ProcessTransforms.size(), 2);
    EXPECT_EQ(group.ProcessTransforms[0].Type, 3);
    EXPECT_EQ(group.ProcessTransforms[1].Type, 4);
    const vector<TCommand>& commands = group.ProcessExecute.Commands;
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
    EXPECT_EQ(group.EmissionRowMap[to], from + 2);
    EXPECT_EQ(group.EmissionRowMap[to + 1], from);
    EXPECT_EQ(group.EmissionRowMap[to + 2], from + 1);
    EXPECT_EQ(group.ProcessRowMap[to], static_cast<uint32_t>(to));
    EXPECT_EQ(group.Attributes[out].EmissionFlags[2], 2);
    EXPECT_EQ(group.Attributes[in].EmissionFlags[0], 0);
    EXPECT_TRUE(group.EmissionExecute.Commands.empty());
}

TEST(TExportData, PassThroughOfAFixedValueWritesTheOutputsRows)
{
    TChain chain({{"In", TY_VECTOR3}, {"Fix", TY_COLOUR}}, {{"Out", TY_VECTOR3}});
    chain.G.InputValue(chain.Node, "Fix", {1, 2, 4, 8});
    TExported e(chain.G);
    e.Speak(chain.Node, [](TExportData& data) { data.PassThrough(1, 0, 0, -1, -1); });
    const TExportGroup& group = e.Group(1);
    const TExportAttribute& out = group.Attributes[e.Find(1, "Place")];
    ASSERT_EQ(group.EmissionExecute.Commands.size(), 1);
    const TCommand& command = group.EmissionExecute.Commands[0];
    ASSERT_EQ(command.Outputs.size(), 3);
    EXPECT_EQ(command.Outputs[2], static_cast<uint32_t>(out.RowStart + 2));
    EXPECT_EQ(BigFloat(command.Data, 8), 4.0f);
    EXPECT_EQ(out.EmissionFlags[0], 2);
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
    ASSERT_EQ(group.ProcessExecute.Commands.size(), 1);
    const TCommand& command = group.ProcessExecute.Commands[0];
    ASSERT_EQ(command.Outputs.size(), 4);
    EXPECT_EQ(command.Outputs[0], static_cast<uint32_t>(tint));
    EXPECT_EQ(BigFloat(command.Data, 12), 0.0f);
    EXPECT_EQ(group.Attributes[e.Find(index, "Tint")].ProcessFlags[3], 2);
    // The namesakes share an attribute, which starts with the port's value.
    EXPECT_EQ(group.ProcessRowMap[size], static_cast<uint32_t>(size));
    EXPECT_EQ(group.Attributes[e.Find(index, "Size")].ProcessFlags[0], 2);
    EXPECT_EQ(CommandText(group.EmissionExecute.Commands[0]),
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
        EXPECT_EQ(data.GetTotalRows(), data.GetGroup(1).NumRows + 2);
    });
    EXPECT_EQ(TextsOf(e.Group(1).ProcessExecute), (TTexts{"IdAdd in c0 c1 out c0 c1 t1"}));
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
    ASSERT_EQ(group.EmissionTransforms.size(), 1);
    EXPECT_EQ(group.EmissionTransforms[0].Type, 2);
    EXPECT_EQ(group.EmissionExecute.Commands[0].Outputs.size(), 6);
    EXPECT_EQ(group.Attributes[where].EmissionFlags[5], 2);
    EXPECT_EQ(group.Attributes[where].ProcessFlags[5], 0);
    ASSERT_EQ(group.ProcessTransforms.size(), 1);
    EXPECT_EQ(group.ProcessTransforms[0].Type, 7);
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
    const TCommand& command = group.ProcessExecute.Commands.back();
    EXPECT_EQ(command.Name, NameToCrc("IdComputeBounds"));
    EXPECT_EQ(command.Workspace, 96u);
    EXPECT_EQ(command.Inputs.size(), 3);
    EXPECT_EQ(command.Data.size(), 4);
    EXPECT_EQ(command.Patches[0].NameId, NameToCrc("bb 0"));
    EXPECT_EQ(Text(group.RenderStages[0].Textures[0]), "smoke.dds");
    EXPECT_EQ(group.RenderStages[0].State.GetWords().size(), 5);
    EXPECT_EQ(e->GetTable().GetId(0), NameToCrc("IdSpriteRenderStage"));
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
