#pragma once

#include "particles/cindermill/graph/operations/operation.h"

class TToolNode;

class TMoveGraphNodeOp : public TRegistered<TMoveGraphNodeOp, TOperation>
{
public:
    static constexpr const char* RegisteredName = "TMoveGraphNodeOp";
    TMoveGraphNodeOp() = default;
    TMoveGraphNodeOp(const vector<TToolNode*>& nodes, int dx, int dy) : Nodes(nodes), DeltaX(dx), DeltaY(dy)
    {
    }
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override { return 4 * Nodes.size() + 12; }
    void Do(TEditContext& doc) override;
    void Undo(TEditContext& doc) override;
    bool ChangesEffect() const override { return false; }
    // A move by a key is one of many, which may be one step together. Not in the file.
    void MarkByKey() { ByKey = true; }
    bool IsByKey() const { return ByKey; }
    const vector<TToolNode*>& GetNodes() const { return Nodes; }
    bool Check() const override;
    void GetUsed(vector<TChunk*>& result) const override;

private:
    vector<TToolNode*> Nodes;
    int DeltaX = 0;
    int DeltaY = 0;
    bool ByKey = false;
};
