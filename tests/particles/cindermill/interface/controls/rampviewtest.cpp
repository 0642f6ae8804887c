#include "ramppoints.h"

#include "particles/cindermill/interface/controls/rampmodel.h"
#include "particles/cindermill/interface/controls/rampview.h"

namespace {

class RampView : public testing::Test
{
protected:
    RampView()
    {
        Model.Build(1, false);
        Set({{0, 0}, {0.3f, 0}, {0.6f, 1}, {1, 1}});
        View.SetLayout(Layout);
    }
    void Set(const TPoints& points) { Model.GetCurve(0).SetPoints(ToVector(points)); }
    TVector2 Place(float time, float value) { return View.ToPosition(TRampPoint{time, value}); }

    const TRampLayout Layout{TVector2(350, 150), false};
    TRampModel Model;
    TRampView View;
};

TEST_F(RampView, TheFitShowsAllTimesBetweenTheMargins)
{
    for (float last : {1.0f, 4.0f, 0.02f}) {
        Set({{0, 0}, {last, 0}, {last, 1}, {last, 1}});
        View.Fit(Model);
        EXPECT_FLOAT_EQ(Place(0, 0)[0], 26);
        EXPECT_NEAR(Place(last, 0)[0], 342.5f, 0.001f);
        EXPECT_EQ(View.GetViewScale(), TVector2(1, 1));
    }
}

TEST_F(RampView, TheFitSpreadsTheValuesOver100)
{
    for (float span : {1.0f, 0.25f, 300.0f}) {
        Set({{0, -span}, {0.3f, 0}, {0.6f, 0}, {1, 0}});
        View.Fit(Model);
        EXPECT_NEAR(Place(0, -span)[1] - Place(0, 0)[1], 100, 0.001f);
        EXPECT_LT(Place(0, -span)[1], Layout.PlotMax[1]);
        EXPECT_GT(Place(0, 0)[1], Layout.PlotMin[1]);
    }
}

TEST_F(RampView, AFlatCurveIsShownWithinATenth)
{
    Set(Flat(5));
    View.Fit(Model);
    EXPECT_NEAR(View.GetValuePixels(), 1000, 0.01);
}

TEST_F(RampView, ARampWithoutTimeIsShownAsOneLong)
{
    Set({{0, 0}, {0, 0}, {0, 0}, {0, 1}});
    View.Fit(Model);
    EXPECT_NEAR(View.GetTimePixels(), 316.5, 0.001);
}

TEST_F(RampView, PlacesAndPointsAreEachOthersInverse)
{
    View.Fit(Model);
    View.Zoom(TVector2(100, 60), 500);
    View.Pan(TVector2(-13, 29));
    const TRampPoint point = View.ToPoint(TVector2(200, 70));
    EXPECT_NEAR(View.ToPosition(point)[0], 200, 0.001f);
    EXPECT_NEAR(View.ToPosition(point)[1], 70, 0.001f);
}

TEST_F(RampView, ZoomingKeepsWhatIsUnderThePointer)
{
    View.Fit(Model);
    const TVector2 pointer(120, 77);
    const TRampPoint under = View.ToPoint(pointer);
    View.Zoom(pointer, 120);
    EXPECT_NEAR(View.GetViewScale()[0], 1.06f, 1e-5f);
    EXPECT_NEAR(View.GetViewScale()[1], 1.06f, 1e-5f);
    EXPECT_NEAR(View.ToPosition(under)[0], 120, 0.001f);
    EXPECT_NEAR(View.ToPosition(under)[1], 77, 0.001f);
    View.Zoom(pointer, -5000);
    EXPECT_NEAR(View.GetViewScale()[0], 0.53f, 1e-5f);
    View.Zoom(pointer, 5000);
    EXPECT_NEAR(View.GetViewScale()[0], 0.795f, 1e-5f);
}

TEST_F(RampView, TheZoomOfEachAxisHasLimits)
{
    View.Fit(Model);
    for (int i = 0; i < 60; ++i)
        View.Zoom(TVector2(100, 60), 1000);
    EXPECT_EQ(View.GetViewScale(), TVector2(24, 24));
    for (int i = 0; i < 60; ++i)
        View.Zoom(TVector2(100, 60), -1000);
    EXPECT_EQ(View.GetViewScale(), TVector2(0.1f, 0.1f));
}

TEST_F(RampView, GridLinesKeep25PixelsAtAnyZoom)
{
    for (float span : {0.1f, 1.0f, 7.0f, 90000.0f}) {
        Set({{0, 0}, {0.3f, 0}, {0.6f, span}, {1, span}});
        View.Fit(Model);
        for (int delta : {1000, -1000})
            for (int i = 0; i < 12; ++i) {
                EXPECT_GE(View.GetGridStep(0) * View.GetTimePixels(), 24.999);
                EXPECT_GE(View.GetGridStep(1) * View.GetValuePixels(), 24.999);
                View.Zoom(TVector2(100, 60), delta);
            }
    }
    Set({{0, 0}, {0.3f, 0}, {0.6f, 1}, {1, 1}});
    View.Fit(Model);
    EXPECT_DOUBLE_EQ(View.GetGridStep(1), 0.25);
    EXPECT_DOUBLE_EQ(View.GetGridStep(0), 0.1);
}

TEST_F(RampView, PanningMovesWhatIsShown)
{
    View.Fit(Model);
    const TVector2 before = Place(0.5f, 0.5f);
    View.Pan(TVector2(10, -20));
    EXPECT_EQ(Place(0.5f, 0.5f), before + TVector2(10, -20));
    EXPECT_FALSE(View.IsFit());
}

TEST_F(RampView, TheFitFollowsAndAChosenViewStays)
{
    View.Fit(Model);
    Set({{0, 0}, {0.3f, 0}, {0.6f, 10}, {2, 10}});
    View.Follow(Model);
    EXPECT_NEAR(Place(2, 10)[0], 342.5f, 0.001f);
    View.Pan(TVector2(5, 5));
    const TVector2 place = Place(1, 1);
    Set({{0, 0}, {0.3f, 0}, {0.6f, 100}, {5, 100}});
    View.Follow(Model);
    EXPECT_EQ(Place(1, 1), place);
    View.Fit(Model);
    EXPECT_NEAR(Place(5, 100)[0], 342.5f, 0.001f);
}

TEST_F(RampView, TheAxesLieLeftOfThePlotAndBelowIt)
{
    EXPECT_TRUE(Layout.IsInAxes(TVector2(10, 60)));
    EXPECT_TRUE(Layout.IsInAxes(TVector2(100, 145)));
    EXPECT_FALSE(Layout.IsInAxes(TVector2(100, 60)));
    EXPECT_FALSE(Layout.IsInAxes(TVector2(100, 10)));
    EXPECT_TRUE(Layout.IsInPlot(TVector2(25, 60)));
    EXPECT_FALSE(Layout.IsInPlot(TVector2(24.9f, 60)));
    const TRampLayout strip(TVector2(350, 150), true);
    EXPECT_FALSE(strip.IsInAxes(TVector2(100, 145)));
    EXPECT_TRUE(strip.IsInAxes(TVector2(100, 134)));
    EXPECT_EQ(strip.StripMax, TVector2(350, 150));
}

} // namespace
