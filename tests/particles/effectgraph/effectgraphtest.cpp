#include "particles/effectgraph/effectgraphclasses.h"
#include "particles/effectgraph/parsing.h"

#include "particles/effectgraph/polytypeparameter.h"

#include <random>

TEST(TEffectGraph, AddAndRemoveAreChecked)
{
    TEffectGraph graph;
    TEffectNode a;
    TEffectNode b;
    TEffectEdge edge;
    graph.AddNode(&a);
    graph.AddNode(&b);
    EXPECT_EQ(AssertionOf([&] { graph.AddNode(&a); }), "Nodes.find(node) == Nodes.end()");
    graph.RemoveNode(&a);
    EXPECT_EQ(graph.GetNode(0), &b);
    EXPECT_EQ(AssertionOf([&] { graph.RemoveNode(&a); }), "it != Nodes.end()");
    graph.AddEdge(&edge);
    EXPECT_EQ(AssertionOf([&] { graph.AddEdge(&edge); }), "Edges.find(edge) == Edges.end()");
    graph.RemoveEdge(&edge);
    EXPECT_EQ(AssertionOf([&] { graph.RemoveEdge(&edge); }), "it != Edges.end()");
}

TEST(TEffectGraph, ListenersAreCheckedAndCalledByGraphChangedOnly)
{
    TTestGraph graph;
    int calls = 0;
    const TEffectGraph::TCallback cb = [](void* data) { ++*static_cast<int*>(data); };
    graph.GetGraph().AddCallback(cb, &calls);
    EXPECT_EQ(AssertionOf([&] { graph.GetGraph().AddCallback(cb, &calls); }),
              "it->CB != cb || it->Data != data");
    graph.Node("N", TU_PROCESS, {}, {});
    EXPECT_EQ(calls, 0);
    graph.GetGraph().GraphChanged();
    EXPECT_EQ(calls, 1);
    graph.GetGraph().RemoveCallback(cb, &calls);
    EXPECT_EQ(AssertionOf([&] { graph.GetGraph().RemoveCallback(cb, &calls); }), "0");
}

TEST(TEffectNode, PortsAreChecked)
{
    TEffectNode node;
    node.SetPortCounts(1, 1);
    TEffectEdge first;
    TEffectEdge second;
    EXPECT_EQ(AssertionOf([&] { node.SetInput(1, &first); }), "index < Inputs.size()");
    EXPECT_EQ(AssertionOf([&] { node.AddOutputEdge(1, &first); }), "index < Outputs.size()");
    EXPECT_EQ(AssertionOf([&] { node.RemoveOutputEdge(-1, &first); }), "index < Outputs.size()");
    EXPECT_EQ(AssertionOf([&] { node.RemoveOutputEdge(0, &first); }), "it != Outputs[index].Edges.end()");
    // A second edge replaces the first.
    node.SetInput(0, &first);
    node.SetInput(0, &second);
    EXPECT_EQ(node.GetInput(0), &second);
    node.AddOutputEdge(0, &first);
    node.AddOutputEdge(0, &second);
    node.RemoveOutputEdge(0, &first);
    EXPECT_EQ(node.GetOutputEdge(0, 0), &second);
    node.SetPortCounts(2, 1);
    EXPECT_EQ(node.GetInput(0), nullptr);
    EXPECT_EQ(node.GetNumOutputEdges(0), 0);
}

TEST(TEffectGraph, RegistersEveryClass)
{
    RegisterEffectGraphClasses();
    const int before = GetNumClasses();
    RegisterEffectGraphClasses();
    EXPECT_EQ(GetNumClasses(), before);
    for (const char* name : {"TEffectGraph", "TEffectNode", "TEffectEdge", "TNodeType"})
        EXPECT_TRUE(IsClassA(FindClassByName(name), TChunk::ClassId())) << name;
}

