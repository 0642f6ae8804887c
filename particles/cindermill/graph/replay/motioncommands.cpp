#include "particles/cindermill/graph/replay/motioncommands.h"

#include "particles/cindermill/graph/nodes/nodemaths.h"

namespace {
constexpr int Half = 3;
constexpr int Both = 6;

// out = in + add * dt, for three rows.
void Integrate(TReplayCall& call, int p, int in, int add, int out)
{
    TReplayCell results[Half];
    for (int i = 0; i < Half; ++i) {
        const double step = static_cast<double>(call.Value(add + i, p)) * call.Dt;
        results[i] = {static_cast<float>(call.Value(in + i, p) + step),
                      Worse(call.In(in + i, p).State, call.In(add + i, p).State)};
    }
    for (int i = 0; i < Half; ++i)
        call.Out(out + i, p, results[i]);
}

void GravityForce(TReplayCall& call)
{
    if (!call.Has(Both, Half))
        return call.OutUnknown();
    for (int p = 0; p < call.GetCount(); ++p)
        Integrate(call, p, 0, Half, 0);
}

// A place and a rotation. A speed of three rows has no rotation, nor does a result of three.
void EulerIntegratePosition(TReplayCall& call)
{
    const int inputs = call.Command.Inputs.size();
    const int outputs = call.Command.Outputs.size();
    if ((inputs != Both + Half && inputs != Both + Both) || (outputs != Half && outputs != Both))
        return call.OutUnknown();
    for (int p = 0; p < call.GetCount(); ++p) {
        TReplayCell results[Both];
        for (int i = 0; i < outputs; ++i) {
            results[i] = call.In(i, p);
            if (Both + i >= inputs)
                continue;
            const double step = static_cast<double>(call.Value(Both + i, p)) * call.Dt;
            results[i] = {static_cast<float>(results[i].Value + step),
                          Worse(results[i].State, call.In(Both + i, p).State)};
        }
        for (int i = 0; i < outputs; ++i)
            call.Out(i, p, results[i]);
    }
}

// in + direction * factor, the factor one row.
void AddScaledRows(TReplayCall& call, int p, const TVector3& from, const TVector3& by, double factor)
{
    const TCellState state = call.InState(p);
    const TVector3 result = AddScaled(from, by, factor);
    for (int i = 0; i < Half; ++i)
        call.Out(i, p, result[i], state);
}

TVector3 InVector(TReplayCall& call, int first, int p)
{
    return TVector3(call.Value(first, p), call.Value(first + 1, p), call.Value(first + 2, p));
}

void Wind(TReplayCall& call)
{
    if (!call.Has(7, Half))
        return call.OutUnknown();
    for (int p = 0; p < call.GetCount(); ++p)
        AddScaledRows(call, p, InVector(call, 0, p), InVector(call, 3, p),
                      static_cast<double>(call.Value(6, p)) * call.Dt);
}

void Damping(TReplayCall& call)
{
    const int rows = call.Command.Inputs.size() - 1;
    const int outputs = call.Command.Outputs.size();
    if ((rows != Half && rows != Both) || (outputs != Half && outputs != Both) || outputs > rows)
        return call.OutUnknown();
    for (int p = 0; p < call.GetCount(); ++p) {
        const TReplayCell damping = call.In(rows, p);
        const float f = static_cast<float>(1.0 - (1.0 - damping.Value) * call.Dt);
        TReplayCell results[Both];
        for (int i = 0; i < outputs; ++i)
            results[i] = {static_cast<float>(static_cast<double>(call.Value(i, p)) * f),
                          Worse(damping.State, call.In(i, p).State)};
        for (int i = 0; i < outputs; ++i)
            call.Out(i, p, results[i]);
    }
}

void Attractor(TReplayCall& call)
{
    if (!call.Has(10, Half))
        return call.OutUnknown();
    for (int p = 0; p < call.GetCount(); ++p) {
        const TCellState state = call.InState(p);
        const double strength = static_cast<double>(call.Dt) * call.Value(9, p);
        float results[Half];
        for (int i = 0; i < Half; ++i) {
            const double distance = static_cast<double>(call.Value(6 + i, p)) - call.Value(i, p);
            results[i] = static_cast<float>(call.Value(3 + i, p) + distance * strength);
        }
        for (int i = 0; i < Half; ++i)
            call.Out(i, p, results[i], state);
    }
}

void UpdateAge(TReplayCall& call)
{
    if (!call.Has(2, 2))
        return call.OutUnknown();
    for (int p = 0; p < call.GetCount(); ++p) {
        const TCellState state = call.In(0, p).State;
        const TCellState both = call.InState(p);
        const float age = static_cast<float>(static_cast<double>(call.Value(0, p)) + call.Dt);
        const bool isDead = age > call.Value(1, p);
        call.Out(0, p, age, state);
        call.Out(1, p, isDead ? 1.0f : 0.0f, both);
    }
}

void Prune(TReplayCall& call)
{
    for (int p = 0; p < call.GetCount() && call.Command.Inputs.size() == 1; ++p) {
        if (call.In(0, p).State != CS_DEFINED)
            call.Listener->DoubtLife();
        else if (call.Value(0, p) != 0)
            call.Listener->Prune(p);
    }
}
} // namespace

const TReplayCommandName MotionCommands[] = {
    {"IdGravityForce", GravityForce},
    {"IdEulerIntegratePosition", EulerIntegratePosition},
    {"IdWind", Wind},
    {"IdDamping", Damping},
    {"IdAttractor", Attractor},
    {"IdUpdateAge", UpdateAge},
    {"IdPrune", Prune},
    {nullptr, nullptr},
};
