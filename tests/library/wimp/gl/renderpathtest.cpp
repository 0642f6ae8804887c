#include "support/gltest.h"
#include "support/testsupport.h"

#include "library/wimp/gl/renderpath.h"

#include <cmath>

namespace {

constexpr TPixel Red = {255, 0, 0, 255};
constexpr TPixel Background = {255, 255, 242, 255};
const TVector4 RedColour(1, 0, 0, 1);
const TVector4 BlueColour(0, 0, 1, 1);
const TVector2 One(1, 1);

bool IsRed(const TPixel& pixel)
{
    return IsClose(pixel, Red);
}

bool IsNear(const TVector2& a, const TVector2& b)
{
    return (a - b).Length() < 1e-3f;
}

void MakeSquare(TRenderPath& path)
{
    path.MoveTo(TVector2(0, 0));
    path.LineTo(TVector2(10, 0));
    path.LineTo(TVector2(10, 10));
    path.LineTo(TVector2(0, 10));
    path.Close();
}

// Two legs of 100 that meet at an angle, pointing to the right.
std::vector<TVector2> StrokeOfCorner(double degrees, float width)
{
    const double half = degrees / 2 * 3.14159265358979 / 180;
    const TVector2 leg(static_cast<float>(-100 * std::cos(half)), static_cast<float>(100 * std::sin(half)));
    TRenderPath path;
    path.MoveTo(leg);
    path.LineTo(TVector2(0, 0));
    path.LineTo(TVector2(leg[0], -leg[1]));
    path.SetWidth(width);
    path.GetPoints(One);
    vector<TVector2> strip;
    path.GetStroke(strip);
    return std::vector<TVector2>(strip.begin(), strip.end());
}

} // namespace

TEST(TRenderPath, AStraightLineKeepsItsControlPointsAtAThirdAndTwoThirds)
{
    TRenderPath path;
    path.MoveTo(TVector2(3, 6));
    path.LineTo(TVector2(9, 0));
    ASSERT_EQ(path.GetSegments().size(), 1);
    const TRenderPath::TSegment& line = path.GetSegments()[0];
    EXPECT_FALSE(line.IsCurve);
    EXPECT_EQ(line.Control[0], TVector2(3, 6));
    EXPECT_EQ(line.Control[1], TVector2(5, 4));
    EXPECT_EQ(line.Control[2], TVector2(7, 2));
    EXPECT_EQ(line.Control[3], TVector2(9, 0));
}

TEST(TRenderPath, ACurveKeepsItsControlPoints)
{
    TRenderPath path;
    path.MoveTo(TVector2(1, 2));
    path.CurveTo(TVector2(3, 4), TVector2(5, 6), TVector2(7, 8));
    path.CurveTo(TVector2(9, 9), TVector2(8, 8), TVector2(6, 6));
    ASSERT_EQ(path.GetSegments().size(), 2);
    EXPECT_TRUE(path.GetSegments()[0].IsCurve);
    EXPECT_EQ(path.GetSegments()[0].Control[2], TVector2(5, 6));
    EXPECT_EQ(path.GetSegments()[1].Control[0], TVector2(7, 8));
}

TEST(TRenderPath, ALineContributesItsEndPointOnly)
{
    TRenderPath path;
    path.MoveTo(TVector2(0, 0));
    path.LineTo(TVector2(1000, 0));
    path.LineTo(TVector2(1000, 1000));
    ASSERT_EQ(path.GetPoints(One).size(), 3);
    EXPECT_EQ(path.GetPoints(One)[1], TVector2(1000, 0));
}

TEST(TRenderPath, AClosedPathDropsTheLastPoint)
{
    TRenderPath path;
    MakeSquare(path);
    EXPECT_TRUE(path.IsClosed());
    EXPECT_EQ(path.GetSegments().size(), 4);
    EXPECT_EQ(path.GetPoints(One).size(), 4);
    EXPECT_EQ(path.GetPoints(One)[3], TVector2(0, 10));
}

TEST(TRenderPath, CloseAddsNoLineWhereTheOutlineEndsAtItsStart)
{
    TRenderPath path;
    path.MoveTo(TVector2(0, 0));
    path.LineTo(TVector2(10, 0));
    path.LineTo(TVector2(0, 10));
    path.LineTo(TVector2(0, 0));
    path.Close();
    EXPECT_EQ(path.GetSegments().size(), 3);
    EXPECT_EQ(path.GetPoints(One).size(), 3);
}

