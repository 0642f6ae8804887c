#include "particles/cindermill/graph/shaders/qdxvertexprogram.h"

#include "library/containers/assertion.h"
#include "library/wimp/gl/device/arbprogram.h"
#include "particles/cindermill/graph/shaders/fragmentinstruction.h"
#include "particles/cindermill/graph/shaders/programtext.h"
#include "particles/cindermill/graph/shaders/swizzletext.h"

namespace {

constexpr uint32_t HashStart = 0x12345678;

constexpr const char* MaskNames[16] = {"",   ".w",  ".z",  ".zw",  ".y",  ".yw",  ".yz",  ".yzw",
                                       ".x", ".xw", ".xz", ".xzw", ".xy", ".xyw", ".xyz", ""};

bool IsAddressOperation(const TVertexInstruction& instruction, bool isVector)
{
    if (isVector) {
        const int opcode = instruction.GetVectorOpcode();
        return opcode == TY_VertexArl || opcode == TY_VertexArr || opcode == TY_VertexAra;
    }
    const int opcode = instruction.GetScalarOpcode();
    return opcode == TY_ScalarPushA || opcode == TY_ScalarPopA;
}

const TVertexOperation& GetOperation(const TVertexInstruction& instruction, bool isVector)
{
    return isVector ? instruction.GetVectorOperation() : instruction.GetScalarOperation();
}

// The operands of one operation; the scalar one takes none but source 2.
bool UsesSource(const TVertexInstruction& instruction, bool isVector, int n)
{
    return (GetOperation(instruction, isVector).Operands & (FL_OperandSource0 >> (4 * n))) != 0;
}

bool UsesDestination(const TVertexInstruction& instruction, bool isVector)
{
    return (GetOperation(instruction, isVector).Operands & FL_OperandDestination) != 0;
}

void WriteModifiers(TProgramText& body, const TVertexInstruction& instruction)
{
    if (instruction.WritesCondition())
        body.Append(instruction.WritesSecondCondition() ? "C1" : "C");
    if (instruction.IsSaturated())
        body.Append("_SAT");
    body.Append(" ");
}

void WriteCondition(TProgramText& body, const TVertexInstruction& instruction, bool isVector)
{
    const bool isReturn = !isVector && instruction.GetScalarOpcode() == TY_ScalarRet;
    const bool isFlow = isReturn || (!isVector && instruction.IsBranch());
    if (!instruction.TestsCondition() && !isFlow)
        return;
    body.Print("%s(%s%s%s)", isReturn ? "" : " ", ConditionNames[instruction.GetCondition()],
               instruction.TestsSecondCondition() ? "1" : "",
               TVertexSwizzleText(instruction.GetConditionSwizzle()).Text);
}

} // namespace

void TQdxVertexProgram::Translate(const TVertexInstruction* code, int count)
{
    Microcode.reserve(count);
    for (int i = 0; i < count; ++i)
        Microcode.push_back(code[i]);
    Hash = HashCode(code, count);
    for (const TVertexInstruction& instruction : Microcode)
        Analyse(instruction);
    Ranges.Fit();
    TProgramText body;
    for (const TVertexInstruction& instruction : Microcode)
        WriteInstruction(body, instruction);
    TProgramText text;
    WriteHeader(text);
    text.Append(body.Data(), body.Length());
    text.Append("END\n");
    text.GetText(Text);
}

uint32_t TQdxVertexProgram::HashCode(const TVertexInstruction* code, int count)
{
    uint32_t hash = HashStart;
    for (int i = 0; i < count; ++i)
        for (uint32_t word : code[i].Words)
            hash ^= word;
    return hash;
}

bool TQdxVertexProgram::IsSameCode(const TVertexInstruction* code, int count, uint32_t hash) const
{
    if (count != Microcode.size() || hash != Hash)
        return false;
    for (int i = 0; i < count; ++i)
        for (int word = 0; word < 4; ++word)
            if (Microcode[i].Words[word] != code[i].Words[word])
                return false;
    return true;
}

void TQdxVertexProgram::Analyse(const TVertexInstruction& instruction)
{
    for (int n = 0; n < 3; ++n)
        AnalyseSource(instruction, true, n);
    AnalyseSource(instruction, false, 2);
    if (instruction.IsBranch())
        AddLabel(static_cast<uint16_t>(instruction.GetBranchTarget()));
}

