#include "ramptest.h"

#include <filesystem>
#include <limits>

namespace {

// A ramp drawn for real. The pictures lie in the build folder's pictures/, to be looked at.
class RampPicture : public TRampTest
{
protected:
    RampPicture() { View.Init(&Surface); }

    void ShowColours()
    {
        Show("Colour Over Life");
        SetCurve(0, {{0, 1}, {0.3f, 1}, {0.55f, 1}, {1, 0.35f}});
        SetCurve(1, {{0, 0.95f},
                     {0.1f, 0.9f},
                     {0.2f, 0.55f},
                     {0.35f, 0.45f},
                     {0.5f, 0.35f},
                     {0.7f, 0.1f},
                     {1, 0.05f}});
        SetCurve(2, {{0, 0.6f}, {0.1f, 0.2f}, {0.3f, 0.05f}, {1, 0.1f}});
        SetCurve(3,
                 {{0, 0}, {0.03f, 0.5f}, {0.06f, 0.8f}, {0.15f, 0.8f}, {0.4f, 0.8f}, {0.8f, 0.3f}, {1, 0}});
    }
    TPicture Paint(float zoom)
    {
        View.SetScale(TVector2(zoom, zoom));
        View.SetOffset(TVector2(20, 10));
        View.Render(Root);
        return Surface.Read();
    }
    void MoveInView(const TVector2& world)
    {
        TMessage message;
        message.Type = MT_MOUSEMOVE;
        const TVector2 pixel = (world + View.GetOffset()) * View.GetScale()[0];
        message.X = double(pixel[0]);
        message.Y = double(pixel[1]);
        TRenderObject::Route(View, Root, message);
    }
    static void Keep(const TPicture& picture, const std::string& name)
    {
        const std::string folder = std::string(CINDERMILL_BINARY_DIR) + "/pictures";
        std::filesystem::create_directory(folder);
        EXPECT_TRUE(picture.SavePng(folder + "/" + name + ".png"));
    }
    TPixel At(const TPicture& picture, const TVector2& world)
    {
        const TVector2 place = (world + View.GetOffset()) * View.GetScale()[0];
        return picture.At(static_cast<int>(place[0]), static_cast<int>(place[1]));
    }
    // In the part of the ramp from one place to another.
    int Count(const TPicture& picture, const TVector2& min, const TVector2& max,
              const std::function<bool(const TPixel&)>& wanted)
    {
        const TVector2 from = (World(min) + View.GetOffset()) * View.GetScale()[0];
        const TVector2 to = (World(max) + View.GetOffset()) * View.GetScale()[0];
        return picture.Count(wanted, static_cast<int>(from[0]), static_cast<int>(from[1]),
                             static_cast<int>(to[0] - from[0]), static_cast<int>(to[1] - from[1]));
    }

