#pragma once

#include "library/containers/string.h"
#include "library/maths/vector3.h"
#include "particles/cindermill/graph/operations/operation.h"

class TNodeType;
class TToolNode;

// What a person may change of a node besides its parameters.
struct TNodeProperties
{
    TString Name;
    int Priority = 0;
    bool DynamicBounds = false;
    bool StaticBounds = false;
    TVector3 BoundsMin;
    TVector3 BoundsMax;
};

TNodeProperties GetNodeProperties(const TNodeType& type);

class TNodePropertiesOp : public TRegistered<TNodePropertiesOp, TOperation>
{
public:
    static constexpr const char* RegisteredName = "TNodePropertiesOp";
    TNodePropertiesOp() = default;
    TNodePropertiesOp(TToolNode* node, const TNodeProperties& properties);
    int GetVersion() override { return 1; }
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override;
    void Do(TEditContext& doc) override { Store(doc, New); }
    void Undo(TEditContext& doc) override { Store(doc, Old); }
    bool Check() const override;
    void GetUsed(vector<TChunk*>& result) const override;

private:
    void Store(TEditContext& doc, const TNodeProperties& properties);

    TToolNode* Node = nullptr;
    TNodeProperties Old;
    TNodeProperties New;
};
