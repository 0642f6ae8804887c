#include "library/containers/nametocrc.h"
#include "library/wimp/gl/device/rendertextureinstance.h"
#include "library/wimp/gl/glcontext.h"
#include "particles/cindermill/graph/shaders/qdxfragmentprogram.h"
#include "particles/cindermill/graph/shaders/qdxshader.h"
#include "particles/cindermill/graph/shaders/qdxvertexprogram.h"
#include "particles/cindermill/graph/shaders/vertexstream.h"
#include "qdxmicrocode.h"
#include "support/gltest.h"
#include "support/testsupport.h"

#include <GL/glew.h>

#include <algorithm>
#include <array>

namespace {

constexpr int CanvasSize = 16;
constexpr int PositionOutput = 0;
constexpr int ColourOutput = 1;
constexpr int TexCoordOutput = 7;
constexpr int OpcodeUnknown = 1;
constexpr int OpcodeMov = 1;
constexpr int OpcodeMul = 2;
constexpr int OpcodeAdd = 3;
constexpr int OpcodeTex = 23;
constexpr int OpcodeTxp = 24;
constexpr int AttributeTexCoord = 4;

TVertexCode MovToOutput(int output, int type, int index)
{
    TVertexCode code;
    code.Vector = OpcodeMov;
    code.VectorOutput = true;
    code.Output = output;
    code.Sources[0].Type = type;
    code.Attribute = index;
    code.Constant = index;
    return code;
}

// Passes attribute 0 on as the place and a constant's slot as the colour.
TShoFile VertexFile(int slot)
{
    TShoFile file;
    file.IsFragment = false;
    file.Attributes = {{NameToCrc("position"), 0}};
    file.Constants = {{NameToCrc("colour"), 0, 0, slot, {0}}};
    TVertexCode colour = MovToOutput(ColourOutput, 3, slot);
    colour.Last = true;
    file.Microcode = VertexBytes({MovToOutput(PositionOutput, 2, 0), colour});
    return file;
}

TFragmentCode MovFrom(TFragmentOperand source)
{
    TFragmentCode code;
    code.Opcode = OpcodeMov;
    code.Sources[0] = source;
    code.Value[0] = 1;
    code.Value[1] = code.Value[2] = 0;
    code.Value[3] = 1;
    return code;
}

// Shows the vertices' colour.
TShoFile PlainFragmentFile()
{
    TShoFile file;
    file.Microcode = FragmentBytes({MovFrom(Input())});
    return file;
}

// Shows the constant "tint", red at first.
TShoFile TintFragmentFile()
{
    TShoFile file;
    file.Microcode = FragmentBytes({MovFrom(Literal())});
    file.Constants = {{NameToCrc("tint"), 0, 0, 0, {0}}};
    file.PatchLists = {{1}};
    return file;
}

// Passes attribute 0 on as the place and attribute 1 as texture coordinates.
TShoFile TexturedVertexFile()
{
    TShoFile file;
    file.IsFragment = false;
    file.Attributes = {{NameToCrc("position"), 0}, {NameToCrc("uvs"), 1}};
    TVertexCode coordinates = MovToOutput(TexCoordOutput, 2, 1);
    coordinates.Last = true;
    file.Microcode = VertexBytes({MovToOutput(PositionOutput, 2, 0), coordinates});
    return file;
}

TFragmentCode ReadTexture(int opcode, int unit, int swizzle = IdentitySwizzle)
{
    TFragmentCode code;
    code.Opcode = opcode;
    code.Unit = unit;
    code.Attribute = AttributeTexCoord;
    code.Sources[0] = Input(swizzle);
    return code;
}

TFragmentCode Operate(int opcode, int to, TFragmentOperand a, TFragmentOperand b,
                      const std::array<float, 4>& value)
{
    TFragmentCode code;
    code.Opcode = opcode;
    code.Register = to;
    code.Sources[0] = a;
    code.Sources[1] = b;
    std::copy(value.begin(), value.end(), code.Value);
    return code;
}

std::vector<float> LocalOf(int slot)
{
    std::vector<float> value(4);
    glGetProgramLocalParameterfvARB(GL_FRAGMENT_PROGRAM_ARB, static_cast<GLuint>(slot), value.data());
    return value;
}

// The text of the program that is bound to a target, as the driver was given it.
std::string BoundText(unsigned target)
{
    GLint length = 0;
    glGetProgramivARB(target, GL_PROGRAM_LENGTH_ARB, &length);
    std::string text(static_cast<size_t>(length), ' ');
    glGetProgramStringARB(target, GL_PROGRAM_STRING_ARB, text.data());
    return text;
}

class TShaderOf : public TQdxShader
{
public:
    explicit TShaderOf(const TShoFile& file)
    {
        const std::string bytes = file.Bytes();
        if (!Parse(Raw(bytes), static_cast<int>(bytes.size())))
            throw std::runtime_error("not a shader");
    }
};

class QdxShaderDraw : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(IsGlReady()) << GetGlFault();
        vector<TVertexStream::TElement> elements;
        elements.push_back({TVertexStream::TypeFloat, 2, 0, false});
        Corners.Init(Data, 4, sizeof Data[0], elements);
        glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, Canvas.GetFrameBuffer());
        glViewport(0, 0, CanvasSize, CanvasSize);
    }
    // One quad over everything.
    TPixel Draw(TQdxShader& vertex, TQdxShader& fragment, const float* colour = nullptr)
    {
        if (!fragment.Bind() || !vertex.Bind())
            return TPixel();
        if (colour != nullptr)
            vertex.SetConstant(vertex.FindConstant("colour"), colour);
        vertex.SetVertexStream(0, &Corners, 0);
        vertex.Draw(GL_QUADS, 0, 4, 1, 4);
        vertex.Unbind();
        fragment.Unbind();
        CheckGlError();
        return Canvas.Read().At(CanvasSize / 2, CanvasSize / 2);
    }

    TTestWindow Canvas{CanvasSize, CanvasSize};
    TVertexStream Corners;
    float Data[4][2] = {{-1, -1}, {1, -1}, {1, 1}, {-1, 1}};
};

