#include "support/testsupport.h"

#include "particles/cindermill/graph/replay/replayreport.h"

namespace {

std::string Described(TDifferenceKind kind, const char* name)
{
    TReplayDifference difference;
    difference.Kind = kind;
    difference.Place.Group = 2;
    difference.Place.Name = name;
    difference.Preview = 0.5f;
    difference.Replay = 3;
    return Text(DescribeDifference(difference));
}

} // namespace

TEST(ReplayReport, ADifferenceIsOneSentence)
{
    for (const TDifferenceKind kind : {DK_VALUE, DK_COUNT, DK_STAGE})
        EXPECT_EQ(Described(kind, "Age"), "\"Age\" of group 2: 0.5 in the preview is 3 in the exported file");
    EXPECT_EQ(Described(DK_COUNT, ""), "Group 2: 0.5 in the preview is 3 in the exported file");
}

// There is no number to tell.
TEST(ReplayReport, WhatNothingWritesAndWhatIsNotKnownHaveWordsOfTheirOwn)
{
    EXPECT_EQ(Described(DK_UNDEFINED, "Age"),
              "\"Age\" of group 2: nothing in the exported file writes what the preview shows");
    EXPECT_EQ(Described(DK_UNKNOWN, "Age"),
              "\"Age\" of group 2: what the exported file makes of it hangs on what is not known");
    EXPECT_EQ(Described(DK_UNDEFINED, ""),
              "Group 2: nothing in the exported file writes what the preview shows");
}

TEST(ReplayReport, ANameOfSeveralLinesStaysInOne)
{
    EXPECT_EQ(Described(DK_VALUE, "two\nlines").find('\n'), std::string::npos);
}
