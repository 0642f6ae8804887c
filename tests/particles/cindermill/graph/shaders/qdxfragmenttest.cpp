#include "particles/cindermill/graph/shaders/qdxfragmentinstruction.h"
#include "particles/cindermill/graph/shaders/qdxfragmentprogram.h"
#include "particles/cindermill/graph/shaders/qdxregistermap.h"
#include "particles/cindermill/graph/shaders/qdxswizzle.h"
#include "qdxmicrocode.h"
#include "support/testsupport.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <random>
#include <regex>
#include <set>
#include <sstream>

namespace {

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

TFragmentCode Code(int opcode, int reg = 0)
{
    TFragmentCode code;
    code.Opcode = opcode;
    code.Register = reg;
    for (TFragmentOperand& source : code.Sources)
        source = Input();
    return code;
}

TFragmentCode MovTo(int reg, int mask = 15)
{
    TFragmentCode code = Code(Movs, reg & 63);
    code.IsHalf = reg >= 64;
    code.Mask = mask;
    return code;
}

TFragmentCode MovFrom(int reg, int source, int swizzle = IdentitySwizzle, int mask = 15)
{
    TFragmentCode code = MovTo(reg, mask);
    code.Sources[0] = Temp(source, swizzle);
    return code;
}

TFragmentCode Flow(int flow, uint32_t word2 = 0, uint32_t word3 = 0)
{
    TFragmentCode code;
    code.Opcode = flow;
    code.IsFlow = true;
    code.FlowWords[0] = word2;
    code.FlowWords[1] = word3;
    return code;
}

// Writes to so many registers, from R5 on, that the program needs mapping.
std::vector<TFragmentCode> ManyRegisters(int count = 31)
{
    std::vector<TFragmentCode> program;
    for (int i = 0; i < count; ++i)
        program.push_back(MovTo(5 + i));
    return program;
}

std::string MapBody(std::vector<TFragmentCode> tail)
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

} // namespace

TEST(QdxFragment, ProgramOfOneInstructionEndsAtOnce)
{
    std::string bytes = FragmentBytes({MovTo(0)});
    bytes += std::string(64, '\xFF');
    TQdxFragmentProgram program;
    ASSERT_TRUE(program.Translate(Raw(bytes), static_cast<int>(bytes.size())));
    EXPECT_EQ(Header + "TEMP R0;\nMOV R0,fragment.color.primary;\nMOV result.color, R0;\nEND\n",
              Text(program.GetText()));
}

TEST(QdxFragment, WordsAreReadWithTheirHalvesExchanged)
{
    // MOV R2, fragment.color.primary; the words as they stand in a file.
    const uint8_t bytes[] = {0x3E, 0x05, 0x01, 0x00, 0xC8, 0x01, 0x00, 0x1D,
                             0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00};
    TQdxFragmentProgram program;
    ASSERT_TRUE(program.Translate(bytes, sizeof bytes));
    EXPECT_NE(std::string::npos, Text(program.GetText()).find("MOV R2,fragment.color.primary;\n"));
}

TEST(QdxFragment, IdentitySwizzleOnRcpPrintsX)
{
    TFragmentCode code = Code(Rcp, 1);
    EXPECT_EQ("RCP R1,fragment.color.primary.x;\n", FragmentBody({code}));
    code.Sources[0].Swizzle = 255;
    EXPECT_EQ("RCP R1,fragment.color.primary.w;\n", FragmentBody({code}));
    code.Sources[0].Swizzle = 27;
    EXPECT_EQ("RCP R1,fragment.color.primary.wzyx;\n", FragmentBody({code}));
}

TEST(QdxFragment, ScaleOfTwoWithSaturationGetsAPlainLineAndASaturatedMul)
{
    TFragmentCode code = Code(Movs, 1);
    code.Scale = 1;
    code.Saturate = true;
    code.Mask = 3;
    EXPECT_EQ("MOV R1.xy,fragment.color.primary;\nMUL_SAT R1.xy,R1,{2.000000,2.000000,2.000000,2.000000};\n",
              FragmentBody({code}));
    code.Saturate = false;
    code.SignedSaturate = true;
    code.Condition = 4;
    EXPECT_EQ("MOV R1.xy (GT),fragment.color.primary;\n"
              "MUL_SSAT R1.xy (GT),R1,{2.000000,2.000000,2.000000,2.000000};\n",
              FragmentBody({code}));
}

TEST(QdxFragment, ScaleTable)
{
    const char* scales[] = {"",         "2.000000", "4.000000", "8.000000",
                            "0.000000", "0.500000", "0.250000", "0.125000"};
    for (int scale = 1; scale < 8; ++scale) {
        TFragmentCode code = MovTo(3);
        code.Scale = scale;
        const std::string value = scales[scale];
        EXPECT_EQ("MOV R3,fragment.color.primary;\nMUL R3,R3,{" + value + "," + value + "," + value + "," +
                      value + "};\n",
                  FragmentBody({code}));
    }
    EXPECT_EQ("MOV R3,fragment.color.primary;\n", FragmentBody({MovTo(3)}));
}

TEST(QdxFragment, ScaleOfAConditionWriteNamesTheConditionRegister)
{
    TFragmentCode code = MovTo(64);
    code.NoRegister = true;
    code.Scale = 1;
    EXPECT_EQ("MOV HC,fragment.color.primary;\nMUL HC,HC,{2.000000,2.000000,2.000000,2.000000};\n",
              FragmentBody({code}));
    code.IsHalf = false;
    code.Mask = 8;
    code.Scale = 0;
    code.SetsCondition = true;
    EXPECT_EQ("MOVC RC.w,fragment.color.primary;\n", FragmentBody({code}));
    EXPECT_EQ(std::string::npos, RawText({code}).find("TEMP"));
}

TEST(QdxFragment, ScaleWithoutADestinationHasNoLine)
{
    TFragmentCode code = Code(Kil);
    code.Scale = 1;
    EXPECT_EQ("KIL ;\n", FragmentBody({code}));
}

TEST(QdxFragment, SuffixesStandInTheirOrder)
{
    TFragmentCode code = MovTo(3);
    code.SuffixH = code.SetsCondition = code.SuffixX = true;
    EXPECT_EQ("MOVHCX R3,fragment.color.primary;\n", FragmentBody({code}));
    code.Saturate = code.SignedSaturate = true;
    EXPECT_EQ("MOVHCX_SAT R3,fragment.color.primary;\n", FragmentBody({code}));
    code.Saturate = false;
    EXPECT_EQ("MOVHCX_SSAT R3,fragment.color.primary;\n", FragmentBody({code}));
}

