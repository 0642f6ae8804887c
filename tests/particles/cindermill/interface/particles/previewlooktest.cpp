#include "support/gltest.h"
#include "support/sampledocument.h"

#include "library/containers/image/image.h"
#include "library/wimp/gl/device/sceneview.h"
#include "library/wimp/gl/glcontext.h"
#include "particles/cindermill/graph/engine/random.h"
#include "particles/cindermill/interface/particles/camera.h"
#include "particles/cindermill/interface/particles/displays.h"
#include "particles/cindermill/interface/particles/particlescene.h"
#include "particles/cindermill/interface/particles/previewmarks.h"
#include "particles/effectgraph/usage.h"

#include <GL/glew.h>

#include <filesystem>

namespace {

class PreviewLook : public testing::Test
{
protected:
    static constexpr int Width = 400;
    static constexpr int Height = 310;

    static void SetUpTestSuite()
    {
        RegisterDisplayClasses();
        std::filesystem::create_directory(GetFolder());
    }
    static std::string GetFolder() { return std::string(CINDERMILL_BINARY_DIR) + "/pictures"; }
    void SetUp() override
    {
        TRandom::SetDefaultSeed(1);
        ASSERT_TRUE(Window.MakeCurrent());
        ASSERT_TRUE(IsGlReady()) << GetGlFault();
    }
    void TearDown() override { TRandom::ClearDefaultSeed(); }
    // The picture lies in the build folder's pictures/, to be looked at.
    TPicture Draw(TDocument& document, const TPreviewLook& look, const std::string& name = "")
    {
        Window.MakeCurrent();
        glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, Window.GetFrameBuffer());
        glViewport(0, 0, Width, Height);
        TMatrix4 worldView;
        TMatrix4 projection;
        Camera.GetView(worldView);
        TCamera::GetProjection(float(Width) / Height, projection);
        TSceneView view;
        view.Set(worldView, projection);
        Scene.SetLook(look);
        Scene.Draw(document, view);
        TPicture picture = Window.Read();
        if (!name.empty()) {
            EXPECT_TRUE(picture.SavePng(GetFolder() + "/look-" + name + ".png"));
        }
        return picture;
    }
    static int CountDifferent(const TPicture& a, const TPicture& b)
    {
        int count = 0;
        for (int y = 0; y < Height; ++y)
            for (int x = 0; x < Width; ++x)
                count += IsClose(a.At(x, y), b.At(x, y)) ? 0 : 1;
        return count;
    }
    static int CountLike(const TPicture& picture, const TPixel& pixel)
    {
        return picture.Count([&](const TPixel& at) { return IsClose(at, pixel, 40); });
    }

    TTestApp App;
    TTestWindow Window{Width, Height};
    TMayaCamera Camera;
    TParticleScene Scene;
};

TEST_F(PreviewLook, BackgroundsAreBehindTheEffect)
{
    TSampleDocument sample(App, "campfire");
    sample.Run(2);
    TPreviewLook look;
    const TPicture plain = Draw(*sample, look);
    EXPECT_TRUE(IsClose(plain.At(3, 3), TPixel{204, 204, 204, 255}));
    const TPixel corners[] = {{204, 204, 204, 255}, {51, 51, 51, 255}, {0, 0, 0, 255},
                              {255, 255, 255, 255}, {13, 20, 51, 255}, {0, 176, 64, 255}};
    const char* const names[] = {"grey", "dark", "black", "white", "blue", "green"};
    for (int i = 0; i < 6; ++i) {
        look.Background = static_cast<TBackground>(i);
        const TPicture picture = Draw(*sample, look, names[i]);
        EXPECT_TRUE(IsClose(picture.At(3, 3), corners[i], 3)) << names[i];
        // The fire is on all of them.
        EXPECT_GT(picture.Count([](const TPixel& at) { return at.R > at.B + 60; }), 100) << names[i];
    }
    look.Background = BG_CHECKER;
    const TPicture checker = Draw(*sample, look, "checker");
    EXPECT_TRUE(IsClose(checker.At(3, 3), TPixel{191, 191, 191, 255}));
    EXPECT_TRUE(IsClose(checker.At(24 + 3, 3), TPixel{153, 153, 153, 255}));
    EXPECT_TRUE(IsClose(checker.At(24 + 3, 24 + 3), TPixel{191, 191, 191, 255}));
    // As coarse on a screen of twice the dots.
    Scene.GetBackdrop().SetDotsPerPixel(2);
    const TPicture fine = Draw(*sample, look, "checker2");
    EXPECT_TRUE(IsClose(fine.At(24 + 3, 3), TPixel{191, 191, 191, 255}));
    EXPECT_TRUE(IsClose(fine.At(48 + 3, 3), TPixel{153, 153, 153, 255}));
    // Back to what it was.
    look.Background = BG_GREY;
    EXPECT_EQ(CountDifferent(Draw(*sample, look), plain), 0);
}

