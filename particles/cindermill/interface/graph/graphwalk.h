#pragma once

#include "library/containers/vector.h"

class TEffectNode;

enum TWalkDirection
{
    WD_UPSTREAM,
    WD_DOWNSTREAM
};

// Adds the nodes that are reached from those in the list along the wires, or against them.
void AddReached(vector<TEffectNode*>& nodes, TWalkDirection direction);
// Whether a walk from the second node against the wires meets the first.
bool IsUpstream(TEffectNode& upper, TEffectNode& lower);
