#pragma once

#include "particles/cindermill/graph/engine/particlenode.h"

// The base of the nodes that make particles: input 0 tells how many, input 1 is where they leave from.
class TParticleEmitter : public TParticleNode
{
public:
    void Emit(int instance, float dt) override;
    int CountEmission() const override;

protected:
    // The particles leave from the transform; the console needs no command for it.
    static void ExportTransform(TExportData& exportData);
};
