#include "enginetestnodes.h"

#include "library/wimp/gl/device/sceneview.h"
#include "particles/effectgraph/export/exportdata.h"

namespace {

using TCalls = std::vector<std::string>;

// The calls with one of these nodes' names.
TCalls CallsOf(const std::vector<std::string>& names)
{
    TCalls result;
    for (const std::string& call : TTestExecNode::Calls())
        for (const std::string& name : names)
            if (call.compare(0, name.size() + 1, name + ".") == 0)
                result.push_back(call);
    return result;
}

TTestExecNode& FindExecNode(TEffectExec& exec, const TEffectNode* node)
{
    for (int n = 0; n < exec.GetSchedule().GetNumNodes(); ++n)
        if (exec.GetSchedule().GetNode(n) == node)
            return static_cast<TTestExecNode&>(*exec.GetExecNode(n));
    throw std::runtime_error("not scheduled");
}

// Two populations, A and B, and a third one, C, whose emitter reads a value of each.
class TParentsBench
{
public:
    TParentsBench(int particlesOfA, int particlesOfB) : Exec(Services)
    {
        TTestExecNode::Reset();
        TEffectNode* trigger = Graph.Node("Trigger", TU_TRIGGER, {"Rate"}, {"Count"});
        A = MakePopulation("A", {"Emission Trigger"});
        B = MakePopulation("B", {"Emission Trigger"});
        C = MakePopulation("C", {"FromA", {"FromB", TY_VECTOR3}});
        // Gives the pair of parents the group that a child's needs.
        TEffectNode* mix = Graph.Node("Mix", TU_PROCESS, {"InA", "InB"}, {});
        Graph.Wire(trigger, 0, A, 0);
        Graph.Wire(trigger, 0, B, 0);
        Graph.Wire(A, 0, C, 0);
        Graph.Wire(B, 0, C, 1);
        Graph.Wire(A, 0, mix, 0);
        Graph.Wire(B, 0, mix, 1);
        for (int n = 0; n < Graph.GetGraph().GetNumNodes(); ++n)
            Graph.Class(Graph.GetGraph().GetNode(n), GetTestExecClass());
        EmitOnce("A", particlesOfA);
        EmitOnce("B", particlesOfB);
        TErrorList errors;
        Schedule.Create(Graph.GetGraph(), errors);
        if (!Schedule.IsCreated() || !Exec.Init(Schedule, errors, true))
            throw std::runtime_error(TextsOf(errors).empty() ? "no schedule" : TextsOf(errors)[0]);
    }
    ~TParentsBench()
    {
        Exec.Clear();
        TTestExecNode::Reset();
    }

    // Room for that many particles in each group.
    bool MakeRoom(int particles)
    {
        for (TEffectNode* emitter : {A, B, C}) {
            auto* count =
                emitter->GetNodeType()->FindParameterOf<TNodeIntParameter>("Particle Count", PK_INT);
            if (count != nullptr)
                count->SetValue(particles);
            else
                Graph.Int(emitter, "Particle Count", particles);
        }
        TErrorList errors;
        Schedule.Create(Graph.GetGraph(), errors);
        return Exec.Init(Schedule, errors, true);
    }

    TTestGraph Graph;
    TEffectNode* A;
    TEffectNode* B;
    TEffectNode* C;
    TFakeServices Services;
    TEffectSchedule Schedule;
    TEffectExec Exec;

private:
    TEffectNode* MakePopulation(const std::string& name, const std::vector<TTestPort>& inputs)
    {
        TEffectNode* emitter = Graph.Node(name.c_str(), TU_EMITTER, inputs, {"Value"});
        TEffectNode* sprite = Graph.Node((name + " Sprite").c_str(), TU_RENDER, {"Value"}, {});
        Graph.Wire(emitter, 0, sprite, 0);
        return emitter;
    }
    // The particles' values are their indices, from 1 on.
    void EmitOnce(const std::string& name, int count)
    {
        auto emitted = std::make_shared<bool>(false);
        TTestExecNode::OnEmit(name, [=](TTestExecNode& node, int instance, float) {
            if (!*emitted && count > 0)
                node.AddParticles(instance, count);
            *emitted = true;
        });
        TTestExecNode::OnExecute(name, [](TTestExecNode& node, int index, float) {
            node.WriteOutput(0, index, TPortValue(static_cast<float>(index + 1)));
        });
    }
};

} // namespace

