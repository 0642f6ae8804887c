#include "stagescene.h"

#include "shaders/stageshaders.h"

#include <cstring>

TEST(StageDraw, AllTenProgramsAreTakenByTheDriver)
{
    for (const TStageCase& stage : Stages) {
        TStageScene scene(stage);
        scene.Build();
        const TRenderStageStatic& shared = scene.Stage().GetStaticData();
        EXPECT_EQ(LogOf([&] {
                      EXPECT_TRUE(shared.VertexShader->Bind()) << stage.ClassName;
                      EXPECT_TRUE(shared.FragmentShader->Bind()) << stage.ClassName;
                  }),
                  "");
        EXPECT_TRUE(glIsEnabled(GL_VERTEX_PROGRAM_ARB));
        EXPECT_TRUE(glIsEnabled(GL_FRAGMENT_PROGRAM_ARB));
        shared.VertexShader->Unbind();
        shared.FragmentShader->Unbind();
        EXPECT_FALSE(glIsEnabled(GL_VERTEX_PROGRAM_ARB));
        EXPECT_FALSE(glIsEnabled(GL_FRAGMENT_PROGRAM_ARB));
    }
}

TEST(StageDraw, EachStageShowsTheTintedRightHalfOfItsPictureUpright)
{
    for (const TStageCase& stage : Stages) {
        SCOPED_TRACE(stage.ClassName);
        TStageScene scene(stage, "four.dds");
        TParticle particle = Square(stage);
        particle.UVs = {0.5f, 0, 1, 1};
        particle.Colour = {0.25f, 0.5f, 1, 1};
        scene.Emit({particle});
        scene.Draw(FarView());
        for (const float x : {-0.45f, 0.0f, 0.45f}) {
            EXPECT_PIXEL(scene, x, 0.4f, (TPixel{0, 128, 0, 255}));
            EXPECT_PIXEL(scene, x, -0.4f, (TPixel{64, 128, 0, 255}));
        }
        const int side = CanvasSize / 2;
        EXPECT_EQ(scene.CountDrawn(), side * side);
    }
}

namespace {

// A stage's fragment program whose first instruction has become one that prints no operand, which no driver
// takes.
std::vector<uint8_t> RefusedFragmentImage(const char* className)
{
    const TStageShader& shader = *FindStageShader(className);
    std::vector<uint8_t> image(shader.Fragment, shader.Fragment + shader.FragmentSize);
    const auto number = [&](size_t at, size_t bytes) {
        size_t value = 0;
        for (size_t i = 0; i < bytes; ++i)
            value = value << 8 | image[at + i];
        return value;
    };
    const size_t block = number(22, 2);
    const size_t microcode = block + number(block + 16, 4);
    // The opcode's byte, as the halves of a word are exchanged.
    image[microcode + 2] &= 0xC0;
    return image;
}

// Lends a stage's class another fragment shader.
class TLentShader
{
public:
    TLentShader(TRenderStage& stage, TQdxShader& shader)
        : Static(const_cast<TRenderStageStatic&>(stage.GetStaticData())), Own(Static.FragmentShader)
    {
        Static.FragmentShader = &shader;
    }
    ~TLentShader() { Static.FragmentShader = Own; }
    TLentShader(const TLentShader&) = delete;
    TLentShader& operator=(const TLentShader&) = delete;

private:
    TRenderStageStatic& Static;
    TQdxShader* Own;
};

} // namespace

