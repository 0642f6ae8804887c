#pragma once

#include "library/containers/classregistry.h"
#include "library/containers/vector.h"

class TChunkFile;

// The base of every persistent class. A chunk in a chunk file is owned by it.
//
// Every persistent class is registered below TChunk: a file's chunks are made of such classes only.
class TChunk : public TRegistered<TChunk>
{
public:
    static constexpr const char* RegisteredName = "TChunk";

    // Must consume exactly `size` bytes; false fails the load.
    virtual bool Read(int size, int version, TChunkFile* chunkFile) = 0;
    virtual bool Write(TChunkFile* chunkFile) = 0;
    // Exactly the bytes that Write writes.
    virtual int GetSize() = 0;
    virtual int GetVersion() { return 0; }
    // Appends the chunks whose destruction must wait for this one.
    virtual void GetDependencies(vector<TChunk*>& deps) { (void)deps; }

    // Position in the file's chunks, -1 when in none.
    int ChunkIdx = -1;
};
