#pragma once

#include "particles/cindermill/graph/operations/operation.h"

class TToolEdge;
class TToolNode;

// Moves the ends of an edge.
class TChangeGraphEdgeOp : public TRegistered<TChangeGraphEdgeOp, TOperation>
{
public:
    static constexpr const char* RegisteredName = "TChangeGraphEdgeOp";
    TChangeGraphEdgeOp() = default;
    TChangeGraphEdgeOp(TToolEdge* edge, TToolNode* newSource, int newSourcePort, TToolNode* newDestination,
                       int newDestinationPort);
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override { return 36; }
    void Do(TEditContext& doc) override;
    void Undo(TEditContext& doc) override;
    bool Check() const override;
    bool Fits(const TEffectGraph& graph, bool undo) const override;
    TAdaption AdaptTo(const TRefreshRecord& record) override;
    void GetUsed(vector<TChunk*>& result) const override;
    void Recall() override;

private:
    struct TEnd
    {
        TToolNode* Node = nullptr;
        int Port = 0;
    };

    // In the order of the chunk body.
    enum
    {
        OldSource,
        OldDestination,
        NewSource,
        NewDestination,
        NumEnds
    };

    // Where the edge stood in the list of the source that it leaves; `place` is null for the end of that of
    // the one that it comes to.
    int MoveTo(TEditContext& doc, const TEnd& source, const TEnd& destination, const int* place);
    bool FitsMove(const TEffectGraph& graph, const TEnd& fromSource, const TEnd& fromDestination,
                  const TEnd& source, const TEnd& destination) const;

    TToolEdge* Edge = nullptr;
    TEnd Ends[NumEnds];
    static constexpr int NotRecalled = -1;

    // See TToolEdge: before this operation, if it came from a file done.
    int FormerAttaching = NotRecalled;
};
