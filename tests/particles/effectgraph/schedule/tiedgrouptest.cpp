#include "particles/effectgraph/schedule/tiedgroup.h"

#include "particles/effectgraph/schedule/scheduletestnodes.h"

namespace {

// A render stage that works on its position in place.
TEffectNode* AddTrail(TTestGraph& g)
{
    return g.Node("Trail", TU_RENDER, {{"Position", TY_VECTOR3}}, {{"Position", TY_VECTOR3}});
}

std::vector<int> Ints(const vector<int>& values)
{
    return std::vector<int>(values.begin(), values.end());
}

// The data flow of all nodes of a graph but those of the given types, as one group.
TTiedGroup BuildAll(const TTestGraph& g, const std::vector<const TEffectNode*>& outside = {})
{
    vector<TEffectNode*> group;
    vector<TEffectNode*> terminals;
    auto isInside = [&](const TEffectNode* node) {
        return std::find(outside.begin(), outside.end(), node) == outside.end();
    };
    for (int i = 0; i < g.GetGraph().GetNumNodes(); ++i) {
        TEffectNode* node = g.GetGraph().GetNode(i);
        if (!isInside(node))
            continue;
        group.push_back(node);
        bool feeds = false;
        for (int o = 0; o < node->GetNumOutputs(); ++o)
            for (int n = 0; n < node->GetNumOutputEdges(o); ++n)
                feeds = feeds || isInside(node->GetOutputEdge(o, n)->GetDstNode());
        if (!feeds)
            terminals.push_back(node);
    }
    TTiedGroup tied;
    BuildTiedGroup(group, terminals, tied);
    return tied;
}

std::vector<const TEffectNode*> NodesOf(const TTiedGroup& tied)
{
    std::vector<const TEffectNode*> result;
    for (const TTiedNodeRecord& record : tied.TiedNodes)
        result.push_back(record.Node);
    return result;
}

} // namespace

TEST(TTiedGroup, ChainOfTiedNodesIsOneAttribute)
{
    TTestGraph g;
    TEffectNode* source = g.Node("Source", TU_EMITTER, {}, {"Position"});
    TEffectNode* first = AddForce(g);
    TEffectNode* second = AddForce(g);
    TEffectNode* sprite = AddSprite(g);
    g.Wire(source, 0, first, 0);
    g.Wire(first, 0, second, 0);
    g.Wire(second, 0, sprite, 0);
    const TTiedGroup tied = BuildAll(g);
    EXPECT_EQ(NodesOf(tied), (std::vector<const TEffectNode*>{sprite, second, first, source}));
    ASSERT_EQ(tied.Attributes.size(), 1);
    EXPECT_TRUE(tied.Attributes[0].Written);
    EXPECT_FALSE(tied.Attributes[0].External);
    EXPECT_EQ(tied.Attributes[0].Node, sprite);
    EXPECT_EQ(tied.Attributes[0].Port, 0);
    // The port furthest upstream carries it.
    EXPECT_EQ(tied.Attributes[0].InputPort, first->GetNodeType()->GetInput(0));
    for (const TTiedNodeRecord& record : tied.TiedNodes) {
        EXPECT_EQ(Ints(record.Inputs), std::vector<int>(static_cast<size_t>(record.Node->GetNumInputs()), 0));
        EXPECT_EQ(Ints(record.Outputs),
                  std::vector<int>(static_cast<size_t>(record.Node->GetNumOutputs()), 0));
    }
    EXPECT_TRUE(tied.Frontier.empty());
}

TEST(TTiedGroup, NodeWithTwoModifyingConsumersIsEnteredTwice)
{
    TTestGraph g;
    TEffectNode* source = g.Node("Source", TU_EMITTER, {}, {"Position"});
    TEffectNode* force = AddForce(g);
    TEffectNode* first = AddTrail(g);
    TEffectNode* second = AddTrail(g);
    g.Wire(source, 0, force, 0);
    g.Wire(force, 0, first, 0);
    g.Wire(force, 0, second, 0);
    const TTiedGroup tied = BuildAll(g);
    EXPECT_EQ(NodesOf(tied), (std::vector<const TEffectNode*>{first, second, force, force, source, source}));
    EXPECT_EQ(tied.Attributes.size(), 2);
    EXPECT_EQ(Ints(tied.TiedNodes[2].Outputs), std::vector<int>{0});
    EXPECT_EQ(Ints(tied.TiedNodes[3].Outputs), std::vector<int>{1});
    EXPECT_EQ(Ints(tied.TiedNodes[5].Outputs), std::vector<int>{1});
}

