#include "particles/cindermill/graph/nodes/velocitycone.h"

#include "particles/cindermill/graph/engine/random.h"
#include "particles/cindermill/graph/nodes/nodemaths.h"

#include <cmath>

namespace {

TRandom& GetRandom()
{
    static TClassRandom random;
    return random.Get();
}

// A unit vector at right angles to v; no number if v is zero.
TVector3 GetAxisAcross(const TVector3& v)
{
    const bool steep = std::fabs(v[1]) >= std::fabs(v[0]);
    const TVector3 across = steep ? TVector3(0, -v[2], v[1]) : TVector3(-v[2], 0, v[0]);
    return Scaled(across, 1.0 / std::sqrt(ExactDot(across, across)));
}

} // namespace

void TVelocityCone::Execute(int index, float)
{
    const TVector3 v = LoadVector(0, index);
    const float c = LoadScalar(1, index);
    const float lo = LoadScalar(2, index);
    const float hi = LoadScalar(3, index);
    const TVector3 a = GetAxisAcross(v);
    const TVector3 b = Cross(a, v);
    const float r0 = static_cast<float>(GetRandom().Unit(RandomSteps));
    const float r1 = static_cast<float>(GetRandom().Unit(RandomSteps));
    const float r2 = static_cast<float>(GetRandom().Unit(RandomSteps));
    // Uniform over the cap of the sphere.
    const float u = static_cast<float>(r0 * (1.0 - c) + c);
    const double rest = 1.0 - static_cast<double>(u) * u;
    const float s = rest > 0 ? static_cast<float>(std::sqrt(rest)) : 0.0f;
    const float phi = static_cast<float>(2.0 * 3.1415927 * r1);
    const double alongA = std::sin(static_cast<double>(phi)) * s;
    const double alongB = std::cos(static_cast<double>(phi)) * s;
    const float speed = static_cast<float>((static_cast<double>(hi) - lo) * r2 + lo);
    TPortValue velocity;
    for (int i = 0; i < 3; ++i) {
        const float direction =
            static_cast<float>(alongA * a[i] + static_cast<double>(u) * v[i] + alongB * b[i]);
        velocity[i] = static_cast<float>(static_cast<double>(speed) * direction);
    }
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
