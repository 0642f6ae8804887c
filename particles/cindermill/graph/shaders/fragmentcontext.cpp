#include "particles/cindermill/graph/shaders/fragmentcontext.h"

#include "library/containers/append.h"
#include "library/containers/byteorder.h"
#include "library/containers/log.h"
#include "particles/cindermill/graph/shaders/swizzletext.h"

#include <bit>

namespace {

constexpr int SlotBytes = 16;

constexpr const char* MaskNames[16] = {"",   ".x",  ".y",  ".xy",  ".z",  ".xz",  ".yz",  ".xyz",
                                       ".w", ".xw", ".yw", ".xyw", ".zw", ".xzw", ".yzw", ""};

constexpr float Scales[8] = {1, 2, 4, 8, 0, 0.5f, 0.25f, 0.125f};

// The driver refuses this line as it stands; each variant puts its own in its place.
constexpr const char* WposPlaceholder = "MUL __wpos.fragment.position,{0.5,0.5,1,1};\n";

// A word of the file: big-endian, its halves exchanged.
uint32_t ReadWord(const uint8_t* bytes)
{
    return std::rotl(BigU32(bytes), 16);
}

bool IsTextureRead(const TFragmentInstruction& instruction)
{
    if (instruction.IsFlow())
        return false;
    switch (instruction.GetOpcode()) {
    case TY_FragmentTex:
    case TY_FragmentTxp:
    case TY_FragmentTxd:
    case TY_FragmentTxl:
    case TY_FragmentTxb:
        return true;
    default:
        return false;
    }
}

// What the assembler has no instruction for.
bool IsUntranslatable(const TFragmentInstruction& instruction)
{
    switch (instruction.GetOpcode()) {
    case TY_FragmentBem:
    case TY_FragmentPkg:
    case TY_FragmentUpg:
    case TY_Fragment30:
    case TY_Fragment32:
    case TY_FragmentTexBem:
    case TY_FragmentTxpBem:
    case TY_FragmentBemLum:
    case TY_FragmentXwTex:
    case TY_FragmentFenct:
    case TY_FragmentFencb:
    case TY_Fragment3F:
        return true;
    default:
        return false;
    }
}

} // namespace

TFragmentContext::TFragmentContext(TQdxFragmentProgram& program) : Program(program) {}

bool TFragmentContext::ReadCode(const uint8_t* microcode, int size)
{
    const int slots = size / SlotBytes < MaxSlots ? size / SlotBytes : MaxSlots;
    bool isLast = false;
    while (!isLast) {
        if (Size == slots) {
            DebugPrintf("Fragment program has no end\n");
            return false;
        }
        TFragmentInstruction instruction;
        for (int i = 0; i < 4; ++i)
            instruction.Words[i] = ReadWord(microcode + Size * SlotBytes + 4 * i);
        instruction.Position = Size++;
        if (instruction.HasLiteral()) {
            if (Size == slots) {
                DebugPrintf("Fragment program lacks the literal of its last instruction\n");
                return false;
            }
            AddConstantRef(microcode + Size * SlotBytes, instruction.GetLiteralOffset());
            ++Size;
        }
        isLast = instruction.IsLast();
        Append(Code, instruction);
    }
    return true;
}

void TFragmentContext::AddConstantRef(const uint8_t* literal, uint32_t offset)
{
    TConstantRef ref;
    ref.Version = 1;
    ref.Offset = offset;
    for (int i = 0; i < 4; ++i) {
        const uint32_t word = ReadWord(literal + 4 * i);
        ref.Value[i] = std::bit_cast<float>(word);
        ref.Raw[i] = std::rotl(word, 16);
    }
    Append(Program.ConstantRefs, ref);
}

