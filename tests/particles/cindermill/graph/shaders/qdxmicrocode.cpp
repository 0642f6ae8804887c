#include "qdxmicrocode.h"

#include "particles/cindermill/graph/shaders/qdxvertexprogram.h"

#include <bit>
#include <sstream>

void AppendShort(std::string& bytes, int value)
{
    bytes += static_cast<char>(value >> 8 & 255);
    bytes += static_cast<char>(value & 255);
}

void AppendWord(std::string& bytes, uint32_t value)
{
    AppendShort(bytes, static_cast<int>(value >> 16));
    AppendShort(bytes, static_cast<int>(value & 0xFFFF));
}

static uint32_t Encode(const TFragmentOperand& operand)
{
    return Field(operand.Type, 0, 2) | Field(operand.Register, 2, 7) | Field(operand.Swizzle, 9, 8) |
           Field(operand.Negate, 17, 1);
}

void TFragmentCode::Words(uint32_t* words) const
{
    words[0] = Field(Register, 1, 6) | Field(IsHalf, 7, 1) | Field(SetsCondition, 8, 1) | Field(Mask, 9, 4) |
               Field(Attribute, 13, 4) | Field(Unit, 17, 4) | Field(SuffixX, 21, 1) | Field(SuffixH, 22, 1) |
               Field(SignedSaturate, 23, 1) | Field(Opcode, 24, 6) | Field(NoRegister, 30, 1) |
               Field(Saturate, 31, 1);
    words[1] = Encode(Sources[0]) | Field(Condition, 18, 3) | Field(ConditionSwizzle, 21, 8) |
               Field(Sources[0].Absolute, 29, 1);
    words[2] = Encode(Sources[1]) | Field(Sources[1].Absolute, 18, 1) | Field(Scale, 28, 3);
    words[3] = Encode(Sources[2]) | Field(Sources[2].Absolute, 18, 1) | Field(Index, 19, 4) |
               Field(IsIndexed, 30, 1);
    if (IsFlow) {
        words[2] = FlowWords[0] | 1u << 31;
        words[3] = FlowWords[1];
    }
}

bool TFragmentCode::HasLiteral() const
{
    uint32_t words[4];
    Words(words);
    return ((words[1] | words[2] | words[3]) & 2) != 0;
}

std::string FragmentBytes(const std::vector<TFragmentCode>& program)
{
    std::string bytes;
    for (size_t i = 0; i < program.size(); ++i) {
        uint32_t words[4];
        program[i].Words(words);
        words[0] |= i + 1 == program.size() ? 1 : 0;
        for (uint32_t word : words)
            AppendWord(bytes, std::rotl(word, 16));
        if (!program[i].HasLiteral())
            continue;
        for (float value : program[i].Value)
            AppendWord(bytes, std::rotl(std::bit_cast<uint32_t>(value), 16));
    }
    return bytes;
}

std::string RawText(const std::vector<TFragmentCode>& program)
{
    const std::string bytes = FragmentBytes(program);
    TQdxFragmentProgram translated;
    if (!translated.Translate(Raw(bytes), static_cast<int>(bytes.size())))
        return "not translated";
    return translated.GetText().Print();
}

std::string DriverText(const std::vector<TFragmentCode>& program, uint32_t wposMode)
{
    const std::string bytes = FragmentBytes(program);
    TQdxFragmentProgram translated;
    if (!translated.Translate(Raw(bytes), static_cast<int>(bytes.size())))
        return "not translated";
    uint32_t targets[TQdxFragmentProgram::NumUnits];
    for (uint32_t& target : targets)
        target = TY_Target2D;
    TString text;
    translated.GetVariantText(targets, wposMode, text);
    return text.Print();
}

static bool IsDeclaration(const std::string& line)
{
    for (const char* start :
         {"!!ARB", "OPTION ", "PARAM ", "TEMP ", "ADDRESS ", " program.", "};", "MUL __wpos."})
        if (line.rfind(start, 0) == 0)
            return true;
    return false;
}

static std::string BodyOf(const std::string& text)
{
    std::istringstream lines(text);
    std::string body;
    bool isBody = false;
    for (std::string line; std::getline(lines, line);) {
        isBody = isBody || !IsDeclaration(line);
        if (isBody && line != "END")
            body += line + "\n";
    }
    return body;
}

std::string FragmentBody(const std::vector<TFragmentCode>& program)
{
    std::istringstream lines(BodyOf(RawText(program)));
    std::string body;
    for (std::string line; std::getline(lines, line);)
        if (line.rfind("MOV result.color", 0) != 0)
            body += line + "\n";
    return body;
}

