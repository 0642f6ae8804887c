#pragma once

#include <array>
#include <string>
#include <vector>

struct TOpcode;

// A shader source after reading: names resolved to registers, nothing encoded yet.

enum TRegisterKind
{
    RK_TEMPORARY,
    RK_INPUT,
    RK_CONSTANT,
    RK_OUTPUT
};

struct TDestination
{
    TRegisterKind Kind = RK_TEMPORARY;
    int Register = 0;
    // Bit 0 is x.
    unsigned Mask = 15;
};

struct TSource
{
    TRegisterKind Kind = RK_TEMPORARY;
    // Of a constant: its slot in a vertex program, the position among the named values in a fragment program.
    int Register = 0;
    // The component that each of x, y, z, w takes.
    std::array<int, 4> Swizzle = {0, 1, 2, 3};
    bool Negate = false;
};

struct TInstruction
{
    int Line = 0;
    const TOpcode* Opcode = nullptr;
    bool Saturate = false;
    TDestination Destination;
    std::vector<TSource> Sources;
    // The texture unit of a texture read.
    int Sampler = -1;
};

// A constant of the program: one that its user sets by name, or a literal.
struct TNamedValue
{
    std::string Name;
    bool IsLiteral = false;
    // Vertex programs only.
    int Slot = 0;
    int Count = 1;
    std::array<float, 4> Value = {};
};

struct TShaderProgram
{
    bool IsFragment = false;
    // The position is the register, and the texture unit.
    std::vector<std::string> Attributes;
    std::vector<std::string> Samplers;
    std::vector<TNamedValue> Values;
    std::vector<TInstruction> Instructions;
};
