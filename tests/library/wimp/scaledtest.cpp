#include "halveswindow.h"

#include "support/windowtest.h"

#include "library/wimp/gdi/gdibitmap.h"
#include "library/wimp/wimp.h"

#include <QtGui/QCursor>
#include <QtGui/QImage>
#include <QtGui/QMouseEvent>
#include <QtGui/QPixmap>
#include <QtGui/QScreen>
#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>

#include <cmath>
#include <cstdlib>

// Run on an ordinary screen and, in runs of their own, on screens of several scales.

namespace {

constexpr QRgb Red = 0xFFFF0000;
constexpr QRgb White = 0xFFFFFFFF;
constexpr QRgb Blue = 0xFF0000FF;

// What the run has been given.
double GetScale()
{
    const char* scale = std::getenv("QT_SCALE_FACTOR");
    return scale != nullptr ? std::atof(scale) : 1.0;
}

class Scaled : public TWindowTest
{
protected:
    void SetUp() override
    {
        ShowTopWindow(Window, Class, 400, 300);
        TWindowParams params;
        params.Class = &InnerClass;
        params.Owner = &Window;
        params.Kind = WK_GLCHILD;
        ASSERT_TRUE(Inner.Create(params));
        ASSERT_TRUE(Inner.Renderer.Init(&Inner));
        Inner.Root.Upper = Inner.Root.Lower = TVector4(1, 0, 0, 1);
    }
    void TearDown() override
    {
        Inner.Renderer.Release();
        Inner.Destroy();
    }
    // The dots of the screen that the window takes.
    QImage Grab()
    {
        QWidget* widget = Window.GetHandle();
        return widget->screen()->grabWindow(widget->winId()).toImage().convertToFormat(QImage::Format_RGB32);
    }
    static void Send(QEvent::Type type, TWindow& window, const QPointF& at)
    {
        QMouseEvent event(type, at, window.GetHandle()->mapToGlobal(at),
                          type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton, Qt::LeftButton, {});
        QApplication::sendEvent(window.GetHandle(), &event);
    }

    TWindowClass Class{"test_scaled"};
    TWindowClass InnerClass{"test_scaled_inner"};
    TRecordingWindow Window;
    // All red.
    THalvesWindow Inner;
};

} // namespace

TEST_F(Scaled, AWindowKnowsItsDots)
{
    EXPECT_NEAR(Window.GetDotsPerPixel(), GetScale(), 1e-4);
    for (int width = 301; width < 306; ++width) {
        Inner.MoveTo(0, 0, width, 200);
        int dots[2] = {};
        Inner.GetDotSize(dots[0], dots[1]);
        EXPECT_EQ(dots[0], std::lround(width * GetScale()));
        EXPECT_EQ(dots[1], std::lround(200 * GetScale()));
        int pixels[2] = {};
        Inner.GetSize(pixels[0], pixels[1]);
        EXPECT_EQ(pixels[0], width);
        EXPECT_EQ(pixels[1], 200);
    }
}

TEST_F(Scaled, OpenGlFillsAWindowToTheLastDot)
{
    // Sizes and places that are no whole number of dots among them.
    for (int step = 0; step < 4; ++step) {
        const int width = 301 + step;
        const int height = 203 + step;
        Window.MoveTo(40, 40, width, height);
        Inner.MoveTo(0, 0, width, height);
        Settle();
        int grabbed = 0;
        EXPECT_TRUE(WaitFor([&] {
            const QImage image = Grab();
            grabbed = image.width();
            for (int y = 0; y < image.height(); ++y)
                for (int x = 0; x < image.width(); ++x)
                    if (image.pixel(x, y) != Red)
                        return false;
            return image.width() >= std::floor(width * GetScale()) &&
                   image.height() >= std::floor(height * GetScale());
        })) << width
            << "x" << height << " " << grabbed;
    }
}

TEST_F(Scaled, OpenGlInsideAWindowLeavesNoGapAtItsNeighbours)
{
    Window.Answer = [](const TMessage& message) {
        if (message.Context == nullptr)
            return;
        message.Context->SetNoPen();
        message.Context->SetBrush(0x0000FF);
        message.Context->Rectangle(0, 0, 400, 300);
    };
    std::string stray;
    for (int step = 0; step < 4; ++step) {
        Inner.MoveTo(31 + step, 21 + step, 201 + step, 101 + step);
        Window.Redraw();
        Settle();
        const QRect place = Inner.GetHandle()->geometry();
        EXPECT_TRUE(WaitFor([&] {
            const QImage image = Grab();
            QRect red;
            for (int y = 0; y < image.height(); ++y)
                for (int x = 0; x < image.width(); ++x) {
                    const QRgb dot = image.pixel(x, y);
                    if (dot == Red)
                        red |= QRect(x, y, 1, 1);
                    else if (dot != Blue) {
                        stray = QStringLiteral("%1 at %2 %3 of %4 %5")
                                    .arg(dot, 8, 16)
                                    .arg(x)
                                    .arg(y)
                                    .arg(image.width())
                                    .arg(image.height())
                                    .toStdString();
                        return false;
                    }
                }
            const double scale = GetScale();
            return std::fabs(red.left() - place.left() * scale) <= 1 &&
                   std::fabs(red.top() - place.top() * scale) <= 1 &&
                   std::fabs(red.right() + 1 - (place.right() + 1) * scale) <= 1 &&
                   std::fabs(red.bottom() + 1 - (place.bottom() + 1) * scale) <= 1;
        })) << step
            << ": " << stray << " " << place.x() << " " << place.y() << " " << place.width() << " "
            << place.height();
    }
}

