#include "support/gltest.h"
#include "support/testsupport.h"

#include "library/wimp/gl/glcontext.h"
#include "library/wimp/gl/renderobjects.h"
#include "library/wimp/gl/rendertargets.h"
#include "library/wimp/gl/tintprogram.h"

#include <GL/glew.h>

#include <memory>

namespace {

constexpr TPixel Background = {255, 255, 242, 255};
constexpr TPixel Red = {255, 0, 0, 255};
constexpr TPixel Blue = {0, 0, 255, 255};
const TVector4 RedColour(1, 0, 0, 1);
const TVector4 BlueColour(0, 0, 1, 1);

bool IsRed(const TPixel& pixel)
{
    return IsClose(pixel, Red);
}

void FillRed(TRenderer& renderer, float left, float top, float right, float bottom)
{
    renderer.SetColour(RedColour);
    renderer.DrawRectangle(TVector2(left, top), TVector2(right, bottom));
}

class TRendererTest : public TGlTest
{
protected:
    // Paints what the function draws, as the whole tree.
    TPicture PaintWith(std::function<void(TRenderer&)> draw)
    {
        Root.Draw = std::move(draw);
        return Paint(Root);
    }
    // The scissor in force once the function has drawn, which leaves so many windows open.
    std::vector<int> ScissorOf(const std::function<void(TRenderer&)>& draw, int numOpen)
    {
        std::vector<int> scissor;
        PaintWith([&](TRenderer& renderer) {
            draw(renderer);
            scissor.assign(renderer.GetScissor(), renderer.GetScissor() + 4);
            GLint real[4];
            glGetIntegerv(GL_SCISSOR_BOX, real);
            EXPECT_EQ(scissor, std::vector<int>(real, real + 4));
            for (int i = 0; i < numOpen; ++i)
                renderer.PopWindow();
        });
        return scissor;
    }

    TDrawnObject Root;
};

} // namespace

TEST_F(TRendererTest, TheWindowIsClearedToPaleYellowAndOpaque)
{
    const TPicture picture = PaintWith([](TRenderer&) {});
    EXPECT_EQ(picture.Count([](const TPixel& pixel) { return pixel == Background; }), Width * Height);
}

TEST_F(TRendererTest, YGrowsDownwards)
{
    const TPicture picture = PaintWith([](TRenderer& renderer) { FillRed(renderer, 10, 20, 30, 50); });
    EXPECT_EQ(picture.At(10, 20), Red);
    EXPECT_EQ(picture.At(29, 49), Red);
    EXPECT_EQ(picture.Count(IsRed), 20 * 30);
}

TEST_F(TRendererTest, OffsetAddsToWorldPlacesAndScaleMultiplies)
{
    Renderer.SetOffset(TVector2(5, -10));
    Renderer.SetScale(TVector2(2, 3));
    const TPicture picture = PaintWith([](TRenderer& renderer) { FillRed(renderer, 10, 20, 30, 50); });
    EXPECT_EQ(picture.At(30, 30), Red);
    EXPECT_EQ(picture.At(69, 119), Red);
    EXPECT_EQ(picture.Count(IsRed), 40 * 90);
    EXPECT_EQ(Renderer.PixelToWorld(30, 30), TVector2(10, 20));
}

TEST_F(TRendererTest, TheViewEndsWhereClipSpaceDoes)
{
    Renderer.SetOffset(TVector2(10, 20));
    const TPicture picture = PaintWith([](TRenderer& renderer) {
        FillRed(renderer, -10, -20, -9, -19);
        FillRed(renderer, Width - 11, Height - 21, Width - 10, Height - 20);
        renderer.PushOrigin(TVector2(90, 55));
        FillRed(renderer, 0, 0, 1, 1);
        renderer.PopOrigin();
    });
    EXPECT_EQ(picture.At(0, 0), Red);
    EXPECT_EQ(picture.At(Width - 1, Height - 1), Red);
    EXPECT_EQ(picture.At(100, 75), Red);
    EXPECT_EQ(picture.Count(IsRed), 3);
}

TEST_F(TRendererTest, EdgesAreSupersampledTwoByTwo)
{
    const TPicture picture = PaintWith([](TRenderer& renderer) { FillRed(renderer, 10.5f, 20, 30, 30); });
    EXPECT_TRUE(IsClose(picture.At(10, 25), TPixel{255, 128, 121, 255})) << picture.At(10, 25);
    EXPECT_EQ(picture.At(11, 25), Red);
}

