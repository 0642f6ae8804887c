#include "particles/cindermill/graph/shaders/qdxvertexprogram.h"
#include "particles/cindermill/graph/shaders/qdxvertexranges.h"
#include "particles/cindermill/graph/shaders/swizzletext.h"
#include "qdxvertexfixture.h"

#include <random>
#include <regex>
#include <set>
#include <sstream>

namespace {

std::string RangesText(const TQdxVertexRanges& ranges)
{
    std::string text;
    for (const TVertexRange& range : ranges.GetRanges())
        text += std::to_string(range.First) + ".." + std::to_string(range.Last) + " ";
    return text;
}

} // namespace

TEST(QdxVertex, WholeProgram)
{
    TVertexCode mad = Vector(Mad, 3);
    mad.Sources[0] = ConstantOperand();
    mad.Constant = 258;
    mad.Scalar = Rcp;
    mad.ScalarTemporary = 12;
    mad.ScalarMask = 8;
    mad.Sources[2].Swizzle = 255;
    TVertexCode out = Vector(Mul);
    out.VectorOutput = true;
    out.Sources[0] = TempOperand(3);
    out.Sources[1] = TempOperand(12);
    EXPECT_EQ(Header + "PARAM c[1] = {\n program.local[2]\n};\nTEMP R12;\nTEMP R3;\n"
                       "MAD R3,c[0],vertex.attrib[0],vertex.attrib[0].w;\n"
                       "RCP R12.x,vertex.attrib[0].w;\n"
                       "MUL result.position,R3,R12;\n"
                       "END\n",
              VertexText({mad, out}));
}

TEST(QdxVertex, VectorOpcodeTable)
{
    const char* names[] = {"NOP", "MOV", "MUL", "ADD", "MAD", "DP3", "DPH", "DP4", "DST",
                           "MIN", "MAX", "SLT", "SGE", "ARL", "FRC", "FLR", "SEQ", "SFL",
                           "SGT", "SLE", "SNE", "STR", "SSG", "ARR", "ARA", "TXL"};
    for (int opcode = 1; opcode < 25; ++opcode) {
        TVertexCode code = Vector(opcode, 1);
        code.Sources[0].Swizzle = 0;
        code.Sources[1].Swizzle = 85;
        code.Sources[2].Swizzle = 170;
        std::string sources = ",vertex.attrib[0].x";
        if (opcode == Add)
            sources += ",vertex.attrib[0].z";
        else if (opcode == Mad)
            sources += ",vertex.attrib[0].y,vertex.attrib[0].z";
        else if (opcode != Mov && opcode != 13 && opcode != 14 && opcode != 15 && opcode < 22)
            sources += ",vertex.attrib[0].y";
        if (opcode == Ara)
            sources = ",A0.x";
        const char* letter = opcode == 13 || opcode == 23 || opcode == 24 ? "A" : "R";
        EXPECT_EQ(std::string(names[opcode]) + " " + letter + "1" + sources + ";\n", VertexBody({code}));
    }
}

TEST(QdxVertex, OpcodesPastTheTablesAreNoOperation)
{
    for (int opcode = 26; opcode < 32; ++opcode) {
        TVertexCode code = Vector(opcode, 1);
        EXPECT_EQ("\n", VertexBody({code}));
        code.Scalar = Rcp;
        EXPECT_EQ("RCP R0,vertex.attrib[0];\n", VertexBody({code}));
    }
    for (int opcode = 21; opcode < 32; ++opcode) {
        TVertexCode code = Vector(Mov, 1);
        code.Scalar = opcode;
        EXPECT_EQ("MOV R1,vertex.attrib[0];\n", VertexBody({code}));
        EXPECT_EQ("\n", VertexBody({Scalar(opcode, 1)}));
        code.Vector = 31;
        EXPECT_EQ("\n", VertexBody({code}));
        // What prints nothing counts for no label.
        EXPECT_EQ("BRA label0 (TR);\n\nNOP\nlabel0:\nNOP\n",
                  VertexBody({Branch(Bra, 2), Scalar(opcode, 1), Vector(0), Vector(0)}));
    }
    EXPECT_EQ("NOP\n", VertexBody({Vector(0)}));
}

