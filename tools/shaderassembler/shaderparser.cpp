#include "tools/shaderassembler/shaderparser.h"

#include "tools/shaderassembler/opcodes.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <sstream>

namespace {
// What every driver grants: one fragment temporary is kept for the coordinates of texture reads.
constexpr int VertexTemporaries = 12;
constexpr int FragmentTemporaries = 15;
constexpr int MaxVertexInstructions = 128;
constexpr int MaxFragmentArithmetic = 48;
constexpr int MaxTextureReads = 24;
constexpr int MaxAttributes = 16;
constexpr int MaxSamplers = 16;
// Parameters of a vertex program: the shared ones, and from FirstLocal on the program's own.
constexpr int ParametersOfAKind = 96;
constexpr int FirstLocal = 256;

const std::string Components = "xyzw";

struct TFixedRegister
{
    const char* Name;
    int Register;
};

constexpr TFixedRegister VertexOutputs[] = {
    {"result.position", 0},     {"result.color", 1},        {"result.color.secondary", 2},
    {"result.texcoord[0]", 7},  {"result.texcoord[1]", 8},  {"result.texcoord[2]", 9},
    {"result.texcoord[3]", 10}, {"result.texcoord[4]", 11}, {"result.texcoord[5]", 12},
    {"result.texcoord[6]", 13}, {"result.texcoord[7]", 14},
};

constexpr TFixedRegister FragmentInputs[] = {
    {"fragment.position", 0},    {"fragment.color.primary", 1}, {"fragment.color.secondary", 2},
    {"fragment.fogcoord", 3},    {"fragment.texcoord[0]", 4},   {"fragment.texcoord[1]", 5},
    {"fragment.texcoord[2]", 6}, {"fragment.texcoord[3]", 7},   {"fragment.texcoord[4]", 8},
    {"fragment.texcoord[5]", 9}, {"fragment.texcoord[6]", 10},  {"fragment.texcoord[7]", 11},
};

template <class TTable>
int FindFixed(const TTable& table, const std::string& name)
{
    for (const TFixedRegister& entry : table)
        if (name == entry.Name)
            return entry.Register;
    return -1;
}

std::string Trim(const std::string& text)
{
    const size_t first = text.find_first_not_of(" \t\r");
    if (first == std::string::npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

std::vector<std::string> SplitWords(const std::string& text)
{
    std::istringstream stream(text);
    std::vector<std::string> words;
    for (std::string word; stream >> word;)
        words.push_back(word);
    return words;
}

std::vector<std::string> SplitAtCommas(const std::string& text)
{
    std::vector<std::string> parts;
    size_t start = 0;
    for (size_t comma = text.find(','); comma != std::string::npos; comma = text.find(',', start)) {
        parts.push_back(Trim(text.substr(start, comma - start)));
        start = comma + 1;
    }
    parts.push_back(Trim(text.substr(start)));
    return parts;
}

template <class TNumber>
bool ParseNumber(const std::string& text, TNumber& result)
{
    const char* end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data(), end, result);
    return parsed.ec == std::errc() && parsed.ptr == end;
}

bool IsIdentifier(const std::string& name)
{
    const auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; };
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    return !name.empty() && isLetter(name[0]) &&
           std::all_of(name.begin(), name.end(), [&](char c) { return isLetter(c) || isDigit(c); });
}

// The number of a name such as R5, or -1.
int TemporaryNumber(const std::string& name)
{
    int number = 0;
    return name.size() > 1 && name[0] == 'R' && ParseNumber(name.substr(1), number) && number >= 0 ? number
                                                                                                   : -1;
}

// Cuts the letters behind the last point off the name if they are components.
std::string CutComponents(std::string& name)
{
    const size_t point = name.find_last_of('.');
    if (point == std::string::npos)
        return {};
    const std::string letters = name.substr(point + 1);
    if (letters.empty() || letters.find_first_not_of(Components) != std::string::npos)
        return {};
    name.erase(point);
    return letters;
}

// Cuts an index in brackets off the name; false if what stands in them is no number.
bool CutIndex(std::string& name, int& index)
{
    index = 0;
    if (name.empty() || name.back() != ']')
        return true;
    const size_t open = name.find('[');
    if (open == std::string::npos || !ParseNumber(name.substr(open + 1, name.size() - open - 2), index))
        return false;
    name.erase(open);
    return true;
}
} // namespace

