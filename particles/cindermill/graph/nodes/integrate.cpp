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
    TPortValue position = Load(0, index);
    const TPortValue velocity = Load(1, index);
    const int numHalves = GetStoreFloats(0) > 3 ? 2 : 1;
    for (int half = 0; half < numHalves; ++half)
        SetVector(position, AddScaled(GetVector(position, half), GetVector(velocity, half), dt), half);
    Store(0, index, position);
}

void TIntegrate::Export(TExportData& exportData, TErrorList&)
{
    ExportIntegration(exportData);
}
