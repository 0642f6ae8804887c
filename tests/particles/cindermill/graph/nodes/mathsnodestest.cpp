#include "nodebench.h"

#include "particles/cindermill/graph/engine/random.h"
#include "particles/effectgraph/rampparameter.h"

#include <cmath>
#include <limits>

namespace {

constexpr int V3 = TY_VECTOR3;

float ToFloat(double value)
{
    return static_cast<float>(value);
}

// The value of a lattice point by the generator.
float Corner(int x, int y, int z, int component, uint32_t seed)
{
    const uint32_t s1 =
        (static_cast<uint32_t>(x) + static_cast<uint32_t>(y) * 64) * 64 + (static_cast<uint32_t>(z) << 18);
    TRandom random(seed, s1);
    for (int i = 0; i < component; ++i)
        random.Next();
    return ToFloat(2 * random.Unit(0x10000) - 1);
}

class TNoiseBench : public TNodeBench
{
public:
    explicit TNoiseBench(int type, bool fixed = true)
        : TNodeBench("TNoise", {{"Position", V3}, {"Frequency", V3}}, {{"Value", type}})
    {
        Graph.Group(Node, "Fixed Seed", fixed,
                    "<Int><name>Random Seed</name><defaultvalue>77</defaultvalue></Int>");
        Set("Frequency", {1, 1, 1});
    }
    TFloats At(float x, float y, float z)
    {
        Set("Position", {x, y, z});
        return Run();
    }
};

class TShaperBench : public TNodeBench
{
public:
    TShaperBench(const std::string& ramp, int type = TY_SCALAR)
        : TNodeBench("TShaper", {"Time", "Life"}, {{"Value", type}})
    {
        Graph.Parameter(Node, ramp);
        Set("Life", {1});
    }
    float At(float time, size_t component = 0)
    {
        Set("Time", {time});
        return Run()[component];
    }
};

const char* const StraightRamp = "<Ramp><name>Value</name><type>scalar</type>"
                                 "<defaultvalues>{0,0},{1,2}</defaultvalues></Ramp>";

class TTextureBench : public TNodeBench
{
public:
    TTextureBench(int nx, int ny, int tiles, int mode)
        : TNodeBench("TAnimatedTexture", {"Time"}, {{"UVs", TY_TEXCOORDS}})
    {
        Graph.Scalar(Node, "Time Range", 1);
        Graph.Int(Node, "X Divisions", nx);
        Graph.Int(Node, "Y Divisions", ny);
        Graph.Int(Node, "Tile Count", tiles);
        Graph.Enum(Node, "Loop Mode", {"Clamp", "Loop", "PingPong", "Odd=5"}, mode);
    }
    TFloats At(float time)
    {
        Set("Time", {time});
        return Run();
    }
    // The tile of a sheet of one row.
    float TileAt(float time) { return At(time)[0] * 4; }
};

} // namespace

TEST(TConstant, PassesItsValueOn)
{
    TNodeBench bench("TConstant", {{"In", TY_COLOUR}}, {{"Value", TY_COLOUR}});
    bench.Set("In", {1, 2, 3, 4});
    EXPECT_EQ(bench.Run(), (TFloats{1, 2, 3, 4}));
}

TEST(TAdd, AddsComponents)
{
    TNodeBench bench("TAdd", {{"A", V3}, {"B", V3}}, {{"Sum", V3}});
    bench.Set("A", {1, 2, 0.1f});
    bench.Set("B", {10, 20, 0.2f});
    EXPECT_EQ(bench.Run(), (TFloats{11, 22, ToFloat(static_cast<double>(0.1f) + 0.2f)}));
}

TEST(TAdd, ConvertsTheSecondValueToTheFirstsType)
{
    TNodeBench bench("TAdd", {{"A", V3}, "B"}, {{"Sum", V3}});
    bench.Set("A", {1, 2, 3});
    bench.Set("B", {10});
    EXPECT_EQ(bench.Run(), (TFloats{11, 12, 13}));
    TNodeBench length("TAdd", {"A", {"B", V3}}, {"Sum"});
    length.Set("A", {1});
    length.Set("B", {3, 0, 4});
    EXPECT_EQ(length.Run(), TFloats{6});
}

