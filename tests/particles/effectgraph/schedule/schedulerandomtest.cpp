#include "particles/effectgraph/schedule/scheduletestnodes.h"
#include "particles/effectgraph/schedule/slowschedule.h"

#include <random>

namespace {

// A random graph without circles: some triggers and constants, then emitters, working nodes and render
// stages, each fed by nodes made before it.
class TRandomWiring
{
public:
    explicit TRandomWiring(unsigned seed) : Random(seed)
    {
        const int count = 3 + Below(15);
        for (int i = 0; i < count; ++i) {
            TEffectNode* node = AddNode(i);
            AddNumbers(node);
            for (int p = 0; p < node->GetNumInputs(); ++p)
                if (Below(IsMaxAge(node, p) ? 2 : 4) != 0)
                    Connect(node, p);
            Made.push_back(node);
        }
    }
    TTestGraph Graph;

private:
    int Below(int n) { return static_cast<int>(Random() % static_cast<unsigned>(n)); }

    static bool IsMaxAge(const TEffectNode* node, int port)
    {
        return node->GetNodeType()->FindInput("Max Age") == port;
    }
    TEffectNode* AddNode(int i)
    {
        const uint32_t flags = (Below(4) == 0 ? FL_PROCESSHINT : 0u) | (Below(5) == 0 ? FL_LASTHINT : 0u) |
                               static_cast<uint32_t>(Below(3)) << RenderPriorityShift;
        if (i == 0)
            return AddTrigger(Graph);
        switch (Below(13)) {
        case 0:
            return Graph.Node("Constant", TU_PROCESS, {}, {"Value"}, flags);
        case 1:
            return Graph.Node("Trigger", TU_TRIGGER, {"Rate"}, {"Trigger"}, flags);
        case 2:
        case 3:
            return AddEmitter(Graph);
        case 4:
            return AddForce(Graph, "Force", flags);
        case 5:
            return Graph.Node("Integrate", TU_PROCESS, {"Position", "Velocity"}, {"position", "Velocity"},
                              flags);
        case 6:
            return Graph.Node("Add", TU_PROCESS, {"A", "B"}, {"Sum"}, flags);
        case 7:
            return Graph.Node("Turn", TU_PROCESS, {{"Angle", TY_QUATERNION}, "By"},
                              {{"Angle", TY_QUATERNION}}, flags);
        case 8:
            return Graph.Node("Trail", TU_RENDER, {{"Position", TY_VECTOR3}, "Size"},
                              {{"Position", TY_VECTOR3}}, flags);
        case 9:
        case 10:
            return AddAge(Graph, static_cast<float>(Below(5)) * 1.5f - 1);
        default:
            return AddSprite(Graph, Below(3));
        }
    }
    void AddNumbers(TEffectNode* node)
    {
        if (Below(3) == 0)
            Graph.Int(node, "Particle Count", Below(300));
        if (Below(8) == 0)
            Graph.Int(node, "Per frame max emission", Below(50));
    }
    void Connect(TEffectNode* node, int port)
    {
        if (Made.empty())
            return;
        TEffectNode* source = Made[static_cast<size_t>(Below(static_cast<int>(Made.size())))];
        if (source->GetNumOutputs() > 0)
            Graph.Wire(source, Below(source->GetNumOutputs()), node, port);
    }

