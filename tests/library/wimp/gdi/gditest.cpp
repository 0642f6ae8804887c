#include "library/wimp/gdi/gdibitmap.h"
#include "library/wimp/gdi/gdicontext.h"
#include "support/windowtest.h"

#include <QtGui/QIcon>
#include <QtGui/QImage>
#include <QtGui/QPainter>

namespace {

constexpr QRgb White = 0xFFFFFFFF;
constexpr QRgb Red = 0xFFFF0000;
constexpr QRgb Blue = 0xFF0000FF;

class TGDIContextTest : public TWindowTest
{
protected:
    void SetUp() override { Image.fill(White); }
    int Count(QRgb colour) const
    {
        int count = 0;
        for (int y = 0; y < Image.height(); ++y)
            for (int x = 0; x < Image.width(); ++x)
                count += Image.pixel(x, y) == colour;
        return count;
    }
    void Draw(const std::function<void(TGDIContext&)>& work)
    {
        QPainter painter(&Image);
        TGDIContext context(painter);
        work(context);
    }

    QImage Image{40, 30, QImage::Format_RGB32};
};

class TGDIBitmapTest : public TWindowTest
{
};

} // namespace

TEST_F(TGDIContextTest, ARectangleHoldsItsLeftAndTopEdgeOnly)
{
    Draw([](TGDIContext& context) {
        context.SetPen(0xFF0000);
        context.SetBrush(0x0000FF);
        context.Rectangle(2, 3, 12, 9);
    });
    EXPECT_EQ(Image.pixel(2, 3), Red);
    EXPECT_EQ(Image.pixel(11, 8), Red);
    EXPECT_EQ(Image.pixel(12, 8), White);
    EXPECT_EQ(Image.pixel(11, 9), White);
    EXPECT_EQ(Count(Blue), 8 * 4);
    EXPECT_EQ(Count(Red), 10 * 6 - 8 * 4);
}

TEST_F(TGDIContextTest, ARectangleWithoutAPenIsFilledToItsEdges)
{
    Draw([](TGDIContext& context) {
        context.SetNoPen();
        context.SetBrush(0x0000FF);
        context.Rectangle(2, 3, 12, 9);
    });
    EXPECT_EQ(Count(Blue), 10 * 6);
}

TEST_F(TGDIContextTest, ARectangleWithoutABrushIsAnOutline)
{
    Draw([](TGDIContext& context) {
        context.SetPen(0xFF0000);
        context.SetNoBrush();
        context.Rectangle(2, 3, 12, 9);
    });
    EXPECT_EQ(Count(Red), 10 * 6 - 8 * 4);
    EXPECT_EQ(Count(White), 40 * 30 - Count(Red));
}

TEST_F(TGDIContextTest, AnEmptyRectangleDrawsNothing)
{
    Draw([](TGDIContext& context) {
        context.SetPen(0xFF0000);
        context.SetBrush(0x0000FF);
        context.Rectangle(5, 5, 5, 9);
        context.Rectangle(5, 5, 3, 9);
    });
    EXPECT_EQ(Count(White), 40 * 30);
}

TEST_F(TGDIContextTest, ALineLacksItsLastPoint)
{
    Draw([](TGDIContext& context) {
        context.SetPen(0xFF0000);
        context.Line(1, 1, 11, 1);
        context.Line(20, 10, 20, 5);
        context.Line(30, 20, 30, 20);
    });
    EXPECT_EQ(Count(Red), 10 + 5);
    EXPECT_EQ(Image.pixel(11, 1), White);
    EXPECT_EQ(Image.pixel(20, 5), White);
    EXPECT_EQ(Image.pixel(20, 10), Red);
}

