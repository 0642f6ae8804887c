#include "particles/cindermill/graph/nodes/gravity.h"

#include "particles/cindermill/graph/nodes/nodemaths.h"

namespace {

TClassRegistrar Registrar(&TGravity::ClassId);

} // namespace

int TGravity::ClassId()
{
    static const int id = RegisterExecNode<TGravity>("TGravity");
    return id;
}

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