TEST_F(TRendererTest, OriginsAddUp)
{
    PaintWith([](TRenderer& renderer) {
        EXPECT_EQ(renderer.GetOrigin(), TVector2(0, 0));
        renderer.PushOrigin(TVector2(1, 2));
        renderer.PushOrigin(TVector2(10, 20));
        EXPECT_EQ(renderer.GetOrigin(), TVector2(11, 22));
        renderer.PopOrigin();
        EXPECT_EQ(renderer.GetOrigin(), TVector2(1, 2));
        renderer.PopOrigin();
    });
}

TEST(TRenderer, PushOriginOnAnEmptyStackPushesTheDeltaItself)
{
    TRenderer renderer;
    renderer.PushOrigin(TVector2(3, 4));
    EXPECT_EQ(renderer.GetOrigin(), TVector2(3, 4));
    renderer.PopOrigin();
    EXPECT_EQ(renderer.GetOrigin(), TVector2(0, 0));
    EXPECT_EQ(AssertionOf([&] { renderer.PopOrigin(); }), "!OriginStack.empty()");
}

TEST_F(TRendererTest, TheVisibleRectangleIsThatOfTheWindowInWorldUnits)
{
    Renderer.SetOffset(TVector2(10, 20));
    Renderer.SetScale(TVector2(2, 2));
    TVector2 min;
    TVector2 max;
    PaintWith([&](TRenderer& renderer) { renderer.GetVisibleRect(min, max); });
    EXPECT_EQ(min, TVector2(-10, -20));
    EXPECT_EQ(max, TVector2(Width / 2.0f - 10, Height / 2.0f - 20));
}

TEST(TRenderer, PushWindowOnAnEmptyStackPushesTheRectangleAsItIs)
{
    TRenderer renderer;
    renderer.PushOrigin(TVector2(100, 100));
    renderer.PushWindow(TVector2(1, 2), TVector2(3, 4));
    TVector2 min;
    TVector2 max;
    renderer.GetVisibleRect(min, max);
    EXPECT_EQ(min, TVector2(1, 2));
    EXPECT_EQ(max, TVector2(3, 4));
}

TEST_F(TRendererTest, PushWindowOffsetsByTheOriginAndIntersects)
{
    PaintWith([](TRenderer& renderer) {
        TVector2 min;
        TVector2 max;
        renderer.PushOrigin(TVector2(50, 40));
        renderer.PushWindow(TVector2(0, 0), TVector2(100, 50));
        renderer.PushWindow(TVector2(-10, 10), TVector2(20, 200));
        renderer.GetVisibleRect(min, max);
        EXPECT_EQ(min, TVector2(50, 50));
        EXPECT_EQ(max, TVector2(70, 90));
        renderer.PopWindow();
        renderer.GetVisibleRect(min, max);
        EXPECT_EQ(min, TVector2(50, 40));
        EXPECT_EQ(max, TVector2(150, 90));
        renderer.PopWindow();
        renderer.PopOrigin();
    });
}

TEST_F(TRendererTest, TheScissorIsDoubledAndMeasuredFromTheBottom)
{
    Renderer.SetOffset(TVector2(5, 0));
    Renderer.SetScale(TVector2(2, 2));
    const std::vector<int> scissor =
        ScissorOf([](TRenderer& renderer) { renderer.PushWindow(TVector2(10, 20), TVector2(40, 50)); }, 1);
    EXPECT_EQ(scissor, (std::vector<int>{60, 2 * Height - 200, 120, 120}));
}

TEST_F(TRendererTest, WithoutFurtherWindowsTheScissorIsTheWholeTarget)
{
    const std::vector<int> whole = {0, 0, 2 * Width, 2 * Height};
    EXPECT_EQ(ScissorOf([](TRenderer&) {}, 0), whole);
    EXPECT_EQ(ScissorOf(
                  [](TRenderer& renderer) {
                      renderer.PushWindow(TVector2(10, 20), TVector2(40, 50));
                      renderer.PopWindow();
                  },
                  0),
              whole);
}

