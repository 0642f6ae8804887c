#include "library/system/thread.h"

#include "support/testsupport.h"

namespace {

struct TCounting
{
    static void Count(void* context)
    {
        TCounting& counting = *static_cast<TCounting*>(context);
        for (int i = 0; i < 1000; ++i) {
            const TLock lock(counting.Section);
            counting.Counter += 1;
        }
        counting.Done.Set();
    }

    TCriticalSection Section;
    TEvent Done;
    int Counter = 0;
};

} // namespace

TEST(TThread, JoinWaitsForTheEndOfTheWork)
{
    TCounting counting;
    TThread thread;
    ASSERT_TRUE(thread.Start(&TCounting::Count, &counting));
    thread.Join();
    EXPECT_EQ(counting.Counter, 1000);
    EXPECT_TRUE(counting.Done.Wait(0));
}

TEST(TThread, TheObjectsEndWaitsForTheWork)
{
    TCounting counting;
    {
        TThread thread;
        ASSERT_TRUE(thread.Start(&TCounting::Count, &counting));
    }
    EXPECT_EQ(counting.Counter, 1000);
}

TEST(TThread, OneThreadAtATimeIsInACriticalSection)
{
    TCounting counting;
    TThread first;
    TThread second;
    ASSERT_TRUE(first.Start(&TCounting::Count, &counting));
    ASSERT_TRUE(second.Start(&TCounting::Count, &counting));
    first.Join();
    second.Join();
    EXPECT_EQ(counting.Counter, 2000);
}

TEST(TEvent, StaysSet)
{
    TEvent event;
    EXPECT_FALSE(event.Wait(0));
    EXPECT_FALSE(event.Wait(1));
    event.Set();
    EXPECT_TRUE(event.Wait(Patience * 1000));
    EXPECT_TRUE(event.Wait(0));
}

TEST(TEvent, WakesWhoeverWaits)
{
    TEvent event;
    TThread thread;
    ASSERT_TRUE(thread.Start([](void* context) { static_cast<TEvent*>(context)->Set(); }, &event));
    EXPECT_TRUE(event.Wait(Patience * 1000));
}
