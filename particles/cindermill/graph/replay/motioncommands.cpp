#include "particles/cindermill/graph/replay/motioncommands.h"

#include "particles/cindermill/graph/nodes/nodemaths.h"

#include <cmath>

namespace {
constexpr int Half = 3;
constexpr int Both = 6;

TReplayCell Step(const TReplayCell& from, const TReplayCell& by, float dt)
{
    return {static_cast<float>(from.Value + static_cast<double>(by.Value) * dt), Worse(from.State, by.State)};
}

// Rows are read before any is written, as one machine row may be both.
void GravityForce(TReplayCall& call)
{
    if (!call.Takes(Both, Half))
        return;
    for (int p = 0; p < call.GetCount(); ++p) {
        TReplayCell results[Half];
        for (int i = 0; i < Half; ++i)
            results[i] = Step(call.In(i, p), call.In(Half + i, p), call.GetDt());
        for (int i = 0; i < Half; ++i)
            call.Out(i, p, results[i]);
    }
}

// A place and a rotation. A speed of three rows has no rotation, nor does a result of three.
void EulerIntegratePosition(TReplayCall& call)
{
    const int inputs = call.GetNumInputs();
    const int outputs = call.GetNumOutputs();
    if ((inputs != Both + Half && inputs != Both + Both) || (outputs != Half && outputs != Both))
        return call.Refuse();
    for (int p = 0; p < call.GetCount(); ++p) {
        TReplayCell results[Both];
        for (int i = 0; i < outputs; ++i)
            results[i] =
                Both + i < inputs ? Step(call.In(i, p), call.In(Both + i, p), call.GetDt()) : call.In(i, p);
        for (int i = 0; i < outputs; ++i)
            call.Out(i, p, results[i]);
    }
}

TVector3 InVector(const TReplayCall& call, int first, int p)
{
    return TVector3(call.Value(first, p), call.Value(first + 1, p), call.Value(first + 2, p));
}

void OutVector(TReplayCall& call, int first, int p, const TVector3& v, TCellState state)
{
    for (int i = 0; i < Half; ++i)
        call.Out(first + i, p, v[i], state);
}

void Wind(TReplayCall& call)
{
    if (!call.Takes(7, Half))
        return;
    for (int p = 0; p < call.GetCount(); ++p) {
        const TCellState state = call.InState(p);
        const double factor = static_cast<double>(call.Value(6, p)) * call.GetDt();
        OutVector(call, 0, p, AddScaled(InVector(call, 0, p), InVector(call, Half, p), factor), state);
    }
}

void Turbulence(TReplayCall& call)
{
    TRandom* random = call.GetRandom();
    if (!call.Takes(4, Half))
        return;
    if (random == nullptr)
        return call.Refuse();
    ForEachDraw(call, [&](int p) {
        const TCellState state = call.InState(p);
        const double factor = static_cast<double>(call.Value(Half, p)) * call.GetDt();
        TVector3 direction;
        random->Direction(direction.Component, RandomSteps);
        OutVector(call, 0, p, AddScaled(InVector(call, 0, p), direction, factor), state);
    });
}

void Damping(TReplayCall& call)
{
    const int rows = call.GetNumInputs() - 1;
    const int outputs = call.GetNumOutputs();
    if ((rows != Half && rows != Both) || (outputs != Half && outputs != Both) || outputs > rows)
        return call.Refuse();
    for (int p = 0; p < call.GetCount(); ++p) {
        const TReplayCell damping = call.In(rows, p);
        const float f = static_cast<float>(1.0 - (1.0 - damping.Value) * call.GetDt());
        TReplayCell results[Both];
        for (int i = 0; i < outputs; ++i)
            results[i] = {static_cast<float>(static_cast<double>(call.Value(i, p)) * f),
                          Worse(damping.State, call.State(i, p))};
        for (int i = 0; i < outputs; ++i)
            call.Out(i, p, results[i]);
    }
}

void Attractor(TReplayCall& call)
{
    if (!call.Takes(10, Half))
        return;
    for (int p = 0; p < call.GetCount(); ++p) {
        const TCellState state = call.InState(p);
        const double strength = static_cast<double>(call.GetDt()) * call.Value(9, p);
        TVector3 result;
        for (int i = 0; i < Half; ++i) {
            const double distance = static_cast<double>(call.Value(6 + i, p)) - call.Value(i, p);
            result[i] = static_cast<float>(call.Value(Half + i, p) + distance * strength);
        }
        OutVector(call, 0, p, result, state);
    }
}

void UpdateAge(TReplayCall& call)
{
    if (!call.Takes(2, 2))
        return;
    for (int p = 0; p < call.GetCount(); ++p) {
        const TCellState state = call.State(0, p);
        const TCellState both = call.InState(p);
        const float age = static_cast<float>(static_cast<double>(call.Value(0, p)) + call.GetDt());
        const bool isDead = age > call.Value(1, p);
        call.Out(0, p, age, state);
        call.Out(1, p, isDead ? 1.0f : 0.0f, both);
    }
}

void Prune(TReplayCall& call)
{
    if (!call.Takes(1, 0))
        return call.Run.Listener->DoubtLife();
    for (int p = 0; p < call.GetCount(); ++p) {
        if (!call.In(0, p).IsKnown())
            call.Run.Listener->DoubtLife();
        else if (call.Value(0, p) != 0)
            call.Run.Listener->Prune(p);
    }
}

// A plane by its normal and its distance from the origin. It has no edge.
class TConsolePlane
{
public:
    explicit TConsolePlane(const TReplayCall& call)
        : Normal(call.DataFloat(0), call.DataFloat(4), call.DataFloat(8)), Distance(call.DataFloat(12)),
          Bounce(call.DataFloat(16))
    {
    }
    // Off the origin the normal is none: what the console makes of it is its own.
    bool IsSound() const
    {
        constexpr double nearlyOne = 1e-5;
        return Distance == 0 && std::fabs(ExactDot(Normal, Normal) - 1) < nearlyOne;
    }
    // True if a step from the place hits it, which turns the velocity.
    bool Reflect(const TVector3& position, float dt, TVector3& velocity) const
    {
        constexpr double thickness = 0.001;
        const float a = GetHeight(position);
        const float b = GetHeight(AddScaled(position, velocity, dt));
        if (!(a >= -thickness && b < thickness) || a == b)
            return false;
        velocity = Scaled(AddScaled(velocity, Normal, -2.0 * ExactDot(velocity, Normal)), Bounce);
        return true;
    }

private:
    float GetHeight(const TVector3& point) const
    {
        return static_cast<float>(ExactDot(point, Normal) + Distance);
    }

