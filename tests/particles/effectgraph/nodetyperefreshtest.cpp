#include "particles/effectgraph/parsing.h"

#include "particles/effectgraph/graphcheck.h"
#include "particles/effectgraph/nodetypelibrary.h"
#include "particles/effectgraph/polytypeparameter.h"
#include "particles/effectgraph/rampparameter.h"
#include "particles/effectgraph/refreshrecord.h"

static TNodeType* LoadType(const std::string& text)
{
    TLoaded loaded(text);
    if (!loaded.Ok)
        throw std::runtime_error(loaded.Error());
    return loaded.Type.release();
}

static std::string Port(const std::string& tag, const std::string& name, const std::string& more = "")
{
    return "<" + tag + "><name>" + name + "</name>" + more + "</" + tag + ">";
}

static std::string Sections(const std::string& parameters, const std::string& inputs,
                            const std::string& outputs)
{
    return "<parameters>" + parameters + "</parameters><inputs>" + inputs + "</inputs><outputs>" + outputs +
           "</outputs>";
}

// Whether a copy of the first type is stale against a library that holds the second.
static bool IsStale(const std::string& copy, const std::string& current)
{
    TNodeTypeLibrary library;
    library.AddType(LoadType(current));
    const std::unique_ptr<TNodeType> type(LoadType(copy));
    return type->NeedsRefresh(library);
}

TEST(NeedsRefresh, EachDifferenceButValuesAndCase)
{
    const std::string base = NodeFile(Sections(Port("Int", "p"), Port("Scalar", "i"), Port("Scalar", "o")));
    const auto stale = [&](const std::string& sections) { return IsStale(base, NodeFile(sections)); };
    EXPECT_FALSE(IsStale(base, base));
    EXPECT_FALSE(stale(Sections(Port("Int", "P", Default("9")), Port("Scalar", "I"), Port("Scalar", "O"))));
    EXPECT_TRUE(stale(Sections(Port("Int", "q"), Port("Scalar", "i"), Port("Scalar", "o"))));
    EXPECT_TRUE(stale(Sections(Port("Bool", "p"), Port("Scalar", "i"), Port("Scalar", "o"))));
    EXPECT_TRUE(stale(Sections(Port("Int", "p", "<Description>d</Description>"), Port("Scalar", "i"),
                               Port("Scalar", "o"))));
    EXPECT_TRUE(stale(Sections("", Port("Scalar", "i"), Port("Scalar", "o"))));
    EXPECT_TRUE(stale(Sections(Port("Int", "p"), Port("Scale", "i"), Port("Scalar", "o"))));
    EXPECT_TRUE(stale(
        Sections(Port("Int", "p"), "<Scalar required=true><name>i</name></Scalar>", Port("Scalar", "o"))));
    EXPECT_TRUE(stale(Sections(Port("Int", "p"), Port("Scalar", "i"), Port("Scale", "o"))));
    EXPECT_TRUE(stale(Sections(Port("Int", "p"), Port("Scalar", "i"),
                               Port("Scalar", "o", "<Description>d</Description>"))));
    EXPECT_TRUE(stale(Sections(Port("Int", "p"), Port("Scalar", "i"), "")));
}

TEST(NeedsRefresh, HeadOfTheType)
{
    const auto file = [](const char* head, const char* code) {
        return std::string("<node><name>N</name>") + head + "<code>" + code + "</code></node>";
    };
    const char* head = "<description>d</description><type>process</type><colour>red</colour>";
    const char* code = "<classname>T</classname><displayclass>D</displayclass><interface>a,b</interface>";
    const auto stale = [&](const char* newHead, const char* newCode) {
        return IsStale(file(head, code), file(newHead, newCode));
    };
    EXPECT_FALSE(stale(head, code));
    EXPECT_FALSE(stale("<description>D</description><type>process</type><colour>red</colour>",
                       "<classname>t</classname><displayclass>d</displayclass><interface>A,B</interface>"));
    EXPECT_TRUE(stale("<description>e</description><type>process</type><colour>red</colour>", code));
    EXPECT_TRUE(stale("<description>d</description><type>render</type><colour>red</colour>", code));
    EXPECT_TRUE(stale("<description>d</description><type>process</type><colour>blue</colour>", code));
    EXPECT_TRUE(
        stale("<description>d</description><type>process</type><lasthint/><colour>red</colour>", code));
    EXPECT_TRUE(
        stale(head, "<classname>U</classname><displayclass>D</displayclass><interface>a,b</interface>"));
    EXPECT_TRUE(
        stale(head, "<classname>T</classname><displayclass>E</displayclass><interface>a,b</interface>"));
    EXPECT_TRUE(
        stale(head, "<classname>T</classname><displayclass>D</displayclass><interface>a</interface>"));
    EXPECT_TRUE(
        stale(head, "<classname>T</classname><displayclass>D</displayclass><interface>a,c</interface>"));
}

