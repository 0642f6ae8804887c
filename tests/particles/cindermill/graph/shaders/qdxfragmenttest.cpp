#include "qdxfragmentfixture.h"

#include <limits>

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
    EXPECT_EQ(Header + "TEMP RC;\nMOVC RC.w,fragment.color.primary;\nEND\n", RawText({code}));
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

TEST(QdxFragment, FlowFieldsEndAtTheirNeighbours)
{
    EXPECT_EQ("CAL TR,0x1fffffff;\n", FragmentBody({Flow(1, 0x1FFFFFFFu << 2)}));
    EXPECT_EQ("LOOP {255,0,0};\n", FragmentBody({Flow(3, 0xFFu << 2)}));
    EXPECT_EQ("LOOP {0,255,0};\n", FragmentBody({Flow(3, 0xFFu << 10)}));
    EXPECT_EQ("LOOP {0,0,255};\n", FragmentBody({Flow(3, 0xFFu << 19)}));
    EXPECT_EQ("LOOP {0,0,0};\n", FragmentBody({Flow(3, 1u << 18 | 15u << 27)}));
    EXPECT_EQ("REP 255;\n", FragmentBody({Flow(4, 0x1FFFFFFFu << 2)}));
    // Ends that lie far behind the program close nothing.
    const uint32_t far = 0x10000001u << 2;
    EXPECT_EQ("IF TR;\nMOV R1,fragment.color.primary;\n", FragmentBody({Flow(2, far, far), MovTo(1)}));
    EXPECT_EQ("REP 0;\n", FragmentBody({Flow(4, 0, far)}));
    EXPECT_EQ("LOOP {0,0,0};\n", FragmentBody({Flow(3, 0, far)}));
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
    EXPECT_EQ("IF TR;\nLOOP {1,0,0};\nREP 2;\n" + line + "ENDLOOP;\nENDREP;\nENDIF;\n",
              FragmentBody({Flow(2, 9 << 2, 4 << 2), Flow(3, 1 << 2, 4 << 2), Flow(4, 2 << 2, 4 << 2), mov}));
    EXPECT_EQ("IF TR;\nREP 2;\n" + line + "ENDREP;\nELSE;\n" + line + "ENDIF;\n",
              FragmentBody({Flow(2, 3 << 2, 4 << 2), Flow(4, 2 << 2, 3 << 2), mov, mov}));
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

TEST(QdxFragment, TextureReadKeepsThreeBitsOfTheSecondSourcesWord)
{
    for (int bit = 16; bit < 24; ++bit) {
        std::string bytes = FragmentBytes({Code(Tex, 1)});
        // Bits 16 to 23 of a word lie in its last byte.
        bytes[11] = static_cast<char>(bytes[11] | 1 << (bit - 16));
        TQdxFragmentProgram program;
        ASSERT_TRUE(program.Translate(Raw(bytes), static_cast<int>(bytes.size())));
        const uint32_t coord = program.GetTextureReads()[0].Coord;
        EXPECT_EQ(bit >= 19 && bit <= 21 ? 1u << bit : 0u, coord & (31u << 18)) << bit;
    }
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

TEST(QdxFragment, TranslationLeavesTheMicrocodeAsItIs)
{
    TFragmentCode txd = Code(Txd, 1);
    txd.Sources[2] = Temp(4);
    const std::string bytes = FragmentBytes({txd});
    const std::string before = bytes;
    for (int i = 0; i < 2; ++i) {
        TQdxFragmentProgram program;
        ASSERT_TRUE(program.Translate(Raw(bytes), static_cast<int>(bytes.size())));
        EXPECT_NE(std::string::npos, Text(program.GetText()).find(",-R4,texture[0],2D  ;\n"));
    }
    EXPECT_EQ(before, bytes);
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
