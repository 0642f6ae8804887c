#pragma once

#include "library/containers/string.h"
#include "library/containers/vector.h"

class TEffectGraph;
class TEffectNode;
class TErrorList;

// What keeps an effect from running.
struct TProblem
{
    TString Text;
    // The text without the node's name before it, which may change.
    TString Message;
    // The node to look at; null if none is known. It may have left the graph since, or gone.
    const TEffectNode* Node = nullptr;
    // Of the graph as such; others are of the engine, which is made of a graph that has none of these.
    bool OfGraph = false;
};

// The problems of a document, from the attempt to run it that met them until they are mended.
class TDocumentProblems
{
public:
    // What an attempt came to; where it was the graph that failed, nodes whose required inputs are not wired
    // are named too.
    void Take(const TEffectGraph& graph, const TErrorList& errors, bool ofGraph);
    // The graph has changed, and nothing was run: what is mended goes. Costs an analysis of the graph, if
    // there are problems. True if anything is another now.
    bool Review(const TEffectGraph& graph);

    bool empty() const { return Problems.empty(); }
    int size() const { return Problems.size(); }
    const TProblem& operator[](int i) const { return Problems[i]; }
    // "" for a node without problems.
    void GetText(const TEffectNode* node, TString& text) const;

private:
    void TakeErrors(const TEffectGraph& graph, const TErrorList& errors, bool ofGraph);
    void AddUnwired(const TEffectGraph& graph);
    bool IsSame(const vector<TProblem>& other) const;

    vector<TProblem> Problems;
};
