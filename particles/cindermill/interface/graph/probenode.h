#pragma once

#include "particles/effectgraph/effectnode.h"

// A node that stands for all new ones of a type: it refers to the type itself, and is in no graph. For asking
// what could be wired to it.
class TProbeNode
{
public:
    explicit TProbeNode(const TNodeType& type)
    {
        // Nothing is changed by asking.
        Node.SetNodeType(const_cast<TNodeType*>(&type));
        Node.SetPortCounts(type.GetNumInputs(), type.GetNumOutputs());
    }
    ~TProbeNode() { Node.SetNodeType(nullptr); }
    TProbeNode(const TProbeNode&) = delete;
    TProbeNode& operator=(const TProbeNode&) = delete;
    TEffectNode& Get() { return Node; }

private:
    TEffectNode Node;
};