TEST_F(TGDIContextTest, APolylineGoesThroughAllItsPoints)
{
    Draw([](TGDIContext& context) {
        context.SetPen(0xFF0000);
        vector<TGDIPoint> points;
        context.Polyline(points);
        points.push_back(TGDIPoint{5, 20});
        context.Polyline(points);
    });
    EXPECT_EQ(Count(Red), 0);
    Draw([](TGDIContext& context) {
        context.SetPen(0xFF0000);
        vector<TGDIPoint> points;
        for (const TGDIPoint& point : {TGDIPoint{2, 20}, TGDIPoint{12.5, 5.25}, TGDIPoint{30, 25}})
            points.push_back(point);
        context.Polyline(points);
    });
    EXPECT_EQ(Image.pixel(2, 20), Red);
    EXPECT_EQ(Image.pixel(30, 25), Red);
    int top = Image.height();
    for (int x = 0; x < Image.width(); ++x)
        for (int y = 0; y < Image.height(); ++y)
            if (Image.pixel(x, y) == Red)
                top = std::min(top, y);
    EXPECT_EQ(top, 5);
    // One in each column at least.
    EXPECT_GE(Count(Red), 29);
}

TEST_F(TGDIContextTest, NothingIsDrawnOutsideTheClip)
{
    Draw([](TGDIContext& context) {
        context.SetNoPen();
        context.SetBrush(0x0000FF);
        context.SetClip(5, 6, 15, 10);
        context.Rectangle(0, 0, 40, 30);
    });
    EXPECT_EQ(Count(Blue), 10 * 4);
    EXPECT_EQ(Image.pixel(5, 6), Blue);
    EXPECT_EQ(Image.pixel(14, 9), Blue);
    Draw([](TGDIContext& context) {
        context.SetNoPen();
        context.SetBrush(0x0000FF);
        context.SetClip(5, 6, 15, 10);
        context.ClearClip();
        context.Rectangle(0, 0, 40, 30);
    });
    EXPECT_EQ(Count(Blue), 40 * 30);
}

TEST_F(TGDIContextTest, ADottedLineDrawsEverySecondPixel)
{
    Draw([](TGDIContext& context) {
        context.SetPen(0xFF0000, true);
        context.Line(1, 1, 21, 1);
    });
    EXPECT_EQ(Count(Red), 10);
}

TEST_F(TGDIContextTest, ATextStandsBelowAndRightOfItsPlace)
{
    Draw([](TGDIContext& context) {
        context.SetTextColour(0xFF0000);
        context.TextOut(10, 8, "H");
        context.TextOut(0, 0, nullptr);
    });
    EXPECT_LT(Count(White), 40 * 30);
    for (int y = 0; y < Image.height(); ++y)
        for (int x = 0; x < Image.width(); ++x)
            EXPECT_TRUE((x >= 10 && y >= 8) || Image.pixel(x, y) == White) << x << ' ' << y;
}

TEST_F(TGDIContextTest, TheExtentGrowsWithTheTextAndTheFont)
{
    TGDIFont small;
    small.Height = -11;
    TGDIFont large;
    large.Height = 22;
    int width = 0;
    int height = 0;
    int twice = 0;
    int largeWidth = 0;
    int largeHeight = 0;
    GetTextExtent(small, "abc", width, height);
    GetTextExtent(small, "abcabc", twice, height);
    GetTextExtent(large, "abc", largeWidth, largeHeight);
    EXPECT_GT(width, 0);
    EXPECT_NEAR(twice, 2 * width, 2);
    EXPECT_GT(largeWidth, width);
    EXPECT_GT(largeHeight, height);
    int drawnWidth = 0;
    int drawnHeight = 0;
    Draw([&](TGDIContext& context) {
        context.SetFont(small);
        context.GetTextExtent("abc", drawnWidth, drawnHeight);
    });
    EXPECT_NEAR(drawnWidth, width, 1);
}

// Whatever the width, it never ends within a character.
TEST_F(TGDIContextTest, AFittedTextEndsInAnEllipsisBehindWholeCharacters)
{
    const TGDIFont font;
    const char* text = "Übergrößen für Flöße";
    const QString whole = QString::fromUtf8(text);
    const QString ellipsis(QChar(0x2026));
    int full = 0;
    int least = 0;
    int height = 0;
    GetTextExtent(font, text, full, height);
    GetTextExtent(font, ellipsis.toUtf8().constData(), least, height);
    ASSERT_GT(full, 2 * least);
    TString result;
    FitText(font, text, full, result);
    EXPECT_EQ(Text(result), text);
    for (int width = least + 1; width < full; ++width) {
        FitText(font, text, width, result);
        QString shown = QString::fromUtf8(result.Print());
        ASSERT_TRUE(shown.endsWith(ellipsis)) << width << ": " << result.Print();
        shown.chop(1);
        EXPECT_TRUE(whole.startsWith(shown)) << width << ": " << result.Print();
        int taken = 0;
        GetTextExtent(font, result, taken, height);
        EXPECT_LE(taken, width) << result.Print();
    }
    // Of the room something is made.
    FitText(font, text, full - 1, result);
    EXPECT_GT(result.Length(), whole.size() / 2);
}