TEST(NeedsRefresh, ATypeThatLeftTheLibraryStaysAsItIs)
{
    const TNodeTypeLibrary library;
    TNodeType type;
    type.Name = "Gone";
    EXPECT_FALSE(type.NeedsRefresh(library));
    EXPECT_EQ(AssertionOf([&] {
                  TChunkFile file;
                  TEffectGraph graph;
                  TEffectNode node;
                  TRefreshRecord record;
                  type.Refresh(&node, library, file, graph, record);
              }),
              "type != 0");
}

TEST(NeedsRefresh, BypassAndPriorityDoNotCount)
{
    TNodeTypeLibrary library;
    library.AddType(LoadType(NodeFile("")));
    const std::unique_ptr<TNodeType> type(library.GetType(0)->Clone());
    type->Flags = FL_BYPASSED | FL_STATICBOUNDS | 0x55000000u;
    EXPECT_FALSE(type->NeedsRefresh(library));
}

// A graph whose nodes, types and edges are chunks of a file, as in a document.
struct TDocumentGraph
{
    TDocumentGraph()
    {
        Graph = new TEffectGraph;
        Chunks.AddChunk(Graph);
    }
    TEffectNode* Add(const std::string& file)
    {
        TNodeType* type = LoadType(file);
        TEffectNode* node = new TEffectNode;
        node->SetNodeType(type);
        node->SetPortCounts(type->GetNumInputs(), type->GetNumOutputs());
        Chunks.AddChunk(node);
        type->AddToChunkFile(Chunks);
        Graph->AddNode(node);
        return node;
    }
    TEffectEdge* Wire(TEffectNode* src, int srcPort, TEffectNode* dst, int dstPort)
    {
        TEffectEdge* edge = new TEffectEdge;
        edge->SetEnds(src, srcPort, dst, dstPort);
        dst->SetInput(dstPort, edge);
        src->AddOutputEdge(srcPort, edge);
        Graph->AddEdge(edge);
        Chunks.AddChunk(edge);
        return edge;
    }
    void Refresh(TEffectNode* node, const std::string& file)
    {
        TNodeTypeLibrary library;
        library.AddType(LoadType(file));
        node->GetNodeType()->Refresh(node, library, Chunks, *Graph, Record);
    }

    TChunkFile Chunks;
    TEffectGraph* Graph;
    TRefreshRecord Record;
};

TEST(Refresh, KeepsParametersOfTheSameNameAndKind)
{
    TDocumentGraph doc;
    TEffectNode* node =
        doc.Add(NodeFile(Sections(Port("Int", "a") + Port("Int", "b") + Port("Bool", "c"), "", "")));
    TNodeParameter* a = node->GetNodeType()->GetParameter(0);
    TNodeParameter* b = node->GetNodeType()->GetParameter(1);
    const int numChunks = doc.Chunks.GetNumChunks();
    doc.Refresh(
        node, NodeFile(Sections(Port("Int", "B") + Port("Scalar", "c") + Port("Int", "a") + Port("Int", "n"),
                                "", "")));
    const TNodeType& type = *node->GetNodeType();
    ASSERT_EQ(type.GetNumParameters(), 4);
    EXPECT_EQ(type.GetParameter(0), b);
    EXPECT_EQ(type.GetParameter(1)->Type, TY_SCALAR);
    EXPECT_EQ(type.GetParameter(2), a);
    EXPECT_EQ(type.NumOwnParameters, 4);
    EXPECT_EQ(doc.Chunks.GetNumChunks(), numChunks + 1);
    EXPECT_NE(type.GetParameter(3)->ChunkIdx, -1);
}

