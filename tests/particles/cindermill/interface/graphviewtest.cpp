#include "support/testsupport.h"

#include "particles/cindermill/interface/graphview.h"

namespace {

constexpr int Width = 800;
constexpr int Height = 600;
constexpr float Near = 1e-3f;

void ExpectNear(const TVector2& a, const TVector2& b, float tolerance = Near)
{
    EXPECT_NEAR(a[0], b[0], tolerance);
    EXPECT_NEAR(a[1], b[1], tolerance);
}

// Where a world point is seen.
TVector2 ToPixel(const TGraphView& view, const TVector2& point)
{
    const TVector2 moved = point + view.GetOffset();
    return TVector2(moved[0] * view.GetScale()[0], moved[1] * view.GetScale()[1]);
}

} // namespace

TEST(TGraphView, APixelIsAPlaceInTheWorld)
{
    const TGraphView view(TVector2(10, -20), TVector2(2, 4));
    ExpectNear(view.PixelToWorld(100, 200), TVector2(40, 70));
    ExpectNear(ToPixel(view, TVector2(40, 70)), TVector2(100, 200));
}

TEST(TGraphView, AWheelNotchZoomsBySixPercent)
{
    TGraphView view;
    view.Zoom(0, 0, 120);
    ExpectNear(view.GetScale(), TVector2(1.06f, 1.06f), 1e-6f);
    view.Zoom(0, 0, -120);
    ExpectNear(view.GetScale(), TVector2(1.06f * 0.94f, 1.06f * 0.94f), 1e-6f);
}

TEST(TGraphView, OneWheelMessageZoomsByHalfAtMost)
{
    TGraphView in;
    in.Zoom(0, 0, 100000);
    ExpectNear(in.GetScale(), TVector2(1.5f, 1.5f), 1e-6f);
    TGraphView out;
    out.Zoom(0, 0, -100000);
    ExpectNear(out.GetScale(), TVector2(0.5f, 0.5f), 1e-6f);
}

TEST(TGraphView, WheelZoomAtScaleSevenInEachAxisDoesNotPassIt)
{
    TGraphView view(TVector2(0, 0), TVector2(7, 7));
    view.Zoom(400, 300, 120);
    EXPECT_EQ(view.GetScale(), TVector2(7, 7));
    view.Zoom(400, 300, -120);
    EXPECT_LT(view.GetScale()[0], 7.0f);
}

TEST(TGraphView, WheelZoomAtATenthDoesNotPassIt)
{
    TGraphView view(TVector2(0, 0), TVector2(0.1f, 0.1f));
    view.Zoom(400, 300, -120);
    EXPECT_EQ(view.GetScale(), TVector2(0.1f, 0.1f));
    view.Zoom(400, 300, 120);
    EXPECT_GT(view.GetScale()[0], 0.1f);
}

// The limits are those of the length, which both axes share.
TEST(TGraphView, AZoomJustInsideTheLimitsIsKept)
{
    TGraphView view(TVector2(0, 0), TVector2(6.5f, 6.5f));
    view.Zoom(0, 0, 120);
    ExpectNear(view.GetScale(), TVector2(6.89f, 6.89f), 1e-4f);
    view.Zoom(0, 0, 120);
    EXPECT_EQ(view.GetScale(), TVector2(7, 7));
}

TEST(TGraphView, WhatIsInSightStaysWhereItIs)
{
    TGraphView view(TVector2(10, -20), TVector2(2, 2));
    const TGraphView before = view;
    view.Reveal(TVector2(0, 30), TVector2(380, 310), Width, Height);
    EXPECT_EQ(view, before);
}

TEST(TGraphView, WhatReachesBeyondAnEdgeComesBackByThatMuch)
{
    for (const float scale : {0.5f, 1.0f, 2.0f}) {
        TGraphView view(TVector2(0, 0), TVector2(scale, scale));
        const TVector2 corner = view.PixelToWorld(Width, Height);
        view.Reveal(corner - TVector2(50, 40), corner + TVector2(30, 60), Width, Height);
        ExpectNear(ToPixel(view, corner + TVector2(30, 60)), TVector2(Width - 8, Height - 8));
        view.Reveal(TVector2(-90, -70), TVector2(-10, -10), Width, Height);
        ExpectNear(ToPixel(view, TVector2(-90, -70)), TVector2(8, 8));
        EXPECT_EQ(view.GetScale(), TVector2(scale, scale));
    }
}

