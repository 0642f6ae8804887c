#include "support/testapp.h"
#include "support/testgraph.h"

#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/interface/animationramp.h"

namespace {

// Moves along x, turns half way round y and doubles in size, in two seconds.
class AnimationRamp : public testing::Test
{
protected:
    AnimationRamp()
    {
        const TTempFolder folder;
        const std::string path = folder.Path("move.vori");
        WriteBytes(path, "<?xml version=\"1.0\"?><VOR><animclip><anim>" +
                             Channel(3, "0 5 0 1 6 0 4 7 0", "0 1 2") +
                             Channel(2, "0 0 0 1 0 0.7071068 0 0.7071068", "0 2", 4) +
                             Channel(2, "1 1 1 2 3 4", "0 2") + "</anim></animclip></VOR>");
        Loaded = Animation.Load(path.c_str());
    }
    static std::string Channel(int keys, const char* values, const char* times, int stride = 3)
    {
        return "<animChannel><animData numKeys=" + std::to_string(keys) +
               " keyStride=" + std::to_string(stride) + "><keyValues>" + values + "</keyValues><keyTimes>" +
               times + "</keyTimes></animData></animChannel>";
    }
    // The curves that a ramp of the type gets.
    void Fill(const char* type, const TAnimation& animation)
    {
        TNodeParameter* parameter =
            Graph.Parameter(Graph.Node("Curve", TU_PROCESS, {}, {}),
                            std::string("<Ramp><name>Value</name><type>") + type +
                                "</type><defaultvalues>{0,7}, {1,8}</defaultvalues></Ramp>");
        Ramp = static_cast<TNodeRampParameter*>(parameter);
        GetAnimationCurves(animation, *Ramp, nullptr, Curves);
    }

    TTestGraph Graph;
    TAnimation Animation;
    bool Loaded = false;
    TNodeRampParameter* Ramp = nullptr;
    vector<TRampPoint> Curves[TNodeRampParameter::MaxDimensions];
};

std::string ListOf(const vector<TRampPoint>& curve)
{
    std::string result;
    for (const TRampPoint& point : curve) {
        TString text;
        text.Format("(%.3f %.3f)", double(point.X), double(point.Y));
        result += Text(text);
    }
    return result;
}

} // namespace

TEST_F(AnimationRamp, APositionBecomesStraightSegmentsFromKeyToKey)
{
    ASSERT_TRUE(Loaded);
    Fill("vector3", Animation);
    EXPECT_EQ(ListOf(Curves[0]), "(0.000 0.000)(0.333 0.333)(0.667 0.667)(1.000 1.000)"
                                 "(1.333 2.000)(1.667 3.000)(2.000 4.000)");
    EXPECT_EQ(Curves[1].size(), 7);
    EXPECT_FLOAT_EQ(Curves[1][6].Y, 7);
    EXPECT_EQ(Curves[2].size(), 7);
}

TEST_F(AnimationRamp, AScaleTakesTheScalingTrack)
{
    Fill("scale", Animation);
    EXPECT_EQ(ListOf(Curves[0]), "(0.000 1.000)(0.667 1.333)(1.333 1.667)(2.000 2.000)");
    EXPECT_FLOAT_EQ(Curves[1][3].Y, 3);
}

TEST_F(AnimationRamp, AQuaternionTakesTheRotationInDegrees)
{
    Fill("quaternion", Animation);
    EXPECT_EQ(Curves[1].size(), 4);
    EXPECT_NEAR(Curves[1][0].Y, 0, 1e-3);
    EXPECT_NEAR(Curves[1][3].Y, 90, 0.05);
}

TEST_F(AnimationRamp, AScalarTakesTheFirstComponentAndAColourKeepsItsAlpha)
{
    Fill("scalar", Animation);
    EXPECT_EQ(Curves[0].size(), 7);
    EXPECT_EQ(ListOf(Curves[1]), ListOf(Ramp->GetCurve(1)));
    Fill("colour", Animation);
    EXPECT_EQ(Curves[2].size(), 7);
    EXPECT_EQ(ListOf(Curves[3]), ListOf(Ramp->GetCurve(3)));
}

TEST_F(AnimationRamp, ATrackWithoutKeysChangesNothing)
{
    const TAnimation empty;
    Fill("vector3", empty);
    for (int i = 0; i < TNodeRampParameter::MaxDimensions; ++i)
        EXPECT_EQ(ListOf(Curves[i]), ListOf(Ramp->GetCurve(i)));
}

TEST_F(AnimationRamp, KeysThatGoBackInTimeAreLeftOut)
{
    const TTempFolder folder;
    const std::string path = folder.Path("back.vori");
    WriteBytes(path, "<?xml version=\"1.0\"?><VOR><animclip><anim>" +
                         Channel(4, "1 0 0 2 0 0 3 0 0 4 0 0", "0 2 1 3") + Channel(0, "", "") +
                         Channel(0, "", "") + "</anim></animclip></VOR>");
    TAnimation animation;
    ASSERT_TRUE(animation.Load(path.c_str()));
    Fill("scalar", animation);
    ASSERT_EQ(Curves[0].size(), 7);
    EXPECT_FLOAT_EQ(Curves[0][3].X, 2);
    EXPECT_FLOAT_EQ(Curves[0][6].X, 3);
    EXPECT_FLOAT_EQ(Curves[0][6].Y, 4);
}

TEST(FindAnimatedRamp, OnlyAShaperHasOne)
{
    const TTestApp app;
    const TQuiet quiet;
    TToolNode shaper;
    shaper.Create(nullptr, app.Type("Shaper"), 0, 0, false);
    EXPECT_NE(FindAnimatedRamp(shaper), nullptr);
    TToolNode other;
    other.Create(nullptr, app.Type("Emitter"), 0, 0, false);
    EXPECT_EQ(FindAnimatedRamp(other), nullptr);
    shaper.GetNodeType()->Name = "shaper";
    EXPECT_NE(FindAnimatedRamp(shaper), nullptr);
    // A node that was given a name of its own is one by its class, another by the name that it bears.
    shaper.GetNodeType()->Name = "My Shaper";
    EXPECT_NE(FindAnimatedRamp(shaper), nullptr);
    shaper.GetNodeType()->ClassName = "TGravity";
    EXPECT_EQ(FindAnimatedRamp(shaper), nullptr);
    shaper.GetNodeType()->Name = "Shaper";
    EXPECT_NE(FindAnimatedRamp(shaper), nullptr);
}
