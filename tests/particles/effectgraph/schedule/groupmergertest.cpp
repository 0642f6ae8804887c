#include "particles/effectgraph/schedule/groupmerger.h"

#include "particles/effectgraph/schedule/scheduletestnodes.h"

#include <random>

namespace {

using TNodes = std::vector<const TEffectNode*>;

// The groups of a graph whose nodes stand in order already, before and after merging.
class TMerging
{
public:
    explicit TMerging(const TTestGraph& g) : Nodes(NodesOf(g)), Wiring(Nodes)
    {
        FindEmitterSets(Wiring, Sets);
        Groups.GroupByKey(Sets);
        for (int i = 0; i < Groups.size(); ++i)
            for (const int node : Groups[i].Nodes) {
                Groups[i].HasEmitter = Groups[i].HasEmitter || Wiring.IsEmitter(node);
                Groups[i].HasRender = Groups[i].HasRender || Wiring.IsRender(node);
            }
    }
    TMerging(const TMerging&) = delete;
    TMerging& operator=(const TMerging&) = delete;
    TMerging& Merge()
    {
        TGroupMerger(Wiring, Sets, Groups).Run();
        return *this;
    }
    int size() const { return Groups.size(); }
    TNodes operator[](int group) const
    {
        TNodes result;
        for (const int node : Groups[group].Nodes)
            result.push_back(Wiring.GetNode(node));
        return result;
    }

private:
    static vector<TEffectNode*> NodesOf(const TTestGraph& g)
    {
        vector<TEffectNode*> result;
        for (int i = 0; i < g.GetGraph().GetNumNodes(); ++i)
            result.push_back(g.GetGraph().GetNode(i));
        return result;
    }

    vector<TEffectNode*> Nodes;
    TScheduleWiring Wiring;
    vector<TNodeSet> Sets;
    TBuildGroupTable Groups;
};

TEffectNode* AddConstant(TTestGraph& g, uint32_t flags)
{
    return g.Node("Constant", TU_PROCESS, {"In"}, {"Out"}, flags);
}

// One population: an emitter, a node with two inputs, a sprite.
struct TPopulation
{
    explicit TPopulation(TTestGraph& g)
        : Emitter(AddEmitter(g)), Mix(g.Node("Mix", TU_PROCESS, {"A", "B"}, {"A"})), Sprite(AddSprite(g))
    {
        g.Wire(Emitter, 0, Mix, 0);
        g.Wire(Mix, 0, Sprite, 0);
    }
    TEffectNode* Emitter;
    TEffectNode* Mix;
    TEffectNode* Sprite;
};

} // namespace

TEST(TGroupMerger, EmittersNodesGoInFrontOfTheRenderGroups)
{
    TTestGraph g;
    TEffectNode* first = AddEmitter(g);
    TEffectNode* second = AddEmitter(g);
    TEffectNode* sprite = g.Node("Sprite", TU_RENDER, {"A", "B"}, {});
    g.Wire(first, 0, sprite, 0);
    g.Wire(second, 0, sprite, 1);
    TMerging groups(g);
    ASSERT_EQ(groups.size(), 3);
    groups.Merge();
    ASSERT_EQ(groups.size(), 2);
    EXPECT_EQ(groups[0], TNodes{second});
    EXPECT_EQ(groups[1], (TNodes{first, sprite}));
}

TEST(TGroupMerger, FirstGroupIsNotSeenAgainAfterAMerge)
{
    // The second group joins the third's place; the first, which could join as well, was passed before it
    // could.
    TTestGraph g;
    TEffectNode* first = AddEmitter(g);
    TEffectNode* second = AddEmitter(g);
    TEffectNode* third = AddEmitter(g);
    TEffectNode* sprite = g.Node("Sprite", TU_RENDER, {"A", "B"}, {});
    TEffectNode* other = g.Node("Sprite", TU_RENDER, {"A", "B", "C"}, {});
    g.Wire(first, 0, sprite, 0);
    g.Wire(second, 0, sprite, 1);
    g.Wire(first, 0, other, 0);
    g.Wire(second, 0, other, 1);
    g.Wire(third, 0, other, 2);
    TMerging groups(g);
    ASSERT_EQ(groups.size(), 5);
    groups.Merge();
    // The first erasure makes the second emitter's group the first one, and it is skipped.
    ASSERT_EQ(groups.size(), 3);
    EXPECT_EQ(groups[0], TNodes{second});
    EXPECT_EQ(groups[1], (TNodes{first, sprite}));
    EXPECT_EQ(groups[2], (TNodes{third, other}));
}

TEST(TGroupMerger, ProcessHintMovesToItsOnlyConsumer)
{
    TTestGraph g;
    TEffectNode* trigger = AddTrigger(g);
    TEffectNode* constant = AddConstant(g, FL_PROCESSHINT);
    const TPopulation p(g);
    g.Wire(constant, 0, p.Mix, 1);
    TMerging groups(g);
    EXPECT_EQ(groups[0], (TNodes{trigger, constant}));
    groups.Merge();
    EXPECT_EQ(groups[0], TNodes{trigger});
    EXPECT_EQ(groups[1], (TNodes{p.Emitter, constant, p.Mix, p.Sprite}));
}

