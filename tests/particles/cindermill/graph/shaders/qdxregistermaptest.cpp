#include "qdxfragmentfixture.h"

#include "particles/cindermill/graph/shaders/qdxregistermap.h"

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
