#pragma once

#include "particles/cindermill/graph/engine/effectexecnode.h"

// Marks where one group fires another. The exporter finds it by its position in the graph; it computes
// nothing.
class TEventTrigger : public TRegistered<TEventTrigger, TEffectExecNode>
{
public:
    static constexpr const char* RegisteredName = "TEventTrigger";
};