void TFragmentContext::WriteText()
{
    NeedsMapping = TQdxRegisterMap::IsNeeded(Code);
    if (NeedsMapping)
        Map.Build(Code);
    for (CurrentIndex = 0; CurrentIndex < Code.size(); ++CurrentIndex) {
        Current = Code[CurrentIndex];
        WriteInstruction();
        WriteBlockEnds();
        if (Current.HasLiteral())
            ++NextConstant;
    }
    WriteOutputs();
    Body.Append("END\n");

    TProgramText text;
    WriteHeader(text);
    MovePositions(text.Length());
    text.Append(Body.Data(), Body.Length());
    text.GetText(Program.Text);
}

void TFragmentContext::WriteInstruction()
{
    if (Current.IsFlow())
        WriteGeneric();
    else if (IsTextureRead(Current))
        WriteTextureRead();
    else if (IsUntranslatable(Current))
        return;
    else if (Current.IsOpcode(TY_FragmentDivSq))
        WriteDivSq();
    else
        WriteGeneric();
}

void TFragmentContext::WriteBlockEnds()
{
    const int position = Current.GetNextPosition();
    if (position == LoopEndPos)
        Body.Append("ENDLOOP;\n");
    if (position == RepEndPos)
        Body.Append("ENDREP;\n");
    if (position == EndIfPos)
        Body.Append("ENDIF;\n");
    else if (position == ElsePos)
        Body.Append("ELSE;\n");
}

void TFragmentContext::WriteTextureRead()
{
    Names["_t"] = true;
    const int unit = Current.GetUnit();
    Program.UsedTextures |= 1u << unit;
    while (Program.TextureConstants.size() <= unit)
        Program.TextureConstants.push_back(0);

    TTextureRead read;
    read.Unit = static_cast<uint32_t>(unit);
    read.Coord = static_cast<uint32_t>(Current.Bits(1, 0, 18)) |
                 static_cast<uint32_t>(Current.Bits(1, 29, 1)) << 18 |
                 static_cast<uint32_t>(Current.Bits(2, 19, 3)) << 19 |
                 static_cast<uint32_t>(Current.GetAttribute()) << 28;
    read.LinePos = Body.Length();
    if (Current.IsOpcode(TY_FragmentTxp))
        read.Flags |= FL_TextureReadProjective;
    if (Current.IsOpcode(TY_FragmentTxd))
        read.Flags |= FL_TextureReadGradient;
    if (NeedsMapping && Current.ReadsTemporary(0))
        read.Flags |= FL_TextureReadMapped | static_cast<uint32_t>(Map.GetSource(CurrentIndex, 0))
                                                 << TextureReadRegisterShift;
    Append(Program.TextureReads, read);
    // A variant's fix-up line names it, and may be the only line that does.
    if (Current.ReadsTemporary(0)) {
        TString name;
        GetSourceName(0, name);
        Names[name] = true;
    }

    Body.Append(" \n");
    // The gradient along v turns with v.
    if (Current.IsOpcode(TY_FragmentTxd))
        Current.Words[3] ^= 1u << 17;
    WriteGeneric();
}

// The assembler divides by a square root in two steps.
void TFragmentContext::WriteDivSq()
{
    Names["_t"] = true;
    WriteMnemonic("RSQ");
    Body.Append("_t.x,");
    WriteSource(1, true);
    Body.Append(";\n");
    WriteMnemonic("MUL");
    WriteDestination();
    Body.Append(",");
    WriteSource(0, false);
    Body.Append(",_t.x;\n");
}

void TFragmentContext::WriteGeneric()
{
    const char* name = GetFragmentOpcodeName(Current.GetOpcode(), Current.IsFlow());
    if (name == nullptr)
        return;
    if (Current.IsFlow())
        Body.Append(name);
    else
        WriteMnemonic(name);
    if (Current.HasDestination())
        WriteDestination();
    WriteCondition();
    WriteSources();
    WriteTextureOrFlow();
    Body.Append(";\n");
    if (Current.HasDestination() && Current.GetScale() != 0)
        WriteScaleLine();
}

