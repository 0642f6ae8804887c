#include "autosavefixture.h"

#include "support/dice.h"
#include "support/randomgraph.h"
#include "support/tellanddie.h"

#include "particles/cindermill/graph/operations/addgraphedgeop.h"
#include "particles/cindermill/graph/operations/changegraphedgeop.h"
#include "particles/cindermill/graph/operations/deletegraphedgeop.h"
#include "particles/cindermill/graph/operations/movegraphnodeop.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/effectgraph/polytypeparameter.h"

#include <sstream>

namespace {

// What a program that is lost tells of its history.
struct TTold
{
    int Position;
    int Count;
    THash Image;
};

// Undo leads back to where an effect was, whatever it held.
class Histories : public Autosaves
{
protected:
    // An effect with much in it and no history.
    std::string MakeFilled(uint32_t seed)
    {
        const std::string path = Path("filled.effect");
        TDocument document(App.Get());
        EXPECT_TRUE(document.New());
        TDice dice(seed);
        TRandomGraph graph(App.Get(), document, dice);
        graph.Build(150);
        document.GetOperationStack()->Clear(document);
        EXPECT_TRUE(document.SaveAs(path.c_str()));
        return path;
    }
    static int UserType(const TEffectNode& node, int input)
    {
        return static_cast<TNodePolytypeParameter*>(node.GetNodeType()->GetInput(input))->GetDefaultType();
    }
    // All lists and types of the graph, by the places of things in the file.
    static std::string Describe(TDocument& document)
    {
        std::ostringstream text;
        const TEffectGraph& graph = *document.GetGraph();
        for (int i = 0; i < graph.GetNumNodes(); ++i) {
            const TEffectNode& node = *graph.GetNode(i);
            text << "node " << node.ChunkIdx << " " << node.GetNodeType()->Name.Print() << "\n";
            for (int p = 0; p < node.GetNumInputs(); ++p)
                if (node.GetNodeType()->GetBasicInputType(p) == TY_POLYTYPE)
                    text << " in " << p << " type " << UserType(node, p) << "\n";
            for (int p = 0; p < node.GetNumOutputs(); ++p) {
                const TOutputPort& output = node.GetNodeType()->GetOutput(p);
                text << " out " << p << " type " << output.DefaultType << ":";
                for (int n = 0; n < node.GetNumOutputEdges(p); ++n)
                    text << " " << node.GetOutputEdge(p, n)->ChunkIdx;
                text << "\n";
            }
        }
        text << "edges";
        for (int i = 0; i < graph.GetNumEdges(); ++i)
            text << " " << graph.GetEdge(i)->ChunkIdx;
        text << "\n";
        return text.str();
    }
    // Without the types.
    static std::string Orders(TDocument& document)
    {
        std::string text = Describe(document);
        for (size_t at = 0; (at = text.find(" type ", at)) != std::string::npos;)
            text.erase(at, 7);
        return text;
    }
    static void UndoAll(TDocument& document)
    {
        while (document.CanUndo())
            document.Undo();
    }
    // Long work on the effect of a file, autosaved meanwhile and lost. All of it is taken back after a
    // recovery.
    void ExpectUndoneAfterALoss(const std::string& path, int edits, uint32_t seed, int leastPosition)
    {
        constexpr uint32_t Milliseconds = 1500;
        const std::string before = ReadBytes(path);
        TTold told = {};
        ASSERT_TRUE(TellAndDie<TTold>(told, [&] {
            Start();
            TDocument& document = Open(path);
            document.ClearEngine();
            TDice dice(seed);
            TRandomGraph graph(App.Get(), document, dice);
            for (int i = 0; i < edits; ++i) {
                Clock.Set(Begin + static_cast<uint32_t>(i) * Milliseconds);
                graph.Edit();
                App.Get().OnIdle();
            }
            EXPECT_EQ(Files().size(), 1u);
            Autosave().SaveModified(App.Get().GetDocuments());
            Autosave().WaitForDisc();
            EXPECT_TRUE(Shown.Messages.empty());
            const TOperationStack& stack = *document.GetOperationStack();
            return TTold{stack.GetPosition(), stack.GetNumOperations(), HashOf(ImageOf(document))};
        }));
        EXPECT_TRUE(ReadBytes(path) == before);
        Start(RA_RESTORE);
        ASSERT_EQ(NumDocuments(), 1);
        TDocument& document = Newest();
        EXPECT_EQ(HashOf(ImageOf(document)), told.Image);
        document.ClearEngine();
        EXPECT_EQ(document.GetOperationStack()->GetNumOperations(), told.Count);
        EXPECT_GT(told.Position, leastPosition);
        int undone = 0;
        for (; document.CanUndo(); ++undone)
            document.Undo();
        EXPECT_EQ(undone, told.Position);
        EXPECT_TRUE(Shown.Messages.empty());
        document.GetOperationStack()->Clear(document);
        EXPECT_TRUE(ImageOf(document) == before);
    }
    // The first lines that differ.
    static std::string Difference(const std::string& a, const std::string& b)
    {
        std::istringstream one(a);
        std::istringstream other(b);
        std::string result;
        std::string first;
        std::string second;
        for (int left = 10; left > 0 && std::getline(one, first) && std::getline(other, second);)
            if (first != second) {
                result += "was " + first + "\nis  " + second + "\n";
                --left;
            }
        return result;
    }
};

} // namespace

