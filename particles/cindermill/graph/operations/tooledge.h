#pragma once

#include "particles/effectgraph/effectgraph.h"

#include <limits>

class TEditContext;

// An edge of a document.
class TToolEdge : public TRegistered<TToolEdge, TEffectEdge>
{
public:
    static constexpr const char* RegisteredName = "TToolEdge";

    void Connect(TEffectNode* source, int sourcePort, TEffectNode* destination, int destinationPort);
    // Enters the edge at its ends: the source's list and the destination's port.
    void AttachEnds();
    void AttachSource();
    void AttachDestination();
    void DetachEnds();
    // The place in the source's list.
    int DetachSource();
    void DetachDestination();
    // Enters the edge at the place that it had in the source's list, or, for -1, where it stood by the chunks
    // of what had attached the edges of the list.
    void PutBackSource(int place);
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    // Of an edge from a file: the chunk of what attached it to its source, itself or an operation.
    int GetAttaching() const { return Attaching; }
    void SetAttaching(int chunk) { Attaching = chunk; }

private:
    // What is made later is behind all that was in the file.
    int Attaching = std::numeric_limits<int>::max();
};