TEST_F(TRendererTest, PopWindowRestoresTheScissorOfTheNewTop)
{
    const std::vector<int> scissor = ScissorOf(
        [](TRenderer& renderer) {
            renderer.PushWindow(TVector2(10, 20), TVector2(40, 50));
            renderer.PushWindow(TVector2(20, 20), TVector2(30, 30));
            renderer.PopWindow();
        },
        1);
    EXPECT_EQ(scissor, (std::vector<int>{20, 2 * Height - 100, 60, 60}));
}

TEST_F(TRendererTest, WithAZeroWidthClipIntersectionTheScissorHasZeroSizeAndChildrenDrawNothing)
{
    for (const float right : {50.0f, 40.0f}) {
        std::vector<int> scissor;
        const TPicture picture = PaintWith([&](TRenderer& renderer) {
            renderer.PushWindow(TVector2(50, 0), TVector2(100, 100));
            renderer.PushWindow(TVector2(0, 0), TVector2(right, 100));
            scissor.assign(renderer.GetScissor(), renderer.GetScissor() + 4);
            FillRed(renderer, 0, 0, 200, 150);
            renderer.PopWindow();
            renderer.PopWindow();
        });
        EXPECT_EQ(scissor[2], 0);
        EXPECT_EQ(picture.Count(IsRed), 0);
    }
}

TEST_F(TRendererTest, ClippingCutsWhatIsDrawn)
{
    const TPicture picture = PaintWith([](TRenderer& renderer) {
        FillRed(renderer, 0, 0, 10, 10);
        renderer.PushWindow(TVector2(50, 60), TVector2(60, 80));
        FillRed(renderer, 40, 40, 200, 150);
        renderer.PopWindow();
        renderer.SetColour(BlueColour);
        renderer.DrawRectangle(TVector2(100, 100), TVector2(110, 110));
    });
    EXPECT_EQ(picture.Count(IsRed), 100 + 200);
    EXPECT_EQ(picture.At(50, 60), Red);
    EXPECT_EQ(picture.At(49, 60), Background);
    EXPECT_EQ(picture.At(105, 105), Blue);
}

TEST_F(TRendererTest, AWindowLeftPushedIsAnAssertion)
{
    EXPECT_EQ(AssertionOf([&] {
                  PaintWith([](TRenderer& renderer) { renderer.PushWindow(TVector2(0, 0), TVector2(9, 9)); });
              }),
              "WindowStack.size() == 1");
    EXPECT_EQ(
        AssertionOf([&] { PaintWith([](TRenderer& renderer) { renderer.PushOrigin(TVector2(0, 0)); }); }),
        "OriginStack.size() == 1");
    // The frame after starts from empty stacks.
    EXPECT_EQ(AssertionOf([&] { PaintWith([](TRenderer&) {}); }), "");
}

TEST_F(TRendererTest, AnErrorOfOpenGLIsAnAssertion)
{
    EXPECT_EQ(AssertionOf([&] { PaintWith([](TRenderer&) { glEnable(0xFFFF); }); }),
              "err == GL_NO_ERROR || err == GL_INVALID_OPERATION : OpenGL error 0x500\n");
}

TEST_F(TRendererTest, AnErrorThatOthersLeftBehindIsNotTheFramesOwn)
{
    Window.MakeCurrent();
    glEnable(0xFFFF);
    EXPECT_EQ(PaintWith([](TRenderer& renderer) { FillRed(renderer, 0, 0, 20, 20); }).Count(IsRed), 400);
}

TEST_F(TRendererTest, AnInvalidOperationIsPassedOver)
{
    EXPECT_EQ(AssertionOf([&] { PaintWith([](TRenderer&) { glEnd(); }); }), "");
}

TEST(TRenderer, AWindowWithASizeOfZeroKeepsAZeroSizedTextureAndDrawsNothing)
{
    TTestWindow window(0, 0);
    TRenderer renderer;
    ASSERT_TRUE(renderer.Init(&window));
    TDrawnObject root;
    renderer.Render(root);
    EXPECT_EQ(root.NumRenders, 0);
    EXPECT_EQ(renderer.GetWidth(), 0);

    window.Resize(40, 30);
    renderer.Render(root);
    EXPECT_EQ(root.NumRenders, 1);
    EXPECT_EQ(renderer.GetWidth(), 40);
    EXPECT_EQ(renderer.GetHeight(), 30);

    window.Resize(40, 0);
    renderer.Render(root);
    EXPECT_EQ(root.NumRenders, 1);
    EXPECT_EQ(renderer.GetHeight(), 0);
}