// What counts are the components of the wired value; the others are as the wire converts them.
TEST(ComponentMaths, AWireThatConvertsDecidesHowManyComponentsCount)
{
    for (const bool isSum : {true, false}) {
        TNodeBench bench(isSum ? "TAdd" : "TMultiply", {{"A", V3}, {"B", V3}}, {{"Result", V3}}, TU_TRIGGER);
        bench.WireFrom({"Number", TY_SCALAR}, {2}, 0);
        bench.Set("B", {3, 0, 4});
        // For a sum the vector becomes a number too, its length.
        EXPECT_EQ(bench.Run(), (TFloats{isSum ? 7.0f : 6.0f, 2, 2}));
    }
}

TEST(TMultiply, OfAColourByAScaleRepeatsTheScale)
{
    TNodeBench bench("TMultiply", {{"A", TY_COLOUR}, {"B", TY_SCALE}}, {{"Product", TY_COLOUR}});
    bench.Set("A", {1, 2, 3, 4});
    bench.Set("B", {10, 100});
    EXPECT_EQ(bench.Run(), (TFloats{10, 200, 30, 400}));
}

TEST(TMultiply, AScalarTakesOnlyTheFirstComponent)
{
    TNodeBench bench("TMultiply", {"A", {"B", V3}}, {{"Product", TY_SCALAR}});
    bench.Set("A", {2});
    bench.Set("B", {3, 4, 5});
    EXPECT_EQ(bench.Run(), TFloats{6});
}

TEST(TBuildVector, TakesThreeNumbers)
{
    TNodeBench bench("TBuildVector", {"X", "Y", "Z"}, {{"Vector", V3}});
    bench.Set("X", {1});
    bench.Set("Y", {2});
    bench.Set("Z", {3});
    EXPECT_EQ(bench.Run(), (TFloats{1, 2, 3}));
}

TEST(TMakeTransform, TakesTranslationAndRotation)
{
    TNodeBench bench("TMakeTransform", {{"T", V3}, {"R", TY_QUATERNION}}, {{"Transform", TY_TRANSFORM}});
    bench.Set("T", {1, 2, 3});
    bench.Set("R", {4, 5, 6});
    EXPECT_EQ(bench.Run(), (TFloats{1, 2, 3, 4, 5, 6}));
}

TEST(TSelectComponent, AllSelections)
{
    const TFloats expected = {1, 2, -2, 3, ToFloat(1.0 / 3), 0};
    for (size_t value = 0; value < expected.size(); ++value) {
        TNodeBench bench("TSelectComponent", {{"In", V3}}, {"Out"});
        bench.Graph.Enum(bench.Node, "Component", {"X", "Y", "Z", "Length", "Inverse", "Odd=12"},
                         static_cast<int>(value));
        bench.Set("In", {1, 2, -2});
        EXPECT_EQ(bench.Run(), TFloats{expected[value]});
    }
}

TEST(TSelectComponent, TheInverseOfAShortLengthIsTheLength)
{
    TNodeBench bench("TSelectComponent", {{"In", V3}}, {"Out"});
    bench.Graph.Enum(bench.Node, "Component", {"Inverse=4"}, 0);
    bench.Set("In", {0.0009f, 0, 0});
    EXPECT_EQ(bench.Run(), TFloats{0.0009f});
    bench.Set("In", {0.002f, 0, 0});
    EXPECT_EQ(bench.Run(), TFloats{ToFloat(1.0 / 0.002f)});
    bench.Set("In", {0, 0, 0});
    EXPECT_EQ(bench.Run(), TFloats{0});
}

TEST(TSelectComponent, AMissingParameterIsAnError)
{
    TNodeBench bench("TSelectComponent", {{"In", V3}}, {"Out"});
    EXPECT_EQ(bench.Init(), TTexts{"Missing parameter \"Component\" for node Tested"});
}

TEST(TNoise, ALatticePointHasItsCornersValue)
{
    TNoiseBench bench(TY_COLOUR);
    const TFloats value = bench.At(3, -2, 5);
    for (int c = 0; c < 4; ++c)
        EXPECT_EQ(value[static_cast<size_t>(c)], Corner(3, -2, 5, c, 77));
}

TEST(TNoise, InterpolatesLinearlyXThenYThenZ)
{
    TNoiseBench bench(TY_SCALAR);
    const auto lerp = [](float a, float b, float t) { return ToFloat((static_cast<double>(b) - a) * t + a); };
    const float f[3] = {0.25f, 0.5f, 0.125f};
    float planes[2];
    for (int z = 0; z < 2; ++z) {
        float lines[2];
        for (int y = 0; y < 2; ++y)
            lines[y] = lerp(Corner(1, 4 + y, -7 + z, 0, 77), Corner(2, 4 + y, -7 + z, 0, 77), f[0]);
        planes[z] = lerp(lines[0], lines[1], f[1]);
    }
    EXPECT_EQ(bench.At(1.25f, 4.5f, -6.875f), TFloats{lerp(planes[0], planes[1], f[2])});
}

