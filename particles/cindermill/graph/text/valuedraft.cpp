#include "particles/cindermill/graph/text/valuedraft.h"

#include "library/containers/append.h"
#include "library/containers/assertion.h"
#include "particles/effectgraph/groupparameter.h"
#include "particles/effectgraph/polytypeparameter.h"
#include "particles/effectgraph/simpleparameters.h"

namespace {

// One of two words.
bool TakeSwitch(TTextCursor value, const char* off, const char* on, bool& result)
{
    result = value.TakeLast(on);
    return result || value.TakeLast(off);
}

bool TakeTruth(TTextCursor value, bool& result)
{
    return TakeSwitch(value, "false", "true", result);
}

bool TakeFloatsOf(TTextCursor value, TNodeValueParameter& parameter)
{
    float floats[MaxValueFloats] = {0, 0, 0, 0, 0, 0};
    if (!value.TakeLastFloats(floats, parameter.GetNumFloats()))
        return false;
    parameter.SetValue(floats);
    return true;
}

} // namespace

TValueDraft::TValueDraft(const TTypeDraft& draft, TNodeType& type) : Draft(draft), Type(type)
{
    TTypeDraft::GetParameters(type, Parameters);
}

bool TValueDraft::AddLine(const TString& path, const TString& rest, TTextCursor value)
{
    if (path.IsEmpty())
        return AddProperty(rest, value);
    TTextCursor kind(path);
    if (kind.Take("output "))
        return IsText(rest, " type") && AddOutput(kind.GetRest(), value);
    const int index = Draft.FindParameter(path);
    return index != -1 && AddValue(index, rest, value);
}

bool TValueDraft::AddProperty(const TString& name, TTextCursor value)
{
    static constexpr struct
    {
        const char* Label;
        uint32_t Flag;
    } Flags[] = {
        {"bypassed", FL_BYPASSED}, {"dynamic box", FL_DYNAMICBOUNDS}, {"static box", FL_STATICBOUNDS}};
    for (const auto& flag : Flags)
        if (IsText(name, flag.Label)) {
            Type.SetFlag(flag.Flag, true);
            return value.TakeLast("true");
        }
    if (IsText(name, "box from") || IsText(name, "box to")) {
        float corner[3];
        if (!value.TakeLastFloats(corner, 3))
            return false;
        (IsText(name, "box from") ? Type.BoundsMin : Type.BoundsMax) =
            TVector3(corner[0], corner[1], corner[2]);
        return true;
    }
    int number = 0;
    if (!value.TakeLastInt(number))
        return false;
    if (IsText(name, "other flags"))
        Type.Flags |= static_cast<uint32_t>(number);
    else if (IsText(name, "priority") && number >= 0 && number <= 255)
        Type.SetRenderPriority(number);
    else
        return false;
    return true;
}

bool TValueDraft::AddOutput(const TString& path, TTextCursor value)
{
    const int index = Draft.FindOutput(path);
    if (index == -1)
        return false;
    for (int type = 0; type < TY_POLYTYPE; ++type)
        if (value.TakeLast(GetTypeName(type))) {
            Type.GetOutput(index).DefaultType = type;
            return true;
        }
    return false;
}

bool TValueDraft::AddValue(int index, const TString& rest, TTextCursor value)
{
    TNodeParameter& parameter = *Parameters[index];
    switch (parameter.Type) {
    case TY_POLYTYPE:
        return AddPolytype(parameter, rest, value);
    case PK_RAMP:
    case PK_POLYRAMP:
        return AddRamp(parameter, rest, value);
    case PK_ANIMATION:
        return AddAnimation(parameter, rest, value);
    default:
        break;
    }
    if (!rest.IsEmpty())
        return false;
    bool truth = false;
    int number = 0;
    TString text;
    switch (parameter.Type) {
    case PK_BOOL:
        if (!TakeTruth(value, truth))
            return false;
        static_cast<TNodeBoolParameter&>(parameter).SetValue(truth);
        return true;
    case PK_GROUP:
        if (!TakeSwitch(value, "off", "on", truth))
            return false;
        static_cast<TNodeGroupParameter&>(parameter).SetValue(truth);
        return true;
    case PK_INT:
        if (!value.TakeLastInt(number))
            return false;
        static_cast<TNodeIntParameter&>(parameter).SetValue(number);
        return true;
    case PK_TEXTURE:
        if (!value.TakeLastQuoted(text))
            return false;
        static_cast<TNodeTextureParameter&>(parameter).SetValue(text);
        return true;
    case PK_ENUM:
        return AddChoice(index, value);
    default:
        ASSERT(parameter.Type < TY_POLYTYPE);
        return TakeFloatsOf(value, static_cast<TNodeValueParameter&>(parameter));
    }
}

