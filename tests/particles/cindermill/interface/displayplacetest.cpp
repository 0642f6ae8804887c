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

TEST(DisplayPlace, OtherwiseItIsBesideTheGraphAsWideAsThatLeavesIt)
{
    // A wide screen and a usual one.
    EXPECT_EQ(Told(FindDisplayPlace(Meant, Area(655, 170, 1050, 750), Area(0, 0, 2560, 1440), {})),
              "1705 50 800 650");
    EXPECT_EQ(Told(FindDisplayPlace(Meant, Area(335, 150, 1050, 750), Area(0, 0, 1920, 1080), {})),
              "1385 50 535 650");
    // With no room at the right, at the left.
    EXPECT_EQ(Told(FindDisplayPlace(Meant, Area(600, 150, 1050, 750), Area(0, 0, 1700, 1080), {})),
              "0 50 600 650");
    // A panel at the edge is the desktop's.
    EXPECT_EQ(Told(FindDisplayPlace(Meant, Area(500, 150, 1050, 750), Area(0, 0, 1990, 1080), {})),
              "1550 50 440 650");
}

TEST(DisplayPlace, OnASmallScreenItIsTheOneThatWasMeant)
{
    EXPECT_EQ(
        Told(FindDisplayPlace(Area(0, 50, 800, 650), Area(75, 120, 900, 560), Area(0, 0, 1024, 768), {})),
        "0 50 800 650");
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