TEST_F(Histories, OfAFilledGraphAreUndoneToTheStart)
{
    const uint32_t first = Setting("CINDERMILL_RANDOM_SEED", 1);
    for (uint32_t seed = first; seed < first + 10; ++seed) {
        SCOPED_TRACE(seed);
        const std::string path = MakeFilled(seed);
        TDocument document(App.Get());
        ASSERT_TRUE(document.Load(path.c_str()));
        document.ClearEngine();
        const std::string before = ImageOf(document);
        EXPECT_TRUE(before == ReadBytes(path)) << "loading";
        const std::string told = Describe(document);
        TDice dice(seed + 100);
        TRandomGraph graph(App.Get(), document, dice);
        for (int i = 0; i < 500; ++i)
            graph.Edit();
        UndoAll(document);
        document.GetOperationStack()->Clear(document);
        EXPECT_TRUE(ImageOf(document) == before) << Difference(told, Describe(document));
    }
}

// To each state on the way too, and redo leads forward through the same ones.
TEST_F(Histories, LeadThroughEachStateOnTheWay)
{
    const uint32_t first = Setting("CINDERMILL_RANDOM_SEED", 1);
    for (uint32_t seed = first; seed < first + 10; ++seed) {
        SCOPED_TRACE(seed);
        const std::string path = MakeFilled(seed);
        TDocument document(App.Get());
        ASSERT_TRUE(document.Load(path.c_str()));
        document.ClearEngine();
        TDice dice(seed + 100);
        TRandomGraph graph(App.Get(), document, dice);
        const TOperationStack& stack = *document.GetOperationStack();
        // By the position; those within a step are not known.
        std::vector<std::string> told = {Describe(document)};
        for (int i = 0; i < 400; ++i) {
            graph.Edit();
            told.resize(static_cast<size_t>(stack.GetPosition()) + 1);
            if (!document.CanRedo())
                told.back() = Describe(document);
        }
        told.resize(static_cast<size_t>(stack.GetNumOperations()) + 1);
        const auto isAsThen = [&](TDocument& one) {
            const int position = one.GetOperationStack()->GetPosition();
            const std::string& then = told[static_cast<size_t>(position)];
            const std::string now = Describe(one);
            EXPECT_TRUE(then.empty() || then == now) << "at " << position << "\n" << Difference(then, now);
            return !HasFailure();
        };
        const auto compare = [&] { return isAsThen(document); };
        // After a recovery, whose load settles all types, too.
        const std::string lost = Path("lost.effect");
        ASSERT_TRUE(document.SaveUnchecked(lost.c_str()));
        vector<int> former;
        document.GetFormerStates(former);
        TDocument recovered(App.Get());
        ASSERT_TRUE(recovered.Restore(lost.c_str(), path.c_str(), former));
        recovered.ClearEngine();
        while (recovered.CanUndo()) {
            recovered.Undo();
            ASSERT_TRUE(isAsThen(recovered));
        }
        for (int round = 0; round < 2; ++round) {
            for (; document.CanRedo() && compare(); document.Redo()) {
            }
            for (; document.CanUndo() && compare(); document.Undo()) {
            }
            ASSERT_TRUE(compare());
        }
    }
}

