#include "assembling.h"
#include "library/wimp/gl/glcontext.h"
#include "qdxfragmentfixture.h"
#include "support/gltest.h"

namespace {

// What a compiler for the chip writes, given to the one driver that has the chip's instructions.
class QdxFragmentVendor : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!HasVendorPrograms())
            GTEST_SKIP() << "This driver has none of the chip's own instructions.";
    }

    void ExpectTaken(const std::string& what, const std::vector<TFragmentCode>& program)
    {
        const std::string text = DriverText(program);
        EXPECT_EQ("", ComplaintOf(GL_FRAGMENT_PROGRAM_ARB, text)) << what << "\n" << text;
    }

    // Sets the condition that the next instruction goes by.
    static TFragmentCode SetsCondition()
    {
        TFragmentCode code = Code(Mul);
        code.SetsCondition = true;
        return code;
    }

    TTestWindow Window{1, 1};
};

TEST_F(QdxFragmentVendor, EveryOperationIsTaken)
{
    // All but those that print as no instruction, or have no destination.
    for (const int opcode :
         {1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13, 14, 15, 16, 17, 19, 20, 21, 22, 23, 24, 25, 26,
          27, 28, 29, 30, 31, 32, 34, 35, 36, 37, 38, 39, 40, 41, 42, 46, 47, 49, 54, 56, 57, 58, 59, 60}) {
        TFragmentCode code = Code(opcode);
        for (TFragmentOperand& source : code.Sources)
            source = Input(0);
        ExpectTaken("opcode " + std::to_string(opcode), {code});
    }
}

TEST_F(QdxFragmentVendor, EveryModifierIsTaken)
{
    for (int scale = 0; scale < 8; ++scale) {
        TFragmentCode code = Code(Mul);
        code.Scale = scale;
        ExpectTaken("scale", {code});
        code.Saturate = true;
        ExpectTaken("scale saturated", {code});
        code.Saturate = false;
        code.SignedSaturate = true;
        ExpectTaken("scale saturated both ways", {code});
    }
    for (const bool setsCondition : {false, true}) {
        for (const bool isHalf : {false, true}) {
            for (const bool isOnlyCondition : {false, true}) {
                TFragmentCode code = Code(Mul);
                code.SetsCondition = setsCondition;
                code.SuffixH = isHalf;
                code.IsHalf = isHalf;
                code.NoRegister = isOnlyCondition;
                ExpectTaken("suffixes", {code, MovTo(0)});
                code.Scale = 1;
                ExpectTaken("suffixes with a scale", {code, MovTo(0)});
            }
        }
    }
    TFragmentCode coarse = Code(Mul);
    coarse.SuffixX = true;
    ExpectTaken("fixed point", {coarse});
}

TEST_F(QdxFragmentVendor, EveryConditionIsTaken)
{
    for (int condition = 0; condition < 8; ++condition) {
        TFragmentCode tests = Code(Movs);
        tests.Condition = condition;
        tests.ConditionSwizzle = 0x1B;
        tests.Mask = 5;
        ExpectTaken("write", {SetsCondition(), tests});
        TFragmentCode branch = Flow(2, 4 << 2, 5 << 2);
        branch.Condition = condition;
        branch.ConditionSwizzle = 0;
        ExpectTaken("branch", {SetsCondition(), branch, MovTo(1), MovTo(0), MovTo(2), MovTo(3)});
        TFragmentCode kill = Code(Kil);
        kill.Condition = condition;
        kill.ConditionSwizzle = 0;
        if (condition != 7)
            ExpectTaken("kill", {SetsCondition(), kill, MovTo(0)});
    }
}

TEST_F(QdxFragmentVendor, LoopsAreTaken)
{
    ExpectTaken("loop", {Flow(3, 3 << 2 | 1 << 19, 3 << 2), MovTo(1), MovTo(0), MovTo(2)});
    ExpectTaken("repetition", {Flow(4, 3 << 2, 3 << 2), MovTo(1), MovTo(0), MovTo(2)});
    TFragmentCode leave = Flow(0);
    leave.Condition = 4;
    leave.ConditionSwizzle = 0;
    ExpectTaken("way out", {SetsCondition(), Flow(4, 3 << 2, 4 << 2), leave, MovTo(0), MovTo(2)});
    ExpectTaken("return", {MovTo(0), Flow(5)});
}

TEST_F(QdxFragmentVendor, InputsOutputsAndRegistersAreTaken)
{
    for (int attribute = 0; attribute < 15; ++attribute) {
        TFragmentCode code = Code(Movs);
        code.Attribute = attribute;
        // More texture coordinates than eight are the console's alone.
        if (attribute != 12 && attribute != 13)
            ExpectTaken("attribute " + std::to_string(attribute), {code});
    }
    for (const int opcode : {23, 24, 25, 47, 49}) {
        for (int type = 0; type < 3; ++type) {
            TFragmentCode code = Code(opcode, 1);
            code.Attribute = 4;
            code.Unit = type;
            code.Sources[0].Type = type;
            code.Sources[0].Negate = true;
            code.Sources[0].Absolute = type == 0;
            ExpectTaken("texture", {MovTo(0), code});
        }
    }
    for (const int reg : {0, 2, 3, 4, 64})
        ExpectTaken("output", {MovTo(reg)});
    ExpectTaken("all registers", ManyRegisters(30));
    ExpectTaken("mapped registers", ManyRegisters(31));
}

} // namespace
