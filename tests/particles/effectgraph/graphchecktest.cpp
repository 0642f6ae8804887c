#include "particles/effectgraph/parsing.h"

#include "particles/effectgraph/graphcheck.h"
#include "particles/effectgraph/linkmender.h"
#include "particles/effectgraph/nodetypelibrary.h"
#include "particles/effectgraph/polytypeparameter.h"
#include "particles/effectgraph/rampparameter.h"

// A sound graph of two nodes, to be spoilt.
struct TSpoilt
{
    TSpoilt()
    {
        A = AddFromXml(
            Test, "<parameters>" + Element("Group", "<parameters>" + Element("Int", "") + "</parameters>") +
                      Element("Ramp", "<type>scale</type>") + "</parameters><inputs>" +
                      PolytypeInput("in", {"scalar", "colour"}, "in", "out") + "</inputs><outputs>" +
                      PolytypeOutput("out", {"Scalar", "Colour"}, "in") + "</outputs>");
        B = Test.Node("B", TU_RENDER, {"x", "y"}, {"o"});
        Edge = Test.Wire(A, 0, B, 1);
    }
    std::string Fault() const
    {
        TString fault;
        return CheckGraph(Test.GetGraph(), fault) ? "" : Text(fault);
    }

    TTestGraph Test;
    TEffectNode* A;
    TEffectNode* B;
    TEffectEdge* Edge;
};

TEST(CheckGraph, ASoundGraphPasses)
{
    TSpoilt graph;
    EXPECT_EQ(graph.Fault(), "");
    graph.Test.GetGraph().GraphChanged();
    EXPECT_EQ(graph.Fault(), "");
}

TEST(CheckGraph, NodesAndTypes)
{
    {
        TSpoilt graph;
        graph.B->SetNodeType(nullptr);
        EXPECT_EQ(graph.Fault(), "A node has no node type");
    }
    {
        TSpoilt graph;
        graph.B->SetNodeType(graph.A->GetNodeType());
        EXPECT_EQ(graph.Fault(), "Node \"N\": \"N\" is the type of two nodes");
    }
    {
        TSpoilt graph;
        graph.B->SetPortCounts(1, 1);
        EXPECT_EQ(graph.Fault(), "Node \"B\": \"B\" has other numbers of ports than its node");
    }
    {
        TSpoilt graph;
        graph.A->GetNodeType()->Category = 5;
        EXPECT_EQ(graph.Fault(), "Node \"N\": \"N\" has an unknown category");
    }
    {
        TSpoilt graph;
        graph.A->GetNodeType()->Colour = -1;
        EXPECT_EQ(graph.Fault(), "Node \"N\": \"N\" has an unknown colour");
    }
    {
        TSpoilt graph;
        graph.A->GetNodeType()->NumOwnParameters = 3;
        EXPECT_EQ(graph.Fault(), "Node \"N\": \"N\" has a wrong number of own parameters");
    }
}

TEST(CheckGraph, NodesTwice)
{
    TSpoilt graph;
    vector<TEffectNode*> nodes;
    nodes.push_back(graph.A);
    nodes.push_back(graph.A);
    TString fault;
    EXPECT_FALSE(CheckNodes(nodes, fault));
    EXPECT_EQ(Text(fault), "A node is in the graph twice");
    nodes[1] = nullptr;
    EXPECT_FALSE(CheckNodes(nodes, fault));
    EXPECT_EQ(Text(fault), "The graph has an empty place among its nodes");
}

TEST(CheckGraph, OutputPorts)
{
    const auto fault = [](void (*spoil)(TOutputPort&)) {
        TSpoilt graph;
        spoil(graph.A->GetNodeType()->GetOutput(0));
        return graph.Fault();
    };
    const std::string out = "Node \"N\": \"out\" is an output ";
    EXPECT_EQ(fault([](TOutputPort& o) { o.Type = -1; }), out + "of an unknown type");
    EXPECT_EQ(fault([](TOutputPort& o) { o.Type = 8; }), out + "of an unknown type");
    EXPECT_EQ(fault([](TOutputPort& o) { o.DefaultType = 7; }), out + "with an unknown default type");
    EXPECT_EQ(fault([](TOutputPort& o) { o.ResolvedType = 7; }), out + "with an unknown resolved type");
    EXPECT_EQ(fault([](TOutputPort& o) { o.ValidTypes = 0; }), out + "with wrong valid types");
    EXPECT_EQ(fault([](TOutputPort& o) { o.ValidTypes = 0x80; }), out + "with wrong valid types");
    EXPECT_EQ(fault([](TOutputPort& o) { o.LinkInput = 1; }),
              out + "that follows a port that does not exist");
    EXPECT_EQ(fault([](TOutputPort& o) { o.LinkOutput = -2; }),
              out + "that follows a port that does not exist");
}

