#include "particles/effectgraph/nodetypereader.h"

#include "library/containers/append.h"
#include "library/containers/owner.h"
#include "particles/effectgraph/polytypeparameter.h"
#include "particles/effectgraph/xmltext.h"

static constexpr const char* TypeTags[TY_NUMTYPES] = {"Scalar", "Scale",     "Vector3",       "Quaternion",
                                                      "Colour", "Transform", "TextureCoords", "Polytype"};

bool TNodeTypeReader::Read()
{
    if (!Xml.FindTag("node"))
        return File.Fail("Node type file missing node tag");
    if (Xml.IsEmptyTag())
        return File.Fail("Node type file missing name tag");
    return ReadHead() && ReadFlagsAndColour() && ReadSections();
}

bool TNodeTypeReader::ReadHead()
{
    static constexpr const char* MissingName = "Node type file missing name tag";
    static constexpr const char* BadDescription = "Error file reading description tag";
    static constexpr const char* Names[] = {"description", "type"};
    if (!Xml.FindTag("name"))
        return File.Fail(MissingName);
    if (!ReadText(Type.Name, MissingName))
        return false;
    int found = Xml.FindAnyTagFromHere(2, Names);
    if (found == -1)
        return File.Fail("Node type file missing description/type tags");
    if (found == 0) {
        if (!ReadText(Type.Description, BadDescription))
            return false;
        if (!Xml.FindTagFromHere("type"))
            return File.Fail("Node type file missing type tag");
    }
    return ReadCategory();
}

bool TNodeTypeReader::ReadCategory()
{
    TString text;
    if (!ReadText(text, "Node type file missing type tag"))
        return false;
    int category = 0;
    while (category < TU_NUMUSAGES && text.Compare(GetUsageName(category)) != 0)
        ++category;
    if (category == TU_NUMUSAGES)
        return File.Fail("Unknown node type %s", QuoteText(text).Print());
    Type.Category = category;
    return true;
}

bool TNodeTypeReader::ReadFlagsAndColour()
{
    constexpr int NumFlags = 3;
    static constexpr const char* Missing =
        "Node type file missing bypassable/processhint/lasthint/colour tags";
    static constexpr const char* Names[NumFlags + 1] = {"bypassable", "processhint", "lasthint", "colour"};
    static constexpr uint32_t Flags[NumFlags] = {FL_BYPASSABLE, FL_PROCESSHINT, FL_LASTHINT};
    int step = 0;
    while (true) {
        const int found = Xml.FindAnyTagFromHere(NumFlags + 1 - step, Names + step);
        if (found == -1)
            return File.Fail(Missing);
        step += found;
        if (step == NumFlags)
            break;
        Type.SetFlag(Flags[step], true);
        ++step;
    }
    TString text;
    if (!ReadText(text, Missing))
        return false;
    int colour = 0;
    while (colour < NumNodeColours && text.Compare(NodeColourNames[colour]) != 0)
        ++colour;
    if (colour == NumNodeColours)
        return File.Fail("Unknown colour %s in node type file", QuoteText(text).Print());
    Type.Colour = colour;
    return true;
}

bool TNodeTypeReader::ReadSections()
{
    enum TSection
    {
        SECTION_PARAMETERS,
        SECTION_INPUTS,
        SECTION_OUTPUTS,
        SECTION_CODE,
        NUM_SECTIONS
    };
    static constexpr const char* Names[NUM_SECTIONS] = {"parameters", "inputs", "outputs", "code"};
    int section = 0;
    while (true) {
        const int found = Xml.FindAnyTagFromHere(NUM_SECTIONS - section, Names + section);
        if (found == -1)
            return File.Fail("Node type file missing parameter/inputs/outputs/code section(s)");
        section += found;
        if (section == SECTION_CODE)
            return CheckInputLinks() && ReadCode();
        if (!Xml.IsEmptyTag()) {
            if (section == SECTION_PARAMETERS && !ReadParameters(Type.Parameters, false))
                return false;
            if (section == SECTION_INPUTS && !ReadParameters(Type.Inputs, true))
                return false;
            if (section == SECTION_OUTPUTS && !ReadOutputs())
                return false;
            // A section that the file's end cuts off has no code section behind it.
            Xml.LeaveTag();
        }
        if (section == SECTION_PARAMETERS)
            Type.NumOwnParameters = Type.Parameters.size();
        ++section;
    }
}