TEST(TEffectGraph, SavesAndLoads)
{
    const TTempFolder folder;
    const std::string path = folder.Path("c");
    TChunkFile out;
    TEffectGraph* graph = new TEffectGraph;
    TEffectNode* nodes[] = {new TEffectNode, new TEffectNode};
    TEffectEdge* edge = new TEffectEdge;
    out.AddChunk(edge);
    out.AddChunk(graph);
    for (TEffectNode* node : nodes) {
        node->SetNodeType(new TNodeType);
        node->SetPortCounts(2, 1);
        out.AddChunk(node);
        node->GetNodeType()->AddToChunkFile(out);
        graph->AddNode(node);
    }
    edge->SetEnds(nodes[0], 0, nodes[1], 1);
    nodes[0]->AddOutputEdge(0, edge);
    nodes[1]->SetInput(1, edge);
    graph->AddEdge(edge);
    EXPECT_EQ(graph->GetSize(), 20);
    EXPECT_EQ(nodes[0]->GetSize(), 28);
    EXPECT_EQ(nodes[1]->GetSize(), 24);
    ASSERT_TRUE(out.Save(path.c_str()));
    TChunkFile in;
    ASSERT_TRUE(in.Load(path.c_str()));
    const TEffectGraph& loaded = dynamic_cast<TEffectGraph&>(*in.GetChunkAt(1));
    ASSERT_EQ(loaded.GetNumNodes(), 2);
    TEffectEdge* loadedEdge = loaded.GetEdge(0);
    EXPECT_EQ(loadedEdge->GetSrcNode(), loaded.GetNode(0));
    EXPECT_EQ(loadedEdge->GetDstPort(), 1);
    EXPECT_EQ(loaded.GetNode(1)->GetInput(1), loadedEdge);
    EXPECT_EQ(loaded.GetNode(1)->GetInput(0), nullptr);
    EXPECT_EQ(loaded.GetNode(0)->GetOutputEdge(0, 0), loadedEdge);
    EXPECT_NE(loaded.GetNode(0)->GetNodeType(), nullptr);
}

TEST(CanConnect, EqualAndConvertibleTypes)
{
    TTestGraph graph;
    TEffectNode* src = graph.Node("S", TU_PROCESS, {}, {"s", {"v", TY_VECTOR3}, {"t", TY_TEXCOORDS}});
    TEffectNode* dst = graph.Node("D", TU_PROCESS, {"s", {"v", TY_VECTOR3}, {"f", TY_TRANSFORM}}, {});
    EXPECT_TRUE(CanConnect(src, 0, dst, 0));
    EXPECT_TRUE(CanConnect(src, 0, dst, 1));
    EXPECT_FALSE(CanConnect(src, 0, dst, 2));
    EXPECT_TRUE(CanConnect(src, 1, dst, 2));
    EXPECT_FALSE(CanConnect(src, 2, dst, 0));
}

TEST(CanConnect, UpstreamIsRefusedAndTheAnswerIsKept)
{
    TTestGraph graph;
    TEffectNode* a = graph.Node("A", TU_PROCESS, {"i"}, {"o"});
    TEffectNode* b = graph.Node("B", TU_PROCESS, {"i"}, {"o"});
    TEffectNode* c = graph.Node("C", TU_PROCESS, {"i"}, {"o"});
    graph.Wire(a, 0, b, 0);
    graph.Wire(b, 0, c, 0);
    EXPECT_FALSE(CanConnect(c, 0, a, 0));
    EXPECT_TRUE(CanConnect(a, 0, c, 0));
    a->GetNodeType()->Outputs[0].Type = TY_TEXCOORDS;
    a->GetNodeType()->Outputs[0].ValidTypes = 1u << TY_TEXCOORDS;
    EXPECT_TRUE(CanConnect(a, 0, c, 0));
    EXPECT_FALSE(CanConnect(c, 0, a, 0));
    EXPECT_FALSE(CanConnectTypes(a, 0, c, 0));
    graph.Node("D", TU_PROCESS, {}, {});
    EXPECT_FALSE(CanConnect(a, 0, c, 0));
}

TEST(CanConnect, EachOfTheFourOperationsForgetsTheAnswers)
{
    TTestGraph graph;
    TEffectNode* a = graph.Node("A", TU_PROCESS, {"i"}, {"o"});
    TEffectNode* b = graph.Node("B", TU_PROCESS, {"i"}, {"o"});
    TEffectNode extra;
    TEffectEdge edge;
    TOutputPort& output = a->GetNodeType()->Outputs[0];
    using TOperation = void (*)(TEffectGraph&, TEffectNode*, TEffectEdge*);
    const TOperation operations[] = {
        [](TEffectGraph& g, TEffectNode* n, TEffectEdge*) { g.AddNode(n); },
        [](TEffectGraph& g, TEffectNode*, TEffectEdge* e) { g.AddEdge(e); },
        [](TEffectGraph& g, TEffectNode*, TEffectEdge* e) { g.RemoveEdge(e); },
        [](TEffectGraph& g, TEffectNode* n, TEffectEdge*) { g.RemoveNode(n); },
    };
    bool fits = true;
    for (const TOperation operation : operations) {
        EXPECT_EQ(CanConnect(a, 0, b, 0), fits);
        fits = !fits;
        output.ValidTypes = 1u << (fits ? TY_SCALAR : TY_TEXCOORDS);
        EXPECT_EQ(CanConnect(a, 0, b, 0), !fits);
        operation(graph.GetGraph(), &extra, &edge);
        EXPECT_EQ(CanConnect(a, 0, b, 0), fits);
    }
}

