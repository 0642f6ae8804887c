#include "nodebench.h"

#include "particles/cindermill/graph/engine/random.h"

#include <cmath>

namespace {

constexpr int V3 = TY_VECTOR3;
constexpr int TF = TY_TRANSFORM;

// A generator in the state in which every class's one starts under the same seed.
class TSeeded
{
public:
    explicit TSeeded(uint32_t low)
    {
        TRandom::SetDefaultSeed(low);
        Mirror = TRandom();
    }
    ~TSeeded() { TRandom::ClearDefaultSeed(); }
    TRandom Mirror;
};

enum
{
    Chance,
    Steady,
    Burst
};

class TTriggerBench : public TNodeBench
{
public:
    TTriggerBench(int mode, int max, float rate)
        : TNodeBench("TEmitter", {"Rate", "Start Delay"}, {"Count", "Time"})
    {
        // The entries' numbers count, not their positions.
        Graph.Enum(Node, "Emit Mode", {"Burst=2", "Steady=1", "Chance=0", "Odd=7"},
                   mode <= Burst ? 2 - mode : 3);
        Graph.Int(Node, "Per frame max emission", max);
        Graph.Group(Node, "Max life time", false, "<Scalar><name>Life Time</name></Scalar>");
        Set("Rate", {rate});
    }
    void Limit(float life)
    {
        const TNodeType* type = Node->GetNodeType();
        type->FindParameterOf<TNodeGroupParameter>("Max life time", PK_GROUP)->SetValue(true);
        type->FindParameterOf<TNodeScalarParameter>("Max life time.Life Time", TY_SCALAR)->SetValue(&life);
    }
    // The counts of `frames` frames.
    TFloats Counts(float dt, int frames)
    {
        TFloats result;
        for (int i = 0; i < frames; ++i)
            result.push_back(Run(dt)[0]);
        return result;
    }
};

// Grid positions by the x and z of unit frames.
std::unique_ptr<TNodeBench> MakeGrid(int nx, int ny, int emitType, float count)
{
    auto bench = std::make_unique<TNodeBench>(
        "TGrid", std::vector<TTestPort>{"Count", {"Transform", TF}, {"Size", TY_SCALE}},
        std::vector<TTestPort>{{"Position", TF}}, TU_EMITTER);
    bench->Graph.Int(bench->Node, "X Divisions", nx);
    bench->Graph.Int(bench->Node, "Y Divisions", ny);
    bench->Graph.Enum(bench->Node, "Emit Type", {"Random=0", "InOrder=4"}, emitType);
    bench->Set("Count", {count});
    bench->Set("Size", {1, 1});
    return bench;
}

} // namespace

TEST(TEmitter, CountsItsTimeInFloats)
{
    TTriggerBench bench(Steady, 10, 0);
    float time = 0;
    for (int i = 0; i < 5; ++i) {
        time = static_cast<float>(static_cast<double>(time) + 0.02f);
        EXPECT_EQ(bench.Run(0.02f, 1)[0], time);
    }
}

TEST(TEmitter, SteadyEmitsAtOnceAndPaysItBack)
{
    TTriggerBench bench(Steady, 100, 10);
    // One particle is due every tenth of a second.
    EXPECT_EQ(bench.Counts(0.0625f, 8), (TFloats{1, 0, 1, 0, 1, 1, 0, 1}));
}

TEST(TEmitter, SteadyFollowsItsAccumulatorToTheLastBit)
{
    TTriggerBench bench(Steady, 1000, 37.5f);
    float accumulator = 0;
    const float dt = 0.02f;
    for (int frame = 0; frame < 50; ++frame) {
        const double due = std::ceil(static_cast<double>(dt) * 37.5f) + 37.5 * accumulator;
        const int count = due > 0 ? static_cast<int>(due) : 0;
        accumulator = static_cast<float>(accumulator - count / 37.5);
        accumulator = static_cast<float>(static_cast<double>(accumulator) + dt);
        ASSERT_EQ(bench.Run(dt)[0], static_cast<float>(count)) << frame;
    }
}

TEST(TEmitter, SteadyIsCappedPerFrame)
{
    TTriggerBench bench(Steady, 3, 1000);
    EXPECT_EQ(bench.Counts(0.02f, 2), (TFloats{3, 3}));
}