    std::mt19937 Random;
    std::vector<TEffectNode*> Made;
};

void CheckNodes(const TTestGraph& g, const TScheduled& s)
{
    ASSERT_EQ(s.Schedule.GetNumNodes(), g.GetGraph().GetNumNodes());
    for (int i = 0; i < s.Schedule.GetNumNodes(); ++i) {
        ASSERT_EQ(s.Find(s.Schedule.GetNode(i)), i);
        ASSERT_GE(s.Schedule.GetNodeUsage(i), TU_TRIGGER);
        ASSERT_LE(s.Schedule.GetNodeUsage(i), TU_RENDER);
    }
}

// Nodes with a hint may leave a node in the first place ahead of its sources.
void CheckOrder(const TTestGraph& g, const TScheduled& s)
{
    for (int i = 0; i < s.Schedule.GetNumNodes(); ++i)
        if (s.Schedule.GetNode(i)->GetNodeType()->HasFlag(FL_LASTHINT))
            return;
    for (int i = 0; i < g.GetGraph().GetNumEdges(); ++i) {
        const TEffectEdge* edge = g.GetGraph().GetEdge(i);
        ASSERT_LT(s.Find(edge->GetSrcNode()), s.Find(edge->GetDstNode()));
    }
}

void CheckIndices(const vector<int>& attributes, int count)
{
    for (const int attribute : attributes) {
        ASSERT_GE(attribute, -1);
        ASSERT_LT(attribute, count);
    }
}

void CheckGroup(const TEffectSchedule& schedule, int index)
{
    const TScheduleGroup& group = schedule.GetGroup(index);
    int last = 0;
    for (const TTiedNode& tied : group.TiedNodes) {
        ASSERT_GE(tied.Node, last);
        ASSERT_LT(tied.Node, schedule.GetNumNodes());
        last = tied.Node;
        ASSERT_EQ(tied.Inputs.size(), schedule.GetNode(tied.Node)->GetNumInputs());
        ASSERT_EQ(tied.Outputs.size(), schedule.GetNode(tied.Node)->GetNumOutputs());
        CheckIndices(tied.Inputs, group.Attributes.size());
        CheckIndices(tied.Outputs, group.Attributes.size());
    }
    for (const TGroupAttribute& attribute : group.Attributes) {
        ASSERT_GE(attribute.Type, TY_SCALAR);
        ASSERT_LT(attribute.Type, TY_POLYTYPE);
        ASSERT_GE(attribute.ExternalGroup, -1);
        ASSERT_LT(attribute.ExternalGroup, schedule.GetNumGroups());
        ASSERT_GE(attribute.ExternalAttrib, 0);
        ASSERT_LT(attribute.ExternalAttrib,
                  attribute.ExternalGroup == -1 ? 1 : schedule.GetNumAttributes(attribute.ExternalGroup));
    }
    ASSERT_TRUE(group.MaxLifeTime == 0 || !group.IsTriggerGroup);
}

// A node belongs to one group, and stands in it as often as its consumers need.
void CheckNodeIsInOneGroup(const TEffectSchedule& schedule)
{
    std::vector<int> groupOf(static_cast<size_t>(schedule.GetNumNodes()), -1);
    for (int group = 0; group < schedule.GetNumGroups(); ++group)
        for (int tied = 0; tied < schedule.GetNumTiedNodes(group); ++tied) {
            int& known = groupOf[static_cast<size_t>(schedule.GetTiedNode(group, tied))];
            ASSERT_TRUE(known == -1 || known == group);
            known = group;
        }
}

} // namespace

TEST(ScheduleOfRandomGraphs, HoldsTogether)
{
    int made = 0;
    int refused = 0;
    int stopped = 0;
    for (unsigned seed = 1; seed <= 1500; ++seed) {
        SCOPED_TRACE(seed);
        const TRandomWiring random(seed);
        const TScheduled s(random.Graph);
        ASSERT_EQ(s.Schedule.IsCreated(), s.Made);
        if (!s.Assertion.empty()) {
            ++stopped;
            ASSERT_TRUE(s.Assertion == "n>=0 && n<size()" || s.Assertion == "j < groups.size()")
                << s.Assertion;
            continue;
        }
        if (!s.Made) {
            ++refused;
            ASSERT_EQ(s.Errors.size(), 1u);
            continue;
        }
        ++made;
        ASSERT_TRUE(s.Errors.empty());
        CheckNodes(random.Graph, s);
        CheckOrder(random.Graph, s);
        for (int group = 0; group < s.Schedule.GetNumGroups(); ++group)
            CheckGroup(s.Schedule, group);
        CheckNodeIsInOneGroup(s.Schedule);
        if (HasFatalFailure())
            return;
    }
    EXPECT_GT(made, 300);
    EXPECT_GT(refused, 20);
    EXPECT_GT(stopped, 20);
}

TEST(ScheduleOfRandomGraphs, DoesNotDependOnAddresses)
{
    for (unsigned seed = 1; seed <= 200; ++seed) {
        const TRandomWiring first(seed);
        const TRandomWiring second(seed);
        ASSERT_EQ(MaskAddresses(TScheduled(first.Graph).Log), MaskAddresses(TScheduled(second.Graph).Log))
            << "seed " << seed;
    }
}

