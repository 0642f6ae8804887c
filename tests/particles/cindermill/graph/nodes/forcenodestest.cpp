#include "nodebench.h"

#include "particles/cindermill/graph/engine/random.h"

#include <cmath>

namespace {

constexpr int V3 = TY_VECTOR3;
constexpr int TF = TY_TRANSFORM;

float ToFloat(double value)
{
    return static_cast<float>(value);
}

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

// A square in the x-z plane and a particle that falls on it.
class TPlaneBench : public TNodeBench
{
public:
    TPlaneBench()
        : TNodeBench("TCollisionPlane",
                     {{"P", V3}, {"V", V3}, {"Plane", TF}, {"Size", TY_SCALE}, "Bounce", "Unused"},
                     {{"P", V3}, {"V", V3}, "Hit"})
    {
        Set("Size", {1, 1});
        Set("Bounce", {1});
        Set("P", {0.5f, 1, 0.25f});
        Set("V", {1, -4, 0});
    }
    bool Hits(float dt = 0.5f) { return Run(dt, 2)[0] != 0; }
};

class TVolumeBench : public TNodeBench
{
public:
    TVolumeBench(int type, bool distance)
        : TNodeBench("TVolume", {{"P", V3}, {"Transform", TF}, {"Scale", V3}}, {"Result"})
    {
        Graph.Enum(Node, "Volume Type", {"Sphere=0", "Box=1", "Cylinder=2", "Odd=9"}, type);
        Graph.Bool(Node, "Output Distance", distance);
        Set("Scale", {1, 1, 1});
    }
    float At(float x, float y, float z)
    {
        Set("P", {x, y, z});
        return Run()[0];
    }
};

enum
{
    Sphere,
    Box,
    Cylinder
};

// Three particles per frame that age.
class TAgeBench
{
public:
    explicit TAgeBench(const char* lastClass) : Exec(Services)
    {
        TNodeBench registered("TEventTrigger", {}, {"Out"});
        TEffectNode* trigger = Graph.Node("Trigger", TU_TRIGGER, {}, {});
        Emitter = Graph.Node("Emitter", TU_EMITTER, {"Count", {"Transform", TF}}, {{"Transform", TF}});
        Age = Graph.Node("Age", TU_PROCESS, {"Age", "Max Age"}, {"Age"}, FL_PROCESSHINT);
        Last = Graph.Node("Last", TU_PROCESS, {"Kill", "Max Age"}, {"Unused"});
        TEffectNode* sink = Graph.Node("Sink", TU_RENDER, {{"Transform", TF}, "Age"}, {});
        Graph.Class(trigger, "TEffectExecNode");
        Graph.Class(Emitter, "TPointEmitter");
        Graph.Class(Age, "TAge");
        Graph.Class(Last, lastClass);
        Graph.Class(sink, "TEffectExecNode");
        Graph.Wire(Emitter, 0, sink, 0);
        Graph.Wire(Age, 0, sink, 1);
        Graph.Wire(Age, 0, Last, 0);
        Graph.InputValue(Emitter, "Count", {3});
        TErrorList errors;
        LogOf([&] { Schedule.Create(Graph.GetGraph(), errors); });
        Exec.Init(Schedule, errors, true);
        EXPECT_TRUE(Exec.IsInited());
    }
    ~TAgeBench() { Exec.Clear(); }
    int Run(float dt)
    {
        Exec.Update(dt);
        int count = 0;
        for (int g = 0; g < Exec.GetNumGroups(); ++g)
            count += Exec.GetNumParticles(g);
        return count;
    }

    TTestGraph Graph;
    TEffectNode* Emitter;
    TEffectNode* Age;
    TEffectNode* Last;
    TFakeServices Services;
    TEffectSchedule Schedule;
    TEffectExec Exec;
};

} // namespace

TEST(TGravity, AddsTheAcceleration)
{
    TNodeBench bench("TGravity", {{"V", V3}, {"A", V3}}, {{"V", V3}});
    bench.Set("V", {1, 2, 3});
    bench.Set("A", {0.1f, -9.8f, 0});
    EXPECT_EQ(bench.Run(0.02f), (TFloats{ToFloat(1 + static_cast<double>(0.1f) * 0.02f),
                                         ToFloat(2 + static_cast<double>(-9.8f) * 0.02f), 3}));
}

