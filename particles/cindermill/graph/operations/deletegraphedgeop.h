#pragma once

#include "particles/cindermill/graph/operations/operation.h"

class TToolEdge;

class TDeleteGraphEdgeOp : public TRegistered<TDeleteGraphEdgeOp, TOperation>
{
public:
    static constexpr const char* RegisteredName = "TDeleteGraphEdgeOp";
    TDeleteGraphEdgeOp() = default;
    explicit TDeleteGraphEdgeOp(TToolEdge* edge) : Edge(edge) {}
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override { return 4; }
    void Do(TEditContext& doc) override;
    void Undo(TEditContext& doc) override;
    bool Check() const override { return Edge != nullptr; }
    bool Fits(const TEffectGraph& graph, bool undo) const override;
    void GetUsed(vector<TChunk*>& result) const override;

private:
    TToolEdge* Edge = nullptr;
};