TEST(CanConnect, ANodeToItselfPasses)
{
    TTestGraph graph;
    TEffectNode* a = graph.Node("A", TU_PROCESS, {"i"}, {"o"});
    EXPECT_TRUE(CanConnect(a, 0, a, 0));
}

TEST(CanConnect, AnEmptyMaskIsRefused)
{
    TTestGraph graph;
    TEffectNode* a = graph.Node("A", TU_PROCESS, {}, {"o"});
    TEffectNode* b = graph.Node("B", TU_PROCESS, {"i"}, {});
    a->GetNodeType()->Outputs[0].ValidTypes = 0;
    EXPECT_FALSE(CanConnectTypes(a, 0, b, 0));
}

TEST(CanConnect, LinksAndWiresNarrowAPolytype)
{
    TTestGraph graph;
    TEffectNode* vector = graph.Node("V", TU_PROCESS, {}, {{"v", TY_VECTOR3}});
    TEffectNode* colour = graph.Node("C", TU_PROCESS, {}, {{"c", TY_COLOUR}});
    TEffectNode* texture = graph.Node("T", TU_PROCESS, {}, {{"t", TY_TEXCOORDS}});
    const std::string ports =
        "<inputs>" + PolytypeInput("A", {"vector3", "texcoord", "transform"}) +
        PolytypeInput("B", {"vector3", "texcoord", "transform"}, "A") + "</inputs><outputs>" +
        PolytypeOutput("O", {"Vector3", "Transform", "TextureCoords"}, "B") + "</outputs>";
    TEffectNode* first = AddFromXml(graph, ports);
    TEffectNode* second = AddFromXml(graph, ports);
    EXPECT_TRUE(CanConnect(vector, 0, first, 1));
    EXPECT_TRUE(CanConnect(texture, 0, first, 1));
    // Not one of the types, and several remain, so that nothing can be converted to.
    EXPECT_FALSE(CanConnect(colour, 0, first, 1));
    graph.Wire(vector, 0, first, 0);
    EXPECT_FALSE(CanConnect(texture, 0, first, 1));
    EXPECT_TRUE(CanConnect(colour, 0, first, 1));
    graph.Wire(first, 0, second, 0);
    EXPECT_FALSE(CanConnect(texture, 0, second, 1));
    EXPECT_TRUE(CanConnect(vector, 0, second, 1));
}

TEST(CanConnect, AnEdgeCanBePassedOver)
{
    TTestGraph graph;
    TEffectNode* vector = graph.Node("V", TU_PROCESS, {}, {{"v", TY_VECTOR3}});
    TEffectNode* texture = graph.Node("T", TU_PROCESS, {}, {{"t", TY_TEXCOORDS}});
    const std::string ports =
        "<inputs>" + PolytypeInput("A", {"vector3", "texcoord", "transform"}) +
        PolytypeInput("B", {"vector3", "texcoord", "transform"}, "A") + "</inputs><outputs>" +
        PolytypeOutput("O", {"Vector3", "Transform", "TextureCoords"}, "B") + "</outputs>";
    TEffectNode* first = AddFromXml(graph, ports);
    TEffectNode* second = AddFromXml(graph, ports);
    TEffectEdge* narrowing = graph.Wire(vector, 0, first, 0);
    TEffectEdge* between = graph.Wire(first, 0, second, 0);
    EXPECT_FALSE(CanConnectWithout(nullptr, texture, 0, second, 1));
    EXPECT_TRUE(CanConnectWithout(narrowing, texture, 0, second, 1));
    EXPECT_TRUE(CanConnectWithout(between, texture, 0, second, 1));
    EXPECT_FALSE(CanConnectWithout(between, texture, 0, first, 1));
    // A circle that the edge would close is none without it.
    EXPECT_FALSE(CanConnectWithout(nullptr, second, 0, first, 1));
    EXPECT_TRUE(CanConnectWithout(between, second, 0, first, 1));
    // Nothing of it stays behind.
    EXPECT_FALSE(CanConnect(texture, 0, second, 1));
    EXPECT_EQ(first->GetInput(0), narrowing);
}