TEST(Refresh, EdgesFollowTheInputsByName)
{
    TDocumentGraph doc;
    TEffectNode* source = doc.Add(NodeFile(Sections("", "", Port("Scalar", "o"))));
    TEffectNode* node =
        doc.Add(NodeFile(Sections("", Port("Scalar", "a", Default("5")) + Port("Scalar", "b"), "")));
    TEffectEdge* toA = doc.Wire(source, 0, node, 0);
    doc.Wire(source, 0, node, 1);
    const int numChunks = doc.Chunks.GetNumChunks();
    doc.Refresh(node, NodeFile(Sections("", Port("Scalar", "new") + Port("Scalar", "A"), "")));
    ASSERT_EQ(node->GetNumInputs(), 2);
    EXPECT_EQ(node->GetInput(0), nullptr);
    EXPECT_EQ(node->GetInput(1), toA);
    // The stored port is that of before, until all nodes are refreshed.
    EXPECT_EQ(toA->GetDstPort(), 0);
    EXPECT_EQ(FloatsOf(*node->GetNodeType()->GetInput(1)), std::vector<float>{5});
    EXPECT_EQ(source->GetNumOutputEdges(0), 1);
    EXPECT_EQ(doc.Graph->GetNumEdges(), 1);
    // b and its edge went, new came.
    EXPECT_EQ(doc.Chunks.GetNumChunks(), numChunks - 1);
    doc.Record.MoveEdges(doc.Chunks, *doc.Graph);
    EXPECT_EQ(toA->GetDstPort(), 1);
}

TEST(Refresh, InputOfAnotherKindKeepsItsEdgeAndWhatFitsOfItsValue)
{
    TDocumentGraph doc;
    TEffectNode* source = doc.Add(NodeFile(Sections("", "", Port("Scalar", "o"))));
    TEffectNode* node = doc.Add(NodeFile(Sections("", Port("Scalar", "a", Default("5")), "")));
    TEffectEdge* edge = doc.Wire(source, 0, node, 0);
    doc.Refresh(node, NodeFile(Sections("", PolytypeInput("a", {"scalar", "scale"}), "")));
    EXPECT_EQ(node->GetInput(0), edge);
    EXPECT_EQ(node->GetNodeType()->GetBasicInputType(0), TY_POLYTYPE);
    EXPECT_EQ(FloatsOf(*node->GetNodeType()->GetInput(0)), std::vector<float>{5});
}

TEST(Refresh, EdgesFollowTheOutputsByName)
{
    TDocumentGraph doc;
    TEffectNode* node = doc.Add(NodeFile(Sections("", "", Port("Scalar", "a") + Port("Scalar", "b"))));
    TEffectNode* target = doc.Add(NodeFile(Sections("", Port("Scalar", "x") + Port("Scalar", "y"), "")));
    doc.Wire(node, 0, target, 0);
    TEffectEdge* fromB = doc.Wire(node, 1, target, 1);
    doc.Refresh(node, NodeFile(Sections("", "", Port("Scalar", "B"))));
    ASSERT_EQ(node->GetNumOutputs(), 1);
    EXPECT_EQ(node->GetNumOutputEdges(0), 1);
    EXPECT_EQ(node->GetOutputEdge(0, 0), fromB);
    EXPECT_EQ(target->GetInput(0), nullptr);
    EXPECT_EQ(doc.Graph->GetNumEdges(), 1);
    EXPECT_EQ(fromB->GetSrcPort(), 1);
}

