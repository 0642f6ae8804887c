#include "particles/cindermill/graph/text/nodetypetext.h"

#include "particles/cindermill/graph/text/parametertext.h"

#include <bit>
#include <cstdio>

namespace {

void AddLine(TTextLines& lines, const char* label, const TString& value)
{
    TTextLine line;
    line.Label = label;
    line.Value = value;
    Append(lines, line);
}

void AddLine(TTextLines& lines, const TString& label, const char* rest, const TString& value)
{
    TString whole = label;
    whole += rest;
    AddLine(lines, whole.Print(), value);
}

void AddNumber(TTextLines& lines, const char* label, int value)
{
    TTextBuffer text;
    text << value;
    AddLine(lines, label, text.GetText());
}

void AddQuotedLine(TTextLines& lines, const char* label, const TString& value)
{
    if (!value.IsEmpty())
        AddLine(lines, label, QuoteNumbered(value, 1));
}

void AddCorner(TTextLines& lines, const char* label, const TVector3& corner)
{
    const float floats[] = {corner[0], corner[1], corner[2]};
    bool isZero = true;
    for (const float number : floats)
        isZero = isZero && std::bit_cast<uint32_t>(number) == 0;
    if (isZero)
        return;
    TTextBuffer text;
    text.AddFloats(floats, 3);
    AddLine(lines, label, text.GetText());
}

void AddFlag(TTextLines& lines, const char* label, const TNodeType& type, uint32_t flag)
{
    if (type.HasFlag(flag))
        AddLine(lines, label, "true");
}

TString GetTypeNames(uint32_t mask)
{
    TString names;
    for (int type = 0; type < TY_NUMTYPES; ++type)
        if ((mask >> type & 1) != 0) {
            names += names.IsEmpty() ? "" : " ";
            names += GetTypeName(type);
        }
    return names;
}

TString GetNumbered(const TString& prefix, const TString& name, TNumberedNames& names)
{
    TString label = prefix;
    label += names.Add(name);
    return label;
}

} // namespace

void AddTypeLines(const TNodeType& type, TTextLines& lines)
{
    AddQuotedLine(lines, "description", type.Description);
    AddLine(lines, "category", GetUsageName(type.Category));
    ASSERT(type.Colour >= 0 && type.Colour < NumNodeColours);
    AddLine(lines, "colour", NodeColourNames[type.Colour]);
    AddFlag(lines, "bypassable", type, FL_BYPASSABLE);
    AddFlag(lines, "process hint", type, FL_PROCESSHINT);
    AddFlag(lines, "last hint", type, FL_LASTHINT);
    AddQuotedLine(lines, "display class", type.DisplayClass);
    for (const TString& name : type.Interfaces)
        AddLine(lines, "interface", QuoteNumbered(name, 1));
    AddNumber(lines, "own parameters", type.NumOwnParameters);
}

void AddOutputLines(const TNodeType& type, TTextLines& values, TTextLines& declarations)
{
    TNumberedNames names;
    for (int i = 0; i < type.GetNumOutputs(); ++i) {
        const TOutputPort& output = type.GetOutput(i);
        const TString label = GetNumbered("output ", output.Name, names);
        AddLine(declarations, label, "", GetTypeName(output.Type));
        AddQuotedLine(declarations, (TString(label) += " description").Print(), output.Description);
        if (output.Type == TY_POLYTYPE) {
            AddLine(declarations, label, " types", GetTypeNames(output.ValidTypes));
            AddLine(values, label, " type", GetTypeName(output.DefaultType));
        } else if (output.DefaultType != output.Type)
            AddLine(declarations, label, " type", GetTypeName(output.DefaultType));
        if (output.LinkInput != -1)
            AddNumber(declarations, (TString(label) += " follows input").Print(), output.LinkInput);
        if (output.LinkOutput != -1)
            AddNumber(declarations, (TString(label) += " follows output").Print(), output.LinkOutput);
    }
}

void AddPropertyLines(const TNodeType& type, TTextLines& lines)
{
    constexpr uint32_t known =
        FL_TYPEMASK | FL_BYPASSED | FL_DYNAMICBOUNDS | FL_STATICBOUNDS | 0xFFu << RenderPriorityShift;
    AddFlag(lines, "bypassed", type, FL_BYPASSED);
    if (type.GetRenderPriority() != 0)
        AddNumber(lines, "priority", type.GetRenderPriority());
    AddFlag(lines, "dynamic box", type, FL_DYNAMICBOUNDS);
    AddFlag(lines, "static box", type, FL_STATICBOUNDS);
    AddCorner(lines, "box from", type.BoundsMin);
    AddCorner(lines, "box to", type.BoundsMax);
    if ((type.Flags & ~known) != 0)
        AddNumber(lines, "other flags", static_cast<int>(type.Flags & ~known));
}

void GetInputLabels(const TNodeType& type, vector<TString>& labels)
{
    TNumberedNames names;
    for (const TNodeParameter* input : type.Inputs)
        Append(labels, names.Add(input->Name));
}

void GetOutputLabels(const TNodeType& type, vector<TString>& labels)
{
    TNumberedNames names;
    for (const TOutputPort& output : type.Outputs)
        Append(labels, names.Add(output.Name));
}
