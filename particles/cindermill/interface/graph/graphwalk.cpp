#include "particles/cindermill/interface/graph/graphwalk.h"

#include "library/containers/append.h"
#include "particles/effectgraph/effectnode.h"
#include "particles/effectgraph/pointermap.h"

namespace {

void AddNeighbours(const TEffectNode& node, TWalkDirection direction, vector<TEffectNode*>& result)
{
    if (direction == WD_UPSTREAM) {
        for (int i = 0; i < node.GetNumInputs(); ++i)
            if (node.GetInput(i) != nullptr)
                Append(result, node.GetInput(i)->GetSrcNode());
        return;
    }
    for (int i = 0; i < node.GetNumOutputs(); ++i)
        for (int n = 0; n < node.GetNumOutputEdges(i); ++n)
            Append(result, node.GetOutputEdge(i, n)->GetDstNode());
}

} // namespace

void AddReached(vector<TEffectNode*>& nodes, TWalkDirection direction)
{
    TPointerMap reached;
    for (const TEffectNode* node : nodes)
        reached.Insert(node);
    for (int i = 0; i < nodes.size(); ++i) {
        vector<TEffectNode*> neighbours;
        AddNeighbours(*nodes[i], direction, neighbours);
        for (TEffectNode* neighbour : neighbours)
            if (reached.Insert(neighbour))
                Append(nodes, neighbour);
    }
}

bool IsUpstream(TEffectNode& upper, TEffectNode& lower)
{
    vector<TEffectNode*> nodes;
    Append(nodes, &lower);
    AddReached(nodes, WD_UPSTREAM);
    return &upper != &lower && nodes.index_of(&upper) != -1;
}