TEST(TEffectExec, AFrameRunsEmittersThenProcessesInScheduleOrder)
{
    TParticleBench bench(8);
    bench.Build();
    bench.Emit(2);
    EXPECT_EQ(TTestExecNode::Calls(),
              (TCalls{"Trigger.Execute 0", "Emitter.Emit 0", "Emitter.Execute 0", "Emitter.Execute 1",
                      "Ager.Execute 1", "Ager.Execute 0", "Sizer.Execute 1", "Sizer.Execute 0"}));
}

TEST(TEffectExec, NewParticlesAreInitialisedInRisingOrderWithNoTime)
{
    TParticleBench bench(8);
    bench.Build();
    std::vector<float> times;
    TTestExecNode::OnExecute("Emitter", [&](TTestExecNode&, int, float dt) { times.push_back(dt); });
    TTestExecNode::OnExecute("Ager", [&](TTestExecNode&, int, float dt) { times.push_back(dt); });
    bench.Emit(2);
    EXPECT_EQ(times, (std::vector<float>{0, 0, 0.1f, 0.1f}));
}

TEST(TEffectExec, TheEmitterSeesItsNewParticlesFromIndexZero)
{
    TParticleBench bench(8);
    bench.Build();
    bench.Emit(3);
    TTestExecNode::Calls().clear();
    bench.Emit(2);
    EXPECT_EQ(CallsOf({"Emitter"}), (TCalls{"Emitter.Emit 0", "Emitter.Execute 0", "Emitter.Execute 1"}));
    EXPECT_EQ(bench.Ages(), (std::vector<float>{0, 1, 2, 3, 4}));
}

TEST(TEffectExec, AKilledParticleRunsThroughTheFrame)
{
    TParticleBench bench(8);
    bench.Build();
    TTestExecNode::OnExecute("Ager", [](TTestExecNode& node, int index, float) {
        if (index == 0)
            node.KillParticle(index);
    });
    TTestExecNode::Calls().clear();
    bench.Emit(2);
    EXPECT_EQ(CallsOf({"Sizer"}), (TCalls{"Sizer.Execute 1", "Sizer.Execute 0"}));
    EXPECT_EQ(bench.Buffer().GetNumParticles(), 1);
}

TEST(TEffectExec, AFrameWithoutTimeStillEmitsAndProcesses)
{
    TParticleBench bench(8);
    bench.Build();
    bench.Emit(1);
    TTestExecNode::Calls().clear();
    bench.Exec.Update(0);
    EXPECT_EQ(TTestExecNode::Calls(),
              (TCalls{"Trigger.Execute 0", "Emitter.Emit 0", "Ager.Execute 0", "Sizer.Execute 0"}));
    EXPECT_EQ(bench.Exec.GetTime(), 0.1f);
}

TEST(TEffectExec, TimeStartsAtZeroAndAddsUpInFloats)
{
    TParticleBench bench(8);
    bench.Build();
    EXPECT_EQ(bench.Exec.GetTime(), 0);
    float time = 0;
    for (int i = 0; i < 10; ++i) {
        bench.Exec.Update(0.02f);
        time = static_cast<float>(static_cast<double>(time) + 0.02f);
    }
    EXPECT_EQ(bench.Exec.GetTime(), time);
    bench.Exec.SetTime(5);
    EXPECT_EQ(bench.Exec.GetTime(), 5);
}

TEST(TEffectExec, AParentWithoutParticlesStopsTheChildsEmitters)
{
    TParentsBench bench(3, 0);
    bench.Exec.Update(0.1f);
    EXPECT_EQ(CallsOf({"C"}), TCalls{});
}

TEST(TEffectExec, AParentPairRunsTheChildsEmittersForEveryPair)
{
    TParentsBench bench(3, 4);
    std::vector<std::pair<float, float>> read;
    TTestExecNode::OnEmit("C", [&](TTestExecNode& node, int, float) {
        read.emplace_back(node.ReadInput(0, 0)[0], node.ReadInput(1, 0)[2]);
    });
    bench.Exec.Update(0.1f);
    ASSERT_EQ(read.size(), 12u);
    for (size_t i = 0; i < read.size(); ++i) {
        EXPECT_EQ(read[i].first, static_cast<float>(i % 3 + 1));
        EXPECT_EQ(read[i].second, static_cast<float>(i / 3 + 1));
    }
}