TEST(CheckGraph, Parameters)
{
    {
        TSpoilt graph;
        TNodeType& type = *graph.A->GetNodeType();
        vector<TNodeParameter*> kept = type.Parameters;
        type.Parameters[0] = nullptr;
        EXPECT_EQ(graph.Fault(), "Node \"N\": \"N\" has an empty place among its parameters");
        type.Parameters = kept;
        type.Parameters.push_back(kept[0]);
        EXPECT_EQ(graph.Fault(), "Node \"N\": \"P\" is a parameter in two places");
        type.Parameters = kept;
        type.Parameters[1] = static_cast<TNodeGroupParameter*>(kept[0])->GetChildren()[0];
        EXPECT_EQ(graph.Fault(), "Node \"N\": \"P\" is a parameter in two places");
        type.Parameters = kept;
    }
    {
        TSpoilt graph;
        vector<TNodeParameter*>& inputs = graph.B->GetNodeType()->Inputs;
        delete inputs[0];
        inputs[0] = CreateNodeParameter(PK_BOOL);
        inputs[0]->Name = "flag";
        EXPECT_EQ(graph.Fault(), "Node \"B\": \"flag\" is an input of a kind that no input can have");
    }
}

TEST(CheckGraph, LinksOfPolytypeInputs)
{
    TSpoilt graph;
    graph.A->GetNodeType()->GetOutput(0).Name = "renamed";
    EXPECT_EQ(graph.Fault(), "Node \"N\": \"in\" follows an output that does not exist");
    graph.Test.ReplaceInput(graph.A, 0, PolytypeInput("in", {"scalar"}, "gone"));
    EXPECT_EQ(graph.Fault(), "Node \"N\": \"in\" follows an input that does not exist");
}

// The mender's lines, after which the graph is sound.
static std::vector<std::string> Mended(const TEffectGraph& graph, const TNodeTypeLibrary& library)
{
    vector<TEffectNode*> nodes;
    for (int i = 0; i < graph.GetNumNodes(); ++i)
        nodes.push_back(graph.GetNode(i));
    TString fault;
    TErrorList lines;
    TLinkMender mender(library, lines);
    EXPECT_TRUE(CheckNodes(nodes, fault, &mender)) << fault.Print();
    EXPECT_TRUE(CheckGraph(graph, fault)) << fault.Print();
    return TextsOf(lines);
}

TEST(CheckGraph, AMenderTakesTheLibrarysLinksWhereTheyFit)
{
    TNodeTypeLibrary library;
    TLoaded type(NodeFile("<inputs>" + PolytypeInput("in", {"scalar"}, "other") +
                          PolytypeInput("other", {"scalar"}, "", "out") + "</inputs><outputs>" +
                          PolytypeOutput("out", {"Scalar"}, "other") + "</outputs>"));
    ASSERT_TRUE(type.Ok);
    library.AddType(type.Type.release());
    TTestGraph graph;
    TEffectNode* node =
        AddFromXml(graph, "<inputs>" + PolytypeInput("in", {"scalar"}) + PolytypeInput("other", {"scalar"}) +
                              "</inputs><outputs>" + PolytypeOutput("out", {"Scalar"}) + "</outputs>");
    const auto input = [&](int i) {
        return static_cast<TNodePolytypeParameter*>(node->GetNodeType()->GetInput(i));
    };
    EXPECT_TRUE(Mended(graph.GetGraph(), library).empty());
    input(0)->SetLinkInput("gone");
    input(1)->SetLinkOutput("gone");
    node->GetNodeType()->GetOutput(0).LinkInput = 2;
    node->GetNodeType()->GetOutput(0).LinkOutput = -2;
    EXPECT_EQ(Mended(graph.GetGraph(), library),
              (std::vector<std::string>{
                  "Node \"N\": \"in\" follows an input that does not exist; it follows \"other\" now",
                  "Node \"N\": \"other\" follows an output that does not exist; it follows \"out\" now",
                  "Node \"N\": \"out\" follows an input that does not exist; it follows \"other\" now",
                  "Node \"N\": \"out\" follows an output that does not exist; it follows none now"}));
    EXPECT_EQ(input(0)->GetLinkInputIndex(node), 1);
    EXPECT_EQ(node->GetNodeType()->GetOutput(0).LinkInput, 1);
    EXPECT_EQ(node->GetNodeType()->GetOutput(0).LinkOutput, -1);
    // What the library says helps nobody where the copy has no such port.
    input(1)->Name = "another";
    input(0)->SetLinkInput("gone");
    EXPECT_EQ(Mended(graph.GetGraph(), library),
              (std::vector<std::string>{
                  "Node \"N\": \"in\" follows an input that does not exist; it follows none now"}));
    EXPECT_TRUE(Mended(graph.GetGraph(), library).empty());
}