void TQdxVertexProgram::AnalyseSource(const TVertexInstruction& instruction, bool isVector, int n)
{
    if (UsesSource(instruction, isVector, n) && instruction.GetSource(n).Type == TY_VertexSourceConstant &&
        !instruction.ReadsAddress(isVector))
        EnterConstant(instruction);
}

void TQdxVertexProgram::AddLabel(uint16_t target)
{
    int at = 0;
    while (at < Labels.size() && Labels[at] < target)
        ++at;
    if (at == Labels.size() || Labels[at] != target)
        Labels.insert(Labels.begin() + at, target);
}

int TQdxVertexProgram::EnterConstant(const TVertexInstruction& instruction)
{
    const int slot = instruction.GetConstant();
    return Ranges.Enter(slot, instruction.IsConstantRelative() ? TQdxVertexRanges::LastSlot : slot);
}

void TQdxVertexProgram::WriteHeader(TProgramText& text) const
{
    text.Append("!!ARBvp1.0\nOPTION NV_vertex_program3;\n");
    const vector<TVertexRange>& ranges = Ranges.GetRanges();
    if (!ranges.empty())
        text.Print("PARAM c[%d] = {\n", Ranges.GetTotal());
    for (int i = 0; i < ranges.size(); ++i) {
        const bool isLocal = ranges[i].First >= TQdxVertexRanges::NumEnvironment;
        const int base = isLocal ? TQdxVertexRanges::NumEnvironment : 0;
        const char* store = isLocal ? "local" : "env";
        const char* comma = i + 1 < ranges.size() ? "," : "";
        if (ranges[i].First == ranges[i].Last)
            text.Print(" program.%s[%d]%s\n", store, ranges[i].First - base, comma);
        else
            text.Print(" program.%s[%d..%d]%s\n", store, ranges[i].First - base, ranges[i].Last - base,
                       comma);
    }
    if (!ranges.empty())
        text.Append("};\n");
    for (const auto& name : Names)
        text.Print(name.second ? "ADDRESS %s;\n" : "TEMP %s;\n", name.first.Print());
}

void TQdxVertexProgram::WriteInstruction(TProgramText& body, const TVertexInstruction& instruction)
{
    // Labels stand at a number of operations, not of instructions.
    if (ReadLabel())
        body.Print("label%d:\n", NextLabel - 1);
    const bool hasVector = instruction.GetVectorOpcode() != TY_VertexNop;
    if (hasVector) {
        WriteOperation(body, instruction, true);
        ++OperationCount;
    }
    if (ReadLabel())
        body.Print("\nlabel%d:", NextLabel - 1);
    if (instruction.GetScalarOpcode() != TY_ScalarNop) {
        if (hasVector)
            body.Append("\n");
        WriteOperation(body, instruction, false);
        ++OperationCount;
    } else if (instruction.IsNop()) {
        body.Append(instruction.GetScalarOperation().Name);
        ++OperationCount;
    }
    body.Append("\n");
}

bool TQdxVertexProgram::ReadLabel()
{
    if (NextLabel == Labels.size() || Labels[NextLabel] != OperationCount)
        return false;
    ++NextLabel;
    return true;
}

void TQdxVertexProgram::WriteOperation(TProgramText& body, const TVertexInstruction& instruction,
                                       bool isVector)
{
    if (isVector && instruction.GetVectorOpcode() == TY_VertexTxl)
        WriteTextureFixUp(body, instruction);
    body.Append(GetOperation(instruction, isVector).Name);
    WriteModifiers(body, instruction);
    if (UsesDestination(instruction, isVector))
        WriteDestination(body, instruction, isVector);
    if (!isVector && instruction.IsBranch()) {
        const int label = Labels.index_of(static_cast<uint16_t>(instruction.GetBranchTarget()));
        ASSERT_TEXT(label != -1, "label != -1");
        body.Print("label%d", label);
    }
    WriteCondition(body, instruction, isVector);
    WriteSources(body, instruction, isVector);
    body.Append(";");
}

// Turns v upside down, since the console counts a texture's rows from the top.
void TQdxVertexProgram::WriteTextureFixUp(TProgramText& body, const TVertexInstruction& instruction)
{
    Names["_t"] = false;
    body.Append("MAD _t,");
    WriteSource(body, instruction, true, 0);
    body.Append(",{1,-1,1,1},{0,1,0,0};\n");
}

