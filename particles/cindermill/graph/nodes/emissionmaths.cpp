#include "particles/cindermill/graph/nodes/emissionmaths.h"

#include "library/containers/assertion.h"
#include "library/maths/scalar.h"
#include "particles/cindermill/graph/nodes/nodemaths.h"

#include <cmath>

namespace {

// The frame rate for which chance emission was made.
constexpr double FramesPerSecond = 50.0;
// More trials in one frame would stop the preview.
constexpr int MaxTrials = 1 << 24;

// A unit vector at right angles to v; no number if v is zero.
TVector3 GetAxisAcross(const TVector3& v)
{
    const bool steep = std::fabs(v[1]) >= std::fabs(v[0]);
    const TVector3 across = steep ? TVector3(0, -v[2], v[1]) : TVector3(-v[2], 0, v[0]);
    return Scaled(across, 1.0 / std::sqrt(ExactDot(across, across)));
}

} // namespace

float DrawBetween(TRandom& random, float low, float high)
{
    const double range = static_cast<double>(high) - low;
    return static_cast<float>(random.Unit(RandomSteps) * range + low);
}

TVector3 DrawVelocity(TRandom& random, const TCone& cone)
{
    const TVector3& v = cone.Axis;
    const TVector3 a = GetAxisAcross(v);
    const TVector3 b = Cross(a, v);
    const float r0 = static_cast<float>(random.Unit(RandomSteps));
    const float r1 = static_cast<float>(random.Unit(RandomSteps));
    const float r2 = static_cast<float>(random.Unit(RandomSteps));
    // Uniform over the cap of the sphere.
    const float u = static_cast<float>(r0 * (1.0 - cone.Cosine) + cone.Cosine);
    const double rest = 1.0 - static_cast<double>(u) * u;
    const float s = rest > 0 ? static_cast<float>(std::sqrt(rest)) : 0.0f;
    const float phi = static_cast<float>(2.0 * 3.1415927 * r1);
    const double alongA = std::sin(static_cast<double>(phi)) * s;
    const double alongB = std::cos(static_cast<double>(phi)) * s;
    const float speed =
        static_cast<float>((static_cast<double>(cone.MaxSpeed) - cone.MinSpeed) * r2 + cone.MinSpeed);
    TVector3 velocity;
    for (int i = 0; i < 3; ++i) {
        const float direction =
            static_cast<float>(alongA * a[i] + static_cast<double>(u) * v[i] + alongB * b[i]);
        velocity[i] = static_cast<float>(static_cast<double>(speed) * direction);
    }
    return velocity;
}

int DrawCount(TRandom& random, float rate, float dt, int max)
{
    ASSERT_TEXT_MSG(max <= MaxTrials, "max <= MaxTrials",
                    "Per frame max emission is too large for chance emission");
    const float p = static_cast<float>(static_cast<double>(rate) * dt * FramesPerSecond / max);
    int count = 0;
    for (int trial = 0; trial < max; ++trial)
        if (random.Unit(RandomSteps) <= p)
            ++count;
    return count;
}

bool IsTriggerActive(const TTriggerClock& clock, float delay, float life)
{
    if (clock.Time < delay)
        return false;
    return life == 0 || !(static_cast<double>(delay) + life <= clock.Time);
}

// Rounding up lets the first frame emit at once; the accumulator pays it back.
int CountSteady(TTriggerClock& clock, float rate, float dt)
{
    const double due =
        std::ceil(static_cast<double>(dt) * rate) + static_cast<double>(rate) * clock.Accumulator;
    const int whole = FloatToInt(due);
    const int count = whole > 0 ? whole : 0;
    clock.Accumulator = static_cast<float>(clock.Accumulator - static_cast<double>(count) / rate);
    clock.Accumulator = static_cast<float>(static_cast<double>(clock.Accumulator) + dt);
    return count;
}

int CountBurst(TTriggerClock& clock, int max)
{
    const int count = clock.Accumulator == 0 ? max : 0;
    clock.Accumulator = 1;
    return count;
}
