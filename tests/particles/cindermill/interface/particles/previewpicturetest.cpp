#include "support/gltest.h"
#include "support/testapp.h"

#include "library/containers/image/image.h"
#include "library/wimp/gl/device/sceneview.h"
#include "library/wimp/gl/glcontext.h"
#include "particles/cindermill/graph/operations/addgraphedgeop.h"
#include "particles/cindermill/graph/operations/addgraphnodeop.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/interface/particles/camera.h"
#include "particles/cindermill/interface/particles/particlescene.h"
#include "particles/cindermill/interface/particles/previewclock.h"
#include "particles/cindermill/main/document.h"
#include "particles/effectgraph/nodetype.h"
#include "particles/effectgraph/simpleparameters.h"
#include "particles/effectgraph/valueparameters.h"

#include <GL/glew.h>

namespace {

constexpr int CanvasWidth = 640;
constexpr int CanvasHeight = 480;
constexpr TPixel Red = {255, 0, 0, 255};
constexpr TPixel Green = {0, 255, 0, 255};
constexpr TPixel Blue = {0, 0, 255, 255};
constexpr TPixel Yellow = {255, 255, 0, 255};
constexpr TPixel Background = {204, 204, 204, 255};
// Half the width of a sprite, in world units.
constexpr float SpriteSize = 0.2f;

TPixel Mix(const TPixel& a, const TPixel& b)
{
    return TPixel{(a.R + b.R) / 2, (a.G + b.G) / 2, (a.B + b.B) / 2, 255};
}

// The picture has quarters in red (top left), green (top right), blue (bottom left) and yellow.
void SaveQuarters(const std::string& path)
{
    constexpr int size = 32;
    TImage image;
    image.Create(size, size);
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            const bool top = y >= size / 2;
            const bool left = x < size / 2;
            const TPixel& pixel = top ? (left ? Red : Green) : (left ? Blue : Yellow);
            uint8_t* bytes = image.GetPixel(x, y);
            bytes[0] = static_cast<uint8_t>(pixel.R);
            bytes[1] = static_cast<uint8_t>(pixel.G);
            bytes[2] = static_cast<uint8_t>(pixel.B);
            bytes[3] = 255;
        }
    }
    if (!image.Save(path.c_str(), IF_DDS_RAW))
        throw std::runtime_error("no picture");
}

// One particle a second that flies straight ahead from a place above the ground, run by the preview's clock.
class PreviewPicture : public testing::Test
{
protected:
    PreviewPicture() : Document(App.Get())
    {
        SaveQuarters(App.Path("resources/quarters.dds"));
        Document.New();
        TToolNode* emitter = Add("Emitter");
        TToolNode* points = Add("Point Emitter");
        Cone = Add("Velocity Cone");
        TToolNode* integrate = Add("Integrate");
        Stage = Add("Sprite Render Stage");
        Connect(emitter, "Count", points, "Emission Trigger");
        Connect(points, "Start Transform", integrate, "Position");
        Connect(Cone, "Velocity", integrate, "Velocity");
        Connect(integrate, "Position", Stage, "Transform");
        SetInput(emitter, "Rate", {1});
        SetInput(points, "Transform", {Start[0], Start[1], Start[2], 0, 0, 0});
        SetInput(Cone, "Cone Cosine", {1});
        SetInput(Cone, "Minimum Speed", {1});
        SetInput(Cone, "Maximum Speed", {1});
        SetInput(Stage, "Scale", {SpriteSize, SpriteSize});
        Stage->GetNodeType()
            ->FindParameterOf<TNodeTextureParameter>("Texture", PK_TEXTURE)
            ->SetValue("quarters.dds");
    }
    void SetUp() override { ASSERT_TRUE(IsGlReady()) << GetGlFault(); }