TEST(TGravity, KeepsTheSecondHalfOfATransform)
{
    TNodeBench bench("TGravity", {{"V", TF}, {"A", TF}}, {{"V", TF}});
    bench.Set("V", {1, 2, 3, 4, 5, 6});
    bench.Set("A", {1, 1, 1, 1, 1, 1});
    EXPECT_EQ(bench.Run(1), (TFloats{2, 3, 4, 4, 5, 6}));
}

TEST(TWind, AddsTheWindByItsStrength)
{
    TNodeBench bench("TWind", {{"V", V3}, {"W", V3}, "S"}, {{"V", V3}});
    bench.Set("V", {1, 2, 3});
    bench.Set("W", {0.3f, 0, -2});
    bench.Set("S", {0.7f});
    const double factor = static_cast<double>(0.7f) * 0.02f;
    EXPECT_EQ(bench.Run(0.02f), (TFloats{ToFloat(1 + 0.3f * factor), 2, ToFloat(3 - 2 * factor)}));
}

TEST(TTurbulence, PushesInANewDirectionEachTime)
{
    const TSeeded seeded(29);
    TNodeBench bench("TTurbulence", {{"V", V3}, "S"}, {{"V", V3}});
    bench.Set("V", {1, 2, 3});
    bench.Set("S", {0.7f});
    TRandom mirror = seeded.Mirror;
    for (int frame = 0; frame < 5; ++frame) {
        float d[3];
        mirror.Direction(d, 0x10000);
        TFloats expected;
        for (int i = 0; i < 3; ++i)
            expected.push_back(ToFloat(i + 1 + d[i] * (static_cast<double>(0.7f) * 0.02f)));
        ASSERT_EQ(bench.Run(0.02f), expected);
    }
}

TEST(TDamping, ScalesBothHalves)
{
    TNodeBench bench("TDamping", {{"V", TF}, "D"}, {{"V", TF}});
    bench.Set("V", {1, 2, 3, 4, 5, 6});
    bench.Set("D", {0.5f});
    EXPECT_EQ(bench.Run(0.5f), (TFloats{0.75f, 1.5f, 2.25f, 3, 3.75f, 4.5f}));
    bench.Set("D", {1});
    EXPECT_EQ(bench.Run(0.5f), (TFloats{1, 2, 3, 4, 5, 6}));
    bench.Set("D", {0});
    EXPECT_EQ(bench.Run(1), (TFloats{0, 0, 0, 0, 0, 0}));
}

TEST(TDamping, ALongFrameFlipsTheSign)
{
    TNodeBench bench("TDamping", {{"V", V3}, "D"}, {{"V", V3}});
    bench.Set("V", {1, 2, 3});
    bench.Set("D", {0.5f});
    EXPECT_EQ(bench.Run(4), (TFloats{-1, -2, -3}));
}

// The second half of a transform is a rotation's speed, which these leave alone.
TEST(ForceNodes, KeepTheSecondHalfOfATransform)
{
    const TFloats velocity = {1, 2, 3, 4, 5, 6};
    TNodeBench wind("TWind", {{"V", TF}, {"W", V3}, "S"}, {{"V", TF}});
    wind.Set("V", velocity);
    wind.Set("W", {1, 2, 3});
    wind.Set("S", {2});
    EXPECT_EQ(wind.Run(0.5f), (TFloats{2, 4, 6, 4, 5, 6}));
    TNodeBench attractor("TAttractor", {{"P", TF}, {"V", TF}, {"A", V3}, "S"}, {{"V", TF}});
    attractor.Set("P", {0, 0, 0, 90, 90, 90});
    attractor.Set("V", velocity);
    attractor.Set("A", {1, 1, 1});
    attractor.Set("S", {2});
    EXPECT_EQ(attractor.Run(0.5f), (TFloats{2, 3, 4, 4, 5, 6}));
    TNodeBench turbulence("TTurbulence", {{"V", TF}, "S"}, {{"V", TF}});
    turbulence.Set("V", velocity);
    turbulence.Set("S", {1});
    const TFloats pushed = turbulence.Run(0.5f);
    EXPECT_NE(TFloats(pushed.begin(), pushed.begin() + 3), (TFloats{1, 2, 3}));
    EXPECT_EQ(TFloats(pushed.begin() + 3, pushed.end()), (TFloats{4, 5, 6}));
    TNodeBench plane("TCollisionPlane",
                     {{"P", TF}, {"V", TF}, {"Plane", TF}, {"Size", TY_SCALE}, "Bounce", "Unused"},
                     {{"P", TF}, {"V", TF}, "Hit"});
    plane.Set("P", {0, 1, 0, 7, 8, 9});
    plane.Set("V", {0, -4, 0, 4, 5, 6});
    plane.Set("Size", {1, 1});
    plane.Set("Bounce", {1});
    EXPECT_EQ(plane.Run(0.5f, 1), (TFloats{0, 4, 0, 4, 5, 6}));
    EXPECT_EQ(plane.Writes(0).back(), (TFloats{0, 1, 0, 7, 8, 9}));
}