TEST(StageDraw, AStageWhoseProgramIsRefusedLogsItOnceAndTheOthersGoOn)
{
    TQdxShader refused;
    const std::vector<uint8_t> image = RefusedFragmentImage("TQuadRenderStage");
    ASSERT_TRUE(refused.Parse(image.data(), static_cast<int>(image.size())));

    TStageScene scene(Quad, "red.dds");
    scene.Add(Sprite, "green.dds");
    TParticle particle;
    particle.Scale = {0.25f, 0.25f};
    scene.Emit({particle});
    {
        const TLentShader lent(scene.Stage(0), refused);
        const std::string log = LogOf([&] { scene.Draw(); });
        EXPECT_NE(log.find("\nNOP ;\n"), std::string::npos) << log;
        EXPECT_NE(log.find("\nopengl arb shader assemble error at position "), std::string::npos) << log;
        EXPECT_PIXEL(scene, 0.0f, 0.0f, Green);
        for (const GLenum state : {GL_BLEND, GL_VERTEX_PROGRAM_ARB, GL_FRAGMENT_PROGRAM_ARB})
            EXPECT_FALSE(glIsEnabled(state));
        scene.Clear();
        EXPECT_EQ(LogOf([&] { scene.Draw(); }), "");
        EXPECT_PIXEL(scene, 0.0f, 0.0f, Green);
        scene.Nodes[1]->GetNodeType()->SetFlag(FL_BYPASSED, true);
        scene.Clear();
        scene.Draw();
        EXPECT_EQ(scene.CountDrawn(), 0);
    }
    scene.Draw();
    EXPECT_PIXEL(scene, 0.0f, 0.0f, Red);
}

TEST(StageDraw, ARedTextureComesOutRed)
{
    for (const TStageCase& stage : Stages) {
        SCOPED_TRACE(stage.ClassName);
        TStageScene scene(stage, "red.dds");
        scene.Emit({Square(stage)});
        scene.Draw(FarView());
        EXPECT_PIXEL(scene, 0.0f, 0.0f, Red);
        EXPECT_PIXEL(scene, -0.45f, 0.45f, Red);
        EXPECT_PIXEL(scene, 0.45f, -0.45f, Red);
        EXPECT_PIXEL(scene, 0.55f, 0.0f, Black);
        EXPECT_PIXEL(scene, 0.0f, -0.55f, Black);
        EXPECT_PIXEL(scene, 0.0f, 0.55f, Black);
    }
}

TEST(StageDraw, ThePictureStandsUpright)
{
    for (const TStageCase& stage : Stages) {
        SCOPED_TRACE(stage.ClassName);
        TStageScene scene(stage, "four.dds");
        scene.Emit({Square(stage)});
        scene.Draw(FarView());
        EXPECT_PIXEL(scene, -0.25f, 0.25f, Red);
        EXPECT_PIXEL(scene, 0.25f, 0.25f, Green);
        EXPECT_PIXEL(scene, -0.25f, -0.25f, Blue);
        EXPECT_PIXEL(scene, 0.25f, -0.25f, Yellow);
    }
}

TEST(StageDraw, TheColourTints)
{
    for (const TStageCase& stage : Stages) {
        SCOPED_TRACE(stage.ClassName);
        TStageScene scene(stage, "four.dds");
        TParticle particle = Square(stage);
        particle.Colour = {0.5f, 1, 1, 0.5f};
        scene.Emit({particle});
        scene.Draw(FarView());
        EXPECT_PIXEL(scene, -0.25f, 0.25f, (TPixel{64, 0, 0, 255}));
        EXPECT_PIXEL(scene, 0.25f, -0.25f, (TPixel{64, 128, 0, 255}));
    }
}

TEST(StageDraw, TheUvsChooseAPartOfThePicture)
{
    for (const TStageCase& stage : Stages) {
        SCOPED_TRACE(stage.ClassName);
        TStageScene scene(stage, "four.dds");
        TParticle particle = Square(stage);
        particle.UVs = {0.5f, 0, 1, 1};
        scene.Emit({particle});
        scene.Draw(FarView());
        EXPECT_PIXEL(scene, -0.4f, 0.25f, Green);
        EXPECT_PIXEL(scene, 0.4f, 0.25f, Green);
        EXPECT_PIXEL(scene, -0.4f, -0.25f, Yellow);
        EXPECT_PIXEL(scene, 0.4f, -0.25f, Yellow);
    }
}

TEST(StageDraw, TilesOfASheetCountFromTheTopLeft)
{
    TStageScene scene(Quad, "four.dds");
    TParticle particle;
    particle.UVs = {0, 0, 0.5f, 0.5f};
    scene.Emit({particle});
    scene.Draw();
    EXPECT_PIXEL(scene, 0.0f, 0.0f, Red);
}