    TToolNode* Add(const char* type)
    {
        TAddGraphNodeOp* op = new TAddGraphNodeOp(Document, App.Type(type), 0, 0);
        TToolNode* node = op->GetNode();
        Document.ApplyOperation(op);
        return node;
    }
    void Connect(TToolNode* source, const char* output, TToolNode* destination, const char* input)
    {
        Document.ApplyOperation(new TAddGraphEdgeOp(Document, source,
                                                    source->GetNodeType()->FindOutput(output), destination,
                                                    destination->GetNodeType()->FindInput(input)));
    }
    static void SetInput(TToolNode* node, const char* name, const std::vector<float>& value)
    {
        TNodeType* type = node->GetNodeType();
        static_cast<TNodeValueParameter*>(type->GetInput(type->FindInput(name)))->SetValue(value.data());
    }
    void Fly(const TVector3& velocity)
    {
        SetInput(Cone, "Direction", {velocity[0], velocity[1], velocity[2]});
        Clock.Start(Document, 0);
        Clock.Update();
    }
    void Steps(int count)
    {
        for (int i = 0; i < count; ++i)
            ASSERT_TRUE(Clock.Step());
    }
    TPicture Draw(const TCamera& camera)
    {
        Canvas.MakeCurrent();
        glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, Canvas.GetFrameBuffer());
        glViewport(0, 0, CanvasWidth, CanvasHeight);
        TMatrix4 projection;
        camera.GetView(View);
        TCamera::GetProjection(float(CanvasWidth) / CanvasHeight, projection);
        TSceneView view;
        view.Set(View, projection);
        Scene.Draw(Document, view);
        return Canvas.Read();
    }
    // The pixel of a place that lies off a particle to the right and upwards, as the eye sees it.
    TPixel At(const TPicture& picture, const TVector3& particle, float right, float up) const
    {
        TVector3 eye;
        for (int i = 0; i < 3; ++i)
            eye[i] =
                particle[0] * View[0][i] + particle[1] * View[1][i] + particle[2] * View[2][i] + View[3][i];
        const float perUnit = CanvasHeight / 2 / std::tan(TCamera::FieldOfView / 2) / -eye[2];
        return picture.At(static_cast<int>(CanvasWidth / 2 + (eye[0] + right) * perUnit),
                          static_cast<int>(CanvasHeight / 2 - (eye[1] + up) * perUnit));
    }
    // A picture of the texture stands upright at the place, with its full size and nothing around it.
    void ExpectSprite(const TPicture& picture, const TVector3& place) const
    {
        constexpr float inside = SpriteSize * 0.9f;
        constexpr float outside = SpriteSize * 1.15f;
        for (const float part : {0.1f, 0.5f, 0.9f}) {
            const float off = SpriteSize * part;
            EXPECT_PRED2(Close, At(picture, place, -off, inside), Red);
            EXPECT_PRED2(Close, At(picture, place, off, inside), Green);
            EXPECT_PRED2(Close, At(picture, place, -inside, -off), Blue);
            EXPECT_PRED2(Close, At(picture, place, inside, -off), Yellow);
            EXPECT_PRED2(Close, At(picture, place, off, outside), Background);
            EXPECT_PRED2(Close, At(picture, place, -off, outside), Background);
            EXPECT_PRED2(Close, At(picture, place, outside, off), Background);
            EXPECT_PRED2(Close, At(picture, place, -outside, off), Background);
        }
    }
    static bool Close(const TPixel& a, const TPixel& b) { return IsClose(a, b, 3); }

    // High enough for the ground grid to lie below.
    const TVector3 Start = TVector3(0, 1.1f, 0);
    TTestApp App;
    TDocument Document;
    TToolNode* Cone = nullptr;
    TToolNode* Stage = nullptr;
    TPreviewClock Clock;
    TParticleScene Scene;
    TTestWindow Canvas{CanvasWidth, CanvasHeight};
    TMatrix4 View;
};