// The sort as it is told, one exchange after the other.
static std::vector<TEffectNode*> SortedByRule(const TEffectGraph& graph)
{
    std::vector<TEffectNode*> list;
    for (int i = 0; i < graph.GetNumNodes(); ++i)
        list.push_back(graph.GetNode(i));
    const int n = static_cast<int>(list.size());
    std::vector<std::pair<TEffectNode*, TEffectNode*>> exchanged;
    const auto at = [&](int i) -> TEffectNode*& { return list[static_cast<size_t>(i)]; };
    const auto feeds = [](TEffectNode* source, TEffectNode* node) {
        for (int p = 0; p < node->GetNumInputs(); ++p)
            if (node->GetInput(p) != nullptr && node->GetInput(p)->GetSrcNode() == source)
                return true;
        return false;
    };
    for (int i = 0; i < n - 1; ++i) {
        bool found = false;
        int j = i + 1;
        for (; j < n; ++j) {
            if (feeds(at(j), at(i))) {
                std::swap(at(i), at(j));
                i = 0;
                j = 0;
                continue;
            }
            const std::pair<TEffectNode*, TEffectNode*> pair(at(i), at(j));
            if (!feeds(at(i), at(j)) && at(i)->GetNodeType()->HasFlag(FL_LASTHINT) &&
                !at(j)->GetNodeType()->HasFlag(FL_LASTHINT) &&
                std::find(exchanged.begin(), exchanged.end(), pair) == exchanged.end()) {
                exchanged.push_back(pair);
                found = true;
                break;
            }
        }
        if (found) {
            std::swap(at(i), at(j));
            i = 0;
        }
    }
    return list;
}

static std::vector<TEffectNode*> Sorted(const TEffectGraph& graph)
{
    vector<TEffectNode*> result;
    GetSortedNodes(graph, result);
    return std::vector<TEffectNode*>(result.begin(), result.end());
}

TEST(GetSortedNodes, FollowsTheRuleOnRandomGraphs)
{
    std::mt19937 random(7);
    const auto below = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    for (int round = 0; round < 400; ++round) {
        TTestGraph graph;
        const int count = 1 + below(14);
        const int hints = 1 + below(4);
        std::vector<int> rank;
        std::vector<TEffectNode*> nodes;
        for (int i = 0; i < count; ++i) {
            rank.push_back(i);
            nodes.push_back(graph.Node("N", TU_PROCESS, {"a", "b"}, {"o"},
                                       below(hints + 1) == 1 ? uint32_t(FL_LASTHINT) : 0u));
        }
        std::shuffle(rank.begin(), rank.end(), random);
        for (int i = 0; i < count; ++i)
            for (int port = 0; port < 2; ++port) {
                const int other = below(count);
                if (rank[static_cast<size_t>(other)] < rank[static_cast<size_t>(i)] && below(3) != 0)
                    graph.Wire(nodes[static_cast<size_t>(other)], 0, nodes[static_cast<size_t>(i)], port);
            }
        ASSERT_EQ(Sorted(graph.GetGraph()), SortedByRule(graph.GetGraph())) << "round " << round;
    }
}

TEST(GetSortedNodes, LongChainInReverseIsQuick)
{
    TTestGraph graph;
    std::vector<TEffectNode*> nodes;
    for (int i = 0; i < 1000; ++i)
        nodes.push_back(graph.Node("N", TU_PROCESS, {"a"}, {"o"}));
    for (size_t i = 0; i + 1 < nodes.size(); ++i)
        graph.Wire(nodes[i + 1], 0, nodes[i], 0);
    const std::vector<TEffectNode*> sorted = Sorted(graph.GetGraph());
    std::reverse(nodes.begin(), nodes.end());
    EXPECT_EQ(sorted, nodes);
}