void TShaderParser::Fail(const std::string& message)
{
    Errors.push_back(FileName + ":" + std::to_string(std::max(Line, 1)) + ": " + message);
}

bool TShaderParser::Parse(const std::string& text)
{
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        ++Line;
        ParseLine(Trim(line.substr(0, line.find('#'))));
    }
    CheckEnd();
    return Errors.empty();
}

void TShaderParser::ParseLine(const std::string& line)
{
    const std::vector<std::string> words = SplitWords(line);
    if (words.empty())
        return;
    if (!KindGiven)
        ParseKind(words);
    else if (!ParseDeclaration(words))
        ParseInstruction(words[0], Trim(line.substr(words[0].size())));
}

void TShaderParser::ParseKind(const std::vector<std::string>& words)
{
    KindGiven = true;
    Program.IsFragment = words[0] == "fragment";
    if (words.size() != 2 || words[1] != "program" || (!Program.IsFragment && words[0] != "vertex"))
        Fail("a source begins with \"vertex program\" or \"fragment program\"");
}

bool TShaderParser::ParseDeclaration(const std::vector<std::string>& words)
{
    if (words[0] == "attribute")
        DeclareAttribute(words);
    else if (words[0] == "sampler")
        DeclareSampler(words);
    else if (words[0] == "constant" || words[0] == "literal")
        DeclareValue(words, words[0] == "literal");
    else
        return false;
    return true;
}

bool TShaderParser::CheckNewName(const std::string& name)
{
    if (!IsIdentifier(name) || TemporaryNumber(name) >= 0)
        Fail("\"" + name + "\" cannot be a name");
    else if (FindValue(name) >= 0 ||
             std::ranges::find(Program.Attributes, name) != Program.Attributes.end() ||
             std::ranges::find(Program.Samplers, name) != Program.Samplers.end())
        Fail("\"" + name + "\" is declared twice");
    else
        return true;
    return false;
}

void TShaderParser::DeclareAttribute(const std::vector<std::string>& words)
{
    if (Program.IsFragment)
        Fail("a fragment program has no attributes");
    else if (words.size() != 2)
        Fail("expected: attribute NAME");
    else if (Program.Attributes.size() == MaxAttributes)
        Fail("more than 16 attributes");
    else if (CheckNewName(words[1]))
        Program.Attributes.push_back(words[1]);
}

void TShaderParser::DeclareSampler(const std::vector<std::string>& words)
{
    if (!Program.IsFragment)
        Fail("a vertex program has no samplers");
    else if (words.size() != 2)
        Fail("expected: sampler NAME");
    else if (Program.Samplers.size() == MaxSamplers)
        Fail("more than 16 samplers");
    else if (CheckNewName(words[1]))
        Program.Samplers.push_back(words[1]);
}

void TShaderParser::DeclareValue(const std::vector<std::string>& words, bool literal)
{
    TNamedValue value;
    value.IsLiteral = literal;
    bool slotGiven = false;
    bool valueGiven = false;
    bool wellFormed = words.size() >= 2;
    if (wellFormed)
        value.Name = words[1];
    for (size_t i = 2; i < words.size() && wellFormed;) {
        if (words[i] == "slot" && !Program.IsFragment && i + 1 < words.size()) {
            wellFormed = ParseNumber(words[i + 1], value.Slot);
            slotGiven = true;
            i += 2;
        } else if (words[i] == "count" && !Program.IsFragment && !literal && i + 1 < words.size()) {
            wellFormed = ParseNumber(words[i + 1], value.Count) && value.Count > 0;
            i += 2;
        } else if (words[i] == "value" && (Program.IsFragment || literal) && i + 4 < words.size()) {
            for (size_t c = 0; c < 4; ++c)
                wellFormed = wellFormed && ParseNumber(words[i + 1 + c], value.Value[c]);
            valueGiven = true;
            i += 5;
        } else {
            wellFormed = false;
        }
    }
    wellFormed =
        wellFormed && slotGiven != Program.IsFragment && valueGiven == (Program.IsFragment || literal);
    if (!wellFormed)
        Fail(Program.IsFragment ? "expected: " + words[0] + " NAME value X Y Z W"
             : literal          ? "expected: literal NAME slot N value X Y Z W"
                                : "expected: constant NAME slot N [count N]");
    else if (CheckNewName(value.Name) && CheckSlots(value))
        Program.Values.push_back(value);
}

