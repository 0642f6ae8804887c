#include "support/fakeservices.h"
#include "support/gltest.h"
#include "support/testgraph.h"

#include "library/containers/image/image.h"
#include "library/wimp/gl/device/rendertexture.h"
#include "library/wimp/gl/device/sceneview.h"
#include "particles/cindermill/graph/nodes/nodes.h"
#include "particles/cindermill/graph/nodes/renderstage.h"
#include "particles/effectgraph/nodetype.h"
#include "shaders/stageshaders.h"

#include <GL/glew.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <map>

namespace {

constexpr TPixel Black = {0, 0, 0, 255};
constexpr TPixel White = {255, 255, 255, 255};
constexpr TPixel Red = {255, 0, 0, 255};
constexpr TPixel Green = {0, 255, 0, 255};
constexpr TPixel Blue = {0, 0, 255, 255};
constexpr TPixel Yellow = {255, 255, 0, 255};

// Pictures in a folder: "red.dds" and the like in one colour, and "four.dds", whose quarters are red (top
// left), green (top right), blue (bottom left) and yellow.
class TPictures : public TFakeServices
{
public:
    TPictures()
    {
        Folder = Files.GetFolder();
        Save("red.dds", Red, Red, Red, Red);
        Save("green.dds", Green, Green, Green, Green);
        Save("white.dds", White, White, White, White);
        Save("four.dds", Red, Green, Blue, Yellow);
    }
    bool LoadTexture(const char* path, TRenderTextureInstance& texture) override
    {
        TRenderTextureInstance loaded;
        if (!loaded.Load(path))
            return false;
        texture = loaded;
        return true;
    }

private:
    void Save(const char* name, TPixel topLeft, TPixel topRight, TPixel bottomLeft, TPixel bottomRight)
    {
        constexpr int size = 32;
        TImage image;
        image.Create(size, size);
        for (int y = 0; y < size; ++y) {
            for (int x = 0; x < size; ++x) {
                const TPixel& left = y < size / 2 ? bottomLeft : topLeft;
                const TPixel& right = y < size / 2 ? bottomRight : topRight;
                const TPixel& pixel = x < size / 2 ? left : right;
                uint8_t* bytes = image.GetPixel(x, y);
                bytes[0] = static_cast<uint8_t>(pixel.R);
                bytes[1] = static_cast<uint8_t>(pixel.G);
                bytes[2] = static_cast<uint8_t>(pixel.B);
                bytes[3] = 255;
            }
        }
        if (!image.Save(Files.Path(name).c_str(), IF_DDS_RAW))
            throw std::runtime_error("no picture");
    }

    TTempFolder Files;
};

// A particle as the stages see it.
struct TParticle
{
    std::array<float, 3> Position = {0, 0, 0};
    std::array<float, 3> Rotation = {0, 0, 0};
    std::array<float, 3> Velocity = {0, 1, 0};
    std::array<float, 2> Scale = {0.5f, 0.5f};
    float Blend = 0;
    std::array<float, 4> Colour = {1, 1, 1, 1};
    std::array<float, 4> UVs = {0, 0, 1, 1};
};

// Gives each new particle the next values of a list, by the names of its outputs.
class TPlacer : public TRegistered<TPlacer, TEffectExecNode>
{
public:
    static constexpr const char* RegisteredName = "TPlacer";
    static std::vector<TParticle>& Queue()
    {
        static std::vector<TParticle> queue;
        return queue;
    }
    static const char* GetClass()
    {
        static const int id = TPlacer::ClassId();
        return GetClassName(id);
    }

