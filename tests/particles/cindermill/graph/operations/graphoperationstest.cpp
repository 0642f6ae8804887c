#include "particles/cindermill/graph/operations/addgraphedgeop.h"
#include "particles/cindermill/graph/operations/addgraphnodeop.h"
#include "particles/cindermill/graph/operations/addgraphnodesop.h"
#include "particles/cindermill/graph/operations/bypassflagop.h"
#include "particles/cindermill/graph/operations/changegraphedgeop.h"
#include "particles/cindermill/graph/operations/deletegraphedgeop.h"
#include "particles/cindermill/graph/operations/deletegraphnodeop.h"
#include "particles/cindermill/graph/operations/movegraphnodeop.h"
#include "particles/cindermill/graph/operations/nodepropertiesop.h"
#include "particles/cindermill/graph/operations/operationfixture.h"

namespace {

std::vector<int> OutputEdges(const TToolNode* node)
{
    std::vector<int> counts;
    for (int i = 0; i < node->GetNumOutputs(); ++i)
        counts.push_back(node->GetNumOutputEdges(i));
    return counts;
}

// A chain a -> b -> c by the edges 1 and 2.
struct TChain : TFakeDocument
{
    TChain()
    {
        A = AddNode("a", GetPlainType());
        B = AddNode("b", GetPlainType());
        C = AddNode("c", GetPlainType());
        One = Connect("1", A, 0, B, 0);
        Two = Connect("2", B, 0, C, 0);
        TakeEvents();
        GraphChanges = 0;
    }

    vector<TToolNode*> Nodes(std::initializer_list<TToolNode*> nodes) const
    {
        vector<TToolNode*> result;
        for (TToolNode* node : nodes)
            result.push_back(node);
        return result;
    }

    TToolNode* A;
    TToolNode* B;
    TToolNode* C;
    TToolEdge* One;
    TToolEdge* Two;
};

std::string List(std::initializer_list<const TChunk*> chunks)
{
    std::string bytes = I32(static_cast<int>(chunks.size()));
    for (const TChunk* chunk : chunks)
        bytes += Ref(chunk);
    return bytes;
}

// The top operation, with its GetSize held against the body.
std::string TopBody(TFakeDocument& doc)
{
    TOperation* op = doc.Stack->GetOperation(doc.Stack->GetNumOperations() - 1);
    const std::string body = SavedChunk(doc.Chunks, op).Body;
    EXPECT_EQ(op->GetSize(), static_cast<int>(body.size()));
    return body;
}

} // namespace

TEST(TAddGraphNodeOp, RegistersTheNodeItsTypeAndItsParameters)
{
    TFakeDocument doc;
    TAddGraphNodeOp* op = new TAddGraphNodeOp(doc, GetEveryType(), 100, 200);
    TToolNode* node = op->GetNode();
    const TNodeType* type = node->GetNodeType();
    EXPECT_EQ(doc.Chunks.GetChunkAt(2), node);
    EXPECT_EQ(doc.Chunks.GetChunkAt(3), type);
    EXPECT_EQ(doc.Chunks.GetChunkAt(4), type->GetParameter(0));
    // The group's child is entered too.
    EXPECT_EQ(doc.Chunks.GetNumChunks(), 4 + type->GetNumParameters() + 1);
    EXPECT_EQ(doc.Graph->GetNumNodes(), 0);
    doc.Apply(op);
    EXPECT_EQ(doc.Graph->GetNumNodes(), 1);
}

TEST(TAddGraphNodeOp, CentresTheNewNodeOnThePoint)
{
    TFakeDocument doc;
    doc.HalfWidth = 30;
    doc.HalfHeight = 7;
    const TToolNode* node = doc.AddNode("a", GetPlainType(), 100, 200);
    EXPECT_EQ(node->GetX(), 70);
    EXPECT_EQ(node->GetY(), 193);
}

TEST(TAddGraphNodeOp, DoAndUndoAreNoGraphChange)
{
    TFakeDocument doc;
    doc.AddNode("a", GetPlainType());
    EXPECT_EQ(doc.TakeEvents(), "show a, redraw");
    doc.Undo();
    EXPECT_EQ(doc.TakeEvents(), "deselect a, hide a, redraw");
    EXPECT_EQ(doc.Graph->GetNumNodes(), 0);
    doc.Redo();
    EXPECT_EQ(doc.TakeEvents(), "show a, redraw");
    EXPECT_EQ(doc.NodesOf(), "a");
    EXPECT_EQ(doc.GraphChanges, 0);
}