bool TValueDraft::AddChoice(int index, TTextCursor value)
{
    TNodeEnumParameter& choice = static_cast<TNodeEnumParameter&>(*Parameters[index]);
    // Without entries the position is the first, and nothing has a name.
    if (choice.GetValues().empty())
        return value.TakeLast("0");
    const int entry = Draft.FindEntry(index, value.GetRest());
    if (entry == -1)
        return false;
    choice.SetValue(entry);
    return true;
}

bool TValueDraft::AddAnimation(TNodeParameter& parameter, const TString& rest, TTextCursor value)
{
    TNodeAnimationParameter& animation = static_cast<TNodeAnimationParameter&>(parameter);
    if (rest.IsEmpty()) {
        TString file;
        if (!value.TakeLastQuoted(file))
            return false;
        animation.SetFileName(file);
        return true;
    }
    static constexpr const char* Tracks[] = {" uses position", " uses rotation", " uses scale"};
    bool used[] = {animation.UsesPosition(), animation.UsesRotation(), animation.UsesScale()};
    for (int i = 0; i < 3; ++i)
        if (IsText(rest, Tracks[i])) {
            if (!TakeTruth(value, used[i]))
                return false;
            animation.SetFlags(used[0], used[1], used[2]);
            return true;
        }
    return false;
}

bool TValueDraft::AddPolytype(TNodeParameter& parameter, const TString& rest, TTextCursor value)
{
    TNodePolytypeParameter& polytype = static_cast<TNodePolytypeParameter&>(parameter);
    for (int type = 0; type < TY_POLYTYPE; ++type) {
        if (!polytype.IsTypeValid(type))
            continue;
        if (IsText(rest, " type") && value.TakeLast(GetTypeName(type))) {
            polytype.SetUserType(type);
            return true;
        }
        TTextCursor what(rest);
        if (what.Take(" ") && what.TakeLast(GetTypeName(type)))
            return TakeFloatsOf(value, *polytype.GetValueParameter(type));
    }
    return false;
}

bool TValueDraft::AddRamp(TNodeParameter& parameter, const TString& rest, TTextCursor value)
{
    TNodeRampParameter& ramp = static_cast<TNodeRampParameter&>(parameter);
    bool truth = false;
    if (IsText(rest, " linear")) {
        if (!TakeTruth(value, truth))
            return false;
        ramp.SetLinear(truth);
        return true;
    }
    if (IsText(rest, " flag")) {
        ramp.SetSpareFlag(true);
        return value.TakeLast("true");
    }
    TTextCursor what(rest);
    int curve = 0;
    if (!what.Take(" curve ") || !what.TakeInt(curve) || curve < 0 ||
        curve >= TNodeRampParameter::MaxDimensions)
        return false;
    if (what.IsAtEnd())
        return AddPoint(ramp, curve, value);
    int lock = 0;
    if (!what.TakeLast(" locked to") || !value.TakeLastInt(lock) || !TNodeRampParameter::IsLock(lock))
        return false;
    int locks[TNodeRampParameter::MaxDimensions];
    std::memcpy(locks, ramp.GetLocks(), sizeof(locks));
    locks[curve] = lock;
    ramp.SetLocks(locks);
    return true;
}

bool TValueDraft::AddPoint(TNodeRampParameter& ramp, int curve, TTextCursor value)
{
    float place[2];
    if (curve >= ramp.GetDimensions() || !value.TakeLastFloats(place, 2))
        return false;
    if (&ramp != Ramp || curve != Curve) {
        Finish();
        Ramp = &ramp;
        Curve = curve;
    }
    Append(Points, TRampPoint{place[0], place[1]});
    return true;
}

void TValueDraft::Finish()
{
    if (Ramp != nullptr)
        Ramp->SetCurve(Curve, Points);
    Ramp = nullptr;
    Points.clear();
}