TEST(StageDraw, QuadsTurnWithTheirRotation)
{
    for (const TStageCase& stage : {Quad, BlendedQuad, Sprite, BlendedSprite}) {
        SCOPED_TRACE(stage.ClassName);
        TStageScene scene(stage, "four.dds");
        TParticle particle;
        particle.Scale = {0.5f, 0.1f};
        particle.Rotation = {0, 0, 90};
        scene.Emit({particle});
        scene.Draw();
        EXPECT_PIXEL(scene, 0.4f, 0.0f, Black);
        // The row vector (1, 0) turned by 90 degrees about z is (0, -1): the picture's right side points
        // down.
        EXPECT_PIXEL(scene, 0.05f, 0.4f, Red);
        EXPECT_PIXEL(scene, 0.05f, -0.4f, Green);
        EXPECT_PIXEL(scene, -0.05f, 0.4f, Blue);
        EXPECT_PIXEL(scene, -0.05f, -0.4f, Yellow);
    }
}

TEST(StageDraw, SpritesFaceTheEyeAndQuadsDoNot)
{
    TMatrix43 turn;
    turn.SetRotationY(1.5707964f);
    TSceneView view;
    view.Set(TMatrix4(turn), TMatrix4());
    for (const TStageCase& stage : {Quad, BlendedQuad, Sprite, BlendedSprite}) {
        SCOPED_TRACE(stage.ClassName);
        TStageScene scene(stage, "four.dds");
        scene.Emit({TParticle()});
        scene.Draw(view);
        EXPECT_PIXEL(scene, -0.25f, 0.25f, stage.IsSprite ? Red : Black);
        EXPECT_PIXEL(scene, 0.25f, -0.25f, stage.IsSprite ? Yellow : Black);
    }
}

TEST(StageDraw, TrailsLieAlongTheVelocity)
{
    TStageScene scene(Trail, "four.dds");
    TParticle particle;
    particle.Velocity = {2, 0, 0};
    particle.Position = {0.5f, 0, 0};
    particle.Scale = {0.125f, 0.5f};
    scene.Emit({particle});
    scene.Draw(FarView());
    // From where the particle is back to where it was half a second ago; the picture's top is in front.
    EXPECT_PIXEL(scene, 0.45f, 0.05f, Red);
    EXPECT_PIXEL(scene, 0.45f, -0.05f, Green);
    EXPECT_PIXEL(scene, -0.45f, 0.05f, Blue);
    EXPECT_PIXEL(scene, -0.45f, -0.05f, Yellow);
    EXPECT_PIXEL(scene, 0.55f, 0.0f, Black);
    EXPECT_PIXEL(scene, -0.55f, 0.0f, Black);
    EXPECT_PIXEL(scene, 0.0f, 0.2f, Black);
}

TEST(StageDraw, BlendedStagesGoFromOnePictureToTheOther)
{
    for (const TStageCase& stage : {BlendedQuad, BlendedSprite}) {
        SCOPED_TRACE(stage.ClassName);
        TStageScene scene(stage, "red.dds");
        scene.SetTexture(scene.Nodes[0], "Blend Texture", "green.dds");
        std::vector<TParticle> particles(3);
        for (size_t i = 0; i < 3; ++i) {
            particles[i].Position = {-0.5f + 0.5f * static_cast<float>(i), 0, 0};
            particles[i].Scale = {0.2f, 0.2f};
            particles[i].Blend = static_cast<float>(i) / 2;
        }
        scene.Emit(particles);
        scene.Draw();
        EXPECT_PIXEL(scene, -0.5f, 0.0f, Red);
        EXPECT_PIXEL(scene, 0.0f, 0.0f, (TPixel{128, 128, 0, 255}));
        EXPECT_PIXEL(scene, 0.5f, 0.0f, Green);
    }
}