TEST(QdxFragment, DivSqUsesTheFixUpRegisterInTwoLines)
{
    TFragmentCode code = Code(59, 2);
    code.Sources[0] = Temp(3, 27);
    code.Sources[1] = Temp(4);
    code.Saturate = true;
    code.Mask = 7;
    EXPECT_EQ("RSQ_SAT _t.x,R4.x;\nMUL_SAT R2.xyz,R3.wzyx,_t.x;\n", FragmentBody({code}));
    EXPECT_NE(std::string::npos, RawText({code}).find("TEMP _t;\n"));
    code.Scale = 1;
    EXPECT_EQ("RSQ _t.x,R4.x;\nMUL R2.xyz,R3.wzyx,_t.x;\n", FragmentBody({code}));
}

TEST(QdxFragment, KilUnderGtPrintsWordAndSwizzleWithoutParentheses)
{
    TFragmentCode code = Code(Kil);
    code.Condition = 4;
    code.ConditionSwizzle = 0;
    EXPECT_EQ("KIL GT.x;\n", FragmentBody({code}));
    code.Condition = 7;
    EXPECT_EQ("KIL ;\n", FragmentBody({code}));
}

TEST(QdxFragment, ConditionTable)
{
    const char* words[] = {"FL", "LT", "EQ", "LE", "GT", "NE", "GE"};
    for (int condition = 0; condition < 7; ++condition) {
        TFragmentCode code = MovTo(1, 2);
        code.Condition = condition;
        code.ConditionSwizzle = 170;
        EXPECT_EQ(std::string("MOV R1.y (") + words[condition] + ".z),fragment.color.primary;\n",
                  FragmentBody({code}));
    }
}

TEST(QdxFragment, MaskTable)
{
    const char* masks[] = {"",   ".x",  ".y",  ".xy",  ".z",  ".xz",  ".yz",  ".xyz",
                           ".w", ".xw", ".yw", ".xyw", ".zw", ".xzw", ".yzw", ""};
    for (int mask = 0; mask < 16; ++mask)
        EXPECT_EQ(std::string("MOV R1") + masks[mask] + ",fragment.color.primary;\n",
                  FragmentBody({MovTo(1, mask)}));
}

TEST(QdxFragment, SwizzleTable)
{
    for (int swizzle = 0; swizzle < 256; ++swizzle) {
        std::string letters;
        for (int c = 0; c < 4; ++c)
            letters += "xyzw"[swizzle >> (2 * c) & 3];
        std::string expected = "." + letters;
        if (letters == "xyzw")
            expected = "";
        else if (letters == std::string(4, letters[0]))
            expected = "." + letters.substr(0, 1);
        EXPECT_EQ(expected, TSwizzleText(swizzle, false).Text);
        EXPECT_EQ(expected.empty() ? ".x" : expected, TSwizzleText(swizzle, true).Text);
    }
}

TEST(QdxFragment, AttributeTable)
{
    const char* names[] = {"",
                           "color.primary",
                           "color.secondary",
                           "fogcoord",
                           "texcoord[0]",
                           "texcoord[1]",
                           "texcoord[2]",
                           "texcoord[3]",
                           "texcoord[4]",
                           "texcoord[5]",
                           "texcoord[6]",
                           "texcoord[7]",
                           "texcoord[8]",
                           "texcoord[9]",
                           "facing",
                           "0x0F"};
    for (int attribute = 1; attribute < 16; ++attribute) {
        TFragmentCode code = MovTo(1);
        code.Attribute = attribute;
        EXPECT_EQ(std::string("MOV R1,fragment.") + names[attribute] + ";\n", FragmentBody({code}));
    }
}

TEST(QdxFragment, OpcodeTable)
{
    struct TRow
    {
        int Opcode;
        const char* Text;
    };
    // Destination R1; sources R2, R3, R4.
    const TRow rows[] = {
        {0, "NOP ;\n"},
        {1, "MOV R1,R2;\n"},
        {2, "MUL R1,R2,R3;\n"},
        {3, "ADD R1,R2,R3;\n"},
        {4, "MAD R1,R2,R3,R4;\n"},
        {5, "DP3 R1,R2,R3;\n"},
        {6, "DP4 R1,R2,R3;\n"},
        {7, "DST R1,R2,R3;\n"},
        {8, "MIN R1,R2,R3;\n"},
        {9, "MAX R1,R2,R3;\n"},
        {10, "SLT R1,R2,R3;\n"},
        {11, "SGE R1,R2,R3;\n"},
        {12, "SLE R1,R2,R3;\n"},
        {13, "SGT R1,R2,R3;\n"},
        {14, "SNE R1,R2,R3;\n"},
        {15, "SEQ R1,R2,R3;\n"},
        {16, "FRC R1,R2;\n"},
        {17, "FLR R1,R2;\n"},
        {18, "KIL ;\n"},
        {19, "PK4B R1,R2;\n"},
        {20, "UP4B R1,R2;\n"},
        {21, "DDX R1,R2;\n"},
        {22, "DDY R1,R2;\n"},
        {23, " \nTEX R1,_t,texture[9],2D  ;\n"},
        {24, " \nTXP R1,_t,texture[9],2D  ;\n"},
        {25, " \nTXD R1,_t,R3,-R4,texture[9],2D  ;\n"},
        {26, "RCP R1,R2.x;\n"},
        {27, "RSQ R1,R2.x;\n"},
        {28, "EX2 R1,R2.x;\n"},
        {29, "LG2 R1,R2.x;\n"},
        {30, "LIT R1,R2;\n"},
        {31, "LRP R1,R2,R3,R4;\n"},
        {32, "STR R1,R2,R3;\n"},
        {33, "SFL ;\n"},
        {34, "COS R1,R2.x;\n"},
        {35, "SIN R1,R2.x;\n"},
        {36, "PK2H R1,R2;\n"},
        {37, "UP2H R1,R2.x;\n"},
        {38, "POW R1,R2,R3;\n"},
        {39, "PK4UB R1,R2;\n"},
        {40, "UP4UB R1,R2.x;\n"},
        {41, "PK2US R1,R2;\n"},
        {42, "UP2US R1,R2.x;\n"},
        {43, ""},
        {44, ""},
        {45, ""},
        {46, "DP2A R1,R2,R3,R4;\n"},
        {47, " \nTXL R1,_t,texture[9],2D  ;\n"},
        {48, ""},
        {49, " \nTXB R1,R2,texture[9],2D  ;\n"},
        {50, ""},
        {51, ""},
        {52, ""},
        {53, ""},
        {54, "RFL R1,R2,R3;\n"},
        {55, ""},
        {56, "DP2 R1,R2,R3;\n"},
        {57, "NRM R1,R2;\n"},
        {58, "DIV R1,R2,R3.x;\n"},
        {59, "RSQ _t.x,R3.x;\nMUL R1,R2,_t.x;\n"},
        {60, "LIT R1,R2;\n"},
        {61, ""},
        {62, ""},
        {63, ""},
    };
    for (const TRow& row : rows) {
        TFragmentCode code = Code(row.Opcode, 1);
        code.Unit = 9;
        for (int n = 0; n < 3; ++n)
            code.Sources[n] = Temp(2 + n);
        EXPECT_EQ(row.Text, FragmentBody({code})) << row.Opcode;
    }
    EXPECT_EQ(64u, std::size(rows));
}

