#include "particles/cindermill/interface/trace/traceplace.h"

#include "support/testsupport.h"

namespace {

std::vector<int> Sides(const TWindowArea& area)
{
    return {area.Left, area.Top, area.Right, area.Bottom};
}

const std::vector<int> First = {50, 50, 700, 500};

TTraceSurroundings Surroundings(const TWindowArea& room, const TWindowArea& menus, const TWindowArea& graph)
{
    TTraceSurroundings about;
    about.Room = room;
    about.Menus = menus;
    about.Graph = graph;
    return about;
}

// A large screen, with the main window far from where traces open.
TTraceSurroundings Spacious()
{
    return Surroundings({0, 0, 2560, 1440}, {1000, 100, 2400, 160}, {1000, 160, 2400, 1200});
}

} // namespace

TEST(TracePlace, TheFirstOneHasItsOwnInFrontOfTheMainWindow)
{
    const TTracePlace place = FindTracePlace(Spacious());
    EXPECT_EQ(Sides(place.Area), First);
    EXPECT_TRUE(place.StaysInFront);
}

TEST(TracePlace, NoneOpensUponAnother)
{
    TTraceSurroundings about = Spacious();
    // With its frame about it, whose title lies above.
    about.Others.push_back({49, 28, 701, 501});
    const TWindowArea second = FindTracePlace(about).Area;
    EXPECT_GE(second.Left, 70);
    EXPECT_GE(second.Top, 70);
    EXPECT_EQ(second.Right - second.Left, 650);
    EXPECT_EQ(second.Bottom - second.Top, 450);
    about.Others.push_back(second);
    const TWindowArea third = FindTracePlace(about).Area;
    EXPECT_GT(third.Left, second.Left);
    EXPECT_GT(third.Top, second.Top);
    // One that was moved away has made room.
    about.Others[0] = {300, 50, 950, 500};
    EXPECT_EQ(Sides(FindTracePlace(about).Area), First);
}

TEST(TracePlace, NoneOpensBeyondTheScreen)
{
    TTraceSurroundings about = Spacious();
    about.Room = {0, 0, 2560, 510};
    about.Others.push_back({50, 50, 700, 500});
    EXPECT_EQ(Sides(FindTracePlace(about).Area), First);
}

TEST(TracePlace, ItLeavesTheMenusInSightAtTheBottomOfTheScreen)
{
    TTraceSurroundings about = Surroundings({0, 0, 1920, 1080}, {286, 64, 1636, 155}, {540, 180, 1385, 905});
    const TTracePlace place = FindTracePlace(about);
    EXPECT_TRUE(place.StaysInFront);
    EXPECT_EQ(place.Area.Left, 50);
    EXPECT_GT(place.Area.Bottom, 1000);
    EXPECT_LE(place.Area.Bottom, 1080);
    // The next one higher up, and aside.
    about.Others.push_back(place.Area);
    const TTracePlace second = FindTracePlace(about);
    EXPECT_TRUE(second.StaysInFront);
    EXPECT_GT(second.Area.Left, place.Area.Left);
    EXPECT_LT(second.Area.Top, place.Area.Top);
}

TEST(TracePlace, WhereItWouldHideTheGraphAClickThereMaySendItBehind)
{
    const TTracePlace place =
        FindTracePlace(Surroundings({0, 0, 1024, 700}, {0, 0, 1024, 60}, {200, 100, 800, 640}));
    EXPECT_FALSE(place.StaysInFront);
    EXPECT_EQ(Sides(place.Area), First);
}
