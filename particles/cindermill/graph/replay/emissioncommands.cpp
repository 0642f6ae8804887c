#include "particles/cindermill/graph/replay/emissioncommands.h"

#include "library/maths/scalar.h"

#include <cmath>

namespace {
enum TEmitMode
{
    EM_CHANCE,
    EM_STEADY,
    EM_BURST
};

void Effect(TReplayCall& call)
{
    if (!call.Has(1, 2))
        return call.OutUnknown();
    for (int p = 0; p < call.GetCount(); ++p) {
        const TReplayCell time{static_cast<float>(static_cast<double>(call.Value(0, p)) + call.Dt),
                               call.In(0, p).State};
        call.Out(0, p, time);
        call.Out(1, p, time);
    }
}

// Rate, delay, and two rows that keep the trigger's state: its time and what it owes.
struct TTrigger
{
    float Rate;
    float Delay;
    float Time;
    float Accumulator;
};

bool IsActive(const TTrigger& trigger, float life)
{
    if (trigger.Time < trigger.Delay)
        return false;
    return life == 0 || !(static_cast<double>(trigger.Delay) + life <= trigger.Time);
}

int CountSteady(TTrigger& trigger, float dt)
{
    const double rate = trigger.Rate;
    const int whole = FloatToInt(std::ceil(static_cast<double>(dt) * rate) + rate * trigger.Accumulator);
    const int count = whole > 0 ? whole : 0;
    trigger.Accumulator = static_cast<float>(trigger.Accumulator - static_cast<double>(count) / rate);
    trigger.Accumulator = static_cast<float>(static_cast<double>(trigger.Accumulator) + dt);
    return count;
}

int CountDue(TTrigger& trigger, int mode, int max, float dt)
{
    if (mode == EM_STEADY)
        return CountSteady(trigger, dt);
    const int count = mode == EM_BURST && trigger.Accumulator == 0 ? max : 0;
    if (mode == EM_BURST)
        trigger.Accumulator = 1;
    return count;
}

void EmissionTrigger(TReplayCall& call)
{
    if (!call.Has(4, 4) || !call.HasData(8))
        return call.OutUnknown();
    const int mode = call.Command.Data[4];
    const int max = call.Command.Data[5];
    for (int p = 0; p < call.GetCount(); ++p) {
        const TCellState state = call.InState(p);
        TTrigger trigger{call.Value(0, p), call.Value(1, p), call.Value(2, p), call.Value(3, p)};
        // Chance is the console's own.
        const bool isActive = IsActive(trigger, call.DataFloat(0));
        const TCellState countState = isActive && mode == EM_CHANCE ? CS_UNKNOWN : state;
        int count = isActive ? CountDue(trigger, mode, max, call.Dt) : 0;
        if (count > max)
            count = max;
        trigger.Time = static_cast<float>(static_cast<double>(trigger.Time) + call.Dt);
        call.Out(0, p, static_cast<float>(count), countState);
        call.Out(1, p, trigger.Time, state);
        call.Out(2, p, trigger.Time, state);
        call.Out(3, p, trigger.Accumulator, state);
    }
}

// Between equal bounds is one number only.
void RandomEmitter(TReplayCall& call)
{
    if (!call.Has(2, 1))
        return call.OutUnknown();
    for (int p = 0; p < call.GetCount(); ++p) {
        const TReplayCell low = call.In(0, p);
        const TReplayCell high = call.In(1, p);
        const bool isFixed = low.State == CS_DEFINED && high.State == CS_DEFINED && low.Value == high.Value;
        call.Out(0, p, low.Value, isFixed ? CS_DEFINED : CS_UNKNOWN);
    }
}
} // namespace

const TReplayCommandName EmissionCommands[] = {
    {"IdEffect", Effect},
    {"IdEmissionTrigger", EmissionTrigger},
    {"IdRandomEmitter", RandomEmitter},
    {nullptr, nullptr},
};