bool TShaderParser::CheckSlots(const TNamedValue& value)
{
    if (Program.IsFragment)
        return true;
    const int base = value.Slot >= FirstLocal ? FirstLocal : 0;
    if (value.Slot < 0 || value.Slot - base >= ParametersOfAKind ||
        value.Count > ParametersOfAKind - (value.Slot - base)) {
        Fail("the slots of \"" + value.Name + "\" lie outside 0 to 95 and 256 to 351");
        return false;
    }
    for (const TNamedValue& other : Program.Values)
        if (value.Slot < other.Slot + other.Count && other.Slot < value.Slot + value.Count) {
            Fail("\"" + value.Name + "\" takes a slot of \"" + other.Name + "\"");
            return false;
        }
    return true;
}

int TShaderParser::FindValue(const std::string& name) const
{
    for (size_t i = 0; i < Program.Values.size(); ++i)
        if (Program.Values[i].Name == name)
            return static_cast<int>(i);
    return -1;
}

void TShaderParser::ParseInstruction(const std::string& mnemonic, const std::string& operands)
{
    const std::string suffix = "_SAT";
    std::string name = mnemonic;
    TInstruction instruction;
    instruction.Line = Line;
    if (Program.IsFragment && name.ends_with(suffix)) {
        instruction.Saturate = true;
        name.erase(name.size() - suffix.size());
    }
    instruction.Opcode = FindOpcode(Program.IsFragment, name);
    if (instruction.Opcode == nullptr) {
        Fail("unknown instruction \"" + mnemonic + "\"");
        return;
    }
    const TOpcode& opcode = *instruction.Opcode;
    const std::vector<std::string> texts = SplitAtCommas(operands);
    const size_t wanted = 1 + static_cast<size_t>(opcode.NumSources()) + (opcode.IsTextureRead ? 1 : 0);
    if (texts.size() != wanted) {
        Fail(name + " takes " + std::to_string(wanted) + " operands, not " + std::to_string(texts.size()));
        return;
    }
    if (!ParseDestination(texts[0], instruction.Destination))
        return;
    for (int i = 0; i < opcode.NumSources(); ++i) {
        TSource source;
        if (!ParseSource(texts[static_cast<size_t>(i) + 1], opcode, source))
            return;
        instruction.Sources.push_back(source);
    }
    if (opcode.IsTextureRead && !ParseSampler(texts.back(), instruction.Sampler))
        return;
    CheckPorts(instruction);
    CheckReads(instruction);
    NoteWrite(instruction.Destination);
    Program.Instructions.push_back(instruction);
}

bool TShaderParser::ParseDestination(const std::string& text, TDestination& result)
{
    std::string name = text;
    const std::string letters = CutComponents(name);
    if (!letters.empty()) {
        result.Mask = 0;
        size_t last = 0;
        for (const char letter : letters) {
            const size_t component = Components.find(letter);
            if (result.Mask != 0 && component <= last) {
                Fail("\"" + letters + "\" is no write mask");
                return false;
            }
            result.Mask |= 1u << component;
            last = component;
        }
    }
    const int limit = Program.IsFragment ? FragmentTemporaries : VertexTemporaries;
    result.Register = TemporaryNumber(name);
    result.Kind = RK_TEMPORARY;
    if (result.Register >= 0 && result.Register < limit)
        return true;
    result.Register = Program.IsFragment ? -1 : FindFixed(VertexOutputs, name);
    result.Kind = RK_OUTPUT;
    if (result.Register < 0)
        Fail("\"" + name + "\" cannot be written");
    return result.Register >= 0;
}

bool TShaderParser::ParseSource(const std::string& text, const TOpcode& opcode, TSource& result)
{
    std::string name = text;
    result.Negate = !name.empty() && name[0] == '-';
    if (result.Negate)
        name = Trim(name.substr(1));
    const std::string letters = CutComponents(name);
    if (letters.size() == 2 || letters.size() == 3) {
        Fail("\"" + letters + "\" is no swizzle: give one letter or four");
        return false;
    }
    if (opcode.Reads == RD_ONE && letters.size() != 1) {
        Fail(std::string(opcode.Name) + " takes one component: name it");
        return false;
    }
    for (size_t i = 0; i < 4 && !letters.empty(); ++i)
        result.Swizzle[i] = static_cast<int>(Components.find(letters[letters.size() == 1 ? 0 : i]));
    return ParseRegister(name, result);
}

