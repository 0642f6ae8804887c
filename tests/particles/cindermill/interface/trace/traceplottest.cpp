#include "particles/cindermill/interface/trace/traceplot.h"

#include "support/testsupport.h"

#include <cmath>
#include <limits>

namespace {

// Of a window of 355 by 200 pixels: a plot of 300 by 180.
TTracePlot MakePlot(int entries, float min, float max)
{
    TTracePlot plot(355, 200);
    EXPECT_TRUE(plot.SetValues(entries, min, max));
    return plot;
}

std::vector<double> ValuesOf(const TTracePlot& plot)
{
    vector<TTracePlot::TLine> lines;
    plot.GetLines(lines);
    std::vector<double> values;
    for (const TTracePlot::TLine& line : lines)
        values.push_back(line.Value);
    return values;
}

} // namespace

TEST(TTracePlot, LeavesItsMargins)
{
    const TTracePlot plot(355, 200);
    EXPECT_EQ(plot.GetLeft(), 50);
    EXPECT_EQ(plot.GetTop(), 10);
    EXPECT_EQ(plot.GetRight(), 350);
    EXPECT_EQ(plot.GetBottom(), 190);
    EXPECT_FALSE(plot.IsEmpty());
    EXPECT_TRUE(TTracePlot(55, 200).IsEmpty());
    EXPECT_TRUE(TTracePlot(355, 20).IsEmpty());
}

TEST(TTracePlot, EntriesAreSpreadOverTheWidthAndValuesOverTheHeight)
{
    const TTracePlot plot = MakePlot(4, -1, 2);
    EXPECT_EQ(plot.GetX(0), 50);
    EXPECT_EQ(plot.GetX(1), 125);
    EXPECT_EQ(plot.GetX(3), 275);
    EXPECT_EQ(plot.GetY(-1), 190);
    EXPECT_EQ(plot.GetY(2), 10);
    EXPECT_EQ(plot.GetY(0), 130);
}

TEST(TTracePlot, APositionIsThatOfTheNearestEntry)
{
    const TTracePlot plot = MakePlot(4, 0, 1);
    EXPECT_EQ(plot.GetEntry(50), 0);
    EXPECT_EQ(plot.GetEntry(87), 0);
    EXPECT_EQ(plot.GetEntry(88), 1);
    EXPECT_EQ(plot.GetEntry(275), 3);
    // Behind the last one there is none, and before the first one neither.
    EXPECT_EQ(plot.GetEntry(349), 3);
    EXPECT_EQ(plot.GetEntry(0), 0);
}

TEST(TTracePlot, OneEntryAndFlatValuesGiveNothingToDraw)
{
    TTracePlot plot(355, 200);
    EXPECT_FALSE(plot.SetValues(0, 0, 0));
    EXPECT_FALSE(plot.SetValues(1, 0, 5));
    EXPECT_FALSE(plot.SetValues(9, 2, 2));
    EXPECT_FALSE(plot.SetValues(9, 0, 0.0009f));
    EXPECT_TRUE(plot.SetValues(9, 0, 0.0011f));
    // What a range is in which no value was finite.
    EXPECT_FALSE(plot.SetValues(9, 1e30f, -1e30f));
}

TEST(TTracePlot, TheStepIsOneOrOneAndAHalfTimesAPowerOfTwo)
{
    // Six lines, as 180 pixels hold six times 30.
    struct TCase
    {
        float Range;
        float Step;
    };
    const TCase cases[] = {{6, 1},     {8.9f, 1},  {9, 1.5f},           {11.9f, 1.5f}, {12, 2},
                           {17.9f, 2}, {18, 3},    {0.75f, 0.125f},     {1, 0.125f},   {1.2f, 0.1875f},
                           {600, 96},  {6e20f, 0}, {0.01f, 1.5f / 1024}};
    for (const TCase& c : cases) {
        const float step = MakePlot(9, 0, c.Range).GetStep();
        if (c.Step > 0) {
            EXPECT_EQ(step, c.Step) << c.Range;
        }
        int exponent = 0;
        const float mantissa = std::frexp(step, &exponent);
        EXPECT_TRUE(mantissa == 0.5f || mantissa == 0.75f) << c.Range;
        EXPECT_LE(step, c.Range / 6) << c.Range;
        EXPECT_GT(step, c.Range / 9.01f) << c.Range;
    }
}

TEST(TTracePlot, LinesStandAtWholeSteps)
{
    EXPECT_EQ(ValuesOf(MakePlot(9, 0, 6)), (std::vector<double>{0, 1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(ValuesOf(MakePlot(9, 0.5f, 6.5f)), (std::vector<double>{0, 1, 2, 3, 4, 5, 6, 7}));
    EXPECT_EQ(ValuesOf(MakePlot(9, -2.5f, 3.5f)), (std::vector<double>{-2, -1, 0, 1, 2, 3, 4}));
    vector<TTracePlot::TLine> lines;
    MakePlot(9, 0, 6).GetLines(lines);
    EXPECT_EQ(lines[0].Y, 190);
    EXPECT_EQ(lines[1].Y, 160);
    EXPECT_EQ(lines[6].Y, 10);
}

TEST(TTracePlot, AZeroHasNoSign)
{
    for (const double value : ValuesOf(MakePlot(9, -0.25f, 5.75f)))
        EXPECT_FALSE(value == 0 && std::signbit(value));
}

TEST(TTracePlot, WithoutRoomForALineThereIsNone)
{
    TTracePlot plot(355, 49);
    EXPECT_TRUE(plot.SetValues(9, 0, 6));
    EXPECT_EQ(plot.GetStep(), 0);
    EXPECT_TRUE(ValuesOf(plot).empty());
}

TEST(TTracePlot, TheLargestValuesAreDrawnToo)
{
    constexpr float Huge = std::numeric_limits<float>::max();
    const TTracePlot plot = MakePlot(9, -Huge, Huge);
    EXPECT_EQ(plot.GetY(-static_cast<double>(Huge)), 190);
    EXPECT_EQ(plot.GetY(static_cast<double>(Huge)), 10);
    EXPECT_LE(ValuesOf(plot).size(), 10u);
    // Far from zero for their range.
    EXPECT_LE(ValuesOf(MakePlot(9, 1e30f, 1.000001e30f)).size(), 10u);
}
