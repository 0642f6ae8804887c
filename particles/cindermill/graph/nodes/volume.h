#pragma once

#include "particles/cindermill/graph/effectexecnode.h"

class TNodeBoolParameter;
class TNodeEnumParameter;

// Whether a point lies in a sphere, a box or a cylinder, or how far outside of it. The console does not know
// it.
class TVolume : public TEffectExecNode
{
public:
    static int ClassId();
    bool Init(TErrorList& errors) override;
    void Execute(int index, float dt) override;

private:
    const TNodeEnumParameter* VolumeType = nullptr;
    const TNodeBoolParameter* OutputDistance = nullptr;
};