// The class and the body of each chunk of the next save.
static std::vector<std::pair<uint32_t, std::string>> Saved(TFakeDocument& doc)
{
    std::vector<std::pair<uint32_t, std::string>> chunks;
    for (const TChunkFileBytes::TEntry& entry : SavedFile(doc.Chunks).Entries)
        chunks.emplace_back(entry.NameID, entry.Body);
    return chunks;
}

TEST(TAddGraphNodeOp, AnAddAnUndoAndANewEditLeaveNothingOfTheNodeInTheNextSave)
{
    const auto edit = [](TFakeDocument& doc, bool adds) {
        TToolNode* kept = doc.AddNode("a", GetEveryType());
        if (adds) {
            doc.AddNode("b", GetEveryType());
            doc.Undo();
            // What can be redone is saved too.
            const auto saved = Saved(doc);
            EXPECT_EQ(std::count_if(saved.begin(), saved.end(),
                                    [](const auto& chunk) { return chunk.first == TToolNode::NameID(); }),
                      2);
        }
        vector<TToolNode*> moved;
        moved.push_back(kept);
        doc.Apply(new TMoveGraphNodeOp(moved, 1, 1));
        return Saved(doc);
    };
    TFakeDocument added;
    TFakeDocument plain;
    EXPECT_EQ(edit(added, true), edit(plain, false));
}

TEST(TAddGraphNodeOp, Body)
{
    TFakeDocument doc;
    const TToolNode* node = doc.AddNode("a", GetPlainType());
    EXPECT_EQ(TopBody(doc), Ref(node));
}

namespace {

// Two nodes d -> e by the edge 3, as a paste makes them.
struct TPasted : TChain
{
    TPasted()
    {
        for (const char* label : {"d", "e"}) {
            TToolNode* node = new TToolNode;
            node->Create(this, GetPlainType(), 5, 6, false);
            Label(node, label);
            Pasted.push_back(node);
        }
        Three = new TToolEdge;
        Label(Three, "3");
        Three->Connect(Pasted[0], 0, Pasted[1], 1);
        Three->AttachEnds();
        Apply(new TAddGraphNodesOp(*this, Pasted));
    }

    vector<TToolNode*> Pasted;
    TToolEdge* Three;
};

} // namespace

TEST(TAddGraphNodesOp, DoesAndUndoesNodesWithTheEdgesOfTheirInputs)
{
    TPasted doc;
    EXPECT_EQ(doc.TakeEvents(), "show d, show e, show 3, changed, redraw");
    EXPECT_EQ(doc.NodesOf(), "abcde");
    EXPECT_EQ(doc.EdgesOf(), "123");
    doc.Undo();
    EXPECT_EQ(doc.TakeEvents(), "deselect d, hide d, deselect e, hide e, hide 3, changed, redraw");
    EXPECT_EQ(doc.NodesOf(), "abc");
    EXPECT_EQ(doc.EdgesOf(), "12");
    // The edge stays attached in the nodes.
    EXPECT_EQ(doc.Pasted[1]->GetInput(1), doc.Three);
    EXPECT_EQ(OutputEdges(doc.Pasted[0]), std::vector<int>{1});
    doc.Redo();
    EXPECT_EQ(doc.NodesOf(), "abcde");
    EXPECT_EQ(doc.EdgesOf(), "123");
}

TEST(TAddGraphNodesOp, RegistersEachNodeThenItsEdges)
{
    TPasted doc;
    EXPECT_TRUE(doc.Holds(doc.Three));
    EXPECT_LT(doc.Pasted[0]->ChunkIdx, doc.Pasted[1]->ChunkIdx);
    EXPECT_LT(doc.Pasted[1]->GetNodeType()->ChunkIdx, doc.Three->ChunkIdx);
}

TEST(TAddGraphNodesOp, DiscardFreesNodesAndEdges)
{
    TPasted doc;
    doc.Undo();
    vector<TToolNode*> moved;
    moved.push_back(doc.A);
    doc.Apply(new TMoveGraphNodeOp(moved, 1, 1));
    vector<TChunk*> nodes;
    doc.Chunks.GetChunksOfClass(TToolNode::NameID(), nodes);
    EXPECT_EQ(nodes.size(), 3);
    vector<TChunk*> edges;
    doc.Chunks.GetChunksOfClass(TToolEdge::NameID(), edges);
    EXPECT_EQ(edges.size(), 2);
}