TEST(TEmitter, ARateOfZeroEndsSteadyEmissionForGood)
{
    TTriggerBench bench(Steady, 10, 0);
    EXPECT_EQ(bench.Counts(0.1f, 2), (TFloats{0, 0}));
    bench.Set("Rate", {100});
    EXPECT_EQ(bench.Counts(0.1f, 3), (TFloats{0, 0, 0}));
}

TEST(TEmitter, ANegativeRateEmitsNothing)
{
    TTriggerBench bench(Steady, 10, -100);
    EXPECT_EQ(bench.Counts(0.1f, 3), (TFloats{0, 0, 0}));
}

TEST(TEmitter, ABurstEmitsOnceAtTheDelay)
{
    TTriggerBench bench(Burst, 7, 0);
    bench.Set("Start Delay", {0.25f});
    // The frame that begins at the delay bursts.
    EXPECT_EQ(bench.Counts(0.125f, 5), (TFloats{0, 0, 7, 0, 0}));
}

TEST(TEmitter, TheEndOfTheLifeEndsTheEmission)
{
    TTriggerBench bench(Steady, 5, 1000);
    bench.Set("Start Delay", {0.25f});
    bench.Limit(0.5f);
    EXPECT_EQ(bench.Counts(0.25f, 5), (TFloats{0, 5, 5, 0, 0}));
}

TEST(TEmitter, ANegativeLifeIsOverBeforeItBegins)
{
    TTriggerBench bench(Steady, 5, 1000);
    bench.Limit(-0.25f);
    bench.Set("Start Delay", {0.25f});
    EXPECT_EQ(bench.Counts(0.25f, 3), (TFloats{0, 0, 0}));
}

TEST(TEmitter, AFrameWithoutTimeBurstsAndOwesNothingInSteadyMode)
{
    TTriggerBench burst(Burst, 7, 0);
    EXPECT_EQ(burst.Counts(0, 3), (TFloats{7, 0, 0}));
    TTriggerBench steady(Steady, 5, 1000);
    EXPECT_EQ(steady.Counts(0, 3), (TFloats{0, 0, 0}));
    EXPECT_EQ(steady.Counts(0.0005f, 1), (TFloats{1}));
}

TEST(TEmitter, ARebuildBeginsAnew)
{
    TTriggerBench bench(Burst, 7, 0);
    EXPECT_EQ(bench.Counts(0.25f, 2), (TFloats{7, 0}));
    EXPECT_EQ(bench.Init(), TTexts{});
    EXPECT_EQ(bench.Counts(0.25f, 2), (TFloats{7, 0}));
    EXPECT_EQ(bench.Writes(1), (std::vector<TFloats>{{0.25f}, {0.5f}}));
}

TEST(TEmitter, ALifeOfZeroDoesNotEndTheEmission)
{
    TTriggerBench bench(Steady, 5, 1000);
    bench.Limit(0);
    EXPECT_EQ(bench.Counts(0.25f, 3), (TFloats{5, 5, 5}));
}

TEST(TEmitter, ChanceDrawsOncePerTrial)
{
    const TSeeded seeded(17);
    TTriggerBench bench(Chance, 20, 10);
    TRandom mirror = seeded.Mirror;
    const float p = static_cast<float>(10.0 * 0.02f * 50.0 / 20);
    for (int frame = 0; frame < 20; ++frame) {
        int count = 0;
        for (int trial = 0; trial < 20; ++trial)
            count += mirror.Unit(0x10000) <= p ? 1 : 0;
        ASSERT_EQ(bench.Run(0.02f)[0], static_cast<float>(count)) << frame;
    }
}

TEST(TEmitter, ChanceWithNothingAllowedRunsNoTrial)
{
    const TSeeded seeded(17);
    for (const int max : {0, -4}) {
        TTriggerBench bench(Chance, max, 10);
        EXPECT_EQ(bench.Counts(0.02f, 2), (TFloats{std::min(0.0f, static_cast<float>(max)),
                                                   std::min(0.0f, static_cast<float>(max))}));
    }
    // The generator was not touched.
    TTriggerBench bench(Chance, 1, 1000);
    TRandom mirror = seeded.Mirror;
    mirror.Next();
    bench.Run(0.02f);
    TTriggerBench other(Chance, 1, 0.5f);
    const float p = static_cast<float>(0.5 * 0.02f * 50.0);
    EXPECT_EQ(other.Run(0.02f)[0], mirror.Unit(0x10000) <= p ? 1 : 0);
}

