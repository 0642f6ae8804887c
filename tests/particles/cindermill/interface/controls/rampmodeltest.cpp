#include "ramppoints.h"

#include "particles/cindermill/interface/controls/rampmodel.h"

#include <limits>

namespace {

class RampModel : public testing::Test
{
protected:
    void Set(int component, const TPoints& points) { Model.GetCurve(component).SetPoints(ToVector(points)); }
    void Lock(int a, int b, int c, int d)
    {
        const int locks[] = {a, b, c, d};
        Model.SetLocks(locks);
    }
    std::vector<int> Toggled()
    {
        int locks[4];
        Model.GetToggledLocks(locks);
        return std::vector<int>(locks, locks + 4);
    }
    std::pair<float, float> Range()
    {
        std::pair<float, float> range;
        Model.GetValueRange(range.first, range.second);
        return range;
    }

    TRampModel Model;
};

using TLocks = std::vector<int>;

TEST_F(RampModel, TheValuesOfAllPointsAreSpannedAndOfALinearRampTheAnchorsOnly)
{
    Model.Build(1, false);
    Set(0, {{0, 1}, {0.3f, -4}, {0.6f, 8}, {1, 2}});
    EXPECT_EQ(Range(), std::make_pair(-4.0f, 12.0f));
    Model.SetLinear(true);
    EXPECT_EQ(Range(), std::make_pair(1.0f, 1.0f));
}

TEST_F(RampModel, ARangeBelowATenthCountsAsATenth)
{
    Model.Build(1, false);
    Set(0, Flat(3));
    EXPECT_EQ(Range(), std::make_pair(3.0f, 0.1f));
    Set(0, {{0, 3}, {0.3f, 3}, {0.6f, 3}, {1, 3.2f}});
    EXPECT_FLOAT_EQ(Range().second, 0.2f);
}

TEST_F(RampModel, OnlyVisibleComponentsAreSpannedAndLocksAreFollowed)
{
    Model.Build(3, false);
    Set(0, Flat(0));
    Set(1, Flat(10));
    Set(2, Flat(-50));
    EXPECT_EQ(Range(), std::make_pair(-50.0f, 60.0f));
    Model.SetVisible(2, false);
    EXPECT_EQ(Range(), std::make_pair(0.0f, 10.0f));
    Lock(-1, 2, -1, -1);
    EXPECT_EQ(Range(), std::make_pair(-50.0f, 50.0f));
}

TEST_F(RampModel, ValuesThatAreNoNumbersSpanNothing)
{
    Model.Build(1, false);
    const float infinity = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    Set(0, {{0, nan}, {0.3f, infinity}, {0.6f, 1}, {1, 3}});
    EXPECT_EQ(Range(), std::make_pair(1.0f, 2.0f));
}

TEST_F(RampModel, TheTimeIsThatOfTheLastAnchorThatComesLast)
{
    Model.Build(2, false);
    Set(0, Flat(0));
    Set(1, {{0, 0}, {1, 0}, {2, 0}, {3, 0}});
    EXPECT_EQ(Model.GetMaxTime(), 3);
    Lock(-1, 0, -1, -1);
    EXPECT_EQ(Model.GetMaxTime(), 1);
}

TEST_F(RampModel, ATimeBelowAThousandthCountsAsOne)
{
    Model.Build(1, false);
    EXPECT_EQ(Model.GetMaxTime(), 1);
    Set(0, {{0, 0}, {0, 0}, {0.0009f, 0}, {0.0009f, 0}});
    EXPECT_EQ(Model.GetMaxTime(), 1);
    Set(0, {{0, 0}, {0, 0}, {0.01f, 0}, {0.01f, 0}});
    EXPECT_EQ(Model.GetMaxTime(), 0.01f);
}

TEST_F(RampModel, TheStripHas64SamplesOverTheTime)
{
    Model.Build(2, true);
    Set(0, {{0, 0}, {1, 0}, {2, 0}, {3, 6}});
    Set(1, Flat(5));
    float samples[TRampModel::NumSamples][TRampModel::MaxComponents];
    Model.Sample(samples);
    EXPECT_EQ(TRampModel::NumSamples, 64);
    for (int i : {0, 7, 21, 62, 63})
        EXPECT_NEAR(samples[i][0], 6.0 * i / 63, 1e-5) << i;
    EXPECT_EQ(samples[10][1], 5);
    EXPECT_EQ(samples[10][2], 0);
    EXPECT_EQ(samples[63][3], 0);
}

TEST_F(RampModel, ALockedComponentTakesTheSamplesOfTheOneItFollows)
{
    Model.Build(3, false);
    Set(0, Flat(1));
    Set(1, Flat(2));
    Set(2, Flat(3));
    Lock(-1, -1, 0, -1);
    float samples[TRampModel::NumSamples][TRampModel::MaxComponents];
    Model.Sample(samples);
    EXPECT_EQ(samples[5][0], 1);
    EXPECT_EQ(samples[5][1], 2);
    EXPECT_EQ(samples[5][2], 1);
    Model.GetCurve(0).SetPoints(ToVector(Flat(7)));
    EXPECT_EQ(Model.Evaluate(2, 0.5f), 7);
    Lock(-1, -1, -1, -1);
    EXPECT_EQ(Model.Evaluate(2, 0.5f), 3);
}

TEST_F(RampModel, TheButtonLocksTheVisibleOnesToTheFirstVisibleOne)
{
    Model.Build(4, false);
    EXPECT_EQ(Toggled(), (TLocks{-1, 0, 0, 0}));
    Model.SetVisible(0, false);
    EXPECT_EQ(Toggled(), (TLocks{-1, -1, 1, 1}));
    Model.SetVisible(2, false);
    EXPECT_EQ(Toggled(), (TLocks{-1, -1, -1, 1}));
}

TEST_F(RampModel, WithOneVisibleComponentThereIsNothingToLock)
{
    Model.Build(3, false);
    Model.SetVisible(0, false);
    EXPECT_TRUE(Model.CanLock());
    Model.SetVisible(2, false);
    EXPECT_FALSE(Model.CanLock());
    EXPECT_EQ(Toggled(), (TLocks{-1, -1, -1, -1}));
}

TEST_F(RampModel, WithAnyLockTheButtonFreesAll)
{
    Model.Build(4, false);
    Lock(-1, -1, 0, 1);
    Model.SetVisible(2, false);
    EXPECT_EQ(Toggled(), (TLocks{-1, -1, -1, -1}));
}

// The third curve is not shown by a ramp of two components.
TEST_F(RampModel, NoComponentFollowsAFollower)
{
    Model.Build(2, false);
    Lock(-1, -1, 1, -1);
    EXPECT_FALSE(Model.HasLocks());
    EXPECT_EQ(Toggled(), (TLocks{-1, 0, 0, -1}));
}

TEST_F(RampModel, LocksThatNameNoCurveCountAsNone)
{
    Model.Build(2, false);
    Lock(7, -9, -1, -1);
    EXPECT_FALSE(Model.HasLocks());
    EXPECT_EQ(Model.GetSource(0), 0);
    EXPECT_EQ(Model.GetSource(1), 1);
}

TEST_F(RampModel, HandlesOfALinearRampCannotBeTaken)
{
    Model.Build(1, false);
    Set(0, Flat(0));
    EXPECT_TRUE(Model.IsSelectable(0, 1));
    EXPECT_FALSE(Model.IsSelectable(0, 4));
    Model.SetLinear(true);
    EXPECT_FALSE(Model.IsSelectable(0, 1));
    EXPECT_TRUE(Model.IsSelectable(0, 3));
    Model.SetVisible(0, false);
    EXPECT_FALSE(Model.IsSelectable(0, 3));
}

} // namespace