TEST(TAddGraphNodesOp, Body)
{
    TPasted doc;
    EXPECT_EQ(TopBody(doc), List({doc.Pasted[0], doc.Pasted[1]}));
}

TEST(TMoveGraphNodeOp, MovesByTheDeltaAndBack)
{
    TChain doc;
    doc.A->SetPosition(10, 20);
    doc.TakeEvents();
    doc.Apply(new TMoveGraphNodeOp(doc.Nodes({doc.A, doc.B}), 3, -4));
    EXPECT_EQ(doc.A->GetX(), 13);
    EXPECT_EQ(doc.A->GetY(), 16);
    EXPECT_EQ(doc.B->GetX(), 3);
    EXPECT_EQ(TopBody(doc), List({doc.A, doc.B}) + I32(3) + I32(-4));
    EXPECT_EQ(doc.GraphChanges, 0);
    // Node b lays out the edge of its input, then that of its output.
    EXPECT_EQ(doc.TakeEvents(), "touch a, layout 1, touch b, layout 1, layout 2, redraw");
    doc.Undo();
    EXPECT_EQ(doc.A->GetX(), 10);
    EXPECT_EQ(doc.A->GetY(), 20);
}

TEST(TMoveGraphNodeOp, MovesOfASelectionCommuteAndDoNotMerge)
{
    TFakeClock clock(10000);
    TChain doc;
    const int before = doc.Stack->GetNumOperations();
    doc.Apply(new TMoveGraphNodeOp(doc.Nodes({doc.A}), 3, 4));
    doc.Apply(new TMoveGraphNodeOp(doc.Nodes({doc.A}), 10, 20));
    EXPECT_EQ(doc.Stack->GetNumOperations(), before + 2);
    EXPECT_EQ(doc.A->GetX(), 13);
    doc.Undo();
    EXPECT_EQ(doc.A->GetX(), 3);
}

TEST(TMoveGraphNodeOp, WrapsRoundAndComesBack)
{
    TChain doc;
    doc.A->SetPosition(INT32_MAX, INT32_MIN);
    doc.Apply(new TMoveGraphNodeOp(doc.Nodes({doc.A}), 1, INT32_MIN));
    EXPECT_EQ(doc.A->GetX(), INT32_MIN);
    EXPECT_EQ(doc.A->GetY(), 0);
    doc.Undo();
    EXPECT_EQ(doc.A->GetX(), INT32_MAX);
    EXPECT_EQ(doc.A->GetY(), INT32_MIN);
}

TEST(TDeleteGraphNodeOp, DeletingOneOfTwoConnectedNodesDetachesTheNeighbour)
{
    TChain doc;
    doc.Apply(new TDeleteGraphNodeOp(doc.Nodes({doc.B})));
    EXPECT_EQ(doc.NodesOf(), "ac");
    EXPECT_EQ(doc.EdgesOf(), "");
    EXPECT_EQ(OutputEdges(doc.A), std::vector<int>{0});
    EXPECT_EQ(doc.C->GetInput(0), nullptr);
    // The deleted node keeps its own ends.
    EXPECT_EQ(doc.B->GetInput(0), doc.One);
    EXPECT_EQ(doc.B->GetOutputEdge(0, 0), doc.Two);
    EXPECT_EQ(doc.TakeEvents(), "deselect b, hide b, hide 2, touch c, hide 1, touch a, changed, redraw");

    doc.Undo();
    EXPECT_EQ(doc.NodesOf(), "abc");
    EXPECT_EQ(doc.EdgesOf(), "12");
    EXPECT_EQ(doc.A->GetOutputEdge(0, 0), doc.One);
    EXPECT_EQ(doc.C->GetInput(0), doc.Two);
    EXPECT_EQ(doc.TakeEvents(),
              "show b, layout 2, show 2, touch c, layout 1, show 1, touch a, changed, redraw");

    doc.Redo();
    EXPECT_EQ(OutputEdges(doc.A), std::vector<int>{0});
    EXPECT_EQ(doc.C->GetInput(0), nullptr);
    EXPECT_EQ(doc.GraphChanges, 3);
}