void TFragmentContext::WriteScaleLine()
{
    const double scale = static_cast<double>(Scales[Current.GetScale()]);
    Body.Append("MUL");
    Body.Append(GetSaturation());
    WriteDestination();
    WriteCondition();
    Body.Append(",");
    WriteDestinationRegister();
    Body.Print(",{%f,%f,%f,%f};\n", scale, scale, scale, scale);
}

void TFragmentContext::WriteMnemonic(const char* name)
{
    Body.Append(name);
    WriteModifiers();
}

void TFragmentContext::WriteModifiers()
{
    if (Current.Bit(0, 22))
        Body.Append("H");
    if (Current.Bit(0, 8))
        Body.Append("C");
    if (Current.Bit(0, 21))
        Body.Append("X");
    // With a scale it is the scaled value that saturates.
    Body.Append(Current.GetScale() != 0 ? " " : GetSaturation());
}

const char* TFragmentContext::GetSaturation() const
{
    if (Current.Bit(0, 31))
        return "_SAT ";
    return Current.Bit(0, 23) ? "_SSAT " : " ";
}

void TFragmentContext::WriteDestination()
{
    WriteDestinationRegister();
    Body.Append(MaskNames[Current.GetMask()]);
}

void TFragmentContext::WriteDestinationRegister()
{
    // To the assembler a temporary like any other, which has to be declared.
    if (Current.WritesConditionOnly()) {
        WriteTemporary(Current.IsHalf() ? "HC" : "RC");
        return;
    }
    const int number = Current.GetRegister() & 63;
    TString name;
    if (NeedsMapping) {
        const int arb = Map.GetDestination(CurrentIndex);
        name.Format("T%d", arb);
        if (number < NumOutputs)
            OutputRegs[number] = arb;
    } else {
        name.Format("%c%d", Current.IsHalf() ? 'H' : 'R', number);
        if (number < NumOutputs)
            OutputIsHalf[number] = Current.IsHalf();
    }
    WriteTemporary(name);
}

void TFragmentContext::WriteCondition()
{
    const bool isFlow = Current.IsFlow();
    if (Current.GetCondition() == ConditionAlways &&
        (!isFlow || Current.IsFlowCode(TY_FlowLoop) || Current.IsFlowCode(TY_FlowRep)))
        return;
    if (Current.HasDestination())
        Body.Append(" ");
    const bool isBare = Current.IsOpcode(TY_FragmentKil) ||
                        (isFlow && !Current.IsFlowCode(TY_FlowBrk) && !Current.IsFlowCode(TY_FlowRet));
    const TSwizzleText swizzle(Current.GetConditionSwizzle(), false);
    Body.Print(isBare ? "%s%s" : "(%s%s)", ConditionNames[Current.GetCondition()], swizzle.Text);
}

void TFragmentContext::WriteSources()
{
    const int operands = Current.GetOperands();
    if ((operands & FL_OperandFixedCoord) != 0) {
        Body.Append(",_t");
    } else if ((operands & FL_OperandSource0) != 0) {
        Body.Append(",");
        WriteSource(0, (operands & FL_OperandScalar) != 0);
    }
    if ((operands & FL_OperandSource1) != 0) {
        Body.Append(",");
        WriteSource(1, Current.IsOpcode(TY_FragmentDiv) || Current.IsOpcode(TY_FragmentDivSq));
    }
    if ((operands & FL_OperandSource2) != 0) {
        Body.Append(",");
        WriteSource(2, false);
    }
}

