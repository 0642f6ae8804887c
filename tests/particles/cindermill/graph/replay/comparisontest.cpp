#include "effectbench.h"

// What a comparison finds equal, and what it tells where something differs.

namespace {

// A particle that fires others, in every frame.
TEffectNode* AddChild(TEffectBench& bench, TEffectNode* parent, float count)
{
    TEffectNode* number = bench.Add("TConstant", TU_TRIGGER, {"In"}, {"Out"});
    bench.Graph.InputValue(number, "In", {count});
    TEffectNode* child =
        bench.Add("TPointEmitter", TU_EMITTER, {"Emission Trigger", {"Transform", TY_TRANSFORM}},
                  {{"Start", TY_TRANSFORM}});
    bench.Graph.Int(child, "Particle Count", 800);
    TEffectNode* stage =
        bench.Add("TEffectExecNode", TU_RENDER, {{"Place", TY_TRANSFORM}, {"From", TY_VECTOR3}}, {});
    bench.Graph.Wire(number, 0, child, 0);
    bench.Graph.Wire(parent, 0, child, 1);
    bench.Graph.Wire(child, 0, stage, 0);
    bench.Graph.Wire(parent, 0, stage, 1);
    return child;
}

// Particles that live so long.
void AddLife(TEffectBench& bench, TEffectNode* emitter, float seconds)
{
    TEffectNode* age = bench.Add("TAge", TU_PROCESS, {"Age", "Max Age"}, {"Age"});
    bench.Graph.InputValue(age, "Max Age", {seconds});
    TEffectNode* stage = bench.Add("TEffectExecNode", TU_RENDER, {"Shown", {"Place", TY_TRANSFORM}}, {});
    bench.Graph.Wire(age, 0, stage, 0);
    bench.Graph.Wire(emitter, 0, stage, 1);
}

// A steady trigger in place of the burst that a population has.
void SetSteady(TEffectBench& bench, TEffectNode* emitter, float rate)
{
    TEffectNode* trigger = emitter->GetInput(0)->GetSrcNode();
    trigger->GetNodeType()->FindParameterOf<TNodeEnumParameter>("Emit Mode", PK_ENUM)->SetValue(1);
    bench.Graph.InputValue(trigger, "Rate", {rate});
}

bool HasKind(const TAgreement& agreement, const std::string& kind)
{
    for (const std::string& difference : agreement.Differences)
        if (difference.find(" " + kind + ":") != std::string::npos)
            return true;
    return false;
}

bool HasNote(const TAgreement& agreement, const std::string& part)
{
    for (const std::string& note : agreement.Notes)
        if (note.find(part) != std::string::npos)
            return true;
    return false;
}

} // namespace

TEST(ReplayComparison, NoFramesCompareWhatStandsInTheFile)
{
    TEffectBench bench;
    bench.AddPopulation();
    const TAgreement agreement = bench.Run(0);
    EXPECT_TRUE(agreement.Differences.empty());
    EXPECT_GT(agreement.Equal, 0);
}

TEST(ReplayComparison, FramesWithoutTimeAgree)
{
    TEffectBench bench;
    TEffectNode* emitter = bench.AddPopulation();
    AddLife(bench, emitter, 0);
    ExpectAgreement(bench.Run(5, 0));
}

TEST(ReplayComparison, ATriggerGroupAloneAgrees)
{
    TEffectBench bench;
    TEffectNode* a = bench.AddSource(TY_VECTOR3);
    TEffectNode* sum =
        bench.Add("TAdd", TU_PROCESS, {{"A", TY_VECTOR3}, {"B", TY_VECTOR3}}, {{"R", TY_VECTOR3}});
    bench.Graph.InputValue(sum, "B", {1, 2, 3});
    bench.Graph.Wire(a, 0, sum, 0);
    bench.AddSink(sum, 0, TY_VECTOR3);
    // An emitter that nobody draws, without which there is no schedule.
    bench.Add("TPointEmitter", TU_EMITTER, {"Emission Trigger"}, {{"Start", TY_TRANSFORM}});
    const TAgreement agreement = bench.Run();
    ASSERT_EQ(1, bench.Schedule.GetNumGroups());
    ExpectAgreement(agreement);
}

TEST(ReplayComparison, ThirtyTwoGroupsAgree)
{
    // All fired by one trigger, as the rows of a group are few.
    TEffectBench bench;
    TEffectNode* trigger = bench.AddPopulation()->GetInput(0)->GetSrcNode();
    for (int i = 1; i < 31; ++i) {
        TEffectNode* emitter =
            bench.Add("TPointEmitter", TU_EMITTER, {"Emission Trigger", {"Transform", TY_TRANSFORM}},
                      {{"Start", TY_TRANSFORM}});
        bench.Graph.InputValue(emitter, "Transform", {static_cast<float>(i), 2, 3, 4, 5, 6});
        TEffectNode* stage = bench.Add("TEffectExecNode", TU_RENDER, {{"Place", TY_TRANSFORM}}, {});
        bench.Graph.Wire(trigger, 0, emitter, 0);
        bench.Graph.Wire(emitter, 0, stage, 0);
    }
    const TAgreement agreement = bench.Run();
    ASSERT_EQ(32, bench.Schedule.GetNumGroups());
    ExpectAgreement(agreement);
}