    void Execute(int index, float) override
    {
        const TParticle particle = Queue().front();
        Queue().erase(Queue().begin());
        for (int o = 0; o < GetNodeType()->GetNumOutputs(); ++o)
            WriteOutput(o, index, ValueOf(Text(GetNodeType()->Outputs[o].Name), particle));
    }

private:
    static TPortValue ValueOf(const std::string& name, const TParticle& p)
    {
        if (name == "Transform")
            return TPortValue(p.Position[0], p.Position[1], p.Position[2], p.Rotation[0], p.Rotation[1],
                              p.Rotation[2]);
        if (name == "Position")
            return TPortValue(p.Position[0], p.Position[1], p.Position[2]);
        if (name == "Velocity")
            return TPortValue(p.Velocity[0], p.Velocity[1], p.Velocity[2]);
        if (name == "Scale")
            return TPortValue(p.Scale[0], p.Scale[1]);
        if (name == "Blend")
            return TPortValue(p.Blend);
        if (name == "Colour")
            return TPortValue(p.Colour[0], p.Colour[1], p.Colour[2], p.Colour[3]);
        if (name == "UVs")
            return TPortValue(p.UVs[0], p.UVs[1], p.UVs[2], p.UVs[3]);
        throw std::runtime_error("no value for " + name);
    }
};

struct TStageCase
{
    // Of the repository's node types, or a path.
    std::string File;
    const char* ClassName;
    bool IsBlended;
    bool IsTrail;
    bool IsSprite;
};

const TStageCase Quad = {"QuadRenderStage", "TQuadRenderStage", false, false, false};
const TStageCase BlendedQuad = {"BlendedQuadRenderStage", "TBlendedQuadRenderStage", true, false, false};
const TStageCase Sprite = {"SpriteRenderStage", "TSpriteRenderStage", false, false, true};
const TStageCase BlendedSprite = {"BlendedSpriteRenderStage", "TBlendedSpriteRenderStage", true, false, true};
const TStageCase Trail = {"VelocityTrailRenderStage", "TVelocityTrailRenderStage", false, true, false};
const TStageCase Stages[] = {Quad, BlendedQuad, Sprite, BlendedSprite, Trail};

constexpr int CanvasSize = 64;

// Clip space is the world's x and y.
TSceneView FlatView()
{
    TSceneView view;
    view.Set(TMatrix4(), TMatrix4());
    return view;
}

// An eye far out on the z axis, which sees x and y from -1 to 1.
TSceneView FarView()
{
    TMatrix4 worldView;
    worldView[3][2] = -1000;
    TMatrix4 projection;
    projection[0][0] = projection[1][1] = 1000;
    projection[2][2] = 0;
    projection[2][3] = -1;
    projection[3][3] = 0;
    TSceneView view;
    view.Set(worldView, projection);
    return view;
}

// An effect with one emitter whose particles the stages draw, all inputs wired but those named.
class TStageScene
{
public:
    explicit TStageScene(const TStageCase& stage, const char* texture = "white.dds",
                         const std::vector<std::string>& unwired = {}, int capacity = 8)
        : Exec(Services)
    {
        RegisterExecNodes();
        TPlacer::Queue().clear();
        Trigger = Graph.Node("Trigger", TU_TRIGGER, {}, {"Trigger"});
        Graph.Class(Trigger, "TEffectExecNode");
        Placer = Graph.Node("Placer", TU_EMITTER, {"Emission Trigger"},
                            {{"Transform", TY_TRANSFORM},
                             {"Position", TY_VECTOR3},
                             {"Velocity", TY_VECTOR3},
                             {"Scale", TY_SCALE},
                             {"Blend", TY_SCALAR},
                             {"Colour", TY_COLOUR},
                             {"UVs", TY_TEXCOORDS}});
        Graph.Class(Placer, TPlacer::GetClass());
        Graph.Int(Placer, "Particle Count", capacity);
        Graph.Wire(Trigger, 0, Placer, 0);
        Add(stage, texture, unwired);
        Clear();
    }

