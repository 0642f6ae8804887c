#include "particles/cindermill/interface/graph/nodeorder.h"

#include "library/containers/append.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/effectgraph/effectgraph.h"

#include <algorithm>

bool IsReadBefore(const TToolNode& a, const TToolNode& b)
{
    return a.GetX() != b.GetX() ? a.GetX() < b.GetX() : a.GetY() < b.GetY();
}

void ListAsRead(const TEffectGraph& graph, vector<TToolNode*>& nodes)
{
    nodes.reserve(graph.GetNumNodes());
    for (int i = 0; i < graph.GetNumNodes(); ++i)
        Append(nodes, static_cast<TToolNode*>(graph.GetNode(i)));
    std::stable_sort(nodes.begin(), nodes.end(),
                     [](const TToolNode* a, const TToolNode* b) { return IsReadBefore(*a, *b); });
}
