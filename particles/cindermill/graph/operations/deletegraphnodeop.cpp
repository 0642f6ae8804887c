#include "particles/cindermill/graph/operations/deletegraphnodeop.h"

#include "particles/cindermill/graph/operations/editcontext.h"
#include "particles/cindermill/graph/operations/graphsteps.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/effectgraph/refreshrecord.h"

// The edges of each node, those that leave it first, each once.
TDeleteGraphNodeOp::TDeleteGraphNodeOp(const vector<TToolNode*>& nodes) : Nodes(nodes)
{
    TPointerMap seen;
    for (const TToolNode* node : Nodes) {
        vector<TEffectEdge*> edges;
        GetEdges(*node, edges);
        for (TEffectEdge* edge : edges)
            if (seen.Insert(edge))
                Append(Edges, static_cast<TToolEdge*>(edge));
    }
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

// Whether all edges at the nodes are in the list.
bool TDeleteGraphNodeOp::HoldsEdgesOfNodes() const
{
    TPointerMap listed;
    Enter(Edges, listed);
    for (const TToolNode* node : Nodes) {
        vector<TEffectEdge*> edges;
        GetEdges(*node, edges);
        for (const TEffectEdge* edge : edges)
            if (!listed.Has(edge))
                return false;
    }
    return true;
}

// The list of edges is that of the nodes' ports, no more and no less.
bool TDeleteGraphNodeOp::FitsDo(const TEffectGraph& graph) const
{
    TPointerMap held;
    Enter(Nodes, held);
    for (const TToolNode* node : Nodes)
        if (!graph.Has(node))
            return false;
    for (const TToolEdge* edge : Edges)
        if (!graph.Has(edge) || (!held.Has(edge->GetSrcNode()) && !held.Has(edge->GetDstNode())))
            return false;
    return HoldsEdgesOfNodes();
}

// An edge stands in the ports of the deleted nodes, and can come back to those of the others.
bool TDeleteGraphNodeOp::FitsUndo(const TEffectGraph& graph) const
{
    TSources sources;
    TPointerMap held;
    Enter(Nodes, held);
    if (!sources.Add(Nodes))
        return false;
    for (const TToolNode* node : Nodes)
        if (graph.Has(node))
            return false;
    // The inputs that edges come back to, by their parameters.
    TPointerMap inputs;
    for (const TToolEdge* edge : Edges) {
        const bool holdsSource = held.Has(edge->GetSrcNode());
        const bool holdsDestination = held.Has(edge->GetDstNode());
        if (graph.Has(edge) || (!holdsSource && !holdsDestination))
            return false;
        if (holdsSource
                ? !sources.Lists(*edge)
                : !HasOutput(edge->GetSrcNode(), edge->GetSrcPort()) || !graph.Has(edge->GetSrcNode()))
            return false;
        if (holdsDestination
                ? !IsAtDestination(*edge)
                : !HasInput(edge->GetDstNode(), edge->GetDstPort()) || !graph.Has(edge->GetDstNode()) ||
                      edge->GetDstNode()->GetInput(edge->GetDstPort()) != nullptr)
            return false;
        if (!inputs.Insert(edge->GetDstNode()->GetNodeType()->GetInput(edge->GetDstPort())))
            return false;
    }
    return HoldsEdgesOfNodes();
}

// The nodes can come back without the edges whose ports are gone.
TAdaption TDeleteGraphNodeOp::AdaptTo(const TRefreshRecord& record)
{
    int kept = 0;
    for (TToolEdge* edge : Edges)
        if (!record.IsLost(edge))
            Edges[kept++] = edge;
    Edges.resize(kept);
    return AD_FITS;
}

void TDeleteGraphNodeOp::GetUsed(vector<TChunk*>& result) const
{
    AppendAll(Nodes, result);
    AppendAll(Edges, result);
}

// The places are those of the nodes and of the edges in the graph, and those of the edges in the lists of
// sources that stay, in turn, -1 for the others.
void TDeleteGraphNodeOp::Do(TEditContext& doc)
{
    TPointerMap held;
    Enter(Nodes, held);
    vector<int> atSources;
    for (TToolNode* node : Nodes)
        HideNode(doc, node);
    for (TToolEdge* edge : Edges) {
        doc.GetListener().EdgeRemoved(edge);
        const bool leavesSource = !held.Has(edge->GetSrcNode());
        Append(atSources, leavesSource ? edge->DetachSource() : -1);
        if (leavesSource)
            doc.GetListener().NodeChanged(ToolNode(edge->GetSrcNode()));
        if (!held.Has(edge->GetDstNode())) {
            edge->DetachDestination();
            doc.GetListener().NodeChanged(ToolNode(edge->GetDstNode()));
        }
    }
    vector<int> ofEdges;
    doc.GetGraph()->RemoveNodes(AsVectorOf<TEffectNode>(Nodes), &Former.Places);
    doc.GetGraph()->RemoveEdges(AsVectorOf<TEffectEdge>(Edges), &ofEdges);
    for (const int place : ofEdges)
        Append(Former.Places, place);
    for (const int place : atSources)
        Append(Former.Places, place);
    FinishGraphChange(doc);
}

vector<int> TDeleteGraphNodeOp::GetPlaces(int first, int count) const
{
    vector<int> places;
    if (Former.Places.size() == Nodes.size() + 2 * Edges.size())
        for (int i = first; i < first + count; ++i)
            Append(places, Former.Places[i]);
    return places;
}

// The last one that left a list comes back first, so that each finds the list as it left it.
void TDeleteGraphNodeOp::PutBackSources(const TPointerMap& held)
{
    const vector<int> places = GetPlaces(Nodes.size() + Edges.size(), Edges.size());
    for (int i = Edges.size() - 1; i >= 0; --i)
        if (!held.Has(Edges[i]->GetSrcNode()))
            Edges[i]->PutBackSource(places.empty() ? -1 : places[i]);
}

void TDeleteGraphNodeOp::Undo(TEditContext& doc)
{
    TPointerMap held;
    Enter(Nodes, held);
    for (TToolNode* node : Nodes) {
        node->Attach(&doc);
        ShowNode(doc, node);
    }
    PutBackSources(held);
    for (TToolEdge* edge : Edges) {
        doc.GetListener().EdgeMoved(edge);
        doc.GetListener().EdgeAdded(edge);
        if (!held.Has(edge->GetSrcNode()))
            doc.GetListener().NodeChanged(ToolNode(edge->GetSrcNode()));
        if (!held.Has(edge->GetDstNode())) {
            edge->AttachDestination();
            doc.GetListener().NodeChanged(ToolNode(edge->GetDstNode()));
        }
    }
    doc.GetGraph()->PutBackNodes(AsVectorOf<TEffectNode>(Nodes), GetPlaces(0, Nodes.size()));
    doc.GetGraph()->PutBackEdges(AsVectorOf<TEffectEdge>(Edges), GetPlaces(Nodes.size(), Edges.size()));
    FinishGraphChange(doc);
}
