#include "halveswindow.h"
#include "windowfixture.h"

#include "library/system/message.h"
#include "library/wimp/gl/glcontext.h"
#include "library/wimp/windowpeer.h"

#include <QtGui/QImage>
#include <QtGui/QPixmap>
#include <QtGui/QScreen>
#include <QtTest/QTest>

TEST_F(TWindowClassTest, AnOpenGlWindowPaintsWithItsContext)
{
    TRecordingWindow view;
    bool current = false;
    unsigned frameBuffer = 0;
    view.Answer = [&](const TMessage& message) {
        if (message.Type != MT_PAINT)
            return;
        current = view.MakeCurrent();
        frameBuffer = view.GetFrameBuffer();
        EXPECT_EQ(message.Context, nullptr);
    };
    ASSERT_TRUE(MakeChild(view, WK_GLCHILD));
    view.MoveTo(0, 0, 100, 80);
    ASSERT_TRUE(WaitFor([&] { return view.Count(MT_PAINT) > 0; }));
    EXPECT_TRUE(IsGlReady());
    EXPECT_TRUE(current);
    EXPECT_NE(frameBuffer, 0u);
    view.Redraw();
    view.Forget();
    ASSERT_TRUE(WaitFor([&] { return view.Count(MT_PAINT) > 0; }));
}

TEST_F(TWindowClassTest, AnOpenGlWindowOfNoSizePaintsAgainOnceItHasOne)
{
    TRecordingWindow view;
    ASSERT_TRUE(MakeChild(view, WK_GLCHILD));
    for (int i = 0; i < 3; ++i) {
        view.MoveTo(0, 0, 0, 0);
        Settle();
        int width = -1;
        int height = -1;
        view.GetSize(width, height);
        EXPECT_EQ(width, 0);
        EXPECT_EQ(height, 0);
        view.MakeCurrent();
        view.Forget();
        view.MoveTo(0, 0, 60, 40);
        ASSERT_TRUE(WaitFor([&] { return view.Count(MT_PAINT) > 0; })) << i;
        EXPECT_TRUE(view.MakeCurrent());
    }
}

TEST_F(TWindowClassTest, OpenGlWindowsEachShowWhatTheyHaveDrawn)
{
    struct TView
    {
        THalvesWindow Window;
        QRect Place;
        QRgb Upper;
        QRgb Lower;
    };
    // Two of one size and one of another.
    TView views[3];
    const QRect places[] = {QRect(10, 10, 100, 80), QRect(120, 10, 100, 80), QRect(10, 100, 60, 40)};
    const auto paint = [](const TVector4& colour) {
        return qRgb(static_cast<int>(colour[0]) * 255, static_cast<int>(colour[1]) * 255,
                    static_cast<int>(colour[2]) * 255);
    };
    for (int i = 0; i < 3; ++i) {
        TView& view = views[i];
        view.Place = places[i];
        view.Window.Root.Upper = TVector4(i == 0, i == 1, i == 2, 1);
        view.Window.Root.Lower = TVector4(1, i != 1, i != 2, 1);
        view.Upper = paint(view.Window.Root.Upper);
        view.Lower = paint(view.Window.Root.Lower);
        ASSERT_TRUE(MakeChild(view.Window, WK_GLCHILD));
        ASSERT_TRUE(view.Window.Renderer.Init(&view.Window));
        view.Window.MoveTo(view.Place.x(), view.Place.y(), view.Place.width(), view.Place.height());
    }
    const auto areShown = [&](int from) {
        const QImage image = Widget()->screen()->grabWindow(Widget()->winId()).toImage();
        for (int i = from; i < 3; ++i) {
            const QRect& place = views[i].Place;
            if (image.pixel(place.topLeft()) != views[i].Upper ||
                image.pixel(place.center() - QPoint(0, 3)) != views[i].Upper ||
                image.pixel(place.center() + QPoint(0, 3)) != views[i].Lower ||
                image.pixel(place.bottomRight()) != views[i].Lower)
                return false;
        }
        return true;
    };
    EXPECT_TRUE(WaitFor([&] { return areShown(0); }));
    views[1].Window.Redraw();
    Settle();
    EXPECT_TRUE(areShown(0));
    views[0].Window.Destroy();
    views[2].Window.Redraw();
    Settle();
    EXPECT_TRUE(areShown(1));
}

TEST_F(TWindowClassTest, AWindowThatOpenGlDoesNotDrawHasNoContext)
{
    EXPECT_FALSE(Window.MakeCurrent());
    EXPECT_EQ(Window.GetFrameBuffer(), 0u);
}

TEST_F(TWindowClassTest, AnOpenGlWindowMayGoInsideItsPaint)
{
    TRecordingWindow view;
    view.Answer = [&](const TMessage& message) {
        if (message.Type == MT_PAINT)
            view.Destroy();
    };
    ASSERT_TRUE(MakeChild(view, WK_GLCHILD));
    view.MoveTo(0, 0, 100, 80);
    ASSERT_TRUE(WaitFor([&] { return view.GetHandle() == nullptr; }));
    Settle();
    EXPECT_TRUE(Window.IsShown());
}

// Run on its own with the window system told to do without OpenGL.
TEST_F(TWindowClassTest, WithoutOpenGlTheViewStaysEmptyAndOneMessageTellsIt)
{
    if (HasWorkingGl())
        GTEST_SKIP() << "OpenGL works here";
    static int messages;
    messages = 0;
    SetMessageForms([](const char*) { ++messages; }, nullptr);
    TRecordingWindow first;
    TRecordingWindow second;
    ASSERT_TRUE(MakeChild(first, WK_GLCHILD));
    ASSERT_TRUE(MakeChild(second, WK_GLCHILD));
    first.MoveTo(0, 0, 100, 80);
    second.MoveTo(100, 0, 100, 80);
    EXPECT_EQ(messages, 0);
    Settle();
    EXPECT_EQ(messages, 1);
    EXPECT_EQ(first.Count(MT_PAINT), 0);
    EXPECT_FALSE(first.MakeCurrent());
    EXPECT_EQ(first.GetFrameBuffer(), 0u);
    EXPECT_FALSE(IsGlReady());
    QTest::mouseClick(second.GetHandle(), Qt::LeftButton, {}, QPoint(3, 4));
    EXPECT_EQ(second.Count(MT_LEFTDOWN), 1);
    SetMessageForms(nullptr, nullptr);
}
