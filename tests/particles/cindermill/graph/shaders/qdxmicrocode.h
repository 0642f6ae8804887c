#pragma once

#include "library/containers/string.h"
#include "particles/cindermill/graph/shaders/qdxfragmentprogram.h"
#include "particles/cindermill/graph/shaders/vertexinstruction.h"

#include <cstdint>
#include <string>
#include <vector>

// Small assemblers: instructions by their fields, programs and files as bytes.

constexpr int IdentitySwizzle = 228;
constexpr int VertexIdentity = 27;

inline uint32_t Field(int value, int first, int count)
{
    return (static_cast<uint32_t>(value) & ((1u << count) - 1)) << first;
}

// The source operand of a fragment instruction.
struct TFragmentOperand
{
    int Type = 0;
    int Register = 0;
    int Swizzle = IdentitySwizzle;
    bool Negate = false;
    bool Absolute = false;
};

inline TFragmentOperand Temp(int reg, int swizzle = IdentitySwizzle)
{
    return {0, reg, swizzle, false, false};
}

inline TFragmentOperand Input(int swizzle = IdentitySwizzle)
{
    return {1, 0, swizzle, false, false};
}

inline TFragmentOperand Literal(int swizzle = IdentitySwizzle)
{
    return {2, 0, swizzle, false, false};
}

// One fragment instruction; plain members may be set between making it and encoding it.
struct TFragmentCode
{
    int Opcode = 0;
    int Register = 0;
    bool IsHalf = false;
    bool SetsCondition = false;
    int Mask = 15;
    int Attribute = 1;
    int Unit = 0;
    bool SuffixX = false;
    bool SuffixH = false;
    bool SignedSaturate = false;
    bool Saturate = false;
    bool NoRegister = false;
    int Condition = 7;
    int ConditionSwizzle = IdentitySwizzle;
    int Scale = 0;
    bool IsIndexed = false;
    int Index = 0;
    TFragmentOperand Sources[3];
    float Value[4] = {1, 2, 3, 4};
    // Flow control replaces the fields of the second and third source.
    bool IsFlow = false;
    uint32_t FlowWords[2] = {};

    void Words(uint32_t* words) const;
    bool HasLiteral() const;
};

// The whole program in the file's form, the end flag set on the last instruction.
std::string FragmentBytes(const std::vector<TFragmentCode>& program);
// The text as translation leaves it.
std::string RawText(const std::vector<TFragmentCode>& program);
// The text for two-dimensional textures.
std::string DriverText(const std::vector<TFragmentCode>& program, uint32_t wposMode = 0);
// The raw text's lines behind the declarations and before END.
std::string FragmentBody(const std::vector<TFragmentCode>& program);

struct TVertexOperand
{
    int Type = 1;
    int Register = 0;
    int Swizzle = VertexIdentity;
    bool Negate = false;
    bool Absolute = false;
};

struct TVertexCode
{
    int Vector = 0;
    int Scalar = 0;
    TVertexOperand Sources[3];
    int AddressComponent = 0;
    int AddressRegister = 0;
    int Condition = 7;
    int ConditionSwizzle = VertexIdentity;
    bool TestsCondition = false;
    bool TestsSecond = false;
    bool WritesCondition = false;
    bool WritesSecond = false;
    bool Saturate = false;
    bool AttributeRelative = false;
    bool OutputRelative = false;
    bool VectorOutput = false;
    bool ScalarOutput = false;
    int VectorTemporary = 0;
    int ScalarTemporary = 0;
    int Attribute = 0;
    int Constant = 0;
    bool ConstantRelative = false;
    int Output = 0;
    int VectorMask = 15;
    int ScalarMask = 15;
    // A branch's target takes bits of source 2.
    int Target = -1;
    bool Last = false;

    TVertexInstruction Encode() const;
};

std::string VertexBytes(const std::vector<TVertexCode>& program);
std::string VertexText(const std::vector<TVertexCode>& program);
// The text's lines behind the declarations and before END.
std::string VertexBody(const std::vector<TVertexCode>& program);

// A shader file's parts, put together in the order of the members.
struct TShoFile
{
    struct TConstant
    {
        uint32_t NameId;
        int Type0;
        int Type1;
        int First;
        std::vector<int> Slots;
    };

    int Version = 8;
    int Platform = 2;
    bool IsFragment = true;
    std::vector<std::pair<uint32_t, uint32_t>> Attributes;
    std::vector<TConstant> Constants;
    std::vector<std::pair<uint32_t, uint32_t>> Samplers;
    // Of a fragment program: by constant, slots of the microcode.
    std::vector<std::vector<int>> PatchLists;
    struct TDefault
    {
        int Slot;
        float Value[4];
    };
    std::vector<TDefault> Defaults;
    std::string Microcode;

    std::string Bytes() const;
};

void AppendShort(std::string& bytes, int value);
void AppendWord(std::string& bytes, uint32_t value);
inline const uint8_t* Raw(const std::string& bytes)
{
    return reinterpret_cast<const uint8_t*>(bytes.data());
}
