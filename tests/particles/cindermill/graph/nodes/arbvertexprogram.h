#pragma once

#include <array>
#include <map>
#include <string>
#include <vector>

// Runs the text of a plain ARB vertex program as a driver would: enough of the language for the stage
// shaders.
class TArbVertexProgram
{
public:
    using TValue = std::array<float, 4>;

    explicit TArbVertexProgram(const std::string& text);

    // By their numbers.
    std::map<int, TValue> Locals;
    std::map<int, TValue> Attributes;

    void Run();
    // "position", "color", "texcoord[0]".
    TValue GetResult(const std::string& name) const
    {
        return Registers[RegisterIndices.at("result." + name)];
    }

private:
    enum TSpace
    {
        SP_REGISTER,
        SP_ATTRIBUTE,
        SP_LOCAL
    };

    struct TOperand
    {
        TSpace Space = SP_REGISTER;
        size_t Index = 0;
        std::array<size_t, 4> Swizzle = {0, 1, 2, 3};
        // Of a destination.
        std::array<bool, 4> Mask = {true, true, true, true};
        float Sign = 1;
    };

    struct TLine
    {
        std::string Opcode;
        std::vector<TOperand> Operands;
    };

    TOperand ParseOperand(std::string text);
    TValue Read(const TOperand& operand) const;
    void Execute(const TLine& line);

    // The local parameter of each element of the array c.
    std::vector<size_t> ConstantLocals;
    std::vector<TLine> Lines;
    // Temporaries and results.
    std::map<std::string, size_t> RegisterIndices;
    std::vector<TValue> Registers;
};
