#include "support/testsupport.h"

#include "particles/cindermill/graph/engine/particlebuffer.h"
#include "particles/cindermill/graph/engine/random.h"
#include "particles/cindermill/graph/operations/operationstack.h"
#include "particles/cindermill/main/cindermillapp.h"
#include "particles/effectgraph/simpleparameters.h"
#include "tools/samplemaker/samplebuilder.h"
#include "tools/samplemaker/samplelayout.h"
#include "tools/samplemaker/samplemaker.h"
#include "tools/samplemaker/samplemaths.h"
#include "tools/samplemaker/startsettings.h"

#include <cmath>
#include <filesystem>
#include <limits>
#include <map>
#include <memory>
#include <set>

namespace {

constexpr float FrameTime = 0.02f;

std::string SamplePath(const std::string& name)
{
    return SourcePath("samples/" + name);
}

// What the program is with its node types and samples, and nothing of this machine's user.
class TSampleApp
{
public:
    TSampleApp() : App(new TStartSettings)
    {
        TErrorList errors;
        App.InitHeadless();
        App.LoadNodeTypes(SourcePath("NodeTypes").c_str(), errors);
        EXPECT_TRUE(errors.empty());
        App.GetResourceLocator().AddSearchDirectory(SourcePath("samples").c_str());
    }
    TCindermillApp& Get() { return App; }

private:
    TCindermillApp App;
};

std::set<std::string> FilesBelow(const std::string& folder)
{
    std::set<std::string> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
        if (entry.is_regular_file() && entry.path().extension() != ".md")
            files.insert(std::filesystem::relative(entry.path(), folder).generic_string());
    return files;
}

std::string TextOf(const TErrorList& errors)
{
    std::string result;
    for (const TError* error : errors) {
        TString text;
        error->GetText(text);
        result += Text(text) + "\n";
    }
    return result;
}

struct TRange
{
    float Low = std::numeric_limits<float>::max();
    float High = std::numeric_limits<float>::lowest();
};

// A sample that runs, always with the same random numbers.
class TRunningSample
{
public:
    explicit TRunningSample(const std::string& name) : Document(App.Get())
    {
        TRandom::SetDefaultSeed(5);
        EXPECT_TRUE(Document.Load(SamplePath(name + ".effect").c_str())) << Text(Document.GetLoadError());
        TErrorList errors;
        EXPECT_TRUE(Document.CreateSchedule(errors)) << TextOf(errors);
        EXPECT_TRUE(Document.InitEngine(errors, true)) << TextOf(errors);
    }
    ~TRunningSample() { TRandom::ClearDefaultSeed(); }

    void Run(int frames)
    {
        TErrorList errors;
        for (int i = 0; i < frames; ++i)
            ASSERT_TRUE(Document.UpdateEngine(FrameTime, errors)) << TextOf(errors);
    }
    TDocument& GetDocument() { return Document; }
    const TEffectSchedule& GetSchedule() { return Document.GetSchedule(); }
    // The group that a render stage with that texture draws.
    int FindGroup(const char* texture)
    {
        for (int group = 0; group < GetSchedule().GetNumGroups(); ++group)
            for (int tied = 0; tied < GetSchedule().GetNumTiedNodes(group); ++tied)
                if (HasTexture(GetSchedule().GetNode(GetSchedule().GetTiedNode(group, tied)), texture))
                    return group;
        ADD_FAILURE() << "no stage draws " << texture;
        return 0;
    }
    int Count(int group) { return Document.GetEngine().GetNumParticles(group); }
    // What the living particles have in one component of an attribute.
    TRange Measure(int group, const char* attribute, int component)
    {
        TRange range;
        const int attrib = FindAttribute(group, attribute);
        const int usage = GetSchedule().GetAttributeUsage(group, attrib);
        for (int i = 0; i < Count(group); ++i) {
            const float value =
                Document.GetEngine().GetGroup(group)->GetAttribute(attrib, usage, i)[component];
            range.Low = std::min(range.Low, value);
            range.High = std::max(range.High, value);
        }
        return range;
    }

private:
    static bool HasTexture(TEffectNode* node, const char* texture)
    {
        for (const char* name : {"Texture", "Base Texture"}) {
            auto* param = node->GetNodeType()->FindParameterOf<TNodeTextureParameter>(name, PK_TEXTURE);
            if (param != nullptr && param->GetFileName().Compare(texture) == 0)
                return true;
        }
        return false;
    }
    int FindAttribute(int group, const char* name)
    {
        for (int attrib = 0; attrib < GetSchedule().GetNumAttributes(group); ++attrib) {
            const int usage = GetSchedule().GetAttributeUsage(group, attrib);
            if (usage >= TU_PROCESS && GetSchedule().GetAttributeName(group, attrib).Compare(name) == 0)
                return attrib;
        }
        ADD_FAILURE() << "no attribute " << name;
        return 0;
    }

