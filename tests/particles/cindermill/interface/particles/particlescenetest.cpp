#include "particles/cindermill/interface/particles/particlescene.h"

#include "support/gltest.h"
#include "support/sampledocument.h"

#include "library/wimp/gl/glcontext.h"
#include "library/wimp/gl/sceneview.h"
#include "particles/cindermill/graph/effectexecnode.h"
#include "particles/cindermill/interface/particles/displays.h"
#include "particles/cindermill/main/displayerrors.h"

#include <GL/glew.h>

namespace {

constexpr int CanvasSize = 400;
constexpr TPixel Background = {204, 204, 204, 255};
constexpr TPixel Grey = {128, 128, 128, 255};
constexpr TPixel Black = {0, 0, 0, 255};

// From straight above, the world's x from -2 to 2 to the right and z downwards; what is higher is nearer.
TSceneView FromAbove()
{
    TMatrix4 matrix;
    matrix[0][0] = 0.5f;
    matrix[1][1] = 0;
    matrix[1][2] = -0.1f;
    matrix[2][2] = 0;
    matrix[2][1] = -0.5f;
    TSceneView view;
    view.Set(matrix, TMatrix4());
    return view;
}

class ParticleScene : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(IsGlReady()) << GetGlFault(); }
    TPicture Draw(TDocument& document)
    {
        Canvas.MakeCurrent();
        glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, Canvas.GetFrameBuffer());
        glViewport(0, 0, CanvasSize, CanvasSize);
        Scene.Draw(document, FromAbove());
        return Canvas.Read();
    }
    // A pixel of a line near a place in the plane of the ground.
    static bool Has(const TPicture& picture, float x, float z, const TPixel& colour)
    {
        const int column = static_cast<int>((x + 2) / 4 * CanvasSize);
        const int row = static_cast<int>((z + 2) / 4 * CanvasSize);
        return picture.Count([&](const TPixel& p) { return IsClose(p, colour); }, column - 1, row - 1, 3, 3) >
               0;
    }

    TTestApp App;
    TTestWindow Canvas{CanvasSize, CanvasSize};
    TParticleScene Scene;
};

TEST_F(ParticleScene, WithoutAnEngineThereAreTheGroundGridAndTheBackground)
{
    TDocument document(App.Get());
    ASSERT_TRUE(document.New());
    const TPicture picture = Draw(document);
    EXPECT_TRUE(IsClose(picture.At(2, 2), Background));
    EXPECT_EQ(picture.At(2, 2).A, 255);
    for (int i = -4; i <= 4; ++i) {
        const float place = static_cast<float>(i) / 5;
        const TPixel& colour = i == 0 ? Black : Grey;
        EXPECT_TRUE(Has(picture, place, 0.9f, colour)) << i;
        EXPECT_TRUE(Has(picture, 0.9f, place, colour)) << i;
    }
    for (const float edge : {-1.0f, 1.0f}) {
        EXPECT_TRUE(Has(picture, edge, 0.3f, Black));
        EXPECT_TRUE(Has(picture, 0.3f, edge, Black));
    }
    EXPECT_FALSE(Has(picture, 1.1f, 0, Black));
    EXPECT_TRUE(IsClose(picture.At(CanvasSize / 2 + 10, CanvasSize / 2 + 10), Background));
}

TEST_F(ParticleScene, ParticlesAreDrawnAndTheGroundGridOverThem)
{
    TSampleDocument sample(App, "campfire");
    const TPicture before = Draw(*sample);
    sample.Run(1);
    const TPicture picture = Draw(*sample);
    int fire = 0;
    for (int y = 0; y < CanvasSize; ++y)
        for (int x = 0; x < CanvasSize; ++x)
            fire += picture.At(x, y).R - picture.At(x, y).B > 60 ? 1 : 0;
    EXPECT_GT(fire, 100);
    // The flames stand on the crossing of the black lines, and nothing writes depth that would hide these.
    EXPECT_TRUE(Has(before, 0, 0, Black));
    EXPECT_TRUE(Has(picture, 0, 0, Black));
}