TEST(CheckGraph, AMenderMendsNothingButLinks)
{
    const TNodeTypeLibrary library;
    TSpoilt graph;
    graph.A->GetNodeType()->GetOutput(0).ValidTypes = 0;
    vector<TEffectNode*> nodes;
    nodes.push_back(graph.A);
    TString fault;
    TErrorList lines;
    TLinkMender mender(library, lines);
    EXPECT_FALSE(CheckNodes(nodes, fault, &mender));
    EXPECT_TRUE(lines.empty());
}

TEST(CheckGraph, Edges)
{
    {
        TSpoilt graph;
        graph.Edge->SetDstPort(0);
        EXPECT_EQ(graph.Fault(), "The edge from node \"N\" to node \"B\" ends at a port that does not exist "
                                 "or holds another edge");
        graph.Edge->SetDstPort(2);
        EXPECT_EQ(graph.Fault(), "The edge from node \"N\" to node \"B\" ends at a port that does not exist "
                                 "or holds another edge");
        graph.Edge->SetDstPort(1);
        graph.Edge->SetSrcPort(-1);
        EXPECT_EQ(graph.Fault(), "The edge from node \"N\" to node \"B\" ends at a port that does not exist "
                                 "or holds another edge");
    }
    {
        TSpoilt graph;
        graph.A->RemoveOutputEdge(0, graph.Edge);
        EXPECT_EQ(graph.Fault(), "The edge from node \"N\" to node \"B\" is missing at its source");
        graph.A->AddOutputEdge(0, graph.Edge);
        graph.A->AddOutputEdge(0, graph.Edge);
        EXPECT_EQ(graph.Fault(),
                  "Node \"N\": an output holds an edge that does not begin there, or holds it twice");
    }
    {
        TSpoilt graph;
        graph.B->SetInput(0, graph.Edge);
        EXPECT_EQ(graph.Fault(), "Node \"B\": an input holds an edge that does not end there");
    }
    {
        TSpoilt graph;
        graph.Test.GetGraph().RemoveEdge(graph.Edge);
        EXPECT_EQ(graph.Fault(),
                  "Node \"N\": an output holds an edge that does not begin there, or holds it twice");
    }
    {
        TSpoilt graph;
        graph.Test.GetGraph().RemoveNode(graph.B);
        EXPECT_EQ(graph.Fault(),
                  "The edge from node \"N\" to node \"B\" ends at a node that is not in the graph");
    }
}

TEST(CheckGraph, Circles)
{
    TSpoilt graph;
    graph.Test.Wire(graph.B, 0, graph.A, 0);
    EXPECT_EQ(graph.Fault(), "The edges of the graph run in a circle");
}

// A graph with one node whose only parameter is read from the chunk body.
struct TReadParameter
{
    TReadParameter(uint32_t nameId, const std::string& body)
    {
        const std::string path = Folder.Path("c");
        WriteBytes(path, "CHNK" + Word(1) + Word(nameId) + Word(static_cast<uint32_t>(body.size())) +
                             Word(2) + body);
        Loaded = File.Load(path.c_str());
        TEffectNode* node = Test.Node("N", TU_PROCESS, {}, {});
        TNodeParameter* parameter = dynamic_cast<TNodeParameter*>(File.GetChunkAt(0));
        File.RemoveChunk(parameter);
        node->GetNodeType()->Parameters.push_back(parameter);
    }
    static std::string Word(uint32_t word) { return std::string(reinterpret_cast<const char*>(&word), 4); }
    static std::string Common()
    {
        return std::string("p\0\0\0", 4) + std::string(4, '\0') + std::string(1, '\0');
    }
    std::string Fault() const
    {
        TString fault;
        return CheckGraph(Test.GetGraph(), fault) ? "" : Text(fault);
    }
    TTempFolder Folder;
    TChunkFile File;
    TTestGraph Test;
    bool Loaded = false;
};

