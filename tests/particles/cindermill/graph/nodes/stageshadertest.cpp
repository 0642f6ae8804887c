#include "arbvertexprogram.h"
#include "support/testsupport.h"

#include "library/containers/nametocrc.h"
#include "library/maths/matrix43.h"
#include "particles/cindermill/graph/shaders/qdxfragmentprogram.h"
#include "particles/cindermill/graph/shaders/qdxshader.h"
#include "particles/cindermill/graph/shaders/qdxvertexprogram.h"
#include "shaders/stageshaders.h"

#include <regex.h>

#include <algorithm>
#include <cmath>
#include <list>
#include <random>
#include <set>
#include <sstream>

namespace {

struct TStageTable
{
    const char* ClassName;
    std::vector<std::string> Attributes;
    std::vector<std::string> Uniforms;
    std::vector<std::string> Samplers;
};

const std::vector<TStageTable> Stages = {
    {"TQuadRenderStage",
     {"position", "rotation", "scale", "colour", "uvs", "corner"},
     {"worldViewProj"},
     {"spriteTexture"}},
    {"TBlendedQuadRenderStage",
     {"position", "rotation", "scale", "blend", "colour", "uvs", "corner"},
     {"worldViewProj"},
     {"spriteTexture", "blendTexture"}},
    {"TSpriteRenderStage",
     {"position", "rotation", "scale", "colour", "uvs", "corner"},
     {"worldView", "proj"},
     {"spriteTexture"}},
    {"TBlendedSpriteRenderStage",
     {"position", "rotation", "scale", "blend", "colour", "uvs", "corner"},
     {"worldView", "proj"},
     {"spriteTexture", "blendTexture"}},
    {"TVelocityTrailRenderStage",
     {"position", "velocity", "scale", "colour", "uvs", "corner"},
     {"worldViewProj", "eyePos"},
     {"spriteTexture"}},
};

void ParseImage(TQdxShader& shader, const unsigned char* image, int size)
{
    ASSERT_TRUE(shader.Parse(image, size));
}

void CheckNames(const vector<TQdxShader::TEntry>& entries, const std::vector<std::string>& names)
{
    ASSERT_EQ(entries.size(), static_cast<int>(names.size()));
    for (int i = 0; i < entries.size(); ++i) {
        EXPECT_EQ(entries[i].NameId, NameToCrc(names[static_cast<size_t>(i)].c_str()));
        EXPECT_EQ(entries[i].Value, static_cast<uint32_t>(i));
    }
}

std::vector<std::string> LinesOf(const std::string& text)
{
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

// An extended regular expression that a whole line must match. The system's own: the C++ library's sets off
// false warnings under the sanitizers.
class TLinePattern
{
public:
    explicit TLinePattern(const std::string& pattern)
    {
        if (regcomp(&Compiled, ("^(" + pattern + ")$").c_str(), REG_EXTENDED | REG_NOSUB) != 0)
            throw std::runtime_error("bad pattern " + pattern);
    }
    ~TLinePattern() { regfree(&Compiled); }
    TLinePattern(const TLinePattern&) = delete;
    TLinePattern& operator=(const TLinePattern&) = delete;
    bool Matches(const std::string& line) const
    {
        return regexec(&Compiled, line.c_str(), 0, nullptr, 0) == 0;
    }

private:
    regex_t Compiled;
};

using TPatterns = std::list<TLinePattern>;

// The first line that plain programs do not have, or "".
std::string FirstForeignLine(const std::string& text, const TPatterns& patterns)
{
    for (const std::string& line : LinesOf(text)) {
        const auto knows = [&](const TLinePattern& pattern) { return pattern.Matches(line); };
        if (std::none_of(patterns.begin(), patterns.end(), knows))
            return line;
    }
    return {};
}

const std::string Mask = R"((\.(x?y?z?w?))?)";
const std::string Swizzle = R"((\.[xyzw]|\.[xyzw]{4})?)";
const std::string VertexDestination = R"((R[0-9]|R1[01]|result\.(position|color|texcoord\[[0-7]\])))" + Mask;
const std::string VertexRegister = R"(-?(R[0-9]|R1[01]|vertex\.attrib\[([0-9]|1[0-5])\]|c\[[0-9]+\]))";
const std::string VertexSource = "," + VertexRegister + Swizzle;
const std::string FragmentDestination = R"((R[0-9]|_t))" + Mask;
const std::string FragmentSource =
    R"(,(-?(R[0-9]|_t|c\[[0-9]+\]|fragment\.(texcoord\[[0-7]\]|color\.primary))|\{0,1,0,0\}))" + Swizzle;

const std::vector<std::string> VertexPatterns = {
    "!!ARBvp1\\.0",
    // The one line that a driver without the option is not given.
    "OPTION NV_vertex_program3;",
    R"(PARAM c\[[0-9]+\] = \{)",
    R"( program\.local\[[0-9]+\],?)",
    "\\};",
    R"(TEMP R([0-9]|1[01]);)",
    "(MOV|FRC|FLR) " + VertexDestination + VertexSource + ";",
    "(MUL|ADD|DP3|DPH|DP4|MIN|MAX|SLT|SGE) " + VertexDestination + VertexSource + VertexSource + ";",
    "MAD " + VertexDestination + VertexSource + VertexSource + VertexSource + ";",
    "(RCP|RSQ|EX2|LG2|EXP|LOG) " + VertexDestination + "," + VertexRegister + R"(\.[xyzw];)",
    "END",
};

const std::vector<std::string> FragmentPatterns = {
    "!!ARBfp1\\.0",
    "OPTION NV_fragment_program2;",
    "OPTION ATI_draw_buffers;",
    R"(PARAM c\[1\] = \{ program\.local\[0\] \};)",
    R"(PARAM c\[[0-9]+\] = \{ program\.local\[0\.\.[0-9]+\] \};)",
    R"(TEMP (R[0-9]|_t);)",
    "MOV(_SAT)? " + FragmentDestination + FragmentSource + ";",
    "(MUL|ADD)(_SAT)? " + FragmentDestination + FragmentSource + FragmentSource + ";",
    "(MAD|LRP)(_SAT)? " + FragmentDestination + FragmentSource + FragmentSource + FragmentSource + ";",
    R"(TEX R[0-9],_t,texture\[[0-9]\],2D  ;)",
    R"(MOV result\.color, R0;)",
    "END",
};

const TPatterns PlainVertexLines(VertexPatterns.begin(), VertexPatterns.end());
const TPatterns PlainFragmentLines(FragmentPatterns.begin(), FragmentPatterns.end());

TEST(StageShader, AllClassesHaveImagesAndNoOther)
{
    for (const TStageTable& stage : Stages)
        ASSERT_NE(FindStageShader(stage.ClassName), nullptr) << stage.ClassName;
    EXPECT_EQ(FindStageShader("TEffect"), nullptr);
}

TEST(StageShader, ImagesAreTheAssembledFiles)
{
    const std::string folder = std::string(CINDERMILL_BINARY_DIR) + "/shaders/";
    for (const TStageTable& stage : Stages) {
        const TStageShader& images = *FindStageShader(stage.ClassName);
        const std::string vertex = ReadBytes(folder + stage.ClassName + ".vertex.sho");
        const std::string fragment = ReadBytes(folder + stage.ClassName + ".fragment.sho");
        EXPECT_EQ(vertex, std::string(images.Vertex, images.Vertex + images.VertexSize));
        EXPECT_EQ(fragment, std::string(images.Fragment, images.Fragment + images.FragmentSize));
        EXPECT_EQ(vertex.substr(0, 4), "SHO\x08");
        EXPECT_EQ(fragment.substr(0, 4), "SHO\x08");
    }
}

TEST(StageShader, TablesAreThoseOfTheStages)
{
    for (const TStageTable& stage : Stages) {
        SCOPED_TRACE(stage.ClassName);
        const TStageShader& images = *FindStageShader(stage.ClassName);
        TQdxShader vertex;
        ParseImage(vertex, images.Vertex, images.VertexSize);
        ASSERT_FALSE(vertex.IsFragmentProgram());
        CheckNames(vertex.GetAttributes(), stage.Attributes);
        EXPECT_EQ(vertex.GetSamplers().size(), 0);
        EXPECT_EQ(vertex.GetConstants().size(), static_cast<int>(stage.Uniforms.size()));

        TQdxShader fragment;
        ParseImage(fragment, images.Fragment, images.FragmentSize);
        ASSERT_TRUE(fragment.IsFragmentProgram());
        CheckNames(fragment.GetSamplers(), stage.Samplers);
        EXPECT_EQ(fragment.GetAttributes().size(), 0);
        EXPECT_EQ(fragment.GetConstants().size(), 0);
        EXPECT_EQ(fragment.GetFragmentProgram()->GetUsedTextures(), (1u << stage.Samplers.size()) - 1);
    }
}

TEST(StageShader, UniformsAreLocalParametersOfTheirOwn)
{
    for (const TStageTable& stage : Stages) {
        SCOPED_TRACE(stage.ClassName);
        const TStageShader& images = *FindStageShader(stage.ClassName);
        TQdxShader vertex;
        ParseImage(vertex, images.Vertex, images.VertexSize);
        std::set<uint32_t> taken;
        const auto take = [&](uint32_t slot) {
            EXPECT_GE(slot, 256u);
            EXPECT_LT(slot, 256u + 96u);
            EXPECT_TRUE(taken.insert(slot).second) << slot;
        };
        for (const std::string& name : stage.Uniforms) {
            const int index = vertex.FindConstant(name.c_str());
            ASSERT_GE(index, 0) << name;
            const vector<uint16_t>& slots = vertex.GetConstants()[index].Slots;
            EXPECT_EQ(slots.size(), name == "eyePos" ? 1 : 4);
            for (const uint16_t slot : slots)
                take(slot);
        }
        for (const TQdxShader::TDefaultConstant& constant : vertex.GetDefaultConstants())
            take(constant.Slot);
    }
}

TEST(StageShader, EveryDriversProgramsCanDoWhatTheTextsSay)
{
    uint32_t targets[TQdxFragmentProgram::NumUnits];
    for (uint32_t& target : targets)
        target = TY_Target2D;
    for (const TStageTable& stage : Stages) {
        SCOPED_TRACE(stage.ClassName);
        const TStageShader& images = *FindStageShader(stage.ClassName);
        TQdxShader vertex;
        ParseImage(vertex, images.Vertex, images.VertexSize);
        const std::string vertexText = Text(vertex.GetVertexProgram()->GetText());
        EXPECT_EQ(FirstForeignLine(vertexText, PlainVertexLines), "");
        EXPECT_EQ(LinesOf(vertexText).front(), "!!ARBvp1.0");
        EXPECT_EQ(LinesOf(vertexText).back(), "END");

        TQdxShader fragment;
        ParseImage(fragment, images.Fragment, images.FragmentSize);
        TString fragmentText;
        fragment.GetFragmentProgram()->GetVariantText(targets, 0, fragmentText);
        EXPECT_EQ(FirstForeignLine(Text(fragmentText), PlainFragmentLines), "");
        EXPECT_EQ(LinesOf(Text(fragmentText)).back(), "END");
    }
}

TEST(StageShader, ForeignLinesAreSeen)
{
    EXPECT_EQ(FirstForeignLine("MOV R0,R1;\nSIN R0.x,R1.x;\n", PlainVertexLines), "SIN R0.x,R1.x;");
    EXPECT_EQ(FirstForeignLine("RSQ R0.x,R1;\n", PlainVertexLines), "RSQ R0.x,R1;");
    EXPECT_EQ(FirstForeignLine("MOV R0,c[A0.x+3];\n", PlainVertexLines), "MOV R0,c[A0.x+3];");
    EXPECT_EQ(FirstForeignLine("MOV R0,{0,0,0,0};\n", PlainVertexLines), "MOV R0,{0,0,0,0};");
    EXPECT_EQ(FirstForeignLine("MOVH R0,R1;\n", PlainFragmentLines), "MOVH R0,R1;");
    EXPECT_EQ(FirstForeignLine("MOV R0(GT),R1;\n", PlainFragmentLines), "MOV R0(GT),R1;");
}

using TValue = TArbVertexProgram::TValue;

// A stage's vertex program with its uniforms and attributes by name.
class TStageRun
{
public:
    explicit TStageRun(const char* className) : Program(Load(className, Shader))
    {
        for (const TQdxShader::TDefaultConstant& constant : Shader.GetDefaultConstants())
            Program.Locals[static_cast<int>(constant.Slot) - 256] = {constant.Value[0], constant.Value[1],
                                                                     constant.Value[2], constant.Value[3]};
    }
    void Uniform(const char* name, const std::vector<TValue>& rows)
    {
        const vector<uint16_t>& slots = Shader.GetConstants()[Shader.FindConstant(name)].Slots;
        for (int i = 0; i < slots.size(); ++i)
            Program.Locals[slots[i] - 256] = rows.at(static_cast<size_t>(i));
    }
    void Attribute(const char* name, TValue value) { Program.Attributes[Shader.FindAttribute(name)] = value; }
    TValue Position(float cornerX, float cornerY)
    {
        Attribute("corner", {cornerX, cornerY, 0, 1});
        Program.Run();
        return Program.GetResult("position");
    }
    TValue Result(const char* name) const { return Program.GetResult(name); }

private:
    static std::string Load(const char* className, TQdxShader& shader)
    {
        const TStageShader& images = *FindStageShader(className);
        shader.Parse(images.Vertex, images.VertexSize);
        return Text(shader.GetVertexProgram()->GetText());
    }

    TQdxShader Shader;
    TArbVertexProgram Program;
};

const std::vector<TValue> Identity = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};

// Every name of the class has a value to start from: at the origin, a unit in size, seen without a turn.
class TPlainRun : public TStageRun
{
public:
    TPlainRun(const char* className, const TStageTable& table) : TStageRun(className)
    {
        for (const std::string& name : table.Attributes)
            Attribute(name.c_str(), Start(name));
        for (const std::string& name : table.Uniforms)
            Uniform(name.c_str(), name == "eyePos" ? std::vector<TValue>{{0, 0, 10, 1}} : Identity);
    }

private:
    static TValue Start(const std::string& name)
    {
        if (name == "velocity")
            return {0, 1, 0, 1};
        if (name == "scale" || name == "colour")
            return {1, 1, 1, 1};
        if (name == "uvs")
            return {0, 0, 1, 1};
        return {0, 0, 0, 1};
    }
};

TPlainRun RunOf(size_t stage)
{
    return TPlainRun(Stages[stage].ClassName, Stages[stage]);
}

void ExpectNear(const TValue& value, float x, float y, float z, float tolerance = 1e-4f)
{
    EXPECT_NEAR(value[0], x, tolerance);
    EXPECT_NEAR(value[1], y, tolerance);
    EXPECT_NEAR(value[2], z, tolerance);
}

constexpr float Corners[4][2] = {{-1, -1}, {1, -1}, {1, 1}, {-1, 1}};

TEST(StageShader, MatrixSlotsAreTheRowsThatARowVectorIsMultipliedWith)
{
    const std::vector<TValue> matrix = {{1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}, {13, 14, 15, 16}};
    for (const size_t stage : {size_t(0), size_t(1), size_t(4)}) {
        TPlainRun run = RunOf(stage);
        run.Uniform("worldViewProj", matrix);
        run.Attribute("scale", {0, 0, 0, 1});
        run.Attribute("position", {1, 10, 100, 1});
        const TValue clip = run.Position(1, 1);
        for (size_t i = 0; i < 4; ++i)
            EXPECT_FLOAT_EQ(clip[i], matrix[0][i] + 10 * matrix[1][i] + 100 * matrix[2][i] + matrix[3][i]);
    }
}

TEST(StageShader, QuadsTurnAsTransformsDo)
{
    std::mt19937 random(5);
    std::uniform_real_distribution<float> angle(-1000, 1000);
    const double radians = 3.14159265358979 / 180;
    for (const size_t stage : {size_t(0), size_t(1)}) {
        TPlainRun run = RunOf(stage);
        run.Attribute("scale", {2, 3, 0, 1});
        run.Attribute("position", {5, 6, 7, 1});
        for (int i = 0; i < 50; ++i) {
            const float degrees[3] = {angle(random), angle(random), angle(random)};
            run.Attribute("rotation", {degrees[0], degrees[1], degrees[2], 1});
            TMatrix43 matrix;
            matrix.SetRotation(static_cast<float>(degrees[0] * radians),
                               static_cast<float>(degrees[1] * radians),
                               static_cast<float>(degrees[2] * radians));
            for (const auto& corner : Corners) {
                const TVector3 expected = matrix.TransformPoint(TVector3(2 * corner[0], 3 * corner[1], 0));
                ExpectNear(run.Position(corner[0], corner[1]), 5 + expected[0], 6 + expected[1],
                           7 + expected[2], 1e-3f);
            }
        }
    }
}

TEST(StageShader, SinesAreGoodToATenThousandth)
{
    TPlainRun run = RunOf(2);
    for (float degrees = -720; degrees <= 720; degrees += 1.5f) {
        run.Attribute("rotation", {0, 0, degrees, 1});
        const double radians = degrees * 3.14159265358979 / 180;
        const TValue position = run.Position(1, 0);
        EXPECT_NEAR(position[0], std::cos(radians), 1e-4) << degrees;
        EXPECT_NEAR(position[1], -std::sin(radians), 1e-4) << degrees;
    }
}

TEST(StageShader, SpritesLieAcrossTheEyesOwnAxes)
{
    const std::vector<TValue> view = {{0, 0, 1, 0}, {0, 1, 0, 0}, {-1, 0, 0, 0}, {10, 20, 30, 1}};
    for (const size_t stage : {size_t(2), size_t(3)}) {
        TPlainRun run = RunOf(stage);
        run.Uniform("worldView", view);
        run.Attribute("position", {1, 2, 3, 1});
        run.Attribute("scale", {0.5f, 0.25f, 0, 1});
        // About x and y they do not turn.
        run.Attribute("rotation", {70, 40, 0, 1});
        for (const auto& corner : Corners)
            ExpectNear(run.Position(corner[0], corner[1]), 7 + 0.5f * corner[0], 22 + 0.25f * corner[1], 31);
        run.Attribute("rotation", {0, 0, 90, 1});
        ExpectNear(run.Position(1, 0), 7, 22 - 0.5f, 31);
        run.Uniform("proj", {{2, 0, 0, 0}, {0, 3, 0, 0}, {0, 0, 4, -1}, {0, 0, 5, 0}});
        const TValue clip = run.Position(0, 0);
        ExpectNear(clip, 14, 66, 129);
        EXPECT_NEAR(clip[3], -31, 1e-4);
    }
}

TEST(StageShader, TrailsRunBackAlongTheVelocityAndFaceTheEye)
{
    TPlainRun run = RunOf(4);
    run.Attribute("position", {1, 2, 3, 1});
    run.Attribute("velocity", {0, 4, 0, 1});
    run.Attribute("scale", {0.5f, 0.25f, 0, 1});
    run.Uniform("eyePos", {{1, 2, 50, 1}});
    ExpectNear(run.Position(-1, 1), 0.5f, 2, 3);
    ExpectNear(run.Position(1, 1), 1.5f, 2, 3);
    ExpectNear(run.Position(1, -1), 1.5f, 1, 3);
    ExpectNear(run.Position(-1, -1), 0.5f, 1, 3);
    // Seen from the side, the width lies in depth.
    run.Uniform("eyePos", {{51, 2, 3, 1}});
    ExpectNear(run.Position(1, 1), 1, 2, 2.5f);
}

TEST(StageShader, TrailOfAParticleAtRestOrFlyingToTheEyeIsFinite)
{
    TPlainRun run = RunOf(4);
    run.Attribute("position", {1, 2, 3, 1});
    run.Attribute("velocity", {0, 0, 0, 1});
    ExpectNear(run.Position(1, -1), 1, 2, 3);
    run.Attribute("velocity", {-1, -2, 7, 1});
    ExpectNear(run.Position(1, 1), 1, 2, 3);
}

TEST(StageShader, TopOfThePictureIsAtTheUpperCorners)
{
    for (size_t stage = 0; stage < Stages.size(); ++stage) {
        SCOPED_TRACE(Stages[stage].ClassName);
        TPlainRun run = RunOf(stage);
        run.Attribute("uvs", {0.25f, 0.5f, 0.5f, 0.875f});
        for (const auto& corner : Corners) {
            run.Position(corner[0], corner[1]);
            const TValue uv = run.Result("texcoord[0]");
            EXPECT_FLOAT_EQ(uv[0], corner[0] < 0 ? 0.25f : 0.5f);
            EXPECT_FLOAT_EQ(uv[1], corner[1] < 0 ? 0.875f : 0.5f);
        }
    }
}

TEST(StageShader, ColourAndBlendReachTheFragmentProgram)
{
    for (size_t stage = 0; stage < Stages.size(); ++stage) {
        SCOPED_TRACE(Stages[stage].ClassName);
        TPlainRun run = RunOf(stage);
        run.Attribute("colour", {0.1f, 0.2f, 0.3f, 0.4f});
        const bool blended = Stages[stage].Samplers.size() == 2;
        if (blended)
            run.Attribute("blend", {0.75f, 0, 0, 1});
        run.Position(1, 1);
        EXPECT_EQ(run.Result("color"), (TValue{0.1f, 0.2f, 0.3f, 0.4f}));
        if (blended) {
            EXPECT_EQ(run.Result("texcoord[1]")[0], 0.75f);
        }
    }
}

} // namespace
