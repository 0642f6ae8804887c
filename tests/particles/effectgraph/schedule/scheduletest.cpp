#include "particles/effectgraph/schedule/scheduletestnodes.h"

using TTexts = std::vector<std::string>;

TEST(TEffectSchedule, EmptyGraphYieldsOneErrorAndNothingElse)
{
    const TTestGraph g;
    const TScheduled s(g);
    EXPECT_FALSE(s.Made);
    EXPECT_FALSE(s.Schedule.IsCreated());
    EXPECT_EQ(s.Errors, TTexts{"Graph contains no nodes"});
    EXPECT_EQ(s.Log, "");
}

TEST(TEffectSchedule, TriggerAndRenderWithoutEmitterYieldNoEmitters)
{
    TTestGraph g;
    g.Wire(AddTrigger(g), 0, AddSprite(g), 0);
    const TScheduled s(g);
    EXPECT_FALSE(s.Made);
    EXPECT_EQ(s.Errors,
              TTexts{"No emitters in graph. Graph must contain an emitter to produce new particle data"});
}

TEST(TEffectSchedule, EmitterWithoutTriggerOrConstantStops)
{
    TTestGraph g;
    g.Wire(AddEmitter(g), 0, AddSprite(g), 0);
    const TScheduled s(g);
    EXPECT_EQ(s.Assertion, "j < groups.size()");
    EXPECT_FALSE(s.Schedule.IsCreated());
    EXPECT_TRUE(s.Errors.empty());
}

TEST(TEffectSchedule, EmitterWithoutRenderYieldsNoValidGroups)
{
    TTestGraph g;
    AddEmitter(g);
    const TScheduled s(g);
    EXPECT_FALSE(s.Made);
    EXPECT_EQ(s.Errors,
              TTexts{"No valid groups in graph. Groups should consist of emitter nodes connected to render "
                     "or process nodes"});
}

TEST(TEffectSchedule, EdgeToANodeOutsideTheGraphStops)
{
    TTestGraph g;
    TEffectNode* sprite = AddSprite(g);
    g.Wire(AddFiredEmitter(g), 0, sprite, 0);
    g.GetGraph().RemoveNode(sprite);
    const TScheduled s(g);
    EXPECT_EQ(s.Assertion, "k < nodes.size()");
}

TEST(TEffectSchedule, TriggerGroupAndPopulation)
{
    TTestGraph g;
    TEffectNode* emitter = AddFiredEmitter(g);
    TEffectNode* sprite = AddSprite(g);
    g.Wire(emitter, 0, sprite, 0);
    const TScheduled s(g);
    ASSERT_TRUE(s.Made);
    EXPECT_TRUE(s.Schedule.IsCreated());
    ASSERT_EQ(s.Schedule.GetNumGroups(), 2);
    EXPECT_TRUE(s.Schedule.IsTriggerGroup(0));
    EXPECT_FALSE(s.Schedule.IsTriggerGroup(1));
    EXPECT_EQ(s.UsageOf(emitter), TU_EMITTER);
    EXPECT_EQ(s.UsageOf(sprite), TU_RENDER);
    EXPECT_EQ(s.Schedule.GetNodeUsage(0), TU_TRIGGER);
}

TEST(TEffectSchedule, CreateReplacesAllContent)
{
    TTestGraph g;
    g.Wire(AddFiredEmitter(g), 0, AddSprite(g), 0);
    TScheduled s(g);
    TErrorList errors;
    LogOf([&] { ASSERT_TRUE(s.Schedule.Create(g.GetGraph(), errors)); });
    EXPECT_EQ(s.Schedule.GetNumNodes(), 3);
    EXPECT_EQ(s.Schedule.GetNumGroups(), 2);
    const TTestGraph empty;
    EXPECT_FALSE(s.Schedule.Create(empty.GetGraph(), errors));
    EXPECT_FALSE(s.Schedule.IsCreated());
}