TEST(TNoise, ANegativePositionFloorsDownwards)
{
    TNoiseBench bench(TY_SCALAR);
    const float a = Corner(-1, 0, 0, 0, 77);
    const float b = Corner(0, 0, 0, 0, 77);
    EXPECT_EQ(bench.At(-0.25f, 0, 0), TFloats{ToFloat((static_cast<double>(b) - a) * 0.75 + a)});
}

TEST(TNoise, FrequencyScalesEachAxis)
{
    TNoiseBench bench(TY_SCALAR);
    bench.Set("Frequency", {2, 3, 0});
    EXPECT_EQ(bench.At(1, 1, 9), TFloats{Corner(2, 3, 0, 0, 77)});
}

TEST(TNoise, ComponentsByOutputType)
{
    for (const auto& [type, count] :
         {std::pair<int, size_t>{TY_SCALAR, 1}, {TY_SCALE, 2}, {V3, 3}, {TY_COLOUR, 4}}) {
        TNoiseBench bench(type);
        EXPECT_EQ(bench.At(1, 2, 3).size(), count);
        EXPECT_NE(bench.Writes().back()[count - 1], 0);
    }
    TNoiseBench transform(TY_TRANSFORM);
    const TFloats value = transform.At(1, 2, 3);
    EXPECT_NE(value[2], 0);
    EXPECT_EQ(TFloats(value.begin() + 3, value.end()), (TFloats{0, 0, 0}));
}

TEST(TNoise, OtherOutputTypesStop)
{
    for (const int type : {TY_QUATERNION, TY_TEXCOORDS}) {
        TNoiseBench bench(type);
        EXPECT_EQ(AssertionOf([&] { bench.Init(); }), "0");
    }
}

TEST(TNoise, TheSeedIsDrawnInInitUnlessFixed)
{
    TRandom::SetDefaultSeed(4);
    TRandom mirror;
    TNoiseBench first(TY_SCALAR, false);
    first.Init();
    TNoiseBench second(TY_SCALAR, false);
    second.Init();
    TRandom::ClearDefaultSeed();
    EXPECT_EQ(first.At(1, 2, 3), TFloats{Corner(1, 2, 3, 0, mirror.NextUnsigned())});
    EXPECT_EQ(second.At(1, 2, 3), TFloats{Corner(1, 2, 3, 0, mirror.NextUnsigned())});
}

TEST(TNoise, TheFixedSeedIsReadInEveryFrame)
{
    TNoiseBench bench(TY_SCALAR);
    EXPECT_EQ(bench.At(1, 2, 3), TFloats{Corner(1, 2, 3, 0, 77)});
    TNodeType* type = bench.Node->GetNodeType();
    type->FindParameterOf<TNodeIntParameter>("Fixed Seed.Random Seed", PK_INT)->SetValue(-5);
    EXPECT_EQ(bench.At(1, 2, 3), TFloats{Corner(1, 2, 3, 0, static_cast<uint32_t>(-5))});
}

TEST(TNoise, FarPositionsDoNotTrap)
{
    TNoiseBench bench(TY_SCALAR);
    for (const float x : {3e9f, -3e9f, std::numeric_limits<float>::infinity(), std::nanf("")})
        EXPECT_EQ(AssertionOf([&] { bench.At(x, x, x); }), "");
}

TEST(TNoise, MissingParametersAreErrors)
{
    TNodeBench bench("TNoise", {{"Position", V3}, {"Frequency", V3}}, {"Value"});
    EXPECT_EQ(bench.Init(), TTexts{"Missing parameter \"Fixed Seed\" for node Tested"});
    bench.Graph.Group(bench.Node, "Fixed Seed", false, "");
    EXPECT_EQ(bench.Init(), TTexts{"Missing parameter \"Fixed seed.Random Seed\" for node Tested"});
}

TEST(TShaper, ReadsTheCurveOverTheLife)
{
    TShaperBench bench(StraightRamp);
    EXPECT_NEAR(bench.At(0.5f), 1, 1e-5);
    EXPECT_EQ(bench.At(0), 0);
    EXPECT_EQ(bench.At(1), 2);
    bench.Set("Life", {4});
    EXPECT_NEAR(bench.At(1), 0.5f, 1e-5);
}