TEST_F(Scaled, ThePointerComesWithItsFractionOfAPixel)
{
    Inner.MoveTo(30, 20, 200, 100);
    const QPointF at(61 / GetScale(), 33 / GetScale());
    Send(QEvent::MouseButtonPress, Inner, at);
    EXPECT_NEAR(Inner.Last(MT_LEFTDOWN).X, 61 / GetScale(), 1e-9);
    EXPECT_NEAR(Inner.Last(MT_LEFTDOWN).Y, 33 / GetScale(), 1e-9);
    EXPECT_EQ(Inner.Last(MT_LEFTDOWN).GetPixelX(), static_cast<int>(61 / GetScale()));
    // There and back again nothing is lost.
    double x = at.x();
    double y = at.y();
    Inner.ClientToScreen(x, y);
    Window.ScreenToClient(x, y);
    EXPECT_NEAR(x, at.x() + 30, 1e-6);
    EXPECT_NEAR(y, at.y() + 20, 1e-6);
}

TEST_F(Scaled, LinesAreEquallyThickAndRectanglesTouch)
{
    Inner.Show(false);
    Window.Answer = [](const TMessage& message) {
        if (message.Context == nullptr)
            return;
        TGDIContext& context = *message.Context;
        context.SetNoPen();
        context.SetBrush(0xFFFFFF);
        context.Rectangle(0, 0, 400, 300);
        // A row of rectangles, red and blue in turns, and a ladder of lines.
        for (int i = 0; i < 20; ++i) {
            context.SetBrush(i % 2 == 0 ? 0xFF0000 : 0x0000FF);
            context.Rectangle(i * 7, 0, i * 7 + 7, 50);
        }
        context.SetPen(0xFF0000);
        for (int i = 0; i < 20; ++i)
            context.Line(10, 60 + i * 7, 100, 60 + i * 7);
        context.SetNoBrush();
        for (int i = 0; i < 20; ++i)
            context.Rectangle(200 + i, 60 + i * 7, 300 + i, 66 + i * 7);
    };
    Window.Redraw();
    Settle();
    const QImage image = Grab();
    const double scale = GetScale();
    for (int x = 0; x < std::floor(140 * scale); ++x)
        EXPECT_NE(image.pixel(x, 5), White) << x;
    EXPECT_EQ(image.pixel(static_cast<int>(std::lround(140 * scale)), 5), White);
    // Thicknesses, from the top down a column.
    auto thicknesses = [&](int column) {
        std::vector<int> runs;
        bool inside = false;
        for (int y = static_cast<int>(55 * scale); y < static_cast<int>(220 * scale); ++y) {
            const bool red = image.pixel(column, y) == Red;
            if (red && !inside)
                runs.push_back(0);
            if (red)
                ++runs.back();
            inside = red;
        }
        return runs;
    };
    const int expected = std::max(1, static_cast<int>(std::ceil(scale - 0.5)));
    EXPECT_EQ(thicknesses(static_cast<int>(50 * scale)), std::vector<int>(20, expected));
    EXPECT_EQ(thicknesses(static_cast<int>(250 * scale)), std::vector<int>(40, expected));
}

TEST_F(Scaled, MousePointersAreDrawnForTheScreensDotsAndTouchWithTheirTip)
{
    constexpr int Size = 32;
    for (const TCursor cursor : {CU_DRAG, CU_DROP}) {
        Window.SetCursor(cursor);
        const QCursor pointer = Window.GetHandle()->cursor();
        ASSERT_EQ(pointer.shape(), Qt::BitmapCursor);
        QImage image = pointer.pixmap().toImage();
        EXPECT_NEAR(image.devicePixelRatio(), GetScale(), 1e-4);
        ASSERT_EQ(image.size(), QSize(Size, Size) * GetScale());
        EXPECT_GT(qAlpha(image.pixel(pointer.hotSpot())), 100);
        EXPECT_EQ(pointer.hotSpot().x(), std::lround(GetScale()));
        EXPECT_EQ(pointer.hotSpot().y(), std::lround(GetScale()));
        // Not drawn for another screen and made as large.
        const int picture = cursor == CU_DRAG ? PI_DRAG : PI_DROP;
        TGDIBitmap small;
        ASSERT_TRUE(small.Load(picture));
        const QImage scaled =
            small.GetImage().scaled(image.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        image.setDevicePixelRatio(1);
        if (GetScale() > 1) {
            EXPECT_NE(image.convertToFormat(QImage::Format_ARGB32),
                      scaled.convertToFormat(QImage::Format_ARGB32));
        }
    }
}
