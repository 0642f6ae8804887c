#include "particles/cindermill/interface/displayplace.h"

#include "support/testsupport.h"

namespace {

TWindowArea Area(int left, int top, int width, int height)
{
    return TWindowArea{left, top, left + width, top + height};
}

std::string Told(const TWindowArea& area)
{
    return std::to_string(area.Left) + " " + std::to_string(area.Top) + " " +
           std::to_string(area.Right - area.Left) + " " + std::to_string(area.Bottom - area.Top);
}

const TWindowArea Meant = Area(0, 50, 800, 650);

} // namespace

TEST(DisplayPlace, ItIsTheOneThatWasMeantWhereThatLeavesTheGraphInSight)
{
    EXPECT_EQ(Told(FindDisplayPlace(Meant, Area(875, 170, 1050, 750), Area(0, 0, 3000, 1200), {})),
              "0 50 800 650");
}

// Above the graph stand the menus and the buttons of the main window.
TEST(DisplayPlace, OtherwiseItIsBesideTheGraphAsWideAsThatLeavesItAndNotAboveIt)
{
    // A wide screen and a usual one.
    EXPECT_EQ(Told(FindDisplayPlace(Meant, Area(655, 170, 1050, 750), Area(0, 0, 2560, 1440), {})),
              "1753 170 800 650");
    EXPECT_EQ(Told(FindDisplayPlace(Meant, Area(335, 150, 1050, 750), Area(0, 0, 1920, 1080), {})),
              "1433 150 487 650");
    // With no room at the right, at the left.
    EXPECT_EQ(Told(FindDisplayPlace(Meant, Area(600, 150, 1050, 750), Area(0, 0, 1700, 1080), {})),
              "0 150 600 650");
    // A panel at the edge is the desktop's. Where there is little room, all of it is taken.
    EXPECT_EQ(Told(FindDisplayPlace(Meant, Area(500, 150, 1050, 750), Area(0, 0, 1990, 1080), {})),
              "1550 150 440 650");
    // The transport is in sight where the screen is low.
    EXPECT_EQ(Told(FindDisplayPlace(Meant, Area(335, 150, 1050, 550), Area(0, 0, 1920, 720), {})),
              "1433 150 487 530");
    EXPECT_EQ(Told(FindDisplayPlace(Meant, Area(335, 350, 1050, 200), Area(0, 0, 1920, 640), {})),
              "1433 300 487 300");
}

// The views of further documents stand further to the right, and no display hides any of them.
TEST(DisplayPlace, DisplaysOfFurtherDocumentsLeaveAllGraphsInSight)
{
    struct TCase
    {
        TWindowArea Room;
        int Left;
    };
    // The last but one has room at the left alone.
    for (const auto& [room, left] :
         {TCase{Area(0, 0, 2560, 1440), 655}, TCase{Area(0, 0, 1920, 1080), 335},
          TCase{Area(0, 0, 1700, 1080), 600}, TCase{Area(0, 0, 3840, 2160), 1295}}) {
        vector<TWindowArea> displays;
        vector<TWindowArea> graphs;
        for (int i = 0; i < 4; ++i) {
            graphs.push_back(Area(left + 16 * i, 150 + 16 * i, 1050, 750));
            displays.push_back(FindDisplayPlace(Meant, graphs.back(), room, displays));
        }
        for (const TWindowArea& display : displays) {
            EXPECT_GE(display.Left, room.Left);
            EXPECT_LE(display.Right, room.Right);
            for (const TWindowArea& graph : graphs)
                EXPECT_FALSE(DoAreasOverlap(display, graph)) << Told(display) << ", " << Told(graph);
        }
    }
}

TEST(DisplayPlace, TheTransportAtADisplaysBottomIsInSight)
{
    const TWindowArea meant = Area(0, 10, 800, 650);
    const TWindowArea graph = Area(75, 120, 900, 560);
    const TWindowArea room = Area(0, 0, 1024, 700);
    vector<TWindowArea> others;
    for (int i = 0; i < 30; ++i) {
        others.push_back(FindDisplayPlace(meant, graph, room, others));
        // With a frame round it.
        EXPECT_LE(others.back().Bottom, room.Bottom - 30) << Told(others.back());
        EXPECT_GE(others.back().Bottom - others.back().Top, 225);
    }
}

// Where the next one would stand is too low already.
TEST(DisplayPlace, BesideAGraphThatBeginsFarDownTheTransportIsInSightToo)
{
    const TWindowArea graph = Area(335, 350, 1050, 200);
    const TWindowArea room = Area(0, 0, 1920, 640);
    vector<TWindowArea> others;
    others.push_back(Area(1433, 300, 487, 300));
    const TWindowArea place = FindDisplayPlace(Meant, graph, room, others);
    EXPECT_FALSE(DoAreasOverlap(place, graph)) << Told(place);
    EXPECT_LE(place.Bottom, room.Bottom - 30) << Told(place);
}