    TEffectNode* Add(const TStageCase& stage, const char* texture = "white.dds",
                     const std::vector<std::string>& unwired = {})
    {
        auto type = std::make_unique<TNodeType>();
        TErrorList errors;
        std::string path = stage.File;
        if (path.find('/') == std::string::npos)
            path = SourcePath("NodeTypes/Render Stages/" + stage.File + ".xml");
        if (!type->LoadXml(path.c_str(), errors))
            throw std::runtime_error(TextsOf(errors).at(0));
        TEffectNode* node = Graph.AddNode(std::move(type));
        for (int i = 0; i < node->GetNodeType()->GetNumInputs(); ++i) {
            const std::string name = Text(node->GetNodeType()->GetInput(i)->Name);
            if (std::find(unwired.begin(), unwired.end(), name) == unwired.end())
                Graph.Wire(Placer, name.c_str(), node, name.c_str());
        }
        SetTexture(node, stage.IsBlended ? "Base Texture" : "Texture", texture);
        if (stage.IsBlended)
            SetTexture(node, "Blend Texture", texture);
        Nodes.push_back(node);
        return node;
    }
    void SetTexture(TEffectNode* node, const char* parameter, const char* file)
    {
        node->GetNodeType()->FindParameterOf<TNodeTextureParameter>(parameter, PK_TEXTURE)->SetValue(file);
    }
    void Switch(const char* group, bool on, size_t node = 0)
    {
        Nodes[node]->GetNodeType()->FindParameterOf<TNodeGroupParameter>(group, PK_GROUP)->SetValue(on);
    }
    void Choose(const char* path, int index, size_t node = 0)
    {
        Nodes[node]->GetNodeType()->FindParameterOf<TNodeEnumParameter>(path, PK_ENUM)->SetValue(index);
    }
    void SetScalar(const char* path, float value, size_t node = 0)
    {
        Nodes[node]->GetNodeType()->FindParameterOf<TNodeValueParameter>(path, TY_SCALAR)->SetValue(&value);
    }

    void Clear()
    {
        Canvas.MakeCurrent();
        glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, Canvas.GetFrameBuffer());
        glClearColor(0, 0, 0, 1);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    }
    // A place in clip space.
    TPixel At(float x, float y)
    {
        return Canvas.Read().At(static_cast<int>((x + 1) / 2 * CanvasSize),
                                static_cast<int>((1 - y) / 2 * CanvasSize));
    }
    int CountDrawn()
    {
        return Canvas.Read().Count([](const TPixel& pixel) { return !IsClose(pixel, Black); });
    }
    void Build()
    {
        TErrorList errors;
        LogOf([&] { Schedule.Create(Graph.GetGraph(), errors); });
        if (!Exec.Init(Schedule, errors, true) || !errors.empty())
            throw std::runtime_error(errors.empty() ? "no engine" : TextsOf(errors)[0]);
        for (int g = 0; g < Schedule.GetNumGroups(); ++g)
            if (!Schedule.IsTriggerGroup(g))
                Group = g;
    }
    void Emit(const std::vector<TParticle>& particles)
    {
        if (!Exec.IsInited())
            Build();
        TPlacer::Queue() = particles;
        Exec.AddParticles(Group, 0, static_cast<int>(particles.size()));
    }
    void Draw(const TSceneView& view = FlatView())
    {
        Canvas.MakeCurrent();
        glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, Canvas.GetFrameBuffer());
        glViewport(0, 0, CanvasSize, CanvasSize);
        Exec.Render(view);
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    }
    TRenderStage& Stage(size_t node = 0)
    {
        for (int i = 0; i < Schedule.GetNumNodes(); ++i)
            if (Schedule.GetNode(i) == Nodes[node])
                return *static_cast<TRenderStage*>(Exec.GetExecNode(i));
        throw std::runtime_error("no stage");
    }

    TPictures Services;
    TTestGraph Graph;
    TEffectNode* Trigger = nullptr;
    TEffectNode* Placer = nullptr;
    std::vector<TEffectNode*> Nodes;
    TEffectSchedule Schedule;
    TEffectExec Exec;
    TTestWindow Canvas{CanvasSize, CanvasSize};
    int Group = -1;
};

