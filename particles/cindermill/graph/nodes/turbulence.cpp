#include "particles/cindermill/graph/nodes/turbulence.h"

#include "particles/cindermill/graph/engine/random.h"
#include "particles/cindermill/graph/nodes/nodemaths.h"

namespace {

TClassRandom& GetShared()
{
    static TClassRandom random;
    return random;
}

} // namespace

void TTurbulence::Execute(int index, float dt)
{
    TPortValue velocity = Load(0, index);
    const float strength = LoadScalar(1, index);
    TVector3 direction;
    ChooseRandom(GetShared()).Direction(direction.Component, RandomSteps);
    SetVector(velocity, AddScaled(GetVector(velocity), direction, static_cast<double>(strength) * dt));
    Store(0, index, velocity);
}

void TTurbulence::Export(TExportData& exportData, TErrorList&)
{
    exportData.SetCommand("IdTurbulence", 0);
    exportData.AddInput(0, 0, 3);
    exportData.AddInput(1, 0, -1);
    exportData.AddOutput(0, 0, 3);
    exportData.PassRest(0, 0, 3);
}