TEST(ReplayComparison, AGroupThatRunsOutOfRowsIsTold)
{
    TEffectBench bench;
    for (int i = 0; i < 31; ++i)
        bench.AddPopulation();
    EXPECT_EQ(
        (std::vector<std::string>{
            "not exported: 0 : Group 0 needs 126 rows at a time in its process, of which there are 64 at "
            "most"}),
        bench.Run().Differences);
}

TEST(ReplayComparison, OneGroupTooManyIsTold)
{
    TEffectBench bench;
    for (int i = 0; i < 32; ++i)
        bench.AddPopulation();
    EXPECT_EQ((std::vector<std::string>{"not exported: Too many groups in the schedule (33). Maximum is 32"}),
              bench.Run().Differences);
}

TEST(ReplayComparison, AStoreThatOneBirthOverwritesAgrees)
{
    // Three are born at once where one has room, and where four have room in every frame.
    for (const int capacity : {1, 2, 4}) {
        SCOPED_TRACE(capacity);
        TEffectBench bench;
        TEffectNode* emitter = bench.AddPopulation();
        SetSteady(bench, emitter, 150);
        bench.Graph.Int(emitter, "Particle Count", capacity);
        AddLife(bench, emitter, 100);
        const TAgreement agreement = bench.Run(6);
        // Seven floats of each particle: what the console has room for is a multiple of 16 bytes.
        if (HasNote(agreement, "is rounded up")) {
            EXPECT_TRUE(HasKind(agreement, "count"));
        } else {
            ExpectAgreement(agreement);
        }
    }
}

TEST(ReplayComparison, DeathsAgree)
{
    TEffectBench bench;
    TEffectNode* emitter = bench.AddPopulation();
    SetSteady(bench, emitter, 100);
    AddLife(bench, emitter, 0.1f);
    ExpectAgreement(bench.Run(20));
}

TEST(ReplayComparison, BypassedNodesAgree)
{
    TEffectBench bench;
    TEffectNode* emitter = bench.AddPopulation();
    TEffectNode* gravity =
        bench.Add("TGravity", TU_PROCESS, {{"V", TY_VECTOR3}, {"By", TY_VECTOR3}}, {{"V", TY_VECTOR3}});
    gravity->GetNodeType()->Flags |= FL_BYPASSABLE | FL_BYPASSED;
    bench.Graph.InputValue(gravity, "By", {0, -10, 0});
    TEffectNode* stage = bench.Add("TEffectExecNode", TU_RENDER, {{"V", TY_VECTOR3}}, {});
    bench.Graph.Wire(emitter, 0, gravity, 0);
    bench.Graph.Wire(gravity, 0, stage, 0);
    ExpectAgreement(bench.Run());
}

TEST(ReplayComparison, AStreamHasAsManyCommandsAsAByteCounts)
{
    // Each sum of vectors is three commands.
    for (const int numSums : {20, 90}) {
        SCOPED_TRACE(numSums);
        TEffectBench bench;
        TEffectNode* value = bench.AddPopulation();
        for (int i = 0; i < numSums; ++i) {
            TEffectNode* sum =
                bench.Add("TAdd", TU_PROCESS, {{"A", TY_VECTOR3}, {"B", TY_VECTOR3}}, {{"A", TY_VECTOR3}});
            bench.Graph.InputValue(sum, "B", {1, 2, 3});
            bench.Graph.Wire(value, 0, sum, 0);
            value = sum;
        }
        TEffectNode* stage = bench.Add("TEffectExecNode", TU_RENDER, {{"V", TY_VECTOR3}}, {});
        bench.Graph.Wire(value, 0, stage, 0);
        if (numSums == 20) {
            ExpectAgreement(bench.Run());
        } else {
            EXPECT_EQ((std::vector<std::string>{
                          "not exported: ExecuteParams.size() < 255 : too many commands in a stream"}),
                      bench.Run().Differences);
        }
    }
}

TEST(ReplayComparison, ChildrenOfChildrenAgree)
{
    TEffectBench bench;
    TEffectNode* parent = bench.AddPopulation();
    bench.Graph.InputValue(parent, "Transform", {1, 2, 3, 4, 5, 6});
    TEffectNode* child = AddChild(bench, parent, 1);
    AddChild(bench, child, 2);
    ExpectAgreement(bench.Run(4));
}

TEST(ReplayComparison, TwoChildrenOfOneParentAgree)
{
    TEffectBench bench;
    TEffectNode* parent = bench.AddPopulation();
    SetSteady(bench, parent, 100);
    AddLife(bench, parent, 0.1f);
    AddChild(bench, parent, 1);
    AddChild(bench, parent, 3);
    ExpectAgreement(bench.Run(12));
}