    TTestWindow Surface{920, 400};
    TRenderer View;
};

bool IsRed(const TPixel& p)
{
    return p.R > p.G + 60 && p.R > p.B + 60;
}
bool IsGreen(const TPixel& p)
{
    return p.G > p.R + 50 && p.G > p.B + 50;
}
bool IsBlue(const TPixel& p)
{
    return p.B > p.R + 50 && p.B > p.G + 50;
}
// The fill of the selected point.
bool IsLit(const TPixel& p)
{
    return p.R > 230 && p.G > 150 && p.G < 210 && p.B < 60;
}

TEST_F(RampPicture, FourComponentsOfAColour)
{
    ShowColours();
    Click(PlaceOf(1, 3));
    for (float zoom : {1.0f, 2.0f}) {
        Paint(zoom);
        MoveInView(Place(0.45f, 0.8f));
        const TPicture picture = Paint(zoom);
        Keep(picture, zoom == 1 ? "ramp-colour-1" : "ramp-colour-2");
        const TRampLayout& layout = Ramp().GetLayout();
        EXPECT_GT(Count(picture, layout.PlotMin, layout.PlotMax, IsRed), 200);
        EXPECT_GT(Count(picture, layout.PlotMin, layout.PlotMax, IsGreen), 200);
        EXPECT_GT(Count(picture, layout.PlotMin, layout.PlotMax, IsBlue), 200);
        EXPECT_GT(Count(picture, layout.PlotMin, layout.PlotMax, IsLit), 20);
    }
}

TEST_F(RampPicture, ALinearRamp)
{
    ShowScalar();
    SetCurve(0, {{0, 0},
                 {0.1f, 0},
                 {0.2f, 1},
                 {0.25f, 1},
                 {0.4f, 1},
                 {0.5f, 1},
                 {0.6f, -0.6f},
                 {0.8f, 0},
                 {0.9f, 0},
                 {1, 0.2f}});
    Parameter().SetLinear(true);
    Click(PlaceOf(0, 3));
    for (float zoom : {1.0f, 2.0f})
        Keep(Paint(zoom), zoom == 1 ? "ramp-linear-1" : "ramp-linear-2");
    // On the straight line, where the cubic one is not.
    EXPECT_TRUE(IsRed(At(Paint(2), Place(0.06f, 0.24f))));
    Parameter().SetLinear(false);
    const TPicture curved = Paint(2);
    Keep(curved, "ramp-curved-2");
    EXPECT_FALSE(IsRed(At(curved, Place(0.06f, 0.24f))));
}

TEST_F(RampPicture, HandlesOfALinearRampAreNotSeen)
{
    ShowScalar();
    SetCurve(0, {{0, 0}, {0.3f, 1}, {0.6f, 1}, {1, 0}});
    const TVector2 handle = Ramp().GetView().ToPosition(TRampPoint{0.3f, 1});
    const TVector2 around(6, 6);
    EXPECT_GT(Count(Paint(2), handle - around, handle + around, IsRed), 20);
    // The anchors' span is the handles' too: the view stays.
    SetCurve(0, {{0, 0}, {0.3f, 1}, {0.6f, 1}, {1, 1}});
    Parameter().SetLinear(true);
    EXPECT_EQ(Count(Paint(2), handle - around, handle + around, IsRed), 0);
}

TEST_F(RampPicture, TheStripShowsTheColoursAndTheCheckerboardWhereAlphaIsLow)
{
    Show("Colour Over Life");
    SetCurve(0, {{0, 1}, {0.3f, 1}, {0.7f, 0}, {1, 0}});
    SetCurve(1, Flat(0));
    SetCurve(2, {{0, 0}, {0.3f, 0}, {0.7f, 1}, {1, 1}});
    SetCurve(3, Flat(1));
    const TRampLayout& layout = Ramp().GetLayout();
    const float y = (layout.StripMin[1] + layout.StripMax[1]) * 0.5f;
    auto strip = [&](const TPicture& picture, float time) {
        return At(picture, World(TVector2(Ramp().GetView().ToPosition(TRampPoint{time, 0})[0], y)));
    };
    TPicture picture = Paint(2);
    EXPECT_TRUE(IsClose(strip(picture, 0.01f), TPixel{255, 0, 0, 255}, 6));
    EXPECT_TRUE(IsClose(strip(picture, 0.99f), TPixel{0, 0, 255, 255}, 6));
    SetCurve(3, Flat(0));
    picture = Paint(2);
    auto isWhite = [](const TPixel& p) { return p.R > 250 && p.G > 250 && p.B > 250; };
    auto isGrey = [](const TPixel& p) { return p.R == p.G && p.G == p.B && p.R > 150 && p.R < 220; };
    EXPECT_GT(Count(picture, layout.StripMin, layout.StripMax, isWhite), 3000);
    EXPECT_GT(Count(picture, layout.StripMin, layout.StripMax, isGrey), 3000);
}

TEST_F(RampPicture, ACurveThatComponentsShareHasTheColoursOfAll)
{
    ShowColours();
    SetCurve(1, Flat(0));
    SetCurve(2, Flat(0));
    Lock(-1, 0, 0, -1);
    const TPicture picture = Paint(2);
    Keep(picture, "ramp-locked-2");
    const TVector2 from = Ramp().GetView().ToPosition(TRampPoint{0.05f, 1});
    const TVector2 to = Ramp().GetView().ToPosition(TRampPoint{0.5f, 0.85f});
    for (const auto& isColour : {IsRed, IsGreen, IsBlue})
        EXPECT_GT(Count(picture, from, to, isColour), 100);
    Lock(-1, -1, 0, -1);
    EXPECT_LT(Count(Paint(2), from, to, IsGreen), 20);
}

TEST_F(RampPicture, TheZeroLineIsDarker)
{
    ShowScalar();
    SetCurve(0, {{0, -1}, {0, 1}, {0.05f, 1}, {0.1f, 1}, {0.5f, 1}, {0.7f, 1}, {1, 1}});
    const TPicture picture = Paint(2);
    // Between two lines of the time.
    const TPixel zero = At(picture, Place(0.55f, 0));
    const TPixel other = At(picture, Place(0.55f, 0.5f));
    const TPixel paper = At(picture, Place(0.55f, 0.27f));
    EXPECT_LT(zero.G + 40, other.G);
    EXPECT_LT(other.G + 10, paper.G);
}

TEST_F(RampPicture, TheReadoutIsInTheViewOfThePointerOnly)
{
    ShowScalar();
    auto isDark = [](const TPixel& p) { return p.R < 110 && p.G < 110 && p.B < 110; };
    const TVector2 min = Ramp().GetView().ToPosition(TRampPoint{0.6f, 0.45f});
    const TVector2 max = min + TVector2(60, 40);
    Move(Place(0.6f, 0.2f));
    EXPECT_LT(Count(Paint(2), min, max, isDark), 10);
    // The same pointer in this view.
    MoveInView(Place(0.6f, 0.2f));
    EXPECT_GT(Count(Paint(2), min, max, isDark), 200);
}

// Longer than there are numbers for its dashes: a file may hold points out of their order.
TEST_F(RampPicture, ASharedOutlineOfAnyLengthHasTheColoursOfAll)
{
    constexpr int numAnchors = 10000;
    ShowColours();
    TPoints points;
    for (int i = 0; i < numAnchors; ++i)
        for (int k = 0; k < 3; ++k)
            points.push_back({i % 2 == 0 ? -1e30f : 1e30f, 0.5f});
    for (int k = 0; k < 3; ++k)
        points.push_back({0, 0.5f});
    points.push_back({1, 0.5f});
    SetCurve(0, points);
    Parameter().SetLinear(true);
    Lock(-1, 0, 0, -1);
    const TPicture picture = Paint(2);
    const TVector2 from = Ramp().GetView().ToPosition(TRampPoint{0.05f, 0.6f});
    const TVector2 to = Ramp().GetView().ToPosition(TRampPoint{0.95f, 0.4f});
    for (const auto& isColour : {IsRed, IsGreen, IsBlue})
        EXPECT_GT(Count(picture, from, to, isColour), 100);
}

// A file may hold any number.
TEST_F(RampPicture, StrangeNumbersAreDrawnWithoutHarm)
{
    Show("Colour Over Life");
    const float infinity = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    SetCurve(0, {{0, nan}, {nan, 1}, {0.7f, infinity}, {1, 0}});
    SetCurve(1, {{0, -3e38f}, {0, 3e38f}, {1, 3e38f}, {1, -3e38f}});
    SetCurve(2, {{infinity, 0}});
    SetCurve(3, {});
    Paint(2);
    for (int i = 0; i < 20; ++i)
        Wheel(Place(0.5f, 0.5f), i % 2 == 0 ? 1000 : -900);
    Click(World(TVector2(100, 70)));
    DragTo(Axis(), Axis() + TVector2(3000, 3000));
    Paint(1);
    EXPECT_EQ(Ramp().GetValue(3, 0.5f), 0);
}

} // namespace