TEST(QdxFragment, OpcodesPastTheTableAreLogged)
{
    EXPECT_EQ("Unknown opcode/flow pair: 40 f\n", LogOf([] { GetFragmentOpcodeName(64, false); }));
    EXPECT_EQ("", LogOf([] { EXPECT_EQ(nullptr, GetFragmentOpcodeName(6, true)); }));
}

TEST(QdxFragment, UntranslatableOpcodesStillOpenAndCloseBlocks)
{
    EXPECT_EQ("IF TR;\nENDIF;\n", FragmentBody({Flow(2, 9 << 2, 2 << 2), Code(43, 1), Code(43, 1)}));
}

TEST(QdxFragment, SourceSigns)
{
    TFragmentCode code = Code(Mad, 1);
    code.Sources[0] = {0, 65, 0, true, true};
    code.Sources[1] = {0, 63, IdentitySwizzle, false, true};
    code.Sources[2] = {0, 127, 27, true, false};
    EXPECT_EQ("MAD R1,-|H1.x|,|R63|,-H63.wzyx;\n", FragmentBody({code}));
}

TEST(QdxFragment, IndexedInputs)
{
    TFragmentCode code = MovTo(1);
    code.IsIndexed = true;
    code.Index = 5;
    EXPECT_EQ("MOV R1,fragment.[TEX5+A0.x];\n", FragmentBody({code}));
    code.Attribute = 0;
    EXPECT_EQ("MOV R1,fragment.[TEX5+A0.x];\n", FragmentBody({code}));
    EXPECT_EQ(std::string::npos, RawText({code}).find("__wpos"));
}

TEST(QdxFragment, LiteralsAreCountedAsTheWalkPassesThem)
{
    TFragmentCode first = MovTo(1);
    first.Sources[0] = Literal(0);
    TFragmentCode second = Code(Mad, 2);
    second.Sources[0] = Literal();
    second.Sources[2] = Literal(255);
    second.Value[0] = -1.5f;
    EXPECT_EQ("MOV R1,c[0].x;\nMOV R3,R1;\nMAD R2,c[1],fragment.color.primary,c[1].w;\n",
              FragmentBody({first, MovFrom(3, 1), second}));
    const TTranslated translated({first, MovFrom(3, 1), second});
    const auto& refs = translated.Program.GetConstantRefs();
    ASSERT_EQ(2, refs.size());
    EXPECT_EQ(16u, refs[0].Offset);
    EXPECT_EQ(64u, refs[1].Offset);
    EXPECT_EQ(1u, refs[1].Version);
    EXPECT_EQ(-1.5f, refs[1].Value[0]);
    EXPECT_EQ(4.0f, refs[1].Value[3]);
    // -1.5 is 0xBFC00000.
    EXPECT_EQ(0x0000BFC0u, refs[1].Raw[0]);
}

TEST(QdxFragment, AnyWordWithBitOneBringsALiteral)
{
    TFragmentCode code = MovTo(1);
    code.Sources[2] = {3, 0, IdentitySwizzle, false, false};
    EXPECT_EQ("MOV R1,fragment.color.primary;\nMOV R2,fragment.color.primary;\n",
              FragmentBody({code, MovTo(2)}));
    EXPECT_NE(std::string::npos, RawText({code}).find("PARAM c[1] = { program.local[0] };\n"));
}

TEST(QdxFragment, ParameterLine)
{
    TFragmentCode literal = MovTo(1);
    literal.Sources[0] = Literal();
    EXPECT_EQ(std::string::npos, RawText({MovTo(1)}).find("PARAM"));
    EXPECT_NE(std::string::npos, RawText({literal}).find("\nPARAM c[1] = { program.local[0] };\n"));
    EXPECT_NE(std::string::npos,
              RawText({literal, literal}).find("\nPARAM c[2] = { program.local[0..1] };\n"));
    TFragmentCode read = Code(Tex, 1);
    read.Unit = 3;
    // All units below the highest used take a slot.
    EXPECT_NE(std::string::npos, RawText({literal, read}).find("\nPARAM c[5] = { program.local[0..4] };\n"));
    EXPECT_EQ(4u, TTranslated({literal, read}).Program.GetTextureConstants()[3]);
}

TEST(QdxFragment, NamesAreDeclaredInStringOrder)
{
    EXPECT_EQ(Header +
                  "PARAM c[1] = { program.local[0] };\n"
                  "TEMP H3;\nTEMP R10;\nTEMP R2;\nTEMP _t;\n"
                  "MOV R2,fragment.color.primary;\nMOV R10,fragment.color.primary;\n"
                  "MOV H3,fragment.color.primary;\n"
                  " \nTEX R2,_t,texture[0],2D  ;\nMOV result.color[1], R2;\nMOV result.color[2], H3;\nEND\n",
              RawText({MovTo(2), MovTo(10), MovTo(67), Code(Tex, 2)}));
}

TEST(QdxFragment, OutputsFollowTheLastWriteAndSkipRegisterOne)
{
    EXPECT_NE(std::string::npos, RawText({MovTo(0), MovTo(64), MovTo(1), MovTo(4)})
                                     .find(";\nMOV result.color, H0;\nMOV result.color[3], R4;\nEND\n"));
    EXPECT_NE(std::string::npos, RawText({MovTo(64), MovTo(0)}).find(";\nMOV result.color, R0;\nEND\n"));
    EXPECT_EQ(std::string::npos, RawText({MovTo(1), MovTo(5)}).find("result"));
    // A register that is only read has its name as a full one.
    EXPECT_NE(std::string::npos, RawText({MovFrom(5, 0)}).find("MOV result.color, R0;\n"));
    EXPECT_EQ(std::string::npos, RawText({MovFrom(5, 64)}).find("result"));
}

TEST(QdxFragment, FlowWords)
{
    EXPECT_EQ("BRK (TR);\n", FragmentBody({Flow(0)}));
    EXPECT_EQ("CAL TR,0x1f;\n", FragmentBody({Flow(1, 0x1F << 2)}));
    EXPECT_EQ("IF TR;\n", FragmentBody({Flow(2)}));
    EXPECT_EQ("LOOP {12,3,5};\n", FragmentBody({Flow(3, 12 << 2 | 3 << 10 | 5 << 19)}));
    EXPECT_EQ("REP 200;\n", FragmentBody({Flow(4, 200 << 2)}));
    EXPECT_EQ("RET (TR);\n", FragmentBody({Flow(5)}));
    for (int flow = 6; flow < 64; ++flow)
        EXPECT_EQ("", FragmentBody({Flow(flow)}));
}

