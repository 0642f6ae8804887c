#include "particles/cindermill/graph/operations/deletegraphnodeop.h"

#include "particles/cindermill/graph/operations/editcontext.h"
#include "particles/cindermill/graph/operations/graphsteps.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/effectgraph/refreshrecord.h"

TDeleteGraphNodeOp::TDeleteGraphNodeOp(const vector<TToolNode*>& nodes) : Nodes(nodes)
{
    for (TToolNode* node : Nodes) {
        for (int i = 0; i < node->GetNumOutputs(); ++i)
            for (int n = 0; n < node->GetNumOutputEdges(i); ++n)
                GatherEdge(node->GetOutputEdge(i, n));
        for (int i = 0; i < node->GetNumInputs(); ++i)
            if (node->GetInput(i) != nullptr)
                GatherEdge(node->GetInput(i));
    }
}

void TDeleteGraphNodeOp::GatherEdge(TEffectEdge* edge)
{
    TToolEdge* toolEdge = static_cast<TToolEdge*>(edge);
    if (Edges.find(toolEdge) == Edges.end())
        Edges.push_back(toolEdge);
}

bool TDeleteGraphNodeOp::Holds(const TEffectNode* node) const
{
    for (const TToolNode* held : Nodes)
        if (held == node)
            return true;
    return false;
}

bool TDeleteGraphNodeOp::Read(int size, int version, TChunkFile* chunkFile)
{
    (void)size;
    (void)version;
    return chunkFile->ReadPointers(Nodes) && chunkFile->ReadPointers(Edges);
}

bool TDeleteGraphNodeOp::Write(TChunkFile* chunkFile)
{
    return chunkFile->WritePointers(Nodes) && chunkFile->WritePointers(Edges);
}

bool TDeleteGraphNodeOp::Check() const
{
    return !HasNull(Nodes) && !HasNull(Edges) && !HasTwice(Nodes) && !HasTwice(Edges);
}

bool TDeleteGraphNodeOp::Fits(const TEffectGraph& graph, bool undo) const
{
    return undo ? FitsUndo(graph) : FitsDo(graph);
}

// The list of edges is that of the nodes' ports, no more and no less.
bool TDeleteGraphNodeOp::FitsDo(const TEffectGraph& graph) const
{
    for (const TToolNode* node : Nodes) {
        vector<TEffectEdge*> edges;
        GetEdges(*node, edges);
        if (!IsIn(graph, node))
            return false;
        for (TEffectEdge* edge : edges)
            if (Edges.index_of(static_cast<TToolEdge*>(edge)) == -1)
                return false;
    }
    for (const TToolEdge* edge : Edges)
        if (!IsIn(graph, edge) || (!Holds(edge->GetSrcNode()) && !Holds(edge->GetDstNode())))
            return false;
    return true;
}

// An edge stands in the ports of the deleted nodes, and can come back to those of the others.
bool TDeleteGraphNodeOp::FitsUndo(const TEffectGraph& graph) const
{
    for (const TToolNode* node : Nodes) {
        vector<TEffectEdge*> edges;
        GetEdges(*node, edges);
        if (IsIn(graph, node))
            return false;
        for (TEffectEdge* edge : edges)
            if (Edges.index_of(static_cast<TToolEdge*>(edge)) == -1)
                return false;
    }
    for (int i = 0; i < Edges.size(); ++i) {
        const TToolEdge* edge = Edges[i];
        const bool holdsSource = Holds(edge->GetSrcNode());
        const bool holdsDestination = Holds(edge->GetDstNode());
        if (IsIn(graph, edge) || (!holdsSource && !holdsDestination))
            return false;
        if (holdsSource
                ? !IsAtSource(*edge)
                : !HasOutput(edge->GetSrcNode(), edge->GetSrcPort()) || !IsIn(graph, edge->GetSrcNode()))
            return false;
        if (holdsDestination
                ? !IsAtDestination(*edge)
                : !HasInput(edge->GetDstNode(), edge->GetDstPort()) || !IsIn(graph, edge->GetDstNode()) ||
                      edge->GetDstNode()->GetInput(edge->GetDstPort()) != nullptr)
            return false;
        for (int k = 0; k < i; ++k)
            if (Edges[k]->GetDstNode() == edge->GetDstNode() && Edges[k]->GetDstPort() == edge->GetDstPort())
                return false;
    }
    return true;
}

// The nodes can come back without the edges whose ports are gone.
TAdaption TDeleteGraphNodeOp::AdaptTo(const TRefreshRecord& record)
{
    for (int i = Edges.size() - 1; i >= 0; --i)
        if (record.IsLost(Edges[i]))
            Edges.erase(Edges.begin() + i);
    return AD_FITS;
}

void TDeleteGraphNodeOp::GetUsed(vector<TChunk*>& result) const
{
    AppendAll(Nodes, result);
    AppendAll(Edges, result);
}

void TDeleteGraphNodeOp::Do(TEditContext& doc)
{
    for (TToolNode* node : Nodes)
        RemoveNode(doc, node);
    for (TToolEdge* edge : Edges) {
        doc.GetListener().EdgeRemoved(edge);
        doc.GetGraph()->RemoveEdge(edge);
        if (!Holds(edge->GetSrcNode())) {
            edge->DetachSource();
            doc.GetListener().NodeChanged(ToolNode(edge->GetSrcNode()));
        }
        if (!Holds(edge->GetDstNode())) {
            edge->DetachDestination();
            doc.GetListener().NodeChanged(ToolNode(edge->GetDstNode()));
        }
    }
    FinishGraphChange(doc);
}

void TDeleteGraphNodeOp::Undo(TEditContext& doc)
{
    for (TToolNode* node : Nodes) {
        node->Attach(&doc);
        doc.GetListener().NodeAdded(node);
        doc.GetGraph()->AddNode(node);
        node->Added(&doc);
    }
    for (TToolEdge* edge : Edges) {
        doc.GetListener().EdgeMoved(edge);
        doc.GetListener().EdgeAdded(edge);
        doc.GetGraph()->AddEdge(edge);
        if (!Holds(edge->GetSrcNode())) {
            edge->AttachSource();
            doc.GetListener().NodeChanged(ToolNode(edge->GetSrcNode()));
        }
        if (!Holds(edge->GetDstNode())) {
            edge->AttachDestination();
            doc.GetListener().NodeChanged(ToolNode(edge->GetDstNode()));
        }
    }
    FinishGraphChange(doc);
}