TEST(TEffectSchedule, TwoEmittersOfOneRenderStageLeaveTheSecondWithoutRender)
{
    TTestGraph g;
    TEffectNode* trigger = AddTrigger(g);
    TEffectNode* first = AddEmitter(g);
    TEffectNode* second = AddEmitter(g);
    TEffectNode* sprite = g.Node("Sprite", TU_RENDER, {"A", "B"}, {});
    g.Wire(trigger, 0, first, 0);
    g.Wire(trigger, 0, second, 0);
    g.Wire(first, 0, sprite, 0);
    g.Wire(second, 0, sprite, 1);
    const TScheduled s(g);
    ASSERT_TRUE(s.Made) << s.Assertion;
    ASSERT_EQ(s.Schedule.GetNumGroups(), 2);
    EXPECT_EQ(s.CountIn(1, first), 1);
    EXPECT_EQ(s.CountIn(1, second), 0);
    // What comes from the dropped group has no supplier.
    const TTiedNode& tied = s.Schedule.GetGroup(1).TiedNodes[1];
    ASSERT_EQ(tied.Node, s.Find(sprite));
    EXPECT_EQ(s.Schedule.GetAttributeExternalGroup(1, tied.Inputs[1]), -1);
    EXPECT_EQ(s.Schedule.GetAttributeExternalAttrib(1, tied.Inputs[1]), 0);
}

TEST(TEffectSchedule, GroupWithAKeyButWithoutEmitterAndRenderIsDropped)
{
    TTestGraph g;
    TEffectNode* trigger = AddTrigger(g);
    TEffectNode* mixed = g.Node("Mix", TU_PROCESS, {"A", "B"}, {});
    for (int i = 0; i < 2; ++i) {
        TEffectNode* emitter = AddEmitter(g);
        g.Wire(trigger, 0, emitter, 0);
        g.Wire(emitter, 0, AddSprite(g), 0);
        g.Wire(emitter, 0, mixed, i);
    }
    const TScheduled s(g);
    ASSERT_TRUE(s.Made) << s.Assertion;
    EXPECT_EQ(s.Schedule.GetNumGroups(), 3);
    EXPECT_EQ(s.Schedule.GetNumNodes(), 6);
    EXPECT_EQ(s.UsageOf(mixed), TU_EMITTER);
    for (int group = 0; group < 3; ++group)
        EXPECT_EQ(s.CountIn(group, mixed), 0);
}

TEST(TEffectSchedule, ParticleCountIsTheLastEmittersOr100)
{
    TTestGraph g;
    TEffectNode* emitter = AddFiredEmitter(g);
    TEffectNode* child = AddEmitter(g);
    g.Wire(emitter, 0, AddSprite(g), 0);
    g.Wire(emitter, 0, child, 0);
    g.Wire(child, 0, AddSprite(g), 0);
    g.Int(child, "particle count", 7);
    const TScheduled s(g);
    ASSERT_EQ(s.Schedule.GetNumGroups(), 3);
    EXPECT_EQ(s.Schedule.GetParticleCount(0), 100);
    EXPECT_EQ(s.Schedule.GetParticleCount(1), 100);
    EXPECT_EQ(s.Schedule.GetParticleCount(2), 7);
}

TEST(TEffectSchedule, MaxEmissionIsTheTriggersOrOne)
{
    TTestGraph g;
    TEffectNode* trigger = AddTrigger(g);
    TEffectNode* emitter = AddEmitter(g);
    TEffectEdge* edge = g.Wire(trigger, 0, emitter, 0);
    g.Wire(emitter, 0, AddSprite(g), 0);
    // The trigger's own group counts as a supplier of a whole population.
    EXPECT_EQ(TScheduled(g).Schedule.GetMaxEmission(1), 100);
    g.Int(trigger, "Per frame max emission", 12);
    const TScheduled s(g);
    EXPECT_EQ(s.Schedule.GetMaxEmission(0), 1);
    EXPECT_EQ(s.Schedule.GetMaxEmission(1), 12);
    // Nothing feeds it now; the trigger stays for the group without a key.
    trigger->RemoveOutputEdge(0, edge);
    emitter->SetInput(0, nullptr);
    EXPECT_EQ(TScheduled(g).Schedule.GetMaxEmission(1), 1);
}

TEST(TEffectSchedule, SubEmitterTakesAWholeParentPopulationInAFrame)
{
    TTestGraph g;
    TEffectNode* emitter = AddFiredEmitter(g);
    TEffectNode* child = AddEmitter(g);
    g.Int(emitter, "Particle Count", 250);
    g.Wire(emitter, 0, AddSprite(g), 0);
    g.Wire(emitter, 0, child, 0);
    g.Wire(child, 0, AddSprite(g), 0);
    EXPECT_EQ(TScheduled(g).Schedule.GetMaxEmission(2), 250);
}