TEST(QdxVertex, ScalarOpcodeTable)
{
    const char* texts[] = {"NOP\n",
                           "??? ;\n",
                           "RCP R7,vertex.attrib[0];\n",
                           "RCC R7,vertex.attrib[0];\n",
                           "RSQ R7,vertex.attrib[0];\n",
                           "EXP R7,vertex.attrib[0];\n",
                           "LOG R7,vertex.attrib[0];\n",
                           "LIT R7,vertex.attrib[0];\n",
                           "??? ;\n",
                           nullptr,
                           "??? ;\n",
                           nullptr,
                           "RET (TR);\n",
                           "LG2 R7,vertex.attrib[0];\n",
                           "EX2 R7,vertex.attrib[0];\n",
                           "SIN R7,vertex.attrib[0];\n",
                           "COS R7,vertex.attrib[0];\n",
                           "??? ;\n",
                           "??? ;\n",
                           "PUSHA A0;\n",
                           "POPA A7;\n"};
    for (int opcode = 0; opcode < 21; ++opcode)
        if (texts[opcode] != nullptr) {
            EXPECT_EQ(texts[opcode], VertexBody({Scalar(opcode, 7)})) << opcode;
        }
}

TEST(QdxVertex, PopAPrintsNoMask)
{
    TVertexCode code = Scalar(PopA, 1);
    code.ScalarMask = 8;
    EXPECT_EQ("POPA A1;\n", VertexBody({code}));
    EXPECT_NE(std::string::npos, VertexText({code}).find("ADDRESS A1;\n"));
}

TEST(QdxVertex, MaskTable)
{
    const char* masks[] = {"",   ".w",  ".z",  ".zw",  ".y",  ".yw",  ".yz",  ".yzw",
                           ".x", ".xw", ".xz", ".xzw", ".xy", ".xyw", ".xyz", ""};
    for (int mask = 0; mask < 16; ++mask) {
        TVertexCode code = Vector(Mov, 2);
        code.VectorMask = mask;
        code.Scalar = Rcp;
        code.ScalarTemporary = 31;
        code.ScalarMask = 15 - mask;
        EXPECT_EQ(std::string("MOV R2") + masks[mask] + ",vertex.attrib[0];\nRCP R31" + masks[15 - mask] +
                      ",vertex.attrib[0];\n",
                  VertexBody({code}));
    }
}

TEST(QdxVertex, SwizzleTable)
{
    for (int swizzle = 0; swizzle < 256; ++swizzle) {
        std::string letters;
        for (int c = 3; c >= 0; --c)
            letters += "xyzw"[swizzle >> (2 * c) & 3];
        std::string expected = "." + letters;
        if (letters == "xyzw")
            expected = "";
        else if (letters == std::string(4, letters[0]))
            expected = "." + letters.substr(0, 1);
        EXPECT_EQ(expected, TVertexSwizzleText(swizzle).Text);
        TVertexCode code = Vector(Mad, 1);
        for (TVertexOperand& source : code.Sources)
            source.Swizzle = swizzle;
        const std::string source = ",vertex.attrib[0]" + expected;
        EXPECT_EQ("MAD R1" + source + source + source + ";\n", VertexBody({code}));
    }
}

TEST(QdxVertex, OutputTable)
{
    const char* names[32] = {"position",
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
                             "0x1F"};
    for (int output = 0; output < 32; ++output) {
        if (names[output] == nullptr)
            continue;
        TVertexCode code = Vector(Mov);
        code.VectorOutput = true;
        code.Output = output;
        code.VectorMask = 8;
        EXPECT_EQ(std::string("MOV result.") + names[output] + ".x,vertex.attrib[0];\n", VertexBody({code}));
        code = Scalar(Rcp);
        code.ScalarOutput = true;
        code.Output = output;
        EXPECT_EQ(std::string("RCP result.") + names[output] + ",vertex.attrib[0];\n", VertexBody({code}));
    }
}

