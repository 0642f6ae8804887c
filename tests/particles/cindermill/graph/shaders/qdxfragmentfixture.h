#pragma once

#include "qdxmicrocode.h"
#include "support/testsupport.h"

#include "particles/cindermill/graph/shaders/fragmentinstruction.h"
#include "particles/cindermill/graph/shaders/qdxfragmentprogram.h"
#include "particles/cindermill/graph/shaders/qdxregistermap.h"
#include "particles/cindermill/graph/shaders/swizzletext.h"

#include <algorithm>
#include <sstream>

enum
{
    Nop = 0,
    Movs = 1,
    Mul = 2,
    Add = 3,
    Mad = 4,
    Dp3 = 5,
    Dp4 = 6,
    Kil = 18,
    Tex = 23,
    Txp = 24,
    Txd = 25,
    Rcp = 26
};

inline TFragmentCode Code(int opcode, int reg = 0)
{
    TFragmentCode code;
    code.Opcode = opcode;
    code.Register = reg;
    for (TFragmentOperand& source : code.Sources)
        source = Input();
    return code;
}

inline TFragmentCode MovTo(int reg, int mask = 15)
{
    TFragmentCode code = Code(Movs, reg & 63);
    code.IsHalf = reg >= 64;
    code.Mask = mask;
    return code;
}

inline TFragmentCode MovFrom(int reg, int source, int swizzle = IdentitySwizzle, int mask = 15)
{
    TFragmentCode code = MovTo(reg, mask);
    code.Sources[0] = Temp(source, swizzle);
    return code;
}

inline TFragmentCode Flow(int flow, uint32_t word2 = 0, uint32_t word3 = 0)
{
    TFragmentCode code;
    code.Opcode = flow;
    code.IsFlow = true;
    code.FlowWords[0] = word2;
    code.FlowWords[1] = word3;
    return code;
}

// Writes to so many registers, from R5 on, that the program needs mapping.
inline std::vector<TFragmentCode> ManyRegisters(int count = 31)
{
    std::vector<TFragmentCode> program;
    for (int i = 0; i < count; ++i)
        program.push_back(MovTo(5 + i));
    return program;
}

inline std::string MapBody(std::vector<TFragmentCode> tail)
{
    std::vector<TFragmentCode> program = std::move(tail);
    const size_t count = program.size();
    for (const TFragmentCode& code : ManyRegisters(35))
        program.push_back(code);
    const std::string body = FragmentBody(program);
    std::istringstream lines(body);
    std::string result;
    std::string line;
    for (size_t i = 0; i < count && std::getline(lines, line); ++i)
        result += line + "\n";
    return result;
}

struct TTranslated
{
    explicit TTranslated(const std::vector<TFragmentCode>& program)
    {
        const std::string bytes = FragmentBytes(program);
        IsRead = Program.Translate(Raw(bytes), static_cast<int>(bytes.size()));
    }
    std::string Variant(uint32_t target, uint32_t mode = 0) const
    {
        uint32_t targets[16];
        std::fill(std::begin(targets), std::end(targets), target);
        TString text;
        Program.GetVariantText(targets, mode, text);
        return text.Print();
    }
    TQdxFragmentProgram Program;
    bool IsRead = false;
};

const std::string Header = "!!ARBfp1.0\nOPTION NV_fragment_program2;\nOPTION ATI_draw_buffers;\n";

inline std::vector<TRegisterInterval> IntervalsOf(const std::vector<TFragmentCode>& program)
{
    vector<TFragmentInstruction> code;
    int position = 0;
    for (const TFragmentCode& one : program) {
        TFragmentInstruction instruction;
        one.Words(instruction.Words);
        instruction.Position = position;
        position = instruction.GetNextPosition();
        code.push_back(instruction);
    }
    TQdxRegisterMap map;
    AssertionOf([&] { map.Build(code); });
    return {map.GetIntervals().begin(), map.GetIntervals().end()};
}

inline void ExpectInterval(const TRegisterInterval& interval, int start, int end, int mask)
{
    EXPECT_EQ(start, interval.Start);
    EXPECT_EQ(end, interval.End);
    EXPECT_EQ(mask, interval.Mask);
}
