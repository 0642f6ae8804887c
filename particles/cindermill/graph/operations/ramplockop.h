#pragma once

#include "particles/cindermill/graph/operations/operation.h"
#include "particles/effectgraph/rampparameter.h"

// Lets channels of a ramp follow others.
class TRampLockOp : public TRegistered<TRampLockOp, TOperation>
{
public:
    static constexpr const char* RegisteredName = "TRampLockOp";
    TRampLockOp() = default;
    // One lock for each of the ramp's dimensions.
    TRampLockOp(TNodeRampParameter* param, const int* newlocks);
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override { return 36; }
    void Do(TEditContext& doc) override;
    void Undo(TEditContext& doc) override;
    bool Check() const override;
    void GetUsed(vector<TChunk*>& result) const override { result.push_back(Param); }

private:
    TNodeRampParameter* Param = nullptr;
    int New[TNodeRampParameter::MaxDimensions] = {-1, -1, -1, -1};
    int Old[TNodeRampParameter::MaxDimensions] = {-1, -1, -1, -1};
};