TEST(TEffectExec, AChildsParticlesTakeTheirParentsValues)
{
    TParentsBench bench(2, 2);
    std::vector<float> read;
    TTestExecNode::OnEmit("C",
                          [](TTestExecNode& node, int instance, float) { node.AddParticles(instance, 2); });
    TTestExecNode::OnExecute("C", [&](TTestExecNode& node, int index, float) {
        read.push_back(node.ReadInput(0, index)[0] * 10 + node.ReadInput(1, index)[0]);
    });
    bench.Exec.Update(0.1f);
    EXPECT_EQ(read, (std::vector<float>{11, 11, 21, 21, 12, 12, 22, 22}));
}

TEST(TEffectExec, TooManyInstancesInAFrameAreRefused)
{
    TParentsBench bench(100, 100);
    bench.Graph.Int(bench.A, "Particle Count", 5000);
    bench.Graph.Int(bench.B, "Particle Count", 5000);
    TErrorList errors;
    bench.Schedule.Create(bench.Graph.GetGraph(), errors);
    ASSERT_TRUE(bench.Exec.Init(bench.Schedule, errors, true));
    const auto emit = [](TTestExecNode& node, int instance, float) { node.AddParticles(instance, 5000); };
    TTestExecNode::OnEmit("A", emit);
    TTestExecNode::OnEmit("B", emit);
    const std::string text = AssertionOf([&] { bench.Exec.Update(0.1f); });
    EXPECT_NE(text.find("are fired by too many particles"), std::string::npos) << text;
}

TEST(TEffectExec, TooManyBirthsAreKnownBeforeTheFirst)
{
    TParentsBench bench(10, 10);
    ASSERT_TRUE(bench.MakeRoom(1000000));
    bool isEmitted = false;
    TTestExecNode::OnEmit("C", [&](TTestExecNode&, int, float) { isEmitted = true; });
    TTestExecNode::OnCount("C", 1000000);
    const std::string text = AssertionOf([&] { bench.Exec.Update(0.1f); });
    EXPECT_NE(text.find("Too many particles are born in one frame"), std::string::npos) << text;
    EXPECT_FALSE(isEmitted);
}

TEST(TEffectExec, NoMoreBirthsAreCountedThanThereIsRoomFor)
{
    TParentsBench bench(10, 10);
    ASSERT_TRUE(bench.MakeRoom(1000));
    bool isEmitted = false;
    TTestExecNode::OnEmit("C", [&](TTestExecNode&, int, float) { isEmitted = true; });
    TTestExecNode::OnCount("C", 1000000);
    EXPECT_EQ(AssertionOf([&] { bench.Exec.Update(0.1f); }), "");
    EXPECT_TRUE(isEmitted);
}

TEST(TEffectExec, CountingLeavesTheInstancesAsTheyAre)
{
    // Two to the 26th births are just allowed: a hundred instances of this many.
    constexpr int most = (1 << 26) / 100;
    for (const int count : {most, most + 1}) {
        TParentsBench bench(10, 10);
        ASSERT_TRUE(bench.MakeRoom(1000000));
        std::vector<float> read;
        TTestExecNode::OnEmit("C", [&](TTestExecNode& node, int instance, float) {
            read.push_back(node.ReadInput(0, 0)[0]);
            node.AddParticles(instance, 1);
        });
        TTestExecNode::OnCount("C", count);
        const std::string text = AssertionOf([&] { bench.Exec.Update(0.1f); });
        std::vector<float> expected;
        for (int i = 0; i < 100 && count == most; ++i)
            expected.push_back(static_cast<float>(i % 10 + 1));
        EXPECT_EQ(read, expected);
        EXPECT_EQ(text.empty(), count == most) << text;
    }
}

TEST(TEffectExec, AnEmissionOfNothingIsNone)
{
    TParticleBench bench(4);
    bench.Build();
    TTestExecNode::OnEmit("Emitter", [](TTestExecNode& node, int instance, float) {
        node.AddParticles(instance, 0);
        node.AddParticles(instance, -3);
    });
    bench.Exec.Update(0.1f);
    EXPECT_EQ(bench.Buffer().GetNumParticles(), 0);
}

