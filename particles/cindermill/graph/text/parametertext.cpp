#include "particles/cindermill/graph/text/parametertext.h"

#include "library/containers/assertion.h"
#include "particles/effectgraph/groupparameter.h"
#include "particles/effectgraph/polytypeparameter.h"
#include "particles/effectgraph/rampparameter.h"
#include "particles/effectgraph/simpleparameters.h"

namespace {

const char* TextOf(bool value)
{
    return value ? "true" : "false";
}

TString TextOf(int value)
{
    TTextBuffer text;
    text << value;
    return text.GetText();
}

TString TextOf(const float* floats, int count)
{
    TTextBuffer text;
    text.AddFloats(floats, count);
    return text.GetText();
}

TString QuotedText(const TString& value)
{
    return QuoteNumbered(value, 1);
}

} // namespace

TString TNumberedNames::Add(const TString& name)
{
    if (Names.Add(name))
        Append(Counts, 0);
    return QuoteNumbered(name, ++Counts[Names.Find(name)]);
}

void TParameterText::AddValue(const TString& label, const char* rest, const TString& value)
{
    TTextLine line;
    line.Label = label;
    line.Label += rest;
    line.Value = value;
    Append(Values, line);
}

void TParameterText::AddDeclaration(const TString& label, const char* rest, const TString& value)
{
    TTextLine line;
    line.Label = label;
    line.Label += rest;
    line.Value = value;
    Append(Declarations, line);
}

void TParameterText::AddList(const TString& path, const vector<TNodeParameter*>& parameters)
{
    TNumberedNames names;
    for (const TNodeParameter* parameter : parameters) {
        TString label = path;
        label += " ";
        label += names.Add(parameter->Name);
        Declare(label, *parameter);
        Add(label, *parameter);
    }
}

void TParameterText::Declare(const TString& label, const TNodeParameter& parameter)
{
    TString kind = GetParameterTag(parameter.Type);
    if (parameter.Required)
        kind += " required";
    AddDeclaration(label, "", kind);
    if (!parameter.Description.IsEmpty())
        AddDeclaration(label, " description", QuotedText(parameter.Description));
}

void TParameterText::Add(const TString& label, const TNodeParameter& parameter)
{
    switch (parameter.Type) {
    case TY_POLYTYPE:
        AddPolytype(label, parameter);
        break;
    case PK_ENUM:
        AddEnum(label, parameter);
        break;
    case PK_RAMP:
        AddRamp(label, static_cast<const TNodeRampParameter&>(parameter));
        break;
    case PK_POLYRAMP:
        AddRamp(label, static_cast<const TNodeRampParameter&>(parameter));
        AddDeclaration(label, " output",
                       QuotedText(static_cast<const TNodePolyRampParameter&>(parameter).GetOutput()));
        break;
    case PK_GROUP: {
        const TNodeGroupParameter& group = static_cast<const TNodeGroupParameter&>(parameter);
        AddValue(label, "", group.Get() ? "on" : "off");
        AddList(label, group.GetChildren());
        break;
    }
    case PK_ANIMATION:
        AddAnimation(label, parameter);
        break;
    default:
        AddSimple(label, parameter);
    }
}

void TParameterText::AddSimple(const TString& label, const TNodeParameter& parameter)
{
    if (parameter.Type == PK_BOOL)
        AddValue(label, "", TextOf(static_cast<const TNodeBoolParameter&>(parameter).Get()));
    else if (parameter.Type == PK_INT)
        AddValue(label, "", TextOf(static_cast<const TNodeIntParameter&>(parameter).Get()));
    else if (parameter.Type == PK_TEXTURE)
        AddValue(label, "", QuotedText(static_cast<const TNodeTextureParameter&>(parameter).GetFileName()));
    else {
        ASSERT(parameter.Type < TY_POLYTYPE);
        const TNodeValueParameter& value = static_cast<const TNodeValueParameter&>(parameter);
        AddValue(label, "", TextOf(value.GetFloats(), value.GetNumFloats()));
    }
}