TEST(DisplayPlace, OnASmallScreenItIsASmallOneUponTheGraphsRightEdge)
{
    struct TCase
    {
        TWindowArea Graph;
        TWindowArea Room;
    };
    // The last one has the graph all over it.
    for (const auto& [graph, room] : {TCase{Area(77, 132, 1050, 560), Area(0, 0, 1280, 720)},
                                      TCase{Area(75, 120, 900, 560), Area(0, 0, 1024, 768)},
                                      TCase{Area(0, 60, 1920, 960), Area(0, 0, 1920, 1080)}}) {
        vector<TWindowArea> others;
        for (int i = 0; i < 4; ++i) {
            const TWindowArea place = FindDisplayPlace(Area(0, 50, 800, 600), graph, room, others);
            EXPECT_TRUE(LeavesGraphInSight(place, graph)) << Told(place);
            EXPECT_EQ(place.Right, room.Right) << Told(place);
            // The graph's tabs and buttons, and its map.
            EXPECT_GE(place.Top, graph.Top + 60) << Told(place);
            EXPECT_LE(place.Bottom, room.Bottom - 30) << Told(place);
            EXPECT_GE(place.Right - place.Left, 400) << Told(place);
            EXPECT_GE(place.Bottom - place.Top, 300) << Told(place);
            for (const TWindowArea& other : others)
                EXPECT_GE(place.Top, other.Top + 20) << Told(place);
            others.push_back(place);
        }
    }
}

// As a usual one of a scale of 2.
TEST(DisplayPlace, OnATinyScreenItIsASmallerOneStill)
{
    const TWindowArea graph = Area(76, 129, 859, 348);
    const TWindowArea place = FindDisplayPlace(Area(0, 10, 800, 480), graph, Area(0, 0, 960, 540), {});
    EXPECT_EQ(Told(place), "660 193 300 225");
    EXPECT_TRUE(LeavesGraphInSight(place, graph));
}

TEST(DisplayPlace, WhereEvenThatHidesTheGraphItIsTheOneThatWasMeant)
{
    EXPECT_EQ(Told(FindDisplayPlace(Area(0, 10, 800, 330), Area(25, 80, 460, 240), Area(0, 0, 512, 384), {})),
              "0 10 800 330");
}

TEST(DisplayPlace, AGraphIsInSightIfThreeQuartersOfItAre)
{
    const TWindowArea graph = Area(100, 100, 400, 400);
    EXPECT_TRUE(LeavesGraphInSight(Area(500, 100, 400, 400), graph));
    EXPECT_TRUE(LeavesGraphInSight(Area(300, 300, 900, 900), graph));
    EXPECT_FALSE(LeavesGraphInSight(Area(299, 300, 900, 900), graph));
    EXPECT_FALSE(LeavesGraphInSight(Area(0, 0, 5000, 5000), graph));
}

TEST(DisplayPlace, NoDisplayStandsExactlyUponAnother)
{
    const TWindowArea graph = Area(335, 150, 1050, 750);
    const TWindowArea room = Area(0, 0, 1920, 1080);
    vector<TWindowArea> others;
    for (int i = 0; i < 5; ++i) {
        const TWindowArea place = FindDisplayPlace(Meant, graph, room, others);
        EXPECT_FALSE(DoAreasOverlap(place, graph));
        EXPECT_LE(place.Right, room.Right);
        for (const TWindowArea& other : others)
            EXPECT_GE(place.Top, other.Top + 20);
        others.push_back(place);
    }
    // However many there are.
    for (int i = 0; i < 100; ++i)
        others.push_back(FindDisplayPlace(Meant, graph, room, others));
    EXPECT_LT(others.back().Top, room.Bottom);
}

// Where a display was meant to stand and where it does differ by its frame.
TEST(DisplayPlace, NoDisplayStandsNearlyUponAnother)
{
    const TWindowArea graph = Area(335, 150, 1050, 750);
    const TWindowArea room = Area(0, 0, 1920, 1080);
    vector<TWindowArea> others;
    for (int i = 0; i < 5; ++i) {
        TWindowArea place = FindDisplayPlace(Meant, graph, room, others);
        for (const TWindowArea& other : others)
            EXPECT_GE(place.Top, other.Top + 20);
        place.Left += i % 2;
        place.Top -= i % 2 + 1;
        others.push_back(place);
    }
}

TEST(DisplayPlace, WhatItHidesOfAViewIsWhatItStandsUponFromTheRight)
{
    const TWindowArea view = Area(0, 0, 700, 500);
    EXPECT_EQ(GetClearWidth(Area(400, 100, 400, 300), view), 400);
    EXPECT_EQ(GetClearWidth(Area(400, 100, 300, 300), view), 400);
    EXPECT_EQ(GetClearWidth(Area(700, 100, 300, 300), view), 700);
    EXPECT_EQ(GetClearWidth(Area(400, 500, 300, 300), view), 700);
    // In the midst of it, and all over it.
    EXPECT_EQ(GetClearWidth(Area(300, 100, 300, 300), view), 700);
    EXPECT_EQ(GetClearWidth(Area(-10, -10, 900, 900), view), 700);
    // Low and wide: what it leaves beside it is no room.
    EXPECT_EQ(GetClearWidth(Area(350, 400, 350, 100), view), 350);
    EXPECT_EQ(GetClearWidth(Area(340, 400, 360, 100), view), 700);
}
