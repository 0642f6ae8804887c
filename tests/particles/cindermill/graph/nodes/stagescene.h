#pragma once

#include "support/fakeservices.h"
#include "support/gltest.h"
#include "support/testgraph.h"

#include "library/containers/image/image.h"
#include "library/wimp/gl/device/rendertextureinstance.h"
#include "library/wimp/gl/device/sceneview.h"
#include "particles/cindermill/graph/nodes/nodes.h"
#include "particles/cindermill/graph/nodes/renderstage.h"
#include "particles/effectgraph/nodetype.h"

#include <GL/glew.h>

#include <algorithm>
#include <array>

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
class TPositioner : public TRegistered<TPositioner, TEffectExecNode>
{
public:
    static constexpr const char* RegisteredName = "TPositioner";
    static std::vector<TParticle>& Queue()
    {
        static std::vector<TParticle> queue;
        return queue;
    }
    static const char* GetClass()
    {
        static const int id = TPositioner::ClassId();
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
inline TSceneView FlatView()
{
    TSceneView view;
    view.Set(TMatrix4(), TMatrix4());
    return view;
}

// An eye far out on the z axis, which sees x and y from -1 to 1.
inline TSceneView FarView()
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
        TPositioner::Queue().clear();
        Trigger = Graph.Node("Trigger", TU_TRIGGER, {}, {"Trigger"});
        Graph.Class(Trigger, "TEffectExecNode");
        Positioner = Graph.Node("Positioner", TU_EMITTER, {"Emission Trigger"},
                                {{"Transform", TY_TRANSFORM},
                                 {"Position", TY_VECTOR3},
                                 {"Velocity", TY_VECTOR3},
                                 {"Scale", TY_SCALE},
                                 {"Blend", TY_SCALAR},
                                 {"Colour", TY_COLOUR},
                                 {"UVs", TY_TEXCOORDS}});
        Graph.Class(Positioner, TPositioner::GetClass());
        Graph.Int(Positioner, "Particle Count", capacity);
        Graph.Wire(Trigger, 0, Positioner, 0);
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
                Graph.Wire(Positioner, name.c_str(), node, name.c_str());
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
        TPositioner::Queue() = particles;
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
    TEffectNode* Positioner = nullptr;
    std::vector<TEffectNode*> Nodes;
    TEffectSchedule Schedule;
    TEffectExec Exec;
    TTestWindow Canvas{CanvasSize, CanvasSize};
    int Group = -1;
};

#define EXPECT_PIXEL(scene, x, y, pixel)                                                                     \
    EXPECT_PRED2([](const TPixel& a, const TPixel& b) { return IsClose(a, b); }, (scene).At(x, y), pixel)

// Where a trail of length 1 and half width 0.5 fills the square that the others fill.
inline TParticle Square(const TStageCase& stage)
{
    TParticle particle;
    if (stage.IsTrail) {
        particle.Position = {0, 0.5f, 0};
        particle.Scale = {0.5f, 1};
    }
    return particle;
}

// Three in a row: left, middle, right.
inline std::vector<TParticle> Row()
{
    std::vector<TParticle> particles(3);
    for (size_t i = 0; i < 3; ++i) {
        particles[i].Position = {-0.5f + 0.5f * static_cast<float>(i), 0, 0};
        particles[i].Scale = {0.2f, 0.2f};
    }
    return particles;
}
