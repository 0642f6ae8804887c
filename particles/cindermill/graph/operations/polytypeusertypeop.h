#pragma once

#include "particles/cindermill/graph/operations/operation.h"
#include "particles/effectgraph/polytypeparameter.h"

class TEffectNode;
class TPointerMap;

// Chooses the type of a polytype port, and with it the type of every port that follows it through links and
// wires, as far as it can have it. Ends in a change of the graph.
class TPolytypeUserTypeOp : public TRegistered<TPolytypeUserTypeOp, TOperation>
{
public:
    static constexpr const char* RegisteredName = "TPolytypeUserTypeOp";
    TPolytypeUserTypeOp() = default;
    TPolytypeUserTypeOp(TEffectNode* node, TNodePolytypeParameter* param, int newType);
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override { return 12 + 8 * Parameters.size() + 12 * Outputs.size(); }
    void Do(TEditContext& doc) override;
    void Undo(TEditContext& doc) override;
    bool Check() const override;
    bool Fits(const TEffectGraph& graph, bool undo) const override;
    TAdaption AdaptTo(const TRefreshRecord& record) override;
    void GetUsed(vector<TChunk*>& result) const override;

private:
    struct TParameterRecord
    {
        TNodePolytypeParameter* Parameter = nullptr;
        int OldType = 0;
    };
    struct TOutputRecord
    {
        TEffectNode* Node = nullptr;
        int Port = 0;
        int OldType = 0;
    };

    static void SetOutputType(TEditContext& doc, const TOutputRecord& record, int type);
    void CollectInput(TEffectNode* node, int port, TPointerMap& seen);
    void CollectOutput(TEffectNode* node, int port, TPointerMap& seen);

    vector<TParameterRecord> Parameters;
    vector<TOutputRecord> Outputs;
    int NewType = 0;
};
