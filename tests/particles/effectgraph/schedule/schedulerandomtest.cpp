#include "particles/effectgraph/schedule/scheduletestnodes.h"

#include <random>

namespace {

// A random graph without circles: some triggers and constants, then emitters, working nodes and render
// stages, each fed by nodes made before it.
class TRandomGraph
{
public:
    explicit TRandomGraph(unsigned seed) : Random(seed)
    {
        const int count = 3 + Below(15);
        for (int i = 0; i < count; ++i) {
            TEffectNode* node = AddNode(i);
            for (int p = 0; p < node->GetNumInputs(); ++p)
                if (Below(4) != 0)
                    Connect(node, p);
            Made.push_back(node);
        }
    }
    TTestGraph Graph;

private:
    int Below(int n) { return static_cast<int>(Random() % static_cast<unsigned>(n)); }

    TEffectNode* AddNode(int i)
    {
        const uint32_t flags = (Below(4) == 0 ? FL_PROCESSHINT : 0u) | (Below(5) == 0 ? FL_LASTHINT : 0u) |
                               static_cast<uint32_t>(Below(3)) << RenderPriorityShift;
        if (i == 0)
            return AddTrigger(Graph);
        switch (Below(10)) {
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
        default:
            return AddSprite(Graph, Below(3));
        }
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
        const TRandomGraph random(seed);
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
        const TRandomGraph first(seed);
        const TRandomGraph second(seed);
        ASSERT_EQ(MaskAddresses(TScheduled(first.Graph).Log), MaskAddresses(TScheduled(second.Graph).Log))
            << "seed " << seed;
    }
}
