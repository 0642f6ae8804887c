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

void ShowNode(TEditContext& doc, TToolNode* node)
{
    doc.GetListener().NodeAdded(node);
    node->Added(&doc);
}

void HideNode(TEditContext& doc, TToolNode* node)
{
    doc.DeselectNode(node);
    doc.GetListener().NodeRemoved(node);
    node->Removed(&doc);
}

void InsertNode(TEditContext& doc, TToolNode* node)
{
    doc.GetGraph()->AddNode(node);
    ShowNode(doc, node);
}

void RemoveNode(TEditContext& doc, TToolNode* node)
{
    HideNode(doc, node);
    doc.GetGraph()->RemoveNode(node);
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

namespace {

// Of an edge that was removed.
enum TEdgePlace
{
    EP_GRAPH,
    EP_SOURCE,
    NumEdgePlaces
};

} // namespace

void RemoveEdge(TEditContext& doc, TToolEdge* edge, vector<int>* places)
{
    vector<TEffectEdge*> edges;
    edges.push_back(edge);
    vector<int> told;
    doc.GetListener().EdgeDetached(edge);
    doc.GetGraph()->RemoveEdges(edges, &told);
    doc.GetListener().EdgeRemoved(edge);
    told.push_back(edge->DetachSource());
    edge->DetachDestination();
    TouchEnds(doc, *edge);
    if (places != nullptr)
        *places = told;
}

void PutBackEdge(TEditContext& doc, TToolEdge* edge, const vector<int>& places)
{
    const bool isKnown = places.size() == NumEdgePlaces;
    vector<TEffectEdge*> edges;
    edges.push_back(edge);
    vector<int> inGraph;
    if (isKnown)
        inGraph.push_back(places[EP_GRAPH]);
    doc.GetGraph()->PutBackEdges(edges, inGraph);
    doc.GetListener().EdgeAdded(edge);
    edge->PutBackSource(isKnown ? places[EP_SOURCE] : -1);
    edge->AttachDestination();
    doc.GetListener().EdgeMoved(edge);
    TouchEnds(doc, *edge);
}

bool TSources::Add(const vector<TToolNode*>& nodes)
{
    for (TToolNode* node : nodes)
        for (int i = 0; i < node->GetNumOutputs(); ++i) {
            for (int n = 0; n < node->GetNumOutputEdges(i); ++n)
                if (node->GetOutputEdge(i, n) == nullptr ||
                    !Listed.Insert(node->GetOutputEdge(i, n), Outputs.size()))
                    return false;
            Append(Outputs, TPortRef(node, i));
        }
    return true;
}

bool TSources::Lists(const TEffectEdge& edge) const
{
    const int output = Listed.Find(&edge);
    return output != -1 && Outputs[output] == TPortRef(edge.GetSrcNode(), edge.GetSrcPort());
}

bool HasOutput(const TEffectNode* node, int port)
{
    return node != nullptr && port >= 0 && port < node->GetNumOutputs();
}

bool HasInput(const TEffectNode* node, int port)
{
    return node != nullptr && port >= 0 && port < node->GetNumInputs();
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
            Append(result, node.GetOutputEdge(i, n));
    for (int i = 0; i < node.GetNumInputs(); ++i)
        if (node.GetInput(i) != nullptr)
            Append(result, node.GetInput(i));
}

bool IsUnconnected(const TEffectNode& node)
{
    vector<TEffectEdge*> edges;
    GetEdges(node, edges);
    return edges.empty();
}

bool CanInsertEdge(const TEffectGraph& graph, const TEffectEdge& edge)
{
    return !graph.Has(&edge) && HasOutput(edge.GetSrcNode(), edge.GetSrcPort()) &&
           HasInput(edge.GetDstNode(), edge.GetDstPort()) && graph.Has(edge.GetSrcNode()) &&
           graph.Has(edge.GetDstNode()) && edge.GetDstNode()->GetInput(edge.GetDstPort()) == nullptr;
}
