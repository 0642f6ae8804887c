#pragma once

#include "particles/cindermill/graph/engine/effectexecnode.h"

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
    bool IsActive(float delay, float life) const;
    int CountDue(float rate, float dt, int max);
    int CountByChance(float rate, float dt, int max) const;
    int CountSteady(float rate, float dt);
    int CountBurst(int max);

    const TNodeEnumParameter* EmitMode = nullptr;
    const TNodeIntParameter* MaxEmission = nullptr;
    const TNodeGroupParameter* MaxLifeGroup = nullptr;
    const TNodeScalarParameter* MaxLife = nullptr;
    float Time = 0;
    // Seconds that the emission is ahead; for a burst, whether it is over.
    float Accumulator = 0;
};