    TSampleApp App;
    TDocument Document;
};

class TEverySample : public testing::TestWithParam<std::string>
{
};

INSTANTIATE_TEST_SUITE_P(Samples, TEverySample, testing::ValuesIn(GetSampleNames()),
                         [](const auto& sample) { return sample.param; });

} // namespace

TEST(Samples, TheMakerGivesTheFilesOfTheRepository)
{
    TSampleApp app;
    const TTempFolder folder;
    std::string failed;
    ASSERT_TRUE(MakeSamples(app.Get(), folder.GetFolder(), failed)) << failed;
    const std::set<std::string> made = FilesBelow(folder.GetFolder());
    std::set<std::string> kept = FilesBelow(SourcePath("samples"));
    // What they look like is drawn by the picture program.
    for (const std::string& name : GetSampleNames())
        EXPECT_EQ(kept.erase("pictures/" + name + ".png"), 1u) << name;
    EXPECT_EQ(made, kept);
    for (const std::string& file : made)
        EXPECT_TRUE(ReadBytes(folder.Path(file)) == ReadBytes(SamplePath(file))) << file;
}

TEST(Samples, AFolderThatCannotBeMadeIsTold)
{
    TSampleApp app;
    const TTempFolder folder;
    WriteBytes(folder.Path("file"), "in the way");
    std::string failed;
    EXPECT_FALSE(MakeSamples(app.Get(), folder.Path("file"), failed));
    EXPECT_EQ(failed, folder.Path("file"));
}

TEST(Samples, TogetherTheyUseEveryNodeType)
{
    TSampleApp app;
    std::set<std::string> used;
    for (const std::string& name : GetSampleNames()) {
        TDocument document(app.Get());
        ASSERT_TRUE(document.Load(SamplePath(name + ".effect").c_str()));
        for (int i = 0; i < document.GetGraph()->GetNumNodes(); ++i)
            used.insert(Text(document.GetGraph()->GetNode(i)->GetNodeType()->Name));
    }
    const TNodeTypeLibrary& types = app.Get().GetNodeTypes();
    for (int i = 0; i < types.GetNumTypes(); ++i)
        EXPECT_TRUE(used.count(Text(types.GetType(i)->Name))) << Text(types.GetType(i)->Name);
}

TEST_P(TEverySample, HasNoHistoryAndTheLibrarysNodeTypes)
{
    TSampleApp app;
    TDocument document(app.Get());
    ASSERT_TRUE(document.Load(SamplePath(GetParam() + ".effect").c_str()));
    EXPECT_EQ(document.GetOperationStack()->GetNumOperations(), 0);
    EXPECT_FALSE(document.IsModified());
    for (int i = 0; i < document.GetGraph()->GetNumNodes(); ++i) {
        const TNodeType* type = document.GetGraph()->GetNode(i)->GetNodeType();
        EXPECT_FALSE(type->NeedsRefresh(app.Get().GetNodeTypes())) << Text(type->Name);
    }
}

TEST_P(TEverySample, IsLaidOutFromLeftToRightWithoutOverlaps)
{
    TSampleApp app;
    TDocument document(app.Get());
    ASSERT_TRUE(document.Load(SamplePath(GetParam() + ".effect").c_str()));
    const TEffectGraph& graph = *document.GetGraph();
    std::map<int, std::map<int, int>> columns;
    for (int i = 0; i < graph.GetNumNodes(); ++i) {
        const auto* node = static_cast<TToolNode*>(graph.GetNode(i));
        EXPECT_GE(node->GetY(), 0);
        EXPECT_EQ(node->GetX() % SampleColumnWidth, 0);
        const bool added =
            columns[node->GetX()].emplace(node->GetY(), GetSampleNodeHeight(*node->GetNodeType())).second;
        EXPECT_TRUE(added) << "two nodes in one place";
    }
    for (const auto& [x, column] : columns) {
        int bottom = 0;
        for (const auto& [y, height] : column) {
            EXPECT_GE(y, bottom) << "at x " << x;
            bottom = y + height + SampleRowGap;
        }
    }
    for (int i = 0; i < graph.GetNumEdges(); ++i)
        EXPECT_LT(static_cast<TToolNode*>(graph.GetEdge(i)->GetSrcNode())->GetX(),
                  static_cast<TToolNode*>(graph.GetEdge(i)->GetDstNode())->GetX());
}