TEST(QdxFragment, FlowConditions)
{
    const char* texts[] = {"BRK (LT.y);\n",       "CAL LT.y,0x0;\n", "IF LT.y;\n",
                           "LOOP LT.y{0,0,0};\n", "REP LT.y0;\n",    "RET (LT.y);\n"};
    for (int flow = 0; flow < 6; ++flow) {
        TFragmentCode code = Flow(flow);
        code.Condition = 1;
        code.ConditionSwizzle = 85;
        EXPECT_EQ(texts[flow], FragmentBody({code}));
    }
}

TEST(QdxFragment, FlowWordsTakeNoModifiersOrScale)
{
    TFragmentCode code = Flow(4, 7 << 28 | 3 << 2);
    code.Saturate = code.SuffixH = code.SetsCondition = code.SuffixX = true;
    EXPECT_EQ("REP 3;\n", FragmentBody({code}));
}

TEST(QdxFragment, BlocksEndAtTheirPositions)
{
    const TFragmentCode mov = MovTo(1);
    const std::string line = "MOV R1,fragment.color.primary;\n";
    EXPECT_EQ("IF TR;\n" + line + "ELSE;\n" + line + "ENDIF;\n" + line,
              FragmentBody({Flow(2, 2 << 2, 3 << 2), mov, mov, mov}));
    // Without an else branch both positions are one.
    EXPECT_EQ("IF TR;\n" + line + "ENDIF;\n" + line, FragmentBody({Flow(2, 2 << 2, 2 << 2), mov, mov}));
    EXPECT_EQ("LOOP {1,0,0};\nREP 2;\n" + line + "ENDLOOP;\nENDREP;\n",
              FragmentBody({Flow(3, 1 << 2, 3 << 2), Flow(4, 2 << 2, 3 << 2), mov}));
    EXPECT_EQ("REP 2;\nENDREP;\n", FragmentBody({Flow(4, 2 << 2, 1 << 2)}));
    TFragmentCode literal = MovTo(1);
    literal.Sources[0] = Literal();
    EXPECT_EQ("REP 2;\nMOV R1,c[0];\nENDREP;\n" + line,
              FragmentBody({Flow(4, 2 << 2, 3 << 2), literal, mov}));
}

TEST(QdxFragment, WposLineIsReplacedByAnEquallyLongOne)
{
    TFragmentCode code = MovTo(1);
    code.Attribute = 0;
    const std::string raw = RawText({code});
    EXPECT_EQ(
        Header + "TEMP R1;\nTEMP __wpos;\nMUL __wpos.fragment.position,{0.5,0.5,1,1};\nMOV R1,__wpos;\nEND\n",
        raw);
    const char* lines[] = {
        "MOV __wpos,fragment.position;              \n", "MUL __wpos,fragment.position,{0.5,1,1,1};  \n",
        "MUL __wpos,fragment.position,{1,0.5,1,1};  \n", "MUL __wpos,fragment.position,{0.5,0.5,1,1};\n"};
    for (uint32_t mode = 0; mode < 4; ++mode) {
        const std::string text = DriverText({code}, mode);
        EXPECT_EQ(raw.size(), text.size());
        EXPECT_EQ(Header + "TEMP R1;\nTEMP __wpos;\n" + lines[mode] + "MOV R1,__wpos;\nEND\n", text);
    }
}

TEST(QdxFragment, TextureReadsAreFlipped)
{
    TFragmentCode tex = Code(Tex, 1);
    tex.Attribute = 4;
    tex.Unit = 1;
    TFragmentCode txp = Code(Txp, 2);
    txp.Sources[0] = Temp(1, 27);
    EXPECT_EQ(Header + "PARAM c[2] = { program.local[0..1] };\nTEMP R1;\nTEMP R2;\nTEMP _t;\n"
                       "MAD _t,c[1],fragment.texcoord[0],{0,1,0,0};\n"
                       "TEX R1,_t,texture[1],2D  ;\n"
                       "MAD _t,{0,-1,0,0},R1.z,R1.wxyx;\n"
                       "TXP R2,_t,texture[0],2D  ;\n"
                       "MOV result.color[1], R2;\nEND\n",
              DriverText({tex, txp}));
}

TEST(QdxFragment, CoordinateThatOnlyTheFixUpLineNamesIsDeclared)
{
    TFragmentCode tex = Code(Tex, 0);
    tex.Sources[0] = Temp(70);
    const std::string text = DriverText({tex});
    EXPECT_NE(std::string::npos, text.find("TEMP H6;\nTEMP R0;\nTEMP _t;\nMAD _t,c[0],H6,{0,1,0,0};\n"))
        << text;
    EXPECT_NE(std::string::npos, RawText({tex}).find("TEMP H6;\n"));
    // The bias form reads its coordinate as it stands, and its fix-up line names it too.
    tex.Opcode = 49;
    EXPECT_NE(std::string::npos, DriverText({tex}).find("TEMP H6;\n"));
}

TEST(QdxFragment, ProjectiveReadOfAPlainCoordinate)
{
    TFragmentCode txp = Code(Txp, 1);
    txp.Attribute = 5;
    EXPECT_NE(std::string::npos, DriverText({txp}).find("MAD _t,{0,-1,0,0},fragment.texcoord[1].y,"
                                                        "fragment.texcoord[1].xwzw;\nTXP R1,"));
}

TEST(QdxFragment, CoordinateForms)
{
    TFragmentCode tex = Code(Tex, 1);
    tex.Sources[0] = {0, 66, 0, true, true};
    EXPECT_NE(std::string::npos, DriverText({MovTo(66), tex}).find("MAD _t,c[0],-|H2.x|,{0,1,0,0};\n"));
    tex.Sources[0] = Input();
    tex.Attribute = 0;
    EXPECT_NE(std::string::npos, DriverText({tex}).find("MAD _t,c[0],fragment.position,{0,1,0,0};\n"));
    TFragmentCode literal = MovTo(2);
    literal.Sources[0] = Literal();
    tex.Sources[0] = Literal(85);
    EXPECT_NE(std::string::npos, DriverText({literal, tex, literal}).find("MAD _t,c[3],c[1].y,{0,1,0,0};\n"));
}

