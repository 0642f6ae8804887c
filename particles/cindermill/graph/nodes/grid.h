#pragma once

#include "particles/cindermill/graph/engine/execloop.h"
#include "particles/cindermill/graph/nodes/particleemitter.h"

class TNodeEnumParameter;
class TNodeIntParameter;

// Emits from the points of a grid in the local x-z plane, at random or one after the other. The console has
// no grid: there, all particles leave from the transform.
class TGrid : public TRegistered<TGrid, TExecLoop<TGrid, 3, 1, TParticleEmitter>>
{
public:
    static constexpr const char* RegisteredName = "TGrid";
    bool Init(TErrorList& errors) override;
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;

private:
    int ChoosePoint(int64_t nx, int64_t ny);

    const TNodeIntParameter* XDivisions = nullptr;
    const TNodeIntParameter* YDivisions = nullptr;
    const TNodeEnumParameter* EmitType = nullptr;
    int NextPoint = 0;
};