TEST_F(TGDIContextTest, ARaisedEdgeIsLightAboveAndDarkBelow)
{
    Image.fill(Blue);
    Draw([](TGDIContext& context) { context.RaisedEdge(0, 0, 40, 30); });
    EXPECT_EQ(Image.pixel(5, 0), White);
    EXPECT_EQ(Image.pixel(0, 5), White);
    EXPECT_LT(qGray(Image.pixel(5, 29)), 128);
    EXPECT_LT(qGray(Image.pixel(39, 5)), 128);
    EXPECT_EQ(Image.pixel(20, 15), Blue);
}

TEST_F(TGDIContextTest, APictureIsDrawnAtItsPlace)
{
    const uint8_t pixels[] = {0, 0, 255, 255, 0, 0};
    TGDIBitmap bitmap;
    ASSERT_TRUE(bitmap.Create(2, 1, 24, pixels));
    Draw([&](TGDIContext& context) { context.Draw(bitmap, 4, 5); });
    EXPECT_EQ(Image.pixel(4, 5), Red);
    EXPECT_EQ(Image.pixel(5, 5), Blue);
}

TEST_F(TGDIBitmapTest, OnlyPixelsOf24BitsAreTaken)
{
    const uint8_t pixels[4] = {};
    TGDIBitmap bitmap;
    EXPECT_EQ(AssertionOf([&] { bitmap.Create(1, 1, 32, pixels); }), "bpp == 24");
}

TEST_F(TGDIBitmapTest, KeepsWidthHeightAndRowBytes)
{
    const uint8_t pixels[3 * 5 * 2] = {};
    TGDIBitmap bitmap;
    ASSERT_TRUE(bitmap.Create(5, 2, 24, pixels));
    EXPECT_EQ(bitmap.GetWidth(), 5);
    EXPECT_EQ(bitmap.GetHeight(), 2);
    EXPECT_EQ(bitmap.GetRowBytes(), 16);
}

TEST_F(TGDIBitmapTest, ThePicturesAreThereInTheirSizes)
{
    static constexpr std::pair<int, int> Sizes[] = {
        {PI_GRAPH, 32},    {PI_NEW, 32},         {PI_OPEN, 32},      {PI_PROGRAM, 32}, {PI_EXPAND, 12},
        {PI_COLLAPSE, 12}, {PI_BYPASSCLEAR, 10}, {PI_BYPASSSET, 10}, {PI_STEP, 16},    {PI_PAUSE, 16},
        {PI_PLAY, 16},     {PI_DRAG, 32},        {PI_DROP, 32}};
    for (const auto& [id, size] : Sizes) {
        TGDIBitmap bitmap;
        EXPECT_TRUE(bitmap.Load(id)) << id;
        EXPECT_EQ(bitmap.GetWidth(), size) << id;
        EXPECT_EQ(bitmap.GetHeight(), size) << id;
    }
}

TEST_F(TGDIBitmapTest, AMissingPictureFails)
{
    TGDIBitmap bitmap;
    EXPECT_FALSE(bitmap.Load(106));
    EXPECT_TRUE(LoadPictureIcon(106).isNull());
    EXPECT_FALSE(LoadPictureIcon(PI_PROGRAM).isNull());
}

TEST_F(TGDIBitmapTest, IconsOfButtonsAreDrawnForScaledScreensToo)
{
    for (const int picture : {PI_STEP, PI_PAUSE, PI_PLAY})
        for (const int size : {16, 24, 32})
            EXPECT_TRUE(LoadThemeIcon(picture).availableSizes().contains(QSize(size, size)))
                << picture << " " << size;
}
