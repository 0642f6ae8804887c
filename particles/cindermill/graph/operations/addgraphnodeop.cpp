#include "particles/cindermill/graph/operations/addgraphnodeop.h"

#include "particles/cindermill/graph/operations/editcontext.h"
#include "particles/cindermill/graph/operations/graphsteps.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/graph/operations/toolnode.h"

TAddGraphNodeOp::TAddGraphNodeOp(TEditContext& doc, const TNodeType& nodeType, int x, int y)
    : Node(new TToolNode)
{
    Node->Create(&doc, nodeType, x, y, true);
    Node->RegisterChunks(doc.GetChunks());
}

bool TAddGraphNodeOp::Read(int size, int version, TChunkFile* chunkFile)
{
    (void)size;
    (void)version;
    return chunkFile->ReadPointer(Node);
}

bool TAddGraphNodeOp::Write(TChunkFile* chunkFile)
{
    return chunkFile->WritePointer(Node);
}

bool TAddGraphNodeOp::Fits(const TEffectGraph& graph, bool undo) const
{
    return graph.Has(Node) == undo && IsUnconnected(*Node);
}

void TAddGraphNodeOp::GetMade(vector<TChunk*>& result) const
{
    result.push_back(Node);
}

void TAddGraphNodeOp::Do(TEditContext& doc)
{
    InsertNode(doc, Node);
    doc.RedrawWindows();
}

void TAddGraphNodeOp::Undo(TEditContext& doc)
{
    RemoveNode(doc, Node);
    doc.RedrawWindows();
}

void TAddGraphNodeOp::Discard(TEditContext& doc)
{
    doc.GetListener().NodeGoes(Node);
    Node->UnregisterChunks(doc.GetChunks());
    delete Node;
    Node = nullptr;
}
