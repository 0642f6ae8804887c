#include "particles/cindermill/graph/nodes/volume.h"

#include "particles/cindermill/graph/nodes/nodemaths.h"
#include "particles/effectgraph/simpleparameters.h"

#include <cmath>

namespace {

enum TVolumeType
{
    VT_SPHERE,
    VT_BOX,
    VT_CYLINDER
};

bool IsInUnitRange(float value)
{
    return value >= -1 && value <= 1;
}

float ClampToUnit(float value)
{
    if (value < -1)
        return -1;
    return value > 1 ? 1 : value;
}

double GetRadiusSquared(const TVector3& q)
{
    return static_cast<double>(q[0]) * q[0] + static_cast<double>(q[2]) * q[2];
}

// q is in the shape's own space.
bool IsInside(int type, const TVector3& q)
{
    switch (type) {
    case VT_SPHERE:
        return ExactDot(q, q) < 1;
    case VT_BOX:
        return IsInUnitRange(q[0]) && IsInUnitRange(q[1]) && IsInUnitRange(q[2]);
    case VT_CYLINDER:
        return IsInUnitRange(q[1]) && GetRadiusSquared(q) <= 1;
    default:
        return false;
    }
}

// Moves an outside point to the shape's surface; false if it lies inside.
bool MoveToSphere(TVector3& q)
{
    if (ExactDot(q, q) < 1)
        return false;
    q = Scaled(q, 1.0 / std::sqrt(ExactDot(q, q)));
    return true;
}

bool MoveToBox(TVector3& q)
{
    if (IsInside(VT_BOX, q))
        return false;
    for (int i = 0; i < 3; ++i)
        q[i] = ClampToUnit(q[i]);
    return true;
}

// A point on the mantle is outside here, unlike in the test alone.
bool MoveToCylinder(TVector3& q)
{
    const float r2 = static_cast<float>(GetRadiusSquared(q));
    if (IsInUnitRange(q[1]) && r2 < 1)
        return false;
    if (r2 > 1) {
        q[0] = static_cast<float>(q[0] * (1.0 / std::sqrt(static_cast<double>(r2))));
        q[2] = static_cast<float>(q[2] * (1.0 / std::sqrt(static_cast<double>(r2))));
    }
    q[1] = ClampToUnit(q[1]);
    return true;
}

bool MoveToSurface(int type, TVector3& q)
{
    switch (type) {
    case VT_SPHERE:
        return MoveToSphere(q);
    case VT_BOX:
        return MoveToBox(q);
    case VT_CYLINDER:
        return MoveToCylinder(q);
    default:
        return false;
    }
}

float GetDistance(int type, const TMatrix43& matrix, const TVector3& p, TVector3 q)
{
    if (!MoveToSurface(type, q))
        return 0;
    const TVector3 surface = matrix.TransformPoint(q);
    double sum = 0;
    for (int i = 0; i < 3; ++i) {
        const double difference = static_cast<double>(surface[i]) - p[i];
        sum += difference * difference;
    }
    return static_cast<float>(std::sqrt(sum));
}

} // namespace

bool TVolume::Init(TErrorList& errors)
{
    return (VolumeType = RequireParameter<TNodeEnumParameter>("Volume Type", PK_ENUM, errors)) != nullptr &&
           (OutputDistance = RequireParameter<TNodeBoolParameter>("Output Distance", PK_BOOL, errors)) !=
               nullptr;
}

TLocalFrame TVolume::LoadFrame(int index) const
{
    TMatrix43 matrix = GetTransformMatrix(Load(1, index));
    const TPortValue scale = Load(2, index);
    ScaleFirst(matrix, scale[0], scale[1], scale[2]);
    return TLocalFrame(matrix);
}

void TVolume::BeginRun()
{
    Shape = VolumeType->GetNumber();
    MeasuresDistance = OutputDistance->Get();
    if (HasConstantFrame())
        Frame = LoadFrame(0);
}

void TVolume::Execute(int index, float)
{
    const TVector3 p = LoadVector(0, index);
    if (!HasConstantFrame())
        Frame = LoadFrame(index);
    float result = 0;
    if (Frame.IsInvertible) {
        const TVector3 q = Frame.ToLocal.TransformPoint(p);
        if (MeasuresDistance)
            result = GetDistance(Shape, Frame.ToWorld, p, q);
        else
            result = IsInside(Shape, q) ? 1.0f : 0.0f;
    }
    Store(0, index, TPortValue(result));
}
