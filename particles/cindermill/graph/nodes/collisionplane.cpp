#include "particles/cindermill/graph/nodes/collisionplane.h"

#include "particles/cindermill/graph/nodes/nodemaths.h"

namespace {

// How far behind the plane a particle may begin, and how near to it a step may end.
constexpr double Thickness = 0.001;

bool IsInUnitRange(float value)
{
    return value >= -1 && value <= 1;
}

} // namespace

TLocalFrame TCollisionPlane::LoadPlane(int index) const
{
    TMatrix43 plane = GetTransformMatrix(Load(2, index));
    const TPortValue size = Load(3, index);
    ScaleFirst(plane, size[0], 1, size[1]);
    return TLocalFrame(plane);
}

void TCollisionPlane::BeginRun()
{
    if (HasConstantPlane())
        Plane = LoadPlane(0);
}

bool TCollisionPlane::Reflect(const TVector3& position, float bounce, float dt, TVector3& velocity) const
{
    if (!Plane.IsInvertible)
        return false;
    const TVector3 next = AddScaled(position, velocity, dt);
    const TVector3 a = Plane.ToLocal.TransformPoint(position);
    const TVector3 b = Plane.ToLocal.TransformPoint(next);
    if (!(a[1] >= -Thickness && b[1] < Thickness))
        return false;
    TVector3 d = b - a;
    const TVector3 hit = AddScaled(a, d, -static_cast<double>(a[1]) / d[1]);
    if (!IsInUnitRange(hit[0]) || !IsInUnitRange(hit[2]))
        return false;
    d = Scaled(d, 1.0 / dt);
    const TVector3 n(0, -1, 0);
    TVector3 r = AddScaled(d, n, -2.0 * ExactDot(d, n));
    r = Scaled(r, bounce);
    // As a point, so that the plane's translation comes in: effects are tuned to it.
    velocity = Plane.ToWorld.TransformPoint(r);
    return true;
}

void TCollisionPlane::Execute(int index, float dt)
{
    const TPortValue position = Load(0, index);
    TPortValue velocity = Load(1, index);
    if (!HasConstantPlane())
        Plane = LoadPlane(index);
    const float bounce = LoadScalar(4, index);
    TVector3 reflected = GetVector(velocity);
    const bool hit = Reflect(GetVector(position), bounce, dt, reflected);
    SetVector(velocity, reflected);
    Store(0, index, position);
    Store(1, index, velocity);
    Store(2, index, TPortValue(hit ? 1.0f : 0.0f));
}

void TCollisionPlane::Export(TExportData& exportData, TErrorList& errors)
{
    if (exportData.GetInputAttribute(2) != nullptr) {
        errors.Add(
            new TError("Cannot export collision plane node with a variable plane transform connection. "
                       "Support will be added in a future version"));
        return;
    }
    const TMatrix43 plane = GetTransformMatrix(ReadPortParameter(2));
    const TVector3 n = plane.TransformPoint(TVector3(0, 1, 0));
    TDataBlock data;
    for (int i = 0; i < 3; ++i)
        AppendFloat(data, n[i]);
    AppendFloat(data, static_cast<float>(-ExactDot(plane.GetTranslation(), n)));
    AppendFloat(data, ReadPortParameter(4)[0]);
    exportData.SetData(data);
    exportData.SetCommand("IdPlaneCollision", 0);
    exportData.AddInput(0, 0, 3);
    exportData.AddInput(1, 0, 3);
    exportData.AddOutput(0, 0, 3);
    exportData.AddOutput(1, 0, 3);
    exportData.AddOutput(2, 0, -1);
    exportData.PassRest(0, 0, 3);
    exportData.PassRest(1, 1, 3);
}