namespace {

// A fired emitter, an age node and a sprite; a sub-emitter with its own unless its age is 0.
void AddAgingPopulations(TTestGraph& g, float maxAge, float childMaxAge)
{
    TEffectNode* emitter = AddFiredEmitter(g);
    TEffectNode* age = AddAge(g, maxAge);
    g.Wire(emitter, 0, age, 0);
    g.Wire(age, 0, AddSprite(g), 0);
    if (childMaxAge == 0)
        return;
    TEffectNode* child = AddEmitter(g);
    TEffectNode* childAge = AddAge(g, childMaxAge);
    g.Wire(age, 0, child, 0);
    g.Wire(child, 0, childAge, 0);
    g.Wire(childAge, 0, AddSprite(g), 0);
}

struct TLifeTimeRow
{
    float MaxAge;
    float ChildMaxAge;
    float LifeTime;
    float ChildLifeTime;
};

class TMaxLifeTime : public testing::TestWithParam<TLifeTimeRow>
{
};

} // namespace

TEST_P(TMaxLifeTime, OfGroupAndChild)
{
    const TLifeTimeRow& row = GetParam();
    TTestGraph g;
    AddAgingPopulations(g, row.MaxAge, row.ChildMaxAge);
    const TScheduled s(g);
    ASSERT_TRUE(s.Made) << s.Assertion;
    EXPECT_EQ(s.Schedule.GetMaxLifeTime(0), 0);
    EXPECT_EQ(s.Schedule.GetMaxLifeTime(1), row.LifeTime);
    if (row.ChildMaxAge != 0) {
        EXPECT_EQ(s.Schedule.GetMaxLifeTime(2), row.ChildLifeTime);
    }
}

// The third row: a group's own unbounded life is added to like any number.
INSTANTIATE_TEST_SUITE_P(Table, TMaxLifeTime,
                         testing::Values(TLifeTimeRow{3, 0, 3, 0}, TLifeTimeRow{3, 2, 5, 2},
                                         TLifeTimeRow{-1, 2, 1, 2}, TLifeTimeRow{-1, 0, 0, 0},
                                         TLifeTimeRow{3, -1, 0, 0}, TLifeTimeRow{-1, -1, 0, 0}));

TEST(TEffectSchedule, MaxLifeTimeOfAGroupThatNoTriggerFiresIsZero)
{
    TTestGraph g;
    TEffectNode* emitter = AddEmitter(g);
    TEffectNode* age = AddAge(g, 3);
    g.Wire(emitter, 0, age, 0);
    g.Wire(age, 0, AddSprite(g), 0);
    AddTrigger(g);
    EXPECT_EQ(TScheduled(g).Schedule.GetMaxLifeTime(1), 0);
}

TEST(TEffectSchedule, LifeTimesGoByPositionWhereAGroupWasDropped)
{
    TTestGraph g;
    TEffectNode* trigger = AddTrigger(g);
    TEffectNode* first = AddEmitter(g);
    TEffectNode* second = AddEmitter(g);
    TEffectNode* age = g.Node("Age", TU_PROCESS, {"A", "B", "Max Age"}, {"A"});
    g.InputValue(age, "Max Age", {3});
    g.Wire(trigger, 0, first, 0);
    g.Wire(trigger, 0, second, 0);
    g.Wire(first, 0, age, 0);
    g.Wire(second, 0, age, 1);
    g.Wire(age, 0, AddSprite(g), 0);
    const TScheduled s(g);
    ASSERT_EQ(s.Schedule.GetNumGroups(), 2);
    // The three seconds went to the dropped group of the second emitter.
    EXPECT_EQ(s.Schedule.GetMaxLifeTime(1), 0);
}

namespace {

// Two populations in order of their priorities' arguments; which sprite comes first in the schedule's groups?
bool IsSecondSpriteFirst(int priority, int secondPriority)
{
    TTestGraph g;
    TEffectNode* trigger = AddTrigger(g);
    TEffectNode* sprites[2];
    const int priorities[2] = {priority, secondPriority};
    for (int i = 0; i < 2; ++i) {
        TEffectNode* emitter = AddEmitter(g);
        sprites[i] = AddSprite(g, priorities[i]);
        g.Wire(trigger, 0, emitter, 0);
        g.Wire(emitter, 0, sprites[i], 0);
    }
    return TScheduled(g).CountIn(1, sprites[1]) == 1;
}

} // namespace