TEST(QdxVertex, ClipOutputsShareRegistersWithFogAndPointSize)
{
    const auto written = [](int output, int mask) {
        TVertexCode code = Vector(Mov);
        code.VectorOutput = true;
        code.Output = output;
        code.VectorMask = mask;
        const std::string body = VertexBody({code});
        return body.substr(4, body.find(',') - 4);
    };
    EXPECT_EQ("result.CLP2", written(5, 1));
    EXPECT_EQ("result.CLP1", written(5, 2));
    EXPECT_EQ("result.CLP0", written(5, 4));
    EXPECT_EQ("result.fogcoord", written(5, 8));
    EXPECT_EQ("result.CLP5", written(6, 1));
    EXPECT_EQ("result.CLP4", written(6, 2));
    EXPECT_EQ("result.CLP3", written(6, 4));
    EXPECT_EQ("result.pointsize", written(6, 8));
    EXPECT_EQ("result.FOGC|CLP0|CLP1|CLP2.xy", written(5, 12));
    EXPECT_EQ("result.PSIZ|CLP3|CLP4|CLP5.xyz", written(6, 14));
    EXPECT_EQ("result.FOGC|CLP0|CLP1|CLP2", written(5, 15));
    EXPECT_EQ("result.PSIZ|CLP3|CLP4|CLP5", written(6, 0));
}

TEST(QdxVertex, RelativeOutputs)
{
    TVertexCode code = Vector(Mov);
    code.VectorOutput = true;
    code.OutputRelative = true;
    code.Output = 5;
    code.VectorMask = 8;
    code.AddressComponent = 2;
    EXPECT_EQ("MOV result.A0.z+5.x,vertex.attrib[0];\n", VertexBody({code}));
    code.AddressRegister = 1;
    EXPECT_EQ("MOV result.A1.z+5.x,vertex.attrib[0];\n", VertexBody({code}));
}

TEST(QdxVertex, SourceForms)
{
    TVertexCode code = Vector(Mad, 4);
    code.Sources[0] = {2, 0, 27, true, true};
    code.Sources[1] = {3, 0, 0, true, false};
    code.Sources[2] = {1, 4, 228, false, true};
    code.Attribute = 11;
    code.Constant = 9;
    // The destination is named before the sources.
    EXPECT_EQ("MAD R4,-|vertex.attrib[11]|,-c[0].x,|R4.wzyx|;\n", VertexBody({code}));
    code.AttributeRelative = true;
    code.ConstantRelative = true;
    code.AddressRegister = 1;
    code.AddressComponent = 3;
    EXPECT_EQ("MAD R4,-|vertex.attrib[A1.w+11]|,-c[A1.w+0].x,|R4.wzyx|;\n", VertexBody({code}));
    code.AddressRegister = 0;
    EXPECT_EQ("MAD R4,-|vertex.attrib[A0.w+11]|,-c[A0.w+0].x,|R4.wzyx|;\n", VertexBody({code}));
}

TEST(QdxVertex, TemporaryReadBeforeWrittenPrintsZeroAndIsNotDeclared)
{
    TVertexCode first = Vector(Mov, 1);
    first.Sources[0] = TempOperand(9);
    TVertexCode second = Vector(Mov, 9);
    EXPECT_EQ(Header + "TEMP R1;\nMOV R1,{0,0,0,0};\nEND\n", VertexText({first}));
    // Written later counts in no earlier line.
    EXPECT_EQ("MOV R1,{0,0,0,0};\nMOV R9,vertex.attrib[0];\nMOV R1,R9;\n",
              VertexBody({first, second, first}));
    first.Sources[0].Swizzle = 0;
    first.Sources[0].Negate = first.Sources[0].Absolute = true;
    EXPECT_EQ("MOV R1,-|{0,0,0,0}.x|;\n", VertexBody({first}));
}

