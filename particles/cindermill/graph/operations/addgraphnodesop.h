#pragma once

#include "particles/cindermill/graph/operations/operation.h"

class TEffectEdge;
class TToolNode;

// Adds the nodes that a paste made, with the edges between them.
class TAddGraphNodesOp : public TRegistered<TAddGraphNodesOp, TOperation>
{
public:
    static constexpr const char* RegisteredName = "TAddGraphNodesOp";
    TAddGraphNodesOp() = default;
    TAddGraphNodesOp(TEditContext& doc, const vector<TToolNode*>& nodes);
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override { return 4 * Nodes.size() + 4; }
    void Do(TEditContext& doc) override;
    void Undo(TEditContext& doc) override;
    void Discard(TEditContext& doc) override;
    bool Check() const override;
    bool Fits(const TEffectGraph& graph, bool undo) const override;
    void GetMade(vector<TChunk*>& result) const override;

private:
    // The edges at the nodes' inputs.
    vector<TEffectEdge*> GetEntering() const;

    vector<TToolNode*> Nodes;
};