TEST(TAttractor, PullsLikeASpring)
{
    TNodeBench bench("TAttractor", {{"P", V3}, {"V", V3}, {"A", V3}, "S"}, {{"V", V3}});
    bench.Set("P", {1, 2, 3});
    bench.Set("V", {10, 20, 30});
    bench.Set("A", {4, 2, 1});
    bench.Set("S", {0.3f});
    const double factor = static_cast<double>(0.02f) * 0.3f;
    EXPECT_EQ(bench.Run(0.02f), (TFloats{ToFloat(10 + 3 * factor), 20, ToFloat(30 - 2 * factor)}));
}

TEST(TIntegrate, MovesBothHalves)
{
    TNodeBench bench("TIntegrate", {{"P", TF}, {"V", TF}}, {{"P", TF}});
    bench.Set("P", {1, 2, 3, 4, 5, 6});
    bench.Set("V", {2, 4, 6, 8, 10, 12});
    EXPECT_EQ(bench.Run(0.5f), (TFloats{2, 4, 6, 8, 10, 12}));
}

TEST(TCollisionPlane, ReflectsAFallingParticle)
{
    TPlaneBench bench;
    EXPECT_TRUE(bench.Hits());
    EXPECT_EQ(bench.Writes(1).back(), (TFloats{1, 4, 0}));
    EXPECT_EQ(bench.Writes(0).back(), (TFloats{0.5f, 1, 0.25f}));
    EXPECT_EQ(bench.Writes(2).back(), TFloats{1});
}

TEST(TCollisionPlane, BounceScalesTheReflection)
{
    TPlaneBench bench;
    bench.Set("Bounce", {0.5f});
    EXPECT_EQ(bench.Run(0.5f, 1), (TFloats{0.5f, 2, 0}));
}

TEST(TCollisionPlane, TheReflectionIsMovedLikeAPoint)
{
    TPlaneBench bench;
    bench.Set("P", {10.5f, 21, 30.25f});
    bench.Set("Plane", {10, 20, 30, 0, 0, 0});
    bench.Set("Size", {2, 3});
    // In the plane's space the velocity is (0.5, -4, 0); back out it is scaled and moved.
    EXPECT_EQ(bench.Run(0.5f, 1), (TFloats{11, 24, 30}));
}

TEST(TCollisionPlane, ATurnedPlaneIsScaledBeforeItTurns)
{
    // About z by 90 degrees: the side along x lies along -y, and what faced up faces along x.
    TPlaneBench bench;
    bench.Set("Plane", {0, 0, 0, 0, 0, 90});
    bench.Set("Size", {3, 1});
    bench.Set("P", {1, 2.5f, 0});
    bench.Set("V", {-4, 0.25f, 0.5f});
    ASSERT_TRUE(bench.Hits());
    const TFloats velocity = bench.Writes(1).back();
    const TFloats expected = {4, 0.25f, 0.5f};
    for (size_t i = 0; i < 3; ++i)
        EXPECT_NEAR(velocity[i], expected[i], 1e-5) << i;
    bench.Set("V", {4, 0.25f, 0.5f});
    EXPECT_FALSE(bench.Hits());
    bench.Set("V", {-4, 0, 0});
    bench.Set("P", {1, 0, 2.5f});
    EXPECT_FALSE(bench.Hits());
    bench.Set("P", {-1, 0, 0});
    bench.Set("V", {4, 0, 0});
    EXPECT_FALSE(bench.Hits());
}