TEST(QdxFragment, TargetsOfAVariant)
{
    TFragmentCode tex = Code(Tex, 1);
    tex.Attribute = 4;
    TFragmentCode second = tex;
    second.Unit = 2;
    const TTranslated translated({tex, second});
    const std::string cube = translated.Variant(TY_TargetCube);
    EXPECT_NE(std::string::npos,
              cube.find("MUL _t,{1,-1,1,1},fragment.texcoord[0];\nTEX R1,_t,texture[0],CUBE;\n"));
    EXPECT_NE(std::string::npos, translated.Variant(TY_Target3D).find("texture[2],3D  ;\n"));
    EXPECT_NE(std::string::npos, translated.Variant(TY_Target1D).find("texture[2],1D  ;\n"));
    uint32_t targets[16] = {};
    targets[0] = TY_TargetCube;
    targets[2] = TY_Target2D;
    TString text;
    translated.Program.GetVariantText(targets, 0, text);
    EXPECT_EQ(Header + "PARAM c[3] = { program.local[0..2] };\nTEMP R1;\nTEMP _t;\n"
                       "MUL _t,{1,-1,1,1},fragment.texcoord[0];\nTEX R1,_t,texture[0],CUBE;\n"
                       "MAD _t,c[2],fragment.texcoord[0],{0,1,0,0};\nTEX R1,_t,texture[2],2D  ;\nEND\n",
              Text(text));
    EXPECT_EQ(0x5u, translated.Program.GetUsedTextures());
}

TEST(QdxFragment, TextureReadRecord)
{
    TFragmentCode txd = Code(Txd, 1);
    txd.Sources[0] = {0, 66, 85, true, true};
    txd.Attribute = 9;
    txd.Unit = 15;
    const TTranslated translated({MovTo(66), MovTo(2), txd});
    ASSERT_EQ(1, translated.Program.GetTextureReads().size());
    const TTextureRead& read = translated.Program.GetTextureReads()[0];
    EXPECT_EQ(15u, read.Unit);
    EXPECT_EQ(static_cast<uint32_t>(FL_TextureReadGradient), read.Flags);
    EXPECT_EQ((66u << 2) | (85u << 9) | (1u << 17) | (1u << 18) | (9u << 28), read.Coord);
    const std::string text = Text(translated.Program.GetText());
    EXPECT_EQ(" \nTXD", text.substr(static_cast<size_t>(read.LinePos), 5));
    EXPECT_EQ("2D  ;", text.substr(static_cast<size_t>(read.TargetPos), 5));
}

TEST(QdxFragment, TxdTurnsItsThirdSource)
{
    TFragmentCode txd = Code(Txd, 1);
    for (int n = 0; n < 3; ++n)
        txd.Sources[n] = Temp(2 + n);
    EXPECT_EQ(" \nTXD R1,_t,R3,-R4,texture[0],2D  ;\n", FragmentBody({txd}));
    txd.Sources[2].Negate = true;
    EXPECT_EQ(" \nTXD R1,_t,R3,R4,texture[0],2D  ;\n", FragmentBody({txd}));
}

TEST(QdxFragment, VariantsFitByModeOnlyWhereThePositionIsUsed)
{
    TTranslated plain({MovTo(1)});
    EXPECT_EQ(nullptr, plain.Program.FindVariant(0));
    plain.Program.AddVariant(0);
    EXPECT_NE(nullptr, plain.Program.FindVariant(3));
    TFragmentCode wpos = MovTo(1);
    wpos.Attribute = 0;
    TTranslated positioned({wpos, Code(Tex, 2)});
    const TFragmentVariant& variant = positioned.Program.AddVariant(2);
    EXPECT_EQ(0u, variant.ConstantVersion);
    EXPECT_EQ(0x0DE1u, variant.Targets[0]);
    EXPECT_EQ(0u, variant.Targets[1]);
    EXPECT_EQ(nullptr, positioned.Program.FindVariant(0));
    EXPECT_NE(nullptr, positioned.Program.FindVariant(2));
}

TEST(QdxFragment, SetConstantComparesStoresAndCounts)
{
    TFragmentCode literal = MovTo(1);
    literal.Sources[0] = Literal();
    TTranslated translated({literal, literal});
    TQdxFragmentProgram& program = translated.Program;
    const uint32_t version = program.GetConstantVersion();
    const float same[4] = {1, 2, 3, 4};
    program.SetConstant(0, same);
    EXPECT_EQ(version, program.GetConstantVersion());
    EXPECT_EQ(1u, program.GetConstantRefs()[0].Version);
    const float other[4] = {1, 2, 3, std::numeric_limits<float>::quiet_NaN()};
    program.SetConstant(1, other);
    EXPECT_EQ(version + 1, program.GetConstantVersion());
    EXPECT_EQ(version + 1, program.GetConstantRefs()[1].Version);
    EXPECT_EQ(1u, program.GetConstantRefs()[0].Version);
    EXPECT_EQ(0x00003F80u, program.GetConstantRefs()[1].Raw[0]);
    program.SetConstant(1, other);
    EXPECT_EQ(version + 1, program.GetConstantVersion());
    EXPECT_EQ(0, program.FindConstantRef(16));
    EXPECT_EQ(1, program.FindConstantRef(48));
    EXPECT_EQ(-1, program.FindConstantRef(32));
    EXPECT_EQ(-1, program.FindConstantRef(64));
}

TEST(QdxRegisterMap, TwentyNineRegistersKeepTheirNamesThirtyOneDoNot)
{
    EXPECT_NE(std::string::npos, RawText(ManyRegisters(29)).find("MOV R33,"));
    EXPECT_NE(std::string::npos, RawText(ManyRegisters(30)).find("MOV R34,"));
    const std::string mapped = RawText(ManyRegisters(31));
    EXPECT_NE(std::string::npos, mapped.find("MOV T0,"));
    EXPECT_EQ(std::string::npos, mapped.find("MOV R"));
}

TEST(QdxRegisterMap, PressureCountsSourcesOnlyBesideLiterals)
{
    std::vector<TFragmentCode> program = ManyRegisters(30);
    TFragmentCode add = Code(Add, 5);
    add.Sources[0] = Temp(60);
    add.Sources[1] = Temp(61);
    program.push_back(add);
    EXPECT_NE(std::string::npos, RawText(program).find("ADD R5,R60,R61;"));
    // The literal stands in a word whose source the opcode does not use.
    program.back().Sources[2] = Literal();
    EXPECT_NE(std::string::npos, RawText(program).find("ADD T"));
    // A temporary in an unused operand does not count.
    TFragmentCode mov = MovTo(5);
    mov.Sources[0] = Literal();
    mov.Sources[1] = Temp(60);
    program.back() = mov;
    EXPECT_NE(std::string::npos, RawText(program).find("MOV R5,c[0];"));
}

TEST(QdxRegisterMap, HalfRegistersAndConditionWrites)
{
    std::vector<TFragmentCode> program = ManyRegisters(30);
    TFragmentCode toCondition = MovTo(50);
    toCondition.NoRegister = true;
    program.push_back(toCondition);
    EXPECT_NE(std::string::npos, RawText(program).find("MOV R34,"));
    program.push_back(MovTo(64 + 5));
    EXPECT_EQ(std::string::npos, RawText(program).find("MOV R34,"));
}

TEST(QdxRegisterMap, ANewValueTakesTheLowestFreeRegister)
{
    // R40 lives to the end; R41 ends where R42 starts.
    EXPECT_EQ("MOV T0,fragment.color.primary;\nMOV T1,fragment.color.primary;\nMOV T1,T1;\nMOV T0,T0;\n",
              MapBody({MovTo(40), MovTo(41), MovFrom(42, 41), MovFrom(43, 40)}));
}