bool TNodeTypeReader::ReadParameters(vector<TNodeParameter*>& result, bool areInputs)
{
    while (true) {
        TNodeParameter* parameter = nullptr;
        if (!ParseParameter(File, parameter, areInputs))
            return false;
        if (parameter == nullptr)
            return true;
        Append(result, parameter);
        if (result.size() > TNodeType::MaxPorts)
            return File.Fail("More than %d parameters, inputs or outputs in node type file",
                             TNodeType::MaxPorts);
    }
}

bool TNodeTypeReader::ReadOutputs()
{
    while (true) {
        const int type = Xml.FindAnyTagFromHere(TY_NUMTYPES, TypeTags);
        if (type == -1)
            return ResolveOutputLinks();
        if (Type.Outputs.size() == TNodeType::MaxPorts)
            return File.Fail("More than %d parameters, inputs or outputs in node type file",
                             TNodeType::MaxPorts);
        if (Xml.IsEmptyTag())
            return File.Fail("Output port missing name tag in node type file");
        if (!ReadOutput(type))
            return false;
        if (!Xml.LeaveTag())
            return File.Fail("Output port missing end tag in node type file");
    }
}

bool TNodeTypeReader::ReadOutput(int type)
{
    TOutputPort output;
    output.Type = type;
    if (!Xml.FindTag("name"))
        return File.Fail("Output port missing name tag in node type file");
    if (!File.ReadElement(output.Name, "Failed to read output port name tag in node type file",
                          "Output port missing name tag end in node type file"))
        return false;
    if (Xml.FindTagFromHere("Description") &&
        !File.ReadElement(output.Description, "Failed to read output port description tag in node type file",
                          "Output port missing description tag end in node type file"))
        return false;
    Append(OutputLinks, TString());
    if (type == TY_POLYTYPE) {
        if (!ReadPolytypeOutput(output))
            return false;
    } else {
        output.DefaultType = type;
        output.ResolvedType = type;
        output.ValidTypes = 1u << type;
        // The first output of an effect node is the effect itself; the others are values that it exposes.
        if (Type.Category == TU_EFFECT && !Type.Outputs.empty() && !ReadUserType(output))
            return false;
    }
    Append(Type.Outputs, output);
    return true;
}

bool TNodeTypeReader::ReadPolytypeOutput(TOutputPort& output)
{
    static constexpr const char* Names[] = {"linkinput", "linkoutput", "validtypes"};
    TString missing;
    missing.Format("Polytype output %s missing linkinput, linkoutput or validtypes tags",
                   QuoteText(output.Name).Print());
    // A missing description has walked the reader to the element's end.
    Xml.RewindTag();
    int step = 0;
    while (true) {
        const int found = Xml.FindAnyTagFromHere(3 - step, Names + step);
        if (found == -1)
            return File.Fail(missing.Print());
        step += found;
        if (step == 2)
            break;
        TString link;
        if (!ReadText(link, missing.Print()))
            return false;
        if (step == 0) {
            output.LinkInput = Type.FindInput(link);
            if (output.LinkInput == -1)
                return File.Fail("Polytype input link %s not found in list of input ports",
                                 QuoteText(link).Print());
        } else {
            if (link.Compare(output.Name) == 0)
                return File.Fail("Polytype output from port %s cannot be to the same port!",
                                 QuoteText(output.Name).Print());
            OutputLinks.back() = link;
        }
        ++step;
    }
    const bool isEmpty = Xml.IsEmptyTag();
    if (!isEmpty)
        ReadValidTypes(output);
    if (output.ValidTypes == 0)
        return File.Fail("Polytype output port %s has no valid types", QuoteText(output.Name).Print());
    if (!isEmpty)
        Xml.LeaveTag();
    return true;
}

void TNodeTypeReader::ReadValidTypes(TOutputPort& output)
{
    for (int type = 0; type < TY_POLYTYPE; ++type) {
        const int found = Xml.FindAnyTagFromHere(TY_POLYTYPE - type, TypeTags + type);
        if (found == -1)
            return;
        type += found;
        if (output.ValidTypes == 0)
            output.DefaultType = type;
        output.ValidTypes |= 1u << type;
        if (!Xml.IsEmptyTag())
            Xml.LeaveTag();
    }
}

