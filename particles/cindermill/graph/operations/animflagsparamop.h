#pragma once

#include "particles/cindermill/graph/operations/operation.h"
#include "particles/effectgraph/simpleparameters.h"

class TAnimFlagsParamOp : public TRegistered<TAnimFlagsParamOp, TOperation>
{
public:
    static constexpr const char* RegisteredName = "TAnimFlagsParamOp";
    TAnimFlagsParamOp() = default;
    TAnimFlagsParamOp(TNodeAnimationParameter* param, bool position, bool rotation, bool scale);
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override { return 10; }
    void Do(TEditContext& doc) override;
    void Undo(TEditContext& doc) override;
    bool Check() const override { return Param != nullptr; }
    void GetUsed(vector<TChunk*>& result) const override { result.push_back(Param); }

private:
    // Position, rotation, scale.
    static constexpr int NumFlags = 3;

    TNodeAnimationParameter* Param = nullptr;
    bool Old[NumFlags] = {};
    bool New[NumFlags] = {};
};