TEST(TTiedGroup, ReadersShareWhatOneModifierTakes)
{
    TTestGraph g;
    TEffectNode* source = g.Node("Source", TU_EMITTER, {}, {"Position"});
    TEffectNode* trail = AddTrail(g);
    TEffectNode* sprite = AddSprite(g);
    g.Wire(source, 0, trail, 0);
    g.Wire(source, 0, sprite, 0);
    const TTiedGroup tied = BuildAll(g);
    EXPECT_EQ(NodesOf(tied), (std::vector<const TEffectNode*>{trail, sprite, source}));
    EXPECT_EQ(tied.Attributes.size(), 1);
    EXPECT_TRUE(tied.Attributes[0].Written);
}

TEST(TTiedGroup, TwoReadersShareOneAttributeAndHigherIndicesShift)
{
    TTestGraph g;
    TEffectNode* source = g.Node("Source", TU_EMITTER, {}, {"Position", "Size"});
    TEffectNode* first = AddSprite(g);
    TEffectNode* second = g.Node("Sprite", TU_RENDER, {"Place", "Size"}, {});
    g.Wire(source, 0, first, 0);
    g.Wire(source, 0, second, 0);
    g.Wire(source, 1, second, 1);
    const TTiedGroup tied = BuildAll(g);
    EXPECT_EQ(tied.Attributes.size(), 2);
    EXPECT_EQ(Ints(tied.TiedNodes[0].Inputs), std::vector<int>{0});
    EXPECT_EQ(Ints(tied.TiedNodes[1].Inputs), (std::vector<int>{0, 1}));
    EXPECT_EQ(Ints(tied.TiedNodes[2].Outputs), (std::vector<int>{0, 1}));
    EXPECT_FALSE(tied.Attributes[0].Written);
}

TEST(TTiedGroup, TwoInputsOfOneConsumerFedByOneOutputAreOneAttribute)
{
    TTestGraph g;
    TEffectNode* source = g.Node("Source", TU_EMITTER, {}, {"Position"});
    TEffectNode* sprite = g.Node("Sprite", TU_RENDER, {"A", "B"}, {});
    g.Wire(source, 0, sprite, 0);
    g.Wire(source, 0, sprite, 1);
    const TTiedGroup tied = BuildAll(g);
    EXPECT_EQ(tied.Attributes.size(), 1);
    EXPECT_EQ(Ints(tied.TiedNodes[0].Inputs), (std::vector<int>{0, 0}));
    EXPECT_EQ(Ints(tied.TiedNodes[1].Outputs), std::vector<int>{0});
}

namespace {

// The second node's velocity is tied, and nobody takes it.
TEffectNode* AddUntakenTie(TTestGraph& g, TEffectNode* velocitySource)
{
    TEffectNode* source = g.Node("Source", TU_EMITTER, {}, {"Position"});
    TEffectNode* integrate =
        g.Node("Integrate", TU_PROCESS, {"Position", "Velocity"}, {"Position", "Velocity"});
    g.Wire(source, 0, integrate, 0);
    g.Wire(velocitySource, 0, integrate, 1);
    g.Wire(integrate, 0, AddSprite(g), 0);
    return integrate;
}

} // namespace

TEST(TTiedGroup, TiedInputWhoseOutputNobodyTakesStopsWhenTraced)
{
    TTestGraph g;
    AddUntakenTie(g, g.Node("Velocity", TU_PROCESS, {}, {"Velocity"}));
    EXPECT_EQ(AssertionOf([&] { BuildAll(g); }), "n>=0 && n<size()");
}

TEST(TTiedGroup, TiedInputWhoseOutputNobodyTakesStopsWhenItsSourceHasAnotherConsumer)
{
    TTestGraph g;
    TEffectNode* velocity = g.Node("Velocity", TU_PROCESS, {}, {"Velocity"});
    g.Wire(velocity, 0, AddSprite(g), 0);
    AddUntakenTie(g, velocity);
    EXPECT_EQ(AssertionOf([&] { BuildAll(g); }), "n>=0 && n<size()");
}

TEST(TTiedGroup, TiedInputWhoseOutputNobodyTakesIsNoneWhenItComesFromOutside)
{
    TTestGraph g;
    TEffectNode* velocity = g.Node("Velocity", TU_TRIGGER, {}, {"Velocity"});
    AddUntakenTie(g, velocity);
    const TTiedGroup tied = BuildAll(g, {velocity});
    EXPECT_EQ(Ints(tied.TiedNodes[1].Inputs), (std::vector<int>{0, -1}));
    ASSERT_EQ(tied.ExternalInputs.size(), 1);
    EXPECT_EQ(Ints(tied.ExternalInputs[0].Attributes), std::vector<int>{-1});
    // The links pass it over.
    const TScheduled s(g);
    EXPECT_TRUE(s.Made) << s.Assertion;
    EXPECT_NE(s.Log.find("-> attrib[-1]\n"), std::string::npos);
}