void TQdxVertexProgram::WriteDestination(TProgramText& body, const TVertexInstruction& instruction,
                                         bool isVector)
{
    const int mask = instruction.GetMask(isVector);
    bool writesMask = isVector || instruction.GetScalarOpcode() != TY_ScalarPopA;
    if (instruction.WritesOutput(isVector)) {
        body.Append("result.");
        if (instruction.IsOutputRelative()) {
            body.Print("A%d.%c+%d", instruction.GetAddressRegister(), instruction.GetAddressComponent(),
                       instruction.GetOutput());
        } else {
            const TVertexOutputName output = GetVertexOutputName(instruction.GetOutput(), mask);
            body.Append(output.Name);
            writesMask = writesMask && !output.HoldsMask;
        }
    } else {
        const bool isAddress = IsAddressOperation(instruction, isVector);
        TString name;
        name.Format("%c%d", isAddress ? 'A' : 'R', instruction.GetTemporary(isVector));
        Names[name] = isAddress;
        body.Append(name);
    }
    if (writesMask)
        body.Append(MaskNames[mask]);
}

void TQdxVertexProgram::WriteSources(TProgramText& body, const TVertexInstruction& instruction, bool isVector)
{
    if (isVector) {
        const bool isTexture = instruction.GetVectorOpcode() == TY_VertexTxl;
        if (isTexture) {
            body.Append(",_t");
        } else if (UsesSource(instruction, isVector, 0)) {
            body.Append(",");
            WriteSource(body, instruction, isVector, 0);
        }
        if (UsesSource(instruction, isVector, 1)) {
            body.Append(",");
            WriteSource(body, instruction, isVector, 1);
        } else if (isTexture) {
            body.Print(",texture[%d],2D", instruction.GetSampler());
        }
    }
    if (UsesSource(instruction, isVector, 2)) {
        if (UsesDestination(instruction, isVector))
            body.Append(",");
        WriteSource(body, instruction, isVector, 2);
    }
}

void TQdxVertexProgram::WriteSource(TProgramText& body, const TVertexInstruction& instruction, bool isVector,
                                    int n)
{
    const TVertexSource source = instruction.GetSource(n);
    if (source.IsNegated)
        body.Append("-");
    if (source.IsAbsolute)
        body.Append("|");
    if (instruction.ReadsAddress(isVector)) {
        body.Print("A%d", source.Register);
    } else if (source.Type == TY_VertexSourceInput) {
        if (instruction.IsAttributeRelative())
            body.Print("vertex.attrib[A%d.%c+%d]", instruction.GetAddressRegister(),
                       instruction.GetAddressComponent(), instruction.GetAttribute());
        else
            body.Print("vertex.attrib[%d]", instruction.GetAttribute());
    } else if (source.Type == TY_VertexSourceConstant) {
        body.Append("c[");
        if (instruction.IsConstantRelative())
            body.Print("A%d.%c+", instruction.GetAddressRegister(), instruction.GetAddressComponent());
        body.Print("%d]", EnterConstant(instruction));
    } else if (source.Type == TY_VertexSourceTemporary) {
        // A temporary that nothing has written reads as zero.
        TString name;
        name.Format("R%d", source.Register);
        body.Append(Names.find(name) != Names.end() ? name.Print() : "{0,0,0,0}");
    }
    body.Append(TVertexSwizzleText(source.Swizzle).Text);
    if (source.IsAbsolute)
        body.Append("|");
}

TQdxVertexProgram::TQdxVertexProgram() = default;

TQdxVertexProgram::~TQdxVertexProgram() = default;

bool TQdxVertexProgram::Bind()
{
    if (Program == nullptr) {
        Program.Reset(new TArbProgram(AT_VERTEX));
        AssembleForDriver(*Program, Text);
    }
    if (!Program->IsAssembled())
        return false;
    Program->Bind();
    return true;
}

void TQdxVertexProgram::SetConstant(int slot, const float* value) const
{
    if (slot >= TQdxVertexRanges::NumEnvironment)
        Program->SetLocal(slot - TQdxVertexRanges::NumEnvironment, value);
    else
        Program->SetEnv(slot, value);
}