TEST(TEffectExec, AttributesWithoutSourceStartAtTheirParameter)
{
    TParticleBench bench(4);
    bench.Graph.InputValue(bench.Sizer, "Age", {7});
    bench.Graph.InputValue(bench.Sprite, "Size", {3});
    bench.Graph.InputValue(bench.Sprite, "Position", {1, 2, 3});
    bench.Build();
    TTestExecNode::OnExecute("Emitter", [](TTestExecNode&, int, float) {});
    bench.Emit(2);
    for (int k = 0; k < 2; ++k) {
        EXPECT_EQ(*bench.Value("Size", k), 3);
        for (int i = 0; i < 3; ++i)
            EXPECT_EQ(bench.Value("Position", k)[i], static_cast<float>(i + 1));
    }
}

TEST(TEffectExec, ABypassedEmitterEmitsNothing)
{
    TParticleBench bench(4);
    bench.Build();
    bench.Emitter->GetNodeType()->SetFlag(FL_BYPASSED, true);
    bench.Emit(2);
    EXPECT_EQ(bench.Buffer().GetNumParticles(), 0);
    EXPECT_EQ(CallsOf({"Emitter"}), TCalls{});
}

TEST(TEffectExec, ABypassedProcessCopiesTheSameNamedInput)
{
    TParticleBench bench(4);
    bench.Build();
    TTestExecNode::OnExecute(
        "Ager", [](TTestExecNode& node, int index, float) { node.WriteOutput(0, index, TPortValue(99.0f)); });
    bench.Ager->GetNodeType()->SetFlag(FL_BYPASSED, true);
    bench.Emit(2);
    EXPECT_EQ(bench.Ages(), (std::vector<float>{0, 1}));
    EXPECT_EQ(CallsOf({"Ager"}), TCalls{});
}

TEST(TEffectExec, ABypassedProcessWithoutSuchAnInputWritesZero)
{
    TParticleBench bench(4);
    bench.Graph.InputValue(bench.Sprite, "Size", {3});
    bench.Build();
    bench.Sizer->GetNodeType()->SetFlag(FL_BYPASSED, true);
    bench.Emit(1);
    EXPECT_EQ(*bench.Value("Size", 0), 0);
}

TEST(TEffectExec, RenderRunsTheRenderNodesThatAreNotBypassed)
{
    TParticleBench bench(4);
    bench.Build();
    bench.Emit(1);
    TTestExecNode::Calls().clear();
    bench.Exec.Render(TSceneView());
    EXPECT_EQ(TTestExecNode::Calls(), TCalls{"Sprite.Render " + std::to_string(bench.ParticleGroup)});
    bench.Sprite->GetNodeType()->SetFlag(FL_BYPASSED, true);
    TTestExecNode::Calls().clear();
    bench.Exec.Render(TSceneView());
    EXPECT_EQ(TTestExecNode::Calls(), TCalls{});
}

TEST(TEffectExec, InitWithoutRenderMakesNoRenderNodes)
{
    TParticleBench bench(4);
    bench.Build();
    TErrorList errors;
    bench.Graph.Int(bench.Sprite, "Fail", 1);
    EXPECT_FALSE(bench.Exec.Init(bench.Schedule, errors, true));
    EXPECT_EQ(TextsOf(errors), std::vector<std::string>{"Sprite failed"});
    EXPECT_FALSE(bench.Exec.IsInited());
    ASSERT_TRUE(bench.Exec.InitWithoutRender(bench.Schedule, errors));
    bench.Emit(2);
    EXPECT_EQ(bench.Buffer().GetNumParticles(), 2);
    TTestExecNode::Calls().clear();
    bench.Exec.Render(TSceneView());
    EXPECT_EQ(TTestExecNode::Calls(), TCalls{});
    TExportData exportData(bench.Schedule);
    bench.Exec.Export(exportData, errors);
    EXPECT_EQ(CallsOf({"Sprite"}), TCalls{});
    EXPECT_EQ(CallsOf({"Sizer"}), TCalls{"Sizer.Export " + std::to_string(bench.ParticleGroup)});
}

TEST(TEffectExec, InitWithoutToolModeBuildsNoStore)
{
    TParticleBench bench(4);
    bench.Build();
    TErrorList errors;
    EXPECT_TRUE(bench.Exec.Init(bench.Schedule, errors, false));
    EXPECT_TRUE(bench.Exec.IsInited());
    EXPECT_EQ(bench.Exec.GetNumGroups(), 0);
}