// From a file with its history, everything stands where the chunks of what made it say.
TEST_F(Histories, ComeBackFromTheEffectsFileInOrder)
{
    const uint32_t first = Setting("CINDERMILL_RANDOM_SEED", 1);
    for (uint32_t seed = first; seed < first + 10; ++seed) {
        SCOPED_TRACE(seed);
        const std::string path = Path("history.effect");
        std::vector<std::string> told;
        {
            TDocument document(App.Get());
            ASSERT_TRUE(document.New());
            TDice dice(seed);
            TRandomGraph graph(App.Get(), document, dice);
            for (int i = 0; i < 400; ++i)
                graph.Edit();
            while (document.CanRedo())
                document.Redo();
            ASSERT_TRUE(document.SaveAs(path.c_str()));
            for (; document.CanUndo(); document.Undo())
                told.push_back(Orders(document));
        }
        TDocument document(App.Get());
        ASSERT_TRUE(document.Load(path.c_str()));
        document.ClearEngine();
        for (const std::string& orders : told) {
            ASSERT_EQ(Orders(document), orders);
            document.Undo();
        }
        EXPECT_FALSE(document.CanUndo());
    }
}

// A day's work on an effect that had much in it.
TEST_F(Histories, OfAFilledGraphAreUndoneToTheStartAfterARecovery)
{
    const uint32_t seed = Setting("CINDERMILL_RANDOM_SEED", 3);
    ExpectUndoneAfterALoss(MakeFilled(seed), 3000, seed + 1, 700);
}

// A history as long as an artist's week, from an empty effect on.
TEST_F(Histories, OfTenThousandEditsAreUndoneAfterARecovery)
{
    const std::string path = Path("long.effect");
    {
        TDocument document(App.Get());
        ASSERT_TRUE(document.New());
        ASSERT_TRUE(document.SaveAs(path.c_str()));
    }
    ExpectUndoneAfterALoss(path, 10000, Setting("CINDERMILL_RANDOM_SEED", 8), 2000);
}

// Each recovery goes on where the last one ended.
TEST_F(Histories, AreKeptThroughSeveralRecoveries)
{
    const uint32_t seed = Setting("CINDERMILL_RANDOM_SEED", 5);
    const std::string path = MakeFilled(seed);
    const std::string before = ReadBytes(path);
    for (uint32_t round = 0; round < 4; ++round)
        ASSERT_TRUE(DoAndDie([&] {
            Start(RA_RESTORE);
            TDocument& document = round == 0 ? Open(path) : Newest();
            document.ClearEngine();
            TDice dice(seed + round);
            TRandomGraph graph(App.Get(), document, dice);
            for (int i = 0; i < 200; ++i)
                graph.Edit();
            Autosave().SaveModified(App.Get().GetDocuments());
            Autosave().WaitForDisc();
        }));
    Start(RA_RESTORE);
    ASSERT_EQ(NumDocuments(), 1);
    TDocument& document = Newest();
    document.ClearEngine();
    UndoAll(document);
    document.GetOperationStack()->Clear(document);
    EXPECT_TRUE(ImageOf(document) == before);
}

