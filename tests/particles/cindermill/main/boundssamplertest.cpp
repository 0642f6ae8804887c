#include "support/sampledocument.h"

#include "particles/cindermill/graph/engine/boundssampler.h"
#include "particles/cindermill/graph/engine/particlebuffer.h"
#include "particles/cindermill/graph/operations/addgraphnodeop.h"
#include "particles/cindermill/graph/operations/deletegraphedgeop.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/effectgraph/valueparameters.h"

#include <functional>
#include <limits>

namespace {

using TFloats = std::vector<float>;

// A sample of one class of render stage, with particles that the test puts where it wants them.
class Sampling : public testing::Test
{
protected:
    void Load(const char* sample, const char* className)
    {
        Document = std::make_unique<TSampleDocument>(App, sample);
        for (int i = 0; i < Graph().GetNumNodes() && Stage == nullptr; ++i)
            if (Graph().GetNode(i)->GetNodeType()->ClassName.Compare(className) == 0)
                Stage = Graph().GetNode(i);
        ASSERT_NE(Stage, nullptr);
        for (int step = 0; step < 300 && CountParticles() < 2; ++step)
            Document->Run(0.02f);
        ASSERT_GE(CountParticles(), 2);
    }
    TEffectGraph& Graph() { return *(*Document)->GetGraph(); }
    TEffectExec& Exec() { return (*Document)->GetEngine(); }
    TNodeType& Type() { return *Stage->GetNodeType(); }
    // Calls work(group, tied) for each place of the stage.
    void ForEachPlace(const std::function<void(int, int)>& work)
    {
        const TEffectSchedule& schedule = Exec().GetSchedule();
        for (int g = 0; g < schedule.GetNumGroups(); ++g)
            for (int t = 0; t < schedule.GetNumTiedNodes(g); ++t)
                if (schedule.GetNode(schedule.GetTiedNode(g, t)) == Stage)
                    work(g, t);
    }
    int CountParticles()
    {
        int count = 0;
        ForEachPlace([&](int group, int) { count += Exec().GetNumParticles(group); });
        return count;
    }
    // An input's value of one particle; where no wire feeds it, that of all.
    void Put(const char* input, int particle, const TFloats& value)
    {
        const int port = Type().FindInput(input);
        ASSERT_NE(port, -1) << input;
        ForEachPlace([&](int group, int tied) {
            const TEffectSchedule& schedule = Exec().GetSchedule();
            const int attrib = schedule.GetTiedNodeInput(group, tied, port);
            if (attrib == -1) {
                static_cast<TNodeValueParameter*>(Type().GetInput(port))->SetValue(value.data());
                return;
            }
            ASSERT_EQ(GetTypeFloats(schedule.GetAttributeType(group, attrib)), int(value.size())) << input;
            float* at = Exec().GetGroup(group)->GetAttribute(
                attrib, schedule.GetAttributeUsage(group, attrib), particle);
            std::copy(value.begin(), value.end(), at);
        });
    }
    void PutAll(const char* input, const TFloats& value)
    {
        for (int i = 0; i < CountParticles(); ++i)
            Put(input, i, value);
    }
    void ExpectBounds(const TBoundsSampler& sampler, const TVector3& min, const TVector3& max)
    {
        ASSERT_TRUE(sampler.HasBounds());
        for (int i = 0; i < 3; ++i) {
            EXPECT_FLOAT_EQ(sampler.GetBounds().Min[i], min[i]) << i;
            EXPECT_FLOAT_EQ(sampler.GetBounds().Max[i], max[i]) << i;
        }
    }
    void Sample(const TVector3& min, const TVector3& max)
    {
        TBoundsSampler sampler(Exec(), *Stage);
        EXPECT_EQ(sampler.GetFault(), SF_NONE);
        EXPECT_EQ(sampler.GetReach(), SR_KNOWN);
        EXPECT_EQ(sampler.Grow(), CountParticles());
        ExpectBounds(sampler, min, max);
    }
    // A picture of 3 by 4 reaches 5 far.
    void SampleFlat(const TFloats& angles)
    {
        PutAll("Scale", {3, 4});
        PutAll("Transform", {1, 2, 3, angles[0], angles[1], angles[2]});
        Sample(TVector3(-4, -3, -2), TVector3(6, 7, 8));
        Put("Transform", 1, {11, -2, 3, angles[0], angles[1], angles[2]});
        Sample(TVector3(-4, -7, -2), TVector3(16, 7, 8));
    }

    TTestApp App;
    TQuiet Quiet;
    std::unique_ptr<TSampleDocument> Document;
    TEffectNode* Stage = nullptr;
};

} // namespace

TEST_F(Sampling, AQuadReachesAsFarAsItsCorners)
{
    Load("tiles", "TQuadRenderStage");
    SampleFlat({90, 0, 45});
}