// Its title has the button that closes it again.
TEST(TGraphView, OfWhatIsTooLargeTheTopAndTheLeftAreSeen)
{
    for (const float at : {-300.0f, 0.0f, 500.0f}) {
        TGraphView view(TVector2(at, at), TVector2(1, 1));
        view.Reveal(TVector2(0, 0), TVector2(1000, 900), Width, Height);
        ExpectNear(ToPixel(view, TVector2(0, 0)), TVector2(8, 8));
    }
}

TEST(TGraphView, ThePointersWorldPointStaysFixedDuringAZoomClampedScalesIncluded)
{
    constexpr float Scales[] = {0.1f, 0.105f, 0.5f, 1.0f, 3.0f, 6.9f, 7.0f};
    constexpr int Deltas[] = {-2000, -120, 120, 2000};
    for (const float scale : Scales)
        for (const int delta : Deltas) {
            TGraphView view(TVector2(-123, 45), TVector2(scale, scale));
            const TVector2 before = view.PixelToWorld(321, 123);
            view.Zoom(321, 123, delta);
            ExpectNear(view.PixelToWorld(321, 123), before, 1e-2f);
        }
}

TEST(TGraphView, APanFollowsThePointer)
{
    TGraphView view(TVector2(30, -10), TVector2(2, 2));
    int start[2];
    view.GetPanStart(100, 100, start);
    EXPECT_EQ(start[0], 40);
    EXPECT_EQ(start[1], 120);
    view.PanTo(100, 100, start);
    EXPECT_EQ(view.GetOffset(), TVector2(30, -10));
    view.PanTo(120, 90, start);
    EXPECT_EQ(view.GetOffset(), TVector2(40, -15));
    EXPECT_EQ(view.GetScale(), TVector2(2, 2));
}

TEST(TGraphView, InTheMiddleOfTheViewADragDoesNotScroll)
{
    TGraphView view;
    int margin = TGraphView::ScrollMargin;
    EXPECT_FALSE(view.ScrollAtEdge(16, 16, Width, Height, margin));
    EXPECT_FALSE(view.ScrollAtEdge(Width - 16, Height - 16, Width, Height, margin));
    EXPECT_EQ(view, TGraphView());
    EXPECT_EQ(margin, 16);
}

TEST(TGraphView, EachEdgeScrollsTowardsItselfByTheDepthInItsMargin)
{
    struct TCase
    {
        int X, Y;
        TVector2 Offset;
        int Margin;
    };
    const TCase cases[] = {
        {6, 300, TVector2(0.5f, 0), 17},  {Width - 6, 300, TVector2(-0.5f, 0), 17},
        {400, 6, TVector2(0, 0.5f), 16},  {400, Height - 6, TVector2(0, -0.5f), 16},
        {0, 0, TVector2(0.8f, 0.8f), 17}, {Width, Height, TVector2(-0.8f, -0.8f), 17},
    };
    for (const TCase& c : cases) {
        TGraphView view(TVector2(0, 0), TVector2(2, 2));
        int margin = TGraphView::ScrollMargin;
        EXPECT_TRUE(view.ScrollAtEdge(c.X, c.Y, Width, Height, margin)) << c.X << " " << c.Y;
        ExpectNear(view.GetOffset(), c.Offset, 1e-6f);
        EXPECT_EQ(margin, c.Margin) << c.X << " " << c.Y;
    }
}

TEST(TGraphView, BeyondTheEdgeTheDepthIsLimitedToAHundred)
{
    TGraphView view;
    int margin = TGraphView::ScrollMargin;
    view.ScrollAtEdge(-5000, 300, Width, Height, margin);
    ExpectNear(view.GetOffset(), TVector2(10, 0), 1e-6f);
}

TEST(TGraphView, TheMarginGrowsToTwentyWhileADragScrollsSidewaysAndFallsBack)
{
    TGraphView view;
    int margin = TGraphView::ScrollMargin;
    const int grown[] = {17, 18, 19, 20, 20, 20};
    for (const int expected : grown) {
        view.ScrollAtEdge(0, 300, Width, Height, margin);
        EXPECT_EQ(margin, expected);
    }
    const int fallen[] = {19, 18, 17, 16, 16};
    for (const int expected : fallen) {
        EXPECT_FALSE(view.ScrollAtEdge(400, 300, Width, Height, margin));
        EXPECT_EQ(margin, expected);
    }
}

