#include "library/wimp/gl/wheelsteps.h"

#include <gtest/gtest.h>

TEST(TWheelSteps, ThePartsOfANotchComeToItsSteps)
{
    for (const int part : {1, 5, 8, 40, WheelNotch, 4 * WheelNotch}) {
        TWheelSteps wheel(3);
        int away = 0;
        for (int way = 0; way < 4 * WheelNotch; way += part)
            away += wheel.Take(part);
        EXPECT_EQ(12, away) << part;
        for (int way = 0; way < 4 * WheelNotch; way += part)
            away += wheel.Take(-part);
        EXPECT_EQ(0, away) << part;
    }
}

TEST(TWheelSteps, WhatIsTooLittleForAStepWaitsOrIsForgotten)
{
    TWheelSteps wheel(10, 64);
    EXPECT_EQ(18, wheel.Take(WheelNotch));
    EXPECT_EQ(19, wheel.Take(WheelNotch));
    wheel.Forget();
    EXPECT_EQ(18, wheel.Take(WheelNotch));
}
