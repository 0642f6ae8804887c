#pragma once

#include "particles/cindermill/graph/engine/execloop.h"

class TNodeGroupParameter;
class TNodeIntParameter;

// Value noise on a lattice of integer points, the same for the same seed. The console does not know it.
class TNoise : public TRegistered<TNoise, TExecLoop<TNoise, 2, 1>>
{
public:
    static constexpr const char* RegisteredName = "TNoise";
    bool Init(TErrorList& errors) override;
    void Execute(int index, float dt) override;

protected:
    void BeginRun() override;

private:
    const TNodeGroupParameter* FixedSeedGroup = nullptr;
    const TNodeIntParameter* RandomSeed = nullptr;
    uint32_t Seed = 0;
    // The fixed seed where there is one.
    uint32_t RunSeed = 0;
    int Components = 0;
};