TEST(TRenderTargets, OfNoSizeHaveATextureOfNoSizeThatNothingCanBeDrawnInto)
{
    TTestWindow window(40, 30);
    TRenderTargets targets;
    targets.Init(&window);
    ASSERT_TRUE(window.MakeCurrent());
    targets.Resize(0, 0);
    EXPECT_EQ(AssertionOf([&] { targets.BindTarget(); }),
              "fbostat == GL_FRAMEBUFFER_COMPLETE_EXT : FBO incomplete 0x8cd6\n");
    GLint texture = 0;
    glGetFramebufferAttachmentParameterivEXT(GL_FRAMEBUFFER_EXT, GL_COLOR_ATTACHMENT0_EXT,
                                             GL_FRAMEBUFFER_ATTACHMENT_OBJECT_NAME_EXT, &texture);
    EXPECT_NE(texture, 0);
    GLint width = -1;
    glBindTexture(GL_TEXTURE_2D, static_cast<GLuint>(texture));
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &width);
    EXPECT_EQ(width, 0);
    targets.Resize(40, 30);
    targets.BindTarget();
}

TEST_F(TRendererTest, ThePictureFollowsTheWindowsSize)
{
    PaintWith([](TRenderer& renderer) { FillRed(renderer, 0, 0, 20, 20); });
    Window.Resize(60, 40);
    const TPicture picture = Paint(Root);
    EXPECT_EQ(picture.Count(IsRed), 400);
    EXPECT_EQ(picture.Count([](const TPixel& pixel) { return pixel == Background; }), 60 * 40 - 400);
}

TEST(TRenderer, WithoutAContextNothingIsDrawn)
{
    TFakeWindow window(40, 30);
    TRenderer renderer;
    EXPECT_FALSE(renderer.Init(nullptr));
    ASSERT_TRUE(renderer.Init(&window));
    TDrawnObject root;
    renderer.Render(root);
    EXPECT_EQ(root.NumRenders, 0);
}

TEST_F(TRendererTest, AWindowWithANewContextIsDrawnIntoAgain)
{
    PaintWith([](TRenderer& renderer) { FillRed(renderer, 0, 0, 20, 20); });
    for (int i = 0; i < 3; ++i) {
        Window.RecreateContext();
        const TPicture picture = Paint(Root);
        EXPECT_EQ(picture.Count(IsRed), 400);
        EXPECT_EQ(picture.At(100, 100), Background);
    }
}

TEST_F(TRendererTest, AWindowTooLargeForADoubledTargetIsDrawnAllTheSame)
{
    const int width = GetMaxTextureSide() / 2 + 100;
    TTestWindow window(width, 30);
    TRenderer renderer;
    renderer.Init(&window);
    TDrawnObject root([&](TRenderer& drawn) {
        drawn.PushWindow(TVector2(float(width - 50), 5), TVector2(float(width), 25));
        FillRed(drawn, float(width - 60), 0, float(width), 30);
        drawn.PopWindow();
    });
    root.Max = TVector2(float(width), 30);
    renderer.Render(root);
    const TPicture picture = window.Read();
    EXPECT_EQ(picture.Count(IsRed), 50 * 20);
    EXPECT_EQ(picture.At(width - 50, 5), Red);
    EXPECT_EQ(renderer.GetSupersampling(), 1);
    window.Resize(100, 30);
    renderer.Render(root);
    EXPECT_EQ(renderer.GetSupersampling(), 2);
}

TEST_F(TRendererTest, TwoWindowsAreDrawnInTurns)
{
    TTestWindow window(50, 50);
    TRenderer second;
    ASSERT_TRUE(second.Init(&window, &Renderer));
    second.SetOffset(TVector2(10, 0));
    Root.Draw = [](TRenderer& renderer) { FillRed(renderer, 0, 0, 20, 20); };
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(Paint(Root).At(0, 0), Red);
        second.Render(Root);
        const TPicture picture = window.Read();
        EXPECT_EQ(picture.At(9, 0), Background);
        EXPECT_EQ(picture.At(10, 0), Red);
    }
}

TEST_F(TRendererTest, ReleaseGivesTheTargetBackUntilTheNextFrame)
{
    PaintWith([](TRenderer& renderer) { FillRed(renderer, 0, 0, 20, 20); });
    Renderer.Release();
    EXPECT_EQ(Renderer.GetWidth(), 0);
    EXPECT_EQ(Paint(Root).Count(IsRed), 400);
}