TEST(StageDraw, EveryParticleIsDrawnWithItsOwnValues)
{
    TStageScene scene(Quad);
    std::vector<TParticle> particles = Row();
    particles[0].Colour = {1, 0, 0, 1};
    particles[1].Colour = {0, 1, 0, 1};
    particles[2].Colour = {0, 0, 1, 1};
    scene.Emit(particles);
    scene.Draw();
    EXPECT_PIXEL(scene, -0.5f, 0.0f, Red);
    EXPECT_PIXEL(scene, 0.0f, 0.0f, Green);
    EXPECT_PIXEL(scene, 0.5f, 0.0f, Blue);
}

TEST(StageDraw, AWrappedRingIsDrawnInTwoRunsWithTheSameStates)
{
    for (const bool software : {false, true}) {
        TStageScene scene(Quad, "white.dds", {}, 4);
        TVertexStream::SetSoftwareVertices(software);
        TParticle away;
        away.Position = {0, 0.8f, 0};
        away.Scale = {0.1f, 0.1f};
        scene.Emit({away, away, away});
        std::vector<TParticle> particles = Row();
        particles[1].Colour = {0, 1, 0, 0.5f};
        particles[2].Colour = {0, 0, 1, 0.5f};
        scene.Emit(particles);
        TParticleBuffer& buffer = *scene.Exec.GetGroup(scene.Group);
        buffer.KillParticle(0);
        buffer.RemoveDead();
        // Slot 3 holds the oldest, slots 0 and 1 the other two, and slot 2 one that has died.
        ASSERT_EQ(buffer.GetTail(), 3);
        ASSERT_EQ(buffer.GetHead(), 2);
        scene.Draw();
        TVertexStream::SetSoftwareVertices(false);
        EXPECT_PIXEL(scene, -0.5f, 0.0f, White);
        EXPECT_PIXEL(scene, 0.0f, 0.0f, (TPixel{0, 128, 0, 255}));
        EXPECT_PIXEL(scene, 0.5f, 0.0f, (TPixel{0, 0, 128, 255}));
        EXPECT_PIXEL(scene, 0.0f, 0.8f, Black);
    }
}

TEST(StageDraw, AFullRingIsDrawnWhole)
{
    TStageScene scene(Quad, "white.dds", {}, 3);
    scene.Emit(Row());
    scene.Draw();
    for (const float x : {-0.5f, 0.0f, 0.5f})
        EXPECT_PIXEL(scene, x, 0.0f, White);
}

TEST(StageDraw, AGroupWithoutParticlesStillSetsAndClearsItsStates)
{
    TStageScene scene(Quad);
    scene.Build();
    scene.Switch("Alpha Test", true);
    scene.Choose("Alpha Test.Function", 6);
    scene.SetScalar("Alpha Test.Ref Value", 0.25f);
    glAlphaFunc(GL_ALWAYS, 0);
    scene.Draw();
    EXPECT_EQ(scene.CountDrawn(), 0);
    GLint function = 0;
    GLfloat reference = 0;
    glGetIntegerv(GL_ALPHA_TEST_FUNC, &function);
    glGetFloatv(GL_ALPHA_TEST_REF, &reference);
    EXPECT_EQ(function, GL_GEQUAL);
    EXPECT_FLOAT_EQ(reference, 0.25f);
    EXPECT_FALSE(glIsEnabled(GL_ALPHA_TEST));
    EXPECT_FALSE(glIsEnabled(GL_BLEND));
    EXPECT_FALSE(glIsEnabled(GL_VERTEX_PROGRAM_ARB));
}

TEST(StageDraw, ABypassedStageDrawsNothing)
{
    TStageScene scene(Quad);
    scene.Emit(Row());
    scene.Nodes[0]->GetNodeType()->SetFlag(FL_BYPASSED, true);
    scene.Draw();
    EXPECT_PIXEL(scene, 0.0f, 0.0f, Black);
    scene.Nodes[0]->GetNodeType()->SetFlag(FL_BYPASSED, false);
    scene.Draw();
    EXPECT_PIXEL(scene, 0.0f, 0.0f, White);
}