TEST(TEffectExec, AllNodesAreTriedAfterAFailure)
{
    TParticleBench bench(4);
    bench.Graph.Class(bench.Ager, "TNoSuchClass");
    bench.Graph.Class(bench.Sprite, "");
    bench.Graph.Int(bench.Sizer, "Fail", 1);
    TErrorList errors;
    ASSERT_TRUE(bench.Schedule.Create(bench.Graph.GetGraph(), errors));
    EXPECT_FALSE(bench.Exec.Init(bench.Schedule, errors, true));
    EXPECT_EQ(TextsOf(errors), (std::vector<std::string>{
                                   "Run time class TNoSuchClass does not exist in this tool build\n",
                                   "Sizer failed", "Run time class  does not exist in this tool build\n"}));
    EXPECT_FALSE(bench.Exec.IsInited());
    bench.Exec.Update(0.1f);
    EXPECT_EQ(TTestExecNode::Calls(), TCalls{});
}

TEST(TEffectExec, AClassOfAnotherFamilyIsNoRunTimeClass)
{
    TParticleBench bench(4);
    bench.Graph.Class(bench.Ager, GetClassName(TEffectNode::ClassId()));
    TErrorList errors;
    ASSERT_TRUE(bench.Schedule.Create(bench.Graph.GetGraph(), errors));
    EXPECT_FALSE(bench.Exec.Init(bench.Schedule, errors, true));
    ASSERT_EQ(errors.size(), 1);
    EXPECT_EQ(TextsOf(errors)[0], "Run time class TEffectNode does not exist in this tool build\n");
}

TEST(TEffectExec, MoreThan32GroupsAreRefused)
{
    TTestExecNode::Reset();
    TTestGraph graph;
    TEffectNode* trigger = graph.Node("Trigger", TU_TRIGGER, {}, {"Count"});
    graph.Class(trigger, GetTestExecClass());
    const auto addPopulation = [&] {
        TEffectNode* emitter = graph.Node("Emitter", TU_EMITTER, {"Emission Trigger"}, {"Value"});
        TEffectNode* sprite = graph.Node("Sprite", TU_RENDER, {"Value"}, {});
        graph.Class(emitter, GetTestExecClass());
        graph.Class(sprite, GetTestExecClass());
        graph.Wire(trigger, 0, emitter, 0);
        graph.Wire(emitter, 0, sprite, 0);
    };
    for (int i = 0; i < 31; ++i)
        addPopulation();
    TFakeServices services;
    TEffectSchedule schedule;
    TErrorList errors;
    TEffectExec exec(services);
    ASSERT_TRUE(schedule.Create(graph.GetGraph(), errors));
    EXPECT_TRUE(exec.Init(schedule, errors, true));
    addPopulation();
    ASSERT_TRUE(schedule.Create(graph.GetGraph(), errors));
    EXPECT_FALSE(exec.Init(schedule, errors, true));
    EXPECT_EQ(TextsOf(errors),
              std::vector<std::string>{"Too many groups in the schedule (33). Maximum is 32"});
}

TEST(TEffectExec, ClearForgetsEverything)
{
    TParticleBench bench(4);
    bench.Build();
    bench.Exec.Clear();
    EXPECT_FALSE(bench.Exec.IsInited());
    EXPECT_EQ(bench.Exec.GetNumGroups(), 0);
    bench.Exec.Clear();
}

TEST(TEffectExec, ARebuildRestartsTheEffect)
{
    TParticleBench bench(4);
    bench.Build();
    bench.Emit(3);
    bench.Build();
    EXPECT_EQ(bench.Exec.GetTime(), 0);
    EXPECT_EQ(bench.Buffer().GetNumParticles(), 0);
}

TEST(TEffectExec, NothingDiesInATriggerGroup)
{
    TParticleBench bench(4);
    bench.Build();
    TTestExecNode::OnExecute("Trigger", [](TTestExecNode& node, int, float) { node.KillParticle(0); });
    EXPECT_EQ(AssertionOf([&] { bench.Emit(1); }), "");
    EXPECT_EQ(bench.Buffer().GetNumParticles(), 1);
}