TEST(TEffectSchedule, LowerRenderPriorityComesFirst)
{
    EXPECT_FALSE(IsSecondSpriteFirst(1, 2));
    EXPECT_TRUE(IsSecondSpriteFirst(2, 1));
    EXPECT_TRUE(IsSecondSpriteFirst(255, 128));
}

TEST(TEffectSchedule, EqualRenderPrioritiesKeepTheOrderOfCreation)
{
    EXPECT_FALSE(IsSecondSpriteFirst(4, 4));
}

TEST(TEffectSchedule, LastRenderNodeOfAGroupGivesThePriority)
{
    TTestGraph g;
    TEffectNode* trigger = AddTrigger(g);
    TEffectNode* emitter = AddEmitter(g);
    g.Wire(trigger, 0, emitter, 0);
    g.Wire(emitter, 0, AddSprite(g, 1), 0);
    g.Wire(emitter, 0, AddSprite(g, 9), 0);
    TEffectNode* other = AddEmitter(g);
    TEffectNode* sprite = AddSprite(g, 5);
    g.Wire(trigger, 0, other, 0);
    g.Wire(other, 0, sprite, 0);
    EXPECT_EQ(TScheduled(g).CountIn(1, sprite), 1);
}

TEST(TEffectSchedule, NodesFollowTheirSources)
{
    TTestGraph g;
    TEffectNode* sprite = AddSprite(g);
    TEffectNode* emitter = AddFiredEmitter(g);
    g.Wire(emitter, 0, sprite, 0);
    const TScheduled s(g);
    EXPECT_EQ(s.Find(emitter), 1);
    EXPECT_EQ(s.Find(sprite), 2);
}

TEST(TEffectSchedule, LastHintsComeLate)
{
    TTestGraph g;
    TEffectNode* late = g.Node("Late", TU_PROCESS, {}, {}, FL_LASTHINT);
    TEffectNode* emitter = AddFiredEmitter(g);
    TEffectNode* sprite = AddSprite(g);
    g.Wire(emitter, 0, sprite, 0);
    const TScheduled s(g);
    EXPECT_EQ(s.Find(emitter), 1);
    EXPECT_EQ(s.Find(sprite), 2);
    EXPECT_EQ(s.Find(late), 3);
}

TEST(TEffectSchedule, FirstPlaceIsNotSeenAgainAfterALastHintWasMoved)
{
    TTestGraph g;
    TEffectNode* late = g.Node("Late", TU_PROCESS, {}, {}, FL_LASTHINT);
    TEffectNode* sprite = AddSprite(g);
    TEffectNode* emitter = AddFiredEmitter(g);
    g.Wire(emitter, 0, sprite, 0);
    const TScheduled s(g);
    EXPECT_EQ(s.Find(sprite), 0);
    EXPECT_EQ(s.Find(emitter), 2);
    EXPECT_EQ(s.Find(late), 3);
}

TEST(TEffectSchedule, UsagesOfAPopulation)
{
    TTestGraph g;
    TEffectNode* emitter = AddFiredEmitter(g);
    TEffectNode* plain = g.Node("Plain", TU_PROCESS, {"In"}, {"Out"});
    TEffectNode* force = AddForce(g);
    TEffectNode* behind = g.Node("Plain", TU_PROCESS, {"In"}, {"Out"});
    TEffectNode* idle = AddForce(g, "Idle");
    TEffectNode* sprite = g.Node("Sprite", TU_RENDER, {"A", "B", "C"}, {});
    g.Wire(emitter, 0, plain, 0);
    g.Wire(emitter, 0, force, 0);
    g.Wire(force, 0, behind, 0);
    g.Wire(emitter, 0, idle, 0);
    g.Wire(plain, 0, sprite, 0);
    g.Wire(behind, 0, sprite, 1);
    const TScheduled s(g);
    ASSERT_TRUE(s.Made) << s.Assertion;
    EXPECT_EQ(s.UsageOf(plain), TU_EMITTER);
    EXPECT_EQ(s.UsageOf(force), TU_PROCESS);
    EXPECT_EQ(s.UsageOf(behind), TU_PROCESS);
    // Nobody takes its tied output.
    EXPECT_EQ(s.UsageOf(idle), TU_EMITTER);
}