TEST(TTiedGroup, OutputToTheGroupAndToAnotherIsShared)
{
    TTestGraph g;
    TEffectNode* source = g.Node("Source", TU_EMITTER, {}, {"Position"});
    TEffectNode* sprite = AddSprite(g);
    TEffectNode* child = AddEmitter(g);
    g.Wire(source, 0, sprite, 0);
    const TEffectEdge* leaving = g.Wire(source, 0, child, 0);
    const TTiedGroup tied = BuildAll(g, {child});
    EXPECT_EQ(tied.Attributes.size(), 1);
    EXPECT_FALSE(tied.Attributes[0].External);
    ASSERT_EQ(tied.ExternalOutputs.size(), 1);
    EXPECT_EQ(tied.ExternalOutputs[0].Edge, leaving);
    EXPECT_EQ(tied.FindExternalOutput(leaving), 0);
    EXPECT_EQ(tied.FindExternalOutput(nullptr), -1);
}

TEST(TTiedGroup, UnconnectedInputsHaveNoAttribute)
{
    TTestGraph g;
    TEffectNode* source = g.Node("Source", TU_EMITTER, {"Rate"}, {"Position"});
    g.Wire(source, 0, g.Node("Sprite", TU_RENDER, {"Place", "Size"}, {}), 0);
    const TTiedGroup tied = BuildAll(g);
    EXPECT_EQ(Ints(tied.TiedNodes[0].Inputs), (std::vector<int>{0, -1}));
    EXPECT_EQ(Ints(tied.TiedNodes[1].Inputs), std::vector<int>{-1});
}

TEST(TTiedGroup, TerminalThatFeedsItsOwnGroupStops)
{
    TTestGraph g;
    TEffectNode* source = g.Node("Source", TU_EMITTER, {}, {"Position"});
    TEffectNode* sprite = AddSprite(g);
    g.Wire(source, 0, sprite, 0);
    vector<TEffectNode*> nodes;
    nodes.push_back(source);
    nodes.push_back(sprite);
    TTiedGroup tied;
    EXPECT_EQ(AssertionOf([&] { BuildTiedGroup(nodes, nodes, tied); }),
              "group.GetNodeIndex(edge->GetInput()) == -1");
}

TEST(TTiedGroup, ExternalEdgesKeepTheOrderOfTheirFirstEntry)
{
    TTestGraph g;
    TEffectNode* first = AddTrigger(g);
    TEffectNode* second = AddTrigger(g);
    TEffectNode* source = g.Node("Source", TU_EMITTER, {"Rate"}, {"Position"});
    TEffectNode* sprite = g.Node("Sprite", TU_RENDER, {"Place", "Size"}, {});
    const TEffectEdge* toSource = g.Wire(first, 0, source, 0);
    const TEffectEdge* toSprite = g.Wire(second, 0, sprite, 1);
    g.Wire(source, 0, sprite, 0);
    const TTiedGroup tied = BuildAll(g, {first, second});
    ASSERT_EQ(tied.ExternalInputs.size(), 2);
    EXPECT_EQ(tied.ExternalInputs[0].Edge, toSprite);
    EXPECT_EQ(tied.ExternalInputs[1].Edge, toSource);
}

TEST(TTiedGroup, SourceEnteredTwiceListsAllItsAttributesWithItsEdge)
{
    TTestGraph g;
    TEffectNode* trigger = AddTrigger(g);
    TEffectNode* source = g.Node("Source", TU_EMITTER, {"Rate"}, {"Position"});
    g.Wire(trigger, 0, source, 0);
    g.Wire(source, 0, AddTrail(g), 0);
    g.Wire(source, 0, AddTrail(g), 0);
    const TTiedGroup tied = BuildAll(g, {trigger});
    ASSERT_EQ(tied.ExternalInputs.size(), 1);
    EXPECT_EQ(Ints(tied.ExternalInputs[0].Attributes), (std::vector<int>{2, 3}));
    EXPECT_NE(LogOf([&] { DumpTiedGroup(tied); }).find(" -> attrib[2] attrib[3]\n"), std::string::npos);
}

TEST(TTiedGroup, BranchesThatMultiplyPastTheLimitStop)
{
    TTestGraph g;
    TEffectNode* top = g.Node("Source", TU_EMITTER, {}, {"Position"});
    // Two inputs of one name stand for one value, which both sources want to modify.
    for (int i = 0; i < 16; ++i) {
        TEffectNode* forces[2] = {AddForce(g), AddForce(g)};
        TEffectNode* join = g.Node("Join", TU_PROCESS, {"Position", "Position"}, {"Position"});
        for (int p = 0; p < 2; ++p) {
            g.Wire(top, 0, forces[p], 0);
            g.Wire(forces[p], 0, join, p);
        }
        top = join;
    }
    g.Wire(top, 0, AddSprite(g), 0);
    const std::string assertion = AssertionOf([&] { BuildAll(g); });
    EXPECT_EQ(assertion, "Tied.TiedNodes.size() < MaxTiedNodes");
}