TEST_F(TRendererTest, StateLeftBehindByOthersDoesNotShow)
{
    const TPicture picture = PaintWith([](TRenderer& renderer) { FillRed(renderer, 0, 0, 20, 20); });
    ASSERT_EQ(picture.Count(IsRed), 400);
    Window.MakeCurrent();
    glEnable(GL_SCISSOR_TEST);
    glScissor(3, 3, 1, 1);
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_CULL_FACE);
    glColorMask(GL_FALSE, GL_TRUE, GL_FALSE, GL_TRUE);
    glMatrixMode(GL_PROJECTION);
    glScalef(5, 5, 5);
    glActiveTexture(GL_TEXTURE2);
    GetTintProgram().Bind();
    glBlendEquation(GL_MIN);
    // Something new, as what is seen already is not painted once more.
    const TPicture next = PaintWith([](TRenderer& renderer) {
        FillRed(renderer, 30, 0, 50, 20);
        renderer.SetColour(TVector4(0, 0, 0, 0.5f));
        renderer.DrawRectangle(TVector2(30, 0), TVector2(50, 10));
    });
    EXPECT_EQ(next.Count(IsRed), 200);
    EXPECT_TRUE(IsClose(next.At(40, 5), TPixel{128, 0, 0, 255})) << next.At(40, 5);
}

TEST_F(TRendererTest, DrawLineIsAQuadOfTheWidthHalfEitherSide)
{
    const TPicture picture = PaintWith([](TRenderer& renderer) {
        renderer.SetColour(RedColour);
        renderer.DrawLine(TVector2(20, 30), TVector2(60, 30), 4);
        renderer.DrawLine(TVector2(100, 80), TVector2(100, 60), 2);
        // A line without length has no direction to be wide across.
        renderer.DrawLine(TVector2(150, 100), TVector2(150, 100), 10);
    });
    EXPECT_EQ(picture.Count(IsRed, 20, 28, 40, 4), 160);
    EXPECT_EQ(picture.Count(IsRed, 99, 60, 2, 20), 40);
    EXPECT_EQ(picture.Count(IsRed), 200);
}

TEST_F(TRendererTest, DrawCurveRunsFromEndToEnd)
{
    const TVector2 straight[] = {TVector2(20, 30), TVector2(40, 30), TVector2(60, 30), TVector2(80, 30)};
    const TPicture picture = PaintWith([&](TRenderer& renderer) {
        renderer.SetColour(RedColour);
        renderer.DrawCurve(straight, 4);
    });
    EXPECT_EQ(picture.Count(IsRed, 20, 28, 60, 4), 240);
    EXPECT_EQ(picture.Count(IsRed), 240);
}

TEST_F(TRendererTest, DrawCurveBends)
{
    const TVector2 arch[] = {TVector2(20, 100), TVector2(20, 20), TVector2(120, 20), TVector2(120, 100)};
    const TPicture picture = PaintWith([&](TRenderer& renderer) {
        renderer.SetColour(RedColour);
        renderer.DrawCurve(arch, 4);
    });
    // Three quarters of the way up in the middle.
    EXPECT_EQ(picture.At(70, 40), Red);
    EXPECT_EQ(picture.At(70, 100), Background);
    EXPECT_EQ(picture.At(20, 98), Red);
}

TEST_F(TRendererTest, WhatIsDrawnLaterLiesOnTopWhateverItIs)
{
    const TPicture picture = PaintWith([](TRenderer& renderer) {
        FillRed(renderer, 0, 0, 50, 50);
        renderer.SetColour(TVector4(0, 0, 1, 0.5f));
        renderer.DrawRectangle(TVector2(10, 10), TVector2(40, 40));
        FillRed(renderer, 20, 20, 30, 30);
        renderer.Begin(PR_TRIANGLES);
        renderer.SetColour(BlueColour);
        for (const TVector2& point : {TVector2(22, 22), TVector2(28, 22), TVector2(22, 28)})
            renderer.Vertex(point);
        renderer.End();
    });
    EXPECT_EQ(picture.At(5, 5), Red);
    EXPECT_TRUE(IsClose(picture.At(15, 15), TPixel{128, 0, 128, 255})) << picture.At(15, 15);
    EXPECT_EQ(picture.At(29, 29), Red);
    EXPECT_EQ(picture.At(23, 23), Blue);
}

