#include "particles/cindermill/graph/nodes/integrate.h"

#include "particles/cindermill/graph/nodes/nodemaths.h"

namespace {

TClassRegistrar Registrar(&TIntegrate::ClassId);

} // namespace

int TIntegrate::ClassId()
{
    static const int id = RegisterExecNode<TIntegrate>("TIntegrate");
    return id;
}

void TIntegrate::Execute(int index, float dt)
{
    TPortValue position = ReadInput(0, index);
    const TPortValue velocity = ReadInput(1, index);
    for (int half = 0; half < 2; ++half)
        SetVector(position, AddScaled(GetVector(position, half), GetVector(velocity, half), dt), half);
    WriteOutput(0, index, position);
}

void TIntegrate::Export(TExportData& exportData, TErrorList&)
{
    ExportIntegration(exportData);
}