TEST(StageDraw, TwoStagesOnOneGroupDrawInTiedNodeOrder)
{
    TStageScene scene(Quad, "red.dds");
    scene.Add(Sprite, "green.dds");
    for (size_t node = 0; node < 2; ++node)
        scene.Switch("Alpha Blend", false, node);
    scene.Emit({TParticle()});
    std::vector<const TEffectNode*> order;
    for (int t = 0; t < scene.Schedule.GetNumTiedNodes(scene.Group); ++t) {
        const int node = scene.Schedule.GetTiedNode(scene.Group, t);
        if (scene.Schedule.GetNodeUsage(node) == TU_RENDER)
            order.push_back(scene.Schedule.GetNode(node));
    }
    ASSERT_EQ(order.size(), 2u);
    scene.Draw();
    EXPECT_PIXEL(scene, 0.0f, 0.0f, order.back() == scene.Nodes[0] ? Red : Green);
    for (TEffectNode* node : scene.Nodes) {
        scene.Clear();
        node->GetNodeType()->SetFlag(FL_BYPASSED, true);
        scene.Draw();
        node->GetNodeType()->SetFlag(FL_BYPASSED, false);
        EXPECT_PIXEL(scene, 0.0f, 0.0f, node == scene.Nodes[0] ? Green : Red);
    }
}

TEST(StageDraw, StagesOfDifferentKindsShareAnAttribute)
{
    // The trail has a place where the sprite has a place and a rotation.
    TStageScene scene(Sprite, "red.dds");
    TEffectNode* trail = scene.Add(Trail, "green.dds", {"Position"});
    scene.Graph.Wire(scene.Positioner, "Transform", trail, "Position");
    TParticle particle;
    particle.Position = {0, 0, 0};
    particle.Scale = {0.2f, 0.2f};
    particle.Velocity = {0, 4, 0};
    scene.Emit({particle});
    scene.Draw(FarView());
    EXPECT_PIXEL(scene, 0.0f, 0.15f, Red);
    EXPECT_PIXEL(scene, 0.0f, -0.7f, Green);
    EXPECT_PIXEL(scene, 0.0f, -0.9f, Black);
}

TEST(StageDraw, InputsThatAreNotWiredHaveTheirParametersValue)
{
    for (const TStageCase& stage : Stages) {
        SCOPED_TRACE(stage.ClassName);
        std::vector<std::string> unwired = {"Scale", "Colour", "UVs"};
        if (stage.IsBlended)
            unwired.push_back("Blend");
        if (stage.IsTrail)
            unwired.push_back("Velocity");
        TStageScene scene(stage, "four.dds", unwired);
        const TParticle square = Square(stage);
        scene.Graph.InputValue(scene.Nodes[0], "Scale", {square.Scale[0], square.Scale[1]});
        scene.Graph.InputValue(scene.Nodes[0], "Colour", {1, 0, 0, 1});
        scene.Graph.InputValue(scene.Nodes[0], "UVs", {0.5f, 0.5f, 1, 1});
        if (stage.IsTrail)
            scene.Graph.InputValue(scene.Nodes[0], "Velocity", {0, 1, 0});
        scene.Emit({square});
        scene.Draw(FarView());
        EXPECT_PIXEL(scene, -0.45f, 0.45f, Red);
        EXPECT_PIXEL(scene, 0.45f, -0.45f, Red);
        EXPECT_PIXEL(scene, 0.55f, 0.0f, Black);
    }
}

TEST(StageDraw, APlaceThatIsNotWiredIsTheSameForAllParticles)
{
    for (const bool software : {false, true}) {
        TStageScene scene(Quad, "white.dds", {"Transform"});
        TVertexStream::SetSoftwareVertices(software);
        scene.Graph.InputValue(scene.Nodes[0], "Transform", {0.5f, 0.5f, 0, 0, 0, 90});
        TParticle particle;
        particle.Scale = {0.3f, 0.1f};
        scene.Emit({particle, particle});
        scene.Draw();
        TVertexStream::SetSoftwareVertices(false);
        EXPECT_PIXEL(scene, 0.5f, 0.5f, White);
        EXPECT_PIXEL(scene, 0.5f, 0.25f, White);
        EXPECT_PIXEL(scene, 0.25f, 0.5f, Black);
        EXPECT_PIXEL(scene, 0.0f, 0.0f, Black);
    }
}