TEST(TEffectExecNode, AnUnwiredInputReadsItsParameterLive)
{
    TParticleBench bench(4);
    bench.Graph.InputValue(bench.Trigger, "Rate", {5});
    bench.Build();
    std::vector<float> read;
    TTestExecNode::OnExecute("Trigger", [&](TTestExecNode& node, int index, float) {
        read.push_back(node.ReadInput(0, index)[0]);
        EXPECT_EQ(node.GetInputType(0), TY_SCALAR);
    });
    bench.Exec.Update(0.1f);
    bench.Graph.InputValue(bench.Trigger, "Rate", {6});
    bench.Exec.Update(0.1f);
    EXPECT_EQ(read, (std::vector<float>{5, 6}));
}

TEST(TEffectExecNode, ValuesAreConvertedBetweenPortAndAttribute)
{
    TParentsBench bench(1, 1);
    std::vector<float> read;
    TTestExecNode::OnEmit("C", [&](TTestExecNode& node, int, float) {
        for (int i = 0; i < 3; ++i)
            read.push_back(node.ReadInput(1, 0)[i]);
        // The attribute is the child's own, of the port's type.
        EXPECT_EQ(node.GetInputType(1), TY_VECTOR3);
    });
    bench.Exec.Update(0.1f);
    EXPECT_EQ(read, (std::vector<float>{1, 1, 1}));
}

TEST(TEffectExecNode, AnOutputThatNobodyReadsCostsNothing)
{
    TParticleBench bench(4);
    TEffectNode* idle = bench.Graph.Node("Idle", TU_PROCESS, {"Age"}, {"Unused"});
    bench.Graph.Class(idle, GetTestExecClass());
    bench.Graph.Wire(bench.Ager, "Age", idle, "Age");
    bench.Build();
    TTestExecNode::OnExecute(
        "Idle", [](TTestExecNode& node, int index, float) { node.WriteOutput(0, index, TPortValue(1.0f)); });
    EXPECT_EQ(AssertionOf([&] { bench.Emit(2); }), "");
    EXPECT_EQ(bench.FindAttribute("Unused"), -1);
}

TEST(TEffectExecNode, TracesHoldWhatTracedNodesWrite)
{
    TParticleBench bench(4);
    bench.Services.TraceParticles = 2;
    bench.Services.TraceEntries = 3;
    bench.Build();
    TTestExecNode& sizer = FindExecNode(bench.Exec, bench.Sizer);
    float next = 0;
    TTestExecNode::OnExecute("Sizer", [&](TTestExecNode& node, int index, float) {
        node.WriteOutput(0, index, TPortValue(next++));
    });
    bench.Emit(2);
    ASSERT_EQ(sizer.GetNumTraces(), 1);
    EXPECT_EQ(sizer.GetOutputTraceGroup(0), bench.ParticleGroup);
    TAttributeTrace& trace = sizer.GetOutputTrace(0, 0);
    EXPECT_EQ(trace.GetWidth(), 1);
    EXPECT_EQ(trace.GetNumEntries(0), 0);
    sizer.SetTracing(true);
    bench.Exec.Update(0.1f);
    bench.Exec.Update(0.1f);
    ASSERT_EQ(trace.GetNumEntries(0), 2);
    // Downwards: the second particle first.
    EXPECT_EQ(trace.GetEntry(1, 0, 0), 2);
    EXPECT_EQ(trace.GetEntry(0, 0, 0), 3);
    EXPECT_EQ(trace.GetEntry(0, 1, 0), 5);
    EXPECT_EQ(FindExecNode(bench.Exec, bench.Sprite).GetNumTraces(), 0);
}

TEST(TEffectExecNode, ATriggersTraceHasOneSlot)
{
    TParticleBench bench(4);
    bench.Build();
    TTestExecNode& trigger = FindExecNode(bench.Exec, bench.Trigger);
    trigger.SetTracing(true);
    TTestExecNode::OnExecute("Trigger", [](TTestExecNode& node, int index, float) {
        node.WriteOutput(0, index, TPortValue(4.0f));
    });
    bench.Exec.Update(0.1f);
    EXPECT_EQ(trigger.GetOutputTrace(0, 0).GetEntry(0, 0, 0), 4);
}