TEST_F(PreviewLook, APictureFillsTheView)
{
    TSampleDocument sample(App, "fountain");
    TPreviewLook look;
    look.Background = BG_PICTURE;
    look.Ground = false;
    TString fault;
    EXPECT_TRUE(IsClose(Draw(*sample, look).At(3, 3), TPixel{0, 0, 0, 255})) << "none was chosen";
    EXPECT_FALSE(Scene.GetBackdrop().LoadPicture("/no/such/file.dds", fault));
    EXPECT_EQ(Scene.GetBackdrop().GetNumPictures(), 0u);
    ASSERT_TRUE(Scene.GetBackdrop().LoadPicture(SourcePath("samples/textures/tile.hvt").c_str(), fault));
    EXPECT_EQ(Scene.GetBackdrop().GetNumPictures(), 1u);
    const TPicture picture = Draw(*sample, look, "picture");
    EXPECT_GT(CountDifferent(picture, Draw(*sample, TPreviewLook{.Ground = false})), Width * Height / 2);
}

TEST_F(PreviewLook, AColourOfOnesOwnFillsTheView)
{
    TSampleDocument sample(App, "fountain");
    const TPreviewLook look{.Background = BG_COLOUR, .Colour = 0x336699};
    EXPECT_TRUE(IsClose(Draw(*sample, look, "colour").At(3, 3), TPixel{0x33, 0x66, 0x99, 255}, 2));
}

TEST_F(PreviewLook, MarksAreSeenOnAnyColour)
{
    TSampleDocument sample(App, "campfire");
    sample.Run(2);
    // That of the boxes, the velocities, what emits and the ground, and the ready-made ones.
    std::vector<TPreviewLook> looks;
    for (const uint32_t colour : {0x1A9933u, 0xF27300u, 0x8C1ABFu, 0x808080u, 0x336699u, 0x0u})
        looks.push_back(TPreviewLook{.Background = BG_COLOUR, .Colour = colour});
    for (int i = BG_GREY; i <= BG_CHECKER; ++i)
        looks.push_back(TPreviewLook{.Background = static_cast<TBackground>(i)});
    for (TPreviewLook look : looks) {
        look.Ground = false;
        const TPicture bare = Draw(*sample, look);
        const auto countSeen = [&](bool TPreviewLook::*mark) {
            TPreviewLook with = look;
            with.*mark = true;
            const TPicture marked = Draw(*sample, with);
            int count = 0;
            for (int y = 0; y < Height; ++y)
                for (int x = 0; x < Width; ++x)
                    count += IsClose(marked.At(x, y), bare.At(x, y), 35) ? 0 : 1;
            return count;
        };
        const int colour = static_cast<int>(look.Colour);
        EXPECT_GT(countSeen(&TPreviewLook::Boxes), 400) << look.Background << " " << colour;
        EXPECT_GT(countSeen(&TPreviewLook::Velocities), 20) << look.Background << " " << colour;
        EXPECT_GT(countSeen(&TPreviewLook::Emitters), 100) << look.Background << " " << colour;
        EXPECT_GT(countSeen(&TPreviewLook::Ground), 1500) << look.Background << " " << colour;
    }
}

