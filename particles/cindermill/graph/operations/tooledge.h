#pragma once

#include "particles/effectgraph/effectgraph.h"

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
    void DetachSource();
    void DetachDestination();
};
