#include "particles/cindermill/graph/operations/deletegraphedgeop.h"

#include "particles/cindermill/graph/operations/editcontext.h"
#include "particles/cindermill/graph/operations/graphsteps.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/graph/operations/toolnode.h"

bool TDeleteGraphEdgeOp::Read(int size, int version, TChunkFile* chunkFile)
{
    (void)size;
    (void)version;
    return chunkFile->ReadPointer(Edge);
}

bool TDeleteGraphEdgeOp::Write(TChunkFile* chunkFile)
{
    return chunkFile->WritePointer(Edge);
}

bool TDeleteGraphEdgeOp::Fits(const TEffectGraph& graph, bool undo) const
{
    return undo ? CanInsertEdge(graph, *Edge) : graph.Has(Edge);
}

void TDeleteGraphEdgeOp::GetUsed(vector<TChunk*>& result) const
{
    result.push_back(Edge);
    result.push_back(Edge->GetSrcNode());
    result.push_back(Edge->GetDstNode());
}

void TDeleteGraphEdgeOp::Do(TEditContext& doc)
{
    RemoveEdge(doc, Edge, &Former.Places);
    FinishGraphChange(doc);
}

void TDeleteGraphEdgeOp::Undo(TEditContext& doc)
{
    PutBackEdge(doc, Edge, Former.Places);
    FinishGraphChange(doc);
}
