#include "autosavefixture.h"

#include "support/dice.h"
#include "support/randomgraph.h"

#include "particles/cindermill/graph/operations/toolnode.h"

#include <cstdlib>
#include <sstream>

namespace {

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
    // All lists of the graph, by the places of things in the file.
    static std::string Describe(TDocument& document)
    {
        std::ostringstream text;
        const TEffectGraph& graph = *document.GetGraph();
        for (int i = 0; i < graph.GetNumNodes(); ++i) {
            const TEffectNode& node = *graph.GetNode(i);
            text << "node " << node.ChunkIdx << " " << node.GetNodeType()->Name.Print() << "\n";
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
    static void UndoAll(TDocument& document)
    {
        while (document.CanUndo())
            document.Undo();
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
    for (uint32_t seed = 1; seed <= 10; ++seed) {
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
