#pragma once

#include "particles/effectgraph/effectnode.h"

constexpr float UnboundedLifeTime = -1;

// Seconds for which the node can matter to a particle, or UnboundedLifeTime; 0 for a node that sets no limit.
float GetNodeLifeTime(const TEffectNode* node);
