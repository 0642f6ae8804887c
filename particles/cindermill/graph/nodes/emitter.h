#pragma once

#include "particles/cindermill/graph/engine/effectexecnode.h"
#include "particles/cindermill/graph/nodes/emissionmaths.h"

class TNodeEnumParameter;
class TNodeGroupParameter;
class TNodeIntParameter;
class TNodeScalarParameter;

// The emission trigger: tells how many particles are due in a frame.
class TEmitter : public TRegistered<TEmitter, TEffectExecNode>
{
public:
    static constexpr const char* RegisteredName = "TEmitter";
    bool Init(TErrorList& errors) override;
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;

private:
    float GetLife() const;
    int CountDue(float rate, float dt, int max);

    const TNodeEnumParameter* EmitMode = nullptr;
    const TNodeIntParameter* MaxEmission = nullptr;
    const TNodeGroupParameter* MaxLifeGroup = nullptr;
    const TNodeScalarParameter* MaxLife = nullptr;
    TTriggerClock Clock;
};