TEST(TDeleteGraphNodeOp, DeletingTwoConnectedNodesKeepsTheEdgeBetweenThemAttached)
{
    TChain doc;
    doc.Apply(new TDeleteGraphNodeOp(doc.Nodes({doc.A, doc.B})));
    const auto expectInner = [&] {
        ASSERT_EQ(OutputEdges(doc.A), std::vector<int>{1});
        EXPECT_EQ(doc.A->GetOutputEdge(0, 0), doc.One);
        EXPECT_EQ(doc.B->GetInput(0), doc.One);
        EXPECT_EQ(doc.One->GetSrcNode(), doc.A);
        EXPECT_EQ(doc.One->GetDstNode(), doc.B);
    };
    const auto expectDeleted = [&] {
        EXPECT_EQ(doc.NodesOf(), "c");
        EXPECT_EQ(doc.EdgesOf(), "");
        expectInner();
        EXPECT_EQ(doc.C->GetInput(0), nullptr);
        // The neighbour has let go, the deleted node has not.
        EXPECT_EQ(doc.B->GetOutputEdge(0, 0), doc.Two);
    };
    expectDeleted();
    for (int turn = 0; turn < 2; ++turn) {
        doc.Undo();
        EXPECT_EQ(doc.NodesOf(), "abc");
        EXPECT_EQ(doc.EdgesOf(), "12");
        expectInner();
        EXPECT_EQ(OutputEdges(doc.B), std::vector<int>{1});
        EXPECT_EQ(doc.C->GetInput(0), doc.Two);
        doc.Redo();
        expectDeleted();
    }
}

// Whatever order the nodes are named in, and the lists are in.
TEST(TDeleteGraphNodeOp, EverythingComesBackToItsPlace)
{
    TChain doc;
    TToolEdge* three = doc.Connect("3", doc.A, 0, doc.C, 1);
    doc.Apply(new TChangeGraphEdgeOp(doc.One, doc.A, 0, doc.B, 1));
    const auto expectBefore = [&] {
        EXPECT_EQ(doc.NodesOf(), "abc");
        EXPECT_EQ(doc.EdgesOf(), "123");
        ASSERT_EQ(doc.A->GetNumOutputEdges(0), 2);
        EXPECT_EQ(doc.A->GetOutputEdge(0, 0), three);
        EXPECT_EQ(doc.A->GetOutputEdge(0, 1), doc.One);
    };
    expectBefore();
    for (const std::vector<TToolNode*>& nodes :
         {std::vector<TToolNode*>{doc.B}, {doc.C, doc.B}, {doc.C}, {doc.C, doc.A}, {doc.B, doc.A, doc.C}}) {
        vector<TToolNode*> deleted;
        for (TToolNode* node : nodes)
            deleted.push_back(node);
        doc.Apply(new TDeleteGraphNodeOp(deleted));
        for (int turn = 0; turn < 2; ++turn) {
            doc.Undo();
            expectBefore();
            doc.Redo();
        }
        doc.Undo();
    }
}

TEST(TDeleteGraphNodeOp, GathersOutputsBeforeInputsAndEachEdgeOnce)
{
    TChain doc;
    doc.Apply(new TDeleteGraphNodeOp(doc.Nodes({doc.B, doc.A})));
    EXPECT_EQ(TopBody(doc), List({doc.B, doc.A}) + List({doc.Two, doc.One}));
}

TEST(TDeleteGraphNodeOp, DiscardFreesNothing)
{
    TChain doc;
    doc.Apply(new TDeleteGraphNodeOp(doc.Nodes({doc.B})));
    doc.Undo();
    doc.Apply(new TMoveGraphNodeOp(doc.Nodes({doc.A}), 1, 1));
    EXPECT_TRUE(doc.Holds(doc.B));
    EXPECT_TRUE(doc.Holds(doc.One));
}

