#include "particles/cindermill/graph/replay/emissioncommands.h"

#include "library/maths/matrix43.h"
#include "library/maths/quaternion.h"
#include "particles/cindermill/graph/nodes/emissionmaths.h"
#include "particles/cindermill/graph/nodes/nodemaths.h"
#include "particles/effectgraph/emitmode.h"

namespace {
constexpr int Half = 3;

void Effect(TReplayCall& call)
{
    if (!call.Takes(1, 2, 4))
        return;
    for (int p = 0; p < call.GetCount(); ++p) {
        const TReplayCell time{static_cast<float>(static_cast<double>(call.Value(0, p)) + call.GetDt()),
                               call.State(0, p)};
        call.Out(0, p, time);
        call.Out(1, p, time);
    }
}

int CountDue(TReplayCall& call, TTriggerClock& clock, float rate, int max)
{
    switch (call.Command.Data[4]) {
    case EM_CHANCE:
        return DrawCount(*call.GetRandom(), rate, call.GetDt(), max);
    case EM_STEADY:
        return CountSteady(clock, rate, call.GetDt());
    case EM_BURST:
        return CountBurst(clock, max);
    default:
        return 0;
    }
}

// Rate, delay, and two rows that keep the trigger's state: its time and what it owes.
void EmissionTrigger(TReplayCall& call)
{
    if (!call.Takes(4, 4, 8))
        return;
    if (call.GetRandom() == nullptr)
        return call.Refuse();
    const float life = call.DataFloat(0);
    const int max = call.Command.Data[5];
    ForEachDraw(call, [&](int p) {
        const TCellState state = call.InState(p);
        const float rate = call.Value(0, p);
        TTriggerClock clock{call.Value(2, p), call.Value(3, p)};
        int count = IsTriggerActive(clock, call.Value(1, p), life) ? CountDue(call, clock, rate, max) : 0;
        if (count > max)
            count = max;
        clock.Time = static_cast<float>(static_cast<double>(clock.Time) + call.GetDt());
        call.Out(0, p, static_cast<float>(count), state);
        call.Out(1, p, clock.Time, state);
        call.Out(2, p, clock.Time, state);
        call.Out(3, p, clock.Accumulator, state);
    });
}

void RandomEmitter(TReplayCall& call)
{
    TRandom* random = call.GetRandom();
    if (!call.Takes(2, 1))
        return;
    if (random == nullptr)
        return call.Refuse();
    ForEachDraw(call, [&](int p) {
        const TCellState state = call.InState(p);
        call.Out(0, p, DrawBetween(*random, call.Value(0, p), call.Value(1, p)), state);
    });
}

void ConeEmitter(TReplayCall& call)
{
    TRandom* random = call.GetRandom();
    if (!call.Takes(6, Half))
        return;
    if (random == nullptr)
        return call.Refuse();
    ForEachDraw(call, [&](int p) {
        const TCellState state = call.InState(p);
        const TCone cone{TVector3(call.Value(0, p), call.Value(1, p), call.Value(2, p)), call.Value(3, p),
                         call.Value(4, p), call.Value(5, p)};
        const TVector3 velocity = DrawVelocity(*random, cone);
        for (int i = 0; i < Half; ++i)
            call.Out(i, p, velocity[i], state);
    });
}

// A translation, a rotation as a quaternion, and a scale, which acts first.
TMatrix43 ReadFrame(const TReplayCall& call)
{
    const TQuaternion rotation(call.DataFloat(12), call.DataFloat(16), call.DataFloat(20),
                               call.DataFloat(24));
    const TMatrix3 basis = rotation.GetMatrix();
    TMatrix43 frame;
    for (int row = 0; row < 3; ++row)
        for (int i = 0; i < 3; ++i)
            frame[row][i] = basis[row][i];
    frame.SetTranslation(TVector3(call.DataFloat(0), call.DataFloat(4), call.DataFloat(8)));
    ScaleFirst(frame, call.DataFloat(28), call.DataFloat(32), call.DataFloat(36));
    return frame;
}

// The preview turns by angles and this by a quaternion, which round differently.
void SphereSurfaceEmitter(TReplayCall& call)
{
    TRandom* random = call.GetRandom();
    if (!call.Takes(0, Half + Half, 40))
        return;
    if (random == nullptr)
        return call.Refuse();
    const TMatrix43 frame = ReadFrame(call);
    ForEachDraw(call, [&](int p) {
        TVector3 direction;
        random->Direction(direction.Component, RandomSteps);
        const TVector3 position = frame.TransformPoint(direction);
        for (int i = 0; i < Half; ++i) {
            call.Out(i, p, position[i], CS_NEAR);
            call.Out(Half + i, p, direction[i], CS_DEFINED);
        }
    });
}
} // namespace

const TCommandFunction EmissionCommands[] = {
    {"IdEffect", Effect},
    {"IdEmissionTrigger", EmissionTrigger},
    {"IdRandomEmitter", RandomEmitter},
    {"IdConeEmitter", ConeEmitter},
    {"IdSphereSurfaceEmitter", SphereSurfaceEmitter},
    {nullptr, nullptr},
};