TEST(QdxVertex, AddressRegisters)
{
    TVertexCode arl = Vector(Arl, 1);
    arl.VectorMask = 8;
    TVertexCode ara = Vector(Ara, 0);
    ara.Sources[0] = {3, 1, 0, false, false};
    ara.Scalar = Rcp;
    ara.Sources[2] = {3, 2, 27, false, false};
    ara.ScalarTemporary = 5;
    EXPECT_EQ(Header + "ADDRESS A0;\nADDRESS A1;\nTEMP R5;\n"
                       "ARL A1.x,vertex.attrib[0];\nARA A0,A1.x;\nRCP R5,A2;\nEND\n",
              VertexText({arl, ara}));
    TVertexCode push = Scalar(PushA);
    push.Sources[2] = {3, 1, 27, false, false};
    push.Vector = Mov;
    push.Sources[0] = ConstantOperand();
    push.Constant = 3;
    push.VectorTemporary = 6;
    EXPECT_EQ(Header + "PARAM c[1] = {\n program.env[3]\n};\nTEMP R6;\nMOV R6,c[0];\nPUSHA A1;\nEND\n",
              VertexText({push}));
}

TEST(QdxVertex, TexturesAreFlipped)
{
    TVertexCode code = Vector(Txl, 2);
    code.Attribute = 8;
    code.Sources[1].Register = 15;
    EXPECT_EQ(Header + "TEMP R2;\nTEMP _t;\nMAD _t,vertex.attrib[8],{1,-1,1,1},{0,1,0,0};\n"
                       "TXL R2,_t,texture[0],2D;\nEND\n",
              VertexText({code}));
    code.Sources[1].Register = 11;
    EXPECT_NE(std::string::npos, VertexBody({code}).find("texture[4],2D;"));
}

TEST(QdxVertex, Modifiers)
{
    TVertexCode code = Vector(Mov, 1);
    code.WritesCondition = true;
    EXPECT_EQ("MOVC R1,vertex.attrib[0];\n", VertexBody({code}));
    code.WritesSecond = true;
    code.Saturate = true;
    code.Scalar = Rcp;
    EXPECT_EQ("MOVC1_SAT R1,vertex.attrib[0];\nRCPC1_SAT R0,vertex.attrib[0];\n", VertexBody({code}));
    code.WritesCondition = false;
    EXPECT_EQ("MOV_SAT R1,vertex.attrib[0];\nRCP_SAT R0,vertex.attrib[0];\n", VertexBody({code}));
}

TEST(QdxVertex, ConditionTable)
{
    const char* words[] = {"FL", "LT", "EQ", "LE", "GT", "NE", "GE", "TR"};
    for (int condition = 0; condition < 8; ++condition) {
        TVertexCode code = Vector(Mov, 1);
        code.Condition = condition;
        EXPECT_EQ("MOV R1,vertex.attrib[0];\n", VertexBody({code}));
        code.TestsCondition = true;
        EXPECT_EQ(std::string("MOV R1 (") + words[condition] + "),vertex.attrib[0];\n", VertexBody({code}));
        code.TestsSecond = true;
        code.ConditionSwizzle = 170;
        EXPECT_EQ(std::string("MOV R1 (") + words[condition] + "1.z),vertex.attrib[0];\n",
                  VertexBody({code}));
        EXPECT_EQ(std::string("RET (") + words[condition] + "1.z);\n", [&] {
            code.Vector = 0;
            code.Scalar = Ret;
            return VertexBody({code});
        }());
    }
}

TEST(QdxVertex, BranchesGoToLabels)
{
    TVertexCode bra = Branch(Bra, 2);
    bra.Condition = 4;
    EXPECT_EQ("BRA label0 (GT);\nMOV R1,vertex.attrib[0];\nlabel0:\nMOV R2,vertex.attrib[0];\n",
              VertexBody({bra, Vector(Mov, 1), Vector(Mov, 2)}));
}