TEST_F(TRendererTest, VerticesMayHaveColoursOfTheirOwn)
{
    const TPicture picture = PaintWith([](TRenderer& renderer) {
        renderer.Begin(PR_STRIP);
        for (const float x : {0.0f, 100.0f}) {
            renderer.SetColour(x > 0 ? BlueColour : RedColour);
            renderer.Vertex(TVector2(x, 0));
            renderer.Vertex(TVector2(x, 20));
        }
        renderer.End();
        FillRed(renderer, 150, 0, 160, 10);
    });
    EXPECT_TRUE(IsClose(picture.At(0, 10), Red, 4));
    EXPECT_TRUE(IsClose(picture.At(50, 10), TPixel{127, 0, 128, 255}, 4)) << picture.At(50, 10);
    EXPECT_TRUE(IsClose(picture.At(99, 10), Blue, 4));
    EXPECT_EQ(picture.At(155, 5), Red);
}

TEST_F(TRendererTest, ManyPrimitivesTakeFewCalls)
{
    const TPicture picture = PaintWith([](TRenderer& renderer) {
        for (int i = 0; i < 1000; ++i)
            FillRed(renderer, static_cast<float>(i % 100), static_cast<float>(i / 100),
                    static_cast<float>(i % 100 + 1), static_cast<float>(i / 100 + 1));
    });
    EXPECT_EQ(Renderer.GetNumCalls(), 1);
    EXPECT_EQ(picture.Count(IsRed), 1000);
}

TEST_F(TRendererTest, MorePrimitivesThanABatchHoldsAreAllDrawn)
{
    const TPicture picture = PaintWith([](TRenderer& renderer) {
        renderer.SetColour(RedColour);
        renderer.Begin(PR_QUADS);
        for (int i = 0; i < 100 * 100; ++i)
            for (const int corner : {0, 1, 3, 2})
                renderer.Vertex(TVector2(static_cast<float>(i % 100 + corner % 2),
                                         static_cast<float>(i / 100 + corner / 2)));
        renderer.End();
        for (int i = 0; i < 10000; ++i)
            FillRed(renderer, static_cast<float>(100 + i % 100), static_cast<float>(i / 100),
                    static_cast<float>(101 + i % 100), static_cast<float>(i / 100 + 1));
    });
    EXPECT_EQ(picture.Count(IsRed), 20000);
}

TEST_F(TRendererTest, TheOverlayIsDrawnAboveEverythingAtItsAbsolutePosition)
{
    TRenderObjects root;
    TRenderObjects group;
    TDrawnObject overlay([](TRenderer& renderer) { FillRed(renderer, 0, 0, 10, 10); });
    TDrawnObject cover([](TRenderer& renderer) {
        renderer.SetColour(BlueColour);
        renderer.DrawRectangle(TVector2(0, 0), TVector2(Width, Height));
    });
    root.AddObject(&group);
    root.AddObject(&cover);
    group.AddObject(&overlay);
    group.SetOrigin(TVector2(50, 20));
    overlay.SetOrigin(TVector2(3, 4));

    EXPECT_EQ(Paint(root).Count(IsRed), 0);
    TRenderObject::SetOverlay(&overlay);
    overlay.NumRenders = 0;
    const TPicture picture = Paint(root);
    EXPECT_EQ(overlay.NumRenders, 1);
    EXPECT_EQ(picture.At(53, 24), Red);
    EXPECT_EQ(picture.Count(IsRed), 100);
    TRenderObject::SetOverlay(nullptr);
}

TEST_F(TRendererTest, AnOverlayOfAnotherViewsTreeDoesNotShow)
{
    TRenderObjects root;
    TRenderObjects other;
    TDrawnObject overlay([](TRenderer& renderer) { FillRed(renderer, 0, 0, 10, 10); });
    other.AddObject(&overlay);
    TRenderObject::SetOverlay(&overlay);
    EXPECT_EQ(Paint(root).Count(IsRed), 0);
    EXPECT_EQ(Paint(other).Count(IsRed), 100);
    TRenderObject::SetOverlay(nullptr);
}