TEST_F(Sampling, ABlendedQuadReachesAsFarAsItsCorners)
{
    Load("leaves", "TBlendedQuadRenderStage");
    SampleFlat({0, 30, 0});
}

TEST_F(Sampling, ASpriteReachesAsFarAsItsCorners)
{
    Load("fountain", "TSpriteRenderStage");
    SampleFlat({0, 0, 0});
}

TEST_F(Sampling, ABlendedSpriteReachesAsFarAsItsCorners)
{
    Load("fumes", "TBlendedSpriteRenderStage");
    SampleFlat({0, 0, 0});
}

TEST_F(Sampling, PlacesAreKnownApartFromTheLargestReach)
{
    Load("fountain", "TSpriteRenderStage");
    PutAll("Scale", {3, 4});
    PutAll("Transform", {1, 2, 3, 0, 0, 0});
    Put("Scale", 1, {6, 8});
    Put("Transform", 1, {11, -2, 3, 0, 0, 0});
    TBoundsSampler sampler(Exec(), *Stage);
    EXPECT_EQ(sampler.GetLargestReach(), 0);
    sampler.Grow();
    EXPECT_FLOAT_EQ(sampler.GetLargestReach(), 10);
    const TVector3 min(1, -2, 3);
    const TVector3 max(11, 2, 3);
    for (int i = 0; i < 3; ++i) {
        EXPECT_NEAR(sampler.GetPlaces().Min[i], min[i], 1e-5) << i;
        EXPECT_NEAR(sampler.GetPlaces().Max[i], max[i], 1e-5) << i;
    }
}

// Half a second back by (2, 0, -6), a quarter to each side.
TEST_F(Sampling, ATrailReachesBackToWhereItsParticleWas)
{
    Load("sparks", "TVelocityTrailRenderStage");
    PutAll("Position", {10, 20, 30});
    PutAll("Velocity", {2, 0, -6});
    PutAll("Scale", {0.25f, 0.5f});
    Sample(TVector3(8.75f, 19.75f, 29.75f), TVector3(10.25f, 20.25f, 33.25f));
    // A width below zero is drawn as one above.
    PutAll("Scale", {-0.25f, 0.5f});
    Sample(TVector3(8.75f, 19.75f, 29.75f), TVector3(10.25f, 20.25f, 33.25f));
}

TEST_F(Sampling, AnInputWithoutAWireGivesItsOwnValue)
{
    Load("fountain", "TSpriteRenderStage");
    const int port = Type().FindInput("Scale");
    if (Stage->GetInput(port) != nullptr) {
        (*Document)->ApplyOperation(new TDeleteGraphEdgeOp(static_cast<TToolEdge*>(Stage->GetInput(port))));
        Document->Run(1);
    }
    ASSERT_EQ(Stage->GetInput(port), nullptr);
    ASSERT_GE(CountParticles(), 2);
    const float value[] = {6, 8};
    static_cast<TNodeValueParameter*>(Type().GetInput(port))->SetValue(value);
    PutAll("Transform", {0, 0, 0, 0, 0, 0});
    Sample(TVector3(-10, -10, -10), TVector3(10, 10, 10));
}

TEST_F(Sampling, WithoutAScaleParticlesArePoints)
{
    Load("fountain", "TSpriteRenderStage");
    PutAll("Transform", {1, 2, 3, 0, 0, 0});
    Put("Transform", 0, {0, 5, 0, 0, 0, 0});
    Type().GetInput(Type().FindInput("Scale"))->Name = "Largeness";
    TBoundsSampler sampler(Exec(), *Stage);
    EXPECT_EQ(sampler.GetFault(), SF_NONE);
    EXPECT_EQ(sampler.GetReach(), SR_NOSCALE);
    EXPECT_EQ(sampler.Grow(), CountParticles());
    ExpectBounds(sampler, TVector3(0, 2, 0), TVector3(1, 5, 3));
}

TEST_F(Sampling, ATrailWithoutAVelocityIsAPoint)
{
    Load("sparks", "TVelocityTrailRenderStage");
    PutAll("Position", {1, 2, 3});
    PutAll("Scale", {7, 7});
    Type().GetInput(Type().FindInput("Velocity"))->Name = "Speed";
    TBoundsSampler sampler(Exec(), *Stage);
    EXPECT_EQ(sampler.GetReach(), SR_NOVELOCITY);
    EXPECT_GT(sampler.Grow(), 0);
    ExpectBounds(sampler, TVector3(1, 2, 3), TVector3(1, 2, 3));
    // Without either it is the scale that is told.
    Type().GetInput(Type().FindInput("Scale"))->Name = "Largeness";
    EXPECT_EQ(TBoundsSampler(Exec(), *Stage).GetReach(), SR_NOSCALE);
}