TEST(TAddGraphEdgeOp, AttachesAndDetaches)
{
    TChain doc;
    TToolEdge* edge = doc.Connect("3", doc.A, 0, doc.C, 1);
    EXPECT_EQ(doc.TakeEvents(), "show 3, layout 3, touch a, touch c, changed, redraw");
    EXPECT_EQ(doc.EdgesOf(), "123");
    EXPECT_EQ(doc.C->GetInput(1), edge);
    EXPECT_EQ(doc.A->GetOutputEdge(0, 1), edge);
    EXPECT_EQ(TopBody(doc), Ref(edge));
    doc.Undo();
    EXPECT_EQ(doc.TakeEvents(), "unhook 3, hide 3, touch a, touch c, changed, redraw");
    EXPECT_EQ(doc.EdgesOf(), "12");
    EXPECT_EQ(doc.C->GetInput(1), nullptr);
    EXPECT_EQ(OutputEdges(doc.A), std::vector<int>{1});
    doc.Redo();
    EXPECT_EQ(doc.C->GetInput(1), edge);
    EXPECT_EQ(doc.GraphChanges, 3);
}

TEST(TAddGraphEdgeOp, DiscardFreesTheEdge)
{
    TChain doc;
    const int chunks = doc.Chunks.GetNumChunks();
    doc.Connect("3", doc.A, 0, doc.C, 1);
    doc.Undo();
    doc.Apply(new TMoveGraphNodeOp(doc.Nodes({doc.A}), 1, 1));
    EXPECT_EQ(doc.Chunks.GetNumChunks(), chunks + 1);
    vector<TChunk*> edges;
    doc.Chunks.GetChunksOfClass(TToolEdge::NameID(), edges);
    EXPECT_EQ(edges.size(), 2);
}

TEST(TChangeGraphEdgeOp, MovesTheEndsAndBack)
{
    TChain doc;
    doc.Apply(new TChangeGraphEdgeOp(doc.Two, doc.A, 0, doc.C, 1));
    EXPECT_EQ(doc.TakeEvents(), "unhook 2, layout 2, touch b, touch c, touch a, touch c, changed, redraw");
    EXPECT_EQ(OutputEdges(doc.B), std::vector<int>{0});
    EXPECT_EQ(doc.A->GetOutputEdge(0, 1), doc.Two);
    EXPECT_EQ(doc.C->GetInput(0), nullptr);
    EXPECT_EQ(doc.C->GetInput(1), doc.Two);
    EXPECT_EQ(doc.Two->GetSrcNode(), doc.A);
    EXPECT_EQ(doc.Two->GetDstPort(), 1);
    EXPECT_EQ(TopBody(doc), Ref(doc.Two) + Ref(doc.B) + I32(0) + Ref(doc.C) + I32(0) + Ref(doc.A) + I32(0) +
                                Ref(doc.C) + I32(1));
    doc.Undo();
    EXPECT_EQ(doc.B->GetOutputEdge(0, 0), doc.Two);
    EXPECT_EQ(OutputEdges(doc.A), std::vector<int>{1});
    EXPECT_EQ(doc.C->GetInput(0), doc.Two);
    EXPECT_EQ(doc.C->GetInput(1), nullptr);
    doc.Redo();
    EXPECT_EQ(doc.C->GetInput(1), doc.Two);
    EXPECT_EQ(doc.GraphChanges, 3);
}

TEST(TDeleteGraphEdgeOp, DetachesAndAttachesAgain)
{
    TChain doc;
    doc.Apply(new TDeleteGraphEdgeOp(doc.One));
    EXPECT_EQ(doc.TakeEvents(), "unhook 1, hide 1, touch a, touch b, changed, redraw");
    EXPECT_EQ(doc.EdgesOf(), "2");
    EXPECT_EQ(doc.B->GetInput(0), nullptr);
    EXPECT_EQ(OutputEdges(doc.A), std::vector<int>{0});
    EXPECT_EQ(TopBody(doc), Ref(doc.One));
    doc.Undo();
    EXPECT_EQ(doc.TakeEvents(), "show 1, layout 1, touch a, touch b, changed, redraw");
    EXPECT_EQ(doc.EdgesOf(), "12");
    EXPECT_EQ(doc.B->GetInput(0), doc.One);
    EXPECT_EQ(doc.GraphChanges, 2);
}

