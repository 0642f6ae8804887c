#include "particles/effectgraph/schedule/nodelifetime.h"

#include "particles/effectgraph/emitmode.h"
#include "particles/effectgraph/groupparameter.h"
#include "particles/effectgraph/simpleparameters.h"
#include "particles/effectgraph/valueparameters.h"

namespace {

// True if the port stands open and holds a scalar.
bool GetOpenScalarInput(const TEffectNode* node, const char* name, float& value)
{
    const int input = node->GetNodeType()->FindInput(name);
    if (input == -1 || node->GetInput(input) != nullptr)
        return false;
    const TNodeParameter* parameter = node->GetNodeType()->GetInput(input);
    if (parameter->Type != TY_SCALAR)
        return false;
    value = static_cast<const TNodeScalarParameter*>(parameter)->Get();
    return true;
}

float GetAgeLifeTime(const TEffectNode* node)
{
    float maxAge = 0;
    GetOpenScalarInput(node, "Max Age", maxAge);
    return maxAge;
}

float GetEmitterLifeTime(const TEffectNode* node)
{
    const TNodeType& type = *node->GetNodeType();
    const auto* mode = type.FindParameterOf<TNodeEnumParameter>("Emit Mode", PK_ENUM);
    const auto* limit = type.FindParameterOf<TNodeGroupParameter>("Max life time", PK_GROUP);
    const auto* lifeTime = type.FindParameterOf<TNodeScalarParameter>("Max life time.Life Time", TY_SCALAR);
    if (mode == nullptr || limit == nullptr || lifeTime == nullptr)
        return 0;
    float startDelay = 0;
    GetOpenScalarInput(node, "Start Delay", startDelay);
    const int number = mode->GetNumber();
    if (number == EM_BURST)
        return startDelay;
    if (number != EM_CHANCE && number != EM_STEADY)
        return 0;
    if (!limit->Get())
        return UnboundedLifeTime;
    return static_cast<float>(double(lifeTime->Get()) + startDelay);
}

} // namespace

float GetNodeLifeTime(const TEffectNode* node)
{
    const TNodeType& type = *node->GetNodeType();
    if (type.IsNamedOrOfClass("Age", "TAge"))
        return GetAgeLifeTime(node);
    if (type.IsNamedOrOfClass("Emitter", "TEmitter"))
        return GetEmitterLifeTime(node);
    return 0;
}
