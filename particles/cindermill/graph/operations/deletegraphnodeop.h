#pragma once

#include "particles/cindermill/graph/operations/operation.h"

class TPointerMap;
class TToolEdge;
class TToolNode;

// Takes nodes out of the graph with all their edges. A deleted node keeps its links to the edges that go with
// it, so that a whole part of a graph comes back in one step.
class TDeleteGraphNodeOp : public TRegistered<TDeleteGraphNodeOp, TOperation>
{
public:
    static constexpr const char* RegisteredName = "TDeleteGraphNodeOp";
    TDeleteGraphNodeOp() = default;
    explicit TDeleteGraphNodeOp(const vector<TToolNode*>& nodes);
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override { return 4 * (Nodes.size() + Edges.size()) + 8; }
    void Do(TEditContext& doc) override;
    void Undo(TEditContext& doc) override;
    bool Check() const override;
    bool Fits(const TEffectGraph& graph, bool undo) const override;
    TAdaption AdaptTo(const TRefreshRecord& record) override;
    void GetUsed(vector<TChunk*>& result) const override;

private:
    bool HoldsEdgesOfNodes() const;
    bool FitsDo(const TEffectGraph& graph) const;
    bool FitsUndo(const TEffectGraph& graph) const;
    // Of those that the operation remembers; none if they are not of these nodes and edges.
    vector<int> GetPlaces(int first, int count) const;
    void PutBackSources(const TPointerMap& held);

    vector<TToolNode*> Nodes;
    vector<TToolEdge*> Edges;
};
