#include "particles/cindermill/graph/shaders/fragmentinstruction.h"

#include "library/containers/log.h"

namespace {

struct TOpcodeEntry
{
    const char* Name;
    int Operands;
};

constexpr int OpcodeCount = 64;
constexpr TOpcodeEntry Opcodes[OpcodeCount] = {
    {"NOP", 0},        {"MOV", 0x1100},    {"MUL", 0x1110},    {"ADD", 0x1110},    {"MAD", 0x1111},
    {"DP3", 0x1110},   {"DP4", 0x1110},    {"DST", 0x1110},    {"MIN", 0x1110},    {"MAX", 0x1110},
    {"SLT", 0x1110},   {"SGE", 0x1110},    {"SLE", 0x1110},    {"SGT", 0x1110},    {"SNE", 0x1110},
    {"SEQ", 0x1110},   {"FRC", 0x1100},    {"FLR", 0x1100},    {"KIL", 0},         {"PK4B", 0x1100},
    {"UP4B", 0x1100},  {"DDX", 0x1100},    {"DDY", 0x1100},    {"TEX", 0x3100},    {"TXP", 0x3100},
    {"TXD", 0x3111},   {"RCP", 0x1300},    {"RSQ", 0x1300},    {"EX2", 0x1300},    {"LG2", 0x1300},
    {"LIT", 0x1100},   {"LRP", 0x1111},    {"STR", 0x1110},    {"SFL", 0},         {"COS", 0x1300},
    {"SIN", 0x1300},   {"PK2H", 0x1100},   {"UP2H", 0x1300},   {"POW", 0x1110},    {"PK4UB", 0x1100},
    {"UP4UB", 0x1300}, {"PK2US", 0x1100},  {"UP2US", 0x1300},  {"BEM", 0x1111},    {"PKG", 0x1100},
    {"UPG", 0x1100},   {"DP2A", 0x1111},   {"TXL", 0x3100},    {"0x30", 0},        {"TXB", 0x1100},
    {"0x32", 0},       {"TEXBEM", 0x3111}, {"TXPBEM", 0x3111}, {"BEMLUM", 0x1111}, {"RFL", 0x1110},
    {"XWTEX", 0x3100}, {"DP2", 0x1110},    {"NRM", 0x1100},    {"DIV", 0x1110},    {"DIVSQ", 0x1110},
    {"LIT", 0x1100},   {"FENCT", 0},       {"FENCB", 0},       {"0x3F", 0},
};

constexpr const char* FlowNames[TY_FlowCount] = {"BRK ", "CAL ", "IF ", "LOOP ", "REP ", "RET "};

constexpr const char* AttributeNames[16] = {
    "position",    "color.primary", "color.secondary", "fogcoord",    "texcoord[0]", "texcoord[1]",
    "texcoord[2]", "texcoord[3]",   "texcoord[4]",     "texcoord[5]", "texcoord[6]", "texcoord[7]",
    "texcoord[8]", "texcoord[9]",   "facing",          "0x0F",
};

} // namespace

int TFragmentInstruction::GetOperands() const
{
    return IsFlow() ? 0 : Opcodes[GetOpcode()].Operands;
}

const char* GetFragmentOpcodeName(int opcode, bool flow)
{
    if (flow)
        return opcode < TY_FlowCount ? FlowNames[opcode] : nullptr;
    if (opcode < OpcodeCount)
        return Opcodes[opcode].Name;
    DebugPrintf("Unknown opcode/flow pair: %x %c\n", static_cast<unsigned>(opcode), flow ? 't' : 'f');
    return nullptr;
}

const char* GetFragmentAttributeName(int attribute)
{
    return AttributeNames[attribute];
}