TEST(QdxRegisterMap, ReadAndWrittenInOneInstructionInDifferentRegisters)
{
    TFragmentCode add = Code(Add, 41);
    add.Sources[0] = Temp(40);
    add.Sources[1] = Temp(41);
    EXPECT_EQ("MOV T0,fragment.color.primary;\nMOV T1,fragment.color.primary;\nADD T0,T0,T1;\nMOV T0,T0;\n",
              MapBody({MovTo(40), MovTo(41), add, MovFrom(42, 41)}));
}

TEST(QdxRegisterMap, PartialWriteJoinsWhileTheRestIsSeen)
{
    // x is written again, and y is read behind it: one value.
    EXPECT_EQ("MOV T0,fragment.color.primary;\nMOV T0.x,fragment.color.primary;\nMOV T0,T0.y;\n",
              MapBody({MovTo(40), MovTo(40, 1), MovFrom(41, 40, 85)}));
    // Only x is read: the rest is forgotten, and another value may stand in its register.
    EXPECT_EQ("MOV T0,fragment.color.primary;\nMOV T0.x,T0;\nMOV T0,T0.x;\n",
              MapBody({MovTo(40), MovFrom(40, 40, IdentitySwizzle, 1), MovFrom(41, 40, 0)}));
}

TEST(QdxRegisterMap, DotProductsReadMoreThanTheyWrite)
{
    const auto intervalsOf = [](int opcode, int swizzle) {
        TFragmentCode dot = Code(opcode, 41);
        dot.Mask = 1;
        dot.Sources[0] = dot.Sources[1] = dot.Sources[2] = Temp(40, swizzle);
        vector<TFragmentInstruction> code;
        for (int i = 0; i < 3; ++i) {
            TFragmentInstruction instruction;
            const std::vector<TFragmentCode> program = {MovTo(40), MovTo(40, 1), dot};
            program[static_cast<size_t>(i)].Words(instruction.Words);
            instruction.Position = i;
            code.push_back(instruction);
        }
        TQdxRegisterMap map;
        map.Build(code);
        return map.GetIntervals().size() - 192;
    };
    // MOV, joined or not, and the dot product's own.
    EXPECT_EQ(2, intervalsOf(Dp3, IdentitySwizzle));
    EXPECT_EQ(2, intervalsOf(Dp4, IdentitySwizzle));
    EXPECT_EQ(2, intervalsOf(46, IdentitySwizzle));
    EXPECT_EQ(3, intervalsOf(Mul, IdentitySwizzle));
    EXPECT_EQ(3, intervalsOf(Dp4, 0));
    EXPECT_EQ(2, intervalsOf(Mul, 85));
}

namespace {

std::vector<TRegisterInterval> IntervalsOf(const std::vector<TFragmentCode>& program)
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

void ExpectInterval(const TRegisterInterval& interval, int start, int end, int mask)
{
    EXPECT_EQ(start, interval.Start);
    EXPECT_EQ(end, interval.End);
    EXPECT_EQ(mask, interval.Mask);
}

} // namespace

TEST(QdxRegisterMap, UntouchedRegistersHaveNoLife)
{
    const auto intervals = IntervalsOf({MovTo(40)});
    ASSERT_EQ(193u, intervals.size());
    for (int id = 0; id < 192; ++id) {
        ExpectInterval(intervals[static_cast<size_t>(id)], -1, -1, 0);
        EXPECT_EQ(id, intervals[static_cast<size_t>(id)].Reg);
    }
    ExpectInterval(intervals[192], 0, 0, 15);
    EXPECT_EQ(192, intervals[192].Reg);
}

TEST(QdxRegisterMap, ReadBeforeWrittenLivesFromTheStart)
{
    const auto intervals = IntervalsOf({MovTo(5), MovFrom(6, 40)});
    ExpectInterval(intervals[40], 0, 1, 0);
}

TEST(QdxRegisterMap, ConditionalFirstWriteLivesFromTheStart)
{
    TFragmentCode conditional = MovTo(40, 3);
    conditional.Condition = 2;
    const auto intervals = IntervalsOf({MovTo(5), conditional, MovFrom(6, 40)});
    ExpectInterval(intervals[40], 0, 2, 3);
    EXPECT_EQ(194u, intervals.size());
}

TEST(QdxRegisterMap, PartialFirstWriteStartsAValue)
{
    const auto intervals = IntervalsOf({MovTo(5), MovTo(40, 1), MovFrom(6, 40)});
    ExpectInterval(intervals[40], -1, -1, 0);
    ExpectInterval(intervals[193], 1, 2, 1);
}

TEST(QdxRegisterMap, CompletedPartialWritesStartAValue)
{
    // xy is written, then x and y one after the other before anything reads: a new value with y joined.
    const auto intervals = IntervalsOf({MovTo(40, 3), MovTo(40, 1), MovTo(40, 2), MovFrom(41, 40)});
    ExpectInterval(intervals[192], 0, 0, 3);
    ExpectInterval(intervals[193], 1, 3, 3);
    EXPECT_EQ(195u, intervals.size());
}

TEST(QdxRegisterMap, OutputsKeepTheirRestToTheEnd)
{
    EXPECT_EQ(193u, IntervalsOf({MovTo(4), MovTo(4, 1)}).size());
    EXPECT_EQ(193u, IntervalsOf({MovTo(68), MovTo(68, 1)}).size());
    EXPECT_EQ(194u, IntervalsOf({MovTo(5), MovTo(5, 1)}).size());
    EXPECT_EQ(194u, IntervalsOf({MovTo(69), MovTo(69, 1)}).size());
}

TEST(QdxRegisterMap, PositionsCountLiterals)
{
    TFragmentCode literal = MovTo(40);
    literal.Sources[0] = Literal();
    const auto intervals = IntervalsOf({literal, MovFrom(41, 40)});
    ExpectInterval(intervals[192], 0, 2, 15);
}

TEST(QdxRegisterMap, LookingUpWhatIsNoTemporaryIsFatal)
{
    vector<TFragmentInstruction> code;
    TFragmentInstruction instruction = {};
    Code(Kil).Words(instruction.Words);
    code.push_back(instruction);
    TQdxRegisterMap map;
    map.Build(code);
    EXPECT_EQ("m_qdxToArbMapping[qdxidx] != -1", AssertionOf([&] { map.GetDestination(0); }));
    EXPECT_EQ("m_qdxToArbMapping[qdxidx] != -1", AssertionOf([&] { map.GetSource(0, 1); }));
}

