#include "particles/cindermill/graph/nodes/wind.h"

#include "particles/cindermill/graph/nodes/nodemaths.h"

void TWind::Execute(int index, float dt)
{
    TPortValue velocity = Load(0, index);
    const TVector3 wind = LoadVector(1, index);
    const float strength = LoadScalar(2, index);
    SetVector(velocity, AddScaled(GetVector(velocity), wind, static_cast<double>(strength) * dt));
    Store(0, index, velocity);
}

void TWind::Export(TExportData& exportData, TErrorList&)
{
    exportData.SetCommand("IdWind", 0);
    exportData.AddInput(0, 0, 3);
    exportData.AddInput(1, 0, 3);
    exportData.AddInput(2, 0, -1);
    exportData.AddOutput(0, 0, 3);
    exportData.PassRest(0, 0, 3);
}
