// Prints docs/node-types.md from the node type files: typereference NODETYPES

#include "library/containers/log.h"
#include "particles/effectgraph/effectgraph.h"
#include "particles/effectgraph/effectgraphclasses.h"
#include "particles/effectgraph/error.h"
#include "particles/effectgraph/groupparameter.h"
#include "particles/effectgraph/nodetypelibrary.h"
#include "particles/effectgraph/polytypeparameter.h"
#include "particles/effectgraph/rampparameter.h"
#include "particles/effectgraph/simpleparameters.h"

#include <cstdio>
#include <string>

namespace {

std::string TypesOf(uint32_t mask)
{
    std::string text;
    for (int type = 0; type < TY_POLYTYPE; ++type)
        if ((mask >> type & 1) != 0)
            text += (text.empty() ? "" : ", ") + std::string(GetTypeName(type));
    return text;
}

std::string FloatsOf(const TNodeParameter& parameter, int count)
{
    float values[MaxValueFloats] = {};
    parameter.GetValue(values);
    std::string text;
    for (int i = 0; i < count; ++i) {
        char number[32];
        std::snprintf(number, sizeof(number), "%s%g", i == 0 ? "" : ", ", static_cast<double>(values[i]));
        text += number;
    }
    return text;
}

std::string EntriesOf(const TNodeEnumParameter& parameter)
{
    std::string text;
    for (const TNodeEnumParameter::TEntry& entry : parameter.GetValues())
        text +=
            (text.empty() ? "" : ", ") + std::string(entry.Name.Print()) + " " + std::to_string(entry.Number);
    return text + "; " + parameter.GetValues()[parameter.GetIndex()].Name.Print();
}

std::string DefaultOf(const TNodeParameter& parameter)
{
    if (parameter.Type < TY_POLYTYPE)
        return FloatsOf(parameter, GetTypeFloats(parameter.Type));
    switch (parameter.Type) {
    case PK_BOOL:
        return static_cast<const TNodeBoolParameter&>(parameter).Get() ? "on" : "off";
    case PK_GROUP:
        return static_cast<const TNodeGroupParameter&>(parameter).Get() ? "on" : "off";
    case PK_INT:
        return std::to_string(static_cast<const TNodeIntParameter&>(parameter).Get());
    case PK_ENUM:
        return EntriesOf(static_cast<const TNodeEnumParameter&>(parameter));
    default:
        return "";
    }
}

std::string KindOf(const TNodeParameter& parameter)
{
    if (parameter.Type == TY_POLYTYPE)
        return TypesOf(static_cast<const TNodePolytypeParameter&>(parameter).GetValidTypes());
    return GetParameterTag(parameter.Type);
}

void PrintRow(const std::string& name, const std::string& kind, const std::string& value,
              const TString& description)
{
    std::printf("| %s | %s | %s | %s |\n", name.c_str(), kind.c_str(), value.c_str(), description.Print());
}

void PrintParameter(const TNodeParameter& parameter, const std::string& prefix)
{
    const std::string name = prefix + parameter.Name.Print();
    PrintRow(name, KindOf(parameter), DefaultOf(parameter), parameter.Description);
    if (parameter.Type != PK_GROUP)
        return;
    for (const TNodeParameter* child : static_cast<const TNodeGroupParameter&>(parameter).GetChildren())
        PrintParameter(*child, name + ".");
}

void PrintFlags(const TNodeType& type)
{
    std::string text = std::string("*") + GetUsageName(type.Category) + "*, `" + type.ClassName.Print() + "`";
    if (!type.DisplayClass.IsEmpty())
        text += std::string(", shown by `") + type.DisplayClass.Print() + "`";
    if (type.HasFlag(FL_BYPASSABLE))
        text += ", can be bypassed";
    if (type.HasFlag(FL_PROCESSHINT))
        text += ", joins the one group that takes its output";
    if (type.HasFlag(FL_LASTHINT))
        text += ", runs late";
    std::printf("%s\n\n", text.c_str());
}

void PrintType(const TNodeType& type)
{
    std::printf("### %s\n\n%s\n\n", type.Name.Print(), type.Description.Print());
    PrintFlags(type);
    if (type.GetNumInputs() > 0) {
        std::printf("| Input | Type | Default | |\n| --- | --- | --- | --- |\n");
        for (int i = 0; i < type.GetNumInputs(); ++i)
            PrintRow(type.GetInput(i)->Name.Print(), KindOf(*type.GetInput(i)), DefaultOf(*type.GetInput(i)),
                     type.GetInput(i)->Description);
        std::printf("\n");
    }
    if (type.GetNumOutputs() > 0) {
        std::printf("| Output | Type | | |\n| --- | --- | --- | --- |\n");
        for (int i = 0; i < type.GetNumOutputs(); ++i) {
            const TOutputPort& port = type.GetOutput(i);
            const bool tied = type.FindInputNamedLikeOutput(i) != -1;
            PrintRow(port.Name.Print(),
                     port.Type == TY_POLYTYPE ? TypesOf(port.ValidTypes) : GetTypeName(port.Type),
                     tied ? "in place" : "", port.Description);
        }
        std::printf("\n");
    }
    if (type.GetNumParameters() > 0) {
        std::printf("| Parameter | Kind | Default | |\n| --- | --- | --- | --- |\n");
        for (int i = 0; i < type.GetNumParameters(); ++i)
            PrintParameter(*type.GetParameter(i), "");
        std::printf("\n");
    }
}

} // namespace

int main(int argc, char** argv)
{
    RegisterEffectGraphClasses();
    if (argc != 2) {
        std::fputs("usage: typereference NODETYPES\n", stderr);
        return 2;
    }
    TNodeTypeLibrary library;
    TErrorList errors;
    library.Load(argv[1], errors);
    for (const TError* error : errors) {
        TString text;
        error->GetText(text);
        std::fputs(text.Print(), stderr);
    }
    if (!errors.empty())
        return 1;
    std::printf(
        "# The node types\n\n"
        "This page is printed from the files under `NodeTypes/` by `typereference`. An output that works in\n"
        "place has the name of an input: the node changes the value that flows through it. A polytype port\n"
        "lists the types that it takes.\n\n");
    for (int i = 0; i < library.GetNumRootItems(); ++i) {
        const TNodeTypeItem& folder = library.GetRootItem(i);
        std::printf("## %s\n\n", folder.Name.Print());
        for (int child : folder.Children)
            if (library.GetItem(child).TypeIndex != -1)
                PrintType(*library.GetType(library.GetItem(child).TypeIndex));
    }
    return 0;
}
