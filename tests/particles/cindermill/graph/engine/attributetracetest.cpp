#include "enginetestnodes.h"

#include <limits>

namespace {

// A trace of one particle slot fed through an emitter's usage, where every index is particle 0.
class TTraceBench
{
public:
    TTraceBench(int particles, int entries, int width) : Bench(4)
    {
        Bench.Build();
        Trace.Init(particles, entries, width);
    }
    void Add(std::vector<float> value) { Trace.AddEntry(Bench.Buffer(), TU_EMITTER, 0, value.data()); }
    std::vector<float> Entries(int component = 0) const
    {
        std::vector<float> result;
        for (int e = 0; e < Trace.GetNumEntries(0); ++e)
            result.push_back(Trace.GetEntry(0, e, component));
        return result;
    }

    TParticleBench Bench;
    TAttributeTrace Trace;
};

} // namespace

TEST(TAttributeTrace, StartsWithoutEntries)
{
    TTraceBench bench(3, 4, 1);
    EXPECT_EQ(bench.Trace.GetNumEntries(0), 0);
    EXPECT_EQ(bench.Trace.GetNumEntries(2), 0);
    EXPECT_FALSE(bench.Trace.IsTouched());
    float min = 5;
    float max = 5;
    bench.Trace.GetRange(0, min, max, 1);
    EXPECT_EQ(min, 0);
    EXPECT_EQ(max, 0);
}

TEST(TAttributeTrace, KeepsTheNewestEntries)
{
    TTraceBench bench(1, 3, 1);
    bench.Add({1});
    EXPECT_EQ(bench.Entries(), (std::vector<float>{1}));
    EXPECT_TRUE(bench.Trace.IsTouched());
    bench.Trace.ClearTouched();
    EXPECT_FALSE(bench.Trace.IsTouched());
    bench.Add({2});
    bench.Add({3});
    EXPECT_EQ(bench.Entries(), (std::vector<float>{1, 2, 3}));
    bench.Add({4});
    EXPECT_EQ(bench.Entries(), (std::vector<float>{2, 3, 4}));
    bench.Add({5});
    bench.Add({6});
    bench.Add({7});
    EXPECT_EQ(bench.Entries(), (std::vector<float>{5, 6, 7}));
}

TEST(TAttributeTrace, ReadingPastTheEntriesStops)
{
    TTraceBench bench(1, 3, 1);
    bench.Add({1});
    EXPECT_EQ(AssertionOf([&] { bench.Trace.GetEntry(0, 1, 0); }), "entry < GetNumEntries(globalparticle)");
}

TEST(TAttributeTrace, ASecondInitStops)
{
    TTraceBench bench(1, 3, 1);
    EXPECT_EQ(AssertionOf([&] { bench.Trace.Init(1, 3, 1); }), "Entries == 0");
}

// What counts is the width of the values kept, not that of the widest there are.
TEST(TAttributeTrace, ATraceTakesUpToAGibibyte)
{
    constexpr int fifth = 50000000;
    TTraceBench narrow(1, fifth, 1);
    narrow.Add({1});
    EXPECT_EQ(narrow.Trace.GetNumEntries(0), 1);
    const char* refused = "bytes <= MaxTraceBytes : The attribute trace needs too much memory";
    TTraceBench wide(1, fifth, 6);
    EXPECT_EQ(AssertionOf([&] { wide.Add({1, 2, 3, 4, 5, 6}); }), refused);
    TTraceBench whole(1, 1 << 28, 1);
    EXPECT_EQ(AssertionOf([&] { whole.Add({1}); }), refused);
    TTraceBench slots(1 << 27, 1, 1);
    EXPECT_EQ(AssertionOf([&] { slots.Add({1}); }), refused);
}

TEST(TAttributeTrace, RangeTakesTheMaskedComponents)
{
    TTraceBench bench(1, 2, 3);
    bench.Add({100, 100, 100});
    bench.Add({1, 20, -5});
    bench.Add({3, 10, 50});
    float min = 0;
    float max = 0;
    bench.Trace.GetRange(0, min, max, 1);
    EXPECT_EQ(min, 1);
    EXPECT_EQ(max, 3);
    bench.Trace.GetRange(0, min, max, 6);
    EXPECT_EQ(min, -5);
    EXPECT_EQ(max, 50);
    bench.Trace.GetRange(0, min, max, 0);
    EXPECT_EQ(min, 1e30f);
    EXPECT_EQ(max, -1e30f);
    EXPECT_EQ(bench.Entries(1), (std::vector<float>{20, 10}));
}

TEST(TAttributeTrace, RangeLeavesOutWhatIsNotFinite)
{
    constexpr float Infinity = std::numeric_limits<float>::infinity();
    TTraceBench bench(1, 8, 2);
    bench.Add({std::numeric_limits<float>::quiet_NaN(), 7});
    bench.Add({Infinity, 7});
    bench.Add({-Infinity, 7});
    float min = 0;
    float max = 0;
    bench.Trace.GetRange(0, min, max, 1);
    EXPECT_GT(min, max);
    bench.Add({-3, 7});
    bench.Add({2, 7});
    bench.Trace.GetRange(0, min, max, 1);
    EXPECT_EQ(min, -3);
    EXPECT_EQ(max, 2);
    // They are entries all the same.
    EXPECT_EQ(bench.Trace.GetNumEntries(0), 5);
    EXPECT_EQ(bench.Trace.GetEntry(0, 1, 0), Infinity);
}

TEST(TAttributeTrace, ParticlesShareSlotsByRemainder)
{
    TTraceBench bench(2, 8, 1);
    bench.Bench.Emit(3);
    const float value[] = {1, 2, 3};
    for (int k = 0; k < 3; ++k)
        bench.Trace.AddEntry(bench.Bench.Buffer(), TU_PROCESS, k, value + k);
    EXPECT_EQ(bench.Trace.GetNumEntries(0), 2);
    EXPECT_EQ(bench.Trace.GetNumEntries(1), 1);
    EXPECT_EQ(bench.Trace.GetEntry(2, 1, 0), 3);
}

TEST(TAttributeTrace, AParticleWithoutIdStops)
{
    TTraceBench bench(2, 8, 1);
    bench.Bench.Emit(4);
    bench.Bench.Kill({3, 2, 1, 0});
    EXPECT_EQ(AssertionOf([&] {
                  // A ring of ids that were never given.
                  TParticleBuffer fresh;
                  fresh.Init(bench.Bench.Schedule, bench.Bench.ParticleGroup);
                  fresh.AddParticles(0);
                  const float value = 1;
                  bench.Trace.AddEntry(fresh, TU_PROCESS, 0, &value);
              }),
              "globalparticle >= 0");
}