TEST(Refresh, NeighboursRefreshedOneAfterTheOtherStayWhole)
{
    TDocumentGraph doc;
    TEffectNode* source = doc.Add(NodeFile(Sections("", "", Port("Scalar", "a") + Port("Scalar", "b"))));
    TEffectNode* target = doc.Add(NodeFile(Sections("", Port("Scalar", "x"), "")));
    doc.Wire(source, 1, target, 0);
    // The edge's stored source port lies outside of the source after this.
    doc.Refresh(source, NodeFile(Sections("", "", Port("Scalar", "b"))));
    EXPECT_EQ(AssertionOf([&] { doc.Refresh(target, NodeFile(Sections("", Port("Scalar", "z"), ""))); }), "");
    EXPECT_EQ(source->GetNumOutputEdges(0), 0);
    EXPECT_EQ(doc.Graph->GetNumEdges(), 0);
}

TEST(Refresh, LinksAreLookedUpAnew)
{
    TDocumentGraph doc;
    TEffectNode* node = doc.Add(NodeFile(
        Sections("", Port("Scalar", "a") + Port("Scalar", "b") + PolytypeInput("p", {"scalar"}, "b"), "")));
    const auto* p = static_cast<TNodePolytypeParameter*>(node->GetNodeType()->GetInput(2));
    EXPECT_EQ(p->GetLinkInputIndex(node), 1);
    doc.Refresh(node, NodeFile(Sections("", Port("Scalar", "b") + PolytypeInput("p", {"scalar"}, "b"), "")));
    EXPECT_EQ(node->GetNodeType()->GetInput(1), p);
    EXPECT_EQ(p->GetLinkInputIndex(node), 0);
}

TEST(Refresh, ARefreshedCopyIsNoLongerStale)
{
    const std::string file =
        "<node><name>N</name><description>new</description><type>render</type><bypassable/>"
        "<colour>blue</colour>" +
        Sections(Port("Int", "p"), Port("Scale", "i"), PolytypeOutput("o", {"Scalar"})) +
        "<code><classname>X</classname><displayclass>Y</displayclass><interface>Z</interface></code></node>";
    TDocumentGraph doc;
    TEffectNode* node =
        doc.Add(NodeFile(Sections(Port("Bool", "p"), Port("Scalar", "i"), Port("Scalar", "q"))));
    TNodeTypeLibrary library;
    library.AddType(LoadType(file));
    EXPECT_TRUE(node->GetNodeType()->NeedsRefresh(library));
    node->GetNodeType()->Refresh(node, library, doc.Chunks, *doc.Graph, doc.Record);
    EXPECT_FALSE(node->GetNodeType()->NeedsRefresh(library));
}

// The copy keeps what was set; all that the file tells of it comes from the library.
TEST(Refresh, WhatIsKeptTakesTheWordsOfTheLibrary)
{
    TDocumentGraph doc;
    TEffectNode* node =
        doc.Add(NodeFile(Sections(Port("Int", "p", "<Description>old</Description>" + Default("1")),
                                  "<Scalar required=true><name>i</name>" + Default("2") + "</Scalar>", "")));
    doc.Refresh(
        node, NodeFile(Sections(Port("Int", "P", "<Description>new</Description>" + Default("8")),
                                Port("Scalar", "I", "<Description>help</Description>" + Default("9")), "")));
    const TNodeType& type = *node->GetNodeType();
    EXPECT_EQ(Text(type.GetParameter(0)->Name), "P");
    EXPECT_EQ(Text(type.GetParameter(0)->Description), "new");
    EXPECT_EQ(static_cast<TNodeIntParameter*>(type.GetParameter(0))->Get(), 1);
    EXPECT_EQ(Text(type.GetInput(0)->Description), "help");
    EXPECT_FALSE(type.IsInputRequired(0));
    EXPECT_EQ(FloatsOf(*type.GetInput(0)), std::vector<float>{2});
}

