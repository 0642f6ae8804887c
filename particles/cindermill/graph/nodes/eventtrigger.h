#pragma once

#include "particles/cindermill/graph/effectexecnode.h"

// Marks where one group fires another. The exporter finds it by its place in the graph; it computes nothing.
class TEventTrigger : public TEffectExecNode
{
public:
    static int ClassId();
};