TEST(TBypassFlagOp, WritesTheFlagWithoutAGraphChange)
{
    TChain doc;
    doc.Apply(new TBypassFlagOp(doc.A, true));
    EXPECT_TRUE(doc.A->GetNodeType()->IsBypassed());
    EXPECT_EQ(doc.A->GetNodeType()->Flags & 2, 2u);
    EXPECT_EQ(doc.TakeEvents(), "touch a, redraw");
    EXPECT_EQ(TopBody(doc), Ref(doc.A) + U8(1));
    doc.Undo();
    EXPECT_FALSE(doc.A->GetNodeType()->IsBypassed());
    EXPECT_EQ(doc.GraphChanges, 0);
    doc.Redo();
    doc.Apply(new TBypassFlagOp(doc.A, false));
    EXPECT_FALSE(doc.A->GetNodeType()->IsBypassed());
    EXPECT_EQ(TopBody(doc), Ref(doc.A) + U8(0));
    doc.Undo();
    EXPECT_TRUE(doc.A->GetNodeType()->IsBypassed());
}

TEST(TBypassFlagOp, ABypassOfANodeThatAlreadyHasThatStateAsserts)
{
    TChain doc;
    EXPECT_EQ(AssertionOf([&] { delete new TBypassFlagOp(doc.A, false); }),
              "node->GetNodeType()->IsBypassed() != set");
    doc.Apply(new TBypassFlagOp(doc.A, true));
    EXPECT_EQ(AssertionOf([&] { delete new TBypassFlagOp(doc.A, true); }),
              "node->GetNodeType()->IsBypassed() != set");
}

namespace {

TNodeProperties NewProperties()
{
    TNodeProperties properties;
    properties.Name = "Other";
    properties.Priority = 200;
    properties.DynamicBounds = true;
    properties.StaticBounds = true;
    properties.BoundsMin = TVector3(1, 2, 3);
    properties.BoundsMax = TVector3(4, 5, 6);
    return properties;
}

} // namespace

TEST(TNodePropertiesOp, WritesTheTypeRecordAndBack)
{
    TChain doc;
    TNodeType& type = *doc.A->GetNodeType();
    const uint32_t flags = type.Flags;
    doc.Apply(new TNodePropertiesOp(doc.A, NewProperties()));
    EXPECT_EQ(Text(type.Name), "Other");
    EXPECT_EQ(type.Flags, (flags & 0xFFFFFF) | 200u << 24 | 16 | 32);
    EXPECT_EQ(type.BoundsMin[1], 2);
    EXPECT_EQ(type.BoundsMax[2], 6);
    EXPECT_EQ(doc.TakeEvents(), "relayout a, changed, redraw");
    doc.Undo();
    EXPECT_EQ(Text(type.Name), "Plain");
    EXPECT_EQ(type.Flags, flags);
    EXPECT_EQ(type.BoundsMin[1], 0);
    EXPECT_EQ(type.BoundsMax[2], 0);
    EXPECT_EQ(doc.GraphChanges, 2);
}

TEST(TNodePropertiesOp, Body)
{
    TChain doc;
    doc.Apply(new TNodePropertiesOp(doc.A, NewProperties()));
    TOperation* op = doc.Stack->GetOperation(doc.Stack->GetNumOperations() - 1);
    const TChunkFileBytes::TEntry entry = SavedChunk(doc.Chunks, op);
    EXPECT_EQ(entry.Version, 1u);
    std::string bounds;
    for (const float value : {0.f, 0.f, 0.f, 1.f, 2.f, 3.f, 0.f, 0.f, 0.f, 4.f, 5.f, 6.f})
        bounds += F32(value);
    EXPECT_EQ(entry.Body, Ref(doc.A) + Padded("Plain") + Padded("Other") + I32(0) + I32(200) + U8(0) + U8(1) +
                              U8(0) + U8(1) + bounds);
    EXPECT_EQ(op->GetSize(), 8 + 8 + 64);
}

TEST(TNodePropertiesOp, AnEmptyNameTakesFourBytes)
{
    TChain doc;
    TNodeProperties properties = NewProperties();
    properties.Name = "";
    doc.Apply(new TNodePropertiesOp(doc.A, properties));
    const std::string body = TopBody(doc);
    EXPECT_EQ(body.size(), 8u + 4 + 64);
    EXPECT_EQ(body.substr(12, 4), std::string(4, '\0'));
}

namespace {

// The file of a chain with a properties operation on top, whose entry is changed before the file is loaded
// again.
struct TLoaded
{
    TChunkFile Chunks;
    TOperationStack* Stack = nullptr;
    std::string Assertion;
    bool Result = false;

