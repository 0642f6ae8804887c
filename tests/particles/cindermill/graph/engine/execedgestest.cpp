#include "enginetestnodes.h"

namespace {

using TFloats = std::vector<float>;

// A population whose newborn get a size, which only a node of their birth computes.
class TBirthBench : public TParticleBench
{
public:
    TBirthBench() : TParticleBench(8)
    {
        Shifter = Graph.Node("Shifter", TU_PROCESS, {{"Place", TY_VECTOR3}}, {{"Girth", TY_SCALE}});
        TEffectNode* sink = Graph.Node("Sink", TU_RENDER, {{"Girth", TY_SCALE}}, {});
        for (TEffectNode* node : {Shifter, sink})
            Graph.Class(node, GetTestExecClass());
        Graph.Wire(Emitter, 0, Shifter, 0);
        Graph.Wire(Shifter, 0, sink, 0);
        // What a particle is born with, until the node has run for it.
        Graph.InputValue(sink, "Girth", {3, 3});
        TTestExecNode::OnExecute("Shifter", [](TTestExecNode& node, int index, float) {
            node.WriteOutput(0, index, TPortValue(1.0f, 2.0f));
        });
        Build();
    }
    void Bypass(bool bypassed) const { Shifter->GetNodeType()->SetFlag(FL_BYPASSED, bypassed); }
    TFloats Girths() const
    {
        TFloats result;
        for (int k = 0; k < Buffer().GetNumParticles(); ++k)
            result.insert(result.end(), Value("Girth", k), Value("Girth", k) + 2);
        return result;
    }

    TEffectNode* Shifter = nullptr;
};

} // namespace

TEST(TEffectExec, ABypassedNodeOfBirthWritesForTheNewbornOnly)
{
    TBirthBench bench;
    bench.Emit(2);
    bench.Bypass(true);
    bench.Emit(1);
    EXPECT_EQ(bench.Girths(), (TFloats{1, 2, 1, 2, 0, 0}));
    bench.Bypass(false);
    bench.Emit(1);
    EXPECT_EQ(bench.Girths(), (TFloats{1, 2, 1, 2, 0, 0, 1, 2}));
}

// What a store held before is no start for the next particle of its place.
TEST(TEffectExec, AReusedPlaceStartsAnew)
{
    TParticleBench bench(2);
    bench.Graph.InputValue(bench.Sprite, "Size", {3});
    bench.Build();
    TTestExecNode::OnExecute("Sizer", [](TTestExecNode& node, int index, float dt) {
        if (dt > 1)
            node.WriteOutput(0, index, TPortValue(50.0f));
    });
    bench.Emit(2);
    bench.Exec.Update(2);
    EXPECT_EQ(*bench.Value("Size", 0), 50);
    bench.Emit(2);
    for (int k = 0; k < 2; ++k)
        EXPECT_EQ(*bench.Value("Size", k), 3);
}

TEST(TEffectExec, AnEmissionIsClampedToTheRoomOfItsGroup)
{
    TParticleBench bench(4);
    bench.Build();
    for (const int count : {5, 1000000, INT32_MAX}) {
        TTestExecNode::Calls().clear();
        bench.Emit(count);
        const TParticleBuffer& buffer = bench.Buffer();
        EXPECT_EQ(buffer.GetNumParticles(), buffer.GetBufferSize());
        EXPECT_EQ(buffer.GetHead(), buffer.GetTail());
        EXPECT_EQ(
            std::count(TTestExecNode::Calls().begin(), TTestExecNode::Calls().end(), "Emitter.Execute 3"), 1);
        EXPECT_EQ(
            std::count(TTestExecNode::Calls().begin(), TTestExecNode::Calls().end(), "Emitter.Execute 4"), 0);
    }
}

// The particles that a frame brings are there for all nodes of that frame, the dead ones too.
TEST(TEffectExec, DeathsWaitForAllGroups)
{
    TParticleBench bench(4);
    bench.Build();
    int seen = -1;
    TTestExecNode::OnExecute("Ager", [](TTestExecNode& node, int index, float) { node.KillParticle(index); });
    TTestExecNode::OnExecute("Sizer",
                             [&](TTestExecNode&, int, float) { seen = bench.Buffer().GetNumParticles(); });
    bench.Emit(3);
    EXPECT_EQ(seen, 3);
    EXPECT_EQ(bench.Buffer().GetNumParticles(), 0);
    EXPECT_EQ(bench.Buffer().GetTail(), -1);
}

TEST(TEffectExec, TimeMayGoBackwards)
{
    TParticleBench bench(4);
    bench.Build();
    std::vector<float> times;
    TTestExecNode::OnExecute("Ager", [&](TTestExecNode&, int, float dt) { times.push_back(dt); });
    bench.Emit(1);
    bench.Exec.Update(-0.5f);
    EXPECT_EQ(times, (std::vector<float>{0.1f, -0.5f}));
    EXPECT_EQ(bench.Exec.GetTime(), static_cast<float>(static_cast<double>(0.1f) - 0.5));
}