#define EXPECT_PIXEL(scene, x, y, pixel)                                                                     \
    EXPECT_PRED2([](const TPixel& a, const TPixel& b) { return IsClose(a, b); }, (scene).At(x, y), pixel)

// Where a trail of length 1 and half width 0.5 fills the square that the others fill.
TParticle Square(const TStageCase& stage)
{
    TParticle particle;
    if (stage.IsTrail) {
        particle.Position = {0, 0.5f, 0};
        particle.Scale = {0.5f, 1};
    }
    return particle;
}

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

// Three in a row: left, middle, right.
std::vector<TParticle> Row()
{
    std::vector<TParticle> particles(3);
    for (size_t i = 0; i < 3; ++i) {
        particles[i].Position = {-0.5f + 0.5f * static_cast<float>(i), 0, 0};
        particles[i].Scale = {0.2f, 0.2f};
    }
    return particles;
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
    scene.Graph.Wire(scene.Placer, "Transform", trail, "Position");
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

int GetInteger(GLenum name)
{
    GLint value = 0;
    glGetIntegerv(name, &value);
    return value;
}

TEST(StageDraw, BlendFunctionsAndEquationsAreThoseOfTheTables)
{
    const int functions[] = {GL_ZERO,
                             GL_ONE,
                             GL_SRC_COLOR,
                             GL_ONE_MINUS_SRC_COLOR,
                             GL_SRC_ALPHA,
                             GL_ONE_MINUS_SRC_ALPHA,
                             GL_DST_ALPHA,
                             GL_ONE_MINUS_DST_ALPHA,
                             GL_DST_COLOR,
                             GL_ONE_MINUS_DST_COLOR,
                             GL_SRC_ALPHA_SATURATE,
                             GL_CONSTANT_COLOR,
                             GL_ONE_MINUS_CONSTANT_COLOR,
                             GL_CONSTANT_ALPHA,
                             GL_ONE_MINUS_CONSTANT_ALPHA};
    const int equations[] = {GL_FUNC_ADD, GL_MIN, GL_MAX, GL_FUNC_SUBTRACT, GL_FUNC_REVERSE_SUBTRACT};
    TStageScene scene(Quad);
    scene.Build();
    for (int i = 0; i < 15; ++i) {
        scene.Choose("Alpha Blend.Source Function", i);
        scene.Choose("Alpha Blend.Dest Function", 14 - i);
        scene.Choose("Alpha Blend.Blend Equation", i % 5);
        scene.Draw();
        EXPECT_EQ(GetInteger(GL_BLEND_SRC), functions[i]);
        EXPECT_EQ(GetInteger(GL_BLEND_DST), functions[14 - i]);
        EXPECT_EQ(GetInteger(GL_BLEND_EQUATION), equations[i % 5]);
    }
    EXPECT_FALSE(glIsEnabled(GL_BLEND));
}

TEST(StageDraw, TestsCullingAndOffsetAreSet)
{
    TStageScene scene(Quad);
    for (const char* group : {"Alpha Blend", "Alpha Test", "Depth Test", "Cull Face", "Polygon Offset"})
        scene.Switch(group, true);
    scene.SetScalar("Polygon Offset.Factor", 2);
    scene.SetScalar("Polygon Offset.Units", 3);
    scene.Build();
    for (int i = 0; i < 8; ++i) {
        scene.Choose("Alpha Test.Function", i);
        scene.Choose("Depth Test.Function", 7 - i);
        scene.Choose("Cull Face.Mode", i % 2);
        scene.Draw();
        EXPECT_EQ(GetInteger(GL_ALPHA_TEST_FUNC), GL_NEVER + i);
        EXPECT_EQ(GetInteger(GL_DEPTH_FUNC), GL_NEVER + 7 - i);
        EXPECT_EQ(GetInteger(GL_CULL_FACE_MODE), i % 2 == 0 ? GL_FRONT : GL_BACK);
    }
    EXPECT_EQ(GetInteger(GL_POLYGON_OFFSET_FACTOR), 2);
    EXPECT_EQ(GetInteger(GL_POLYGON_OFFSET_UNITS), 3);
    for (const GLenum state : {GL_BLEND, GL_ALPHA_TEST, GL_DEPTH_TEST, GL_CULL_FACE, GL_POLYGON_OFFSET_FILL})
        EXPECT_FALSE(glIsEnabled(state));
}

TEST(StageDraw, StatesActOnWhatIsDrawn)
{
    TStageScene scene(Quad);
    TParticle particle;
    particle.Colour = {1, 1, 1, 0.5f};
    scene.Emit({particle});
    scene.Draw();
    EXPECT_PIXEL(scene, 0.0f, 0.0f, (TPixel{128, 128, 128, 255}));
    scene.Clear();
    scene.Switch("Alpha Blend", false);
    scene.Draw();
    EXPECT_PIXEL(scene, 0.0f, 0.0f, White);
    scene.Clear();
    scene.Switch("Alpha Test", true);
    scene.Choose("Alpha Test.Function", 4);
    scene.SetScalar("Alpha Test.Ref Value", 0.75f);
    scene.Draw();
    EXPECT_PIXEL(scene, 0.0f, 0.0f, Black);
    scene.Switch("Alpha Test", false);
    // A quad that faces the eye has its corners counter-clockwise.
    scene.Switch("Cull Face", true);
    scene.Choose("Cull Face.Mode", 0);
    scene.Draw();
    EXPECT_PIXEL(scene, 0.0f, 0.0f, Black);
    scene.Choose("Cull Face.Mode", 1);
    scene.Draw();
    EXPECT_PIXEL(scene, 0.0f, 0.0f, White);
}

TEST(StageDraw, StatesThatAreOffAreLeftAsTheyAre)
{
    TStageScene scene(Quad);
    scene.Switch("Alpha Blend", false);
    scene.Switch("Depth Test", false);
    scene.Emit({TParticle()});
    glEnable(GL_BLEND);
    glBlendFunc(GL_ZERO, GL_ONE);
    scene.Draw();
    EXPECT_TRUE(glIsEnabled(GL_BLEND));
    EXPECT_EQ(GetInteger(GL_BLEND_SRC), GL_ZERO);
    EXPECT_PIXEL(scene, 0.0f, 0.0f, Black);
    glDisable(GL_BLEND);
}

TEST(StageDraw, AValuePastItsTableIsKeptFromTheDriver)
{
    TStageScene scene(Quad);
    scene.Emit({TParticle()});
    scene.Draw();
    // The type's own file, with entries that it should not have.
    const TTempFolder folder;
    std::string xml = ReadBytes(SourcePath("NodeTypes/Render Stages/QuadRenderStage.xml"));
    for (const auto& [old, wrong] : std::map<std::string, std::string>{
             {"<value>Add=0</value>", "<value>Add=5</value>"},
             {"<value>Source Alpha=4</value>", "<value>Source Alpha=15</value>"}})
        xml.replace(xml.find(old), old.size(), wrong);
    WriteBytes(folder.Path("stage.xml"), xml);
    TStageScene wrong({folder.Path("stage.xml"), "TQuadRenderStage", false, false, false});
    wrong.Emit({TParticle()});
    // Draw looks for an error that was left behind.
    EXPECT_EQ(AssertionOf([&] { wrong.Draw(); }), "");
    EXPECT_PIXEL(wrong, 0.0f, 0.0f, White);
    EXPECT_EQ(GetInteger(GL_BLEND_EQUATION), GL_FUNC_ADD);
    EXPECT_EQ(GetInteger(GL_BLEND_SRC), GL_ONE);
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

} // namespace