TEST_P(TEverySample, LivesForThreeSeconds)
{
    TRunningSample sample(GetParam());
    sample.Run(150);
    int living = 0;
    for (int group = 0; group < sample.GetSchedule().GetNumGroups(); ++group) {
        if (sample.GetSchedule().IsTriggerGroup(group))
            continue;
        living += sample.Count(group);
        // A burst's or an explosion's flash has gone while its sparks still fly.
        if (GetParam() != "burst" && GetParam() != "explosion") {
            EXPECT_GT(sample.Count(group), 0) << "group " << group;
        }
        EXPECT_LE(sample.Count(group), sample.GetSchedule().GetParticleCount(group));
    }
    EXPECT_GT(living, 10);
}

TEST_P(TEverySample, IsExportedWithoutErrors)
{
    TSampleApp app;
    const TTempFolder folder;
    TDocument document(app.Get());
    ASSERT_TRUE(document.Load(SamplePath(GetParam() + ".effect").c_str()));
    TErrorList errors;
    EXPECT_EQ(document.BatchExport(folder.Path("sample.efx").c_str(), errors), BR_DONE);
    EXPECT_EQ(TextOf(errors), "");
    EXPECT_FALSE(ReadBytes(folder.Path("sample.efx")).empty());
}

TEST(Samples, FountainFallsBackToWhereItRoseFrom)
{
    TRunningSample sample("fountain");
    sample.Run(150);
    const int drops = sample.FindGroup("drop.dds");
    const TRange height = sample.Measure(drops, "Transform", 1);
    EXPECT_GT(height.High, 0.9f);
    EXPECT_LT(height.Low, 0.3f);
    EXPECT_GT(height.Low, -0.3f);
}

TEST(Samples, CampfireSmokeRisesAboveItsFire)
{
    TRunningSample sample("campfire");
    sample.Run(150);
    const TRange fire = sample.Measure(sample.FindGroup("fire.dds"), "Transform", 1);
    const TRange smoke = sample.Measure(sample.FindGroup("smoke.hvt"), "Transform", 1);
    EXPECT_LT(fire.High, 1.2f);
    EXPECT_GT(smoke.High, 1.4f);
}

TEST(Samples, BurstComesAgainAndAgain)
{
    TRunningSample sample("burst");
    const int sparks = sample.FindGroup("spark.dds");
    const int flash = sample.FindGroup("glow.dds");
    int bursts = 0;
    int flashes = 0;
    for (int frame = 0; frame < 320; ++frame) {
        const int before = sample.Count(sparks);
        const int lit = sample.Count(flash);
        sample.Run(1);
        const int born = sample.Count(sparks) - before;
        EXPECT_TRUE(born == 96 || born <= 0) << born;
        bursts += born > 0 ? 1 : 0;
        flashes += sample.Count(flash) > lit ? 1 : 0;
    }
    // Every one and a quarter seconds.
    EXPECT_EQ(bursts, 6);
    EXPECT_EQ(flashes, bursts);
}

TEST(Samples, FlipbookShowsEveryTile)
{
    TRunningSample sample("flipbook");
    std::set<std::pair<float, float>> tiles;
    const int flames = sample.FindGroup("fire.dds");
    for (int frame = 0; frame < 100; ++frame) {
        sample.Run(1);
        for (int attrib = 0; attrib < sample.GetSchedule().GetNumAttributes(flames); ++attrib) {
            if (sample.GetSchedule().GetAttributeName(flames, attrib).Compare("UVs") != 0)
                continue;
            for (int i = 0; i < sample.Count(flames); ++i) {
                const float* uvs =
                    sample.GetDocument().GetEngine().GetGroup(flames)->GetAttribute(attrib, TU_RENDER, i);
                tiles.emplace(uvs[0], uvs[1]);
            }
        }
    }
    EXPECT_EQ(tiles.size(), 16u);
}

TEST(Samples, SparksStayAboveTheGround)
{
    TRunningSample sample("sparks");
    const int sparks = sample.FindGroup("spark.dds");
    bool rising = false;
    for (int frame = 0; frame < 150; ++frame) {
        sample.Run(1);
        EXPECT_GT(sample.Measure(sparks, "Position", 1).Low, -0.05f);
        rising |= frame > 100 && sample.Measure(sparks, "Velocity", 1).High > 1;
    }
    EXPECT_TRUE(rising);
}