TEST(QdxRegisterMap, ThirtyRegistersAreTheMostThatKeepTheirNames)
{
    std::vector<TFragmentCode> program = ManyRegisters(30);
    EXPECT_NE(std::string::npos, RawText(program).find("TEMP R34;\n"));
    // The same register as a half one counts apart.
    program.push_back(MovTo(64 + 5));
    EXPECT_NE(std::string::npos, RawText(program).find("TEMP T0;\n"));
}

TEST(QdxRegisterMap, FirstInstructionReadsAndWritesOneRegister)
{
    // The old value is there from the start and ends at once, so that the new one takes its place.
    EXPECT_EQ("MOV T0,T0;\nMOV T1,T0;\nMOV T0,T0;\n",
              MapBody({MovFrom(50, 50), MovFrom(51, 50), MovFrom(52, 50)}));
    // A conditional write goes on with the old value.
    TFragmentCode both = MovFrom(50, 50);
    both.Condition = 2;
    EXPECT_EQ("MOV T0 (EQ),T0;\nMOV T0,T0;\n", MapBody({both, MovFrom(51, 50)}));
}

TEST(QdxRegisterMap, MoreValuesAtOnceThanRegistersIsFatal)
{
    std::vector<TFragmentCode> program = ManyRegisters(31);
    for (int i = 0; i < 31; ++i)
        program.push_back(MovFrom(50, 5 + i));
    EXPECT_EQ("i < ArbNumRegs", AssertionOf([&] { RawText(program); }));
}

TEST(QdxRegisterMap, MappedOutputsAndCoordinates)
{
    std::vector<TFragmentCode> program = ManyRegisters(31);
    TFragmentCode tex = Code(Tex, 0);
    tex.Sources[0] = Temp(50);
    program.push_back(MovTo(49));
    program.push_back(MovTo(50));
    program.push_back(MovFrom(51, 49));
    program.push_back(tex);
    program.push_back(MovTo(66));
    program.push_back(MovFrom(52, 0));
    const std::string text = DriverText(program);
    EXPECT_NE(std::string::npos, text.find("MAD _t,c[0],T1,{0,1,0,0};\nTEX T0,_t,texture[0],2D  ;\n"))
        << text;
    EXPECT_NE(std::string::npos, text.find("MOV result.color, T0;\nMOV result.color[1], T1;\nEND\n")) << text;
}

namespace {

// Programs as a compiler could make them: registers are written before they are read. Careless ones read
// whatever comes.
class TFragmentGenerator
{
public:
    explicit TFragmentGenerator(uint32_t seed, bool isCareless = false) : Random(seed), IsCareless(isCareless)
    {
    }

    std::vector<TFragmentCode> Make(int count, int registers, bool straight)
    {
        Written.clear();
        std::vector<TFragmentCode> program;
        for (int i = 0; i < count; ++i) {
            if (!straight && Below(12) == 0)
                program.push_back(MakeFlow(count));
            else
                program.push_back(MakeOne(registers, straight));
        }
        return program;
    }

private:
    int Below(int n) { return static_cast<int>(Random() % static_cast<uint32_t>(n)); }

    TFragmentOperand MakeOperand(int registers, bool allowLiteral)
    {
        TFragmentOperand operand = Input();
        const int kind = Below(8);
        if (kind < 5 && IsCareless && Below(4) == 0) {
            operand = Temp(Below(registers));
        } else if (kind < 5 && !Written.empty()) {
            // What was written lately, so that values die.
            const int back = Below(std::min<int>(12, static_cast<int>(Written.size())));
            operand = Temp(Written[Written.size() - 1 - static_cast<size_t>(back)]);
        } else if (kind == 5 && allowLiteral) {
            operand = Literal();
        }
        operand.Swizzle = Below(3) == 0 ? IdentitySwizzle : Below(256);
        operand.Negate = Below(4) == 0;
        operand.Absolute = Below(6) == 0;
        return operand;
    }

    TFragmentCode MakeOne(int registers, bool straight)
    {
        static constexpr int Plain[] = {1, 2, 3, 4, 5, 6, 46};
        TFragmentCode code;
        code.Opcode = straight ? Plain[Below(7)] : Below(64);
        code.Attribute = Below(16);
        code.Unit = Below(16);
        code.Condition = Below(5) == 0 ? Below(8) : 7;
        code.ConditionSwizzle = Below(256);
        code.Mask = Below(2) == 0 ? 15 : Below(16);
        for (TFragmentOperand& operand : code.Sources)
            operand = MakeOperand(registers, !straight);
        if (!straight) {
            code.SetsCondition = Below(8) == 0;
            code.NoRegister = Below(16) == 0;
            code.Saturate = Below(8) == 0;
            code.SignedSaturate = Below(8) == 0;
            code.SuffixH = Below(8) == 0;
            code.SuffixX = Below(8) == 0;
            code.Scale = Below(4) == 0 ? Below(8) : 0;
            code.IsIndexed = Below(16) == 0;
            code.Index = Below(16);
        }
        const int reg = Below(registers);
        code.Register = reg & 63;
        code.IsHalf = reg >= 64;
        uint32_t words[4];
        code.Words(words);
        TFragmentInstruction instruction = {{words[0], words[1], words[2], words[3]}, 0};
        const bool isSilent = code.Opcode >= 43 && FragmentBody({code}).empty();
        if (instruction.WritesRegister() && !isSilent)
            Written.push_back(reg);
        return code;
    }

    TFragmentCode MakeFlow(int count)
    {
        TFragmentCode code = Flow(Below(6), static_cast<uint32_t>(Below(count * 2)) << 2,
                                  static_cast<uint32_t>(Below(count * 2)) << 2);
        code.Condition = Below(8);
        code.ConditionSwizzle = Below(256);
        return code;
    }

    std::mt19937 Random;
    bool IsCareless;
    std::vector<int> Written;
};

// Every register named in a text is declared in it.
void ExpectAllDeclared(const std::string& text)
{
    static const std::regex names("(^|[^A-Za-z0-9_.\\[])([RHT][0-9]+|_t|__wpos)($|[^A-Za-z0-9_])");
    std::set<std::string> declared;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind("TEMP ", 0) == 0) {
            EXPECT_TRUE(declared.insert(line.substr(5, line.size() - 6)).second) << line;
            continue;
        }
        // Neighbours share their separator, so the search begins again at each name's end.
        std::smatch match;
        for (auto at = line.cbegin(); std::regex_search(at, line.cend(), match, names);) {
            EXPECT_TRUE(declared.count(match[2]) == 1) << match[2] << " in " << line;
            at = match[2].second;
        }
    }
}

} // namespace

