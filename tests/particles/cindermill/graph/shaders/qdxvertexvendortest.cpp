#include "assembling.h"
#include "library/wimp/gl/glcontext.h"
#include "qdxvertexfixture.h"
#include "support/gltest.h"

namespace {

// What a compiler for the chip writes, given to the one driver that has the chip's instructions.
class QdxVertexVendor : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!HasVendorPrograms())
            GTEST_SKIP() << "This driver has none of the chip's own instructions.";
    }

    void ExpectTaken(const std::string& what, std::vector<TVertexCode> program)
    {
        TVertexCode position = Vector(Mov);
        position.VectorOutput = true;
        program.push_back(position);
        const std::string text = VertexText(program);
        EXPECT_EQ("", ComplaintOf(GL_VERTEX_PROGRAM_ARB, text)) << what << "\n" << text;
    }

    TTestWindow Window{1, 1};
};

TEST_F(QdxVertexVendor, EveryOperationIsTaken)
{
    for (int opcode = 1; opcode <= 25; ++opcode)
        ExpectTaken("vector " + std::to_string(opcode), {Vector(opcode)});
    for (const int opcode : {2, 3, 4, 5, 6, 7, 13, 14, 15, 16}) {
        TVertexCode code = Scalar(opcode);
        for (TVertexOperand& source : code.Sources)
            source.Swizzle = 0;
        ExpectTaken("scalar " + std::to_string(opcode), {code});
        code.Vector = Mul;
        code.VectorTemporary = 1;
        ExpectTaken("pair with " + std::to_string(opcode), {code});
    }
    ExpectTaken("address stack", {Vector(Arl), Scalar(PushA), Scalar(PopA)});
}

TEST_F(QdxVertexVendor, EveryModifierIsTaken)
{
    for (int bits = 0; bits < 32; ++bits) {
        TVertexCode code = Vector(Mul);
        code.WritesCondition = (bits & 1) != 0;
        code.WritesSecond = (bits & 2) != 0;
        code.Saturate = (bits & 4) != 0;
        code.TestsCondition = (bits & 8) != 0;
        code.TestsSecond = (bits & 16) != 0;
        code.Condition = 4;
        ExpectTaken("modifiers", {code});
    }
    for (int type = 1; type < 4; ++type) {
        for (int bits = 0; bits < 4; ++bits) {
            TVertexCode code = Vector(Mad, 1);
            for (TVertexOperand& source : code.Sources) {
                source.Type = type;
                source.Negate = (bits & 1) != 0;
                source.Absolute = (bits & 2) != 0;
                source.Swizzle = 0x4E;
            }
            ExpectTaken("source", {Vector(Mov), code});
        }
    }
}

TEST_F(QdxVertexVendor, ConditionsBranchesAndCallsAreTaken)
{
    for (int condition = 0; condition < 8; ++condition) {
        TVertexCode code = Vector(Mul);
        code.TestsCondition = true;
        code.Condition = condition;
        code.ConditionSwizzle = 0xE4;
        ExpectTaken("write", {code});
        TVertexCode branch = Branch(Bra, 2);
        branch.Condition = condition;
        branch.ConditionSwizzle = 0;
        ExpectTaken("branch", {Vector(Mul), branch, Vector(Mul)});
        TVertexCode call = Branch(Cal, 2);
        call.Condition = condition;
        call.ConditionSwizzle = 0;
        TVertexCode back = Scalar(Ret);
        back.Condition = condition;
        back.ConditionSwizzle = 0;
        ExpectTaken("call", {Vector(Mul), call, Vector(Mul), back});
    }
}

TEST_F(QdxVertexVendor, OutputsConstantsAndRegistersAreTaken)
{
    for (int output = 0; output < 15; ++output) {
        // What shares a register with clip distances goes by its mask.
        const bool isShared = output == 5 || output == 6;
        TVertexCode code = Vector(Mov);
        code.VectorOutput = true;
        code.Output = output;
        code.VectorMask = isShared ? 8 : 15;
        ExpectTaken("output " + std::to_string(output), {code});
    }
    ExpectTaken("relative constant", {Vector(Arl), MovConstant(300, true)});
    TVertexCode attribute = Vector(Mov);
    attribute.AttributeRelative = true;
    ExpectTaken("relative attribute", {Vector(Arl), attribute});
    std::vector<TVertexCode> constants;
    for (int i = 0; i < 256; ++i)
        constants.push_back(MovConstant(i * 2));
    ExpectTaken("as many constants as fit", constants);
    std::vector<TVertexCode> registers;
    for (int i = 0; i < 32; ++i)
        registers.push_back(Vector(Mov, i));
    ExpectTaken("all registers", registers);
    ExpectTaken("a full store", std::vector<TVertexCode>(500, Vector(Mad)));
}

} // namespace