namespace {

std::vector<int> Ints(const vector<int>& values)
{
    return std::vector<int>(values.begin(), values.end());
}

void CheckAttribute(const TGroupAttribute& attribute, const TSlowSchedule::TAttribute& slow)
{
    ASSERT_EQ(Text(attribute.Name), slow.Name);
    ASSERT_EQ(attribute.Type, slow.Type);
    ASSERT_EQ(attribute.Usage, slow.Usage);
    ASSERT_EQ(attribute.Port, slow.Port);
    ASSERT_EQ(attribute.ExternalGroup, slow.ExternalGroup);
    ASSERT_EQ(attribute.ExternalAttrib, slow.ExternalAttrib);
}

void CheckGroup(const TScheduleGroup& group, const TSlowSchedule::TGroup& slow)
{
    ASSERT_EQ(group.IsTriggerGroup, slow.IsTriggerGroup);
    ASSERT_EQ(group.ParticleCount, slow.ParticleCount);
    ASSERT_EQ(group.MaxEmission, slow.MaxEmission);
    ASSERT_EQ(group.MaxLifeTime, slow.MaxLifeTime);
    ASSERT_EQ(group.TiedNodes.size(), static_cast<int>(slow.TiedNodes.size()));
    for (int i = 0; i < group.TiedNodes.size(); ++i) {
        const TSlowSchedule::TTied& tied = slow.TiedNodes[static_cast<size_t>(i)];
        ASSERT_EQ(group.TiedNodes[i].Node, tied.Node);
        ASSERT_EQ(Ints(group.TiedNodes[i].Inputs), tied.Inputs);
        ASSERT_EQ(Ints(group.TiedNodes[i].Outputs), tied.Outputs);
    }
    ASSERT_EQ(group.Attributes.size(), static_cast<int>(slow.Attributes.size()));
    for (int i = 0; i < group.Attributes.size(); ++i)
        ASSERT_NO_FATAL_FAILURE(CheckAttribute(group.Attributes[i], slow.Attributes[static_cast<size_t>(i)]));
}

void CheckSchedule(const TScheduled& s, const TSlowSchedule& slow)
{
    ASSERT_EQ(s.Assertion, slow.Assertion);
    ASSERT_EQ(s.Made, !slow.IsRefused && slow.Assertion.empty());
    if (!s.Made)
        return;
    ASSERT_EQ(s.Schedule.GetNumNodes(), static_cast<int>(slow.Nodes.size()));
    for (int i = 0; i < s.Schedule.GetNumNodes(); ++i)
        ASSERT_EQ(s.Schedule.GetNodeUsage(i), slow.Usages[static_cast<size_t>(i)]);
    ASSERT_EQ(s.Schedule.GetNumGroups(), static_cast<int>(slow.Groups.size()));
    for (int i = 0; i < s.Schedule.GetNumGroups(); ++i)
        ASSERT_NO_FATAL_FAILURE(CheckGroup(s.Schedule.GetGroup(i), slow.Groups[static_cast<size_t>(i)]));
}

} // namespace

TEST(ScheduleOfRandomGraphs, IsWhatThePlainWayGives)
{
    int made = 0;
    int lives = 0;
    int dropped = 0;
    for (unsigned seed = 1; seed <= 800; ++seed) {
        SCOPED_TRACE(seed);
        const TRandomWiring random(seed);
        const TScheduled s(random.Graph);
        const TSlowSchedule slow(random.Graph.GetGraph());
        ASSERT_NO_FATAL_FAILURE(CheckSchedule(s, slow));
        made += s.Made ? 1 : 0;
        for (int i = 0; i < s.Schedule.GetNumGroups() && s.Made; ++i)
            lives += s.Schedule.GetMaxLifeTime(i) != 0 ? 1 : 0;
        dropped += slow.HasDropped() ? 1 : 0;
    }
    EXPECT_GT(made, 150);
    EXPECT_GT(lives, 4);
    EXPECT_GT(dropped, 300);
}
