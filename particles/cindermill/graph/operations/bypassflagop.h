#pragma once

#include "particles/cindermill/graph/operations/operation.h"

class TToolNode;

// Switches a node off or on. The engine reads the flag on every run, so the preview goes on.
class TBypassFlagOp : public TRegistered<TBypassFlagOp, TOperation>
{
public:
    static constexpr const char* RegisteredName = "TBypassFlagOp";
    TBypassFlagOp() = default;
    TBypassFlagOp(TToolNode* node, bool set);
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override { return 5; }
    void Do(TEditContext& doc) override { Store(doc, Set); }
    void Undo(TEditContext& doc) override { Store(doc, !Set); }
    bool Check() const override { return Node != nullptr; }
    TAdaption AdaptTo(const TRefreshRecord& record) override;
    void GetUsed(vector<TChunk*>& result) const override;

private:
    void Store(TEditContext& doc, bool set);

    TToolNode* Node = nullptr;
    bool Set = false;
};
