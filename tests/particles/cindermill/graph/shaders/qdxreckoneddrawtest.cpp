#include "assembling.h"
#include "library/wimp/gl/glcontext.h"
#include "qdxfragmentfixture.h"
#include "qdxfragmentreckoner.h"
#include "support/gltest.h"

#include <random>

namespace {

constexpr std::array<float, 4> InputColour = {0.25f, 0.5f, 0.75f, 1};

bool IsScalar(int opcode)
{
    return (opcode >= 26 && opcode <= 29) || opcode == 34 || opcode == 35;
}

// Straight programs of what the driver has. Those for plain drivers have no modifiers of the vendor's.
class TStraightGenerator
{
public:
    TStraightGenerator(uint32_t seed, bool isPlain) : Random(seed), IsPlain(isPlain) {}

    std::vector<TFragmentCode> Make(int count, int registers)
    {
        std::vector<TFragmentCode> program;
        Written.clear();
        for (int i = 0; i < count; ++i)
            program.push_back(MakeOne(registers));
        // What was computed last is what is seen.
        TFragmentCode shown = Code(Movs);
        shown.Sources[0] = Temp(Written.back());
        program.push_back(shown);
        return program;
    }

private:
    int Below(int n) { return static_cast<int>(Random() % static_cast<uint32_t>(n)); }

    TFragmentOperand MakeOperand(bool isScalar, bool mayBeLiteral)
    {
        TFragmentOperand operand = Input();
        const int kind = Below(8);
        if (kind < 5 && !Written.empty()) {
            const int back = Below(std::min<int>(12, static_cast<int>(Written.size())));
            operand = Temp(Written[Written.size() - 1 - static_cast<size_t>(back)]);
        } else if (kind < 7 && mayBeLiteral) {
            operand = Literal();
        }
        operand.Swizzle = isScalar ? Below(4) * 85 : Below(3) == 0 ? IdentitySwizzle : Below(256);
        operand.Negate = Below(4) == 0;
        operand.Absolute = !IsPlain && Below(6) == 0;
        return operand;
    }

    TFragmentCode MakeOne(int registers)
    {
        const std::vector<int>& opcodes =
            IsPlain ? TFragmentReckoner::GetPlainOpcodes() : TFragmentReckoner::GetOpcodes();
        TFragmentCode code;
        code.Opcode = opcodes[static_cast<size_t>(Below(static_cast<int>(opcodes.size())))];
        code.Mask = Below(3) != 0 ? 15 : 1 + Below(15);
        for (float& value : code.Value)
            value = static_cast<float>(Below(17) - 8) / 4;
        for (int n = 0; n < 3; ++n)
            code.Sources[n] =
                MakeOperand(IsScalar(code.Opcode) || (n == 1 && code.Opcode >= 58), n != 0 || Below(2) == 0);
        code.Saturate = Below(8) == 0;
        code.Scale = Below(6) == 0 ? Below(8) : 0;
        if (!IsPlain)
            Modify(code);
        // A division by a root carries its modifiers in both of its lines.
        if (code.Opcode == 59)
            code.Saturate = code.SignedSaturate = code.SetsCondition = false, code.Condition = 7,
            code.Scale = 0;
        const int reg = Below(registers);
        code.Register = reg & 63;
        code.IsHalf = reg >= 64;
        if (!code.NoRegister)
            Written.push_back(reg);
        return code;
    }

    void Modify(TFragmentCode& code)
    {
        code.SignedSaturate = Below(8) == 0;
        code.SetsCondition = Below(4) == 0;
        if (Below(4) == 0) {
            code.Condition = Below(8);
            code.ConditionSwizzle = Below(256);
        }
        // The line of a scale would look at the condition that the first line has set.
        if (code.SetsCondition)
            code.Scale = 0;
        code.NoRegister = code.SetsCondition && !Written.empty() && Below(3) == 0;
    }

    std::mt19937 Random;
    bool IsPlain;
    std::vector<int> Written;
};

// One point of floats.
class QdxReckonedDraw : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(IsGlReady()) << GetGlFault();
        glGenTextures(1, &Texture);
        glBindTexture(GL_TEXTURE_2D, Texture);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA32F_ARB, 1, 1, 0, GL_RGBA, GL_FLOAT, nullptr);
        glBindTexture(GL_TEXTURE_2D, 0);
        glGenFramebuffersEXT(1, &Frame);
        glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, Frame);
        glFramebufferTexture2DEXT(GL_FRAMEBUFFER_EXT, GL_COLOR_ATTACHMENT0_EXT, GL_TEXTURE_2D, Texture, 0);
        ASSERT_EQ(glCheckFramebufferStatusEXT(GL_FRAMEBUFFER_EXT),
                  static_cast<GLenum>(GL_FRAMEBUFFER_COMPLETE_EXT));
        glViewport(0, 0, 1, 1);
    }

    void TearDown() override
    {
        glDeleteFramebuffersEXT(1, &Frame);
        glDeleteTextures(1, &Texture);
    }

    std::array<float, 4> Draw(TQdxFragmentProgram& program)
    {
        const TRenderTextureInstance* textures[TQdxFragmentProgram::NumUnits] = {};
        std::array<float, 4> seen = {};
        if (!program.Bind(textures))
            return seen;
        glColor4fv(InputColour.data());
        glRectf(-1, -1, 1, 1);
        glDisable(GL_FRAGMENT_PROGRAM_ARB);
        glReadPixels(0, 0, 1, 1, GL_RGBA, GL_FLOAT, seen.data());
        return seen;
    }

    TTestWindow Window{1, 1};
    GLuint Texture = 0;
    GLuint Frame = 0;
};

TEST_F(QdxReckonedDraw, StraightProgramsComputeWhatTheirInstructionsSay)
{
    int compared = 0;
    int mapped = 0;
    for (uint32_t seed = 0; seed < (HasVendorPrograms() ? 3000u : 150u); ++seed) {
        TStraightGenerator generator(seed, !HasVendorPrograms());
        const auto code = generator.Make(4 + static_cast<int>(seed % 50),
                                         seed % 3 == 0 ? 128 : 1 + static_cast<int>(seed % 20));
        std::string text;
        if (!AssertionOf([&] { text = DriverText(code); }).empty())
            continue;
        const TTranslated translated(code);
        TFragmentReckoner reckoner(InputColour);
        for (const TFragmentCode& one : code)
            reckoner.Run(one);
        const TReckonedVector expected = reckoner.GetRegister(0);
        std::array<float, 4> seen = {};
        const std::string log =
            LogOf([&] { seen = Draw(const_cast<TQdxFragmentProgram&>(translated.Program)); });
        ASSERT_EQ("", log) << seed;
        mapped += text.find("TEMP T0;") != std::string::npos ? 1 : 0;
        for (size_t c = 0; c < 4; ++c) {
            if (!expected[c].IsKnown)
                continue;
            ++compared;
            EXPECT_NEAR(expected[c].Value, seen[c],
                        4 * expected[c].Error + 1e-5 * (1 + std::fabs(expected[c].Value)))
                << "component " << c << " of seed " << seed << "\n"
                << text;
        }
        if (HasFailure())
            break;
    }
    EXPECT_GT(compared, 250);
    EXPECT_GT(mapped, 10);
    RecordProperty("compared", compared);
}

} // namespace
