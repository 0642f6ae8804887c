#include "particles/cindermill/graph/nodes/emitter.h"

#include "library/maths/scalar.h"
#include "particles/cindermill/graph/engine/random.h"
#include "particles/cindermill/graph/nodes/nodemaths.h"
#include "particles/effectgraph/groupparameter.h"
#include "particles/effectgraph/simpleparameters.h"
#include "particles/effectgraph/valueparameters.h"

#include <cmath>

namespace {

enum TEmitMode
{
    EM_CHANCE,
    EM_STEADY,
    EM_BURST
};

// The frame rate for which chance emission was made.
constexpr double FramesPerSecond = 50.0;
// More trials in one frame would stop the preview.
constexpr int MaxTrials = 1 << 24;

TRandom& GetRandom()
{
    static TClassRandom random;
    return random.Get();
}

} // namespace

bool TEmitter::Init(TErrorList& errors)
{
    Time = 0;
    Accumulator = 0;
    return (EmitMode = RequireParameter<TNodeEnumParameter>("Emit Mode", PK_ENUM, errors)) != nullptr &&
           (MaxEmission = RequireParameter<TNodeIntParameter>("Per frame max emission", PK_INT, errors)) !=
               nullptr &&
           (MaxLifeGroup = RequireParameter<TNodeGroupParameter>("Max life time", PK_GROUP, errors)) !=
               nullptr &&
           (MaxLife = RequireParameter<TNodeScalarParameter>("Max life time.Life Time", TY_SCALAR, errors)) !=
               nullptr;
}

float TEmitter::GetLife() const
{
    return MaxLifeGroup->Get() ? MaxLife->Get() : 0.0f;
}

bool TEmitter::IsActive(float delay, float life) const
{
    if (Time < delay)
        return false;
    return life == 0 || !(static_cast<double>(delay) + life <= Time);
}

void TEmitter::Execute(int index, float dt)
{
    const float rate = ReadInput(0, index)[0];
    const float delay = ReadInput(1, index)[0];
    const int max = MaxEmission->Get();
    int count = IsActive(delay, GetLife()) ? CountDue(rate, dt, max) : 0;
    if (count > max)
        count = max;
    Time = static_cast<float>(static_cast<double>(Time) + dt);
    WriteOutput(0, index, TPortValue(static_cast<float>(count)));
    WriteOutput(1, index, TPortValue(Time));
}

int TEmitter::CountDue(float rate, float dt, int max)
{
    switch (EmitMode->GetNumber()) {
    case EM_CHANCE:
        return CountByChance(rate, dt, max);
    case EM_STEADY:
        return CountSteady(rate, dt);
    case EM_BURST:
        return CountBurst(max);
    default:
        return 0;
    }
}

int TEmitter::CountByChance(float rate, float dt, int max) const
{
    ASSERT_TEXT_MSG(max <= MaxTrials, "max <= MaxTrials",
                    "Per frame max emission is too large for chance emission");
    const float p = static_cast<float>(static_cast<double>(rate) * dt * FramesPerSecond / max);
    int count = 0;
    for (int trial = 0; trial < max; ++trial)
        if (GetRandom().Unit(RandomSteps) <= p)
            ++count;
    return count;
}

// Rounding up lets the first frame emit at once; the accumulator pays it back.
int TEmitter::CountSteady(float rate, float dt)
{
    const double due = std::ceil(static_cast<double>(dt) * rate) + static_cast<double>(rate) * Accumulator;
    const int whole = FloatToInt(due);
    const int count = whole > 0 ? whole : 0;
    Accumulator = static_cast<float>(Accumulator - static_cast<double>(count) / rate);
    Accumulator = static_cast<float>(static_cast<double>(Accumulator) + dt);
    return count;
}

int TEmitter::CountBurst(int max)
{
    const int count = Accumulator == 0 ? max : 0;
    Accumulator = 1;
    return count;
}

void TEmitter::Export(TExportData& exportData, TErrorList&)
{
    TDataBlock data;
    AppendFloat(data, GetLife());
    AppendU8(data, static_cast<uint32_t>(EmitMode->GetNumber()) & 0xFF);
    AppendU8(data, static_cast<uint32_t>(MaxEmission->Get()) & 0xFF);
    AppendU16(data, 0);
    exportData.SetData(data);
    exportData.SetCommand("IdEmissionTrigger", 0);
    exportData.AddInput(0, 0, -1);
    exportData.AddInput(1, 0, -1);
    exportData.AddOutput(0, 0, -1);
    exportData.AddOutput(1, 0, -1);
    // The trigger's state on the console.
    const float state[2] = {0, 0};
    exportData.AddGroupConstants(state, 2);
}