TEST(Refresh, SettingsOfTheNodeStay)
{
    TDocumentGraph doc;
    const auto file = [](const char* flags) {
        return std::string("<node><name>N</name><type>process</type>") + flags +
               "<colour>red</colour><code><classname>T</classname></code></node>";
    };
    TEffectNode* node = doc.Add(file("<bypassable/>"));
    TNodeType& type = *node->GetNodeType();
    type.SetFlag(FL_BYPASSED | FL_STATICBOUNDS, true);
    type.SetRenderPriority(77);
    doc.Refresh(node, file("<bypassable/><lasthint/>"));
    EXPECT_TRUE(type.IsBypassed());
    EXPECT_TRUE(type.HasFlag(FL_STATICBOUNDS));
    EXPECT_TRUE(type.HasFlag(FL_LASTHINT));
    EXPECT_EQ(type.GetRenderPriority(), 77);
    // What may not be bypassed is not.
    TDocumentGraph other;
    node = other.Add(file("<bypassable/>"));
    node->GetNodeType()->SetFlag(FL_BYPASSED, true);
    other.Refresh(node, file(""));
    EXPECT_FALSE(node->GetNodeType()->IsBypassed());
}

TEST(Refresh, APolytypeKeepsItsUserTypeAndValuesAndTakesItsLinks)
{
    TDocumentGraph doc;
    TEffectNode* node = doc.Add(NodeFile(Sections(
        "", PolytypeInput("a", {"scalar"}) + PolytypeInput("p", {"scalar", "scale", "colour"}, "a", "o"),
        PolytypeOutput("o", {"Scalar", "Scale"}, "a"))));
    auto* p = static_cast<TNodePolytypeParameter*>(node->GetNodeType()->GetInput(1));
    const float scale[2] = {3, 4};
    p->GetValueParameter(TY_SCALE)->SetValue(scale);
    p->SetUserType(TY_SCALE);
    node->GetNodeType()->GetOutput(0).DefaultType = TY_SCALE;
    const int numChunks = doc.Chunks.GetNumChunks();
    doc.Refresh(node, NodeFile(Sections("",
                                        PolytypeInput("renamed", {"scalar"}) +
                                            PolytypeInput("p", {"scale", "vector3", "transform"}, "renamed"),
                                        PolytypeOutput("o", {"Scalar", "Scale"}, "renamed"))));
    ASSERT_EQ(node->GetNodeType()->GetInput(1), p);
    EXPECT_EQ(Text(p->GetLinkInput()), "renamed");
    EXPECT_EQ(p->GetLinkInputIndex(node), 0);
    EXPECT_TRUE(p->GetLinkOutput().IsEmpty());
    EXPECT_EQ(p->GetLinkOutputIndex(node), -1);
    EXPECT_EQ(p->GetValidTypes(), 1u << TY_SCALE | 1u << TY_VECTOR3 | 1u << TY_TRANSFORM);
    EXPECT_EQ(p->GetCurrentType(), TY_SCALE);
    EXPECT_EQ(FloatsOf(*p), (std::vector<float>{3, 4}));
    EXPECT_EQ(node->GetNodeType()->GetOutput(0).DefaultType, TY_SCALE);
    // Two types went, two came; so did an input with its one value.
    EXPECT_EQ(doc.Chunks.GetNumChunks(), numChunks);
    TString fault;
    EXPECT_TRUE(CheckGraph(*doc.Graph, fault)) << fault.Print();
    // A type that is gone leaves the library's choice.
    doc.Refresh(node, NodeFile(Sections("", PolytypeInput("p", {"vector3", "transform"}),
                                        PolytypeOutput("o", {"Scalar"}))));
    EXPECT_EQ(p->GetCurrentType(), TY_VECTOR3);
    EXPECT_EQ(node->GetNodeType()->GetOutput(0).DefaultType, TY_SCALAR);
}

TEST(Refresh, ANewInputTakesTheTypeOfThoseThatItIsLinkedTo)
{
    TDocumentGraph doc;
    const std::string high = PolytypeInput("High", {"scalar", "scale"}, "Bottom");
    TEffectNode* node =
        doc.Add(NodeFile(Sections("", PolytypeInput("Bottom", {"scalar", "scale"}) + high, "")));
    static_cast<TNodePolytypeParameter*>(node->GetNodeType()->GetInput(1))->SetUserType(TY_SCALE);
    doc.Refresh(node, NodeFile(Sections("",
                                        PolytypeInput("Low", {"scalar", "scale"}) +
                                            PolytypeInput("High", {"scalar", "scale"}, "Low") +
                                            PolytypeInput("Alone", {"scalar", "scale"}),
                                        "")));
    EXPECT_EQ(node->GetNodeType()->GetInputType(0), TY_SCALE);
    EXPECT_EQ(node->GetNodeType()->GetInputType(1), TY_SCALE);
    EXPECT_EQ(node->GetNodeType()->GetInputType(2), TY_SCALAR);
}