TEST(StageDraw, SoftwareVerticesDrawTheSamePicture)
{
    for (const TStageCase& stage : Stages) {
        SCOPED_TRACE(stage.ClassName);
        TStageScene scene(stage, "four.dds", {"Colour"});
        std::vector<TParticle> particles = Row();
        particles[0].Rotation = {10, 20, 30};
        particles[1].UVs = {0.25f, 0.25f, 1, 1};
        particles[2].Velocity = {3, 1, 0.5f};
        scene.Emit(particles);
        scene.Draw(FarView());
        TPicture hardware = scene.Canvas.Read();
        scene.Clear();
        TVertexStream::SetSoftwareVertices(true);
        scene.Draw(FarView());
        TVertexStream::SetSoftwareVertices(false);
        EXPECT_EQ(memcmp(scene.Canvas.Read().GetBytes(), hardware.GetBytes(), CanvasSize * CanvasSize * 4),
                  0);
        EXPECT_GT(scene.CountDrawn(), 50);
    }
}

TEST(StageDraw, WhatMovesIsDrawnWhereItIsNow)
{
    TStageScene scene(Quad);
    scene.Emit(Row());
    scene.Draw();
    TParticleBuffer& buffer = *scene.Exec.GetGroup(scene.Group);
    int attrib = 0;
    while (Text(scene.Schedule.GetAttributeName(scene.Group, attrib)) != "Transform")
        ++attrib;
    buffer.GetAttribute(attrib, TU_RENDER, 1)[1] = 0.7f;
    scene.Clear();
    scene.Draw();
    EXPECT_PIXEL(scene, 0.0f, 0.0f, Black);
    EXPECT_PIXEL(scene, 0.0f, 0.7f, White);
    EXPECT_PIXEL(scene, 0.5f, 0.0f, White);
}

TEST(StageDraw, AChangedTextureIsSeenInTheNextFrame)
{
    TStageScene scene(Quad, "red.dds");
    scene.Emit({TParticle()});
    scene.Draw();
    EXPECT_PIXEL(scene, 0.0f, 0.0f, Red);
    scene.SetTexture(scene.Nodes[0], "Texture", "green.dds");
    scene.Draw();
    EXPECT_PIXEL(scene, 0.0f, 0.0f, Green);
    scene.SetTexture(scene.Nodes[0], "Texture", "nothing.dds");
    EXPECT_EQ(scene.Services.Warnings, std::vector<std::string>{"Could not load texture nothing.dds\n"});
    scene.Draw();
    EXPECT_PIXEL(scene, 0.0f, 0.0f, Green);
}

TEST(StageDraw, AReloadedTextureIsSeenInTheNextFrame)
{
    TStageScene scene(Quad, "red.dds");
    scene.Emit({TParticle()});
    scene.Draw();
    EXPECT_PIXEL(scene, 0.0f, 0.0f, Red);
    const std::string folder = scene.Services.Folder;
    WriteBytes(folder + "/red.dds", ReadBytes(folder + "/green.dds"));
    scene.Draw();
    EXPECT_PIXEL(scene, 0.0f, 0.0f, Red);
    EXPECT_TRUE(TRenderTextureInstance::Reload((folder + "/red.dds").c_str()));
    scene.Draw();
    EXPECT_PIXEL(scene, 0.0f, 0.0f, Green);
    // One that does not load leaves what there is.
    WriteBytes(folder + "/red.dds", "no picture");
    EXPECT_FALSE(TRenderTextureInstance::Reload((folder + "/red.dds").c_str()));
    scene.Draw();
    EXPECT_PIXEL(scene, 0.0f, 0.0f, Green);
}

TEST(StageDraw, ATextureGoesWithItsLastStage)
{
    const int before = TRenderTextureInstance::GetNumCached();
    {
        TStageScene scene(Quad, "red.dds");
        scene.Add(Sprite, "red.dds");
        scene.Build();
        EXPECT_EQ(TRenderTextureInstance::GetNumCached(), before + 1);
    }
    EXPECT_EQ(TRenderTextureInstance::GetNumCached(), before);
}
