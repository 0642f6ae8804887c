#include "particles/cindermill/graph/nodes/emitter.h"

#include "particles/effectgraph/emitmode.h"
#include "particles/effectgraph/groupparameter.h"
#include "particles/effectgraph/simpleparameters.h"
#include "particles/effectgraph/valueparameters.h"

namespace {

TClassRandom& GetShared()
{
    static TClassRandom random;
    return random;
}

} // namespace

bool TEmitter::Init(TErrorList& errors)
{
    Clock = TTriggerClock();
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

void TEmitter::Execute(int index, float dt)
{
    const float rate = ReadInput(0, index)[0];
    const float delay = ReadInput(1, index)[0];
    const int max = MaxEmission->Get();
    int count = IsTriggerActive(Clock, delay, GetLife()) ? CountDue(rate, dt, max) : 0;
    if (count > max)
        count = max;
    Clock.Time = static_cast<float>(static_cast<double>(Clock.Time) + dt);
    WriteOutput(0, index, TPortValue(static_cast<float>(count)));
    WriteOutput(1, index, TPortValue(Clock.Time));
}

int TEmitter::CountDue(float rate, float dt, int max)
{
    switch (EmitMode->GetNumber()) {
    case EM_CHANCE:
        return DrawCount(ChooseRandom(GetShared()), rate, dt, max);
    case EM_STEADY:
        return CountSteady(Clock, rate, dt);
    case EM_BURST:
        return CountBurst(Clock, max);
    default:
        return 0;
    }
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