TEST(Samples, RainDropsEndInRingsOnTheGround)
{
    TRunningSample sample("rain");
    sample.Run(150);
    const TRange drops = sample.Measure(sample.FindGroup("spark.dds"), "Position", 1);
    EXPECT_GT(drops.Low, -0.1f);
    EXPECT_LT(drops.High, 2.5f);
    const int rings = sample.FindGroup("ring.hvt");
    EXPECT_GT(sample.Count(rings), 20);
    const TRange height = sample.Measure(rings, "Transform", 1);
    EXPECT_GT(height.Low, -0.15f);
    EXPECT_LT(height.High, 0.15f);
    EXPECT_EQ(sample.Measure(rings, "Transform", 3).Low, 90);
    const int droplets = sample.FindGroup("drop.dds");
    EXPECT_GT(sample.Count(droplets), sample.Count(rings));
    EXPECT_LT(sample.Measure(droplets, "Transform", 1).High, 0.4f);
}

TEST(Samples, AuraSpreadsInEveryDirection)
{
    TRunningSample sample("aura");
    sample.Run(100);
    const int rays = sample.FindGroup("spark.dds");
    for (int axis = 0; axis < 3; ++axis) {
        EXPECT_LT(sample.Measure(rays, "Velocity", axis).Low, -0.25f);
        EXPECT_GT(sample.Measure(rays, "Velocity", axis).High, 0.25f);
    }
}

// What the component of an attribute has been over so many frames.
TRange Follow(TRunningSample& sample, int group, const char* attribute, int component, int frames)
{
    TRange range;
    for (int frame = 0; frame < frames; ++frame) {
        sample.Run(1);
        const TRange now = sample.Measure(group, attribute, component);
        range.Low = std::min(range.Low, now.Low);
        range.High = std::max(range.High, now.High);
    }
    return range;
}

TEST(Samples, CometFollowsItsAnimation)
{
    // The knot's reach, along each axis, and the tail that is left behind.
    const TRange reaches[] = {{-1, 1}, {0.55f, 1.25f}, {-1, 1}};
    for (int axis = 0; axis < 3; ++axis) {
        TRunningSample sample("comet");
        const TRange range = Follow(sample, sample.FindGroup("glow.dds"), "Transform", axis, 420);
        EXPECT_NEAR(range.Low, reaches[axis].Low, 0.2) << axis;
        EXPECT_NEAR(range.High, reaches[axis].High, 0.2) << axis;
    }
}

TEST(Samples, TheTailStaysBehindTheComet)
{
    TRunningSample sample("comet");
    sample.Run(100);
    int groups = 0;
    for (int group = 0; group < sample.GetSchedule().GetNumGroups(); ++group)
        if (!sample.GetSchedule().IsTriggerGroup(group)) {
            ++groups;
            EXPECT_TRUE(sample.Count(group) == 1 || sample.Count(group) > 100) << sample.Count(group);
        }
    EXPECT_EQ(groups, 2);
}

TEST(Samples, FirefliesAreHeldTogether)
{
    TRunningSample sample("fireflies");
    sample.Run(400);
    const int flies = sample.FindGroup("glow.dds");
    EXPECT_GT(sample.Count(flies), 80);
    for (int axis = 0; axis < 3; ++axis) {
        EXPECT_GT(sample.Measure(flies, "Transform", axis).Low, -3);
        EXPECT_LT(sample.Measure(flies, "Transform", axis).High, 3);
    }
}

TEST(Samples, ImpactTakesTheGamesColour)
{
    TRunningSample sample("impact");
    sample.Run(50);
    const int dust = sample.FindGroup("smoke.hvt");
    EXPECT_NEAR(sample.Measure(dust, "Colour", 0).High, 0.78, 0.01);
    EXPECT_NEAR(sample.Measure(dust, "Colour", 2).High, 0.4, 0.01);
}

TEST(Samples, VortexSwallowsWhatComesToItsMiddle)
{
    TRunningSample sample("vortex");
    const int disc = sample.FindGroup("spark.dds");
    sample.Run(900);
    const int born = static_cast<int>(50 * 900 * FrameTime);
    EXPECT_LT(sample.Count(disc), born / 2);
    // No more than the room, so it is the hole that took them.
    EXPECT_LT(sample.Count(disc), sample.GetSchedule().GetParticleCount(disc));
    EXPECT_GT(sample.Count(disc), 100);
    // What swallows them came at the start, and stays.
    EXPECT_EQ(sample.Count(sample.FindGroup("smoke.hvt")), 1);
}