TEST(Refresh, TheValueInForceStaysInForceWhereAnInputBecomesAPolytypeOrWasOne)
{
    TDocumentGraph doc;
    TEffectNode* node = doc.Add(NodeFile(Sections("", Port("Scale", "a", Default("5,6")), "")));
    doc.Refresh(node, NodeFile(Sections("", PolytypeInput("a", {"scalar", "scale"}), "")));
    EXPECT_EQ(node->GetNodeType()->GetInputType(0), TY_SCALE);
    EXPECT_EQ(FloatsOf(*node->GetNodeType()->GetInput(0)), (std::vector<float>{5, 6}));
    doc.Refresh(node, NodeFile(Sections("", Port("Scale", "a"), "")));
    EXPECT_EQ(node->GetNodeType()->GetBasicInputType(0), TY_SCALE);
    EXPECT_EQ(FloatsOf(*node->GetNodeType()->GetInput(0)), (std::vector<float>{5, 6}));
}

static std::string EnumFile(const std::vector<std::string>& values, const std::string& chosen)
{
    std::string text = "<Enum><name>e</name>";
    for (const std::string& value : values)
        text += "<value>" + value + "</value>";
    return NodeFile(Sections(text + Default(chosen) + "</Enum>", "", ""));
}

TEST(Refresh, AnEnumKeepsItsNumberThenItsName)
{
    const auto chosen = [](const std::vector<std::string>& values, bool expectLost) {
        TDocumentGraph doc;
        TEffectNode* node = doc.Add(EnumFile({"None=0", "Add=1", "Mix=2"}, "Mix"));
        const auto* e = static_cast<TNodeEnumParameter*>(node->GetNodeType()->GetParameter(0));
        doc.Refresh(node, EnumFile(values, values[0].substr(0, values[0].find('='))));
        EXPECT_EQ(node->GetNodeType()->GetParameter(0), e);
        EXPECT_EQ(doc.Record.IsLost(e), expectLost);
        return Text(e->GetValues()[e->GetIndex()].Name) + " " + std::to_string(e->GetNumber());
    };
    EXPECT_EQ(chosen({"None=0", "Add=1", "Mix=2", "More=3"}, false), "Mix 2");
    EXPECT_EQ(chosen({"Mix=2", "Add=1", "None=0"}, true), "Mix 2");
    EXPECT_EQ(chosen({"None=0", "Add=1", "Blend=2"}, false), "Blend 2");
    EXPECT_EQ(chosen({"Other=2", "None=0", "Mix=2", "Add=1"}, true), "Mix 2");
    EXPECT_EQ(chosen({"None=0", "Mix=7", "Add=1"}, true), "Mix 7");
    EXPECT_EQ(chosen({"Add=1", "None=0"}, true), "Add 1");
}

