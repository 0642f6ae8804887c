#include "particles/cindermill/interface/graph/graphedits.h"

#include "library/containers/append.h"
#include "particles/cindermill/graph/operations/addgraphedgeop.h"
#include "particles/cindermill/graph/operations/addgraphnodesop.h"
#include "particles/cindermill/graph/operations/bypassflagop.h"
#include "particles/cindermill/graph/operations/gesture.h"
#include "particles/cindermill/graph/operations/movegraphnodeop.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/interface/graph/gridrender.h"
#include "particles/cindermill/interface/graph/wireinsertion.h"
#include "particles/cindermill/main/documentstep.h"
#include "particles/effectgraph/pointermap.h"

namespace {

constexpr int CopyDistance = 2 * TGridRender::Step;

// A wire that comes into a copy from a node that is not copied.
struct TOuterWire
{
    TToolNode* Source;
    int SourcePort;
    TToolNode* Copy;
    int Port;
};

TToolNode* CopyNode(TDocument& document, const TToolNode& node)
{
    TToolNode* copy = new TToolNode;
    copy->Create(&document, *node.GetNodeType(), node.GetX(), node.GetY(), false);
    copy->MoveBy(CopyDistance, CopyDistance);
    return copy;
}

void CopyWires(const vector<TToolNode*>& nodes, const vector<TToolNode*>& copies, vector<TOuterWire>& outer)
{
    TPointerMap places;
    for (int i = 0; i < nodes.size(); ++i)
        places.Insert(nodes[i], i);
    for (int i = 0; i < nodes.size(); ++i)
        for (int port = 0; port < nodes[i]->GetNumInputs(); ++port) {
            const TEffectEdge* edge = nodes[i]->GetInput(port);
            if (edge == nullptr)
                continue;
            const int source = places.Find(edge->GetSrcNode());
            if (source == -1) {
                Append(outer, TOuterWire{static_cast<TToolNode*>(edge->GetSrcNode()), edge->GetSrcPort(),
                                         copies[i], port});
                continue;
            }
            TToolEdge* copy = new TToolEdge;
            copy->Connect(copies[source], edge->GetSrcPort(), copies[i], port);
            copy->AttachEnds();
        }
}

bool CanBypass(const TToolNode& node)
{
    return node.GetNodeType()->HasFlag(FL_BYPASSABLE);
}

// Whether what was done last is a move of the same nodes by a key, and in no file yet.
bool IsInKeyMoves(const TDocument& document, const TOperationStack& stack)
{
    const auto* last = dynamic_cast<const TMoveGraphNodeOp*>(stack.GetRecent());
    if (last == nullptr || !last->IsByKey() || stack.IsAtSavedPosition())
        return false;
    const vector<TToolNode*>& nodes = document.GetSelection();
    bool same = last->GetNodes().size() == nodes.size();
    for (int i = 0; same && i < nodes.size(); ++i)
        same = last->GetNodes()[i] == nodes[i];
    return same;
}

} // namespace

bool MoveSelectionByKey(TDocument& document, int dx, int dy)
{
    if (document.GetSelection().empty())
        return false;
    TOperationStack& stack = *document.GetOperationStack();
    const TGesture gesture(stack, IsInKeyMoves(document, stack) ? TGesture::CONTINUED : TGesture::NEW);
    TMoveGraphNodeOp* move = new TMoveGraphNodeOp(document.GetSelection(), dx, dy);
    move->MarkByKey();
    document.ApplyOperation(move);
    return true;
}

bool DuplicateSelection(TDocument& document)
{
    const vector<TToolNode*> nodes = document.GetSelection();
    if (nodes.empty())
        return false;
    const TDocumentStep step(document);
    vector<TToolNode*> copies;
    for (const TToolNode* node : nodes)
        Append(copies, CopyNode(document, *node));
    vector<TOuterWire> outer;
    CopyWires(nodes, copies, outer);
    document.ClearSelection();
    for (TToolNode* copy : copies)
        document.SelectNode(copy, false);
    document.ApplyOperation(new TAddGraphNodesOp(document, copies));
    for (const TOuterWire& wire : outer)
        document.ApplyOperation(
            new TAddGraphEdgeOp(document, wire.Source, wire.SourcePort, wire.Copy, wire.Port));
    return true;
}

bool CanBypassAny(const vector<TToolNode*>& nodes)
{
    bool any = false;
    for (const TToolNode* node : nodes)
        any = any || CanBypass(*node);
    return any;
}

bool IsAnyWired(const vector<TToolNode*>& nodes)
{
    bool any = false;
    for (const TToolNode* node : nodes)
        any = any || !IsUnwired(*node);
    return any;
}

bool CanReachMore(const vector<TToolNode*>& nodes, TWalkDirection direction)
{
    vector<TEffectNode*> reached;
    for (TToolNode* node : nodes)
        Append(reached, node);
    AddReached(reached, direction);
    return reached.size() > nodes.size();
}

bool BypassSelection(TDocument& document)
{
    if (!CanBypassAny(document.GetSelection()))
        return false;
    bool all = true;
    for (const TToolNode* node : document.GetSelection())
        all = all && (!CanBypass(*node) || node->GetNodeType()->IsBypassed());
    const TDocumentStep step(document);
    for (TToolNode* node : document.GetSelection())
        if (CanBypass(*node) && node->GetNodeType()->IsBypassed() == all)
            document.ApplyOperation(new TBypassFlagOp(node, !all));
    return true;
}

bool TakeSelectionOut(TDocument& document)
{
    if (!IsAnyWired(document.GetSelection()))
        return false;
    const vector<TToolNode*> nodes = document.GetSelection();
    const TDocumentStep step(document);
    for (TToolNode* node : nodes)
        TakeOutOfWires(document, node);
    return true;
}

bool SelectReached(TDocument& document, TWalkDirection direction)
{
    vector<TEffectNode*> nodes;
    for (TToolNode* node : document.GetSelection())
        Append(nodes, node);
    const int before = nodes.size();
    AddReached(nodes, direction);
    for (int i = before; i < nodes.size(); ++i)
        document.SelectNode(static_cast<TToolNode*>(nodes[i]), false);
    return nodes.size() > before;
}
