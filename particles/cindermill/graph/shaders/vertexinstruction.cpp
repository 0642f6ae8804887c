#include "particles/cindermill/graph/shaders/vertexinstruction.h"

namespace {

constexpr TVertexOperation VectorOperations[TY_VertexOpcodeCount] = {
    {"NOP", 0},      {"MOV", 0x1100}, {"MUL", 0x1110}, {"ADD", 0x1101}, {"MAD", 0x1111}, {"DP3", 0x1110},
    {"DPH", 0x1110}, {"DP4", 0x1110}, {"DST", 0x1110}, {"MIN", 0x1110}, {"MAX", 0x1110}, {"SLT", 0x1110},
    {"SGE", 0x1110}, {"ARL", 0x1100}, {"FRC", 0x1100}, {"FLR", 0x1100}, {"SEQ", 0x1110}, {"SFL", 0x1110},
    {"SGT", 0x1110}, {"SLE", 0x1110}, {"SNE", 0x1110}, {"STR", 0x1110}, {"SSG", 0x1100}, {"ARR", 0x1100},
    {"ARA", 0x1100}, {"TXL", 0x1100},
};

constexpr TVertexOperation ScalarOperations[TY_ScalarOpcodeCount] = {
    {"NOP", 0},      {"???", 0},        {"RCP", 0x1001},  {"RCC", 0x1001}, {"RSQ", 0x1001}, {"EXP", 0x1001},
    {"LOG", 0x1001}, {"LIT", 0x1001},   {"???", 0},       {"BRA", 0},      {"???", 0},      {"CAL", 0},
    {"RET", 0},      {"LG2", 0x1001},   {"EX2", 0x1001},  {"SIN", 0x1001}, {"COS", 0x1001}, {"???", 0},
    {"???", 0},      {"PUSHA", 0x0001}, {"POPA", 0x1000},
};

constexpr const char* OutputNames[32] = {
    "position",
    "color",
    "color.secondary",
    "color.back.primary",
    "color.back.secondary",
    nullptr,
    nullptr,
    "texcoord[0]",
    "texcoord[1]",
    "texcoord[2]",
    "texcoord[3]",
    "texcoord[4]",
    "texcoord[5]",
    "texcoord[6]",
    "texcoord[7]",
    "texcoord[8]",
    "0x10",
    "0x11",
    "0x12",
    "0x13",
    "0x14",
    "0x15",
    "0x16",
    "0x17",
    "0x18",
    "0x19",
    "0x1A",
    "0x1B",
    "0x1C",
    "0x1D",
    "0x1E",
    "0x1F",
};

constexpr int FirstPackedOutput = 5;
constexpr int LastPackedOutput = 6;

struct TPackedOutput
{
    int Mask;
    const char* Names[2];
};

constexpr TPackedOutput PackedOutputs[] = {
    {1, {"CLP2", "CLP5"}},
    {2, {"CLP1", "CLP4"}},
    {4, {"CLP0", "CLP3"}},
    {8, {"fogcoord", "pointsize"}},
};
constexpr const char* WholePackedOutputs[2] = {"FOGC|CLP0|CLP1|CLP2", "PSIZ|CLP3|CLP4|CLP5"};

} // namespace

const TVertexOperation& TVertexInstruction::GetVectorOperation() const
{
    return VectorOperations[GetVectorOpcode()];
}

const TVertexOperation& TVertexInstruction::GetScalarOperation() const
{
    return ScalarOperations[GetScalarOpcode()];
}

TVertexSource TVertexInstruction::GetSource(int n) const
{
    const bool isAbsolute = Bit(0, 21 + n);
    switch (n) {
    case 0:
        return {Bits(2, 23, 2), Bits(2, 25, 6), (Bits(1, 0, 7) << 1) | Bits(2, 31, 1), Bit(1, 7), isAbsolute};
    case 1:
        return {Bits(2, 6, 2), Bits(2, 8, 6), Bits(2, 14, 8), Bit(2, 22), isAbsolute};
    default:
        return {Bits(3, 21, 2), Bits(3, 23, 6), (Bits(2, 0, 5) << 3) | Bits(3, 29, 3), Bit(2, 5), isAbsolute};
    }
}

TVertexOutputName GetVertexOutputName(int output, int mask)
{
    if (output < FirstPackedOutput || output > LastPackedOutput)
        return {OutputNames[output], false};
    for (const TPackedOutput& packed : PackedOutputs)
        if (packed.Mask == mask)
            return {packed.Names[output - FirstPackedOutput], true};
    return {WholePackedOutputs[output - FirstPackedOutput], false};
}