TEST(TEmitter, ChanceWithTooManyTrialsIsRefused)
{
    TTriggerBench bench(Chance, 2000000000, 10);
    ASSERT_EQ(bench.Init(), TTexts{});
    EXPECT_EQ(AssertionOf([&] { bench.Exec.Update(0.02f); }),
              "max <= MaxTrials : Per frame max emission is too large for chance emission");
}

TEST(TEmitter, AnUnknownModeEmitsNothing)
{
    TTriggerBench bench(3, 10, 100);
    EXPECT_EQ(bench.Counts(0.1f, 2), (TFloats{0, 0}));
}

TEST(TEmitter, MissingParametersAreErrorsOneAtATime)
{
    const std::vector<std::string> names = {"Emit Mode", "Per frame max emission", "Max life time",
                                            "Max life time.Life Time"};
    for (size_t present = 0; present < names.size(); ++present) {
        TNodeBench bench("TEmitter", {"Rate", "Start Delay"}, {"Count", "Time"});
        if (present > 0)
            bench.Graph.Enum(bench.Node, "Emit Mode", {"Chance"}, 0);
        if (present > 1)
            bench.Graph.Int(bench.Node, "Per frame max emission", 1);
        if (present > 2)
            bench.Graph.Group(bench.Node, "Max life time", false, "");
        EXPECT_EQ(bench.Init(), TTexts{"Missing parameter \"" + names[present] + "\" for node Tested"});
    }
}

TEST(TEffect, ShowsItsTimeAndItsUserParameters)
{
    TNodeBench bench("TEffect", {}, {"Time", "A", {"B", V3}});
    bench.Graph.Scalar(bench.Node, "Built In", 9);
    const int own = bench.Node->GetNodeType()->NumOwnParameters;
    bench.Graph.Scalar(bench.Node, "A", 4);
    bench.Graph.Value(bench.Node, V3, "B", {1, 2, 3});
    bench.Node->GetNodeType()->NumOwnParameters = own;
    EXPECT_EQ(bench.Run(0.25f), TFloats{0.25f});
    EXPECT_EQ(bench.Run(0.25f, 1), TFloats{4});
    EXPECT_EQ(bench.Run(0.25f, 2), (TFloats{1, 2, 3}));
    EXPECT_EQ(bench.Writes(0).back(), TFloats{0.75f});
    const float changed = 5;
    bench.Node->GetNodeType()->FindParameterOf<TNodeScalarParameter>("A", TY_SCALAR)->SetValue(&changed);
    EXPECT_EQ(bench.Run(0.25f, 1), TFloats{5});
}

