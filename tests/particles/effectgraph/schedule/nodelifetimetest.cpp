#include "particles/effectgraph/schedule/nodelifetime.h"

#include "particles/effectgraph/schedule/scheduletestnodes.h"

namespace {

// An emitter with all that bounds its life: modes 0 to 3, a life time of 2 seconds, a start delay of 0.5.
TEffectNode* AddTimedEmitter(TTestGraph& g, int mode, bool limited)
{
    TEffectNode* emitter = g.Node("emitter", TU_EMITTER, {"Emission Trigger", "Start Delay"}, {"Position"});
    g.Enum(emitter, "Emit Mode", {"On=0", "Pulse=1", "Burst=2", "Other=3"}, mode);
    g.Group(emitter, "Max life time", limited,
            "<Scalar><name>Life Time</name><defaultvalue>2</defaultvalue></Scalar>");
    g.InputValue(emitter, "Start Delay", {0.5f});
    return emitter;
}

struct TEmitterRow
{
    int Mode;
    bool Limited;
    float LifeTime;
};

class TEmitterLifeTime : public testing::TestWithParam<TEmitterRow>
{
};

} // namespace

TEST_P(TEmitterLifeTime, ByModeAndSwitch)
{
    TTestGraph g;
    EXPECT_EQ(GetNodeLifeTime(AddTimedEmitter(g, GetParam().Mode, GetParam().Limited)), GetParam().LifeTime);
}

INSTANTIATE_TEST_SUITE_P(Table, TEmitterLifeTime,
                         testing::Values(TEmitterRow{0, true, 2.5f}, TEmitterRow{0, false, -1},
                                         TEmitterRow{1, true, 2.5f}, TEmitterRow{1, false, -1},
                                         TEmitterRow{2, true, 0.5f}, TEmitterRow{2, false, 0.5f},
                                         TEmitterRow{3, true, 0}, TEmitterRow{3, false, 0}));

TEST(GetNodeLifeTime, EnumCountsByItsNumberNotItsIndex)
{
    TTestGraph g;
    TEffectNode* emitter = g.Node("Emitter", TU_EMITTER, {"Start Delay"}, {});
    g.Enum(emitter, "Emit Mode", {"Burst=2", "On=0"}, 0);
    g.Group(emitter, "Max life time", true,
            "<Scalar><name>Life Time</name><defaultvalue>2</defaultvalue></Scalar>");
    g.InputValue(emitter, "Start Delay", {4});
    EXPECT_EQ(GetNodeLifeTime(emitter), 4);
}

TEST(GetNodeLifeTime, ConnectedStartDelayCountsAsZero)
{
    TTestGraph g;
    TEffectNode* emitter = AddTimedEmitter(g, 0, true);
    g.Wire(AddTrigger(g), 0, emitter, 1);
    EXPECT_EQ(GetNodeLifeTime(emitter), 2);
}

TEST(GetNodeLifeTime, EmitterNeedsAllThreeParametersOfTheirClasses)
{
    TTestGraph g;
    EXPECT_EQ(GetNodeLifeTime(AddEmitter(g)), 0);
    TEffectNode* emitter = AddEmitter(g);
    g.Int(emitter, "Emit Mode", 0);
    g.Group(emitter, "Max life time", false, "<Scalar><name>Life Time</name></Scalar>");
    EXPECT_EQ(GetNodeLifeTime(emitter), 0);
    TEffectNode* other = AddEmitter(g);
    g.Enum(other, "Emit Mode", {"On"}, 0);
    g.Group(other, "Max life time", false, "<Int><name>Life Time</name></Int>");
    EXPECT_EQ(GetNodeLifeTime(other), 0);
}

TEST(GetNodeLifeTime, AgeGivesItsOpenMaxAge)
{
    TTestGraph g;
    EXPECT_EQ(GetNodeLifeTime(AddAge(g, 3)), 3);
    EXPECT_EQ(GetNodeLifeTime(g.Node("Age", TU_PROCESS, {"Other"}, {})), 0);
    EXPECT_EQ(GetNodeLifeTime(g.Node("Age", TU_PROCESS, {{"Max Age", TY_VECTOR3}}, {})), 0);
}

TEST(GetNodeLifeTime, AgeWithConnectedMaxAgeIsZero)
{
    TTestGraph g;
    TEffectNode* age = AddAge(g, 3);
    g.Wire(AddTrigger(g), 0, age, 1);
    EXPECT_EQ(GetNodeLifeTime(age), 0);
}

TEST(GetNodeLifeTime, ARenamedNodeKeepsItsLifeTimeByItsClass)
{
    TTestGraph g;
    TEffectNode* age = AddAge(g, 3);
    age->GetNodeType()->Name = "Embers fade";
    EXPECT_EQ(GetNodeLifeTime(age), 0);
    g.Class(age, "TAge");
    EXPECT_EQ(GetNodeLifeTime(age), 3);
    TEffectNode* emitter = AddTimedEmitter(g, 0, true);
    emitter->GetNodeType()->Name = "Flames";
    g.Class(emitter, "TEmitter");
    EXPECT_EQ(GetNodeLifeTime(emitter), 2.5f);
}

TEST(GetNodeLifeTime, OtherTypesSetNoLimit)
{
    TTestGraph g;
    EXPECT_EQ(GetNodeLifeTime(AddForce(g)), 0);
}