TEST(GetSortedNodes, WiresInACircleKeepTheOrder)
{
    TTestGraph graph;
    TEffectNode* a = graph.Node("A", TU_PROCESS, {"i"}, {"o"});
    TEffectNode* b = graph.Node("B", TU_PROCESS, {"i"}, {"o"});
    graph.Wire(a, 0, b, 0);
    EXPECT_TRUE(IsAcyclic(graph.GetGraph()));
    graph.Wire(b, 0, a, 0);
    EXPECT_FALSE(IsAcyclic(graph.GetGraph()));
    EXPECT_EQ(Sorted(graph.GetGraph()), (std::vector<TEffectNode*>{a, b}));
}

static const TNodePolytypeParameter& Polytype(TEffectNode* node, int input)
{
    return dynamic_cast<TNodePolytypeParameter&>(*node->GetNodeType()->GetInput(input));
}

static std::string MultiplySections()
{
    const std::vector<std::string> inputs = {"scalar", "vector3", "colour"};
    return "<inputs>" + PolytypeInput("A", inputs) + PolytypeInput("B", inputs, "A") + "</inputs><outputs>" +
           PolytypeOutput("Result", {"Scalar", "Vector3", "Colour"}, "A") + "</outputs>";
}

TEST(ResolvePolytypes, LeavesAGraphWithoutPolytypesAlone)
{
    TTestGraph graph;
    TEffectNode* a = graph.Node("A", TU_PROCESS, {}, {"o"});
    TEffectNode* b = graph.Node("B", TU_PROCESS, {"i"}, {});
    graph.Wire(a, 0, b, 0);
    int calls = 0;
    for (TEffectNode* node : {a, b})
        node->GetNodeType()->AddCallback([](void* data) { ++*static_cast<int*>(data); }, &calls);
    graph.GetGraph().GraphChanged();
    EXPECT_EQ(a->GetNodeType()->GetOutput(0).ResolvedType, -1);
    EXPECT_EQ(calls, 0);
}

TEST(ResolvePolytypes, UnconnectedPolytypeKeepsItsTypesAndDefault)
{
    TTestGraph graph;
    TEffectNode* node = AddFromXml(graph, MultiplySections());
    graph.GetGraph().GraphChanged();
    EXPECT_EQ(Polytype(node, 0).GetAllowedTypes(), 0x15u);
    EXPECT_EQ(Polytype(node, 0).GetResolvedType(), -1);
    EXPECT_EQ(node->GetNodeType()->GetInputType(0), TY_SCALAR);
    EXPECT_EQ(node->GetNodeType()->GetOutput(0).ResolvedType, -1);
    EXPECT_EQ(node->GetNodeType()->GetOutputType(0), TY_SCALAR);
}

TEST(ResolvePolytypes, AWiredInputSettlesTheWholeNode)
{
    TTestGraph graph;
    TEffectNode* source = graph.Node("S", TU_PROCESS, {}, {{"v", TY_VECTOR3}});
    TEffectNode* node = AddFromXml(graph, MultiplySections());
    graph.Wire(source, 0, node, 0);
    graph.GetGraph().GraphChanged();
    EXPECT_EQ(node->GetNodeType()->GetInputType(0), TY_VECTOR3);
    EXPECT_EQ(node->GetNodeType()->GetInputType(1), TY_VECTOR3);
    EXPECT_EQ(node->GetNodeType()->GetOutput(0).ResolvedType, TY_VECTOR3);
    EXPECT_EQ(node->GetNodeType()->GetOutput(0).DefaultType, TY_VECTOR3);
    EXPECT_EQ(source->GetNodeType()->GetOutput(0).ResolvedType, TY_VECTOR3);
}

TEST(ResolvePolytypes, TypesGoForwardThroughNodesThatPassTheValueOn)
{
    TTestGraph graph;
    TEffectNode* node = AddFromXml(graph, MultiplySections());
    TEffectNode* pass = graph.Node("P", TU_PROCESS, {{"Value", TY_VECTOR3}}, {{"value", TY_VECTOR3}});
    TEffectNode* end = graph.Node("E", TU_PROCESS, {{"In", TY_COLOUR}}, {});
    graph.Wire(node, 0, pass, 0);
    graph.Wire(pass, 0, end, 0);
    graph.GetGraph().GraphChanged();
    // The last wire's input counts, not the first's.
    EXPECT_EQ(node->GetNodeType()->GetInputType(0), TY_COLOUR);
    EXPECT_EQ(node->GetNodeType()->GetOutput(0).ResolvedType, TY_COLOUR);
}