    TVector3 Normal;
    float Distance;
    float Bounce;
};

// The rule is guessed: the preview computes in the plane's own space.
void PlaneCollision(TReplayCall& call)
{
    if (!call.Takes(Both, Both + 1, 20))
        return;
    const TConsolePlane plane(call);
    for (int p = 0; p < call.GetCount(); ++p) {
        const TVector3 position = InVector(call, 0, p);
        TVector3 velocity = InVector(call, Half, p);
        const TCellState states[] = {call.InState(p, 0, Half), call.InState(p, Half, Half)};
        const TCellState both = Worse(states[0], states[1]);
        const bool hit = plane.Reflect(position, call.GetDt(), velocity);
        const TCellState guess = hit ? Worse(both, plane.IsSound() ? CS_NEAR : CS_UNKNOWN) : both;
        OutVector(call, 0, p, position, states[0]);
        OutVector(call, Half, p, velocity, hit ? guess : Worse(states[1], both));
        call.Out(Both, p, hit ? 1.0f : 0.0f, plane.IsSound() ? guess : CS_UNKNOWN);
    }
}
} // namespace

const TCommandFunction MotionCommands[] = {
    {"IdGravityForce", GravityForce},
    {"IdEulerIntegratePosition", EulerIntegratePosition},
    {"IdWind", Wind},
    {"IdTurbulence", Turbulence},
    {"IdDamping", Damping},
    {"IdAttractor", Attractor},
    {"IdPlaneCollision", PlaneCollision},
    {"IdUpdateAge", UpdateAge},
    {"IdPrune", Prune},
    {nullptr, nullptr},
};
