#include "library/wimp/listwalk.h"
#include "library/wimp/gl/windowmessage.h"

#include <gtest/gtest.h>

TEST(ListWalk, KeysLeadTheMarkAndEndAtBothEnds)
{
    EXPECT_EQ(WalkList(KEY_DOWN, 3, 10, 4), 4);
    EXPECT_EQ(WalkList(KEY_UP, 3, 10, 4), 2);
    EXPECT_EQ(WalkList(KEY_PAGEDOWN, 3, 10, 4), 7);
    EXPECT_EQ(WalkList(KEY_PAGEDOWN, 8, 10, 4), 9);
    EXPECT_EQ(WalkList(KEY_PAGEUP, 3, 10, 4), 0);
    EXPECT_EQ(WalkList(KEY_HOME, 3, 10, 4), 0);
    EXPECT_EQ(WalkList(KEY_END, 3, 10, 4), 9);
    EXPECT_EQ(WalkList(KEY_DOWN, 9, 10, 4), 9);
    EXPECT_EQ(WalkList(KEY_UP, 0, 10, 4), 0);
    // From no entry to the first.
    EXPECT_EQ(WalkList(KEY_DOWN, -1, 10, 4), 0);
    EXPECT_EQ(WalkList(KEY_LEFT, 3, 10, 4), -1);
    EXPECT_EQ(WalkList(KEY_DOWN, -1, 0, 4), -1);
}
