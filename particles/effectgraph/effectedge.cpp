#include "particles/effectgraph/effectedge.h"

#include "particles/effectgraph/effectnode.h"

bool TEffectEdge::Read(int, int, TChunkFile* chunkFile)
{
    return chunkFile->ReadPointer(SrcNode) && chunkFile->File.ReadI32(SrcPort) &&
           chunkFile->ReadPointer(DstNode) && chunkFile->File.ReadI32(DstPort);
}

bool TEffectEdge::Write(TChunkFile* chunkFile)
{
    return chunkFile->WritePointer(SrcNode) && chunkFile->File.WriteI32(SrcPort) &&
           chunkFile->WritePointer(DstNode) && chunkFile->File.WriteI32(DstPort);
}

void TEffectEdge::SetEnds(TEffectNode* srcNode, int srcPort, TEffectNode* dstNode, int dstPort)
{
    SrcNode = srcNode;
    SrcPort = srcPort;
    DstNode = dstNode;
    DstPort = dstPort;
}
