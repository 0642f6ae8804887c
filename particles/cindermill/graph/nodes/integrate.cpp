#include "particles/cindermill/graph/nodes/integrate.h"

#include "particles/cindermill/graph/nodes/nodemaths.h"

void TIntegrate::Execute(int index, float dt)
{
    TPortValue position = Load(0, index);
    const TPortValue velocity = Load(1, index);
    SetVector(position, AddScaled(GetVector(position), GetVector(velocity), dt));
    SetVector(position, AddScaled(GetVector(position, 1), GetVector(velocity, 1), dt), 1);
    Store(0, index, position);
}

void TIntegrate::Export(TExportData& exportData, TErrorList&)
{
    ExportIntegration(exportData);
}