TEST(TRenderPath, ACurveHoweverShortHasAtLeastFourSegments)
{
    const TVector2 tiny[] = {TVector2(0, 0), TVector2(0.01f, 0), TVector2(0.02f, 0), TVector2(0.03f, 0)};
    EXPECT_EQ(GetNumCurveParts(tiny, One, 1), 4);
    EXPECT_EQ(GetNumCurveParts(tiny, One, 0.1f), 4);
    TRenderPath path;
    path.MoveTo(tiny[0]);
    path.CurveTo(tiny[1], tiny[2], tiny[3]);
    EXPECT_EQ(path.GetPoints(One).size(), 5);
}

TEST(TRenderPath, TheNumberOfPartsFollowsLengthZoomAndTessellation)
{
    struct TCase
    {
        float Length;
        TVector2 Scale;
        float Tessellation;
        int Parts;
    };
    const TCase cases[] = {
        {300, TVector2(3, 4), 1, 75},   {300, TVector2(3, 4), 2, 150},    {300, TVector2(0.3f, 0.4f), 1, 7},
        {300, TVector2(0, 1), 0.5f, 7}, {3, TVector2(3, 4), 1, 4},        {3, TVector2(3, 4), 2, 8},
        {3, TVector2(3, 4), 0.5f, 4},   {1e30f, TVector2(1, 1), 1, 4096},
    };
    for (const TCase& test : cases) {
        const float third = test.Length / 3;
        const TVector2 control[] = {TVector2(0, 0), TVector2(third, 0), TVector2(2 * third, 0),
                                    TVector2(test.Length, 0)};
        EXPECT_EQ(GetNumCurveParts(control, test.Scale, test.Tessellation), test.Parts) << test.Length;
    }
}

TEST(TRenderPath, PointsLieOnTheCurve)
{
    const TVector2 arch[] = {TVector2(0, 0), TVector2(0, 8), TVector2(16, 8), TVector2(16, 0)};
    EXPECT_EQ(EvaluateCurve(arch, 0), arch[0]);
    EXPECT_EQ(EvaluateCurve(arch, 0.5f), TVector2(8, 6));
    EXPECT_EQ(EvaluateCurve(arch, 0.25f), TVector2(2.5f, 4.5f));
    EXPECT_EQ(EvaluateCurve(arch, 1), arch[3]);
    TRenderPath path;
    path.MoveTo(arch[0]);
    path.CurveTo(arch[1], arch[2], arch[3]);
    ASSERT_EQ(path.GetPoints(One).size(), 5);
    EXPECT_EQ(path.GetPoints(One)[1], TVector2(2.5f, 4.5f));
    EXPECT_EQ(path.GetPoints(One)[2], TVector2(8, 6));
}

TEST(TRenderPath, FlatteningIsKeptUntilTheZoomChangesByATenth)
{
    TRenderPath path;
    path.MoveTo(TVector2(0, 0));
    path.CurveTo(TVector2(0, 1000), TVector2(1000, 1000), TVector2(1000, 0));
    const int count = path.GetPoints(One).size();
    EXPECT_EQ(path.GetPoints(TVector2(1.09f, 1)).size(), count);
    EXPECT_EQ(path.GetPoints(TVector2(1.06f, 1.06f)).size(), count);
    const int more = path.GetPoints(TVector2(1.1f, 1.1f)).size();
    EXPECT_GT(more, count);
    // The distance counts from the zoom of the last flattening.
    EXPECT_EQ(path.GetPoints(TVector2(1.04f, 1.04f)).size(), more);
    EXPECT_EQ(path.GetPoints(One).size(), count);
}

TEST(TRenderPath, AChangedOutlineIsFlattenedAgain)
{
    TRenderPath path;
    path.MoveTo(TVector2(0, 0));
    path.LineTo(TVector2(10, 0));
    EXPECT_EQ(path.GetPoints(One).size(), 2);
    path.LineTo(TVector2(10, 10));
    EXPECT_EQ(path.GetPoints(One).size(), 3);
    path.MoveTo(TVector2(5, 5));
    EXPECT_EQ(path.GetSegments().size(), 0);
    ASSERT_EQ(path.GetPoints(One).size(), 1);
    EXPECT_EQ(path.GetPoints(One)[0], TVector2(5, 5));
}

TEST(TRenderPath, AnOpenStrokeHasItsEndsAtRightAngles)
{
    TRenderPath path;
    path.MoveTo(TVector2(0, 0));
    path.LineTo(TVector2(10, 0));
    path.LineTo(TVector2(10, 10));
    path.SetWidth(2);
    path.GetPoints(One);
    vector<TVector2> strip;
    path.GetStroke(strip);
    ASSERT_EQ(strip.size(), 6);
    const TVector2 wanted[] = {TVector2(0, 1),   TVector2(0, -1), TVector2(9, 1),
                               TVector2(11, -1), TVector2(9, 10), TVector2(11, 10)};
    for (int i = 0; i < 6; ++i)
        EXPECT_TRUE(IsNear(strip[i], wanted[i])) << i << ": " << strip[i][0] << " " << strip[i][1];
}