constexpr float Green[4] = {0, 1, 0, 1};
constexpr float Blue[4] = {0, 0, 1, 1};

TEST_F(QdxShaderDraw, AVertexConstantFrom256OnIsTheProgramsOwn)
{
    TShaderOf vertex(VertexFile(259));
    TShaderOf fragment(PlainFragmentFile());
    EXPECT_TRUE(IsClose(Draw(vertex, fragment, Green), {0, 255, 0, 255}));
    ASSERT_TRUE(vertex.Bind());
    float local[4] = {};
    glGetProgramLocalParameterfvARB(GL_VERTEX_PROGRAM_ARB, 3, local);
    EXPECT_EQ(local[1], 1);
    vertex.Unbind();
}

TEST_F(QdxShaderDraw, ALowerVertexConstantIsTheEnvironments)
{
    TShaderOf vertex(VertexFile(7));
    TShaderOf fragment(PlainFragmentFile());
    EXPECT_TRUE(IsClose(Draw(vertex, fragment, Blue), {0, 0, 255, 255}));
    float parameter[4] = {};
    glGetProgramEnvParameterfvARB(GL_VERTEX_PROGRAM_ARB, 7, parameter);
    EXPECT_EQ(parameter[2], 1);
}

TEST_F(QdxShaderDraw, AConstantOfSeveralSlotsTakesFourFloatsForEach)
{
    TShoFile file = VertexFile(7);
    file.Constants[0].Slots = {0, 0};
    TShaderOf vertex(file);
    ASSERT_TRUE(vertex.Bind());
    const float values[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    vertex.SetConstant(0, values);
    vertex.SetConstant(-1, values);
    vertex.Unbind();
    float parameter[4] = {};
    glGetProgramEnvParameterfvARB(GL_VERTEX_PROGRAM_ARB, 7, parameter);
    EXPECT_EQ(parameter[0], 1);
    glGetProgramEnvParameterfvARB(GL_VERTEX_PROGRAM_ARB, 8, parameter);
    EXPECT_EQ(parameter[3], 8);
}

TEST_F(QdxShaderDraw, DefaultConstantsAreSentByEachBind)
{
    TShoFile green = VertexFile(256);
    green.Defaults = {{256, {0, 1, 0, 1}}};
    TShoFile blue = VertexFile(256);
    blue.Defaults = {{256, {0, 0, 1, 1}}};
    // Of the same instructions, so that they share a program.
    TShaderOf greenVertex(green);
    TShaderOf blueVertex(blue);
    ASSERT_EQ(greenVertex.GetVertexProgram(), blueVertex.GetVertexProgram());
    TShaderOf fragment(PlainFragmentFile());
    EXPECT_TRUE(IsClose(Draw(greenVertex, fragment), {0, 255, 0, 255}));
    EXPECT_TRUE(IsClose(Draw(blueVertex, fragment), {0, 0, 255, 255}));
    EXPECT_TRUE(IsClose(Draw(greenVertex, fragment), {0, 255, 0, 255}));
}

TEST_F(QdxShaderDraw, AFragmentConstantIsSentByTheNextBind)
{
    TShaderOf vertex(VertexFile(256));
    TShaderOf fragment(TintFragmentFile());
    EXPECT_TRUE(IsClose(Draw(vertex, fragment), {255, 0, 0, 255}));
    fragment.SetConstant(0, Green);
    EXPECT_TRUE(IsClose(Draw(vertex, fragment), {0, 255, 0, 255}));
    const TFragmentVariant* variant = fragment.GetFragmentProgram()->FindVariant(0);
    ASSERT_NE(variant, nullptr);
    EXPECT_EQ(variant->ConstantVersion, fragment.GetFragmentProgram()->GetConstantVersion());
    fragment.SetConstant(0, Blue);
    EXPECT_NE(variant->ConstantVersion, fragment.GetFragmentProgram()->GetConstantVersion());
    EXPECT_TRUE(IsClose(Draw(vertex, fragment), {0, 0, 255, 255}));
}

TEST_F(QdxShaderDraw, ConstantsThatHaveNotChangedAreNotSentAgain)
{
    TShaderOf vertex(VertexFile(256));
    TShaderOf fragment(TintFragmentFile());
    Draw(vertex, fragment);
    ASSERT_TRUE(fragment.Bind());
    glProgramLocalParameter4fvARB(GL_FRAGMENT_PROGRAM_ARB, 0, Green);
    fragment.Unbind();
    EXPECT_TRUE(IsClose(Draw(vertex, fragment), {0, 255, 0, 255}));
}

TEST_F(QdxShaderDraw, UnbindSwitchesTheTargetOff)
{
    TShaderOf vertex(VertexFile(256));
    TShaderOf fragment(PlainFragmentFile());
    vertex.Bind();
    EXPECT_TRUE(glIsEnabled(0x8620));
    vertex.SetVertexStream(0, &Corners, 0);
    vertex.Unbind();
    EXPECT_FALSE(glIsEnabled(0x8620));
    EXPECT_EQ(vertex.GetVertexStream(0).Buffer, nullptr);
    fragment.Bind();
    EXPECT_TRUE(glIsEnabled(0x8804));
    fragment.Unbind();
    EXPECT_FALSE(glIsEnabled(0x8804));
    // Whoever has switched it on.
    glEnable(0x8804);
    TShaderOf(PlainFragmentFile()).Unbind();
    EXPECT_FALSE(glIsEnabled(0x8804));
}

TEST_F(QdxShaderDraw, OnlyAVertexProgramDraws)
{
    TShaderOf fragment(PlainFragmentFile());
    EXPECT_EQ(AssertionOf([&] { fragment.Draw(GL_QUADS, 0, 4, 1, 4); }), "!IsFragmentProgram()");
}

TEST_F(QdxShaderDraw, ARefusedProgramIsLoggedOnceAndTheRunGoesOn)
{
    // An operation that no one knows, and that prints as it stands.
    TShoFile file = VertexFile(256);
    TVertexCode unknown;
    unknown.Scalar = OpcodeUnknown;
    unknown.Last = true;
    file.Microcode = VertexBytes({MovToOutput(PositionOutput, 2, 0), unknown});
    TShaderOf vertex(file);
    const std::string log = LogOf([&] { EXPECT_FALSE(vertex.Bind()); });
    EXPECT_EQ(log.find("!!ARBvp1.0\n"), 0u) << log;
    EXPECT_NE(log.find("???"), std::string::npos);
    EXPECT_NE(log.find("\nopengl arb shader assemble error at position "), std::string::npos);
    EXPECT_EQ(LogOf([&] { EXPECT_FALSE(vertex.Bind()); }), "");
    EXPECT_FALSE(glIsEnabled(GL_VERTEX_PROGRAM_ARB));
    vertex.Unbind();
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    TShaderOf good(VertexFile(256));
    TShaderOf fragment(PlainFragmentFile());
    EXPECT_TRUE(IsClose(Draw(good, fragment, Green), {0, 255, 0, 255}));
}

TEST_F(QdxShaderDraw, ARefusedFragmentProgramIsLoggedOnceAndTheRunGoesOn)
{
    // An input that no driver has, and that prints as its number.
    TShoFile file;
    TFragmentCode unknown = MovFrom(Input());
    unknown.Attribute = 15;
    file.Microcode = FragmentBytes({unknown});
    TShaderOf fragment(file);
    const std::string log = LogOf([&] { EXPECT_FALSE(fragment.Bind()); });
    EXPECT_EQ(log.find("!!ARBfp1.0\n"), 0u) << log;
    EXPECT_NE(log.find("MOV R0,fragment.0x0F;\n"), std::string::npos);
    EXPECT_NE(log.find("END\nopengl arb shader assemble error at position "), std::string::npos) << log;
    EXPECT_EQ(log.back(), '\n');
    EXPECT_EQ(LogOf([&] { EXPECT_FALSE(fragment.Bind()); }), "");
    EXPECT_FALSE(glIsEnabled(GL_FRAGMENT_PROGRAM_ARB));
    fragment.Unbind();
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    TShaderOf vertex(VertexFile(256));
    TShaderOf good(PlainFragmentFile());
    EXPECT_TRUE(IsClose(Draw(vertex, good, Green), {0, 255, 0, 255}));
}

TEST_F(QdxShaderDraw, AnErrorOfOpenGLWhileBindingIsLoggedAndFatalUnlessItIsAnInvalidOperation)
{
    TShaderOf fragment(PlainFragmentFile());
    ASSERT_TRUE(fragment.Bind());
    std::string assertion;
    glEnable(0xFFFF);
    EXPECT_EQ(LogOf([&] { assertion = AssertionOf([&] { fragment.Bind(); }); }), "OpenGL error 0x500\n");
    EXPECT_EQ(assertion.find("err == GL_NO_ERROR || err == GL_INVALID_OPERATION"), 0u) << assertion;
    glEnd();
    EXPECT_EQ(LogOf([&] { assertion = AssertionOf([&] { EXPECT_TRUE(fragment.Bind()); }); }), "");
    EXPECT_EQ(assertion, "");
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    fragment.Unbind();
}

TEST_F(QdxShaderDraw, TheDriverIsGivenOptionsThatItKnowsOnly)
{
    TShaderOf vertex(VertexFile(256));
    TShaderOf fragment(TintFragmentFile());
    EXPECT_EQ(LogOf([&] {
                  EXPECT_TRUE(vertex.Bind());
                  EXPECT_TRUE(fragment.Bind());
              }),
              "");
    const std::string vertexText = Text(vertex.GetVertexProgram()->GetText());
    const std::string fragmentText = Text(fragment.GetFragmentProgram()->GetText());
    const auto without = [](std::string text, const std::string& line) {
        text.erase(text.find(line), line.size());
        return text;
    };
    EXPECT_EQ(BoundText(GL_VERTEX_PROGRAM_ARB),
              HasVendorPrograms() ? vertexText : without(vertexText, "OPTION NV_vertex_program3;\n"));
    EXPECT_EQ(BoundText(GL_FRAGMENT_PROGRAM_ARB),
              HasVendorPrograms() ? fragmentText : without(fragmentText, "OPTION NV_fragment_program2;\n"));
    EXPECT_NE(BoundText(GL_FRAGMENT_PROGRAM_ARB).find("OPTION ATI_draw_buffers;\n"), std::string::npos);
    vertex.Unbind();
    fragment.Unbind();
}

// Memory begins with the bottom row: blue and yellow below red and green.
constexpr uint8_t Quarters[] = {0,   0, 255, 255, 255, 255, 0, 255, // below
                                255, 0, 0,   255, 0,   255, 0, 255};

TEST_F(QdxShaderDraw, TextureReadsTurnVUpsideDownAndProjectiveOnesBehindTheDivision)
{
    TRenderTextureInstance texture;
    texture.Create(2, 2, TF_RGBA8, Quarters);
    TShaderOf vertex(TexturedVertexFile());
    const int turned = 1 | 0 << 2 | 2 << 4 | 3 << 6;
    struct TCase
    {
        int Opcode;
        int Swizzle;
        float Coordinates[4];
        TPixel Seen;
    };
    const TCase cases[] = {
        {OpcodeTex, IdentitySwizzle, {0.25f, 0.25f, 0, 1}, {255, 0, 0, 255}},
        {OpcodeTex, IdentitySwizzle, {0.75f, 0.75f, 0, 1}, {255, 255, 0, 255}},
        {OpcodeTex, turned, {0.75f, 0.25f, 0, 1}, {0, 0, 255, 255}},
        {OpcodeTxp, IdentitySwizzle, {0.5f, 0.5f, 0, 2}, {255, 0, 0, 255}},
        {OpcodeTxp, IdentitySwizzle, {3, 3, 0, 4}, {255, 255, 0, 255}},
        {OpcodeTxp, turned, {1.5f, 0.5f, 0, 2}, {0, 0, 255, 255}},
    };
    for (const TCase& test : cases) {
        TShoFile file;
        file.Microcode = FragmentBytes({ReadTexture(test.Opcode, 0, test.Swizzle)});
        TShaderOf fragment(file);
        fragment.SetTexture(0, &texture);
        vertex.SetVertexValue(1, test.Coordinates, 4);
        const TPixel seen = Draw(vertex, fragment);
        EXPECT_TRUE(IsClose(seen, test.Seen)) << seen << " with opcode " << test.Opcode;
    }
}

TEST_F(QdxShaderDraw, TheScaleOfAUnitStandsBehindTheLiterals)
{
    TRenderTextureInstance texture;
    texture.Create(2, 2, TF_RGBA8, Quarters);
    TShoFile file;
    file.Microcode =
        FragmentBytes({ReadTexture(OpcodeTex, 2), Operate(OpcodeMul, 0, Temp(0), Literal(), {1, 1, 1, 1}),
                       Operate(OpcodeAdd, 0, Temp(0), Literal(), {0, 0.5f, 0, 0}),
                       Operate(OpcodeMul, 0, Temp(0), Literal(), {1, 1, 1, 1})});
    file.Constants = {{NameToCrc("tint"), 0, 0, 0, {0}},
                      {NameToCrc("unused"), 0, 0, 0, {0}},
                      {NameToCrc("lift"), 0, 0, 0, {0}}};
    file.PatchLists = {{2, 6}, {}, {4}};
    TShaderOf vertex(TexturedVertexFile());
    TShaderOf fragment(file);
    const float corner[4] = {0.25f, 0.25f, 0, 1};
    const auto draw = [&] {
        fragment.SetTexture(2, &texture);
        vertex.SetVertexValue(1, corner, 4);
        return Draw(vertex, fragment);
    };
    EXPECT_TRUE(IsClose(draw(), {255, 128, 0, 255}));
    ASSERT_TRUE(fragment.Bind());
    EXPECT_EQ(LocalOf(0), (std::vector<float>{1, 1, 1, 1}));
    EXPECT_EQ(LocalOf(1), (std::vector<float>{0, 0.5f, 0, 0}));
    EXPECT_EQ(LocalOf(2), (std::vector<float>{1, 1, 1, 1}));
    // Units 0 and 1 have slots, but no texture.
    EXPECT_EQ(LocalOf(3), (std::vector<float>{0, 0, 0, 0}));
    EXPECT_EQ(LocalOf(4), (std::vector<float>{0, 0, 0, 0}));
    EXPECT_EQ(LocalOf(5), (std::vector<float>{1, -1, 1, 1}));
    const float half[4] = {0.5f, 0.5f, 0.5f, 1};
    const float lift[4] = {0, 0, 0.75f, 0};
    fragment.SetConstant(fragment.FindConstant("tint"), half);
    fragment.SetConstant(fragment.FindConstant("unused"), lift);
    EXPECT_TRUE(IsClose(draw(), {64, 64, 0, 255}));
    fragment.SetConstant(fragment.FindConstant("lift"), lift);
    EXPECT_TRUE(IsClose(draw(), {64, 0, 96, 255}));
    ASSERT_TRUE(fragment.Bind());
    EXPECT_EQ(LocalOf(0), (std::vector<float>{0.5f, 0.5f, 0.5f, 1}));
    EXPECT_EQ(LocalOf(1), (std::vector<float>{0, 0, 0.75f, 0}));
    EXPECT_EQ(LocalOf(2), (std::vector<float>{0.5f, 0.5f, 0.5f, 1}));
    fragment.Unbind();
}

TEST_F(QdxShaderDraw, AProgramOfFortyRegistersDrawsWhatItComputes)
{
    // Each register adds a little to the one before it.
    std::vector<TFragmentCode> program = {Operate(OpcodeMov, 5, Literal(), Input(), {0.25f, 0, 1, 1})};
    TShoFile file;
    file.Constants = {{NameToCrc("step"), 0, 0, 0, {0}}};
    file.PatchLists = {{}};
    for (int r = 5; r < 45; ++r) {
        file.PatchLists[0].push_back(2 * (r - 4) + 1);
        program.push_back(
            Operate(OpcodeAdd, r + 1, Temp(r), Literal(), {1 / 80.0f, 1 / 40.0f, -1 / 80.0f, 0}));
    }
    program.push_back(Operate(OpcodeMov, 0, Temp(45), Input(), {}));
    file.Microcode = FragmentBytes(program);
    TShaderOf vertex(VertexFile(256));
    TShaderOf fragment(file);
    const std::string text = Text(fragment.GetFragmentProgram()->GetText());
    EXPECT_NE(text.find("\nTEMP T0;\n"), std::string::npos) << text;
    EXPECT_EQ(text.find("R45"), std::string::npos);
    EXPECT_TRUE(IsClose(Draw(vertex, fragment), {191, 255, 128, 255}));
    const float step[4] = {0, 1 / 160.0f, 0, 0};
    fragment.SetConstant(0, step);
    EXPECT_TRUE(IsClose(Draw(vertex, fragment), {64, 64, 255, 255}));
}

TEST_F(QdxShaderDraw, AStreamHasABufferOnlyWhileOneIsOfUse)
{
    TVertexStream stream;
    vector<TVertexStream::TElement> elements;
    elements.push_back({TVertexStream::TypeFloat, 2, 0, false});
    stream.Init(Data, 4, sizeof Data[0], elements);
    EXPECT_EQ(stream.GetBufferId(), -1);
    TVertexStream::SetSoftwareVertices(true);
    stream.Upload();
    EXPECT_EQ(stream.GetBufferId(), -1);
    EXPECT_EQ(stream.GetPosition().Base, reinterpret_cast<const uint8_t*>(Data));
    EXPECT_EQ(stream.GetPosition().Buffer, 0u);
    TVertexStream::SetSoftwareVertices(false);
    EXPECT_EQ(stream.GetPosition().Base, nullptr);
    ASSERT_NE(stream.GetBufferId(), -1);
    EXPECT_EQ(stream.GetPosition().Buffer, static_cast<unsigned>(stream.GetBufferId()));
    glBindBuffer(GL_ARRAY_BUFFER, stream.GetPosition().Buffer);
    GLint size = 0;
    GLint usage = 0;
    glGetBufferParameteriv(GL_ARRAY_BUFFER, GL_BUFFER_SIZE, &size);
    glGetBufferParameteriv(GL_ARRAY_BUFFER, GL_BUFFER_USAGE, &usage);
    EXPECT_EQ(size, stream.GetSize());
    EXPECT_EQ(usage, 35048);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    Data[0][0] = 5;
    stream.Upload();
    glBindBuffer(GL_ARRAY_BUFFER, stream.GetPosition().Buffer);
    float copy[8] = {};
    glGetBufferSubData(GL_ARRAY_BUFFER, 0, sizeof copy, copy);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    EXPECT_EQ(copy[0], 5);
}

TEST_F(QdxShaderDraw, BuffersOfStreamsThatHaveGoneAreFreedByTheNextUpload)
{
    unsigned name = 0;
    {
        TVertexStream stream;
        vector<TVertexStream::TElement> elements;
        elements.push_back({TVertexStream::TypeFloat, 2, 0, false});
        stream.Init(Data, 4, sizeof Data[0], elements);
        stream.Upload();
        name = static_cast<unsigned>(stream.GetBufferId());
        EXPECT_TRUE(glIsBuffer(name));
        TTestContext::ClearCurrent();
    }
    Canvas.MakeCurrent();
    EXPECT_TRUE(glIsBuffer(name));
    Corners.Upload();
    EXPECT_TRUE(!glIsBuffer(name) || static_cast<unsigned>(Corners.GetBufferId()) == name);
}

} // namespace
