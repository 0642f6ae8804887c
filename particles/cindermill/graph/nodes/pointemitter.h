#pragma once

#include "particles/cindermill/graph/execloop.h"
#include "particles/cindermill/graph/nodes/particleemitter.h"

// Emits from one point.
class TPointEmitter : public TExecLoop<TPointEmitter, 2, 1, TParticleEmitter>
{
public:
    static int ClassId();
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;
};