TEST_F(Sampling, AStoppedEffectIsAFault)
{
    Load("fountain", "TSpriteRenderStage");
    TBoundsSampler before(Exec(), *Stage);
    (*Document)->ClearEngine();
    EXPECT_EQ(TBoundsSampler(Exec(), *Stage).GetFault(), SF_NOTRUNNING);
    EXPECT_EQ(before.Grow(), 0);
    EXPECT_FALSE(before.HasBounds());
}

TEST_F(Sampling, ANodeThatCameAfterTheScheduleIsAFault)
{
    Load("fountain", "TSpriteRenderStage");
    TAddGraphNodeOp* op = new TAddGraphNodeOp(**Document, App.Type("Sprite Render Stage"), 0, 0);
    Stage = op->GetNode();
    (*Document)->ApplyOperation(op);
    EXPECT_EQ(TBoundsSampler(Exec(), *Stage).GetFault(), SF_NOTSCHEDULED);
}

TEST_F(Sampling, ANodeWithoutAPlaceIsAFault)
{
    Load("fountain", "TSpriteRenderStage");
    Type().GetInput(Type().FindInput("Transform"))->Name = "Somewhere";
    EXPECT_EQ(TBoundsSampler(Exec(), *Stage).GetFault(), SF_NOINPUT);
    // The other name does as well.
    Type().GetInput(Type().FindInput("Somewhere"))->Name = "POSITION";
    EXPECT_EQ(TBoundsSampler(Exec(), *Stage).GetFault(), SF_NONE);
}

TEST_F(Sampling, AnUnconnectedPlaceIsAFault)
{
    Load("fountain", "TSpriteRenderStage");
    TEffectEdge* edge = Stage->GetInput(Type().FindInput("Transform"));
    Stage->SetInput(Type().FindInput("Transform"), nullptr);
    EXPECT_EQ(TBoundsSampler(Exec(), *Stage).GetFault(), SF_NOTCONNECTED);
    Stage->SetInput(Type().FindInput("Transform"), edge);
}

TEST_F(Sampling, AnEmptyBufferHasNothingToSample)
{
    Load("fountain", "TSpriteRenderStage");
    (*Document)->RebuildSchedule(true);
    ASSERT_EQ(CountParticles(), 0);
    TBoundsSampler sampler(Exec(), *Stage);
    EXPECT_EQ(sampler.GetFault(), SF_NONE);
    EXPECT_EQ(sampler.Grow(), 0);
    EXPECT_FALSE(sampler.HasBounds());
}

TEST_F(Sampling, WhatIsNoFiniteNumberIsLeftOut)
{
    Load("fountain", "TSpriteRenderStage");
    PutAll("Scale", {0, 1});
    PutAll("Transform", {1, 2, 3, 0, 0, 0});
    Put("Transform", 0, {std::numeric_limits<float>::quiet_NaN(), 0, 0, 0, 0, 0});
    Put("Transform", 1, {0, std::numeric_limits<float>::infinity(), 0, 0, 0, 0});
    ASSERT_GE(CountParticles(), 3);
    TBoundsSampler sampler(Exec(), *Stage);
    EXPECT_EQ(sampler.Grow(), CountParticles() - 2);
    ExpectBounds(sampler, TVector3(0, 1, 2), TVector3(2, 3, 4));
}

TEST_F(Sampling, ABoxGrowsFromFrameToFrame)
{
    Load("fountain", "TSpriteRenderStage");
    PutAll("Scale", {0, 0});
    PutAll("Transform", {1, 1, 1, 0, 0, 0});
    TBoundsSampler sampler(Exec(), *Stage);
    sampler.Grow();
    PutAll("Transform", {-1, 4, 1, 0, 0, 0});
    sampler.Grow();
    ExpectBounds(sampler, TVector3(-1, 1, 1), TVector3(1, 4, 1));
    PutAll("Transform", {0, 2, 1, 0, 0, 0});
    sampler.Grow();
    ExpectBounds(sampler, TVector3(-1, 1, 1), TVector3(1, 4, 1));
}

// Each sample's box of ten seconds holds what is drawn at each instant of them.
TEST_F(Sampling, ARecordedBoxHoldsEveryFramesOwn)
{
    Load("rain", "TVelocityTrailRenderStage");
    TBoundsSampler recorder(Exec(), *Stage);
    std::vector<TBounds> frames;
    for (int i = 0; i < 100; ++i) {
        Document->Run(0.02f);
        recorder.Grow();
        TBoundsSampler frame(Exec(), *Stage);
        if (frame.Grow() > 0)
            frames.push_back(frame.GetBounds());
    }
    ASSERT_FALSE(frames.empty());
    for (const TBounds& frame : frames)
        for (int i = 0; i < 3; ++i) {
            EXPECT_LE(recorder.GetBounds().Min[i], frame.Min[i]);
            EXPECT_GE(recorder.GetBounds().Max[i], frame.Max[i]);
        }
}