TEST_F(PreviewLook, TheGroundIsLightOnADarkPicture)
{
    TSampleDocument sample(App, "fountain");
    TTempFolder folder;
    TImage night;
    night.Create(8, 8);
    ASSERT_TRUE(night.Save(folder.Path("night.dds").c_str(), IF_DDS_RAW));
    TString fault;
    ASSERT_TRUE(Scene.GetBackdrop().LoadPicture(folder.Path("night.dds").c_str(), fault));
    const TPreviewLook look{.Background = BG_PICTURE};
    EXPECT_GT(CountLike(Draw(*sample, look), TPixel{204, 204, 204, 255}), 300);
}

TEST_F(PreviewLook, APictureOfTooManyPixelsIsRefusedUnread)
{
    TTempFolder folder;
    TImage small;
    small.Create(4, 4);
    const std::string path = folder.Path("wall.dds");
    ASSERT_TRUE(small.Save(path.c_str(), IF_DDS_RAW));
    std::string bytes = ReadBytes(path);
    // Height and width, 16,384 each; the rest of a gigabyte is a hole.
    bytes.replace(12, 8, std::string("\0\x40\0\0\0\x40\0\0", 8));
    WriteBytes(path, bytes);
    std::filesystem::resize_file(path, (uint64_t{1} << 30) + 128);
    TString fault;
    EXPECT_FALSE(Scene.GetBackdrop().LoadPicture(path.c_str(), fault));
    EXPECT_EQ(Text(fault), "it has 16384 x 16384 pixels; a background may have as many as 8192 x 4096 are");
    EXPECT_FALSE(Scene.GetBackdrop().HasPicture());
}

TEST_F(PreviewLook, TheGroundCanBeLeftOut)
{
    TSampleDocument sample(App, "fountain");
    const auto isDark = [](const TPixel& at) { return at.R < 140 && at.G < 140 && at.B < 140; };
    EXPECT_GT(Draw(*sample, TPreviewLook{}).Count(isDark), 200);
    EXPECT_EQ(Draw(*sample, TPreviewLook{.Ground = false}).Count(isDark), 0);
}

TEST_F(PreviewLook, BoxesTellWhetherParticlesLeaveTheStaticOne)
{
    TSampleDocument sample(App, "fountain");
    sample.Run(3);
    TPreviewLook look;
    look.Ground = false;
    TEffectNode* stage = nullptr;
    for (int i = 0; i < sample->GetGraph()->GetNumNodes(); ++i)
        if (sample->GetGraph()->GetNode(i)->GetNodeType()->Category == TU_RENDER)
            stage = sample->GetGraph()->GetNode(i);
    ASSERT_NE(stage, nullptr);
    TNodeType& type = *stage->GetNodeType();
    const TPixel blue{26, 77, 230, 255};
    const TPixel green{26, 153, 51, 255};
    const TPixel red{230, 26, 26, 255};
    type.SetFlag(FL_STATICBOUNDS, false);
    EXPECT_EQ(CountLike(Draw(*sample, look), green), 0);
    look.Boxes = true;
    EXPECT_GT(CountLike(Draw(*sample, look, "box"), green), 200);
    type.SetFlag(FL_STATICBOUNDS, true);
    type.BoundsMin = TVector3(-9, -9, -9);
    type.BoundsMax = TVector3(9, 9, 9);
    EXPECT_GT(CountLike(Draw(*sample, look), green), 200);
    type.BoundsMin = TVector3(-0.3f, 0, -0.3f);
    type.BoundsMax = TVector3(0.3f, 0.6f, 0.3f);
    const TPicture left = Draw(*sample, look, "box-left");
    EXPECT_GT(CountLike(left, red), 200);
    EXPECT_GT(CountLike(left, blue), 100);
}