// Another view than the first: nearer, from the other side and from above.
template <class TKindOfCamera>
void MoveAbout(TKindOfCamera& camera)
{
    TCameraInput input;
    input.Height = CanvasHeight;
    camera.OnButtons(MB_LEFT);
    input.Moved = TVector3(60, 20, 0);
    camera.Update(input);
    camera.OnButtons(0);
    camera.OnWheel(120);
    camera.Update(input);
}

TEST_F(PreviewPicture, AfterEachNumberOfStepsTheParticleStandsWhereItHasFlown)
{
    const TVector3 velocity(0.6f, 0.0f, 0.8f);
    Fly(velocity);
    TMayaCamera maya;
    TQuakeCamera quake;
    int done = 0;
    for (const int steps : {1, 2, 3, 10, 50}) {
        SCOPED_TRACE(steps);
        Steps(steps - done);
        done = steps;
        EXPECT_NEAR(Clock.GetTime(), steps * 0.01, 1e-5);
        const TVector3 place = Start + velocity * (static_cast<float>(steps) * 0.01f);
        ExpectSprite(Draw(maya), place);
        ExpectSprite(Draw(quake), place);
    }
}

TEST_F(PreviewPicture, SpritesFaceBothCamerasFromWhereverTheyLook)
{
    Fly(TVector3(0, 0, 1));
    Steps(5);
    const TVector3 place = Start + TVector3(0, 0, 0.05f);
    TMayaCamera maya;
    MoveAbout(maya);
    ExpectSprite(Draw(maya), place);
    TQuakeCamera quake;
    MoveAbout(quake);
    ExpectSprite(Draw(quake), place);
}

TEST_F(PreviewPicture, TheNewestParticleIsOnTopWhetherItIsNearerOrFarther)
{
    TMayaCamera camera;
    SetInput(Stage, "Colour", {1, 1, 1, 0.5f});
    for (const float depth : {-1.0f, 1.0f}) {
        // The older one has moved to the right by half its size, and towards the eye or away from it.
        TMatrix4 view;
        camera.GetView(view);
        const TVector3 right(view[0][0], view[1][0], view[2][0]);
        const TVector3 back(view[0][2], view[1][2], view[2][2]);
        const TVector3 velocity = right * SpriteSize + back * (0.05f * depth);
        Fly(velocity);
        Steps(102);
        ASSERT_EQ(Document.GetEngine().GetNumParticles(1), 2);
        const TVector3 older = Start + velocity * 1.02f;
        const TVector3 newer = Start + velocity * 0.01f;
        const TPicture picture = Draw(camera);
        const float inside = SpriteSize * 0.5f;
        // Where only one is; then the left half of the older one below the right half of the newer.
        EXPECT_PRED2(Close, At(picture, newer, -inside, inside), Mix(Red, Background)) << depth;
        EXPECT_PRED2(Close, At(picture, older, inside, inside), Mix(Green, Background)) << depth;
        EXPECT_PRED2(Close, At(picture, newer, inside, inside), Mix(Green, Mix(Red, Background))) << depth;
        EXPECT_PRED2(Close, At(picture, newer, inside, -inside), Mix(Yellow, Mix(Blue, Background))) << depth;
    }
}

TEST_F(PreviewPicture, ADepthTestThatNeverPassesHidesTheParticlesOnly)
{
    TNodeType* type = Stage->GetNodeType();
    Fly(TVector3(1, 0, 0));
    Steps(1);
    TMayaCamera camera;
    const TVector3 place = Start + TVector3(0.01f, 0, 0);
    ExpectSprite(Draw(camera), place);
    constexpr int Never = 0;
    type->FindParameterOf<TNodeEnumParameter>("Depth Test.Function", PK_ENUM)->SetValue(Never);
    const TPicture picture = Draw(camera);
    EXPECT_PRED2(Close, At(picture, place, SpriteSize * 0.5f, SpriteSize * 0.5f), Background);
    EXPECT_GT(picture.Count([](const TPixel& p) { return IsClose(p, TPixel{0, 0, 0, 255}); }), 100);
}

} // namespace
