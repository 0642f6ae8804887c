#include "particles/cindermill/graph/nodes/velocitycone.h"

#include "particles/cindermill/graph/nodes/emissionmaths.h"
#include "particles/cindermill/graph/nodes/nodemaths.h"

namespace {

TClassRandom& GetShared()
{
    static TClassRandom random;
    return random;
}

} // namespace

void TVelocityCone::Execute(int index, float)
{
    const TCone cone{LoadVector(0, index), LoadScalar(1, index), LoadScalar(2, index), LoadScalar(3, index)};
    TPortValue velocity;
    SetVector(velocity, DrawVelocity(ChooseRandom(GetShared()), cone));
    Store(0, index, velocity);
}

void TVelocityCone::Export(TExportData& exportData, TErrorList&)
{
    exportData.SetCommand("IdConeEmitter", 0);
    exportData.AddInputTransform(0, 3);
    exportData.AddInput(0, 0, 3);
    exportData.AddInput(1, 0, -1);
    exportData.AddInput(2, 0, -1);
    exportData.AddInput(3, 0, -1);
    exportData.AddOutput(0, 0, 3);
}