TEST(TRenderPath, AClosedStrokeWrapsRound)
{
    TRenderPath path;
    MakeSquare(path);
    path.SetWidth(2);
    path.GetPoints(One);
    vector<TVector2> strip;
    path.GetStroke(strip);
    ASSERT_EQ(strip.size(), 10);
    EXPECT_TRUE(IsNear(strip[0], TVector2(1, 1)));
    EXPECT_TRUE(IsNear(strip[1], TVector2(-1, -1)));
    EXPECT_TRUE(IsNear(strip[2], TVector2(9, 1)));
    EXPECT_TRUE(IsNear(strip[3], TVector2(11, -1)));
    EXPECT_EQ(strip[8], strip[0]);
    EXPECT_EQ(strip[9], strip[1]);
}

TEST(TRenderPath, ASharpCornersMitreStopsAtFourStrokeWidths)
{
    // The mitre of a corner is half the width over the sine of half the angle.
    const std::vector<TVector2> blunt = StrokeOfCorner(30, 2);
    ASSERT_EQ(blunt.size(), 6u);
    EXPECT_NEAR(blunt[2].Length(), 1 / std::sin(15 * 3.14159265 / 180), 1e-3);
    const std::vector<TVector2> sharp = StrokeOfCorner(5, 2);
    EXPECT_NEAR(sharp[2].Length(), 8, 1e-3);
    EXPECT_NEAR(sharp[3].Length(), 8, 1e-3);
    const std::vector<TVector2> reversal = StrokeOfCorner(0, 2);
    EXPECT_LE(reversal[2].Length(), 8);
}

TEST(TRenderPath, PointsThatCoincideLeaveTheStrokeWhole)
{
    TRenderPath path;
    path.MoveTo(TVector2(0, 0));
    path.LineTo(TVector2(0, 0));
    path.LineTo(TVector2(10, 0));
    path.LineTo(TVector2(10, 0));
    path.LineTo(TVector2(20, 0));
    path.SetWidth(2);
    path.GetPoints(One);
    vector<TVector2> strip;
    path.GetStroke(strip);
    ASSERT_EQ(strip.size(), 10);
    for (int i = 2; i < 10; ++i)
        EXPECT_EQ(std::abs(strip[i][1]), 1.0f) << i;
}

TEST(TRenderPath, ANegativeWidthIsAnAssertion)
{
    TRenderPath path;
    EXPECT_EQ(AssertionOf([&] { path.SetWidth(-0.5f); }), "width >= 0.0f");
    EXPECT_EQ(AssertionOf([&] { path.SetWidth(0); }), "");
}

TEST_F(TGlTest, AConvexPathIsFilled)
{
    TRenderPath path;
    MakeSquare(path);
    path.SetFillColour(RedColour);
    TDrawnObject root([&](TRenderer& renderer) { path.Render(renderer, TVector2(20, 30), TVector2(2, 3)); });
    const TPicture picture = Paint(root);
    EXPECT_EQ(picture.Count(IsRed, 20, 30, 20, 30), 600);
    EXPECT_EQ(picture.Count(IsRed), 600);
}

TEST_F(TGlTest, ARoundPathIsFilledToItsEdge)
{
    constexpr float k = 27.6f;
    TRenderPath path;
    path.MoveTo(TVector2(50, 0));
    path.CurveTo(TVector2(50 + k, 0), TVector2(100, 50 - k), TVector2(100, 50));
    path.CurveTo(TVector2(100, 50 + k), TVector2(50 + k, 100), TVector2(50, 100));
    path.CurveTo(TVector2(50 - k, 100), TVector2(0, 50 + k), TVector2(0, 50));
    path.CurveTo(TVector2(0, 50 - k), TVector2(50 - k, 0), TVector2(50, 0));
    path.Close();
    path.SetFillColour(RedColour);
    TDrawnObject root([&](TRenderer& renderer) { path.Render(renderer, TVector2(10, 10)); });
    const TPicture picture = Paint(root);
    EXPECT_NEAR(picture.Count(IsRed), 3.14159 * 50 * 50, 350);
    EXPECT_EQ(picture.At(60, 60), Red);
    EXPECT_EQ(picture.At(12, 12), Background);
}

