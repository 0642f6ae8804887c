#include "particles/cindermill/graph/operations/movegraphnodeop.h"

#include "particles/cindermill/graph/operations/editcontext.h"
#include "particles/cindermill/graph/operations/graphsteps.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/graph/operations/toolnode.h"

bool TMoveGraphNodeOp::Read(int size, int version, TChunkFile* chunkFile)
{
    (void)size;
    (void)version;
    return chunkFile->ReadPointers(Nodes) && chunkFile->File.ReadI32(DeltaX) &&
           chunkFile->File.ReadI32(DeltaY);
}

bool TMoveGraphNodeOp::Write(TChunkFile* chunkFile)
{
    return chunkFile->WritePointers(Nodes) && chunkFile->File.WriteI32(DeltaX) &&
           chunkFile->File.WriteI32(DeltaY);
}

bool TMoveGraphNodeOp::Check() const
{
    return !HasNull(Nodes);
}

void TMoveGraphNodeOp::GetUsed(vector<TChunk*>& result) const
{
    AppendAll(Nodes, result);
}

// The opposite of a distance; the smallest one has none but itself.
static int Negated(int distance)
{
    return static_cast<int>(0u - static_cast<unsigned>(distance));
}

void TMoveGraphNodeOp::Do(TEditContext& doc)
{
    for (TToolNode* node : Nodes)
        node->MoveBy(DeltaX, DeltaY);
    doc.RedrawWindows();
}

void TMoveGraphNodeOp::Undo(TEditContext& doc)
{
    for (TToolNode* node : Nodes)
        node->MoveBy(Negated(DeltaX), Negated(DeltaY));
    doc.RedrawWindows();
}
