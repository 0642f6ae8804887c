#include "particles/cindermill/interface/trace/traceplace.h"

#include "support/testsupport.h"

namespace {

const TWindowArea Screen = {0, 0, 1920, 1080};

vector<TWindowArea> Standing(std::initializer_list<TWindowArea> areas)
{
    vector<TWindowArea> result;
    for (const TWindowArea& area : areas)
        result.push_back(area);
    return result;
}

std::vector<int> Sides(const TWindowArea& area)
{
    return {area.Left, area.Top, area.Right, area.Bottom};
}

} // namespace

TEST(TracePlace, TheFirstOneHasItsOwn)
{
    EXPECT_EQ(Sides(FindTracePlace({}, Screen)), (std::vector<int>{50, 50, 700, 500}));
    EXPECT_EQ(Sides(FindTracePlace(Standing({{300, 50, 950, 500}}), Screen)),
              (std::vector<int>{50, 50, 700, 500}));
}

TEST(TracePlace, NoneOpensUponAnother)
{
    // With its frame about it, whose title lies above.
    const TWindowArea first = {49, 28, 701, 501};
    const TWindowArea second = FindTracePlace(Standing({first}), Screen);
    EXPECT_GE(second.Left, 70);
    EXPECT_GE(second.Top, 70);
    EXPECT_EQ(second.Right - second.Left, 650);
    EXPECT_EQ(second.Bottom - second.Top, 450);
    const TWindowArea third = FindTracePlace(Standing({first, second}), Screen);
    EXPECT_GT(third.Left, second.Left);
    EXPECT_GT(third.Top, second.Top);
}

TEST(TracePlace, NoneOpensBeyondTheScreen)
{
    EXPECT_EQ(Sides(FindTracePlace(Standing({{50, 50, 700, 500}}), {0, 0, 1024, 510})),
              (std::vector<int>{50, 50, 700, 500}));
}

TEST(TracePlace, ItStaysInFrontOfAGraphOfWhichItLeavesHalfInSight)
{
    EXPECT_TRUE(LeavesGraphInSight({0, 0, 100, 100}, {50, 0, 150, 100}));
    EXPECT_TRUE(LeavesGraphInSight({0, 0, 100, 100}, {200, 0, 300, 100}));
    EXPECT_FALSE(LeavesGraphInSight({0, 0, 100, 100}, {49, 0, 149, 100}));
    EXPECT_FALSE(LeavesGraphInSight({0, 0, 100, 100}, {10, 10, 90, 90}));
}
