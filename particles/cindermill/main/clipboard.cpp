#include "particles/cindermill/main/clipboard.h"

#include "particles/cindermill/graph/operations/toolnode.h"

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
    for (const TToolNode* node : nodes) {
        TToolNode* copy = new TToolNode;
        copy->Create(nullptr, *node->GetNodeType(), node->GetX(), node->GetY(), false);
        Nodes.push_back(copy);
    }
    for (int dst = 0; dst < nodes.size(); ++dst) {
        for (int port = 0; port < nodes[dst]->GetNumInputs(); ++port) {
            const TEffectEdge* edge = nodes[dst]->GetInput(port);
            if (edge == nullptr)
                continue;
            const int src = nodes.index_of(static_cast<TToolNode*>(edge->GetSrcNode()));
            if (src != -1)
                Edges.push_back(TEdge{src, edge->GetSrcPort(), dst, port});
        }
    }
}
