#pragma once

#include "particles/cindermill/graph/operations/operation.h"

class TNodeType;
class TToolNode;

// Adds a node of a type, new and centred on a point. Nothing can depend on it yet, so the preview goes on.
class TAddGraphNodeOp : public TRegistered<TAddGraphNodeOp, TOperation>
{
public:
    static constexpr const char* RegisteredName = "TAddGraphNodeOp";
    TAddGraphNodeOp() = default;
    TAddGraphNodeOp(TEditContext& doc, const TNodeType& nodeType, int x, int y);
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override { return 4; }
    void Do(TEditContext& doc) override;
    void Undo(TEditContext& doc) override;
    void Discard(TEditContext& doc) override;
    bool Check() const override { return Node != nullptr; }
    TToolNode* GetNode() const { return Node; }
    bool Fits(const TEffectGraph& graph, bool undo) const override;
    void GetMade(vector<TChunk*>& result) const override;

private:
    TToolNode* Node = nullptr;
};
