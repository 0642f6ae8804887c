#pragma once

#include "particles/cindermill/graph/operations/operation.h"
#include "particles/effectgraph/rampparameter.h"

// Replaces the points of one channel.
class TRampChangePointsOp : public TRegistered<TRampChangePointsOp, TOperation>
{
public:
    static constexpr const char* RegisteredName = "TRampChangePointsOp";
    TRampChangePointsOp() = default;
    TRampChangePointsOp(TNodeRampParameter* param, int channel, const vector<TRampPoint>& newPoints);
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override { return 16 + 8 * (Old.size() + New.size()); }
    void Do(TEditContext& doc) override;
    void Undo(TEditContext& doc) override;
    bool Check() const override;
    void GetUsed(vector<TChunk*>& result) const override { result.push_back(Param); }

private:
    TNodeRampParameter* Param = nullptr;
    int Channel = 0;
    vector<TRampPoint> Old;
    vector<TRampPoint> New;
};

// Replaces the points of all four channels, used or not.
class TRampChangeAllPointsOp : public TRegistered<TRampChangeAllPointsOp, TOperation>
{
public:
    static constexpr const char* RegisteredName = "TRampChangeAllPointsOp";
    TRampChangeAllPointsOp() = default;
    TRampChangeAllPointsOp(TNodeRampParameter* param, const vector<TRampPoint>* newLists);
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override;
    void Do(TEditContext& doc) override;
    void Undo(TEditContext& doc) override;
    bool Check() const override { return Param != nullptr; }
    void GetUsed(vector<TChunk*>& result) const override { result.push_back(Param); }

private:
    TNodeRampParameter* Param = nullptr;
    vector<TRampPoint> Old[TNodeRampParameter::MaxDimensions];
    vector<TRampPoint> New[TNodeRampParameter::MaxDimensions];
};
