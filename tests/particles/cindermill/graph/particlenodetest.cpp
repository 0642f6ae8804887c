#include "enginetestnodes.h"

#include "particles/cindermill/graph/execloop.h"

#include <random>

namespace {

// A node class of its own for each of the two ways to the ports: both add input 1 to input 0, and pass input
// 1 on.
class TQuickSum : public TExecLoop<TQuickSum, 2, 2>
{
public:
    void Execute(int index, float dt) override
    {
        TPortValue sum = Load(0, index);
        const TPortValue other = Load(1, index);
        for (int c = 0; c < MaxValueFloats; ++c)
            sum[c] += other[c] + LoadScalar(1, index) * dt;
        const TVector3 vector = LoadVector(1, index);
        for (int c = 0; c < 3; ++c)
            sum[c] -= vector[c] * 0.25f;
        Store(0, index, sum);
        Store(1, index, other);
    }
};

class TCheckedSum : public TEffectExecNode
{
public:
    void Execute(int index, float dt) override
    {
        TPortValue sum = ReadInput(0, index);
        const TPortValue other = ReadInput(1, index);
        for (int c = 0; c < MaxValueFloats; ++c)
            sum[c] += other[c] + other[0] * dt;
        for (int c = 0; c < 3; ++c)
            sum[c] -= other[c] * 0.25f;
        WriteOutput(0, index, sum);
        WriteOutput(1, index, other);
    }
};

const char* GetSumClass(bool quick)
{
    static const int quickId = RegisterExecNode<TQuickSum>("TQuickSum");
    static const int checkedId = RegisterExecNode<TCheckedSum>("TCheckedSum");
    return GetClassName(quick ? quickId : checkedId);
}

// What a run is made of.
struct TCase
{
    unsigned Seed = 1;
    // Of the attributes' sources, the node's inputs, its outputs and what reads these.
    int Source[2] = {TY_SCALAR, TY_SCALAR};
    int Input[2] = {TY_SCALAR, TY_SCALAR};
    int Output[2] = {TY_SCALAR, TY_SCALAR};
    int Sink[2] = {TY_SCALAR, TY_SCALAR};
    bool IsWired[2] = {true, true};
    bool IsBypassed = false;
    bool IsTraced = false;
};

TPortValue SomeValue(std::mt19937& random)
{
    TPortValue value;
    for (int c = 0; c < MaxValueFloats; ++c)
        value[c] = static_cast<float>(random() % 2000) / 64.0f - 10;
    return value;
}

void AppendBytes(std::string& bytes, const void* data, size_t size)
{
    bytes.append(static_cast<const char*>(data), size);
}

void AppendTraces(std::string& bytes, TEffectExecNode& node)
{
    for (int n = 0; n < node.GetNumTraces(); ++n) {
        for (int port = 0; port < 2; ++port) {
            const TAttributeTrace& trace = node.GetOutputTrace(n, port);
            for (int particle = 0; particle < 60; ++particle)
                for (int entry = 0; entry < trace.GetNumEntries(particle); ++entry) {
                    const float value = trace.GetEntry(particle, entry, 0);
                    AppendBytes(bytes, &value, sizeof value);
                }
        }
    }
}

// All memory of the particles after each of some frames, in which particles are born, die, and fill the ring
// more than once.
std::string BytesOf(const TCase& c, bool quick)
{
    constexpr int capacity = 50;
    TParticleBench bench(capacity);
    bench.Services.TraceEntries = 8;
    std::mt19937 random(c.Seed);
    TEffectNode* source =
        bench.Graph.Node("Source", TU_PROCESS, {"Age"}, {{"a", c.Source[0]}, {"b", c.Source[1]}});
    TEffectNode* sum = bench.Graph.Node("Sum", TU_PROCESS, {{"A", c.Input[0]}, {"B", c.Input[1]}},
                                        {{"A", c.Output[0]}, {"C", c.Output[1]}});
    TEffectNode* sink = bench.Graph.Node("Sink", TU_RENDER, {{"d", c.Sink[0]}, {"e", c.Sink[1]}}, {});
    bench.Graph.Class(source, GetTestExecClass());
    bench.Graph.Class(sum, GetSumClass(quick));
    bench.Graph.Class(sink, GetTestExecClass());
    bench.Graph.Wire(bench.Ager, "Age", source, "Age");
    for (int port = 0; port < 2; ++port) {
        if (c.IsWired[port])
            bench.Graph.Wire(source, port, sum, port);
        bench.Graph.Wire(sum, port, sink, port);
    }
    TTestExecNode::OnExecute("Source", [&](TTestExecNode& node, int index, float) {
        node.WriteOutput(0, index, SomeValue(random));
        node.WriteOutput(1, index, SomeValue(random));
    });
    bench.Build();
    sum->GetNodeType()->SetFlag(FL_BYPASSED, c.IsBypassed);
    TEffectExecNode* exec = nullptr;
    for (int n = 0; n < bench.Schedule.GetNumNodes(); ++n)
        if (bench.Schedule.GetNode(n) == sum)
            exec = bench.Exec.GetExecNode(n);
    exec->SetTracing(c.IsTraced);
    std::string bytes;
    for (int frame = 0; frame < 12; ++frame) {
        bench.Emit(static_cast<int>(random() % 25));
        std::vector<int> dead;
        for (int k = bench.Buffer().GetNumParticles() - 1; k >= 0; --k)
            if (random() % 5 == 0)
                dead.push_back(k);
        bench.Kill(dead);
        for (int u = 0; u < TParticleBuffer::NumBlocks; ++u) {
            const TParticleBuffer::TBlock& block = bench.Buffer().GetBlock(u);
            AppendBytes(bytes, block.Data, static_cast<size_t>(block.Stride * block.Count));
        }
    }
    if (c.IsTraced)
        AppendTraces(bytes, *exec);
    return bytes;
}

class TParticleNodeTypes : public testing::TestWithParam<int>
{
};

} // namespace

