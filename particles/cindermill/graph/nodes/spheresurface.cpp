#include "particles/cindermill/graph/nodes/spheresurface.h"

#include "library/maths/quaternion.h"
#include "particles/cindermill/graph/engine/random.h"
#include "particles/cindermill/graph/nodes/nodemaths.h"

namespace {

TClassRandom& GetShared()
{
    static TClassRandom random;
    return random;
}

} // namespace

void TSphereSurface::Execute(int index, float)
{
    TMatrix43 matrix = GetTransformMatrix(Load(1, index));
    const TPortValue scale = Load(2, index);
    ScaleFirst(matrix, scale[0], scale[1], scale[2]);
    TVector3 direction;
    ChooseRandom(GetShared()).Direction(direction.Component, RandomSteps);
    TPortValue position;
    SetVector(position, matrix.TransformPoint(direction));
    Store(0, index, position);
    TPortValue normal;
    SetVector(normal, direction);
    Store(1, index, normal);
}

void TSphereSurface::Export(TExportData& exportData, TErrorList&)
{
    exportData.SetEmitterTrigger(0);
    exportData.AddDataTransform(0, 0);
    const TPortValue transform = ReadPortParameter(1);
    const TPortValue scale = ReadPortParameter(2);
    TDataBlock data;
    for (int i = 0; i < 3; ++i)
        AppendFloat(data, transform[i]);
    const TQuaternion rotation(TMatrix3(GetTransformMatrix(transform)));
    for (int i = 0; i < 4; ++i)
        AppendFloat(data, rotation[i]);
    for (int i = 0; i < 3; ++i)
        AppendFloat(data, scale[i]);
    exportData.SetData(data);
    exportData.SetCommand("IdSphereSurfaceEmitter", 0);
    exportData.AddOutput(0, 0, 3);
    exportData.AddOutput(1, 0, 3);
}
