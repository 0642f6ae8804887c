#include "tools/shaderassembler/microcode.h"

#include "tools/shaderassembler/opcodes.h"

#include <bit>

namespace {
// Conditions are an order of three bits; this one always holds.
constexpr uint32_t ConditionAlways = 7;

constexpr int NumSlots = 3;

// The instruction's sources by the chip's operand slots; null where there is none.
std::array<const TSource*, NumSlots> SourcesBySlot(const TInstruction& instruction)
{
    std::array<const TSource*, NumSlots> slots = {};
    size_t next = 0;
    for (size_t slot = 0; slot < NumSlots; ++slot)
        if ((instruction.Opcode->Slots >> slot & 1) != 0)
            slots[slot] = &instruction.Sources[next++];
    return slots;
}

namespace vertex {
constexpr uint32_t IdentitySwizzle = 0x1B;
constexpr uint32_t NoVectorTemporary = 0x3F;
constexpr uint32_t NoScalarTemporary = 0x1F;
constexpr uint32_t NoOutput = 0x1F;

enum TSourceType : uint32_t
{
    ST_TEMPORARY = 1,
    ST_INPUT = 2,
    ST_CONSTANT = 3
};

uint32_t Type(const TSource& source)
{
    return source.Kind == RK_TEMPORARY ? ST_TEMPORARY : source.Kind == RK_INPUT ? ST_INPUT : ST_CONSTANT;
}

uint32_t Register(const TSource& source)
{
    return source.Kind == RK_TEMPORARY ? static_cast<uint32_t>(source.Register) : 0;
}

// x in the highest pair.
uint32_t Swizzle(const TSource& source)
{
    uint32_t bits = 0;
    for (const int component : source.Swizzle)
        bits = bits << 2 | static_cast<uint32_t>(component);
    return bits;
}

// x in the highest bit.
uint32_t Mask(unsigned mask)
{
    return (mask & 1) << 3 | (mask & 2) << 1 | (mask & 4) >> 1 | (mask & 8) >> 3;
}

void EncodeDestination(const TInstruction& instruction, uint32_t (&w)[4])
{
    const TDestination& destination = instruction.Destination;
    const bool output = destination.Kind == RK_OUTPUT;
    const bool scalar = instruction.Opcode->IsScalarUnit;
    const uint32_t number = static_cast<uint32_t>(destination.Register);
    w[0] |= (output || scalar ? NoVectorTemporary : number) << 15;
    w[3] |= (output || !scalar ? NoScalarTemporary : number) << 7;
    w[3] |= (output ? number : NoOutput) << 2;
    w[3] |= Mask(destination.Mask) << (scalar ? 17 : 13);
    if (output && scalar)
        w[3] |= 1u << 12;
    else if (output)
        w[0] |= 1u << 30;
}

void EncodeSources(const TInstruction& instruction, uint32_t (&w)[4])
{
    const auto sources = SourcesBySlot(instruction);
    for (const TSource* source : sources) {
        if (source != nullptr && source->Kind == RK_INPUT)
            w[1] |= static_cast<uint32_t>(source->Register) << 8;
        else if (source != nullptr && source->Kind == RK_CONSTANT)
            w[1] |= static_cast<uint32_t>(source->Register) << 12;
    }
    if (sources[0] != nullptr) {
        const TSource& source = *sources[0];
        w[1] |= Swizzle(source) >> 1 | (source.Negate ? 1u << 7 : 0);
        w[2] |= Type(source) << 23 | Register(source) << 25 | (Swizzle(source) & 1) << 31;
    }
    if (sources[1] != nullptr) {
        const TSource& source = *sources[1];
        w[2] |= Type(source) << 6 | Register(source) << 8 | Swizzle(source) << 14 |
                (source.Negate ? 1u << 22 : 0);
    }
    if (sources[2] != nullptr) {
        const TSource& source = *sources[2];
        w[2] |= Swizzle(source) >> 3 | (source.Negate ? 1u << 5 : 0);
        w[3] |= Type(source) << 21 | Register(source) << 23 | (Swizzle(source) & 7) << 29;
    }
}
} // namespace vertex

namespace fragment {
constexpr uint32_t IdentitySwizzle = 0xE4;

enum TSourceType : uint32_t
{
    ST_TEMPORARY = 0,
    ST_INPUT = 1,
    ST_CONSTANT = 2
};

// The halves of a word are stored the other way round.
uint32_t Stored(uint32_t word)
{
    return std::rotl(word, 16);
}

uint32_t Source(const TSource& source)
{
    uint32_t bits = source.Kind == RK_INPUT      ? ST_INPUT
                    : source.Kind == RK_CONSTANT ? ST_CONSTANT
                                                 : ST_TEMPORARY;
    if (source.Kind == RK_TEMPORARY)
        bits |= static_cast<uint32_t>(source.Register) << 2;
    for (size_t c = 0; c < 4; ++c)
        bits |= static_cast<uint32_t>(source.Swizzle[c]) << (9 + 2 * c);
    return bits | (source.Negate ? 1u << 17 : 0);
}

void Encode(const TInstruction& instruction, bool last, uint32_t (&w)[4])
{
    w[0] = (last ? 1u : 0) | static_cast<uint32_t>(instruction.Destination.Register) << 1 |
           instruction.Destination.Mask << 9 | instruction.Opcode->Code << 24 |
           (instruction.Saturate ? 1u << 31 : 0);
    w[1] = ConditionAlways << 18 | IdentitySwizzle << 21;
    if (instruction.Sampler >= 0)
        w[0] |= static_cast<uint32_t>(instruction.Sampler) << 17;
    const auto sources = SourcesBySlot(instruction);
    for (size_t slot = 0; slot < NumSlots; ++slot) {
        if (sources[slot] == nullptr)
            continue;
        w[slot + 1] |= Source(*sources[slot]);
        if (sources[slot]->Kind == RK_INPUT)
            w[0] |= static_cast<uint32_t>(sources[slot]->Register) << 13;
    }
}

int ConstantOf(const TInstruction& instruction)
{
    for (const TSource& source : instruction.Sources)
        if (source.Kind == RK_CONSTANT)
            return source.Register;
    return -1;
}
} // namespace fragment
} // namespace