TEST(ResolvePolytypes, ChainsOfPolytypesFormOneGroup)
{
    TTestGraph graph;
    TEffectNode* last = AddFromXml(graph, MultiplySections());
    TEffectNode* middle = AddFromXml(graph, MultiplySections());
    TEffectNode* first = AddFromXml(graph, MultiplySections());
    TEffectNode* source = graph.Node("S", TU_PROCESS, {}, {{"c", TY_COLOUR}});
    graph.Wire(source, 0, first, 1);
    graph.Wire(first, 0, middle, 1);
    graph.Wire(middle, 0, last, 0);
    graph.GetGraph().GraphChanged();
    for (TEffectNode* node : {first, middle, last}) {
        EXPECT_EQ(node->GetNodeType()->GetInputType(0), TY_COLOUR);
        EXPECT_EQ(node->GetNodeType()->GetInputType(1), TY_COLOUR);
        EXPECT_EQ(node->GetNodeType()->GetOutputType(0), TY_COLOUR);
    }
}

TEST(ResolvePolytypes, APortThatOnlyConversionConnectsIsSettledAlone)
{
    TTestGraph graph;
    // Vector3 converts to Scalar, but the node knows only Scalar and Scale.
    TEffectNode* source = graph.Node("S", TU_PROCESS, {}, {{"v", TY_VECTOR3}});
    TEffectNode* node = AddFromXml(graph, "<inputs>" + PolytypeInput("A", {"scale"}) + "</inputs>");
    ASSERT_TRUE(CanConnect(source, 0, node, 0));
    source->GetNodeType()->GetOutput(0).DefaultType = TY_VECTOR3;
    graph.Wire(source, 0, node, 0);
    EXPECT_EQ(AssertionOf([&] { graph.GetGraph().GraphChanged(); }), "");
    EXPECT_EQ(Polytype(node, 0).GetResolvedType(), TY_SCALE);
    EXPECT_EQ(source->GetNodeType()->GetOutput(0).ResolvedType, TY_VECTOR3);
    EXPECT_EQ(source->GetNodeType()->GetOutput(0).DefaultType, TY_VECTOR3);
}

TEST(ResolvePolytypes, APortThatPointsAtAMemberJoinsIt)
{
    TTestGraph graph;
    TEffectNode* source = graph.Node("S", TU_PROCESS, {}, {{"c", TY_COLOUR}});
    const std::vector<std::string> types = {"scalar", "colour"};
    TEffectNode* node =
        AddFromXml(graph, "<inputs>" + PolytypeInput("A", types) + PolytypeInput("B", types, "C") +
                              PolytypeInput("C", types, "A") + "</inputs>");
    graph.Wire(source, 0, node, 0);
    graph.GetGraph().GraphChanged();
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(node->GetNodeType()->GetInputType(i), TY_COLOUR) << i;
}

TEST(ResolvePolytypes, UnwiringWidensAgain)
{
    TTestGraph graph;
    TEffectNode* source = graph.Node("S", TU_PROCESS, {}, {{"c", TY_COLOUR}});
    TEffectNode* node = AddFromXml(graph, MultiplySections());
    TEffectEdge* edge = graph.Wire(source, 0, node, 0);
    graph.GetGraph().GraphChanged();
    node->SetInput(0, nullptr);
    source->RemoveOutputEdge(0, edge);
    graph.GetGraph().RemoveEdge(edge);
    graph.GetGraph().GraphChanged();
    EXPECT_EQ(Polytype(node, 0).GetAllowedTypes(), 0x15u);
    EXPECT_EQ(node->GetNodeType()->GetOutput(0).ResolvedType, -1);
    // The output's default is that of the last resolving: the type that the last port of the group had.
    EXPECT_EQ(node->GetNodeType()->GetOutput(0).DefaultType, TY_COLOUR);
}

TEST(ResolvePolytypes, NotifiesOnlyWhatChanged)
{
    TTestGraph graph;
    TEffectNode* node = AddFromXml(graph, MultiplySections());
    int calls = 0;
    node->GetNodeType()->GetInput(0)->AddCallback(
        [](TNodeParameter*, void* data) { ++*static_cast<int*>(data); }, &calls);
    graph.GetGraph().GraphChanged();
    graph.GetGraph().GraphChanged();
    EXPECT_EQ(calls, 1);
}
