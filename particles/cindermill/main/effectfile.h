#pragma once

#include "library/containers/string.h"

#include <cstdint>

class TChunkFile;
class TEffectGraph;
class TLinkMender;
class TOperationStack;

// An effect as it stands in a chunk file, and whether it may be relied on: the one place for what a load
// asks, so that a save asks the same. Each step tells in GetFault why it failed; the steps go in this order.
class TEffectFile
{
public:
    explicit TEffectFile(TChunkFile& chunks) : Chunks(chunks) {}

    bool Load(const char* path);
    bool LoadFromMemory(const vector<uint8_t>& bytes);
    // Without windows an effect needs no history; one of two is none.
    bool FindRoots(bool needStack);
    // A mender, if there is one, gets the links that name nothing.
    bool Check(TLinkMender* mender = nullptr);
    // Edits and views rely on the tool's own classes.
    bool CheckClasses();

    TEffectGraph* GetGraph() const { return Graph; }
    // Null if there is none.
    TOperationStack* GetOperationStack() const { return OperationStack; }
    const TString& GetFault() const { return Fault; }

private:
    template <class TLoad>
    bool LoadBy(const TLoad& load);

    TChunkFile& Chunks;
    TEffectGraph* Graph = nullptr;
    TOperationStack* OperationStack = nullptr;
    TString Fault;
};