TEST(TEffectSchedule, EmptiedTriggerGroupIsKept)
{
    TTestGraph g;
    TEffectNode* noise = g.Node("Noise", TU_PROCESS, {}, {"Value"}, FL_PROCESSHINT);
    TEffectNode* emitter = AddEmitter(g);
    TEffectNode* sprite = g.Node("Sprite", TU_RENDER, {"Place", "Size"}, {});
    g.Wire(emitter, 0, sprite, 0);
    g.Wire(noise, 0, sprite, 1);
    const TScheduled s(g);
    ASSERT_TRUE(s.Made) << s.Assertion;
    ASSERT_EQ(s.Schedule.GetNumGroups(), 2);
    EXPECT_TRUE(s.Schedule.IsTriggerGroup(0));
    EXPECT_EQ(s.Schedule.GetNumTiedNodes(0), 0);
    EXPECT_EQ(s.CountIn(1, noise), 1);
}

TEST(TEffectSchedule, AttributesAcrossGroupsAreNamedAndLinked)
{
    TTestGraph g;
    TEffectNode* emitter = AddFiredEmitter(g);
    g.Wire(emitter, 0, AddSprite(g), 0);
    const TScheduled s(g);
    ASSERT_TRUE(s.Made);
    ASSERT_EQ(s.Schedule.GetNumAttributes(0), 1);
    EXPECT_EQ(Text(s.Schedule.GetAttributeName(0, 0)), "Emission Trigger");
    EXPECT_EQ(s.Schedule.GetAttributeUsage(0, 0), TU_TRIGGER);
    EXPECT_EQ(s.Schedule.GetAttributePort(0, 0), nullptr);
    ASSERT_EQ(s.Schedule.GetNumAttributes(1), 2);
    EXPECT_EQ(Text(s.Schedule.GetAttributeName(1, 0)), "Place");
    EXPECT_EQ(s.Schedule.GetAttributeType(1, 0), TY_VECTOR3);
    EXPECT_EQ(s.Schedule.GetAttributeUsage(1, 0), TU_RENDER);
    EXPECT_EQ(s.Schedule.GetAttributeExternalGroup(1, 0), -1);
    EXPECT_EQ(Text(s.Schedule.GetAttributeName(1, 1)), "Emission Trigger");
    EXPECT_EQ(s.Schedule.GetAttributePort(1, 1), emitter->GetNodeType()->GetInput(0));
    EXPECT_EQ(s.Schedule.GetAttributeExternalGroup(1, 1), 0);
    EXPECT_EQ(s.Schedule.GetAttributeExternalAttrib(1, 1), 0);
}

TEST(TEffectSchedule, AValueThroughTiedPortsIsNamedByTheRenderStage)
{
    TTestGraph g;
    TEffectNode* emitter = AddFiredEmitter(g);
    TEffectNode* force = AddForce(g);
    TEffectNode* second = AddForce(g);
    TEffectNode* sprite = AddSprite(g);
    g.Wire(emitter, 0, force, 0);
    g.Wire(force, 0, second, 0);
    g.Wire(second, 0, sprite, 0);
    const TScheduled s(g);
    ASSERT_TRUE(s.Made) << s.Assertion;
    const TTiedNode& tied = s.Schedule.GetGroup(1).TiedNodes[0];
    ASSERT_EQ(tied.Node, s.Find(emitter));
    EXPECT_EQ(Text(s.Schedule.GetAttributeName(1, tied.Outputs[0])), "Place");
    EXPECT_EQ(s.Schedule.GetAttributeUsage(1, tied.Outputs[0]), TU_RENDER);
}

TEST(TEffectSchedule, IndicesOutOfRangeStop)
{
    TTestGraph g;
    g.Wire(AddFiredEmitter(g), 0, AddSprite(g), 0);
    const TScheduled s(g);
    EXPECT_EQ(AssertionOf([&] { s.Schedule.GetParticleCount(2); }), "n>=0 && n<size()");
    EXPECT_EQ(AssertionOf([&] { s.Schedule.GetAttributeType(1, 2); }), "n>=0 && n<size()");
}