TEST(Refresh, GroupsAreRefreshedInside)
{
    const auto group = [](const std::string& children, const char* open) {
        return "<Group><name>g</name>" + Default(open) + "<parameters>" + children + "</parameters></Group>";
    };
    TDocumentGraph doc;
    TEffectNode* node = doc.Add(NodeFile(Sections(
        group(Port("Int", "a", Default("5")) + Port("Int", "b") + group(Port("Bool", "c", Default("1")), "0"),
              "true"),
        "", "")));
    const auto* g = static_cast<TNodeGroupParameter*>(node->GetNodeType()->GetParameter(0));
    doc.Refresh(node, NodeFile(Sections(group(group(Port("Int", "new") + Port("Bool", "c"), "1") +
                                                  Port("Int", "a", "<Description>d</Description>"),
                                              "false"),
                                        "", "")));
    EXPECT_EQ(node->GetNodeType()->GetParameter(0), g);
    EXPECT_TRUE(g->Get());
    ASSERT_EQ(g->GetChildren().size(), 2);
    const auto* inner = static_cast<TNodeGroupParameter*>(g->GetChildren()[0]);
    EXPECT_FALSE(inner->Get());
    ASSERT_EQ(inner->GetChildren().size(), 2);
    EXPECT_NE(inner->GetChildren()[0]->ChunkIdx, -1);
    EXPECT_TRUE(static_cast<TNodeBoolParameter*>(inner->GetChildren()[1])->Get());
    EXPECT_EQ(static_cast<TNodeIntParameter*>(g->GetChildren()[1])->Get(), 5);
    EXPECT_EQ(Text(g->GetChildren()[1]->Description), "d");
    // The graph, the node, its type, the two groups and the three in them.
    EXPECT_EQ(doc.Chunks.GetNumChunks(), 8);
}

TEST(Refresh, ARampKeepsItsCurvesAsFarAsItHasThem)
{
    const auto ramp = [](const std::string& type, const std::string& value) {
        return NodeFile(Sections(Port("Ramp", "r",
                                      "<type>" + type + "</type><defaultvalues>{0," + value + "},{1," +
                                          value + "}</defaultvalues>"),
                                 "", ""));
    };
    TDocumentGraph doc;
    TEffectNode* node = doc.Add(ramp("vector3=x,y,z", "1"));
    auto* r = static_cast<TNodeRampParameter*>(node->GetNodeType()->GetParameter(0));
    const int locks[4] = {-1, 0, 2, -1};
    r->SetLocks(locks);
    r->SetLinear(true);
    doc.Refresh(node, ramp("colour=r,g,b,a", "5"));
    EXPECT_EQ(node->GetNodeType()->GetParameter(0), r);
    EXPECT_EQ(Text(r->GetLabels()), "r,g,b,a");
    EXPECT_EQ(r->GetDimensions(), 4);
    EXPECT_EQ(r->Evaluate(0.5f, 0), 1);
    EXPECT_EQ(r->Evaluate(0.5f, 3), 5);
    EXPECT_EQ(r->GetLocks()[1], 0);
    EXPECT_EQ(r->GetLocks()[2], 2);
    EXPECT_TRUE(r->IsLinear());
    EXPECT_TRUE(doc.Record.IsLost(r));
    doc.Refresh(node, ramp("scale", "5"));
    EXPECT_EQ(r->GetDimensions(), 2);
    EXPECT_EQ(r->Evaluate(0.5f, 1), 1);
    EXPECT_EQ(r->GetLocks()[1], 0);
    EXPECT_EQ(r->GetLocks()[2], -1);
}

TEST(Refresh, EdgesOutOfTheGraphFollowTheirPorts)
{
    TDocumentGraph doc;
    TEffectNode* source = doc.Add(NodeFile(Sections("", "", Port("Scalar", "o"))));
    TEffectNode* node = doc.Add(NodeFile(Sections("", Port("Scalar", "gone") + Port("Scalar", "a"), "")));
    // One was deleted by itself, the other with its source.
    TEffectEdge* alone = doc.Wire(source, 0, node, 1);
    doc.Graph->RemoveEdge(alone);
    source->RemoveOutputEdge(0, alone);
    node->SetInput(1, nullptr);
    TEffectEdge* lost = doc.Wire(source, 0, node, 0);
    doc.Graph->RemoveEdge(lost);
    node->SetInput(0, nullptr);
    doc.Graph->RemoveNode(source);
    doc.Refresh(node, NodeFile(Sections("", Port("Scalar", "a"), "")));
    doc.Record.MoveEdges(doc.Chunks, *doc.Graph);
    EXPECT_EQ(alone->GetDstPort(), 0);
    EXPECT_FALSE(doc.Record.IsLost(alone));
    EXPECT_TRUE(doc.Record.IsLost(lost));
    EXPECT_EQ(lost->ChunkIdx, -1);
    EXPECT_EQ(source->GetNumOutputEdges(0), 0);
}
