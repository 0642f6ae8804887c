#include "particles/cindermill/graph/text/typedraft.h"

#include "library/containers/append.h"
#include "particles/effectgraph/groupparameter.h"
#include "particles/effectgraph/polytypeparameter.h"
#include "particles/effectgraph/rampparameter.h"
#include "particles/effectgraph/simpleparameters.h"

namespace {

bool TakeType(TTextCursor& cursor, int& type)
{
    for (type = 0; type < TY_NUMTYPES; ++type)
        if (cursor.TakeLast(GetTypeName(type)))
            return true;
    return false;
}

bool TakeTypes(TTextCursor cursor, uint32_t& mask)
{
    mask = 0;
    vector<TString> names;
    const TString text = cursor.GetRest();
    text.Split(names, ' ');
    for (const TString& name : names) {
        TTextCursor at(name);
        int type = 0;
        if (name.IsEmpty())
            continue;
        if (!TakeType(at, type) || type == TY_POLYTYPE)
            return false;
        mask |= 1u << type;
    }
    return true;
}

// The positions tell the enumerations of a type apart.
TString GetEntryKey(int parameter, const TString& name)
{
    TString key;
    key.Format("%d ", parameter);
    key += name;
    return key;
}

// How many lines the value of a parameter takes at the least; the points of a ramp come on top.
int GetNumLinesOf(const TNodeParameter& parameter)
{
    int count = 1;
    if (parameter.Type == PK_ANIMATION)
        count = 4;
    for (int type = 0; type < TY_POLYTYPE && parameter.Type == TY_POLYTYPE; ++type)
        count += static_cast<const TNodePolytypeParameter&>(parameter).IsTypeValid(type) ? 1 : 0;
    return count;
}

void AddParametersOf(const vector<TNodeParameter*>& list, vector<TNodeParameter*>& result)
{
    for (TNodeParameter* parameter : list) {
        Append(result, parameter);
        if (parameter->Type == PK_GROUP)
            AddParametersOf(static_cast<TNodeGroupParameter*>(parameter)->GetChildren(), result);
    }
}

} // namespace

TTypeDraft::TTypeDraft(const TString& className) : Type(new TNodeType)
{
    Type->ClassName = className;
}

bool TTypeDraft::CanHold(const TNodeType& type)
{
    vector<TNodeParameter*> parameters;
    GetParameters(type, parameters);
    if (parameters.size() > MaxParameters || type.Interfaces.size() > TNodeType::MaxPorts)
        return false;
    for (const TNodeParameter* parameter : parameters) {
        int count = 0;
        if (parameter->Type == PK_ENUM)
            count = static_cast<const TNodeEnumParameter*>(parameter)->GetValues().size();
        else if (parameter->Type == PK_GROUP)
            count = static_cast<const TNodeGroupParameter*>(parameter)->GetChildren().size();
        if (count > TNodeType::MaxPorts)
            return false;
    }
    return true;
}

void TTypeDraft::GetParameters(const TNodeType& type, vector<TNodeParameter*>& result)
{
    AddParametersOf(type.Parameters, result);
    AddParametersOf(type.Inputs, result);
}

int TTypeDraft::FindEntry(int parameter, const TString& name) const
{
    const int index = EntryKeys.Find(GetEntryKey(parameter, name));
    return index != -1 ? EntryPlaces[index] : -1;
}

int TTypeDraft::GetNumValueLines() const
{
    int count = 0;
    for (const TNodeParameter* parameter : Parameters)
        count += GetNumLinesOf(*parameter);
    for (const TOutputPort& output : Type->Outputs)
        count += output.Type == TY_POLYTYPE ? 1 : 0;
    return count;
}

bool TTypeDraft::AddLine(TTextCursor line)
{
    TTextCursor label;
    if (!line.TakeLabel(label))
        return false;
    const TString path = label.TakePath();
    const TString rest = label.GetRest();
    TTextCursor kind(path);
    if (path.IsEmpty())
        return AddTypeLine(label, line);
    if (kind.Take("output "))
        return AddOutputLine(path, rest, line);
    const int index = FindParameter(path);
    if (index == -1)
        return rest.IsEmpty() && AddParameter(path, line);
    return AddParameterLine(index, rest, line);
}