TEST(TPointEmitter, EmitsItsCountFromItsTransform)
{
    TNodeBench bench("TPointEmitter", {"Count", {"Transform", TF}}, {{"Position", TF}}, TU_EMITTER);
    bench.Set("Count", {2.9f});
    bench.Set("Transform", {1, 2, 3, 4, 5, 6});
    EXPECT_EQ(bench.Run(0.1f), (TFloats{1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(bench.Writes().size(), 2u);
}

TEST(TPointEmitter, TellsWhatItWillEmit)
{
    TNodeBench bench("TPointEmitter", {"Count", {"Transform", TF}}, {{"Position", TF}}, TU_EMITTER);
    bench.Set("Count", {50.9f});
    bench.Init();
    bench.Exec.Update(0.1f);
    EXPECT_EQ(bench.Writes().size(), 50u);
    EXPECT_EQ(bench.GetExecNode()->CountEmission(), 50);
}

TEST(TPointEmitter, ACountThatIsNotPositiveEmitsNothing)
{
    for (const float count : {0.0f, 0.9f, -3.0f, std::nanf(""), 1e30f}) {
        TNodeBench bench("TPointEmitter", {"Count", {"Transform", TF}}, {{"Position", TF}}, TU_EMITTER);
        bench.Set("Count", {count});
        bench.Init();
        bench.Exec.Update(0.1f);
        EXPECT_TRUE(bench.Writes().empty()) << count;
    }
}

TEST(TGrid, FillsInOrderByTheWrongRowDivisor)
{
    // Three by two points; the row is counted by the other axis.
    const auto bench = MakeGrid(2, 1, 1, 7);
    bench->Run(0.1f);
    const std::vector<std::pair<float, float>> expected = {{-1, -1}, {0, -1}, {1, 1},  {-1, 1},
                                                           {0, 3},   {1, 3},  {-1, -1}};
    const auto writes = bench->Writes();
    ASSERT_EQ(writes.size(), expected.size());
    for (size_t i = 0; i < expected.size(); ++i)
        EXPECT_EQ(writes[i], (TFloats{expected[i].first, 0, expected[i].second, 0, 0, 0})) << i;
}

TEST(TGrid, DrawsItsPointsFromItsGenerator)
{
    const TSeeded seeded(3);
    const auto bench = MakeGrid(3, 3, 0, 30);
    bench->Run(0.1f);
    TRandom mirror = seeded.Mirror;
    for (const TFloats& write : bench->Writes()) {
        const int p = static_cast<int>(mirror.Range(16));
        ASSERT_EQ(write[0], static_cast<float>(2.0 * (p % 4) / 3.0 - 1.0));
        ASSERT_EQ(write[2], static_cast<float>(2.0 * (p / 4) / 3.0 - 1.0));
    }
}

TEST(TGrid, IsTransformedAndKeepsTheRotation)
{
    const auto bench = MakeGrid(1, 1, 1, 1);
    bench->Set("Size", {2, 5});
    bench->Set("Transform", {10, 20, 30, 0, 90, 0});
    // (-1, 0, -1), scaled to (-2, 0, -5), turned about y: x to -z, z to x.
    const TFloats write = bench->Run(0.1f);
    EXPECT_NEAR(write[0], 10 - 5, 1e-5);
    EXPECT_EQ(write[1], 20);
    EXPECT_NEAR(write[2], 30 + 2, 1e-5);
    EXPECT_EQ(TFloats(write.begin() + 3, write.end()), (TFloats{0, 90, 0}));
}

TEST(TGrid, GoesOnWhereTheLastFrameStoppedUntilARebuild)
{
    const auto bench = MakeGrid(1, 1, 1, 3);
    EXPECT_EQ(bench->Run(0.1f)[0], -1) << "the third of four, (-1, 1)";
    EXPECT_EQ(bench->Run(0.1f)[0], 1) << "the second";
    EXPECT_EQ(bench->Writes()[3], (TFloats{1, 0, 1, 0, 0, 0})) << "the fourth";
    EXPECT_EQ(bench->Init(), TTexts{});
    bench->Run(0.1f);
    EXPECT_EQ(bench->Writes()[0], (TFloats{-1, 0, -1, 0, 0, 0}));
}

TEST(TGrid, WithoutDivisionsItsPointIsNoNumber)
{
    const auto bench = MakeGrid(0, 0, 1, 2);
    bench->Run(0.1f);
    for (const TFloats& write : bench->Writes()) {
        EXPECT_TRUE(std::isnan(write[0]));
        EXPECT_TRUE(std::isnan(write[2]));
    }
}

TEST(TGrid, OddDivisionsDoNotTrap)
{
    for (const int nx : {-1, -5, 2147483647, -2147483647 - 1})
        for (const int ny : {-1, 3, 2147483647})
            for (const int type : {0, 1}) {
                const auto bench = MakeGrid(nx, ny, type, 3);
                EXPECT_EQ(AssertionOf([&] { bench->Run(0.1f); }), "");
            }
}

TEST(TGrid, MissingParametersAreErrors)
{
    const std::vector<std::string> names = {"X Divisions", "Y Divisions", "Emit Type"};
    for (size_t present = 0; present < names.size(); ++present) {
        TNodeBench bench("TGrid", {"Count", {"Transform", TF}, {"Size", TY_SCALE}}, {{"Position", TF}},
                         TU_EMITTER);
        if (present > 0)
            bench.Graph.Int(bench.Node, "X Divisions", 1);
        if (present > 1)
            bench.Graph.Int(bench.Node, "Y Divisions", 1);
        EXPECT_EQ(bench.Init(), TTexts{"Missing parameter \"" + names[present] + "\" for node Tested"});
    }
}

TEST(TSphereSurface, PutsRandomDirectionsOnTheScaledSphere)
{
    const TSeeded seeded(11);
    TNodeBench bench("TSphereSurface", {"Count", {"Transform", TF}, {"Scale", V3}, {"Turn", TF}},
                     {{"Position", V3}, {"Normal", V3}}, TU_EMITTER);
    bench.Set("Count", {3});
    bench.Set("Transform", {1, 2, 3, 0, 0, 0});
    bench.Set("Scale", {2, 3, 4});
    // This input is for the console alone.
    bench.Set("Turn", {9, 9, 9, 45, 45, 45});
    bench.Run(0.1f);
    TRandom mirror = seeded.Mirror;
    for (size_t k = 0; k < 3; ++k) {
        float d[3];
        mirror.Direction(d, 0x10000);
        EXPECT_EQ(bench.Writes(1)[k], TFloats(d, d + 3));
        const TFloats position = bench.Writes(0)[k];
        for (int i = 0; i < 3; ++i)
            EXPECT_EQ(position[static_cast<size_t>(i)], static_cast<float>(d[i] * (i + 2.0) + (i + 1.0)));
    }
}

TEST(TSphereSurface, IsScaledBeforeItTurns)
{
    const TSeeded seeded(12);
    TNodeBench bench("TSphereSurface", {"Count", {"Transform", TF}, {"Scale", V3}, {"Turn", TF}},
                     {{"Position", V3}, {"Normal", V3}}, TU_EMITTER);
    bench.Set("Count", {1});
    bench.Set("Transform", {1, 2, 3, 0, 0, 90});
    bench.Set("Scale", {2, 5, 7});
    const TFloats position = bench.Run(0.1f);
    TRandom mirror = seeded.Mirror;
    float d[3];
    mirror.Direction(d, 0x10000);
    // Turned about z, the long way along x goes along -y, and that along y along x.
    const float expected[3] = {1 + 5 * d[1], 2 - 2 * d[0], 3 + 7 * d[2]};
    for (size_t i = 0; i < 3; ++i)
        EXPECT_NEAR(position[i], expected[i], 1e-5) << i;
    EXPECT_EQ(bench.Writes(1)[0], TFloats(d, d + 3));
}

TEST(TVelocityCone, ANarrowConeFollowsItsAxis)
{
    TNodeBench bench("TVelocityCone", {{"Dir", V3}, "Cos", "Min", "Max"}, {{"V", V3}});
    bench.Set("Cos", {1});
    bench.Set("Min", {3});
    bench.Set("Max", {3});
    for (const TFloats& axis : {TFloats{0, 1, 0}, TFloats{1, 0, 0}, TFloats{0, 0, 2}}) {
        bench.Set("Dir", axis);
        const TFloats velocity = bench.Run();
        for (size_t i = 0; i < 3; ++i)
            EXPECT_EQ(velocity[i], 3 * axis[i]) << axis[0] << axis[1] << axis[2];
    }
}

TEST(TVelocityCone, DrawsAngleThenTurnThenSpeed)
{
    const TSeeded seeded(5);
    TNodeBench bench("TVelocityCone", {{"Dir", V3}, "Cos", "Min", "Max"}, {{"V", V3}});
    bench.Set("Dir", {0, 1, 0});
    bench.Set("Cos", {0.5f});
    bench.Set("Min", {2});
    bench.Set("Max", {6});
    TRandom mirror = seeded.Mirror;
    for (int frame = 0; frame < 50; ++frame) {
        const double r0 = mirror.Unit(0x10000);
        const double r1 = mirror.Unit(0x10000);
        const double r2 = mirror.Unit(0x10000);
        const float u = static_cast<float>(r0 * 0.5 + 0.5);
        const float s = static_cast<float>(std::sqrt(1 - static_cast<double>(u) * u));
        const double phi = static_cast<float>(2 * 3.1415927 * r1);
        const double speed = 4 * r2 + 2;
        // a is z, b is z x y, that is -x.
        const TFloats velocity = bench.Run();
        EXPECT_FLOAT_EQ(velocity[0], static_cast<float>(-std::cos(phi) * s * speed));
        EXPECT_FLOAT_EQ(velocity[1], static_cast<float>(u * speed));
        EXPECT_FLOAT_EQ(velocity[2], static_cast<float>(std::sin(phi) * s * speed));
    }
}

// To the last bit: optimisers have been seen to leave out the rounding of what goes from double to float and
// back.
TEST(TVelocityCone, EveryStepIsRoundedToAFloat)
{
    const TSeeded seeded(9);
    TNodeBench bench("TVelocityCone", {{"Dir", V3}, "Cos", "Min", "Max"}, {{"V", V3}});
    bench.Set("Cos", {0.97f});
    bench.Set("Min", {0.5f});
    bench.Set("Max", {1.1f});
    TRandom mirror = seeded.Mirror;
    for (int frame = 0; frame < 300; ++frame) {
        const float turn = static_cast<float>(frame) * 0.37f;
        const TFloats v = {std::sin(turn) * 0.8f, std::cos(turn * 3) * 0.6f, std::cos(turn) * 0.7f};
        bench.Set("Dir", v);
        const float across[2][3] = {{-v[2], 0, v[0]}, {0, -v[2], v[1]}};
        const float* p = across[std::fabs(v[1]) >= std::fabs(v[0])];
        const double length = std::sqrt(static_cast<double>(p[0]) * p[0] + static_cast<double>(p[1]) * p[1] +
                                        static_cast<double>(p[2]) * p[2]);
        volatile float a[3];
        volatile float b[3];
        for (int i = 0; i < 3; ++i)
            a[i] = static_cast<float>(p[i] * (1.0 / length));
        for (size_t i = 0; i < 3; ++i) {
            const size_t j = (i + 1) % 3;
            const size_t k = (i + 2) % 3;
            b[i] = static_cast<float>(static_cast<double>(a[j]) * v[k] - static_cast<double>(a[k]) * v[j]);
        }
        const double r0 = mirror.Unit(0x10000);
        const double r1 = mirror.Unit(0x10000);
        const double r2 = mirror.Unit(0x10000);
        const volatile float u = static_cast<float>(r0 * (1.0 - 0.97f) + 0.97f);
        const volatile float s = static_cast<float>(std::sqrt(1.0 - static_cast<double>(u) * u));
        const volatile float phi = static_cast<float>(2.0 * 3.1415927 * r1);
        const volatile float speed = static_cast<float>((static_cast<double>(1.1f) - 0.5f) * r2 + 0.5f);
        const double alongA = std::sin(static_cast<double>(phi)) * s;
        const double alongB = std::cos(static_cast<double>(phi)) * s;
        const TFloats velocity = bench.Run();
        for (size_t i = 0; i < 3; ++i) {
            const volatile float direction =
                static_cast<float>(alongA * a[i] + static_cast<double>(u) * v[i] + alongB * b[i]);
            EXPECT_EQ(velocity[i], static_cast<float>(static_cast<double>(speed) * direction)) << frame;
        }
    }
}

TEST(TVelocityCone, AnAxisAsSteepAsItIsFlatCountsAsSteep)
{
    for (const float y : {1.0f, -1.0f}) {
        const TSeeded seeded(6);
        TNodeBench bench("TVelocityCone", {{"Dir", V3}, "Cos", "Min", "Max"}, {{"V", V3}});
        bench.Set("Dir", {1, y, 1});
        bench.Set("Min", {1});
        bench.Set("Max", {1});
        TRandom mirror = seeded.Mirror;
        const double u = mirror.Unit(0x10000);
        const double s = std::sqrt(1 - u * u);
        const double phi = 2 * 3.1415927 * mirror.Unit(0x10000);
        // Across the axis: (0, -z, y), and that times the axis.
        const double half = std::sqrt(0.5);
        const double a[3] = {0, -half, half * y};
        const double v[3] = {1, static_cast<double>(y), 1};
        const TFloats velocity = bench.Run();
        for (size_t i = 0; i < 3; ++i) {
            const size_t j = (i + 1) % 3;
            const size_t k = (i + 2) % 3;
            const double b = a[j] * v[k] - a[k] * v[j];
            EXPECT_NEAR(velocity[i], std::sin(phi) * s * a[i] + u * v[i] + std::cos(phi) * s * b, 1e-5) << i;
        }
    }
}

TEST(TVelocityCone, AZeroDirectionGivesNoNumber)
{
    TNodeBench bench("TVelocityCone", {{"Dir", V3}, "Cos", "Min", "Max"}, {{"V", V3}});
    for (const float component : bench.Run())
        EXPECT_TRUE(std::isnan(component));
}

TEST(TVelocityCone, ACosineAboveOneGivesNoSpread)
{
    TNodeBench bench("TVelocityCone", {{"Dir", V3}, "Cos", "Min", "Max"}, {{"V", V3}});
    bench.Set("Dir", {1, 0, 0});
    bench.Set("Cos", {2});
    bench.Set("Min", {1});
    bench.Set("Max", {1});
    const TFloats velocity = bench.Run();
    EXPECT_GT(velocity[0], 1);
    EXPECT_EQ(velocity[1], 0);
    EXPECT_EQ(velocity[2], 0);
}

TEST(TRandomEmitter, DrawsEachComponentBetweenItsBounds)
{
    const TSeeded seeded(23);
    TNodeBench bench("TRandomEmitter", {{"Low", TY_COLOUR}, {"High", TY_COLOUR}}, {{"Value", TY_COLOUR}});
    const TFloats low = {0, -1, 5, 2};
    const TFloats high = {1, 1, 5, -2};
    bench.Set("Low", low);
    bench.Set("High", high);
    TRandom mirror = seeded.Mirror;
    for (int frame = 0; frame < 10; ++frame) {
        TFloats expected;
        for (size_t c = 0; c < 4; ++c)
            expected.push_back(
                static_cast<float>(mirror.Unit(0x10000) * (static_cast<double>(high[c]) - low[c]) + low[c]));
        ASSERT_EQ(bench.Run(), expected);
    }
}

// The draws are as many as the wired value has components.
TEST(TRandomEmitter, AWireThatConvertsDecidesHowManyAreDrawn)
{
    const TSeeded seeded(24);
    TNodeBench wider("TRandomEmitter", {{"Low", V3}, {"High", V3}}, {{"Value", V3}}, TU_TRIGGER);
    wider.WireFrom({"Number", TY_SCALAR}, {2}, 0);
    wider.Set("High", {5, 5, 5});
    TRandom mirror = seeded.Mirror;
    for (int frame = 0; frame < 3; ++frame)
        EXPECT_EQ(wider.Run(), (TFloats{static_cast<float>(mirror.Unit(0x10000) * 3.0 + 2.0), 0, 0}));
    TNodeBench narrower("TRandomEmitter", {"Low", "High"}, {"Value"}, TU_TRIGGER);
    narrower.WireFrom({"Vector", V3}, {0, 3, 4}, 0);
    narrower.Set("High", {7});
    for (int frame = 0; frame < 3; ++frame) {
        EXPECT_EQ(narrower.Run(), TFloats{static_cast<float>(mirror.Unit(0x10000) * 2.0 + 5.0)});
        mirror.Next();
        mirror.Next();
    }
}

TEST(TEventTrigger, DoesNothing)
{
    TNodeBench bench("TEventTrigger", {"In"}, {"Out"});
    EXPECT_EQ(bench.Init(), TTexts{});
    bench.Exec.Update(0.1f);
    EXPECT_TRUE(bench.Writes().empty());
}

TEST(RunTimeClasses, AllAreMadeByTheirNames)
{
    TNodeBench bench("TEventTrigger", {}, {"Out"});
    for (const char* name : {"TEffect",
                             "TEmitter",
                             "TPointEmitter",
                             "TGrid",
                             "TSphereSurface",
                             "TVelocityCone",
                             "TRandomEmitter",
                             "TEventTrigger",
                             "TGravity",
                             "TWind",
                             "TTurbulence",
                             "TDamping",
                             "TAttractor",
                             "TIntegrate",
                             "TCollisionPlane",
                             "TAge",
                             "TPrune",
                             "TAnimationPath",
                             "TVolume",
                             "TConstant",
                             "TAdd",
                             "TMultiply",
                             "TBuildVector",
                             "TMakeTransform",
                             "TSelectComponent",
                             "TNoise",
                             "TShaper",
                             "TAnimatedTexture",
                             "TQuadRenderStage",
                             "TBlendedQuadRenderStage",
                             "TSpriteRenderStage",
                             "TBlendedSpriteRenderStage",
                             "TVelocityTrailRenderStage"}) {
        const int id = FindClassByName(name);
        ASSERT_NE(id, -1) << name;
        EXPECT_EQ(GetClassParent(id), TEffectExecNode::ClassId()) << name;
        TEffectExecNode* node = static_cast<TEffectExecNode*>(CreateClass(id));
        EXPECT_NE(node, nullptr);
        delete node;
    }
}
