#include "particles/cindermill/graph/nodes/attractor.h"

void TAttractor::Execute(int index, float dt)
{
    const TPortValue position = Load(0, index);
    TPortValue velocity = Load(1, index);
    const TPortValue target = Load(2, index);
    const float strength = LoadScalar(3, index);
    for (int i = 0; i < 3; ++i) {
        const double distance = static_cast<double>(target[i]) - position[i];
        velocity[i] = static_cast<float>(velocity[i] + distance * (static_cast<double>(dt) * strength));
    }
    Store(0, index, velocity);
}

void TAttractor::Export(TExportData& exportData, TErrorList&)
{
    exportData.SetCommand("IdAttractor", 0);
    exportData.AddInput(0, 0, 3);
    exportData.AddInput(1, 0, 3);
    exportData.AddInput(2, 0, 3);
    exportData.AddInput(3, 0, -1);
    exportData.AddOutput(0, 0, 3);
    exportData.PassRest(1, 0, 3);
}
