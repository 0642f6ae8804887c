#include "ramppoints.h"

#include "support/testsupport.h"

#include <cmath>

namespace {

TRampCurve Curve(const TPoints& points)
{
    TRampCurve curve;
    curve.SetPoints(ToVector(points));
    return curve;
}

// Three segments of one third each, straight.
TPoints Straight3()
{
    TPoints points;
    for (int i = 0; i < 10; ++i)
        points.push_back({static_cast<float>(i) / 9.0f, static_cast<float>(i) / 9.0f});
    return points;
}

TEST(RampCurve, TimesOutsideGiveTheValuesOfTheEnds)
{
    const TRampCurve curve = Curve({{0.25f, 2}, {0.4f, 9}, {0.6f, 9}, {0.75f, 5}});
    for (bool linear : {false, true}) {
        EXPECT_EQ(curve.Evaluate(-1, linear), 2);
        EXPECT_EQ(curve.Evaluate(0.25f, linear), 2);
        EXPECT_EQ(curve.Evaluate(0.75f, linear), 5);
        EXPECT_EQ(curve.Evaluate(3, linear), 5);
    }
}

TEST(RampCurve, ALinearCurveGoesStraightFromAnchorToAnchor)
{
    const TRampCurve curve = Curve({{0, 1}, {0, 100}, {1, -100}, {1, 3}, {1, 7}, {2, 7}, {2, 0}});
    EXPECT_FLOAT_EQ(curve.Evaluate(0.25f, true), 1.5f);
    EXPECT_FLOAT_EQ(curve.Evaluate(1.5f, true), 1.5f);
    EXPECT_FLOAT_EQ(curve.Evaluate(1, true), 3);
}

// Time is a cubic of the parameter too: the value at a time is that at the parameter which gives the time.
TEST(RampCurve, ACubicCurveIsEvaluatedAtTheParameterOfTheTime)
{
    const TPoints p = {{0, 0}, {0.8f, 0.1f}, {0.9f, 0.7f}, {1, 1}};
    const TRampCurve curve = Curve(p);
    auto cubic = [](double a, double b, double c, double d, double t) {
        const double s = 1 - t;
        return s * s * s * a + 3 * s * s * t * b + 3 * s * t * t * c + t * t * t * d;
    };
    for (double t : {0.1, 0.25, 0.5, 0.6, 0.9}) {
        const double time = cubic(p[0].X, p[1].X, p[2].X, p[3].X, t);
        const double value = cubic(p[0].Y, p[1].Y, p[2].Y, p[3].Y, t);
        EXPECT_NEAR(curve.Evaluate(static_cast<float>(time), false), value, 1e-5);
    }
    EXPECT_GT(std::abs(curve.Evaluate(0.5f, false) - curve.Evaluate(0.5f, true)), 0.2f);
}

TEST(RampCurve, PointsBehindTheLastWholeSegmentAreKeptAndNoPartOfTheCurve)
{
    TRampCurve curve = Curve({{0, 0}, {0.3f, 0}, {0.6f, 0}, {1, 1}, {5, 50}, {6, 60}});
    EXPECT_EQ(curve.GetNumPoints(), 4);
    EXPECT_EQ(curve.GetLastTime(), 1);
    EXPECT_EQ(curve.Evaluate(2, false), 1);
    curve.MovePoint(3, {1, 2});
    EXPECT_EQ(curve.Evaluate(2, false), 2);
    ASSERT_EQ(curve.GetPoints().size(), 6);
    EXPECT_EQ(FromVector(curve.GetPoints())[4], (TRampPoint{5, 50}));
    EXPECT_EQ(FromVector(curve.GetPoints())[5], (TRampPoint{6, 60}));
}

TEST(RampCurve, ACurveWithoutPointsIsZero)
{
    const TRampCurve curve = Curve({});
    EXPECT_EQ(curve.GetNumPoints(), 0);
    EXPECT_EQ(curve.Evaluate(0.5f, false), 0);
    EXPECT_EQ(curve.GetLastTime(), 0);
}

TEST(RampCurve, AnAnchorTakesItsHandlesAlong)
{
    TRampCurve curve =
        Curve({{0, 0}, {0.1f, 0}, {0.4f, 0.4f}, {0.5f, 0.5f}, {0.6f, 0.6f}, {0.9f, 1}, {1, 1}});
    curve.MovePoint(3, {0.55f, 2});
    ExpectPoints(curve.GetPoints(),
                 {{0, 0}, {0.1f, 0}, {0.45f, 1.9f}, {0.55f, 2}, {0.65f, 2.1f}, {0.9f, 1}, {1, 1}});
}

TEST(RampCurve, AnAnchorStaysBetweenItsNeighboursInTime)
{
    TRampCurve curve = Curve(Straight3());
    curve.MovePoint(3, {5, 0});
    EXPECT_EQ(curve.GetPoint(3).X, curve.GetPoint(6).X);
    EXPECT_EQ(curve.GetPoint(3).Y, 0);
    curve.MovePoint(3, {-5, 1});
    EXPECT_EQ(curve.GetPoint(3).X, 0);
    for (int i = 1; i < curve.GetNumPoints(); ++i)
        if (i % 3 != 2 && i % 3 != 1) {
            EXPECT_GE(curve.GetPoint(i).X, curve.GetPoint(i - 3).X);
        }
}

TEST(RampCurve, TheFirstAndTheLastAnchorMoveInValueOnly)
{
    TRampCurve curve = Curve({{0, 0}, {0.2f, 0}, {0.8f, 1}, {1, 1}});
    curve.MovePoint(0, {0.5f, 3});
    curve.MovePoint(3, {0.5f, -3});
    ExpectPoints(curve.GetPoints(), {{0, 3}, {0.2f, 3}, {0.8f, -3}, {1, -3}});
}

TEST(RampCurve, AHandleStaysInTheTimesOfItsSegment)
{
    TRampCurve curve = Curve(Straight3());
    const float first = curve.GetPoint(3).X;
    const float second = curve.GetPoint(6).X;
    curve.MovePoint(4, {-1, 8});
    EXPECT_EQ(curve.GetPoint(4), (TRampPoint{first, 8}));
    curve.MovePoint(4, {7, 8});
    EXPECT_EQ(curve.GetPoint(4), (TRampPoint{second, 8}));
    curve.MovePoint(5, {7, -8});
    EXPECT_EQ(curve.GetPoint(5), (TRampPoint{second, -8}));
    curve.MovePoint(2, {9, 0});
    EXPECT_EQ(curve.GetPoint(2), (TRampPoint{first, 0}));
}

// An anchor that comes near its neighbour leaves no handle of the neighbour's behind it.
TEST(RampCurve, MovingAnAnchorClampsAllHandlesOfItsSegments)
{
    TRampCurve curve = Curve(Straight3());
    curve.MovePoint(1, {0.3f, 0});
    curve.MovePoint(3, {0.1f, 0.5f});
    for (int segment : {0, 3})
        for (int handle : {segment + 1, segment + 2}) {
            EXPECT_GE(curve.GetPoint(handle).X, curve.GetPoint(segment).X);
            EXPECT_LE(curve.GetPoint(handle).X, curve.GetPoint(segment + 3).X);
        }
    EXPECT_EQ(curve.GetPoint(1).X, 0.1f);
}

TEST(RampCurve, InsertingPutsAStraightAnchorBetweenAndLeavesTheNeighboursHandles)
{
    TRampCurve curve = Curve({{0, 0}, {0.1f, 5}, {0.8f, 6}, {0.9f, 3}});
    EXPECT_EQ(curve.Insert({0.3f, 9}), 3);
    ExpectPoints(curve.GetPoints(),
                 {{0, 0}, {0.1f, 5}, {0.2f, 6}, {0.3f, 9}, {0.5f, 7}, {0.8f, 6}, {0.9f, 3}});
}

TEST(RampCurve, InsertingClampsHandlesThatTheNewAnchorCutsOff)
{
    TRampCurve curve = Curve({{0, 0}, {0.7f, 5}, {0.2f, 6}, {0.9f, 3}});
    EXPECT_EQ(curve.Insert({0.3f, 9}), 3);
    EXPECT_EQ(curve.GetPoint(1), (TRampPoint{0.3f, 5}));
    EXPECT_EQ(curve.GetPoint(5), (TRampPoint{0.3f, 6}));
}

TEST(RampCurve, InsertingGoesIntoTheSegmentOfItsTime)
{
    TRampCurve curve = Curve(Straight3());
    EXPECT_EQ(curve.Insert({0.5f, 0}), 6);
    EXPECT_EQ(curve.GetNumPoints(), 13);
    EXPECT_EQ(curve.GetPoint(6), (TRampPoint{0.5f, 0}));
    EXPECT_EQ(curve.Insert({2, 4}), 12);
    EXPECT_EQ(curve.GetPoint(12), (TRampPoint{1, 4}));
}

TEST(RampCurve, NothingCanBeInsertedWithoutASegment)
{
    TRampCurve curve = Curve({{0, 1}});
    EXPECT_EQ(curve.Insert({0, 0}), -1);
    EXPECT_EQ(curve.GetPoints().size(), 1);
}

// w = 0.8, h = 0.2: the handle before grows four times, the one behind by 0.8 / 0.6.
TEST(RampCurve, RemovingStretchesTheHandlesThatAreLeft)
{
    TRampCurve curve = Curve({{0, 0},
                              {0.1f, 0.3f},
                              {0.15f, 9},
                              {0.2f, 1},
                              {0.25f, 9},
                              {0.5f, 0.7f},
                              {0.8f, 1},
                              {0.8f, 1},
                              {0.9f, 0},
                              {1, 0}});
    curve.RemovePoint(3);
    ExpectPoints(curve.GetPoints(),
                 {{0, 0}, {0.4f, 1.2f}, {0.4f, 0.6f}, {0.8f, 1}, {0.8f, 1}, {0.9f, 0}, {1, 0}});
}

TEST(RampCurve, RemovingStretchesNothingByTimesThatAreNone)
{
    TRampCurve early = Curve({{0, 0}, {0, 0.5f}, {0, 9}, {0.0005f, 1}, {0.1f, 9}, {0.5f, 0.7f}, {1, 1}});
    early.RemovePoint(3);
    ExpectPoints(early.GetPoints(), {{0, 0}, {0, 0.5f}, {0.5f, 0.7f}, {1, 1}});
    TRampCurve late = Curve({{0, 0}, {0.5f, 0.5f}, {0.6f, 9}, {0.9995f, 1}, {1, 9}, {1, 0.7f}, {1, 1}});
    late.RemovePoint(3);
    EXPECT_EQ(late.GetPoint(2), (TRampPoint{1, 0.7f}));
    EXPECT_NEAR(late.GetPoint(1).X, 0.5f, 0.001f);
}

TEST(RampCurve, HandlesDoNotCrossAfterRemoving)
{
    TRampCurve curve = Curve({{0, 0}, {0.3f, 1}, {0.4f, 9}, {0.4f, 1}, {0.5f, 9}, {0.55f, 1}, {1, 1}});
    curve.RemovePoint(3);
    // Stretched to 0.75 and 0.25.
    EXPECT_NEAR(curve.GetPoint(1).X, 0.75f, 1e-6f);
    EXPECT_EQ(curve.GetPoint(2).X, curve.GetPoint(1).X);
}

TEST(RampCurve, OnlyInnerAnchorsCanBeRemoved)
{
    TRampCurve curve = Curve(Straight3());
    const std::string text = "(point % 3) == 0 && point != 0 && point != ControlPoints[comp].size()-1";
    for (int point : {0, 1, 2, 9})
        EXPECT_EQ(AssertionOf([&] { curve.RemovePoint(point); }), text) << point;
    curve.RemovePoint(6);
    EXPECT_EQ(curve.GetNumPoints(), 7);
}

TEST(RampCurve, ConstrainingPutsAnchorsInOrder)
{
    TRampCurve curve = Curve({{0.5f, 0}, {0, 1}, {2, 2}, {0.2f, 3}, {0, 4}, {3, 5}, {1, 6}});
    curve.Constrain();
    ExpectPoints(curve.GetPoints(), {{0.5f, 0}, {0.5f, 1}, {0.5f, 2}, {0.5f, 3}, {0.5f, 4}, {1, 5}, {1, 6}});
}

} // namespace