// An edge that the lost session moved stands, once that is undone, where it stood before: what was deleted
// before that session comes back behind it.
TEST_F(Histories, OfTwoSessionsKeepTheOrderOfEdges)
{
    const std::string path = Path("two.effect");
    {
        TDocument document(App.Get());
        ASSERT_TRUE(document.New());
        TToolNode* source = Add(document, "Emitter");
        for (int i = 0; i < 3; ++i)
            Add(document, "Point Emitter");
        const auto connect = [&](int i) {
            TToolNode* destination = static_cast<TToolNode*>(document.GetGraph()->GetNode(i));
            TAddGraphEdgeOp* op = new TAddGraphEdgeOp(document, source, 0, destination, 0);
            document.ApplyOperation(op);
            return op->GetEdge();
        };
        connect(1);
        document.ApplyOperation(new TDeleteGraphEdgeOp(connect(2)));
        ASSERT_TRUE(document.SaveAs(path.c_str()));
    }
    const std::string lost = Path("lost.effect");
    vector<int> former;
    {
        TDocument document(App.Get());
        ASSERT_TRUE(document.Load(path.c_str()));
        const TEffectGraph& graph = *document.GetGraph();
        document.ApplyOperation(new TChangeGraphEdgeOp(static_cast<TToolEdge*>(graph.GetEdge(0)),
                                                       static_cast<TToolNode*>(graph.GetNode(0)), 0,
                                                       static_cast<TToolNode*>(graph.GetNode(3)), 0));
        ASSERT_TRUE(document.SaveAs(lost.c_str()));
        document.GetFormerStates(former);
    }
    TDocument document(App.Get());
    ASSERT_TRUE(document.Restore(lost.c_str(), path.c_str(), former));
    document.Undo();
    document.Undo();
    const TEffectGraph& graph = *document.GetGraph();
    ASSERT_EQ(graph.GetNode(0)->GetNumOutputEdges(0), 2);
    EXPECT_EQ(graph.GetNode(0)->GetOutputEdge(0, 0)->GetDstNode(), graph.GetNode(1));
    EXPECT_EQ(graph.GetNode(0)->GetOutputEdge(0, 1)->GetDstNode(), graph.GetNode(2));
}

// A type that no effect may hold is not taken from a recovery file either.
TEST_F(Histories, TakeNoTypeThatAFileMayNotHold)
{
    const std::string path = Path("typed.effect");
    vector<int> numbers;
    {
        TDocument document(App.Get());
        ASSERT_TRUE(document.New());
        TToolNode* node = Add(document, "Emitter");
        vector<TToolNode*> nodes;
        nodes.push_back(node);
        document.ApplyOperation(new TMoveGraphNodeOp(nodes, 1, 1));
        ASSERT_TRUE(document.SaveAs(path.c_str()));
        for (const int number : {2, 0, 0, 0, 1, node->ChunkIdx, 0})
            numbers.push_back(number);
    }
    for (const int type : {0, 6, 7}) {
        vector<int> told = numbers;
        told.push_back(type);
        TDocument document(App.Get());
        ASSERT_TRUE(document.Restore(path.c_str(), path.c_str(), told));
        const TOutputPort& output = document.GetGraph()->GetNode(0)->GetNodeType()->GetOutput(0);
        const int before = output.DefaultType;
        document.Undo();
        EXPECT_EQ(output.DefaultType, type < TY_POLYTYPE ? type : before);
        EXPECT_TRUE(document.SaveAs(Path("after.effect").c_str()));
    }
}

// Numbers that are not those of the history change nothing but the order in which things come back.
TEST_F(Histories, BelieveNothingThatDoesNotFit)
{
    const std::string path = MakeFilled(7);
    TDocument document(App.Get());
    ASSERT_TRUE(document.Load(path.c_str()));
    document.ClearEngine();
    TDice dice(Setting("CINDERMILL_RANDOM_SEED", 1));
    TRandomGraph graph(App.Get(), document, dice);
    for (int i = 0; i < 100; ++i)
        graph.Edit();
    ASSERT_TRUE(document.SaveAs(path.c_str()));
    vector<int> former;
    document.GetFormerStates(former);
    ASSERT_GT(former.size(), 100);
    for (int round = 0; round < 300; ++round) {
        SCOPED_TRACE(round);
        vector<int> numbers = former;
        const uint32_t size = static_cast<uint32_t>(numbers.size());
        for (uint32_t left = dice.Below(3); left > 0; --left)
            numbers[static_cast<int>(dice.Below(size))] = static_cast<int>(dice.Below(2000)) - 1000;
        if (dice.Chance(0.2))
            numbers.resize(static_cast<int>(dice.Below(size)));
        TDocument other(App.Get());
        ASSERT_TRUE(other.Restore(path.c_str(), path.c_str(), numbers));
        other.ClearEngine();
        UndoAll(other);
        while (other.CanRedo())
            other.Redo();
        EXPECT_EQ(other.GetGraph()->GetNumNodes(), document.GetGraph()->GetNumNodes());
        EXPECT_TRUE(Shown.Messages.empty());
    }
}