std::vector<uint32_t> EncodeVertexProgram(const TShaderProgram& program)
{
    std::vector<uint32_t> words;
    for (const TInstruction& instruction : program.Instructions) {
        uint32_t w[4] = {};
        w[0] = vertex::IdentitySwizzle << 2 | ConditionAlways << 10;
        w[1] = instruction.Opcode->Code << (instruction.Opcode->IsScalarUnit ? 27 : 22);
        w[3] = &instruction == &program.Instructions.back() ? 1 : 0;
        vertex::EncodeDestination(instruction, w);
        vertex::EncodeSources(instruction, w);
        words.insert(words.end(), w, w + 4);
    }
    return words;
}

TFragmentCode EncodeFragmentProgram(const TShaderProgram& program)
{
    TFragmentCode code;
    code.Literals.resize(program.Values.size());
    for (const TInstruction& instruction : program.Instructions) {
        uint32_t w[4] = {};
        fragment::Encode(instruction, &instruction == &program.Instructions.back(), w);
        for (const uint32_t word : w)
            code.Words.push_back(fragment::Stored(word));
        const int constant = fragment::ConstantOf(instruction);
        if (constant < 0)
            continue;
        code.Literals[static_cast<size_t>(constant)].push_back(static_cast<int>(code.Words.size() / 4));
        for (const float component : program.Values[static_cast<size_t>(constant)].Value)
            code.Words.push_back(fragment::Stored(std::bit_cast<uint32_t>(component)));
    }
    return code;
}