TEST(TEffectExecNode, AMissingParameterIsAnErrorOfItsName)
{
    TParticleBench bench(4);
    bench.Build();
    TErrorList errors;
    const TTestExecNode& node = FindExecNode(bench.Exec, bench.Sizer);
    EXPECT_EQ(node.RequireParameter<TNodeIntParameter>("Group.Depth", PK_INT, errors), nullptr);
    bench.Graph.Int(bench.Sizer, "Depth", 3);
    EXPECT_NE(node.RequireParameter<TNodeIntParameter>("Depth", PK_INT, errors), nullptr);
    EXPECT_EQ(node.RequireParameter<TNodeScalarParameter>("Depth", TY_SCALAR, errors), nullptr);
    EXPECT_EQ(TextsOf(errors), (std::vector<std::string>{"Missing parameter \"Group.Depth\" for node Sizer",
                                                         "Missing parameter \"Depth\" for node Sizer"}));
}

TEST(TEffectExec, ExportAsksEachTiedNodeInOrder)
{
    TParticleBench bench(4);
    bench.Build();
    TErrorList errors;
    ASSERT_TRUE(bench.Exec.Init(bench.Schedule, errors, false));
    bench.Ager->GetNodeType()->SetFlag(FL_BYPASSED, true);
    TExportData exportData(bench.Schedule);
    EXPECT_TRUE(bench.Exec.Export(exportData, errors));
    const std::string trigger = std::to_string(1 - bench.ParticleGroup);
    const std::string particles = std::to_string(bench.ParticleGroup);
    EXPECT_EQ(TTestExecNode::Calls(), (TCalls{"Trigger.Export " + trigger, "Emitter.Export " + particles,
                                              "Sizer.Export " + particles, "Sprite.Export " + particles}));
    EXPECT_TRUE(errors.empty());
}

TEST(TEffectExec, ABrokenPolicyFailsTheExportOnlyIfItShould)
{
    TParticleBench bench(4);
    bench.Build();
    TErrorList errors;
    ASSERT_TRUE(bench.Exec.Init(bench.Schedule, errors, false));
    bench.Services.PolicyFlags = PF_MUSTHAVEBOUNDS;
    TExportData warned(bench.Schedule);
    EXPECT_TRUE(bench.Exec.Export(warned, errors));
    EXPECT_EQ(errors.size(), 1);
    bench.Services.PolicyFlags = PF_MUSTHAVEBOUNDS | PF_PREVENTEXPORT;
    TExportData refused(bench.Schedule);
    EXPECT_FALSE(bench.Exec.Export(refused, errors));
    EXPECT_EQ(TextsOf(errors),
              (std::vector<std::string>{"Warning: Effect file does not contain a bounding box",
                                        "Fatal Error: Effect file does not contain a bounding box"}));
}

namespace {

// A population whose emitter gives each newborn a mark, which only another node of its birth reads.
class TMarkBench
{
public:
    explicit TMarkBench(bool birthsApart) : Exec(Services)
    {
        TTestExecNode::Reset();
        TEffectNode* trigger = Graph.Node("Trigger", TU_TRIGGER, {}, {"Count"});
        TEffectNode* emitter = Graph.Node("Emitter", TU_EMITTER, {"Emission Trigger"}, {"Value", "Mark"});
        TEffectNode* reader = Graph.Node("Reader", TU_PROCESS, {"Mark"}, {});
        TEffectNode* ager = Graph.Node("Ager", TU_PROCESS, {"Value"}, {"Value"});
        TEffectNode* sprite = Graph.Node("Sprite", TU_RENDER, {"Value"}, {});
        Graph.Wire(trigger, 0, emitter, 0);
        Graph.Wire(emitter, 1, reader, 0);
        Graph.Wire(emitter, 0, ager, 0);
        Graph.Wire(ager, 0, sprite, 0);
        for (TEffectNode* node : {trigger, emitter, reader, ager, sprite})
            Graph.Class(node, GetTestExecClass());
        TTestExecNode::OnExecute("Trigger", [this](TTestExecNode& node, int index, float) {
            node.WriteOutput(0, index, TPortValue(static_cast<float>(Due)));
        });
        TTestExecNode::OnEmit("Emitter", [this](TTestExecNode& node, int instance, float) {
            Read.clear();
            const int count = static_cast<int>(node.ReadInput(0, 0)[0]);
            if (count > 0)
                node.AddParticles(instance, count);
        });
        TTestExecNode::OnExecute("Emitter", [this](TTestExecNode& node, int index, float) {
            node.WriteOutput(1, index, TPortValue(NextMark++));
        });
        TTestExecNode::OnExecute("Reader", [this](TTestExecNode& node, int index, float) {
            Read.push_back(node.ReadInput(0, index)[0]);
        });
        TTestExecNode::OnExecute("Ager", [this](TTestExecNode& node, int index, float) {
            if (index == Dying)
                node.KillParticle(index);
        });
        TErrorList errors;
        Schedule.Create(Graph.GetGraph(), errors);
        Exec.SetBirthsApart(birthsApart);
        if (!Schedule.IsCreated() || !Exec.Init(Schedule, errors, true))
            throw std::runtime_error("no engine");
        while (Schedule.IsTriggerGroup(Group))
            ++Group;
        while (std::string(Schedule.GetAttributeName(Group, Mark)) != "Mark")
            ++Mark;
        if (Schedule.GetAttributeUsage(Group, Mark) != TU_EMITTER)
            throw std::runtime_error("the mark is no value of birth");
    }
    ~TMarkBench()
    {
        Exec.Clear();
        TTestExecNode::Reset();
    }
    // What the births of the next frame read.
    std::vector<float> Emit(int count)
    {
        Due = count;
        Exec.Update(0);
        Due = 0;
        return Read;
    }
    void Kill(int index)
    {
        Dying = index;
        Exec.Update(0);
        Dying = -1;
    }
    std::vector<float> Marks() const
    {
        std::vector<float> result;
        for (int i = 0; i < Exec.GetNumParticles(Group); ++i)
            result.push_back(*Exec.GetGroup(Group)->GetAttribute(Mark, TU_EMITTER, i));
        return result;
    }