TEST(QdxFragmentRandom, TextIsDeterministicAndDeclaresWhatItNames)
{
    int mapped[2] = {};
    for (uint32_t seed = 0; seed < 300; ++seed) {
        const bool isCareless = seed % 2 != 0;
        TFragmentGenerator generator(seed / 2, isCareless);
        const auto program =
            generator.Make(10 + static_cast<int>(seed % 90), 4 + static_cast<int>(seed % 64), false);
        std::string text;
        const std::string assertion = AssertionOf([&] { text = DriverText(program); });
        if (!assertion.empty()) {
            EXPECT_EQ("i < ArbNumRegs", assertion) << seed;
            continue;
        }
        EXPECT_EQ(text, DriverText(program));
        EXPECT_EQ("END\n", text.substr(text.size() - 4));
        ExpectAllDeclared(text);
        mapped[isCareless] += text.find("TEMP T0;") != std::string::npos ? 1 : 0;
        if (HasFailure())
            FAIL() << "seed " << seed << "\n" << text;
    }
    EXPECT_GT(mapped[0], 10);
    EXPECT_GT(mapped[1], 10);
}

namespace {

// Whether a partial write may forget the rest of the old value, found by walking the program.
bool ForgetsRest(const std::vector<TFragmentInstruction>& code, size_t at, int live)
{
    const int reg = code[at].GetRegister();
    int done = code[at].GetMask();
    for (size_t i = at + 1; i < code.size(); ++i) {
        const int opcode = code[i].GetOpcode();
        const int extra = opcode == Dp3 ? 7 : opcode == Dp4 ? 15 : opcode == 46 ? 3 : 0;
        for (int n = 0; n < 3; ++n) {
            const TFragmentSource source = code[i].GetSource(n);
            if (!code[i].ReadsTemporary(n) || source.Register != reg)
                continue;
            for (int c = 0; c < 4; ++c) {
                const int fetched = 1 << (source.Swizzle >> (2 * c) & 3);
                if (((code[i].GetMask() | extra) >> c & 1) != 0 && (fetched & live & ~done) != 0)
                    return false;
            }
        }
        if (code[i].WritesRegister() && code[i].GetRegister() == reg && code[i].GetCondition() == 7) {
            done |= code[i].GetMask();
            if (done == live)
                return true;
        }
    }
    return (reg & 63) >= 5;
}

} // namespace

TEST(QdxFragmentRandom, ValuesAreThoseOfAPlainWalk)
{
    int joined = 0;
    int parted = 0;
    for (uint32_t seed = 0; seed < 300; ++seed) {
        TFragmentGenerator generator(seed);
        const auto program = generator.Make(60, 1 + static_cast<int>(seed % 9), true);
        std::vector<TFragmentInstruction> code;
        for (const TFragmentCode& one : program) {
            TFragmentInstruction instruction;
            one.Words(instruction.Words);
            instruction.Position = static_cast<int>(code.size());
            code.push_back(instruction);
        }
        std::vector<TRegisterInterval> expected;
        std::vector<size_t> current;
        for (int id = 0; id < 192; ++id) {
            expected.push_back({-1, -1, 0, id});
            current.push_back(static_cast<size_t>(id));
        }
        for (size_t i = 0; i < code.size(); ++i) {
            const int position = static_cast<int>(i);
            const auto touch = [&](size_t id) {
                expected[id].Start = expected[id].Start == -1 ? 0 : expected[id].Start;
                expected[id].End = position;
            };
            for (int n = 0; n < 3; ++n)
                if (code[i].ReadsTemporary(n))
                    touch(current[static_cast<size_t>(code[i].GetSource(n).Register)]);
            size_t& id = current[static_cast<size_t>(code[i].GetRegister())];
            bool starts = code[i].GetCondition() == 7;
            if (starts && code[i].GetMask() != 15 && id >= 192) {
                starts = ForgetsRest(code, i, expected[id].Mask);
                ++(starts ? parted : joined);
            }
            if (starts) {
                id = expected.size();
                expected.push_back({position, position, code[i].GetMask(), static_cast<int>(id)});
            } else {
                touch(id);
                expected[id].Mask |= code[i].GetMask();
            }
        }
        const auto intervals = IntervalsOf(program);
        ASSERT_EQ(expected.size(), intervals.size()) << seed;
        for (size_t id = 0; id < expected.size(); ++id)
            ExpectInterval(intervals[id], expected[id].Start, expected[id].End, expected[id].Mask);
        if (HasFailure())
            FAIL() << seed;
    }
    EXPECT_GT(joined, 500);
    EXPECT_GT(parted, 500);
}

// Whatever register a value lies in, each component read must come from the same writes as before.
TEST(QdxFragmentRandom, MappingKeepsEveryValueThatIsRead)
{
    int checked = 0;
    for (uint32_t seed = 0; seed < 200; ++seed) {
        TFragmentGenerator generator(seed);
        const auto program = generator.Make(120, 128, true);
        vector<TFragmentInstruction> code;
        for (const TFragmentCode& one : program) {
            TFragmentInstruction instruction;
            one.Words(instruction.Words);
            instruction.Position = code.size();
            code.push_back(instruction);
        }
        TQdxRegisterMap map;
        const std::string assertion = AssertionOf([&] { map.Build(code); });
        if (!assertion.empty()) {
            EXPECT_EQ("i < ArbNumRegs", assertion);
            continue;
        }
        // By register and component: the instructions that may have written it, -1 for none.
        std::vector<std::vector<std::set<int>>> chip(128, std::vector<std::set<int>>(4, {-1}));
        auto arb = chip;
        for (int i = 0; i < code.size(); ++i) {
            int extra = 0;
            if (code[i].GetOpcode() == Dp3)
                extra = 7;
            if (code[i].GetOpcode() == Dp4)
                extra = 15;
            if (code[i].GetOpcode() == 46)
                extra = 3;
            for (int n = 0; n < 3; ++n) {
                if (!code[i].ReadsTemporary(n))
                    continue;
                const TFragmentSource source = code[i].GetSource(n);
                for (int c = 0; c < 4; ++c) {
                    if (((code[i].GetMask() | extra) >> c & 1) == 0)
                        continue;
                    const size_t fetched = static_cast<size_t>(source.Swizzle >> (2 * c) & 3);
                    const auto& before = chip[static_cast<size_t>(source.Register)][fetched];
                    if (before.count(-1) != 0)
                        continue;
                    EXPECT_EQ(before, arb[static_cast<size_t>(map.GetSource(i, n))][fetched])
                        << "seed " << seed << " instruction " << i;
                    ++checked;
                }
            }
            for (int c = 0; c < 4; ++c) {
                if ((code[i].GetMask() >> c & 1) == 0)
                    continue;
                auto& before = chip[static_cast<size_t>(code[i].GetRegister())][static_cast<size_t>(c)];
                auto& now = arb[static_cast<size_t>(map.GetDestination(i))][static_cast<size_t>(c)];
                if (code[i].GetCondition() == ConditionAlways) {
                    before.clear();
                    now.clear();
                }
                before.insert(i);
                now.insert(i);
            }
        }
        if (HasFailure())
            FAIL();
    }
    EXPECT_GT(checked, 5000);
}
