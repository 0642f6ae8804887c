#include "particles/cindermill/interface/particles/particlescene.h"

#include "support/fakehost.h"
#include "support/gltest.h"
#include "support/sampledocument.h"

#include "library/wimp/gl/device/sceneview.h"
#include "library/wimp/gl/glcontext.h"
#include "particles/cindermill/graph/engine/effectexecnode.h"
#include "particles/cindermill/interface/particles/displays.h"
#include "particles/cindermill/main/displayerrors.h"
#include "particles/cindermill/main/resourcehost.h"
#include "particles/effectgraph/simpleparameters.h"

#include <GL/glew.h>

#include <functional>

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
class TFailingStage : public TRegistered<TFailingStage, TEffectExecNode>
{
public:
    static constexpr const char* RegisteredName = "TFailingStage";
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

void TakeErrors()
{
    ShownErrors().clear();
    SetDisplayErrors([](const char* title, const TErrorList& errors) {
        TString text;
        (*errors.begin())->GetText(text);
        ShownErrors().push_back(std::string(title) + "|" + Text(text));
    });
}

void LetStagesFail(TDocument& document)
{
    static const int id = TFailingStage::ClassId();
    ASSERT_NE(id, -1);
    for (int i = 0; i < document.GetGraph()->GetNumNodes(); ++i) {
        TNodeType* type = document.GetGraph()->GetNode(i)->GetNodeType();
        if (type->Category == TU_RENDER)
            type->ClassName = "TFailingStage";
    }
    const TQuiet quiet;
    document.RebuildSchedule(true);
    ASSERT_TRUE(document.GetEngine().IsInited());
}

TEST_F(ParticleScene, AFailedAssertionWhileDrawingEmptiesThePreviewAndIsShown)
{
    TakeErrors();
    TFakeHost host;
    TSampleDocument sample(App, "fountain", &host);
    LetStagesFail(*sample);
    const int gone = host.GoneEngines;
    const TPicture picture = Draw(*sample);
    // Whoever holds on to the engine's nodes was told in time.
    EXPECT_EQ(host.GoneEngines, gone + 1);
    EXPECT_FALSE(host.HasSeenEngine);
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

// Does something while a file is asked for, and then gives none.
class TAskedHost : public TResourceHost
{
public:
    explicit TAskedHost(TTestApp& app) : Locator(app.Get().GetResourceLocator())
    {
        app.Get().GetSettings().SetResourceMode(RM_FULLPATH);
        Locator.Init(app.Path("program").c_str(), false);
        Locator.SetHost(this);
    }
    ~TAskedHost() override { Locator.SetHost(nullptr); }
    TAskedHost(const TAskedHost&) = delete;
    TAskedHost& operator=(const TAskedHost&) = delete;

    void BeginSearch() override {}
    void EndSearch() override {}
    void ShowSearch(const char*) override {}
    void ListDirectories(const vector<TString>&) override {}
    TSearchAnswer Step() override { return SA_STOP; }
    bool ChooseResource(const char*, const vector<TPathFilter>&, TString&) override
    {
        ++Asked;
        Work();
        return false;
    }

    std::function<void()> Work;
    int Asked = 0;

private:
    TResourceLocator& Locator;
};

TEST_F(ParticleScene, ParticlesStayInSightWhileAFileIsAskedFor)
{
    TSampleDocument waiting(App, "fountain");
    TSampleDocument other(App, "campfire");
    waiting.Run(1);
    other.Run(1);
    TPicture before[2] = {Draw(*waiting), Draw(*other)};
    const auto expectSame = [&] {
        TPicture now[2] = {Draw(*waiting), Draw(*other)};
        for (int i = 0; i < 2; ++i)
            EXPECT_EQ(memcmp(now[i].GetBytes(), before[i].GetBytes(), CanvasSize * CanvasSize * 4), 0) << i;
    };
    expectSame();
    TAskedHost host(App);
    host.Work = expectSame;
    for (int i = 0; i < waiting->GetGraph()->GetNumNodes(); ++i) {
        auto* texture =
            waiting->GetGraph()->GetNode(i)->GetNodeType()->FindParameterOf<TNodeTextureParameter>(
                "Texture", PK_TEXTURE);
        if (texture != nullptr)
            texture->SetValue("nowhere.dds");
    }
    EXPECT_EQ(host.Asked, 1);
    EXPECT_TRUE(waiting->GetEngine().IsInited());
}

TEST_F(ParticleScene, NoEngineIsThrownAwayWhileAFileIsAskedFor)
{
    TakeErrors();
    TSampleDocument sample(App, "fountain");
    LetStagesFail(*sample);
    TAskedHost host(App);
    host.Work = [&] {
        const TPicture picture = Draw(*sample);
        EXPECT_TRUE(Has(picture, 0.9f, 0, Black));
        EXPECT_TRUE(sample->GetEngine().IsInited());
    };
    TString path;
    EXPECT_EQ(App.Get().GetResourceLocator().Find("nowhere.dds", path), FR_NOTFOUND);
    EXPECT_EQ(host.Asked, 1);
    Scene.Tick(*sample);
    EXPECT_TRUE(ShownErrors().empty());
    Draw(*sample);
    EXPECT_FALSE(sample->GetEngine().IsInited());
    Scene.Tick(*sample);
    EXPECT_EQ(ShownErrors(), std::vector<std::string>{"Schedule errors|drawing fails"});
    SetDisplayErrors(nullptr);
}

} // namespace
