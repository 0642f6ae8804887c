#include "particles/cindermill/graph/nodes/nodemaths.h"

#include "library/maths/scalar.h"

namespace {

float ToRadians(float degrees)
{
    return static_cast<float>(static_cast<double>(degrees) * DegreesToRadians);
}

} // namespace

TMatrix43 GetTransformMatrix(const TPortValue& transform)
{
    TMatrix43 matrix;
    matrix.SetRotation(ToRadians(transform[3]), ToRadians(transform[4]), ToRadians(transform[5]));
    matrix.SetTranslation(GetVector(transform));
    return matrix;
}

void ScaleFirst(TMatrix43& matrix, float x, float y, float z)
{
    TMatrix43 scale;
    scale.SetScale(x, y, z);
    matrix *= scale;
}