namespace {

// Four attributes of nodes of rising category, spread over one tied node and the outside edges.
struct TMergeSample
{
    TMergeSample()
    {
        for (int category = TU_TRIGGER; category <= TU_RENDER; ++category) {
            TTiedAttribute attribute;
            attribute.Node = g.Node("Node", category, {"In"}, {"Out"});
            attribute.Port = category;
            Tied.Attributes.push_back(attribute);
        }
        TTiedNodeRecord record;
        record.Node = Tied.Attributes[0].Node;
        for (int i = -1; i < 4; ++i)
            record.Inputs.push_back(i);
        record.Outputs.push_back(3);
        Tied.TiedNodes.push_back(record);
        TExternalInput input;
        input.Attributes.push_back(2);
        input.Attributes.push_back(1);
        Tied.ExternalInputs.push_back(input);
        Tied.ExternalOutputs.push_back(TExternalOutput{nullptr, 3});
    }
    TTestGraph g;
    TTiedGroup Tied;
};

} // namespace

TEST(MergeAttributes, HigherIndicesMoveDownEverywhere)
{
    TMergeSample s;
    MergeAttributes(s.Tied, 0, 2);
    EXPECT_EQ(s.Tied.Attributes.size(), 3);
    EXPECT_EQ(Ints(s.Tied.TiedNodes[0].Inputs), (std::vector<int>{-1, 0, 1, 0, 2}));
    EXPECT_EQ(Ints(s.Tied.TiedNodes[0].Outputs), std::vector<int>{2});
    EXPECT_EQ(Ints(s.Tied.ExternalInputs[0].Attributes), (std::vector<int>{0, 1}));
    EXPECT_EQ(s.Tied.ExternalOutputs[0].Attribute, 2);
}

TEST(MergeAttributes, KeptIndexAboveTheRemovedMovesDownToo)
{
    TMergeSample s;
    MergeAttributes(s.Tied, 3, 1);
    EXPECT_EQ(Ints(s.Tied.TiedNodes[0].Inputs), (std::vector<int>{-1, 0, 2, 1, 2}));
    EXPECT_EQ(s.Tied.Attributes[2].Port, TU_RENDER);
}

TEST(MergeAttributes, TheMoreDownstreamKindNamesTheAttribute)
{
    TMergeSample s;
    const TEffectNode* render = s.Tied.Attributes[3].Node;
    MergeAttributes(s.Tied, 1, 3);
    EXPECT_EQ(s.Tied.Attributes[1].Node, render);
    EXPECT_EQ(s.Tied.Attributes[1].Port, TU_RENDER);
    const TEffectNode* emitter = s.Tied.Attributes[2].Node;
    MergeAttributes(s.Tied, 2, 0);
    EXPECT_EQ(s.Tied.Attributes[1].Node, emitter);
}

TEST(MergeAttributes, WrittenIsTheOrOfBoth)
{
    TMergeSample s;
    s.Tied.Attributes[3].Written = true;
    MergeAttributes(s.Tied, 0, 1);
    EXPECT_FALSE(s.Tied.Attributes[0].Written);
    MergeAttributes(s.Tied, 0, 2);
    EXPECT_TRUE(s.Tied.Attributes[0].Written);
}

TEST(DumpTiedGroup, WritesAllItsParts)
{
    TTestGraph g;
    TEffectNode* trigger = AddTrigger(g);
    TEffectNode* source = g.Node("Source", TU_EMITTER, {"Rate"}, {"Position", "Spare"});
    TEffectNode* force = AddForce(g);
    TEffectNode* sprite = AddSprite(g);
    TEffectNode* child = AddEmitter(g);
    g.Wire(trigger, 0, source, 0);
    g.Wire(source, 0, force, 0);
    g.Wire(force, 0, sprite, 0);
    g.Wire(source, 1, child, 0);
    const TTiedGroup tied = BuildAll(g, {trigger, child});
    EXPECT_EQ(MaskAddresses(LogOf([&] { DumpTiedGroup(tied); })),
              "Tied nodes 3\n"
              "TiedNode[0].Node = Sprite(@0)\nInputs: 0 \nOutputs: \n"
              "TiedNode[1].Node = Force(@1)\nInputs: 0 \nOutputs: 0 \n"
              "TiedNode[2].Node = Source(@2)\nInputs: 1 \nOutputs: 0 2 \n"
              "\n"
              "Attrib[0] = Place (written)\n"
              "Attrib[1] = Rate (external input, edge=@3)\n"
              "Attrib[2] = Spare (external output)\n"
              "\n"
              "External edge @3 -> attrib[1]\n"
              "\n"
              "External attrib[2] -> edge @4\n"
              "\n");
}
