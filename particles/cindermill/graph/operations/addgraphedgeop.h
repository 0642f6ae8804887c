#pragma once

#include "particles/cindermill/graph/operations/operation.h"

class TToolEdge;
class TToolNode;

class TAddGraphEdgeOp : public TRegistered<TAddGraphEdgeOp, TOperation>
{
public:
    static constexpr const char* RegisteredName = "TAddGraphEdgeOp";
    TAddGraphEdgeOp() = default;
    TAddGraphEdgeOp(TEditContext& doc, TToolNode* source, int sourcePort, TToolNode* destination,
                    int destinationPort);
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override { return 4; }
    void Do(TEditContext& doc) override;
    void Undo(TEditContext& doc) override;
    void Discard(TEditContext& doc) override;
    bool Check() const override { return Edge != nullptr; }
    TToolEdge* GetEdge() const { return Edge; }
    bool Fits(const TEffectGraph& graph, bool undo) const override;
    void GetMade(vector<TChunk*>& result) const override;
    void GetUsed(vector<TChunk*>& result) const override;

private:
    TToolEdge* Edge = nullptr;
};