TEST(TCollisionPlane, MissesOutsideItsSquare)
{
    TPlaneBench bench;
    bench.Set("V", {0, -4, 0});
    for (const auto& [x, hits] : {std::pair{1.0f, true}, {-1.0f, true}, {1.001f, false}, {-1.001f, false}}) {
        bench.Set("P", {x, 1, 0});
        EXPECT_EQ(bench.Hits(), hits) << x;
        bench.Set("P", {0, 1, x});
        EXPECT_EQ(bench.Hits(), hits) << x;
    }
    bench.Set("P", {5, 1, 0});
    EXPECT_EQ(bench.Run(0.5f, 1), (TFloats{0, -4, 0}));
}

TEST(TCollisionPlane, HasOneSide)
{
    TPlaneBench bench;
    bench.Set("P", {0, -1, 0});
    bench.Set("V", {0, 4, 0});
    EXPECT_FALSE(bench.Hits());
    bench.Set("V", {0, -4, 0});
    EXPECT_FALSE(bench.Hits());
}

TEST(TCollisionPlane, AParticleInThePlaneHits)
{
    TPlaneBench bench;
    bench.Set("P", {0, 0.0005f, 0});
    bench.Set("V", {0.01f, -0.0001f, 0});
    EXPECT_TRUE(bench.Hits());
    bench.Set("P", {0, -0.0009f, 0});
    EXPECT_TRUE(bench.Hits());
    bench.Set("P", {0, -0.0011f, 0});
    EXPECT_FALSE(bench.Hits());
}

// What rises slowly enough to stay in the plane hits it, as long as the place where it was in it is in range.
TEST(TCollisionPlane, AParticleThatRisesWithinThePlaneHits)
{
    TPlaneBench bench;
    bench.Set("P", {0, 0.0005f, 0});
    bench.Set("V", {0.1f, 0.0005f, 0});
    EXPECT_TRUE(bench.Hits());
    EXPECT_LT(bench.Writes(1).back()[1], 0) << "turned back into the plane";
    bench.Set("V", {0.1f, 0.0015f, 0});
    EXPECT_FALSE(bench.Hits());
    bench.Set("V", {2, 0.0005f, 0});
    EXPECT_FALSE(bench.Hits());
}

TEST(TCollisionPlane, WhatIsNoNumberHitsNothing)
{
    TPlaneBench bench;
    for (const char* input : {"P", "V"}) {
        TPlaneBench odd;
        odd.Set(input, {std::nanf(""), std::nanf(""), std::nanf("")});
        EXPECT_FALSE(odd.Hits());
    }
    bench.Set("Plane", {0, std::nanf(""), 0, 0, 0, 0});
    EXPECT_FALSE(bench.Hits());
    EXPECT_EQ(bench.Writes(1).back(), (TFloats{1, -4, 0}));
}

TEST(TCollisionPlane, AFrameWithoutTimeReflectsNothing)
{
    TPlaneBench bench;
    for (const float y : {0.0f, 0.0005f, 1.0f}) {
        bench.Set("P", {0, y, 0});
        EXPECT_FALSE(bench.Hits(0)) << y;
        EXPECT_EQ(bench.Writes(1).back(), (TFloats{1, -4, 0}));
    }
}

TEST(TCollisionPlane, AFlatPlaneIsNotHit)
{
    TPlaneBench bench;
    bench.Set("Size", {0, 1});
    EXPECT_FALSE(bench.Hits());
    EXPECT_EQ(bench.Writes(1).back(), (TFloats{1, -4, 0}));
}

TEST(TAge, EndsAParticlePastItsMaximumAge)
{
    TAgeBench bench("TEffectExecNode");
    bench.Graph.InputValue(bench.Age, "Max Age", {0.5f});
    EXPECT_EQ(bench.Run(0.25f), 3);
    // At exactly its maximum age a particle lives on.
    EXPECT_EQ(bench.Run(0.25f), 6);
    EXPECT_EQ(bench.Run(0.25f), 6);
}

TEST(TAge, WithoutAMaximumAParticleLivesOnlyAFrameWithoutTime)
{
    TAgeBench bench("TEffectExecNode");
    EXPECT_EQ(bench.Run(0), 3);
    EXPECT_EQ(bench.Run(0.25f), 0);
}

