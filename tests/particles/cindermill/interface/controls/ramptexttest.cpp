#include "ramppoints.h"

#include "support/testsupport.h"

#include "particles/cindermill/interface/controls/ramptext.h"

namespace {

int Read(const char* text, std::vector<TPoints>& curves)
{
    vector<TRampPoint> read[4];
    const int count = ReadRampText(text, read, 4);
    curves.clear();
    for (int i = 0; i < count && i < 4; ++i)
        curves.push_back(FromVector(read[i]));
    return count;
}

TEST(RampText, WritesEachPointInBraces)
{
    const vector<TRampPoint> curves[] = {ToVector({{0, 1}, {0.25f, -2}, {0.75f, 1e6f}, {1, 0}}),
                                         ToVector({{0, 2}})};
    TString text;
    WriteRampText(curves, 2, text);
    EXPECT_EQ(Text(text), "{0,1}, {0.25,-2}, {0.75,1e+06}, {1,0}; {0,2}");
}

TEST(RampText, ReadsBackTheVeryNumbers)
{
    const TPoints points = {{0, 1.0f / 3.0f}, {0.1f, -1e-20f}, {0.2f, 3.4e38f}, {0.30000001f, 123456.79f}};
    const vector<TRampPoint> curves[] = {ToVector(points)};
    TString text;
    WriteRampText(curves, 1, text);
    std::vector<TPoints> read;
    ASSERT_EQ(Read(text, read), 1);
    EXPECT_EQ(read[0], points);
}

TEST(RampText, LongCurvesAreToldWhole)
{
    TPoints points;
    for (int i = 0; i < 3001; ++i)
        points.push_back({static_cast<float>(i), 0.123f});
    const vector<TRampPoint> curves[] = {ToVector(points)};
    TString text;
    WriteRampText(curves, 1, text);
    std::vector<TPoints> read;
    ASSERT_EQ(Read(text, read), 1);
    EXPECT_EQ(read[0], points);
}

TEST(RampText, SpacesAndLinesDoNotMatter)
{
    std::vector<TPoints> read;
    ASSERT_EQ(Read(" { 0 , 1 }\n;{2,3} \r\n", read), 2);
    EXPECT_EQ(read[0], (TPoints{{0, 1}}));
    EXPECT_EQ(read[1], (TPoints{{2, 3}}));
}

TEST(RampText, WhatIsNoRampIsRefused)
{
    std::vector<TPoints> read;
    for (const char* text : {"", "1, 2, 3", "{0,1", "{0,1},", "{0;1}", "{0,1};", "{0,1}, {1,1}", "{0,1} x",
                             "{0,nan}", "{0,inf}", "{0,1e99}", "{0,1}{1,1}"})
        EXPECT_EQ(Read(text, read), -1) << text;
    EXPECT_EQ(ReadRampText(nullptr, nullptr, 0), -1);
}

} // namespace