    template <class TChange>
    explicit TLoaded(TChange&& change)
    {
        const TTempFolder folder;
        const std::string path = folder.Path("old");
        TChunkFileBytes bytes;
        {
            TChain doc;
            doc.Apply(new TNodePropertiesOp(doc.A, NewProperties()));
            doc.Chunks.Save(path.c_str());
            bytes = TChunkFileBytes::Parse(ReadBytes(path));
        }
        for (TChunkFileBytes::TEntry& entry : bytes.Entries)
            if (entry.NameID == TNodePropertiesOp::NameID())
                change(entry);
        WriteBytes(path, bytes.Join());
        Assertion = AssertionOf([&] { Result = Chunks.Load(path.c_str()); });
        vector<TChunk*> stacks;
        Chunks.GetChunksOfClass(TOperationStack::NameID(), stacks);
        Stack = static_cast<TOperationStack*>(stacks[0]);
    }
};

} // namespace

TEST(TNodePropertiesOp, ABodyOfVersionZeroLoadsWithoutBounds)
{
    TLoaded loaded([](TChunkFileBytes::TEntry& entry) {
        entry.Version = 0;
        entry.Body.resize(entry.Body.size() - 50);
    });
    ASSERT_TRUE(loaded.Result) << loaded.Assertion;
    TOperation* op = loaded.Stack->GetOperation(loaded.Stack->GetNumOperations() - 1);
    const std::string body = SavedChunk(loaded.Chunks, op).Body;
    // Written again it is of version 1: what was missing is false and zero, what stood there is kept.
    EXPECT_EQ(body.substr(body.size() - 50), std::string(50, '\0'));
    EXPECT_EQ(body.substr(body.size() - 52, 2), U8(0) + U8(1));
}

TEST(TNodePropertiesOp, AnEndlessStringAsserts)
{
    TLoaded loaded(
        [](TChunkFileBytes::TEntry& entry) { entry.Body.replace(4, 0, std::string(1024 * 4, 'x')); });
    EXPECT_EQ(loaded.Assertion, "i<1024 : BinaryFile string read overflow");
}

TEST(TNodePropertiesOp, AShortBodyFailsTheLoad)
{
    TLoaded loaded([](TChunkFileBytes::TEntry& entry) { entry.Body.resize(10); });
    EXPECT_FALSE(loaded.Result);
}

TEST(GraphOperations, AHistoryComesBackFromAFileByteForByteAndStillWorks)
{
    const TTempFolder folder;
    const std::string first = folder.Path("first");
    const std::string second = folder.Path("second");
    {
        TPasted doc;
        doc.Apply(new TMoveGraphNodeOp(doc.Nodes({doc.A}), 3, 4));
        doc.Apply(new TChangeGraphEdgeOp(doc.Two, doc.A, 0, doc.C, 1));
        doc.Apply(new TBypassFlagOp(doc.A, true));
        doc.Apply(new TNodePropertiesOp(doc.A, NewProperties()));
        doc.Apply(new TDeleteGraphEdgeOp(doc.One));
        doc.Apply(new TDeleteGraphNodeOp(doc.Nodes({doc.A, doc.B})));
        doc.Undo();
        doc.Undo();
        ASSERT_TRUE(doc.Chunks.Save(first.c_str()));
    }
    TFakeDocument loaded;
    loaded.Chunks.Clear();
    ASSERT_TRUE(loaded.Chunks.Load(first.c_str()));
    ASSERT_TRUE(loaded.Chunks.Save(second.c_str()));
    EXPECT_EQ(ReadBytes(first), ReadBytes(second));

    vector<TChunk*> roots;
    loaded.Chunks.GetChunksOfClass(TOperationStack::NameID(), roots);
    loaded.Chunks.GetChunksOfClass(TEffectGraph::NameID(), roots);
    ASSERT_EQ(roots.size(), 2);
    loaded.Stack = static_cast<TOperationStack*>(roots[0]);
    loaded.Graph = static_cast<TEffectGraph*>(roots[1]);
    EXPECT_TRUE(loaded.Stack->Check());
    while (loaded.Stack->CanRedo())
        loaded.Redo();
    EXPECT_EQ(loaded.Graph->GetNumNodes(), 3);
    EXPECT_EQ(loaded.Graph->GetNumEdges(), 1);
    while (loaded.Stack->CanUndo())
        loaded.Undo();
    EXPECT_EQ(loaded.Graph->GetNumNodes(), 0);
    EXPECT_EQ(loaded.Graph->GetNumEdges(), 0);
}