TEST(TAge, TwoOnAGroupListAParticleTwice)
{
    TAgeBench bench("TAge");
    bench.Graph.InputValue(bench.Age, "Max Age", {0.5f});
    bench.Graph.InputValue(bench.Last, "Max Age", {0.75f});
    bench.Graph.InputValue(bench.Emitter, "Count", {1});
    EXPECT_EQ(bench.Run(0.375f), 1);
    bench.Graph.InputValue(bench.Emitter, "Count", {4});
    // Both end the oldest of five; the second death takes one of the young.
    EXPECT_EQ(bench.Run(0.25f), 3);
    bench.Graph.InputValue(bench.Emitter, "Count", {0});
    // Both end all that are left, which is no more than there are.
    EXPECT_EQ(bench.Run(2), 0);
}

TEST(TAge, NoNumberEndsNothing)
{
    TAgeBench bench("TEffectExecNode");
    bench.Graph.InputValue(bench.Age, "Max Age", {std::nanf("")});
    EXPECT_EQ(bench.Run(5), 3);
    TAgeBench aged("TEffectExecNode");
    aged.Graph.InputValue(aged.Age, "Age", {std::nanf("")});
    EXPECT_EQ(aged.Run(5), 3);
}

TEST(TPrune, EndsParticlesByTheirFlag)
{
    TAgeBench bench("TPrune");
    bench.Graph.InputValue(bench.Age, "Max Age", {10});
    EXPECT_EQ(bench.Run(0), 3);
    EXPECT_EQ(bench.Run(1e-20f), 0);
}

TEST(TPrune, KillsOnNoNumber)
{
    TAgeBench bench("TPrune");
    bench.Graph.InputValue(bench.Age, "Age", {std::nanf("")});
    EXPECT_EQ(bench.Run(0), 0);
}

TEST(TVolume, InsideTests)
{
    TVolumeBench sphere(Sphere, false);
    EXPECT_EQ(sphere.At(0, 0, 0), 1);
    EXPECT_EQ(sphere.At(0.7f, 0.7f, 0), 1);
    EXPECT_EQ(sphere.At(1, 0, 0), 0);
    TVolumeBench box(Box, false);
    EXPECT_EQ(box.At(1, -1, 1), 1);
    EXPECT_EQ(box.At(1.01f, 0, 0), 0);
    EXPECT_EQ(box.At(0, -1.01f, 0), 0);
    EXPECT_EQ(box.At(0, 0, 1.01f), 0);
    TVolumeBench cylinder(Cylinder, false);
    EXPECT_EQ(cylinder.At(1, 1, 0), 1);
    EXPECT_EQ(cylinder.At(0.8f, 0, 0.8f), 0);
    EXPECT_EQ(cylinder.At(0, 1.01f, 0), 0);
    TVolumeBench odd(3, false);
    EXPECT_EQ(odd.At(0, 0, 0), 0);
}

TEST(TVolume, Distances)
{
    TVolumeBench sphere(Sphere, true);
    EXPECT_EQ(sphere.At(0.5f, 0, 0), 0);
    EXPECT_EQ(sphere.At(0, 3, 0), 2);
    TVolumeBench box(Box, true);
    EXPECT_EQ(box.At(1, 1, -1), 0);
    EXPECT_EQ(box.At(4, 5, 0), 5);
    TVolumeBench cylinder(Cylinder, true);
    EXPECT_EQ(cylinder.At(0.5f, 1, 0), 0);
    EXPECT_EQ(cylinder.At(0, 3, 4), std::sqrt(13.0f));
    EXPECT_EQ(cylinder.At(0.5f, -3, 0), 2);
    TVolumeBench odd(3, true);
    EXPECT_EQ(odd.At(5, 5, 5), 0);
}

TEST(TVolume, AScaledAndMovedShape)
{
    TVolumeBench sphere(Sphere, true);
    sphere.Set("Transform", {10, 0, 0, 0, 0, 0});
    sphere.Set("Scale", {2, 1, 1});
    EXPECT_EQ(sphere.At(13, 0, 0), 1);
    TVolumeBench inside(Sphere, false);
    inside.Set("Transform", {10, 0, 0, 0, 0, 90});
    inside.Set("Scale", {2, 1, 1});
    // Turned about z, the long axis lies along y.
    EXPECT_EQ(inside.At(10, 1.9f, 0), 1);
    EXPECT_EQ(inside.At(11.9f, 0, 0), 0);
}

TEST(TVolume, AFlatShapeHoldsNothing)
{
    for (const int type : {Sphere, Box, Cylinder})
        for (const bool distance : {false, true}) {
            TVolumeBench bench(type, distance);
            bench.Set("Scale", {1, 0, 1});
            EXPECT_EQ(bench.At(0, 0, 0), 0);
            EXPECT_EQ(bench.At(5, 5, 5), 0);
        }
}

