#include "effectbench.h"

#include "particles/cindermill/graph/replay/replaygrid.h"

namespace {

// Particles that bear their number in each cell.
void AddNumbered(TReplayStore& store, int first, int count)
{
    const int at = store.Add(count);
    const TReplayColumns columns = store.Get(at, store.GetCount() - at);
    for (int cell = 0; cell < columns.NumColumns; ++cell)
        for (int i = 0; i < columns.Count; ++i) {
            columns[cell].Values[i] = static_cast<float>(first + i + 1000 * cell);
            columns[cell].States[i] = CS_DEFINED;
        }
}

std::vector<int> NumbersOf(const TReplayStore& store, int cell = 0)
{
    std::vector<int> numbers;
    for (int i = 0; i < store.GetCount(); ++i)
        numbers.push_back(static_cast<int>(store.GetCell(cell, i).Value) - 1000 * cell);
    return numbers;
}

} // namespace

TEST(TReplayStore, NewParticlesAreUndefined)
{
    TReplayStore store;
    store.Init(2, 4);
    EXPECT_EQ(0, store.Add(3));
    EXPECT_EQ(3, store.GetCount());
    EXPECT_EQ(CS_UNDEFINED, store.GetCell(1, 2).State);
}

TEST(TReplayStore, TheOldestGiveWay)
{
    TReplayStore store;
    store.Init(2, 4);
    AddNumbered(store, 1, 3);
    AddNumbered(store, 4, 3);
    EXPECT_EQ((std::vector<int>{3, 4, 5, 6}), NumbersOf(store));
    EXPECT_EQ((std::vector<int>{3, 4, 5, 6}), NumbersOf(store, 1));
    // More than there is room for.
    AddNumbered(store, 7, 9);
    EXPECT_EQ((std::vector<int>{7, 8, 9, 10}), NumbersOf(store));
}

TEST(TReplayStore, TheDeadLeaveAndTheOthersKeepTheirOrder)
{
    TReplayStore store;
    store.Init(2, 10);
    AddNumbered(store, 0, 8);
    for (const int dead : {7, 4, 3, 0})
        store.MarkDead(dead);
    store.RemoveDead();
    EXPECT_EQ((std::vector<int>{1, 2, 5, 6}), NumbersOf(store));
    EXPECT_EQ((std::vector<int>{1, 2, 5, 6}), NumbersOf(store, 1));
    store.RemoveDead();
    EXPECT_EQ(4, store.GetCount());
}

TEST(TReplayStore, ManyBirthsAndDeathsKeepTheValues)
{
    TReplayStore store;
    store.Init(3, 50);
    std::vector<int> expected;
    int next = 0;
    for (int round = 0; round < 200; ++round) {
        const int count = round % 7;
        AddNumbered(store, next, count);
        for (int i = 0; i < count; ++i)
            expected.push_back(next++);
        while (expected.size() > 50)
            expected.erase(expected.begin());
        std::vector<int> left;
        for (size_t i = 0; i < expected.size(); ++i) {
            if ((static_cast<int>(i) + round) % 11 == 0)
                store.MarkDead(static_cast<int>(i));
            else
                left.push_back(expected[i]);
        }
        store.RemoveDead();
        expected = left;
        ASSERT_EQ(expected, NumbersOf(store, 2)) << round;
    }
}

TEST(TReplayStore, ADeadParticlesPlaceIsBornAlive)
{
    TReplayStore store;
    store.Init(1, 3);
    AddNumbered(store, 0, 3);
    store.MarkDead(2);
    store.RemoveDead();
    AddNumbered(store, 3, 1);
    EXPECT_FALSE(store.IsDead(2));
}

TEST(TPlaceRandoms, APlaceDrawsTheSameWhateverOthersDraw)
{
    TEffectBench bench;
    bench.AddPopulation();
    ASSERT_TRUE(bench.Run(0).Differences.empty());
    TPlaceRandoms a;
    TPlaceRandoms b;
    a.Init(bench.Schedule, 5);
    b.Init(bench.Schedule, 5);
    for (int i = 0; i < 10; ++i)
        a.Get(0, 0, 1).NextUnsigned();
    const uint32_t first = a.Get(1, 0, 0).NextUnsigned();
    EXPECT_EQ(first, b.Get(1, 0, 0).NextUnsigned());
    // Another component, another place, another seed.
    EXPECT_NE(first, b.Get(1, 0, 1).NextUnsigned());
    EXPECT_NE(first, b.Get(0, 0, 0).NextUnsigned());
    b.Init(bench.Schedule, 6);
    EXPECT_NE(first, b.Get(1, 0, 0).NextUnsigned());
    a.Init(bench.Schedule, 5);
    EXPECT_EQ(first, a.Get(1, 0, 0).NextUnsigned());
}