TEST(TShaper, InterpolatesBetweenItsSamples)
{
    TShaperBench bench(StraightRamp);
    const auto* ramp = bench.Node->GetNodeType()->FindParameterOf<TNodeRampParameter>("Value", PK_RAMP);
    const float scale = 63;
    const auto sample = [&](int i) { return ramp->Evaluate(ToFloat(static_cast<double>(i) / scale), 0); };
    for (const float time : {0.013f, 0.4f, 0.77f}) {
        const float u = ToFloat(static_cast<double>(time) * scale / 1.0f);
        const int n = static_cast<int>(u);
        const float w = ToFloat(static_cast<double>(u) - n);
        EXPECT_EQ(bench.At(time), ToFloat((static_cast<double>(sample(n + 1)) - sample(n)) * w + sample(n)));
    }
}

TEST(TShaper, ClampsAtBothEnds)
{
    TShaperBench bench(StraightRamp);
    EXPECT_EQ(bench.At(-3), 0);
    EXPECT_EQ(bench.At(7), 2);
    EXPECT_EQ(bench.At(std::numeric_limits<float>::infinity()), 2);
}

TEST(TShaper, BehindTheEndTheLastSampleKeepsItsSign)
{
    TShaperBench bench(
        "<Ramp><name>Value</name><type>scalar</type><defaultvalues>{0,1},{1,-0}</defaultvalues></Ramp>");
    const auto* ramp = bench.Node->GetNodeType()->FindParameterOf<TNodeRampParameter>("Value", PK_RAMP);
    ASSERT_TRUE(std::signbit(ramp->Evaluate(1, 0)));
    EXPECT_TRUE(std::signbit(bench.At(7)));
}

TEST(TShaper, NoNumberCountsAsTheStart)
{
    TShaperBench bench(StraightRamp);
    bench.Set("Life", {0});
    EXPECT_EQ(bench.At(0), 0);
    EXPECT_EQ(bench.At(1), 2);
}

TEST(TShaper, ANegativeLifeIsTheStart)
{
    TShaperBench bench(StraightRamp);
    bench.Set("Life", {-1});
    EXPECT_EQ(bench.At(0.5f), 0);
    EXPECT_NEAR(bench.At(-0.5f), 1, 1e-5);
}

// By the ramp's own length: half of the life is half a second of two.
TEST(TShaper, ALongerRampIsReadInItsOwnTime)
{
    TShaperBench bench(
        "<Ramp><name>Value</name><type>scalar</type><defaultvalues>{0,0},{2,4}</defaultvalues></Ramp>");
    EXPECT_NEAR(bench.At(0.5f), 1, 1e-4);
    EXPECT_NEAR(bench.At(1), 2, 1e-4);
    EXPECT_EQ(bench.At(2), 4);
}

TEST(TShaper, ARampOfZeroDurationHasItsEndValueEverywhere)
{
    TShaperBench bench(
        "<Ramp><name>Value</name><type>scalar</type><defaultvalues>{0,3},{0,8}</defaultvalues></Ramp>");
    for (const float time : {0.0f, 0.5f, 100.0f})
        EXPECT_EQ(bench.At(time), 8);
}

TEST(TShaper, ComponentsThatTheRampLacksAreZero)
{
    TShaperBench bench(
        "<Ramp><name>Value</name><type>scale</type><defaultvalues>{0,3},{1,3}</defaultvalues></Ramp>",
        TY_COLOUR);
    bench.At(0.5f);
    EXPECT_EQ(bench.Writes().back(), (TFloats{3, 3, 0, 0}));
}

TEST(TShaper, AnEditOfTheRampBuildsTheTableAgain)
{
    TShaperBench bench(StraightRamp);
    EXPECT_EQ(bench.At(1), 2);
    auto* ramp = bench.Node->GetNodeType()->FindParameterOf<TNodeRampParameter>("Value", PK_RAMP);
    ramp->SetPoint(0, 3, TRampPoint{1, 5});
    EXPECT_EQ(bench.At(1), 5);
    bench.Exec.Clear();
    ramp->SetPoint(0, 3, TRampPoint{1, 6});
}

TEST(TShaper, TakesAPolyRampToo)
{
    TShaperBench bench(
        "<PolyRamp><name>Value</name><output>Value</output><defaultvalues>{0,1},{1,1}</defaultvalues>"
        "</PolyRamp>",
        TY_COLOUR);
    bench.At(0.5f);
    EXPECT_EQ(bench.Writes().back(), (TFloats{1, 1, 1, 1}));
}

