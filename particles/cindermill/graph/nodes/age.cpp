#include "particles/cindermill/graph/nodes/age.h"

void TAge::Execute(int index, float dt)
{
    const float age = static_cast<float>(static_cast<double>(LoadScalar(0, index)) + dt);
    const float maximum = LoadScalar(1, index);
    Store(0, index, TPortValue(age));
    if (age > maximum)
        KillParticle(index);
}

void TAge::Export(TExportData& exportData, TErrorList&)
{
    const uint32_t dead = exportData.AllocTempRow();
    exportData.SetCommand("IdUpdateAge", 0);
    exportData.AddInput(0, 0, -1);
    exportData.AddInput(1, 0, -1);
    exportData.AddOutput(0, 0, -1);
    exportData.AddOutputRow(dead);
    exportData.SetCommand("IdPrune", 0);
    exportData.AddInputRow(dead);
}
