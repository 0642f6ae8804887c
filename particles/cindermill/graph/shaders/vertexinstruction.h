#pragma once

#include <cstdint>

enum TVertexOpcode
{
    TY_VertexNop = 0,
    TY_VertexArl = 13,
    TY_VertexArr = 23,
    TY_VertexAra = 24,
    TY_VertexTxl = 25,
    TY_VertexOpcodeCount,
};

enum TScalarOpcode
{
    TY_ScalarNop = 0,
    TY_ScalarBra = 9,
    TY_ScalarCal = 11,
    TY_ScalarRet = 12,
    TY_ScalarPushA = 19,
    TY_ScalarPopA = 20,
    TY_ScalarOpcodeCount,
};

enum TVertexSourceType
{
    TY_VertexSourceTemporary = 1,
    TY_VertexSourceInput = 2,
    TY_VertexSourceConstant = 3,
};

struct TVertexSource
{
    int Type;
    int Register;
    int Swizzle;
    bool IsNegated;
    bool IsAbsolute;
};

// The opcode of one of the two operations of an instruction, with what it takes.
struct TVertexOperation
{
    const char* Name;
    // TOperandFlags.
    int Operands;
};

// One vertex instruction in the host's order: a vector operation beside a scalar one.
struct TVertexInstruction
{
    uint32_t Words[4] = {};

    int Bits(int word, int first, int count) const
    {
        return static_cast<int>((Words[word] >> first) & ((1u << count) - 1));
    }
    bool Bit(int word, int n) const { return Bits(word, n, 1) != 0; }

    bool IsLast() const { return Bit(3, 0); }
    // What lies past the tables is no operation.
    int GetVectorOpcode() const { return Clip(Bits(1, 22, 5), TY_VertexOpcodeCount); }
    int GetScalarOpcode() const { return Clip(Bits(1, 27, 5), TY_ScalarOpcodeCount); }
    const TVertexOperation& GetVectorOperation() const;
    // Both of its operations; those past the tables print nothing instead.
    bool IsNop() const { return Bits(1, 22, 5) == TY_VertexNop && Bits(1, 27, 5) == TY_ScalarNop; }
    const TVertexOperation& GetScalarOperation() const;
    bool IsBranch() const { return GetScalarOpcode() == TY_ScalarBra || GetScalarOpcode() == TY_ScalarCal; }
    int GetBranchTarget() const { return (Bits(2, 0, 6) << 3) | Bits(3, 29, 3); }

    TVertexSource GetSource(int n) const;
    // Whether source operands of the vector or of the scalar operation are address registers.
    bool ReadsAddress(bool isVector) const
    {
        return GetVectorOpcode() == TY_VertexAra || (!isVector && GetScalarOpcode() == TY_ScalarPushA);
    }

    int GetConstant() const { return Bits(1, 12, 9); }
    bool IsConstantRelative() const { return Bit(3, 1); }
    int GetAttribute() const { return Bits(1, 8, 4); }
    bool IsAttributeRelative() const { return Bit(0, 27); }
    int GetAddressRegister() const { return Bits(0, 24, 1); }
    char GetAddressComponent() const { return "xyzw"[Bits(0, 0, 2)]; }
    int GetSampler() const { return 15 - Bits(2, 8, 6); }

    int GetOutput() const { return Bits(3, 2, 5); }
    bool IsOutputRelative() const { return Bit(0, 28); }
    bool WritesOutput(bool isVector) const { return isVector ? Bit(0, 30) : Bit(3, 12); }
    int GetTemporary(bool isVector) const { return isVector ? Bits(0, 15, 6) : Bits(3, 7, 5); }
    int GetMask(bool isVector) const { return Bits(3, isVector ? 13 : 17, 4); }

    int GetCondition() const { return Bits(0, 10, 3); }
    int GetConditionSwizzle() const { return Bits(0, 2, 8); }
    bool TestsCondition() const { return Bit(0, 13); }
    bool TestsSecondCondition() const { return Bit(0, 14); }
    bool WritesCondition() const { return Bit(0, 29); }
    bool WritesSecondCondition() const { return Bit(0, 25); }
    bool IsSaturated() const { return Bit(0, 26); }

private:
    static int Clip(int opcode, int count) { return opcode < count ? opcode : 0; }
};

// Some outputs pack several values into one register; the write mask then tells which is meant.
struct TVertexOutputName
{
    const char* Name;
    // Whether the mask is part of the name, and is not written again.
    bool HoldsMask;
};

TVertexOutputName GetVertexOutputName(int output, int mask);