// The position is what is kept; the entry there is what it means.
void TParameterText::AddEnum(const TString& label, const TNodeParameter& parameter)
{
    const TNodeEnumParameter& choice = static_cast<const TNodeEnumParameter&>(parameter);
    TString chosen = TextOf(choice.GetIndex());
    TNumberedNames names;
    const vector<TNodeEnumParameter::TEntry>& entries = choice.GetValues();
    for (int i = 0; i < entries.size(); ++i) {
        const TString name = names.Add(entries[i].Name);
        TString entry = name;
        entry += " ";
        entry += TextOf(entries[i].Number);
        AddDeclaration(label, " entry", entry);
        if (i == choice.GetIndex())
            chosen = name;
    }
    AddValue(label, "", chosen);
}

void TParameterText::AddAnimation(const TString& label, const TNodeParameter& parameter)
{
    const TNodeAnimationParameter& animation = static_cast<const TNodeAnimationParameter&>(parameter);
    AddValue(label, "", QuotedText(animation.GetFileName()));
    AddValue(label, " uses position", TextOf(animation.UsesPosition()));
    AddValue(label, " uses rotation", TextOf(animation.UsesRotation()));
    AddValue(label, " uses scale", TextOf(animation.UsesScale()));
}

void TParameterText::AddPolytype(const TString& label, const TNodeParameter& parameter)
{
    const TNodePolytypeParameter& polytype = static_cast<const TNodePolytypeParameter&>(parameter);
    if (!polytype.GetLinkInput().IsEmpty())
        AddDeclaration(label, " follows input", QuotedText(polytype.GetLinkInput()));
    if (!polytype.GetLinkOutput().IsEmpty())
        AddDeclaration(label, " follows output", QuotedText(polytype.GetLinkOutput()));
    AddValue(label, " type", GetTypeName(polytype.GetDefaultType()));
    for (int type = 0; type < TY_POLYTYPE; ++type) {
        if (!polytype.IsTypeValid(type))
            continue;
        const TNodeValueParameter& value = *polytype.GetValueParameter(type);
        TString rest = " ";
        rest += GetTypeName(type);
        AddValue(label, rest, TextOf(value.GetFloats(), value.GetNumFloats()));
        TString valueLabel = label;
        valueLabel += rest;
        DeclareValue(valueLabel, value, parameter);
    }
}

// The values of a polytype are told of like the polytype itself, unless a file says otherwise.
void TParameterText::DeclareValue(const TString& label, const TNodeParameter& value,
                                  const TNodeParameter& polytype)
{
    AddDeclaration(label, "", value.Required ? "required" : "valid");
    if (!(value.Name == polytype.Name))
        AddDeclaration(label, " name", QuotedText(value.Name));
    if (!(value.Description == polytype.Description))
        AddDeclaration(label, " description", QuotedText(value.Description));
}

void TParameterText::AddRamp(const TString& label, const TNodeRampParameter& ramp)
{
    AddDeclaration(label, " curves", TextOf(ramp.GetDimensions()));
    AddDeclaration(label, " ramp", TextOf(ramp.GetRampType()));
    AddDeclaration(label, " labels", QuotedText(ramp.GetLabels()));
    AddValue(label, " linear", TextOf(ramp.IsLinear()));
    if (ramp.HasSpareFlag())
        AddValue(label, " flag", TextOf(true));
    for (int i = 0; i < TNodeRampParameter::MaxDimensions; ++i)
        if (ramp.GetLocks()[i] != -1) {
            TTextBuffer rest;
            rest << " curve " << i << " locked to";
            AddValue(label, rest.Print(), TextOf(ramp.GetLocks()[i]));
        }
    for (int i = 0; i < ramp.GetDimensions(); ++i) {
        TTextBuffer rest;
        rest << " curve " << i;
        for (const TRampPoint& point : ramp.GetCurve(i)) {
            const float floats[] = {point.X, point.Y};
            AddValue(label, rest.Print(), TextOf(floats, 2));
        }
    }
}