TEST(TGroupMerger, ProcessHintMovesThroughItsOwnGroupAndTakesItAlong)
{
    TTestGraph g;
    TEffectNode* first = AddConstant(g, FL_PROCESSHINT);
    TEffectNode* second = AddConstant(g, 0);
    TEffectNode* loose = AddConstant(g, 0);
    const TPopulation p(g);
    g.Wire(first, 0, second, 0);
    g.Wire(first, 0, loose, 0);
    g.Wire(second, 0, p.Mix, 1);
    // What feeds nothing in its new group goes to the front.
    EXPECT_EQ(TMerging(g).Merge()[1], (TNodes{first, loose, p.Emitter, second, p.Mix, p.Sprite}));
}

TEST(TGroupMerger, ProcessHintWithTwoConsumersStays)
{
    TTestGraph g;
    TEffectNode* constant = AddConstant(g, FL_PROCESSHINT);
    const TPopulation p(g);
    const TPopulation q(g);
    g.Wire(constant, 0, p.Mix, 1);
    g.Wire(constant, 0, q.Mix, 1);
    EXPECT_EQ(TMerging(g).Merge()[0], TNodes{constant});
}

TEST(TGroupMerger, ProcessHintThatFeedsAnEmitterStays)
{
    TTestGraph g;
    TEffectNode* constant = AddConstant(g, FL_PROCESSHINT);
    const TPopulation p(g);
    g.Wire(constant, 0, p.Emitter, 0);
    EXPECT_EQ(TMerging(g).Merge()[0], TNodes{constant});
}

TEST(TGroupMerger, TiedNodeMovesToTheFirstThatWorksOnAParticle)
{
    TTestGraph g;
    TEffectNode* trigger = AddTrigger(g);
    TEffectNode* first = AddForce(g);
    TEffectNode* second = AddForce(g);
    TEffectNode* mix = g.Node("Mix", TU_PROCESS, {"A", "Position"}, {"A", "Position"});
    TEffectNode* emitter = AddEmitter(g);
    TEffectNode* sprite = AddSprite(g);
    g.Wire(trigger, 0, first, 0);
    g.Wire(first, 0, second, 0);
    g.Wire(second, 0, mix, 1);
    g.Wire(emitter, 0, mix, 0);
    g.Wire(mix, 0, sprite, 0);
    EXPECT_EQ(TMerging(g).Merge()[0], TNodes{trigger});
    EXPECT_EQ(TMerging(g).Merge()[1], (TNodes{first, second, mix, emitter, sprite}));
}

TEST(TGroupMerger, PlainNodeStays)
{
    TTestGraph g;
    TEffectNode* constant = AddConstant(g, 0);
    const TPopulation p(g);
    g.Wire(constant, 0, p.Mix, 1);
    EXPECT_EQ(TMerging(g).Merge()[0], TNodes{constant});
}

TEST(TGroupMerger, NodeWhoseTargetIsItsOwnGroupStays)
{
    TTestGraph g;
    TEffectNode* mix = g.Node("Mix", TU_PROCESS, {"A", "B"}, {"A"});
    const TPopulation p(g);
    const TPopulation q(g);
    g.Wire(p.Emitter, 0, mix, 0);
    g.Wire(q.Emitter, 0, mix, 1);
    EXPECT_EQ(TMerging(g).Merge()[0], TNodes{mix});
}

namespace {

// The walk without any cut: a node once for every path.
void WalkEveryPath(const TScheduleWiring& wiring, int node, int from, std::vector<std::vector<int>>& sets)
{
    auto add = [&](int member) {
        if (std::find(sets[node].begin(), sets[node].end(), member) == sets[node].end())
            sets[node].push_back(member);
    };
    if (from != -1)
        for (const int member : std::vector<int>(sets[from]))
            add(member);
    if (wiring.IsEmitter(node))
        add(node);
    for (const int target : wiring.GetTargets(node))
        WalkEveryPath(wiring, target, node, sets);
}

} // namespace

TEST(FindEmitterSets, SameMembersInTheSameOrderAsAWalkOfEveryPath)
{
    std::mt19937 random(7);
    int longest = 0;
    for (int round = 0; round < 300; ++round) {
        TTestGraph g;
        const int count = 2 + static_cast<int>(random() % 13);
        vector<TEffectNode*> nodes;
        for (int i = 0; i < count; ++i)
            nodes.push_back(
                g.Node("Node", random() % 2 ? TU_EMITTER : TU_PROCESS, {"A", "B", "C"}, {"A", "B"}));
        for (int i = 1; i < count; ++i)
            for (int p = 0; p < 3; ++p)
                if (random() % 2)
                    g.Wire(nodes[static_cast<int>(random() % static_cast<unsigned>(i))],
                           static_cast<int>(random() % 2), nodes[i], p);
        // The places of the nodes need not follow the edges here.
        for (int i = count - 1; i > 0; --i)
            std::swap(nodes[i], nodes[static_cast<int>(random() % static_cast<unsigned>(i + 1))]);
        const TScheduleWiring wiring(nodes);
        std::vector<std::vector<int>> expected(static_cast<size_t>(count));
        for (int i = 0; i < count; ++i)
            if (wiring.IsRoot(i))
                WalkEveryPath(wiring, i, -1, expected);
        vector<TNodeSet> sets;
        FindEmitterSets(wiring, sets);
        for (int i = 0; i < count; ++i) {
            std::vector<int> members;
            for (int k = 0; k < sets[i].size(); ++k)
                members.push_back(sets[i][k]);
            ASSERT_EQ(members, expected[static_cast<size_t>(i)]) << "round " << round;
            longest = std::max(longest, sets[i].size());
        }
    }
    EXPECT_GT(longest, 5);
}
