#include "tools/shaderassembler/opcodes.h"

#include <bit>
#include <span>

namespace {
constexpr unsigned First = 1;
constexpr unsigned FirstTwo = 3;
constexpr unsigned FirstThird = 5;
constexpr unsigned Third = 4;
constexpr unsigned AllThree = 7;

constexpr TOpcode VertexOpcodes[] = {
    {"MOV", 1, false, First, RD_MASK, false},
    {"MUL", 2, false, FirstTwo, RD_MASK, false},
    // The chip's adder stands behind its multiplier, and takes the multiplier's inputs 0 and 2.
    {"ADD", 3, false, FirstThird, RD_MASK, false},
    {"MAD", 4, false, AllThree, RD_MASK, false},
    {"DP3", 5, false, FirstTwo, RD_THREE, false},
    {"DPH", 6, false, FirstTwo, RD_THREE_ALL, false},
    {"DP4", 7, false, FirstTwo, RD_ALL, false},
    {"DST", 8, false, FirstTwo, RD_ALL, false},
    {"MIN", 9, false, FirstTwo, RD_MASK, false},
    {"MAX", 10, false, FirstTwo, RD_MASK, false},
    {"SLT", 11, false, FirstTwo, RD_MASK, false},
    {"SGE", 12, false, FirstTwo, RD_MASK, false},
    {"FRC", 14, false, First, RD_MASK, false},
    {"FLR", 15, false, First, RD_MASK, false},
    {"RCP", 2, true, Third, RD_ONE, false},
    {"RSQ", 4, true, Third, RD_ONE, false},
    {"EXP", 5, true, Third, RD_ONE, false},
    {"LOG", 6, true, Third, RD_ONE, false},
    {"LIT", 7, true, Third, RD_ALL, false},
    {"LG2", 13, true, Third, RD_ONE, false},
    {"EX2", 14, true, Third, RD_ONE, false},
};

constexpr TOpcode FragmentOpcodes[] = {
    {"MOV", 1, false, First, RD_MASK, false},     {"MUL", 2, false, FirstTwo, RD_MASK, false},
    {"ADD", 3, false, FirstTwo, RD_MASK, false},  {"MAD", 4, false, AllThree, RD_MASK, false},
    {"DP3", 5, false, FirstTwo, RD_THREE, false}, {"DP4", 6, false, FirstTwo, RD_ALL, false},
    {"DST", 7, false, FirstTwo, RD_ALL, false},   {"MIN", 8, false, FirstTwo, RD_MASK, false},
    {"MAX", 9, false, FirstTwo, RD_MASK, false},  {"SLT", 10, false, FirstTwo, RD_MASK, false},
    {"SGE", 11, false, FirstTwo, RD_MASK, false}, {"FRC", 16, false, First, RD_MASK, false},
    {"FLR", 17, false, First, RD_MASK, false},    {"TEX", 23, false, First, RD_ALL, true},
    {"TXP", 24, false, First, RD_ALL, true},      {"RCP", 26, false, First, RD_ONE, false},
    {"RSQ", 27, false, First, RD_ONE, false},     {"EX2", 28, false, First, RD_ONE, false},
    {"LG2", 29, false, First, RD_ONE, false},     {"LIT", 30, false, First, RD_ALL, false},
    {"LRP", 31, false, AllThree, RD_MASK, false}, {"COS", 34, false, First, RD_ONE, false},
    {"SIN", 35, false, First, RD_ONE, false},
};
} // namespace

int TOpcode::NumSources() const
{
    return std::popcount(Slots);
}

const TOpcode* FindOpcode(bool fragment, const std::string& name)
{
    const std::span<const TOpcode> table =
        fragment ? std::span<const TOpcode>(FragmentOpcodes) : std::span<const TOpcode>(VertexOpcodes);
    for (const TOpcode& opcode : table)
        if (name == opcode.Name)
            return &opcode;
    return nullptr;
}