    TTestGraph Graph;
    TFakeServices Services;
    TEffectSchedule Schedule;
    TEffectExec Exec;
    int Group = 0;
    int Mark = 0;
    int Due = 0;
    int Dying = -1;
    float NextMark = 1;
    std::vector<float> Read;
};

} // namespace

TEST(TEffectExec, ParticlesBornTogetherReadTheLastOnesValueOfBirth)
{
    TMarkBench bench(false);
    EXPECT_FALSE(bench.Exec.AreBirthsApart());
    EXPECT_EQ(bench.Emit(3), (std::vector<float>{3, 3, 3}));
    EXPECT_EQ(bench.Emit(2), (std::vector<float>{5, 5}));
    EXPECT_EQ(bench.Marks(), (std::vector<float>{5, 5, 5, 5, 5}));
}

TEST(TEffectExec, WithBirthsApartEachParticleKeepsItsValueOfBirth)
{
    TMarkBench bench(true);
    EXPECT_TRUE(bench.Exec.AreBirthsApart());
    EXPECT_EQ(bench.Emit(3), (std::vector<float>{1, 2, 3}));
    EXPECT_EQ(bench.Emit(2), (std::vector<float>{4, 5}));
    EXPECT_EQ(bench.Marks(), (std::vector<float>{1, 2, 3, 4, 5}));
    bench.Kill(1);
    EXPECT_EQ(bench.Marks(), (std::vector<float>{1, 3, 4, 5}));
}

TEST(TEffectExec, WithBirthsApartTheLargestBirthHasItsPlaces)
{
    TMarkBench bench(true);
    const std::vector<float> read = bench.Emit(150);
    ASSERT_EQ(read.size(), 100u) << "the particle count";
    EXPECT_EQ(read.front(), 1);
    EXPECT_EQ(read.back(), 100);
    // A store that is full takes the places of the oldest.
    bench.Emit(30);
    EXPECT_EQ(bench.Marks().front(), 31);
    EXPECT_EQ(bench.Marks().back(), 130);
    bench.Kill(99);
    bench.Kill(0);
    EXPECT_EQ(bench.Marks().front(), 32);
    EXPECT_EQ(bench.Marks().back(), 129);
    EXPECT_EQ(bench.Marks().size(), 98u);
}

TEST(TEffectExec, BirthsApartHoldsFromTheNextInitOn)
{
    TMarkBench bench(false);
    bench.Exec.SetBirthsApart(true);
    EXPECT_EQ(bench.Emit(2), (std::vector<float>{2, 2}));
    TErrorList errors;
    ASSERT_TRUE(bench.Exec.Init(bench.Schedule, errors, true));
    EXPECT_EQ(bench.Emit(2), (std::vector<float>{3, 4}));
}
