#pragma once

#include <cstdint>

enum TFragmentOpcode
{
    TY_FragmentDp3 = 5,
    TY_FragmentDp4 = 6,
    TY_FragmentKil = 18,
    TY_FragmentTex = 23,
    TY_FragmentTxp = 24,
    TY_FragmentTxd = 25,
    TY_FragmentBem = 43,
    TY_FragmentPkg = 44,
    TY_FragmentUpg = 45,
    TY_FragmentDp2a = 46,
    TY_FragmentTxl = 47,
    TY_Fragment30 = 48,
    TY_FragmentTxb = 49,
    TY_Fragment32 = 50,
    TY_FragmentTexBem = 51,
    TY_FragmentTxpBem = 52,
    TY_FragmentBemLum = 53,
    TY_FragmentXwTex = 55,
    TY_FragmentDiv = 58,
    TY_FragmentDivSq = 59,
    TY_FragmentFenct = 61,
    TY_FragmentFencb = 62,
    TY_Fragment3F = 63,
};

enum TFragmentFlow
{
    TY_FlowBrk,
    TY_FlowCal,
    TY_FlowIf,
    TY_FlowLoop,
    TY_FlowRep,
    TY_FlowRet,
    TY_FlowCount,
};

// What an opcode takes; the bits of the operand word.
enum TOperandFlags
{
    FL_OperandSource2 = 0x0001,
    FL_OperandSource1 = 0x0010,
    FL_OperandSource0 = 0x0100,
    FL_OperandScalar = 0x0200,
    FL_OperandDestination = 0x1000,
    FL_OperandFixedCoord = 0x2000,
};

enum TFragmentSourceType
{
    TY_SourceTemporary,
    TY_SourceInput,
    TY_SourceConstant,
};

constexpr int ConditionAlways = 7;
constexpr const char* ConditionNames[8] = {"FL", "LT", "EQ", "LE", "GT", "NE", "GE", "TR"};

struct TFragmentSource
{
    int Type;
    // 0 to 63 are full registers, 64 to 127 half ones.
    int Register;
    int Swizzle;
    bool IsNegated;
    bool IsAbsolute;
};

// One fragment instruction in the host's order, with its position in the program.
struct TFragmentInstruction
{
    uint32_t Words[4];
    // In slots from the program's start: an instruction with a literal takes two.
    int Position;

    int Bits(int word, int first, int count) const
    {
        return static_cast<int>((Words[word] >> first) & ((1u << count) - 1));
    }
    bool Bit(int word, int n) const { return Bits(word, n, 1) != 0; }

    bool IsLast() const { return Bit(0, 0); }
    bool HasLiteral() const { return ((Words[1] | Words[2] | Words[3]) & 2) != 0; }
    int GetNextPosition() const { return Position + (HasLiteral() ? 2 : 1); }
    // Where the literal lies in the microcode, in bytes.
    uint32_t GetLiteralOffset() const { return static_cast<uint32_t>(Position) * 16 + 16; }

    bool IsFlow() const { return Bit(2, 31); }
    int GetOpcode() const { return Bits(0, 24, 6); }
    bool IsOpcode(int opcode) const { return !IsFlow() && GetOpcode() == opcode; }
    bool IsFlowCode(int code) const { return IsFlow() && GetOpcode() == code; }
    // TOperandFlags; flow control takes no operands.
    int GetOperands() const;
    bool UsesSource(int n) const { return (GetOperands() & (FL_OperandSource0 >> (4 * n))) != 0; }
    bool HasDestination() const { return (GetOperands() & FL_OperandDestination) != 0; }
    bool WritesRegister() const { return HasDestination() && !WritesConditionOnly(); }

    int GetRegister() const { return Bits(0, 1, 7); }
    bool IsHalf() const { return Bit(0, 7); }
    bool WritesConditionOnly() const { return Bit(0, 30); }
    int GetMask() const { return Bits(0, 9, 4); }
    int GetAttribute() const { return Bits(0, 13, 4); }
    int GetUnit() const { return Bits(0, 17, 4); }
    int GetCondition() const { return Bits(1, 18, 3); }
    int GetConditionSwizzle() const { return Bits(1, 21, 8); }
    int GetScale() const { return Bits(2, 28, 3); }
    bool IsIndexed() const { return Bit(3, 30); }
    int GetIndex() const { return Bits(3, 19, 4); }
    TFragmentSource GetSource(int n) const
    {
        return {Bits(n + 1, 0, 2), Bits(n + 1, 2, 7), Bits(n + 1, 9, 8), Bit(n + 1, 17),
                Bit(n + 1, n == 0 ? 29 : 18)};
    }
    bool ReadsTemporary(int n) const { return UsesSource(n) && Bits(n + 1, 0, 2) == TY_SourceTemporary; }
};

// The text of an opcode, or of a flow code with its blank. Null, with a line in the log for an opcode, if
// there is none.
const char* GetFragmentOpcodeName(int opcode, bool flow);

// The name of an input attribute behind "fragment.".
const char* GetFragmentAttributeName(int attribute);