// Every conversion on the way in and on the way out.
TEST_P(TParticleNodeTypes, AreConvertedAsTheCheckedWayDoes)
{
    const int type = GetParam();
    for (int other = TY_SCALAR; other < TY_POLYTYPE; ++other) {
        TCase c;
        c.Source[0] = c.Sink[1] = type;
        c.Input[0] = c.Output[1] = other;
        c.Input[1] = c.Output[0] = type;
        c.Source[1] = c.Sink[0] = other;
        EXPECT_EQ(BytesOf(c, true), BytesOf(c, false)) << GetTypeName(type) << " " << GetTypeName(other);
    }
}

INSTANTIATE_TEST_SUITE_P(AllTypes, TParticleNodeTypes, testing::Range(+TY_SCALAR, +TY_POLYTYPE));

TEST(TParticleNode, DoesWhatTheCheckedWayDoes)
{
    std::mt19937 random(3);
    const auto someType = [&] { return static_cast<int>(random() % TY_POLYTYPE); };
    for (unsigned seed = 1; seed <= 150; ++seed) {
        TCase c;
        c.Seed = seed;
        for (int port = 0; port < 2; ++port) {
            c.Source[port] = someType();
            c.Input[port] = someType();
            c.Output[port] = someType();
            c.Sink[port] = someType();
            c.IsWired[port] = random() % 5 != 0;
        }
        c.IsBypassed = random() % 4 == 0;
        c.IsTraced = random() % 4 == 0;
        ASSERT_EQ(BytesOf(c, true), BytesOf(c, false)) << seed;
    }
}

TEST(TParticleNode, ATypeWithoutThePortsThatItsClassUsesStops)
{
    for (const bool hasInputs : {false, true}) {
        TParticleBench bench(4);
        TEffectNode* sum = bench.Graph.Node(
            "Sum", TU_PROCESS, hasInputs ? std::vector<TTestPort>{"A", "B"} : std::vector<TTestPort>{"A"},
            hasInputs ? std::vector<TTestPort>{"A"} : std::vector<TTestPort>{"A", "C"});
        TEffectNode* sink = bench.Graph.Node("Sink", TU_RENDER, {"A"}, {});
        bench.Graph.Class(sum, GetSumClass(true));
        bench.Graph.Class(sink, GetTestExecClass());
        bench.Graph.Wire(bench.Ager, "Age", sum, "A");
        bench.Graph.Wire(sum, "A", sink, "A");
        bench.Build();
        // Without particles nobody asks.
        EXPECT_EQ(AssertionOf([&] { bench.Exec.Update(0.1f); }), "");
        EXPECT_EQ(AssertionOf([&] { bench.Emit(1); }), "n>=0 && n<size()");
    }
}