bool TTypeDraft::AddTypeLine(const TTextCursor& label, TTextCursor value)
{
    static constexpr struct
    {
        const char* Label;
        uint32_t Flag;
    } Flags[] = {{"bypassable", FL_BYPASSABLE}, {"process hint", FL_PROCESSHINT}, {"last hint", FL_LASTHINT}};
    const TString name = label.GetRest();
    if (IsText(name, "description"))
        return value.TakeLastQuoted(Type->Description);
    if (IsText(name, "display class"))
        return value.TakeLastQuoted(Type->DisplayClass);
    if (IsText(name, "own parameters"))
        return value.TakeLastInt(Type->NumOwnParameters);
    if (IsText(name, "interface")) {
        TString text;
        if (Type->Interfaces.size() >= TNodeType::MaxPorts || !value.TakeLastQuoted(text))
            return false;
        Append(Type->Interfaces, text);
        return true;
    }
    for (int usage = 0; IsText(name, "category") && usage < TU_NUMUSAGES; ++usage)
        if (value.TakeLast(GetUsageName(usage))) {
            Type->Category = usage;
            return true;
        }
    for (int colour = 0; IsText(name, "colour") && colour < NumNodeColours; ++colour)
        if (value.TakeLast(NodeColourNames[colour])) {
            Type->Colour = colour;
            return true;
        }
    for (const auto& flag : Flags)
        if (IsText(name, flag.Label) && value.TakeLast("true")) {
            Type->SetFlag(flag.Flag, true);
            return true;
        }
    return false;
}

bool TTypeDraft::HasRoom(const vector<TNodeParameter*>& list) const
{
    return list.size() < TNodeType::MaxPorts && Parameters.size() < MaxParameters;
}

// The last name of the label is the parameter's own; what stands ahead of it is the list that it is in.
bool TTypeDraft::AddParameter(const TString& label, TTextCursor value)
{
    TTextCursor cursor(label);
    const bool isInput = cursor.Take("input");
    TString path(isInput ? "input" : "parameter");
    if (!isInput && !cursor.Take("parameter"))
        return false;
    vector<TNodeParameter*>* list = isInput ? &Type->Inputs : &Type->Parameters;
    TNodeGroupParameter* group = nullptr;
    TString name;
    for (int depth = 0; !cursor.IsAtEnd(); ++depth) {
        const char* start = cursor.GetPosition();
        if (depth > TNodeGroupParameter::MaxDepth || !cursor.Take(" ") || !cursor.TakeName(name))
            return false;
        if (cursor.IsAtEnd())
            break;
        TString part;
        part.Assign(start, cursor.GetPosition());
        path += part;
        const int index = FindParameter(path);
        if (index == -1 || Parameters[index]->Type != PK_GROUP)
            return false;
        group = static_cast<TNodeGroupParameter*>(Parameters[index]);
    }
    const TString written = value.GetRest();
    for (int kind = 0; kind < PK_NUMKINDS; ++kind) {
        TTextCursor at = value;
        if (!at.Take(GetParameterTag(kind)) || (!at.IsAtEnd() && !at.TakeLast(" required")))
            continue;
        if ((isInput && (group != nullptr || kind > TY_POLYTYPE)) ||
            !HasRoom(group != nullptr ? group->GetChildren() : *list))
            return false;
        TNodeParameter* parameter = CreateNodeParameter(kind);
        parameter->Name = name;
        parameter->Required = written.FindString(" required", true) != -1;
        if (group != nullptr)
            group->AddChild(parameter);
        else
            Append(*list, parameter);
        Labels.Add(label);
        Append(Parameters, parameter);
        if (isInput) {
            TString port;
            port.Assign(label.Print() + std::strlen("input "), label.Print() + label.Length());
            InputLabels.Add(port);
        }
        return true;
    }
    return false;
}

bool TTypeDraft::AddParameterLine(int index, const TString& rest, TTextCursor value)
{
    TNodeParameter& parameter = *Parameters[index];
    if (IsText(rest, " description"))
        return value.TakeLastQuoted(parameter.Description);
    switch (parameter.Type) {
    case PK_ENUM:
        return IsText(rest, " entry") && AddEntry(index, value);
    case PK_RAMP:
    case PK_POLYRAMP:
        return AddRampLine(parameter, rest, value);
    case TY_POLYTYPE:
        return AddPolytypeLine(parameter, rest, value);
    default:
        return false;
    }
}

