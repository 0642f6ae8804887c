#include "particles/cindermill/main/clipboard.h"

#include "library/containers/append.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/effectgraph/pointermap.h"

TClipboard::TClipboard() = default;

TClipboard::~TClipboard() = default;

void TClipboard::Clear()
{
    Nodes.clear();
    Edges.clear();
}

void TClipboard::Copy(const vector<TToolNode*>& nodes)
{
    Clear();
    TPointerMap places;
    for (const TToolNode* node : nodes) {
        places.Insert(node, Nodes.size());
        TToolNode* copy = new TToolNode;
        copy->Create(nullptr, *node->GetNodeType(), node->GetX(), node->GetY(), false);
        Nodes.push_back(copy);
    }
    for (int dst = 0; dst < nodes.size(); ++dst) {
        for (int port = 0; port < nodes[dst]->GetNumInputs(); ++port) {
            const TEffectEdge* edge = nodes[dst]->GetInput(port);
            if (edge == nullptr)
                continue;
            const int src = places.Find(edge->GetSrcNode());
            if (src != -1)
                Append(Edges, TEdge{src, edge->GetSrcPort(), dst, port});
        }
    }
}
