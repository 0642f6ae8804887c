#include "particles/cindermill/graph/nodes/gravity.h"

#include "particles/cindermill/graph/nodes/nodemaths.h"

void TGravity::Execute(int index, float dt)
{
    TPortValue velocity = Load(0, index);
    const TVector3 acceleration = LoadVector(1, index);
    SetVector(velocity, AddScaled(GetVector(velocity), acceleration, dt));
    Store(0, index, velocity);
}

void TGravity::Export(TExportData& exportData, TErrorList&)
{
    ExportIntegration(exportData);
}
