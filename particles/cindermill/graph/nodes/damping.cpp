#include "particles/cindermill/graph/nodes/damping.h"

#include "particles/cindermill/graph/nodes/nodemaths.h"

void TDamping::Execute(int index, float dt)
{
    TPortValue velocity = Load(0, index);
    const float damping = LoadScalar(1, index);
    const float f = static_cast<float>(1.0 - (1.0 - damping) * dt);
    SetVector(velocity, Scaled(GetVector(velocity), f));
    SetVector(velocity, Scaled(GetVector(velocity, 1), f), 1);
    Store(0, index, velocity);
}

void TDamping::Export(TExportData& exportData, TErrorList&)
{
    const bool both = HasBothHalves(exportData, 0);
    exportData.SetCommand("IdDamping", 0);
    AddVectorInput(exportData, 0, both);
    exportData.AddInput(1, 0, -1);
    AddVectorOutput(exportData, 0, both);
    if (!both)
        exportData.PassRest(0, 0, 3);
}