TEST_F(ParticleScene, DisplaysOfTheNodesAreDrawn)
{
    RegisterDisplayClasses();
    TSampleDocument sample(App, "aura");
    const TPicture with = Draw(*sample);
    RegisterDisplayClasses();
    // A sphere over the ground, seen from above.
    EXPECT_GT(with.Count([](const TPixel& p) { return p.R > 150 && p.R < 200; }), 50);
}

TEST_F(ParticleScene, AFrameLeavesTheStatesAsTheyWere)
{
    TSampleDocument sample(App, "sparks");
    sample.Run(0.5f);
    Draw(*sample);
    GLboolean depthMask = GL_FALSE;
    glGetBooleanv(GL_DEPTH_WRITEMASK, &depthMask);
    EXPECT_TRUE(depthMask);
    for (const GLenum state : {GL_BLEND, GL_ALPHA_TEST, GL_DEPTH_TEST, GL_CULL_FACE, GL_POLYGON_OFFSET_FILL,
                               GL_VERTEX_PROGRAM_ARB, GL_FRAGMENT_PROGRAM_ARB})
        EXPECT_FALSE(glIsEnabled(state)) << state;
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(ParticleScene, ASecondFrameIsTheSameAsTheFirst)
{
    TSampleDocument sample(App, "tiles");
    sample.Run(1.5f);
    TPicture first = Draw(*sample);
    TPicture second = Draw(*sample);
    EXPECT_EQ(memcmp(first.GetBytes(), second.GetBytes(), CanvasSize * CanvasSize * 4), 0);
}

TEST_F(ParticleScene, AnOtherDocumentOfTheSameSceneIsDrawnToo)
{
    for (const char* name : {"fountain", "rain", "fountain"}) {
        TSampleDocument sample(App, name);
        sample.Run(1);
        EXPECT_GT(Draw(*sample).Count([](const TPixel& p) { return p.B - p.R > 20; }), 20) << name;
    }
}

// A stage that finds something wrong while it draws.
class TFailingStage : public TEffectExecNode
{
public:
    void Render(const TSceneView&) override
    {
        glEnable(GL_FRAGMENT_PROGRAM_ARB);
        ASSERT_TEXT(Buffer == nullptr, "drawing fails");
    }
};

std::vector<std::string>& ShownErrors()
{
    static std::vector<std::string> shown;
    return shown;
}

TEST_F(ParticleScene, AFailedAssertionWhileDrawingEmptiesThePreviewAndIsShown)
{
    RegisterExecNode<TFailingStage>("TFailingStage");
    ShownErrors().clear();
    SetDisplayErrors([](const char* title, const TErrorList& errors) {
        TString text;
        (*errors.begin())->GetText(text);
        ShownErrors().push_back(std::string(title) + "|" + Text(text));
    });
    TSampleDocument sample(App, "fountain");
    for (int i = 0; i < sample->GetGraph()->GetNumNodes(); ++i) {
        TNodeType* type = sample->GetGraph()->GetNode(i)->GetNodeType();
        if (type->Category == TU_RENDER)
            type->ClassName = "TFailingStage";
    }
    {
        const TQuiet quiet;
        sample->RebuildSchedule(true);
    }
    ASSERT_TRUE(sample->GetEngine().IsInited());
    const TPicture picture = Draw(*sample);
    // The window that is being painted is left in peace.
    EXPECT_TRUE(ShownErrors().empty());
    EXPECT_FALSE(sample->GetEngine().IsInited());
    Scene.Tick(*sample);
    EXPECT_EQ(ShownErrors(), std::vector<std::string>{"Schedule errors|drawing fails"});
    EXPECT_TRUE(Has(picture, 0.9f, 0, Black));
    EXPECT_FALSE(glIsEnabled(GL_FRAGMENT_PROGRAM_ARB));
    Draw(*sample);
    Scene.Tick(*sample);
    EXPECT_EQ(ShownErrors().size(), 1u);
    SetDisplayErrors(nullptr);
}

} // namespace
