#include "particles/cindermill/graph/operations/changegraphedgeop.h"

#include "particles/cindermill/graph/operations/editcontext.h"
#include "particles/cindermill/graph/operations/graphsteps.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/effectgraph/refreshrecord.h"

TChangeGraphEdgeOp::TChangeGraphEdgeOp(TToolEdge* edge, TToolNode* newSource, int newSourcePort,
                                       TToolNode* newDestination, int newDestinationPort)
    : Edge(edge)
{
    Ends[OldSource] = TEnd{ToolNode(edge->GetSrcNode()), edge->GetSrcPort()};
    Ends[OldDestination] = TEnd{ToolNode(edge->GetDstNode()), edge->GetDstPort()};
    Ends[NewSource] = TEnd{newSource, newSourcePort};
    Ends[NewDestination] = TEnd{newDestination, newDestinationPort};
}

bool TChangeGraphEdgeOp::Read(int size, int version, TChunkFile* chunkFile)
{
    (void)size;
    (void)version;
    if (!chunkFile->ReadPointer(Edge))
        return false;
    for (TEnd& end : Ends)
        if (!chunkFile->ReadPointer(end.Node) || !chunkFile->File.ReadI32(end.Port))
            return false;
    return true;
}

bool TChangeGraphEdgeOp::Write(TChunkFile* chunkFile)
{
    if (!chunkFile->WritePointer(Edge))
        return false;
    for (const TEnd& end : Ends)
        if (!chunkFile->WritePointer(end.Node) || !chunkFile->File.WriteI32(end.Port))
            return false;
    return true;
}

bool TChangeGraphEdgeOp::Check() const
{
    for (const TEnd& end : Ends)
        if (end.Node == nullptr)
            return false;
    return Edge != nullptr;
}

bool TChangeGraphEdgeOp::Fits(const TEffectGraph& graph, bool undo) const
{
    return undo
               ? FitsMove(graph, Ends[NewSource], Ends[NewDestination], Ends[OldSource], Ends[OldDestination])
               : FitsMove(graph, Ends[OldSource], Ends[OldDestination], Ends[NewSource],
                          Ends[NewDestination]);
}

// An edge that lives on, but was once at a port that is gone, has no place in the states before or after; and
// what else stood at its ports there depends on it.
TAdaption TChangeGraphEdgeOp::AdaptTo(const TRefreshRecord& record)
{
    if (record.IsLost(Edge))
        return AD_LOST;
    Ends[OldSource].Port = record.FindOutput(Ends[OldSource].Node, Ends[OldSource].Port);
    Ends[NewSource].Port = record.FindOutput(Ends[NewSource].Node, Ends[NewSource].Port);
    Ends[OldDestination].Port = record.FindInput(Ends[OldDestination].Node, Ends[OldDestination].Port);
    Ends[NewDestination].Port = record.FindInput(Ends[NewDestination].Node, Ends[NewDestination].Port);
    for (const TEnd& end : Ends)
        if (end.Port == -1)
            return AD_CUTS;
    return AD_FITS;
}

bool TChangeGraphEdgeOp::FitsMove(const TEffectGraph& graph, const TEnd& fromSource,
                                  const TEnd& fromDestination, const TEnd& source,
                                  const TEnd& destination) const
{
    if (!graph.Has(Edge) || Edge->GetSrcNode() != fromSource.Node || Edge->GetSrcPort() != fromSource.Port ||
        Edge->GetDstNode() != fromDestination.Node || Edge->GetDstPort() != fromDestination.Port)
        return false;
    if (!graph.Has(source.Node) || !HasOutput(source.Node, source.Port) || !graph.Has(destination.Node) ||
        !HasInput(destination.Node, destination.Port))
        return false;
    const TEffectEdge* there = destination.Node->GetInput(destination.Port);
    return there == nullptr || there == Edge;
}

void TChangeGraphEdgeOp::GetUsed(vector<TChunk*>& result) const
{
    result.push_back(Edge);
    for (const TEnd& end : Ends)
        result.push_back(end.Node);
}

void TChangeGraphEdgeOp::Recall()
{
    FormerAttaching = Edge->GetAttaching();
    Edge->SetAttaching(ChunkIdx);
}

int TChangeGraphEdgeOp::MoveTo(TEditContext& doc, const TEnd& source, const TEnd& destination,
                               const int* place)
{
    doc.GetListener().EdgeDetached(Edge);
    const int left = Edge->DetachSource();
    Edge->DetachDestination();
    Edge->Connect(source.Node, source.Port, destination.Node, destination.Port);
    if (place == nullptr)
        Edge->AttachSource();
    else
        Edge->PutBackSource(*place);
    Edge->AttachDestination();
    doc.GetListener().EdgeMoved(Edge);
    for (const TEnd& end : Ends)
        doc.GetListener().NodeChanged(end.Node);
    return left;
}

void TChangeGraphEdgeOp::Do(TEditContext& doc)
{
    Former.Places.push_back(MoveTo(doc, Ends[NewSource], Ends[NewDestination], nullptr));
    FinishGraphChange(doc);
}

void TChangeGraphEdgeOp::Undo(TEditContext& doc)
{
    // Also where the place is known: what is put back later, of an operation without places, goes by it.
    if (FormerAttaching != NotRecalled)
        Edge->SetAttaching(FormerAttaching);
    const int place = Former.Places.size() == 1 ? Former.Places[0] : -1;
    MoveTo(doc, Ends[OldSource], Ends[OldDestination], &place);
    FinishGraphChange(doc);
}
