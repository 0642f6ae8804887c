#pragma once

#include "library/system/files/chunkfile.h"

class TEffectNode;

// A wire from an output port to an input port.
class TEffectEdge : public TRegistered<TEffectEdge, TChunk>
{
public:
    static constexpr const char* RegisteredName = "TEffectEdge";
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override { return 16; }

    TEffectNode* GetSrcNode() const { return SrcNode; }
    int GetSrcPort() const { return SrcPort; }
    TEffectNode* GetDstNode() const { return DstNode; }
    int GetDstPort() const { return DstPort; }
    void SetEnds(TEffectNode* srcNode, int srcPort, TEffectNode* dstNode, int dstPort);
    void SetSrcPort(int port) { SrcPort = port; }
    void SetDstPort(int port) { DstPort = port; }

protected:
    TEffectNode* SrcNode = nullptr;
    int SrcPort = 0;
    TEffectNode* DstNode = nullptr;
    int DstPort = 0;
};
