#include "particles/cindermill/graph/operations/addgraphedgeop.h"

#include "particles/cindermill/graph/operations/editcontext.h"
#include "particles/cindermill/graph/operations/graphsteps.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/graph/operations/toolnode.h"

TAddGraphEdgeOp::TAddGraphEdgeOp(TEditContext& doc, TToolNode* source, int sourcePort, TToolNode* destination,
                                 int destinationPort)
    : Edge(new TToolEdge)
{
    Edge->Connect(source, sourcePort, destination, destinationPort);
    doc.GetChunks().AddChunk(Edge);
}

bool TAddGraphEdgeOp::Read(int size, int version, TChunkFile* chunkFile)
{
    (void)size;
    (void)version;
    return chunkFile->ReadPointer(Edge);
}

bool TAddGraphEdgeOp::Write(TChunkFile* chunkFile)
{
    return chunkFile->WritePointer(Edge);
}

bool TAddGraphEdgeOp::Fits(const TEffectGraph& graph, bool undo) const
{
    return undo ? graph.Has(Edge) : CanInsertEdge(graph, *Edge);
}

void TAddGraphEdgeOp::GetMade(vector<TChunk*>& result) const
{
    result.push_back(Edge);
}

void TAddGraphEdgeOp::GetUsed(vector<TChunk*>& result) const
{
    result.push_back(Edge->GetSrcNode());
    result.push_back(Edge->GetDstNode());
}

void TAddGraphEdgeOp::Do(TEditContext& doc)
{
    InsertEdge(doc, Edge);
    FinishGraphChange(doc);
}

void TAddGraphEdgeOp::Undo(TEditContext& doc)
{
    RemoveEdge(doc, Edge);
    FinishGraphChange(doc);
}

void TAddGraphEdgeOp::Discard(TEditContext& doc)
{
    doc.GetListener().EdgeGoes(Edge);
    doc.GetChunks().RemoveChunk(Edge);
    delete Edge;
    Edge = nullptr;
}