TEST(QdxVertex, LabelsFollowTheCountOfOperations)
{
    // The label of operation 2 stands before the scalar half of the second instruction.
    TVertexCode pair = Vector(Mov, 1);
    pair.Scalar = Rcp;
    EXPECT_EQ("CAL label0 (TR);\nMOV R1,vertex.attrib[0];\nlabel0:\nRCP R0,vertex.attrib[0];\n"
              "MOV R2,vertex.attrib[0];\n",
              VertexBody({Branch(Cal, 2), pair, Vector(Mov, 2)}));
    // A label before the first operation and one that is never reached.
    EXPECT_EQ("label0:\nBRA label0 (TR);\nBRA label1 (TR);\n",
              VertexBody({Branch(Bra, 0), Branch(Bra, 511)}));
    EXPECT_EQ("BRA label0 (TR);\nlabel0:\nNOP\n", VertexBody({Branch(Bra, 1), Vector(0)}));
    // One behind the last operation stands there only if that is a vector one.
    EXPECT_EQ("BRA label0 (TR);\nMOV R1,vertex.attrib[0];\nlabel0:\n",
              VertexBody({Branch(Bra, 2), Vector(Mov, 1)}));
    EXPECT_EQ("BRA label0 (TR);\nRCP R1,vertex.attrib[0];\n", VertexBody({Branch(Bra, 2), Scalar(Rcp, 1)}));
}

TEST(QdxVertex, LabelsAreSortedAndKeptOnce)
{
    const std::string body = VertexBody({Branch(Bra, 300), Branch(Bra, 7), Branch(Cal, 300)});
    EXPECT_EQ("BRA label1 (TR);\nBRA label0 (TR);\nCAL label1 (TR);\n", body);
}

TEST(QdxVertexRanges, SinglesAreSortedAndFoundAgain)
{
    TQdxVertexRanges ranges;
    EXPECT_EQ(0, ranges.Enter(9, 9));
    EXPECT_EQ(0, ranges.Enter(4, 4));
    EXPECT_EQ(2, ranges.Enter(300, 300));
    EXPECT_EQ(1, ranges.Enter(9, 9));
    EXPECT_EQ("4..4 9..9 300..300 ", RangesText(ranges));
    EXPECT_EQ(3, ranges.GetTotal());
}

TEST(QdxVertexRanges, SpansThatOverlapAreOne)
{
    TQdxVertexRanges ranges;
    EXPECT_EQ(0, ranges.Enter(3, 3));
    EXPECT_EQ(1, ranges.Enter(100, 511));
    EXPECT_EQ(51, ranges.Enter(150, 511));
    EXPECT_EQ(1, ranges.Enter(50, 511));
    EXPECT_EQ("3..3 50..511 ", RangesText(ranges));
}

TEST(QdxVertexRanges, ASpanStopsBeforeASingleSlot)
{
    TQdxVertexRanges ranges;
    ranges.Enter(20, 20);
    EXPECT_EQ(0, ranges.Enter(10, 511));
    EXPECT_EQ("10..19 20..20 ", RangesText(ranges));
    EXPECT_EQ(0, ranges.Enter(10, 511));
    EXPECT_EQ(11, ranges.Enter(20, 511));
    EXPECT_EQ("10..19 20..20 20..511 ", RangesText(ranges));
}

TEST(QdxVertexRanges, WhereTheRangeToInsertWouldBeEmptyTheWalkGoesOn)
{
    TQdxVertexRanges ranges;
    ranges.Enter(20, 20);
    EXPECT_EQ(1, ranges.Enter(20, 511));
    EXPECT_EQ("20..20 20..511 ", RangesText(ranges));
    EXPECT_EQ(1, ranges.Enter(20, 511));
    EXPECT_EQ(0, ranges.Enter(20, 20));
    // A further single slot ends it as one that lies apart does.
    TQdxVertexRanges two;
    two.Enter(20, 20);
    two.Enter(30, 30);
    EXPECT_EQ(1, two.Enter(20, 511));
    EXPECT_EQ("20..20 20..29 30..30 ", RangesText(two));
}

TEST(QdxVertex, ARelativeAccessThatBeginsAtANamedSlotHasItsSpan)
{
    EXPECT_EQ(Header + "PARAM c[213] = {\n program.local[44],\n program.local[44..255]\n};\nTEMP R0;\n"
                       "MOV R0,c[0];\nMOV R0,c[A0.x+1];\nEND\n",
              VertexText({MovConstant(300), MovConstant(300, true)}));
}

