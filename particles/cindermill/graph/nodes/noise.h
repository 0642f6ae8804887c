#pragma once

#include "particles/cindermill/graph/effectexecnode.h"

class TNodeGroupParameter;
class TNodeIntParameter;

// Value noise on a lattice of integer points, the same for the same seed. The console does not know it.
class TNoise : public TEffectExecNode
{
public:
    static int ClassId();
    bool Init(TErrorList& errors) override;
    void Execute(int index, float dt) override;

private:
    const TNodeGroupParameter* FixedSeedGroup = nullptr;
    const TNodeIntParameter* RandomSeed = nullptr;
    uint32_t Seed = 0;
    int Components = 0;
};