TVertexInstruction TVertexCode::Encode() const
{
    TVertexInstruction code;
    uint32_t* w = code.Words;
    w[0] = Field(AddressComponent, 0, 2) | Field(ConditionSwizzle, 2, 8) | Field(Condition, 10, 3) |
           Field(TestsCondition, 13, 1) | Field(TestsSecond, 14, 1) | Field(VectorTemporary, 15, 6) |
           Field(Sources[0].Absolute, 21, 1) | Field(Sources[1].Absolute, 22, 1) |
           Field(Sources[2].Absolute, 23, 1) | Field(AddressRegister, 24, 1) | Field(WritesSecond, 25, 1) |
           Field(Saturate, 26, 1) | Field(AttributeRelative, 27, 1) | Field(OutputRelative, 28, 1) |
           Field(WritesCondition, 29, 1) | Field(VectorOutput, 30, 1);
    w[1] = Field(Sources[0].Swizzle >> 1, 0, 7) | Field(Sources[0].Negate, 7, 1) | Field(Attribute, 8, 4) |
           Field(Constant, 12, 9) | Field(Vector, 22, 5) | Field(Scalar, 27, 5);
    w[2] = Field(Sources[2].Swizzle >> 3, 0, 5) | Field(Sources[2].Negate, 5, 1) |
           Field(Sources[1].Type, 6, 2) | Field(Sources[1].Register, 8, 6) |
           Field(Sources[1].Swizzle, 14, 8) | Field(Sources[1].Negate, 22, 1) |
           Field(Sources[0].Type, 23, 2) | Field(Sources[0].Register, 25, 6) |
           Field(Sources[0].Swizzle, 31, 1);
    w[3] = Field(Last, 0, 1) | Field(ConstantRelative, 1, 1) | Field(Output, 2, 5) |
           Field(ScalarTemporary, 7, 5) | Field(ScalarOutput, 12, 1) | Field(VectorMask, 13, 4) |
           Field(ScalarMask, 17, 4) | Field(Sources[2].Type, 21, 2) | Field(Sources[2].Register, 23, 6) |
           Field(Sources[2].Swizzle, 29, 3);
    if (Target >= 0) {
        w[2] = (w[2] & ~63u) | Field(Target >> 3, 0, 6);
        w[3] = (w[3] & ~(7u << 29)) | Field(Target, 29, 3);
    }
    return code;
}

std::string VertexBytes(const std::vector<TVertexCode>& program)
{
    std::string bytes;
    for (const TVertexCode& code : program)
        for (uint32_t word : code.Encode().Words)
            AppendWord(bytes, word);
    return bytes;
}

std::string VertexText(const std::vector<TVertexCode>& program)
{
    std::vector<TVertexInstruction> code;
    for (const TVertexCode& one : program)
        code.push_back(one.Encode());
    TQdxVertexProgram translated;
    translated.Translate(code.data(), static_cast<int>(code.size()));
    return translated.GetText().Print();
}

std::string VertexBody(const std::vector<TVertexCode>& program)
{
    return BodyOf(VertexText(program));
}

std::string TShoFile::Bytes() const
{
    const int tables = 24;
    const int constants = tables + 8 * static_cast<int>(Attributes.size());
    const int samplers = constants + 12 * static_cast<int>(Constants.size());
    const int lists = samplers + 8 * static_cast<int>(Samplers.size());

    std::string slotLists;
    std::string constantTable;
    for (const TConstant& constant : Constants) {
        AppendWord(constantTable, constant.NameId);
        constantTable += static_cast<char>(constant.Type0);
        constantTable += static_cast<char>(constant.Type1);
        AppendShort(constantTable, static_cast<int>(constant.Slots.size()));
        AppendShort(constantTable, constant.First);
        AppendShort(constantTable, lists + static_cast<int>(slotLists.size()));
        if (constant.First == 0xFFFF)
            for (int slot : constant.Slots)
                AppendShort(slotLists, slot);
    }
    const int block = lists + static_cast<int>(slotLists.size());

    std::string bytes = "SHO";
    bytes += static_cast<char>(Version);
    AppendWord(bytes, IsFragment ? 1 : 0);
    AppendShort(bytes, Platform);
    AppendShort(bytes, static_cast<int>(Attributes.size()));
    AppendShort(bytes, static_cast<int>(Constants.size()));
    AppendShort(bytes, static_cast<int>(Samplers.size()));
    AppendShort(bytes, tables);
    AppendShort(bytes, constants);
    AppendShort(bytes, samplers);
    AppendShort(bytes, block);
    for (const auto& [name, value] : Attributes) {
        AppendWord(bytes, name);
        AppendWord(bytes, value);
    }
    bytes += constantTable;
    for (const auto& [name, value] : Samplers) {
        AppendWord(bytes, name);
        AppendWord(bytes, value);
    }
    bytes += slotLists;

    std::string body;
    if (IsFragment) {
        std::string data;
        const int dataStart = 24 + 4 * static_cast<int>(PatchLists.size());
        std::string offsets;
        for (const std::vector<int>& list : PatchLists) {
            AppendWord(offsets, static_cast<uint32_t>(dataStart + static_cast<int>(data.size())));
            AppendShort(data, static_cast<int>(list.size()));
            for (int position : list)
                AppendShort(data, position);
        }
        body.assign(16, 0);
        AppendWord(body, static_cast<uint32_t>(dataStart + static_cast<int>(data.size())));
        AppendWord(body, static_cast<uint32_t>(PatchLists.size()));
        body += offsets + data + Microcode;
    } else {
        const int count = static_cast<int>(Defaults.size());
        const int values = (4 * count + 39) & ~15;
        AppendShort(body, static_cast<int>(Microcode.size() / 16));
        body.append(16, 0);
        AppendShort(body, values + 16 * count);
        AppendShort(body, 0);
        AppendShort(body, count);
        for (const TDefault& constant : Defaults)
            AppendWord(body, static_cast<uint32_t>(constant.Slot));
        body.resize(static_cast<size_t>(values), 0);
        for (const TDefault& constant : Defaults)
            for (float value : constant.Value)
                AppendWord(body, std::bit_cast<uint32_t>(value));
        body += Microcode;
    }
    return bytes + body;
}
