#pragma once

#include "particles/cindermill/graph/engine/execloop.h"
#include "particles/cindermill/graph/nodes/particleemitter.h"

// Emits from one point.
class TPointEmitter : public TRegistered<TPointEmitter, TExecLoop<TPointEmitter, 2, 1, TParticleEmitter>>
{
public:
    static constexpr const char* RegisteredName = "TPointEmitter";
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;
};