TEST_F(PreviewLook, VelocitiesPointWhereParticlesGo)
{
    TSampleDocument sample(App, "fountain");
    sample.Run(2);
    TPreviewLook look;
    look.Ground = false;
    const TPixel orange{242, 120, 10, 255};
    EXPECT_EQ(CountLike(Draw(*sample, look), orange), 0);
    look.Velocities = true;
    EXPECT_GT(CountLike(Draw(*sample, look, "velocities"), orange), 100);
}

TEST_F(PreviewLook, EmitterShapesAreDrawnWhetherTheEffectRunsOrNot)
{
    TSampleDocument sample(App, "campfire");
    TPreviewLook look;
    look.Ground = false;
    const TPixel violet{140, 26, 191, 255};
    EXPECT_EQ(CountLike(Draw(*sample, look), violet), 0);
    look.Emitters = true;
    EXPECT_GT(CountLike(Draw(*sample, look, "emitters"), violet), 100);
    sample->ClearEngine();
    EXPECT_GT(CountLike(Draw(*sample, look), violet), 100);
}

TEST_F(PreviewLook, OneGroupIsDrawnAlone)
{
    TSampleDocument sample(App, "campfire");
    sample.Run(3);
    const TEffectSchedule& schedule = sample->GetSchedule();
    const TPicture all = Draw(*sample, TPreviewLook{});
    const TPicture none = Draw(*sample, TPreviewLook{.OnlyGroup = TEffectExec::MaxGroups});
    int drawn = 0;
    for (int g = 0; g < schedule.GetNumGroups(); ++g) {
        if (schedule.IsTriggerGroup(g))
            continue;
        const TPicture alone = Draw(*sample, TPreviewLook{.OnlyGroup = g}, "only" + std::to_string(g));
        EXPECT_GT(CountDifferent(alone, all), 100) << g;
        EXPECT_GT(CountDifferent(alone, none), 100) << g;
        ++drawn;
    }
    EXPECT_EQ(drawn, 2) << "flames and smoke";
}

TEST_F(PreviewLook, TheEffectIsFramedFromAnySide)
{
    TSampleDocument sample(App, "campfire");
    TVector3 min(0, 0, 0);
    TVector3 max(0, 0, 0);
    EXPECT_FALSE(GetParticleBox(*sample, -1, min, max)) << "nothing has been born yet";
    sample.Run(3);
    ASSERT_TRUE(GetParticleBox(*sample, -1, min, max));
    TPreviewLook look;
    look.Ground = false;
    look.Boxes = true;
    const float quarter = 1.5707963f;
    const float angles[][2] = {{0, 0}, {quarter, 0}, {0, quarter}, {0.4f, 0.3f}};
    for (const auto& angle : angles) {
        Camera.Reset();
        Camera.LookFrom(angle[0], angle[1]);
        Camera.Frame(min, max, float(Width) / Height);
        const TPicture picture = Draw(*sample, look, "framed");
        const TPixel green{26, 153, 51, 255};
        const auto isBox = [&](const TPixel& at) { return IsClose(at, green, 40); };
        EXPECT_GT(picture.Count(isBox), 100);
        // All of it is inside, and it is not far away.
        EXPECT_EQ(picture.Count(isBox, 0, 0, Width, 2), 0);
        EXPECT_EQ(picture.Count(isBox, 0, Height - 2, Width, 2), 0);
        EXPECT_EQ(picture.Count(isBox, 0, 0, 2, Height), 0);
        EXPECT_EQ(picture.Count(isBox, Width - 2, 0, 2, Height), 0);
        int top = Height;
        int bottom = 0;
        for (int y = 0; y < Height; ++y)
            if (picture.Count(isBox, 0, y, Width, 1) > 0) {
                top = y < top ? y : top;
                bottom = y;
            }
        EXPECT_GT(bottom - top, Height / 4);
    }
}

} // namespace