TEST(TGlContext, NamesGivenUpWithoutAContextAreFreedWithTheNext)
{
    TTestWindow window(10, 10);
    unsigned name = 0;
    glGenTextures(1, &name);
    glBindTexture(GL_TEXTURE_2D, name);
    glBindTexture(GL_TEXTURE_2D, 0);
    TTestContext::ClearCurrent();
    EXPECT_TRUE(IsGlReady());
    EXPECT_FALSE(IsGlCurrent());
    DeleteGlTexture(name);
    window.MakeCurrent();
    EXPECT_TRUE(IsGlCurrent());
    EXPECT_TRUE(glIsTexture(name));
    FlushGlDeletions();
    EXPECT_FALSE(glIsTexture(name));
}

TEST(TGlContext, InitGlWithoutAContextTellsWhy)
{
    // Another test of the same run may have been first.
    if (IsGlReady())
        GTEST_SKIP();
    EXPECT_FALSE(InitGl());
    EXPECT_STREQ(GetGlFault(), "There is no OpenGL context.");
    TTestWindow window(10, 10);
    EXPECT_TRUE(IsGlReady());
    EXPECT_STREQ(GetGlFault(), "");
}

TEST_F(TRendererTest, OnAScaledScreenPixelsAreDots)
{
    for (const double dots : {1.0, 1.25, 1.5, 2.0}) {
        Window.DotsPerPixel = dots;
        const TPicture picture = PaintWith([](TRenderer& renderer) { FillRed(renderer, 20, 40, 60, 100); });
        const int left = static_cast<int>(20 * dots);
        const int top = static_cast<int>(40 * dots);
        const int right = static_cast<int>(60 * dots);
        const int bottom = static_cast<int>(100 * dots) < Height ? static_cast<int>(100 * dots) : Height;
        EXPECT_EQ(picture.At(left, top), Red) << dots;
        EXPECT_EQ(picture.At(right - 1, bottom - 1), Red) << dots;
        EXPECT_EQ(picture.Count(IsRed), (right - left) * (bottom - top)) << dots;
        // The pointer is told in pixels.
        EXPECT_EQ(Renderer.PixelToWorld(20, 40.5), TVector2(20, 40.5f));
        EXPECT_EQ(Renderer.GetResolution(), TVector2(float(dots), float(dots)));
    }
}

TEST_F(TRendererTest, OnAScaledScreenAllOfTheWindowIsDrawnToTheLastDot)
{
    TVector2 min;
    TVector2 max;
    for (const double dots : {1.25, 1.5, 1.75, 2.0})
        // Sizes that are no whole number of pixels.
        for (int size = 101; size < 106; ++size) {
            Window.Resize(size, size + 20);
            Window.DotsPerPixel = dots;
            const TPicture picture = PaintWith([&](TRenderer& renderer) {
                renderer.GetVisibleRect(min, max);
                renderer.SetColour(RedColour);
                renderer.DrawRectangle(min, max);
            });
            EXPECT_EQ(picture.Count(IsRed), size * (size + 20)) << dots << " " << size;
            EXPECT_NEAR(max[0], size / dots, 1e-4) << dots;
        }
}

TEST_F(TRendererTest, OnAScaledScreenTheScissorIsInDots)
{
    Window.DotsPerPixel = 1.5;
    const auto scissor =
        ScissorOf([](TRenderer& renderer) { renderer.PushWindow(TVector2(20, 10), TVector2(60, 50)); }, 1);
    // From 30 and 15 to 90 and 75, doubled, counted from the bottom.
    EXPECT_EQ(scissor, (std::vector<int>{60, (Height - 75) * 2, 120, 120}));
}

TEST_F(TRendererTest, AWindowThatComesToAnotherScreenIsDrawnForIt)
{
    const auto draw = [](TRenderer& renderer) { FillRed(renderer, 10, 20, 30, 50); };
    EXPECT_EQ(PaintWith(draw).Count(IsRed), 20 * 30);
    Window.DotsPerPixel = 2;
    EXPECT_EQ(PaintWith(draw).Count(IsRed), 4 * 20 * 30);
    Window.Resize(2 * Width, 2 * Height);
    EXPECT_EQ(PaintWith(draw).Count(IsRed), 4 * 20 * 30);
    Window.DotsPerPixel = 1;
    Window.Resize(Width, Height);
    EXPECT_EQ(PaintWith(draw).Count(IsRed), 20 * 30);
}