bool TShaderParser::ParseRegister(const std::string& name, TSource& result)
{
    const int limit = Program.IsFragment ? FragmentTemporaries : VertexTemporaries;
    result.Kind = RK_TEMPORARY;
    result.Register = TemporaryNumber(name);
    if (result.Register >= 0 && result.Register < limit)
        return true;

    result.Kind = RK_INPUT;
    const auto attribute = std::ranges::find(Program.Attributes, name);
    if (attribute != Program.Attributes.end()) {
        result.Register = static_cast<int>(attribute - Program.Attributes.begin());
        return true;
    }
    result.Register = Program.IsFragment ? FindFixed(FragmentInputs, name) : -1;
    if (result.Register >= 0)
        return true;

    result.Kind = RK_CONSTANT;
    std::string base = name;
    int index = 0;
    const bool indexed = CutIndex(base, index);
    const int value = indexed ? FindValue(base) : -1;
    if (value < 0) {
        Fail("\"" + name + "\" cannot be read");
        return false;
    }
    const TNamedValue& found = Program.Values[static_cast<size_t>(value)];
    if (index < 0 || index >= found.Count) {
        Fail("\"" + base + "\" has no element " + std::to_string(index));
        return false;
    }
    result.Register = Program.IsFragment ? value : found.Slot + index;
    return true;
}

bool TShaderParser::ParseSampler(const std::string& text, int& result)
{
    const auto sampler = std::ranges::find(Program.Samplers, text);
    if (sampler == Program.Samplers.end()) {
        Fail("\"" + text + "\" is no sampler");
        return false;
    }
    result = static_cast<int>(sampler - Program.Samplers.begin());
    return true;
}

// An instruction has one field for the input that it reads and one for the constant.
void TShaderParser::CheckPorts(const TInstruction& instruction)
{
    int input = -1;
    int constant = -1;
    for (const TSource& source : instruction.Sources) {
        if (source.Kind == RK_TEMPORARY)
            continue;
        int& port = source.Kind == RK_INPUT ? input : constant;
        if (port >= 0 && port != source.Register)
            Fail(source.Kind == RK_INPUT ? "an instruction can read one input only"
                                         : "an instruction can read one constant only");
        port = source.Register;
    }
}

void TShaderParser::CheckReads(const TInstruction& instruction)
{
    for (size_t i = 0; i < instruction.Sources.size(); ++i) {
        const TSource& source = instruction.Sources[i];
        if (source.Kind != RK_TEMPORARY)
            continue;
        unsigned components = 15;
        if (instruction.Opcode->Reads == RD_MASK)
            components = instruction.Destination.Mask;
        else if (instruction.Opcode->Reads == RD_THREE ||
                 (instruction.Opcode->Reads == RD_THREE_ALL && i == 0))
            components = 7;
        for (size_t c = 0; c < 4; ++c) {
            const size_t component = static_cast<size_t>(source.Swizzle[c]);
            if ((components >> c & 1) == 0 ||
                (Written[static_cast<size_t>(source.Register)] >> component & 1) != 0)
                continue;
            Fail("R" + std::to_string(source.Register) + "." + Components[component] +
                 " is read before it is written");
            break;
        }
    }
}

void TShaderParser::NoteWrite(const TDestination& destination)
{
    if (destination.Kind == RK_TEMPORARY)
        Written[static_cast<size_t>(destination.Register)] |= destination.Mask;
    else if (destination.Register == 0)
        PositionWritten = true;
}

void TShaderParser::CheckEnd()
{
    if (!KindGiven)
        Fail("the source is empty");
    if (!Errors.empty())
        return;
    int reads = 0;
    for (const TInstruction& instruction : Program.Instructions)
        reads += instruction.Opcode->IsTextureRead ? 1 : 0;
    const int total = static_cast<int>(Program.Instructions.size());
    if (!Program.IsFragment && total > MaxVertexInstructions)
        Fail("more than 128 instructions");
    if (Program.IsFragment && total - reads > MaxFragmentArithmetic)
        Fail("more than 48 instructions besides texture reads");
    if (reads > MaxTextureReads)
        Fail("more than 24 texture reads");
    if (!Program.IsFragment && !PositionWritten)
        Fail("the program does not write result.position");
    if (Program.IsFragment && Written[0] != 15)
        Fail("the program does not write all of R0, which is its result");
}
