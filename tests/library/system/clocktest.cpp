#include "library/system/clock.h"

#include "support/testsupport.h"

TEST(Clock, TickCountFollowsTheCounterInMilliseconds)
{
    const uint32_t before = static_cast<uint32_t>(GetPerformanceCounter() / 1000000u);
    const uint32_t ticks = GetTickCount();
    const uint32_t after = static_cast<uint32_t>(GetPerformanceCounter() / 1000000u);
    EXPECT_LE(ticks - before, after - before);
}

TEST(Clock, CounterNeverGoesBack)
{
    uint64_t last = GetPerformanceCounter();
    bool moved = false;
    for (int i = 0; i < 1000; ++i) {
        const uint64_t now = GetPerformanceCounter();
        ASSERT_GE(now, last);
        moved = moved || now > last;
        last = now;
    }
    EXPECT_TRUE(moved);
}

TEST(Clock, SourceReplacesTheTickCountUntilGivenBack)
{
    const uint32_t own = GetTickCount();
    SetTickCountSource([] { return 7u; });
    EXPECT_EQ(GetTickCount(), 7u);
    SetTickCountSource(nullptr);
    EXPECT_LT(GetTickCount() - own, 60000u);
}
