#include "particles/cindermill/graph/operations/historycheck.h"

#include "particles/cindermill/graph/operations/operationstack.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/effectgraph/pointermap.h"

namespace {

class TTailChecker
{
public:
    TTailChecker(const TOperationStack& stack, int first, const TEffectGraph& graph, TChunkFile& chunks);
    bool Check();

private:
    bool EnterFreed();
    void EnterParameter(const TNodeParameter* parameter);
    bool CheckHistory() const;
    bool CheckGraph() const;
    bool CheckNode(const TEffectNode& node) const;
    bool CheckEdge(const TEffectEdge& edge) const;
    bool IsFreed(const void* object) const { return Freed.Has(object); }

    const TOperationStack& Stack;
    int First;
    const TEffectGraph& Graph;
    vector<TChunk*> Nodes;
    vector<TChunk*> Edges;
    TPointerMap Freed;
};

TTailChecker::TTailChecker(const TOperationStack& stack, int first, const TEffectGraph& graph,
                           TChunkFile& chunks)
    : Stack(stack), First(first), Graph(graph)
{
    chunks.GetChunksOfClass(TToolNode::NameID(), Nodes);
    chunks.GetChunksOfClass(TToolEdge::NameID(), Edges);
}

// A node goes with its parameters. Nothing may go twice.
bool TTailChecker::EnterFreed()
{
    for (int i = First; i < Stack.GetNumOperations(); ++i) {
        vector<TChunk*> made;
        Stack.GetOperation(i)->GetMade(made);
        for (const TChunk* chunk : made)
            if (!Freed.Insert(chunk))
                return false;
    }
    for (TChunk* chunk : Nodes) {
        if (!IsFreed(chunk))
            continue;
        const TNodeType* type = static_cast<TToolNode*>(chunk)->GetNodeType();
        for (const TNodeParameter* parameter : type->Parameters)
            EnterParameter(parameter);
        for (const TNodeParameter* input : type->Inputs)
            EnterParameter(input);
    }
    return true;
}

void TTailChecker::EnterParameter(const TNodeParameter* parameter)
{
    Freed.Insert(parameter);
    vector<TNodeParameter*> owned;
    parameter->GetOwned(owned);
    for (const TNodeParameter* inner : owned)
        EnterParameter(inner);
}

bool TTailChecker::CheckHistory() const
{
    for (int i = 0; i < First; ++i) {
        vector<TChunk*> used;
        Stack.GetOperation(i)->GetMade(used);
        Stack.GetOperation(i)->GetUsed(used);
        for (const TChunk* chunk : used)
            if (IsFreed(chunk))
                return false;
    }
    return true;
}

bool TTailChecker::CheckGraph() const
{
    for (int i = 0; i < Graph.GetNumNodes(); ++i)
        if (IsFreed(Graph.GetNode(i)))
            return false;
    for (int i = 0; i < Graph.GetNumEdges(); ++i)
        if (IsFreed(Graph.GetEdge(i)))
            return false;
    return true;
}

// A node that stays holds no edge that goes, and one that goes holds none that stays.
bool TTailChecker::CheckNode(const TEffectNode& node) const
{
    const bool freed = IsFreed(&node);
    for (int i = 0; i < node.GetNumInputs(); ++i)
        if (node.GetInput(i) != nullptr && IsFreed(node.GetInput(i)) != freed)
            return false;
    for (int i = 0; i < node.GetNumOutputs(); ++i)
        for (int n = 0; n < node.GetNumOutputEdges(i); ++n)
            if (IsFreed(node.GetOutputEdge(i, n)) != freed)
                return false;
    return true;
}

bool TTailChecker::CheckEdge(const TEffectEdge& edge) const
{
    return IsFreed(&edge) || (!IsFreed(edge.GetSrcNode()) && !IsFreed(edge.GetDstNode()));
}

bool TTailChecker::Check()
{
    if (!EnterFreed() || !CheckHistory() || !CheckGraph())
        return false;
    for (TChunk* node : Nodes)
        if (!CheckNode(*static_cast<TToolNode*>(node)))
            return false;
    for (TChunk* edge : Edges)
        if (!CheckEdge(*static_cast<TToolEdge*>(edge)))
            return false;
    return true;
}

} // namespace

bool CanFreeTail(const TOperationStack& stack, int first, const TEffectGraph& graph, TChunkFile& chunks)
{
    return TTailChecker(stack, first, graph, chunks).Check();
}