TEST(QdxVertexRanges, ASpanIsCutAtASingleSlot)
{
    TQdxVertexRanges ranges;
    ranges.Enter(10, 511);
    EXPECT_EQ(10, ranges.Enter(20, 20));
    EXPECT_EQ("10..19 20..20 ", RangesText(ranges));
    EXPECT_EQ(0, ranges.Enter(10, 10));
}

TEST(QdxVertexRanges, WhereNoRuleFitsTheWalkGoesOn)
{
    TQdxVertexRanges ranges;
    ranges.Enter(511, 511);
    EXPECT_EQ(1, ranges.Enter(500, 511));
    EXPECT_EQ("511..511 500..511 ", RangesText(ranges));
}

TEST(QdxVertex, RelativeConstantTakesAllSlotsUpToTheLast)
{
    EXPECT_EQ(Header + "PARAM c[213] = {\n program.env[10],\n program.local[44..255]\n};\nTEMP R0;\n"
                       "MOV R0,c[0];\nMOV R0,c[A0.x+1];\nEND\n",
              VertexText({MovConstant(10), MovConstant(300, true)}));
}

TEST(QdxVertex, MoreThanTheAssemblersParametersShortensSpansOnly)
{
    // 412 + 1 parameters: the span loses 157 slots.
    EXPECT_EQ(Header + "PARAM c[256] = {\n program.env[2],\n program.env[100..354]\n};\nTEMP R0;\n"
                       "MOV R0,c[0];\nMOV R0,c[A0.x+1];\nEND\n",
              VertexText({MovConstant(2), MovConstant(100, true)}));
}

TEST(QdxVertexRanges, TwoSpansShareTheExcessByTheirSquares)
{
    TQdxVertexRanges ranges;
    ranges.Enter(0, 99);
    ranges.Enter(100, 299);
    ranges.Fit();
    // 44 too many: 44 * 10000 / 50000 and 44 * 40000 / 50000, truncated after the subtraction.
    EXPECT_EQ("0..90 100..263 ", RangesText(ranges));
}

TEST(QdxVertex, OnlySinglesBeyondTheLimitIsFatal)
{
    std::vector<TVertexCode> program;
    for (int i = 0; i < 257; ++i)
        program.push_back(MovConstant(i));
    EXPECT_EQ("numranges > 0", AssertionOf([&] { VertexText(program); }));
    program.pop_back();
    EXPECT_EQ("", AssertionOf([&] { VertexText(program); }));
}

TEST(QdxVertex, UnusedOperandsEnterNothing)
{
    TVertexCode code = Vector(Add, 1);
    code.Sources[1] = ConstantOperand();
    code.Constant = 77;
    EXPECT_EQ(std::string::npos, VertexText({code}).find("PARAM"));
    code.Sources[2] = ConstantOperand();
    EXPECT_NE(std::string::npos, VertexText({code}).find(" program.env[77]\n"));
}

namespace {

class TVertexGenerator
{
public:
    explicit TVertexGenerator(uint32_t seed) : Random(seed) {}

    std::vector<TVertexCode> Make(int count, bool relative)
    {
        // Both address registers are loaded first.
        std::vector<TVertexCode> program = {Vector(Arl, 0), Vector(Arl, 1)};
        for (int i = 0; i < count; ++i)
            program.push_back(MakeOne(count, relative));
        program.back().Last = true;
        return program;
    }

private:
    int Below(int n) { return static_cast<int>(Random() % static_cast<uint32_t>(n)); }
    bool OneIn(int n) { return Below(n) == 0; }