TEST(Samples, SnowFallsAllOverItsBox)
{
    TRunningSample sample("snow");
    sample.Run(250);
    const int flakes = sample.FindGroup("flake.dds");
    EXPECT_LT(sample.Measure(flakes, "Transform", 0).Low, -0.65f);
    EXPECT_GT(sample.Measure(flakes, "Transform", 0).High, 0.65f);
    EXPECT_LT(sample.Measure(flakes, "Transform", 1).Low, 0.5f);
    EXPECT_GT(sample.Measure(flakes, "Transform", 5).High, 300);
}

TEST(Samples, WhatFallsEndsOnTheGround)
{
    for (const auto& [name, texture] :
         {std::pair("snow", "flake.dds"), std::pair("leaves", "leafgreen.dds")}) {
        SCOPED_TRACE(name);
        TRunningSample sample(name);
        const int falling = sample.FindGroup(texture);
        float lowest = 1;
        for (int frame = 0; frame < 600; ++frame) {
            sample.Run(1);
            lowest = std::min(lowest, sample.Measure(falling, "Transform", 1).Low);
        }
        EXPECT_LT(lowest, 0.1f);
        EXPECT_GT(lowest, -0.05f);
    }
}

TEST(SampleBuilder, WrongNamesAssert)
{
    TSampleApp app;
    TSampleBuilder effect(app.Get());
    EXPECT_EQ(AssertionOf([&] { effect.Add("No Such Type"); }), "type != 0 : No Such Type");
    const TSampleNode age = effect.Add("Age");
    EXPECT_EQ(AssertionOf([&] { age.Set("No Such Port", {1}); }), "param != 0 : No Such Port");
    EXPECT_EQ(AssertionOf([&] { age.Set("Max Age", {1, 2}); }), "value.size() fits : Max Age");
    const TSampleNode curve = effect.Add("Scalar Over Life");
    EXPECT_EQ(AssertionOf([&] { age.Wire("Max Age", curve, "Time"); }), "source != -1 : Max Age");
    age.Wire("Age", curve, "Time");
    EXPECT_EQ(AssertionOf([&] { age.Wire("Age", curve, "Time"); }), "GetInput(target) == 0 : Time");
    EXPECT_EQ(AssertionOf([&] { curve.Wire("Value", age, "Age"); }), "CanConnect : Age");
    const TSampleNode emitter = effect.Add("Emitter");
    EXPECT_EQ(AssertionOf([&] { emitter.Choose("Emit Mode", "Never"); }), "index < entries.size() : Never");
}

TEST(SampleBuilder, CurvesRunStraightFromPointToPoint)
{
    TSampleApp app;
    TSampleBuilder effect(app.Get());
    const TSampleNode node = effect.Add("Scalar Over Life").Curve("Value", 0, {{0, 1}, {0.5f, 3}, {1, 0}});
    const auto* ramp = node.GetNode()->GetNodeType()->FindParameterOf<TNodeRampParameter>("Value", PK_RAMP);
    ASSERT_NE(ramp, nullptr);
    EXPECT_EQ(ramp->GetCurve(0).size(), 7);
    EXPECT_NEAR(ramp->Evaluate(0.25f, 0), 2, 1e-5);
    EXPECT_NEAR(ramp->Evaluate(0.75f, 0), 1.5, 1e-5);
}

TEST(SampleMaths, TheSineIsTheSine)
{
    for (double turns = -3; turns <= 3; turns += 0.01) {
        EXPECT_NEAR(SineOfTurns(turns), std::sin(turns * 6.283185307179586), 1e-12);
        EXPECT_NEAR(CosineOfTurns(turns), std::cos(turns * 6.283185307179586), 1e-12);
    }
}

TEST(SampleMaths, NoiseStaysInRangeAndComesRound)
{
    TRange range;
    for (int i = 0; i < 2000; ++i) {
        const double x = i * 0.137;
        const double y = i * -0.071;
        const double value = GetFractalNoise(x, y, 4, 3);
        EXPECT_NEAR(value, GetFractalNoise(x, y + 4, 4, 3), 1e-9);
        range.Low = std::min(range.Low, static_cast<float>(value));
        range.High = std::max(range.High, static_cast<float>(value));
    }
    EXPECT_GE(range.Low, 0);
    EXPECT_LE(range.High, 1);
    EXPECT_GT(range.High - range.Low, 0.4f);
}