TEST(CheckGraph, ParametersFromFiles)
{
    const auto word = TReadParameter::Word;
    const std::string common = TReadParameter::Common();
    const std::string none(4, '\0');
    const auto ramp = [&](uint32_t type, uint32_t lock) {
        return common + word(1) + word(type) + none + word(0) + word(lock) + word(lock) + word(lock) +
               word(lock) + std::string(2, '\0');
    };
    const uint32_t rampId = TNodeRampParameter::NameID();
    EXPECT_EQ(TReadParameter(rampId, ramp(0, 0xFFFFFFFFu)).Fault(), "");
    EXPECT_EQ(TReadParameter(rampId, ramp(5, 0xFFFFFFFFu)).Fault(),
              "Node \"N\": \"p\" is a ramp of an unknown type");
    EXPECT_EQ(TReadParameter(rampId, ramp(0, 4)).Fault(),
              "Node \"N\": \"p\" has a curve locked to one that does not exist");
    const TReadParameter locked(rampId, ramp(0, 4));
    EXPECT_EQ(Mended(locked.Test.GetGraph(), TNodeTypeLibrary()),
              (std::vector<std::string>{
                  "Node \"N\": \"p\" has a curve locked to one that does not exist; it is free now"}));
    const auto choice = [&](uint32_t index) { return common + word(index) + word(1) + none + word(3); };
    const uint32_t enumId = TNodeEnumParameter::NameID();
    EXPECT_EQ(TReadParameter(enumId, choice(0)).Fault(), "");
    EXPECT_EQ(TReadParameter(enumId, choice(1)).Fault(),
              "Node \"N\": \"p\" has a choice that is not in its list");
    EXPECT_EQ(TReadParameter(enumId, choice(0xFFFFFFFFu)).Fault(),
              "Node \"N\": \"p\" has a choice that is not in its list");
    std::string empty = common + word(0) + none + none;
    for (int i = 0; i < 7; ++i)
        empty += word(0xFFFFFFFFu);
    EXPECT_EQ(TReadParameter(TNodePolytypeParameter::NameID(), empty).Fault(),
              "Node \"N\": \"p\" has a default type that is none of its types");
}

TEST(CheckGraph, LockedRampIsSafeEvenUnchecked)
{
    const auto word = TReadParameter::Word;
    const TReadParameter read(TNodeRampParameter::NameID(),
                              TReadParameter::Common() + word(1) + word(0) + std::string(4, '\0') + word(0) +
                                  word(77) + word(77) + word(77) + word(77) + std::string(2, '\0'));
    ASSERT_TRUE(read.Loaded);
    const TNodeParameter* ramp = read.Test.GetGraph().GetNode(0)->GetNodeType()->GetParameter(0);
    EXPECT_EQ(static_cast<const TNodeRampParameter*>(ramp)->Evaluate(0.5f, 0), 0.0f);
}

TEST(CheckGraph, AGroupInItselfIsRefused)
{
    const auto word = TReadParameter::Word;
    const TTempFolder folder;
    const std::string path = folder.Path("c");
    const std::string body = TReadParameter::Common() + std::string(1, '\1') + word(1) + word(0);
    WriteBytes(path, "CHNK" + word(1) + word(TNodeGroupParameter::NameID()) +
                         word(static_cast<uint32_t>(body.size())) + word(1) + body);
    TChunkFile file;
    ASSERT_TRUE(file.Load(path.c_str()));
    TTestGraph graph;
    vector<TNodeParameter*>& parameters = graph.Node("N", TU_PROCESS, {}, {})->GetNodeType()->Parameters;
    parameters.push_back(dynamic_cast<TNodeParameter*>(file.GetChunkAt(0)));
    TString fault;
    EXPECT_FALSE(CheckGraph(graph.GetGraph(), fault));
    EXPECT_EQ(Text(fault), "Node \"N\": \"p\" is a parameter in two places");
    parameters.clear();
}