bool TTypeDraft::AddEntry(int index, TTextCursor value)
{
    TNodeEnumParameter& choice = static_cast<TNodeEnumParameter&>(*Parameters[index]);
    TNodeEnumParameter::TEntry entry;
    const char* begin = value.GetPosition();
    if (choice.GetValues().size() >= TNodeType::MaxPorts || !value.TakeName(entry.Name))
        return false;
    TString name;
    name.Assign(begin, value.GetPosition());
    if (!value.Take(" ") || !value.TakeLastInt(entry.Number) || !EntryKeys.Add(GetEntryKey(index, name)))
        return false;
    Append(EntryPlaces, choice.GetValues().size());
    choice.AddEntry(entry);
    return true;
}

bool TTypeDraft::AddRampLine(TNodeParameter& parameter, const TString& rest, TTextCursor value)
{
    TNodeRampParameter& ramp = static_cast<TNodeRampParameter&>(parameter);
    int number = 0;
    TString text;
    if (IsText(rest, " curves"))
        return value.TakeLastInt(number) && ramp.SetDimensions(number);
    if (IsText(rest, " ramp"))
        return value.TakeLastInt(number) && ramp.SetRampType(number);
    if (!value.TakeLastQuoted(text))
        return false;
    if (IsText(rest, " labels"))
        ramp.SetLabels(text);
    else if (IsText(rest, " output") && parameter.Type == PK_POLYRAMP)
        static_cast<TNodePolyRampParameter&>(parameter).SetOutput(text);
    else
        return false;
    return true;
}

bool TTypeDraft::AddPolytypeLine(TNodeParameter& parameter, const TString& rest, TTextCursor value)
{
    TNodePolytypeParameter& polytype = static_cast<TNodePolytypeParameter&>(parameter);
    TString text;
    if (IsText(rest, " follows input") || IsText(rest, " follows output")) {
        if (!value.TakeLastQuoted(text))
            return false;
        IsText(rest, " follows input") ? polytype.SetLinkInput(text) : polytype.SetLinkOutput(text);
        return true;
    }
    for (int type = 0; type < TY_POLYTYPE; ++type) {
        TTextCursor what(rest);
        if (!what.Take(" ") || !what.Take(GetTypeName(type)))
            continue;
        const bool isNew = what.IsAtEnd();
        if (isNew && !polytype.IsTypeValid(type)) {
            polytype.AddType(type).Required = value.TakeLast("required");
            return value.IsAtEnd() || value.TakeLast("valid");
        }
        if (isNew || !polytype.IsTypeValid(type))
            continue;
        TNodeValueParameter& own = *polytype.GetValueParameter(type);
        if (what.TakeLast(" name"))
            return value.TakeLastQuoted(own.Name);
        if (what.TakeLast(" description"))
            return value.TakeLastQuoted(own.Description);
    }
    return false;
}

bool TTypeDraft::AddOutputLine(const TString& label, const TString& rest, TTextCursor value)
{
    TString port;
    port.Assign(label.Print() + std::strlen("output "), label.Print() + label.Length());
    const int index = FindOutput(port);
    if (index != -1)
        return DescribeOutput(Type->GetOutput(index), rest, value);
    TOutputPort output;
    TTextCursor cursor(port);
    if (!rest.IsEmpty() || Type->GetNumOutputs() >= TNodeType::MaxPorts || !cursor.TakeName(output.Name) ||
        !cursor.IsAtEnd() || !TakeType(value, output.Type))
        return false;
    if (output.Type != TY_POLYTYPE) {
        output.DefaultType = output.Type;
        output.ValidTypes = 1u << output.Type;
    }
    Append(Type->Outputs, output);
    OutputLabels.Add(port);
    return true;
}

bool TTypeDraft::DescribeOutput(TOutputPort& output, const TString& rest, TTextCursor value)
{
    if (IsText(rest, " description"))
        return value.TakeLastQuoted(output.Description);
    if (IsText(rest, " types"))
        return output.Type == TY_POLYTYPE && TakeTypes(value, output.ValidTypes);
    if (IsText(rest, " type"))
        return TakeType(value, output.DefaultType) && output.DefaultType != TY_POLYTYPE;
    if (IsText(rest, " follows input"))
        return value.TakeLastInt(output.LinkInput);
    return IsText(rest, " follows output") && value.TakeLastInt(output.LinkOutput);
}
