#pragma once

#include "particles/cindermill/graph/operations/operation.h"
#include "particles/effectgraph/rampparameter.h"

class TRampMovePointParamOp : public TRegistered<TRampMovePointParamOp, TOperation>
{
public:
    static constexpr const char* RegisteredName = "TRampMovePointParamOp";
    TRampMovePointParamOp() = default;
    TRampMovePointParamOp(TNodeRampParameter* param, int channel, int point, const TRampPoint& newPoint);
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override { return 28; }
    void Do(TEditContext& doc) override;
    void Undo(TEditContext& doc) override;
    bool Merge(TOperation& previous) override;
    bool Check() const override;
    bool Fits(const TEffectGraph& graph, bool undo) const override;
    void GetUsed(vector<TChunk*>& result) const override { result.push_back(Param); }

private:
    TNodeRampParameter* Param = nullptr;
    int Channel = 0;
    int Point = 0;
    TRampPoint Old;
    TRampPoint New;
};