void TFragmentContext::WriteTextureOrFlow()
{
    if (IsTextureRead(Current)) {
        Body.Print(",texture[%d],", Current.GetUnit());
        TTextureRead& read = Program.TextureReads.back();
        read.TargetPos = Body.Length();
        read.ConstantOffset = Current.GetLiteralOffset();
        Body.Append("2D  ");
    }
    if (!Current.IsFlow())
        return;
    switch (Current.GetOpcode()) {
    case TY_FlowCal:
        Body.Print(",0x%x", static_cast<unsigned>(Current.Bits(2, 2, 29)));
        break;
    case TY_FlowIf:
        ElsePos = Current.Bits(2, 2, 29);
        EndIfPos = Current.Bits(3, 2, 29);
        break;
    case TY_FlowLoop:
        Body.Print("{%d,%d,%d}", Current.Bits(2, 2, 8), Current.Bits(2, 10, 8), Current.Bits(2, 19, 8));
        LoopEndPos = Current.Bits(3, 2, 29);
        break;
    case TY_FlowRep:
        Body.Print("%d", Current.Bits(2, 2, 8));
        RepEndPos = Current.Bits(3, 2, 29);
        break;
    default:
        break;
    }
}

void TFragmentContext::WriteSource(int n, bool isScalar)
{
    const TFragmentSource source = Current.GetSource(n);
    if (source.IsNegated)
        Body.Append("-");
    if (source.IsAbsolute)
        Body.Append("|");
    switch (source.Type) {
    case TY_SourceTemporary: {
        TString name;
        GetSourceName(n, name);
        WriteTemporary(name);
        break;
    }
    case TY_SourceInput:
        if (Current.IsIndexed()) {
            Body.Print("fragment.[TEX%d+A0.x]", Current.GetIndex());
        } else if (Current.GetAttribute() == 0) {
            Body.Append("__wpos");
            UsesWpos = true;
        } else {
            Body.Print("fragment.%s", GetFragmentAttributeName(Current.GetAttribute()));
        }
        break;
    case TY_SourceConstant:
        Body.Print("c[%d]", NextConstant);
        break;
    default:
        break;
    }
    Body.Append(TSwizzleText(source.Swizzle, isScalar).Text);
    if (source.IsAbsolute)
        Body.Append("|");
}

void TFragmentContext::GetSourceName(int n, TString& name) const
{
    const int reg = Current.GetSource(n).Register;
    if (NeedsMapping)
        name.Format("T%d", Map.GetSource(CurrentIndex, n));
    else
        name.Format("%c%d", reg >= 64 ? 'H' : 'R', reg & 63);
}

void TFragmentContext::WriteTemporary(const char* name)
{
    Names[name] = true;
    Body.Append(name);
}

void TFragmentContext::WriteOutputs()
{
    for (int output = 0; output < NumOutputs; ++output) {
        // Register 1 holds the depth, which the preview leaves alone.
        if (output == 1)
            continue;
        TString name;
        if (NeedsMapping && OutputRegs[output] != -1)
            name.Format("T%d", OutputRegs[output]);
        else
            name.Format("%c%d", OutputIsHalf[output] ? 'H' : 'R', output);
        if (Names.find(name) == Names.end())
            continue;
        if (output == 0)
            Body.Print("MOV result.color, %s;\n", name.Print());
        else
            Body.Print("MOV result.color[%d], %s;\n", output - 1, name.Print());
    }
}

void TFragmentContext::WriteHeader(TProgramText& header)
{
    header.Append("!!ARBfp1.0\nOPTION NV_fragment_program2;\nOPTION ATI_draw_buffers;\n");
    int count = Program.ConstantRefs.size();
    for (uint32_t& slot : Program.TextureConstants)
        slot = static_cast<uint32_t>(count++);
    if (count == 1)
        header.Append("PARAM c[1] = { program.local[0] };\n");
    else if (count > 1)
        header.Print("PARAM c[%d] = { program.local[0..%d] };\n", count, count - 1);
    for (const auto& name : Names)
        header.Print("TEMP %s;\n", name.first.Print());
    if (UsesWpos) {
        header.Append("TEMP __wpos;\n");
        Program.WposPos = header.Length();
        header.Append(WposPlaceholder);
    }
}

void TFragmentContext::MovePositions(int distance)
{
    for (TTextureRead& read : Program.TextureReads) {
        read.LinePos += distance;
        read.TargetPos += distance;
    }
}