TEST_F(TGlTest, AFanFromTheCentreFillsAStar)
{
    TRenderPath path;
    for (int i = 0; i < 10; ++i) {
        const double angle = i * 3.14159265 / 5;
        const double radius = i % 2 == 0 ? 60 : 20;
        const TVector2 point(static_cast<float>(80 + radius * std::sin(angle)),
                             static_cast<float>(70 - radius * std::cos(angle)));
        if (i == 0)
            path.MoveTo(point);
        else
            path.LineTo(point);
    }
    path.Close();
    path.SetFillColour(RedColour);
    TDrawnObject root([&](TRenderer& renderer) { path.Render(renderer); });
    const TPicture picture = Paint(root);
    EXPECT_EQ(picture.At(80, 70), Red);
    EXPECT_EQ(picture.At(80, 20), Red);
    // Between two points of the star.
    EXPECT_EQ(picture.At(102, 39), Background);
    EXPECT_EQ(picture.At(80, 100), Background);
}

TEST_F(TGlTest, TriangulationFillsWhatAFanFromTheCentreDoesNot)
{
    // The centre of this one lies outside it.
    TRenderPath path;
    path.MoveTo(TVector2(10, 10));
    path.LineTo(TVector2(100, 10));
    path.LineTo(TVector2(100, 20));
    path.LineTo(TVector2(20, 20));
    path.LineTo(TVector2(20, 100));
    path.LineTo(TVector2(10, 100));
    path.Close();
    path.SetFillColour(RedColour);
    path.Triangulate();
    TDrawnObject root([&](TRenderer& renderer) { path.Render(renderer); });
    EXPECT_EQ(Paint(root).Count(IsRed), 90 * 10 + 10 * 80);
}

TEST_F(TGlTest, TriangulatingAnOutlineThatCrossesItselfEnds)
{
    TRenderPath path;
    path.MoveTo(TVector2(10, 10));
    path.LineTo(TVector2(100, 100));
    path.LineTo(TVector2(100, 10));
    path.LineTo(TVector2(10, 100));
    path.Close();
    path.SetFillColour(RedColour);
    path.Triangulate();
    TDrawnObject root([&](TRenderer& renderer) { path.Render(renderer); });
    EXPECT_GT(Paint(root).Count(IsRed), 0);
}

TEST_F(TGlTest, OnlyAClosedPathIsFilled)
{
    TRenderPath path;
    path.MoveTo(TVector2(0, 0));
    path.LineTo(TVector2(50, 0));
    path.LineTo(TVector2(50, 50));
    path.SetFillColour(RedColour);
    TDrawnObject root([&](TRenderer& renderer) { path.Render(renderer); });
    EXPECT_EQ(Paint(root).Count(IsRed), 0);
    path.Close();
    EXPECT_GT(Paint(root).Count(IsRed), 1000);
    path.SetFilled(false);
    EXPECT_EQ(Paint(root).Count(IsRed), 0);
}

TEST_F(TGlTest, TheStrokeLiesOverTheFill)
{
    TRenderPath path;
    path.MoveTo(TVector2(20, 20));
    path.LineTo(TVector2(60, 20));
    path.LineTo(TVector2(60, 60));
    path.LineTo(TVector2(20, 60));
    path.Close();
    path.SetFillColour(BlueColour);
    path.SetStrokeColour(RedColour);
    path.SetWidth(4);
    TDrawnObject root([&](TRenderer& renderer) { path.Render(renderer); });
    EXPECT_EQ(Paint(root).Count(IsRed), 44 * 44 - 36 * 36);
    path.SetWidth(2);
    EXPECT_EQ(Paint(root).Count(IsRed), 42 * 42 - 38 * 38);
    path.SetWidth(0);
    EXPECT_EQ(Paint(root).Count(IsRed), 0);
}

TEST_F(TGlTest, TheLocalScaleStretchesTheOutlineAndNotTheStroke)
{
    TRenderPath path;
    MakeSquare(path);
    path.SetStrokeColour(RedColour);
    path.SetWidth(4);
    TDrawnObject root([&](TRenderer& renderer) { path.Render(renderer, TVector2(20, 20), TVector2(4, 4)); });
    EXPECT_EQ(Paint(root).Count(IsRed), 44 * 44 - 36 * 36);
}

TEST_F(TGlTest, AnEmptyPathDrawsNothing)
{
    TRenderPath path;
    path.SetFillColour(RedColour);
    path.SetStrokeColour(RedColour);
    path.SetWidth(3);
    TDrawnObject root([&](TRenderer& renderer) { path.Render(renderer); });
    EXPECT_EQ(Paint(root).Count(IsRed), 0);
    path.Close();
    EXPECT_EQ(Paint(root).Count(IsRed), 0);
}