TEST(TShaper, AMissingRampIsAnError)
{
    TNodeBench bench("TShaper", {"Time", "Life"}, {"Value"});
    bench.Graph.Scalar(bench.Node, "Value", 1);
    EXPECT_EQ(bench.Init(), TTexts{"Missing parameter \"Value\" for node Tested"});
}

TEST(TAnimatedTexture, ClampStopsAtTheEnds)
{
    TTextureBench bench(4, 1, 4, 0);
    EXPECT_EQ(bench.TileAt(0), 0);
    EXPECT_EQ(bench.TileAt(0.3f), 1);
    EXPECT_EQ(bench.TileAt(0.99f), 3);
    EXPECT_EQ(bench.TileAt(7), 3);
    EXPECT_EQ(bench.TileAt(-7), 0);
}

TEST(TAnimatedTexture, InClampTheLowerLimitWins)
{
    TTextureBench bench(4, 1, 0, 0);
    EXPECT_EQ(bench.TileAt(1), 0);
}

TEST(TAnimatedTexture, LoopTakesTheRemainder)
{
    TTextureBench bench(4, 1, 4, 1);
    EXPECT_EQ(bench.TileAt(1.3f), 1);
    EXPECT_EQ(bench.TileAt(-0.3f), -1);
}

TEST(TAnimatedTexture, PingPongGoesBack)
{
    TTextureBench bench(4, 1, 4, 2);
    const TFloats expected = {0, 1, 2, 3, 2, 1, 0, 1};
    for (size_t i = 0; i < expected.size(); ++i)
        EXPECT_EQ(bench.TileAt(static_cast<float>(i) / 4), expected[i]) << i;
}

TEST(TAnimatedTexture, PingPongOfASingleTileDoesNotTrap)
{
    TTextureBench bench(4, 1, 1, 2);
    EXPECT_EQ(bench.TileAt(3), 0);
}

TEST(TAnimatedTexture, ATimeRangeOfZeroHasNoTileToGoTo)
{
    // No number, and one that is too large, are the smallest whole number.
    TTextureBench clamped(4, 1, 4, 0);
    TTextureBench looped(4, 1, 3, 1);
    for (TTextureBench* bench : {&clamped, &looped})
        bench->Node->GetNodeType()
            ->FindParameterOf<TNodeScalarParameter>("Time Range", TY_SCALAR)
            ->SetValue(std::vector<float>{0}.data());
    for (const float time : {-1.0f, 0.0f, 1.0f}) {
        EXPECT_EQ(clamped.TileAt(time), 0);
        EXPECT_EQ(looped.TileAt(time), -2147483648LL % 3 % 4);
    }
}

TEST(TAnimatedTexture, PingPongKeepsTheSignOfItsFrame)
{
    TTextureBench bench(4, 1, 4, 2);
    EXPECT_EQ(bench.TileAt(-0.3f), -1);
}

TEST(TAnimatedTexture, TheRowIsFoundByTheWrongDivisor)
{
    TTextureBench bench(4, 2, 8, 1);
    // Tile 5: column 1 of 4, row 5 / 2.
    EXPECT_EQ(bench.At(5.0f / 8), (TFloats{0.25f, 1, 0.5f, 1.5f}));
}

TEST(TAnimatedTexture, ASheetOfThirdsIsDividedInFloats)
{
    TTextureBench bench(3, 3, 9, 1);
    EXPECT_EQ(bench.At(4.1f / 9),
              (TFloats{ToFloat(1.0 / 3), ToFloat(1.0 / 3), ToFloat(2.0 / 3), ToFloat(2.0 / 3)}));
}

TEST(TAnimatedTexture, MissingParametersCountAsZero)
{
    TNodeBench bench("TAnimatedTexture", {"Time"}, {{"UVs", TY_TEXCOORDS}});
    EXPECT_EQ(bench.Init(), TTexts{});
    EXPECT_EQ(bench.Run(), (TFloats{0, 0, 0, 0}));
}

TEST(TAnimatedTexture, OddSheetsDoNotTrap)
{
    for (const int count : {0, -1, -2147483647 - 1, 2147483647})
        for (int mode = 0; mode < 4; ++mode) {
            TTextureBench bench(count, count, count, mode);
            for (const float time : {-1e30f, -1.0f, 0.0f, 1.0f, 1e30f})
                EXPECT_EQ(AssertionOf([&] { bench.At(time); }), "");
        }
}
