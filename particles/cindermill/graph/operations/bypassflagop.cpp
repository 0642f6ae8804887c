#include "particles/cindermill/graph/operations/bypassflagop.h"

#include "particles/cindermill/graph/operations/editcontext.h"
#include "particles/cindermill/graph/operations/graphsteps.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/effectgraph/refreshrecord.h"

TBypassFlagOp::TBypassFlagOp(TToolNode* node, bool set) : Node(node), Set(set)
{
    ASSERT_TEXT(node->GetNodeType()->IsBypassed() != set, "node->GetNodeType()->IsBypassed() != set");
}

bool TBypassFlagOp::Read(int size, int version, TChunkFile* chunkFile)
{
    (void)size;
    (void)version;
    return chunkFile->ReadPointer(Node) && chunkFile->File.ReadBool(Set);
}

bool TBypassFlagOp::Write(TChunkFile* chunkFile)
{
    return chunkFile->WritePointer(Node) && chunkFile->File.WriteBool(Set);
}

void TBypassFlagOp::GetUsed(vector<TChunk*>& result) const
{
    result.push_back(Node);
}

TAdaption TBypassFlagOp::AdaptTo(const TRefreshRecord& record)
{
    return !record.HasNode(Node) || Node->GetNodeType()->HasFlag(FL_BYPASSABLE) ? AD_FITS : AD_LOST;
}

void TBypassFlagOp::Store(TEditContext& doc, bool set)
{
    Node->GetNodeType()->SetFlag(FL_BYPASSED, set);
    doc.GetListener().NodeChanged(Node);
    doc.RedrawWindows();
}
