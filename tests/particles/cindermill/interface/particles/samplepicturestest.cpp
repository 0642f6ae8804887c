#include "support/gltest.h"
#include "support/sampledocument.h"

#include "library/wimp/gl/device/sceneview.h"
#include "library/wimp/gl/glcontext.h"
#include "particles/cindermill/graph/engine/random.h"
#include "particles/cindermill/interface/particles/camera.h"
#include "particles/cindermill/interface/particles/displays.h"
#include "particles/cindermill/interface/particles/particlescene.h"

#include <GL/glew.h>

#include <cstdlib>
#include <filesystem>

namespace {

TPicture Draw(TDocument& document, TParticleScene& scene, TTestWindow& window)
{
    int width = 0;
    int height = 0;
    window.GetSize(width, height);
    window.MakeCurrent();
    glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, window.GetFrameBuffer());
    glViewport(0, 0, width, height);
    TMatrix4 worldView;
    TMatrix4 projection;
    TMayaCamera camera;
    camera.GetView(worldView);
    TCamera::GetProjection(static_cast<float>(width) / static_cast<float>(height), projection);
    TSceneView view;
    view.Set(worldView, projection);
    scene.Draw(document, view);
    return window.Read();
}

int CountDifferent(const TPicture& a, const TPicture& b)
{
    int count = 0;
    for (int y = 0; y < a.GetHeight(); ++y)
        for (int x = 0; x < a.GetWidth(); ++x)
            count += IsClose(a.At(x, y), b.At(x, y)) ? 0 : 1;
    return count;
}

// How many pixels at the rim of a picture, so many deep, differ by more than the last of a fading puff.
int CountDifferentAtRim(const TPicture& a, const TPicture& b, int depth)
{
    constexpr int Faint = 8;
    int count = 0;
    for (int y = 0; y < a.GetHeight(); ++y)
        for (int x = 0; x < a.GetWidth(); ++x) {
            const bool inside =
                x >= depth && y >= depth && x < a.GetWidth() - depth && y < a.GetHeight() - depth;
            count += inside || IsClose(a.At(x, y), b.At(x, y), Faint) ? 0 : 1;
        }
    return count;
}

void BypassStages(TDocument& document, bool bypass)
{
    for (int i = 0; i < document.GetGraph()->GetNumNodes(); ++i) {
        TNodeType* type = document.GetGraph()->GetNode(i)->GetNodeType();
        if (type->Category == TU_RENDER)
            type->SetFlag(FL_BYPASSED, bypass);
    }
}

// The pictures lie in the build folder's pictures/, to be looked at. With CINDERMILL_PICTURES set they have
// the window's size, and there are some of several times.
TEST(SamplePictures, EverySampleShowsItsParticles)
{
    const std::string folder = std::string(CINDERMILL_BINARY_DIR) + "/pictures";
    std::filesystem::create_directory(folder);
    std::vector<float> times = {1};
    const bool all = getenv("CINDERMILL_PICTURES") != nullptr;
    if (all)
        times = {0.3f, 1, 2, 4};
    RegisterDisplayClasses();
    TRandom::SetDefaultSeed(1);
    TTestApp app;
    TTestWindow window(all ? 800 : 320, all ? 618 : 247);
    ASSERT_TRUE(IsGlReady()) << GetGlFault();
    TParticleScene scene;
    for (const std::string& name : GetSampleNames()) {
        SCOPED_TRACE(name);
        TSampleDocument document(app, name);
        document->GetEngine().Update(0);
        for (const float time : times) {
            document.Run(time - document->GetEngine().GetTime(), all ? 0.02f : 0.04f);
            const TPicture picture = Draw(*document, scene, window);
            char file[64];
            snprintf(file, sizeof file, "/%s-%.1f.png", name.c_str(), static_cast<double>(time));
            EXPECT_TRUE(picture.SavePng(folder + file));
            BypassStages(*document, true);
            const TPicture empty = Draw(*document, scene, window);
            BypassStages(*document, false);
            if (time == 1) {
                EXPECT_GT(CountDifferent(picture, empty), 100);
            }
        }
    }
    TRandom::ClearDefaultSeed();
}

// A preview of the first size and a narrow one, at half of their pixels.
constexpr int StartSizes[][2] = {{400, 300}, {243, 283}};

class TStartView : public testing::TestWithParam<int>
{
};

TEST_P(TStartView, FramesEverySample)
{
    RegisterDisplayClasses();
    TTestApp app;
    TTestWindow window(StartSizes[GetParam()][0], StartSizes[GetParam()][1]);
    ASSERT_TRUE(IsGlReady()) << GetGlFault();
    TParticleScene scene;
    for (const std::string& name : GetSampleNames()) {
        TRandom::SetDefaultSeed(1);
        TSampleDocument document(app, name);
        document->GetEngine().Update(0);
        for (const float time : {1.2f, 3.0f, 6.0f}) {
            document.Run(time - document->GetEngine().GetTime());
            const TPicture picture = Draw(*document, scene, window);
            BypassStages(*document, true);
            const TPicture empty = Draw(*document, scene, window);
            BypassStages(*document, false);
            // The tip of a streak may reach there.
            EXPECT_LE(CountDifferentAtRim(picture, empty, 4), 4) << name << " after " << time << " seconds";
        }
    }
    TRandom::ClearDefaultSeed();
}

INSTANTIATE_TEST_SUITE_P(SamplePictures, TStartView, testing::Values(0, 1),
                         [](const auto& size) { return size.param == 0 ? "Wide" : "Narrow"; });

} // namespace
