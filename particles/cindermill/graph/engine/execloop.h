#pragma once

#include "particles/cindermill/graph/engine/particlenode.h"

// The loop over particles, made anew for each node class, so that the compiler sees the loop and the class's
// own Execute at once. A class derives from it, with the number of inputs and outputs that its Execute uses,
// and is defined in one source file.
template <class TNode, int NumInputs, int NumOutputs, class TBase = TParticleNode>
class TExecLoop : public TBase
{
protected:
    void FindPorts() final { this->FindFirstPorts(NumInputs, NumOutputs); }
    [[gnu::flatten]] void ExecuteRange(int index, int step, int count, float dt) final
    {
        TNode& node = static_cast<TNode&>(*this);
        for (; count > 0; --count, index += step)
            node.TNode::Execute(index, dt);
    }
};