    TVertexCode MakeOne(int count, bool relative)
    {
        TVertexCode code;
        code.Vector = Below(32);
        code.Scalar = OneIn(2) ? 0 : Below(32);
        const bool readsAddress = code.Vector == Ara || code.Scalar == PushA;
        for (TVertexOperand& source : code.Sources)
            source = {1 + Below(3), readsAddress ? Below(2) : Below(32), Below(256), OneIn(4), OneIn(4)};
        code.AddressComponent = Below(4);
        code.AddressRegister = Below(2);
        code.Condition = Below(8);
        code.ConditionSwizzle = Below(256);
        code.TestsCondition = OneIn(4);
        code.TestsSecond = OneIn(8);
        code.WritesCondition = OneIn(8);
        code.WritesSecond = OneIn(2);
        code.Saturate = OneIn(8);
        code.AttributeRelative = relative && OneIn(8);
        code.OutputRelative = relative && OneIn(8);
        code.VectorOutput = OneIn(3);
        code.ScalarOutput = OneIn(3);
        code.VectorTemporary =
            code.Vector == Arl || code.Vector == 23 || code.Vector == Ara ? Below(2) : Below(32);
        code.ScalarTemporary = code.Scalar == PopA ? Below(2) : Below(32);
        code.Attribute = Below(16);
        code.Constant = Below(OneIn(2) ? 16 : 512);
        code.ConstantRelative = relative && OneIn(4);
        code.Output = Below(32);
        code.VectorMask = Below(16);
        code.ScalarMask = Below(16);
        if (code.Scalar == Bra || code.Scalar == Cal)
            code.Target = Below(2 * count);
        return code;
    }

    std::mt19937 Random;
};

void ExpectAllDeclared(const std::string& text)
{
    static const std::regex names("(^|[^A-Za-z0-9_.])([RA][0-9]+|_t)($|[^A-Za-z0-9_])");
    std::set<std::string> declared;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        const bool isAddress = line.rfind("ADDRESS ", 0) == 0;
        if (isAddress || line.rfind("TEMP ", 0) == 0) {
            const std::string name = line.substr(line.find(' ') + 1, line.size() - line.find(' ') - 2);
            EXPECT_EQ(isAddress, name[0] == 'A');
            EXPECT_TRUE(declared.insert(name).second) << line;
            continue;
        }
        std::smatch match;
        for (auto at = line.cbegin(); std::regex_search(at, line.cend(), match, names);) {
            EXPECT_EQ(1u, declared.count(match[2])) << match[2] << " in " << line;
            at = match[2].second;
        }
    }
}

} // namespace

TEST(QdxVertexRandom, TextIsDeterministicAndDeclaresWhatItNames)
{
    for (uint32_t seed = 0; seed < 150; ++seed) {
        TVertexGenerator generator(seed);
        const auto program = generator.Make(1 + static_cast<int>(seed % 80), true);
        std::string text;
        EXPECT_EQ("", AssertionOf([&] { text = VertexText(program); }));
        EXPECT_EQ(text, VertexText(program));
        EXPECT_EQ("END\n", text.substr(text.size() - 4));
        ExpectAllDeclared(text);
        if (HasFailure())
            FAIL() << "seed " << seed << "\n" << text;
    }
}

// Without relative addressing each index into `c` leads back to the slot that the instruction names.
TEST(QdxVertexRandom, ConstantsLeadBackToTheirSlots)
{
    static const std::regex parameter(" program\\.(env|local)\\[([0-9]+)\\],?");
    static const std::regex index("c\\[([0-9]+)\\]");
    for (uint32_t seed = 0; seed < 200; ++seed) {
        std::mt19937 random(seed);
        std::vector<TVertexCode> program;
        const int count = 1 + static_cast<int>(random() % 200);
        for (int i = 0; i < count; ++i)
            program.push_back(MovConstant(static_cast<int>(random() % 512)));
        std::vector<int> slots;
        size_t line = 0;
        std::istringstream lines(VertexText(program));
        for (std::string text; std::getline(lines, text);) {
            std::smatch match;
            if (std::regex_match(text, match, parameter)) {
                slots.push_back(std::stoi(match[2]) + (match[1] == "local" ? 256 : 0));
            } else if (text.rfind("MOV ", 0) == 0 && std::regex_search(text, match, index)) {
                const auto at = static_cast<size_t>(std::stoi(match[1]));
                ASSERT_LT(at, slots.size());
                EXPECT_EQ(program[line].Constant, slots[at]);
                ++line;
            }
        }
        EXPECT_EQ(program.size(), line);
    }
}