bool TNodeTypeReader::ResolveOutputLinks()
{
    constexpr int NameLimit = 400;
    for (int i = 0; i < Type.Outputs.size(); ++i) {
        if (OutputLinks[i].IsEmpty())
            continue;
        TOutputPort& output = Type.Outputs[i];
        output.LinkOutput = Type.FindOutput(OutputLinks[i]);
        if (output.LinkOutput == -1)
            return File.Fail("Polytype output %s output link %s not found",
                             QuoteText(output.Name, NameLimit).Print(),
                             QuoteText(OutputLinks[i], NameLimit).Print());
    }
    return true;
}

// An input may follow ports that stand behind it.
bool TNodeTypeReader::CheckInputLinks()
{
    constexpr int NameLimit = 400;
    for (const TNodeParameter* input : Type.Inputs) {
        if (input->Type != TY_POLYTYPE)
            continue;
        const TNodePolytypeParameter& polytype = static_cast<const TNodePolytypeParameter&>(*input);
        const TString& linkInput = polytype.GetLinkInput();
        const TString& linkOutput = polytype.GetLinkOutput();
        if (!linkInput.IsEmpty() && Type.FindInput(linkInput) == -1)
            return File.Fail("Polytype input %s input link %s not found",
                             QuoteText(input->Name, NameLimit).Print(),
                             QuoteText(linkInput, NameLimit).Print());
        if (!linkOutput.IsEmpty() && Type.FindOutput(linkOutput) == -1)
            return File.Fail("Polytype input %s output link %s not found",
                             QuoteText(input->Name, NameLimit).Print(),
                             QuoteText(linkOutput, NameLimit).Print());
    }
    return true;
}

bool TNodeTypeReader::ReadUserType(const TOutputPort& output)
{
    static constexpr const char* BadCounts[TY_POLYTYPE] = {
        nullptr,
        "Badly formatted default values for scale user type. Expecting 2 defaults, got %d",
        "Badly formatted default values for vector3 user type. Expecting 3 defaults, got %d",
        "Badly formatted default values for quaternion user type. Expecting 3 defaults, got %d",
        "Badly formatted default values for colour user type. Expecting 4 defaults, got %d",
        "Badly formatted default values for transform user type. Expecting 6 defaults, got %d",
        "Badly formatted default values for texcoord user type. Expecting 4 defaults, got %d",
    };
    static constexpr const char* MissingEnd = "Output port missing end tag in node type file";
    float floats[MaxValueFloats] = {0, 0, 0, 0, 0, 0};
    if (Xml.FindTag("defaultvalue")) {
        TString text;
        if (!File.GetText(text, MissingEnd))
            return false;
        if (output.Type == TY_SCALAR)
            floats[0] = text.ToFloat();
        else {
            vector<TString> pieces;
            text.Split(pieces, ',');
            if (pieces.size() != GetTypeFloats(output.Type))
                return File.Fail(BadCounts[output.Type], pieces.size());
            for (int i = 0; i < pieces.size(); ++i)
                floats[i] = pieces[i].ToFloat();
        }
        if (!File.Leave(MissingEnd))
            return false;
    }
    TOwner<TNodeParameter> parameter(CreateNodeParameter(output.Type));
    parameter->Name = output.Name;
    parameter->Description = output.Description;
    static_cast<TNodeValueParameter*>(parameter.Get())->SetValue(floats);
    if (Type.Parameters.size() == TNodeType::MaxPorts)
        return File.Fail("More than %d parameters, inputs or outputs in node type file", TNodeType::MaxPorts);
    Append(Type.Parameters, parameter.Release());
    return true;
}

bool TNodeTypeReader::ReadCode()
{
    static constexpr const char* Missing = "Node type file missing classname tag in code section";
    static constexpr const char* Names[] = {"displayclass", "interface"};
    if (Xml.IsEmptyTag() || !Xml.FindTag("classname"))
        return File.Fail(Missing);
    if (!ReadText(Type.ClassName, Missing))
        return false;
    int found = Xml.FindAnyTagFromHere(2, Names);
    if (found == 0) {
        if (!ReadText(Type.DisplayClass, Missing))
            return false;
        found = Xml.FindTagFromHere("interface") ? 1 : -1;
    }
    return found == -1 || ReadInterfaces();
}

bool TNodeTypeReader::ReadInterfaces()
{
    TString text;
    if (!ReadText(text, "Node type file missing parameter/inputs/outputs/code section(s)"))
        return false;
    text.Split(Type.Interfaces, ',');
    return true;
}
