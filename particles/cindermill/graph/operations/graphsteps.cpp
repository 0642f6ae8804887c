#include "particles/cindermill/graph/operations/graphsteps.h"

#include "particles/cindermill/graph/operations/editcontext.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/graph/operations/toolnode.h"

TToolNode* ToolNode(TEffectNode* node)
{
    return static_cast<TToolNode*>(node);
}

void FinishGraphChange(TEditContext& doc)
{
    doc.GraphChanged();
    doc.RedrawWindows();
}

void InsertNode(TEditContext& doc, TToolNode* node)
{
    doc.GetGraph()->AddNode(node);
    doc.GetListener().NodeAdded(node);
    node->Added(&doc);
}

void RemoveNode(TEditContext& doc, TToolNode* node)
{
    doc.DeselectNode(node);
    doc.GetListener().NodeRemoved(node);
    doc.GetGraph()->RemoveNode(node);
    node->Removed(&doc);
}

static void TouchEnds(TEditContext& doc, const TToolEdge& edge)
{
    doc.GetListener().NodeChanged(ToolNode(edge.GetSrcNode()));
    doc.GetListener().NodeChanged(ToolNode(edge.GetDstNode()));
}

void InsertEdge(TEditContext& doc, TToolEdge* edge)
{
    doc.GetGraph()->AddEdge(edge);
    doc.GetListener().EdgeAdded(edge);
    edge->AttachEnds();
    doc.GetListener().EdgeMoved(edge);
    TouchEnds(doc, *edge);
}

void RemoveEdge(TEditContext& doc, TToolEdge* edge)
{
    doc.GetListener().EdgeDetached(edge);
    doc.GetGraph()->RemoveEdge(edge);
    doc.GetListener().EdgeRemoved(edge);
    edge->DetachEnds();
    TouchEnds(doc, *edge);
}

bool IsIn(const TEffectGraph& graph, const TEffectNode* node)
{
    for (int i = 0; i < graph.GetNumNodes(); ++i)
        if (graph.GetNode(i) == node)
            return true;
    return false;
}

bool IsIn(const TEffectGraph& graph, const TEffectEdge* edge)
{
    for (int i = 0; i < graph.GetNumEdges(); ++i)
        if (graph.GetEdge(i) == edge)
            return true;
    return false;
}

bool HasOutput(const TEffectNode* node, int port)
{
    return node != nullptr && port >= 0 && port < node->GetNumOutputs();
}

bool HasInput(const TEffectNode* node, int port)
{
    return node != nullptr && port >= 0 && port < node->GetNumInputs();
}

bool IsAtSource(const TEffectEdge& edge)
{
    const TEffectNode* node = edge.GetSrcNode();
    if (!HasOutput(node, edge.GetSrcPort()))
        return false;
    int count = 0;
    for (int n = 0; n < node->GetNumOutputEdges(edge.GetSrcPort()); ++n)
        count += node->GetOutputEdge(edge.GetSrcPort(), n) == &edge ? 1 : 0;
    return count == 1;
}

bool IsAtDestination(const TEffectEdge& edge)
{
    return HasInput(edge.GetDstNode(), edge.GetDstPort()) &&
           edge.GetDstNode()->GetInput(edge.GetDstPort()) == &edge;
}

void GetEdges(const TEffectNode& node, vector<TEffectEdge*>& result)
{
    for (int i = 0; i < node.GetNumOutputs(); ++i)
        for (int n = 0; n < node.GetNumOutputEdges(i); ++n)
            result.push_back(node.GetOutputEdge(i, n));
    for (int i = 0; i < node.GetNumInputs(); ++i)
        if (node.GetInput(i) != nullptr)
            result.push_back(node.GetInput(i));
}

bool IsUnconnected(const TEffectNode& node)
{
    vector<TEffectEdge*> edges;
    GetEdges(node, edges);
    return edges.empty();
}

bool CanInsertEdge(const TEffectGraph& graph, const TEffectEdge& edge)
{
    return !IsIn(graph, &edge) && HasOutput(edge.GetSrcNode(), edge.GetSrcPort()) &&
           HasInput(edge.GetDstNode(), edge.GetDstPort()) && IsIn(graph, edge.GetSrcNode()) &&
           IsIn(graph, edge.GetDstNode()) && edge.GetDstNode()->GetInput(edge.GetDstPort()) == nullptr;
}
