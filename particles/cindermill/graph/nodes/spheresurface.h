#pragma once

#include "particles/cindermill/graph/engine/execloop.h"
#include "particles/cindermill/graph/nodes/particleemitter.h"

// Emits from random points of a sphere's surface, outwards.
class TSphereSurface : public TRegistered<TSphereSurface, TExecLoop<TSphereSurface, 3, 2, TParticleEmitter>>
{
public:
    static constexpr const char* RegisteredName = "TSphereSurface";
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;
};
