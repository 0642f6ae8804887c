#include "enginetestnodes.h"

#include "library/containers/log.h"
#include "particles/cindermill/graph/engine/execloop.h"

#include <random>
#include <set>

namespace {

// A node class of its own for each of the two ways to the ports: both add input 1 to input 0, and pass input
// 1 on.
class TQuickSum : public TRegistered<TQuickSum, TExecLoop<TQuickSum, 2, 2>>
{
public:
    static constexpr const char* RegisteredName = "TQuickSum";
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

class TCheckedSum : public TRegistered<TCheckedSum, TEffectExecNode>
{
public:
    static constexpr const char* RegisteredName = "TCheckedSum";
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
    static const int quickId = TQuickSum::ClassId();
    static const int checkedId = TCheckedSum::ClassId();
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
    // Both inputs take the source's first output, and both pass it on by name: then one attribute is both
    // inputs and both outputs.
    bool IsOneAttribute = false;
    // The node runs for new particles only; their values stand in one place, or there is one for each.
    bool IsForBirths = false;
    bool HasSharedOutputs = false;
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

// The source's values go through the node, which is returned, to the sink.
TEffectNode* AddNodes(TParticleBench& bench, const TCase& c, bool quick)
{
    TTestGraph& graph = bench.Graph;
    // Ports of one name keep a node at work for every particle in every frame.
    const char* outputs[2] = {c.IsForBirths ? "C" : "A", "D"};
    TEffectNode* source = graph.Node("Source", TU_PROCESS, {{"In", c.IsForBirths ? TY_VECTOR3 : TY_SCALAR}},
                                     {{"a", c.Source[0]}, {"b", c.Source[1]}});
    TEffectNode* sum =
        graph.Node("Sum", TU_PROCESS, {{"A", c.Input[0]}, {c.IsOneAttribute ? "D" : "B", c.Input[1]}},
                   {{outputs[0], c.Output[0]}, {outputs[1], c.Output[1]}});
    TEffectNode* sink = graph.Node("Sink", c.HasSharedOutputs ? TU_PROCESS : TU_RENDER,
                                   {{"d", c.Sink[0]}, {"e", c.Sink[1]}}, {"f"});
    for (TEffectNode* node : {source, sink})
        graph.Class(node, GetTestExecClass());
    graph.Class(sum, GetSumClass(quick));
    if (c.IsForBirths)
        graph.Wire(bench.Emitter, "Position", source, "In");
    else
        graph.Wire(bench.Ager, "Age", source, "In");
    for (int port = 0; port < 2; ++port) {
        if (c.IsWired[port])
            graph.Wire(source, c.IsOneAttribute ? 0 : port, sum, port);
        graph.Wire(sum, port, sink, port);
    }
    if (c.HasSharedOutputs) {
        TEffectNode* end = graph.Node("End", TU_RENDER, {"f"}, {});
        graph.Class(end, GetTestExecClass());
        graph.Wire(sink, "f", end, "f");
    }
    return sum;
}

int FindScheduleNode(const TParticleBench& bench, const TEffectNode* node)
{
    int n = 0;
    while (bench.Schedule.GetNode(n) != node)
        ++n;
    return n;
}

// How many attributes feed the node's ports and take their values.
size_t CountAttributes(const TParticleBench& bench, const TEffectNode* node)
{
    std::set<int> attributes;
    const TEffectSchedule& schedule = bench.Schedule;
    for (int t = 0; t < schedule.GetNumTiedNodes(bench.ParticleGroup); ++t) {
        if (schedule.GetNode(schedule.GetTiedNode(bench.ParticleGroup, t)) != node)
            continue;
        for (int port = 0; port < 2; ++port) {
            attributes.insert(schedule.GetTiedNodeInput(bench.ParticleGroup, t, port));
            attributes.insert(schedule.GetTiedNodeOutput(bench.ParticleGroup, t, port));
        }
    }
    return attributes.size();
}

// All memory of the particles after each of some frames, in which particles are born, die, and fill the ring
// more than once.
std::string BytesOf(const TCase& c, bool quick)
{
    constexpr int capacity = 50;
    const TLogCapture quiet([](const char*, void*) {}, nullptr);
    TParticleBench bench(capacity);
    bench.Services.TraceEntries = 8;
    std::mt19937 random(c.Seed);
    TEffectNode* sum = AddNodes(bench, c, quick);
    TTestExecNode::OnExecute("Source", [&](TTestExecNode& node, int index, float) {
        node.WriteOutput(0, index, SomeValue(random));
        node.WriteOutput(1, index, SomeValue(random));
    });
    bench.Build();
    sum->GetNodeType()->SetFlag(FL_BYPASSED, c.IsBypassed);
    if (c.IsOneAttribute && c.IsWired[0] && c.IsWired[1]) {
        EXPECT_EQ(CountAttributes(bench, sum), 1u);
    }
    const int number = FindScheduleNode(bench, sum);
    EXPECT_EQ(bench.Schedule.GetNodeUsage(number), c.IsForBirths ? TU_EMITTER : TU_PROCESS);
    TEffectExecNode* exec = bench.Exec.GetExecNode(number);
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
    for (unsigned seed = 1; seed <= 100; ++seed) {
        TCase c;
        c.Seed = seed;
        for (int port = 0; port < 2; ++port) {
            c.Source[port] = someType();
            c.Input[port] = someType();
            c.Output[port] = someType();
            c.Sink[port] = someType();
            c.IsWired[port] = random() % 5 != 0;
        }
        c.IsOneAttribute = random() % 3 == 0;
        c.IsForBirths = !c.IsOneAttribute && random() % 2 == 0;
        c.HasSharedOutputs = c.IsForBirths && random() % 2 == 0;
        c.IsBypassed = random() % 4 == 0;
        c.IsTraced = random() % 4 == 0;
        ASSERT_EQ(BytesOf(c, true), BytesOf(c, false)) << seed;
    }
}

// The first output is staged, and the second could be written as it stands.
TEST(TParticleNode, TwoOutputsThatAreOneAttributeLeaveTheSecondsValue)
{
    TCase c;
    c.IsOneAttribute = true;
    c.Source[0] = c.Input[0] = c.Input[1] = c.Sink[0] = c.Sink[1] = TY_QUATERNION;
    c.Output[0] = TY_TRANSFORM;
    c.Output[1] = TY_VECTOR3;
    EXPECT_EQ(BytesOf(c, true), BytesOf(c, false));
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
        EXPECT_EQ(AssertionOf([&] { bench.Emit(1); }),
                  std::string("n>=0 && n<size() : The node type Sum has no ") +
                      (hasInputs ? "output 2" : "input 2"));
    }
}