TEST(TVolume, MissingParametersAreErrors)
{
    TNodeBench bench("TVolume", {{"P", V3}, {"Transform", TF}, {"Scale", V3}}, {"Result"});
    EXPECT_EQ(bench.Init(), TTexts{"Missing parameter \"Volume Type\" for node Tested"});
    bench.Graph.Enum(bench.Node, "Volume Type", {"Sphere"}, 0);
    EXPECT_EQ(bench.Init(), TTexts{"Missing parameter \"Output Distance\" for node Tested"});
}

namespace {

// Moves along x and turns about z, over two seconds.
std::string Vori(const char* end)
{
    const auto channel = [](const std::string& keys, int stride) {
        return "<animChannel><animData numKeys=2 keyStride=" + std::to_string(stride) + "><keyValues>" +
               keys + "</keyValues><keyTimes>0 2</keyTimes></animData></animChannel>";
    };
    return "<?xml version=\"1.0\"?><VOR><animclip><anim>" + channel(std::string("0 0 0 ") + end + " 0 0", 3) +
           channel("0 0 0 1 0 0 0 1", 4) + channel("1 1 1 2 2 2", 3) + "</anim></animclip></VOR>";
}

class TPathBench : public TNodeBench
{
public:
    TPathBench() : TNodeBench("TAnimationPath", {"Time"}, {{"Transform", TF}})
    {
        Services.Folder = Folder.GetFolder();
        Parameter = static_cast<TNodeAnimationParameter*>(
            Graph.Parameter(Node, "<Animation><name>Animation</name></Animation>"));
        Parameter->SetFlags(true, true, true);
    }
    ~TPathBench() { Exec.Clear(); }
    void File(const char* name, const std::string& text)
    {
        WriteBytes(Folder.Path(name), text);
        Parameter->SetFileName(name);
    }

    TTempFolder Folder;
    TNodeAnimationParameter* Parameter;
};

} // namespace

TEST(TAnimationPath, FollowsItsAnimation)
{
    TPathBench bench;
    bench.File("a.vori", Vori("8"));
    bench.Set("Time", {0.5f});
    EXPECT_EQ(bench.Run(), (TFloats{2, 0, 0, 0, 0, 0}));
    bench.Parameter->SetFlags(false, true, true);
    EXPECT_EQ(bench.Run(), (TFloats{0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(bench.Services.Warnings, TTexts{});
}

TEST(TAnimationPath, InitErrors)
{
    TNodeBench without("TAnimationPath", {"Time"}, {{"Transform", TF}});
    EXPECT_EQ(without.Init(), TTexts{"Missing parameter \"Animation\" for node Tested"});
    TPathBench bench;
    EXPECT_EQ(bench.Init(), TTexts{"No animation specified in Animation Path node"});
    bench.File("bad.vori", "<VOR></VOR>");
    EXPECT_EQ(bench.Init(), TTexts{"Could not load animation bad.vori"});
    bench.Services.Folder.clear();
    EXPECT_EQ(bench.Init(), TTexts{"Could not resolve path for animation bad.vori"});
}

TEST(TAnimationPath, AnEditLoadsTheNewAnimation)
{
    TPathBench bench;
    bench.File("a.vori", Vori("8"));
    bench.Set("Time", {2});
    EXPECT_EQ(bench.Run()[0], 8);
    bench.File("b.vori", Vori("6"));
    EXPECT_EQ(bench.Run()[0], 6);
    EXPECT_EQ(bench.Services.Warnings, TTexts{});
}

TEST(TAnimationPath, ABadEditWarnsAndKeepsTheOldAnimation)
{
    TPathBench bench;
    bench.File("a.vori", Vori("8"));
    bench.Set("Time", {2});
    bench.Run();
    bench.File("bad.vori", "nothing");
    EXPECT_EQ(bench.Services.Warnings, TTexts{"Could not load animation bad.vori"});
    EXPECT_EQ(bench.Run()[0], 8);
}

TEST(TAnimationPath, StopsListeningWithTheEngine)
{
    TPathBench bench;
    bench.File("a.vori", Vori("8"));
    bench.Run();
    bench.Exec.Clear();
    bench.File("bad.vori", "nothing");
    EXPECT_EQ(bench.Services.Warnings, TTexts{});
}