TEST(TGraphView, AGrownMarginReachesFurtherIn)
{
    TGraphView view;
    int margin = 20;
    EXPECT_TRUE(view.ScrollAtEdge(18, 300, Width, Height, margin));
    ExpectNear(view.GetOffset(), TVector2(0.2f, 0), 1e-6f);
}

TEST(TGraphView, FramingShowsTheBoxWithSpaceAround)
{
    TGraphView view;
    view.Frame(TVector2(100, 200), TVector2(880, 300), Width, Height);
    ExpectNear(view.GetScale(), TVector2(1, 1), 1e-6f);
    ExpectNear(view.PixelToWorld(Width / 2, Height / 2), TVector2(490, 250));
    ExpectNear(ToPixel(view, TVector2(90, 250)), TVector2(0, Height / 2));
    ExpectNear(ToPixel(view, TVector2(890, 250)), TVector2(Width, Height / 2));
}

TEST(TGraphView, TheTighterAxisDecidesOnTheZoom)
{
    TGraphView view;
    view.Frame(TVector2(0, 0), TVector2(80, 1180), Width, Height);
    ExpectNear(view.GetScale(), TVector2(0.5f, 0.5f), 1e-6f);
}

TEST(TGraphView, FocusOnASingleSmallNodeZoomsToAtMostThree)
{
    TGraphView view;
    view.Frame(TVector2(1000, 1000), TVector2(1100, 1060), Width, Height);
    EXPECT_EQ(view.GetScale(), TVector2(3, 3));
    ExpectNear(view.PixelToWorld(Width / 2, Height / 2), TVector2(1050, 1030));
}

TEST(TGraphView, FramingAVastGraphStopsAtATenth)
{
    TGraphView view;
    view.Frame(TVector2(-1e6f, -1e6f), TVector2(1e6f, 1e6f), Width, Height);
    EXPECT_EQ(view.GetScale(), TVector2(0.1f, 0.1f));
    view.Frame(TVector2(0, 0), TVector2(100, 100), 0, 0);
    EXPECT_EQ(view.GetScale(), TVector2(0.1f, 0.1f));
}

TEST(TViewFocus, TenIdlePassesFinishAFocus)
{
    const TGraphView from(TVector2(12, 34), TVector2(0.5f, 0.5f));
    TGraphView to;
    to.Frame(TVector2(500, 500), TVector2(900, 700), Width, Height);
    TViewFocus focus;
    EXPECT_FALSE(focus.IsRunning());
    focus.Start(from, to, Width, Height);
    TGraphView view = from;
    for (int pass = 1; pass <= 10; ++pass) {
        EXPECT_TRUE(focus.IsRunning()) << pass;
        focus.Step(view, Width, Height);
    }
    EXPECT_FALSE(focus.IsRunning());
    EXPECT_EQ(view.GetScale(), to.GetScale());
    ExpectNear(view.GetOffset(), to.GetOffset());
}

TEST(TViewFocus, CentreAndScaleGoStraightFromOneToTheOther)
{
    const TGraphView from(TVector2(0, 0), TVector2(1, 1));
    TGraphView to;
    to.SetCentre(TVector2(1000, -500), TVector2(2, 2), Width, Height);
    TViewFocus focus;
    focus.Start(from, to, Width, Height);
    TGraphView view = from;
    const TVector2 start = from.GetCentre(Width, Height);
    for (int pass = 1; pass <= 10; ++pass) {
        focus.Step(view, Width, Height);
        const float part = static_cast<float>(pass) / 10.0f;
        ExpectNear(view.GetScale(), TVector2(1 + part, 1 + part));
        ExpectNear(view.GetCentre(Width, Height), start + (TVector2(1000, -500) - start) * part, 0.01f);
    }
}

TEST(TViewFocus, AStoppedFocusLeavesTheViewWhereItIs)
{
    TGraphView to;
    to.Frame(TVector2(0, 0), TVector2(10, 10), Width, Height);
    TViewFocus focus;
    focus.Start(TGraphView(), to, Width, Height);
    focus.Stop();
    EXPECT_FALSE(focus.IsRunning());
}