TEST(TEffectSchedule, ReportsAreWrittenLetterForLetter)
{
    TTestGraph g;
    TEffectNode* emitter = AddFiredEmitter(g);
    g.Wire(emitter, 0, AddSprite(g), 0);
    const TScheduled s(g);
    EXPECT_EQ(MaskAddresses(s.Log),
              "Tied nodes 1\n"
              "TiedNode[0].Node = Trigger(@0)\n"
              "Inputs: \n"
              "Outputs: 0 \n"
              "\n"
              "Attrib[0] = Trigger (external output)\n"
              "\n"
              "External attrib[0] -> edge @1\n"
              "\n"
              "Tied nodes 2\n"
              "TiedNode[0].Node = Sprite(@2)\n"
              "Inputs: 0 \n"
              "Outputs: \n"
              "TiedNode[1].Node = Emitter(@3)\n"
              "Inputs: 1 \n"
              "Outputs: 0 \n"
              "\n"
              "Attrib[0] = Place\n"
              "Attrib[1] = Emission Trigger (external input, edge=@1)\n"
              "\n"
              "External edge @1 -> attrib[1]\n"
              "\n"
              "\nSchedule\n\n"
              "3 nodes, 2 groups\n"
              "Nodes[0] Trigger (@0) (usage=trigger)\n"
              "Nodes[1] Emitter (@3) (usage=emitter)\n"
              "Nodes[2] Sprite (@2) (usage=render)\n"
              "\n"
              "\nGroup[0] - 1 tiednodes, 1 attributes\n"
              "Particle count: 100. Max emission: 1. Max life time: 0.000000\n"
              "Tied nodes:\n"
              " Tied node 0 Trigger (@0) (usage=trigger)\n"
              "  Inputs: \n"
              "  Outputs: 0 \n"
              "\nAttributes:\n"
              " Attribute[0] Emission Trigger type=Scalar usage=trigger\n"
              "\nGroup[1] - 2 tiednodes, 2 attributes\n"
              "Particle count: 100. Max emission: 100. Max life time: 0.000000\n"
              "Tied nodes:\n"
              " Tied node 1 Emitter (@3) (usage=emitter)\n"
              "  Inputs: 1 \n"
              "  Outputs: 0 \n"
              " Tied node 2 Sprite (@2) (usage=render)\n"
              "  Inputs: 0 \n"
              "  Outputs: \n"
              "\nAttributes:\n"
              " Attribute[0] Place type=Vector3 usage=render\n"
              " Attribute[1] Emission Trigger type=Scalar usage=emitter externalgroup=0 "
              "externalattrib=0\n"
              "\n\n");
    const std::string again = LogOf([&] { s.Schedule.Dump(); });
    EXPECT_EQ(s.Log.substr(s.Log.size() - again.size()), again);
}

TEST(TEffectSchedule, AddressesAreCutTo32Bits)
{
    TTestGraph g;
    TEffectNode* emitter = AddFiredEmitter(g);
    g.Wire(emitter, 0, AddSprite(g), 0);
    const TScheduled s(g);
    char expected[64];
    snprintf(expected, sizeof expected, "Emitter(0x%x)\n",
             static_cast<unsigned>(reinterpret_cast<uintptr_t>(emitter) & 0xFFFFFFFFu));
    EXPECT_NE(s.Log.find(expected), std::string::npos);
}

TEST(TEffectSchedule, PathsThatMultiplyDoNotCost)
{
    TTestGraph g;
    TEffectNode* source = AddFiredEmitter(g);
    for (int i = 0; i < 100; ++i) {
        TEffectNode* join = g.Node("Join", TU_PROCESS, {"A", "B"}, {"Out"});
        g.Wire(source, 0, join, 0);
        g.Wire(source, 0, join, 1);
        source = join;
    }
    g.Wire(source, 0, AddSprite(g), 0);
    const TScheduled s(g);
    EXPECT_TRUE(s.Made) << s.Assertion;
}

TEST(TEffectSchedule, LongChain)
{
    TTestGraph g;
    TEffectNode* source = AddFiredEmitter(g);
    for (int i = 0; i < 1000; ++i) {
        TEffectNode* force = AddForce(g);
        g.Wire(source, 0, force, 0);
        source = force;
    }
    g.Wire(source, 0, AddSprite(g), 0);
    const TScheduled s(g);
    ASSERT_TRUE(s.Made) << s.Assertion;
    EXPECT_EQ(s.Schedule.GetNumTiedNodes(1), 1002);
    EXPECT_EQ(s.Schedule.GetNumAttributes(1), 2);
}