TEST(ReplayComparison, ANodeThatIsNotExportedDiffersAndIsNamed)
{
    TEffectBench bench;
    TEffectNode* emitter = bench.AddPopulation();
    bench.Graph.InputValue(emitter, "Transform", {1.3f, 2.1f, 3.7f, 0, 0, 0});
    TEffectNode* noise =
        bench.Add("TNoise", TU_PROCESS, {{"P", TY_VECTOR3}, {"F", TY_VECTOR3}}, {{"N", TY_VECTOR3}});
    bench.Graph.Group(noise, "Fixed Seed", true, "<Int><name>Random Seed</name></Int>");
    bench.Graph.InputValue(noise, "F", {1, 1, 1});
    TEffectNode* stage = bench.Add("TEffectExecNode", TU_RENDER, {{"V", TY_VECTOR3}}, {});
    bench.Graph.Wire(emitter, 0, noise, 0);
    bench.Graph.Wire(noise, 0, stage, 0);
    const TAgreement agreement = bench.Run();
    EXPECT_TRUE(HasKind(agreement, "value"));
    EXPECT_TRUE(HasNote(agreement, "it is not exported"));
}

TEST(ReplayComparison, TheSameSeedDrawsTheSameOnBothSides)
{
    TEffectBench bench;
    TEffectNode* emitter = bench.AddPopulation();
    SetSteady(bench, emitter, 100);
    TEffectNode* random = bench.Add("TRandomEmitter", TU_EMITTER, {{"Low", TY_VECTOR3}, {"High", TY_VECTOR3}},
                                    {{"V", TY_VECTOR3}});
    random->GetNodeType()->Category = TU_PROCESS;
    bench.Graph.InputValue(random, "Low", {-1, -2, -3});
    bench.Graph.InputValue(random, "High", {1, 2, 3});
    TEffectNode* turbulence =
        bench.Add("TTurbulence", TU_PROCESS, {{"V", TY_VECTOR3}, "Strength"}, {{"V", TY_VECTOR3}});
    bench.Graph.InputValue(turbulence, "Strength", {5});
    TEffectNode* stage =
        bench.Add("TEffectExecNode", TU_RENDER, {{"V", TY_VECTOR3}, {"Place", TY_TRANSFORM}}, {});
    bench.Graph.Wire(random, 0, turbulence, 0);
    bench.Graph.Wire(turbulence, 0, stage, 0);
    bench.Graph.Wire(emitter, 0, stage, 1);
    const TAgreement agreement = bench.Run(10);
    ExpectAgreement(agreement);
    EXPECT_TRUE(HasNote(agreement, "draws at random"));
}

// An emission trigger keeps its largest number in a byte.
TEST(ReplayComparison, ANumberThatDoesNotFitItsFieldIsTold)
{
    TEffectBench bench;
    TEffectNode* emitter = bench.AddPopulation();
    TEffectNode* trigger = emitter->GetInput(0)->GetSrcNode();
    trigger->GetNodeType()
        ->FindParameterOf<TNodeIntParameter>("Per frame max emission", PK_INT)
        ->SetValue(300);
    bench.Graph.Int(emitter, "Particle Count", 400);
    const TAgreement agreement = bench.Run();
    EXPECT_TRUE(HasNote(agreement, "\"Per frame max emission\" is 300, which does not fit its field: 44"));
    EXPECT_TRUE(HasKind(agreement, "count"));
}

// What a node passes on shares its place in the export with what it comes from.
TEST(ReplayComparison, APassedOnValueThatIsChangedAfterwardsIsTold)
{
    TEffectBench bench;
    TEffectNode* emitter = bench.AddPopulation();
    const auto addMotion = [&](float speed) {
        TEffectNode* motion = bench.Add("TIntegrate", TU_PROCESS, {{"P", TY_TRANSFORM}, {"By", TY_TRANSFORM}},
                                        {{"P", TY_TRANSFORM}});
        bench.Graph.InputValue(motion, "By", {speed, 2, 3, 4, 5, 6});
        return motion;
    };
    TEffectNode* slow = addMotion(1);
    TEffectNode* copy = bench.Add("TConstant", TU_PROCESS, {{"From", TY_TRANSFORM}}, {{"To", TY_TRANSFORM}});
    TEffectNode* fast = addMotion(10);
    TEffectNode* stage =
        bench.Add("TEffectExecNode", TU_RENDER, {{"A", TY_TRANSFORM}, {"B", TY_TRANSFORM}}, {});
    bench.Graph.Wire(emitter, 0, slow, 0);
    bench.Graph.Wire(slow, 0, copy, 0);
    bench.Graph.Wire(copy, 0, fast, 0);
    bench.Graph.Wire(slow, 0, stage, 0);
    bench.Graph.Wire(fast, 0, stage, 1);
    const TAgreement agreement = bench.Run();
    EXPECT_TRUE(HasKind(agreement, "value"));
    EXPECT_TRUE(HasNote(agreement, "is changed afterwards, and on the console both are"));
}
