#include "particles/cindermill/main/clipboard.h"

#include "library/containers/append.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/effectgraph/pointermap.h"

TClipboard::TClipboard() = default;

TClipboard::~TClipboard() = default;

void TClipboard::Clear()
{
    Nodes.clear();
    Edges.clear();
}

void TClipboard::CopyNode(const TToolNode& node)
{
    TToolNode* copy = new TToolNode;
    Nodes.push_back(copy);
    copy->Create(nullptr, *node.GetNodeType(), node.GetX(), node.GetY(), false);
}

void TClipboard::Copy(const vector<TToolNode*>& nodes)
{
    Clear();
    TPointerMap places;
    for (const TToolNode* node : nodes) {
        places.Insert(node, Nodes.size());
        CopyNode(*node);
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

void TClipboard::Take(const TEffectGraph& graph)
{
    Clear();
    TPointerMap places;
    for (int i = 0; i < graph.GetNumNodes(); ++i) {
        places.Insert(graph.GetNode(i), i);
        CopyNode(static_cast<const TToolNode&>(*graph.GetNode(i)));
    }
    for (int src = 0; src < graph.GetNumNodes(); ++src) {
        const TEffectNode& node = *graph.GetNode(src);
        for (int port = 0; port < node.GetNumOutputs(); ++port)
            for (int n = 0; n < node.GetNumOutputEdges(port); ++n) {
                const TEffectEdge* edge = node.GetOutputEdge(port, n);
                Append(Edges, TEdge{src, port, places.Find(edge->GetDstNode()), edge->GetDstPort()});
            }
    }
}

void TClipboard::MoveBy(int x, int y)
{
    for (TToolNode* node : Nodes.Get())
        node->MoveBy(x, y);
}

void TClipboard::MakeCopies(TEditContext* document, vector<TToolNode*>& nodes,
                            vector<TToolEdge*>& edges) const
{
    for (const TToolNode* source : Nodes.Get()) {
        TToolNode* node = new TToolNode;
        node->Create(document, *source->GetNodeType(), source->GetX(), source->GetY(), false);
        Append(nodes, node);
    }
    for (const TEdge& record : Edges) {
        TToolEdge* edge = new TToolEdge;
        edge->Connect(nodes[record.SrcNode], record.SrcPort, nodes[record.DstNode], record.DstPort);
        edge->AttachEnds();
        Append(edges, edge);
    }
}
