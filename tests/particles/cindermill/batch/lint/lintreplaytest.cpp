#include "lintfixture.h"

#include "particles/cindermill/batch/lint/lintgraph.h"
#include "particles/cindermill/batch/lint/lintreplay.h"
#include "particles/cindermill/graph/replay/differencesource.h"
#include "particles/cindermill/graph/replay/replayreport.h"

#include <cstring>

namespace {

// Differences as a wrong export would show them: those of a sound one cannot be had.
class LintReplays : public TLintFixture
{
protected:
    // The node that something is told of; the cone unless set.
    const TSampleNode* Told = nullptr;

    TFindingList Tell(TSoundEffect& effect, const TReplayReport& replay, const char* told = nullptr)
    {
        TEffectSchedule schedule;
        TErrorList errors;
        EXPECT_TRUE(schedule.Create(effect.GetGraph(), errors));
        TFindingList findings;
        TLintReport report(findings, "effect");
        report.SetSchedule(&schedule);
        if (told != nullptr)
            report.AddNode(told, *(Told != nullptr ? Told : &effect.Cone)->GetNode(), -1, "told");
        TLintGraph graph(effect.GetGraph(), schedule);
        graph.FindUseful();
        TLintReplay(schedule, graph, Options).TellDifferences(replay, report);
        return findings;
    }
    static TReplayDifference Differ(TDifferenceKind kind, const TSampleNode* node, int group, int attribute)
    {
        TReplayDifference difference;
        difference.Kind = kind;
        difference.Place.Frame = 3;
        difference.Place.Time = 0.06f;
        difference.Place.Group = group;
        difference.Place.Attribute = attribute;
        difference.Place.Name = "Velocity";
        difference.Place.Node = node != nullptr ? node->GetNode() : nullptr;
        difference.Preview = 2.5f;
        difference.Replay = 1.5f;
        difference.Times = 7;
        difference.Worst = 1;
        return difference;
    }
};

} // namespace

TEST_F(LintReplays, ADifferenceIsToldAtItsNode)
{
    TSoundEffect effect(App);
    TReplayReport replay;
    replay.Add(Differ(DK_VALUE, &effect.Gravity, 1, 3));
    // From the same node, and so of one cause.
    replay.Add(Differ(DK_UNDEFINED, &effect.Gravity, 1, 0));
    const TFindingList findings = Tell(effect, replay);
    EXPECT_ONLY("replay.value", findings);
    EXPECT_EQ(FS_ERROR, findings[0].Severity);
    EXPECT_STREQ("Gravity", findings[0].Place.Node.Print());
    EXPECT_EQ(1, findings[0].Place.Group);
    EXPECT_EQ(3, NumberOf(findings[0], "frame"));
    EXPECT_EQ(7, NumberOf(findings[0], "times"));
    EXPECT_EQ(1, NumberOf(findings[0], "worst"));
    EXPECT_NE(nullptr, std::strstr(findings[0].Message.Print(), "2.5 in the preview is 1.5"));
}

TEST_F(LintReplays, WhatIsUnknownHidesNoDifferenceThatIsKnown)
{
    TSoundEffect effect(App);
    TReplayReport replay;
    replay.Add(Differ(DK_UNKNOWN, &effect.Gravity, 1, 3));
    replay.Add(Differ(DK_VALUE, &effect.Gravity, 1, 4));
    const TIds expected = {"replay.unknown", "replay.value"};
    EXPECT_EQ(expected, IdsOf(Tell(effect, replay)));
}

TEST_F(LintReplays, WhatAStageIsGivenIsToldByItsName)
{
    TSoundEffect effect(App);
    TReplayReport replay;
    TReplayDifference difference = Differ(DK_STAGE, &effect.Stage, 1, -1);
    difference.Place.Name = "alpha reference";
    difference.Preview = 1;
    difference.Replay = 1 + 1.0f / 8388608;
    replay.Add(difference);
    const TFindingList findings = Tell(effect, replay);
    ASSERT_EQ(1, findings.size());
    EXPECT_NE(nullptr, std::strstr(findings[0].Message.Print(), "\"alpha reference\" of group 1"))
        << findings[0].Message.Print();
    // The last bit is seen.
    EXPECT_NE(nullptr, std::strstr(findings[0].Message.Print(), "1 in the preview is 1.00000012 in"));
}

TEST_F(LintReplays, EachKindHasItsOwnFinding)
{
    TSoundEffect effect(App);
    TReplayReport replay;
    replay.Add(Differ(DK_UNDEFINED, &effect.Gravity, 1, 3));
    replay.Add(Differ(DK_STAGE, &effect.Stage, 1, -1));
    replay.Add(Differ(DK_COUNT, nullptr, 1, -1));
    replay.Add(Differ(DK_UNKNOWN, nullptr, 0, -1));
    const TFindingList findings = Tell(effect, replay);
    const TIds expected = {"replay.undefined", "replay.stage", "replay.count", "replay.unknown"};
    ASSERT_EQ(expected, IdsOf(findings));
    EXPECT_STREQ("Point Emitter", findings[2].Place.Node.Print());
    EXPECT_EQ(FS_WARNING, findings[3].Severity);
    EXPECT_EQ(0, findings[3].Place.Group);
}

TEST_F(LintReplays, WhatIsToldOfANodeExplainsAllBehindIt)
{
    TSoundEffect effect(App);
    TReplayReport replay;
    replay.Add(Differ(DK_VALUE, &effect.Integrate, 1, 0));
    EXPECT_EQ(TIds{LK_CONSOLENOTHING}, IdsOf(Tell(effect, replay, LK_CONSOLENOTHING)));
    // An event is no other value, and what stands beside it explains nothing.
    const TIds both = {LK_CONSOLEEVENT, "replay.value"};
    EXPECT_EQ(both, IdsOf(Tell(effect, replay, LK_CONSOLEEVENT)));
    TReplayReport beside;
    beside.Add(Differ(DK_VALUE, &effect.Colours, 1, 1));
    const TIds unexplained = {LK_CONSOLENOTHING, "replay.value"};
    EXPECT_EQ(unexplained, IdsOf(Tell(effect, beside, LK_CONSOLENOTHING)));
}

TEST_F(LintReplays, AnEmitterThatIsElsewhereOnTheConsoleExplainsItsPlacesAlone)
{
    TSoundEffect effect(App);
    Told = &effect.Source;
    TReplayReport places;
    places.Add(Differ(DK_VALUE, &effect.Source, 1, 0));
    places.Add(Differ(DK_UNKNOWN, &effect.Integrate, 1, 0));
    EXPECT_EQ(TIds{LK_CONSOLEGRID}, IdsOf(Tell(effect, places, LK_CONSOLEGRID)));
    // Nothing of these hangs on where particles start.
    for (const TDifferenceKind kind : {DK_VALUE, DK_UNDEFINED, DK_UNKNOWN}) {
        TReplayReport colours;
        colours.Add(Differ(kind, &effect.Colours, 1, 1));
        const TIds expected = {LK_CONSOLEGRID, std::string("replay.") + GetDifferenceKindName(kind)};
        EXPECT_EQ(expected, IdsOf(Tell(effect, colours, LK_CONSOLEGRID)));
    }
    TReplayReport count;
    count.Add(Differ(DK_COUNT, &effect.Source, 1, -1));
    const TIds counted = {LK_CONSOLEGRID, "replay.count"};
    EXPECT_EQ(counted, IdsOf(Tell(effect, count, LK_CONSOLEGRID)));
}

TEST_F(LintReplays, WhatDecidesWhichParticlesThereAreExplainsAllTheirValues)
{
    TSoundEffect effect(App);
    TReplayReport replay;
    replay.Add(Differ(DK_COUNT, &effect.Source, 1, -1));
    replay.Add(Differ(DK_VALUE, &effect.Colours, 1, 1));
    for (const auto& [node, kind] :
         std::initializer_list<std::pair<TSampleNode*, const char*>>{{&effect.Source, LK_CONSOLEPLACES},
                                                                     {&effect.Source, LK_CONSOLEORDER},
                                                                     {&effect.Trigger, LK_NUMBERFIELD},
                                                                     {&effect.Age, LK_CONSOLEENDS}}) {
        Told = node;
        EXPECT_EQ(TIds{kind}, IdsOf(Tell(effect, replay, kind)));
    }
}

TEST_F(LintReplays, ANoteOfTheReplayIsToldForWhatItExplains)
{
    TSoundEffect effect(App);
    TReplayReport replay;
    replay.Add(Differ(DK_COUNT, &effect.Source, 1, -1));
    replay.Add(Differ(DK_VALUE, &effect.Colours, 1, 1));
    replay.Add(Differ(DK_STAGE, &effect.Stage, 1, -1));
    TReplayNote note;
    note.Text = "Group 1: its capacity of 11 particles is rounded up to 12";
    note.Group = 1;
    note.MayDiffer = true;
    note.DecidesParticles = true;
    replay.AddNote(note);
    const TFindingList findings = Tell(effect, replay);
    const TIds expected = {"replay.note", "replay.stage"};
    ASSERT_EQ(expected, IdsOf(findings));
    EXPECT_EQ(FS_NOTE, findings[0].Severity);
    EXPECT_STREQ(note.Text.Print(), findings[0].Message.Print());
    // One of a node that decides nothing explains what hangs on it.
    TReplayReport values;
    values.Add(Differ(DK_VALUE, &effect.Integrate, 1, 0));
    values.Add(Differ(DK_VALUE, &effect.Colours, 1, 1));
    note.Node = effect.Gravity.GetNode();
    note.DecidesParticles = false;
    values.AddNote(note);
    const TIds both = {"replay.note", "replay.value"};
    EXPECT_EQ(both, IdsOf(Tell(effect, values)));
    // What may not differ for it explains nothing.
    TReplayReport unexplained;
    unexplained.Add(Differ(DK_VALUE, &effect.Integrate, 1, 0));
    note.MayDiffer = false;
    unexplained.AddNote(note);
    EXPECT_EQ(TIds{"replay.value"}, IdsOf(Tell(effect, unexplained)));
}

TEST_F(LintReplays, NothingThatIsToldExplainsAStageOrWhatNothingWrites)
{
    TSoundEffect effect(App);
    TReplayReport replay;
    // All at one node: what is explained stands for none of the others.
    replay.Add(Differ(DK_VALUE, &effect.Source, 1, 0));
    replay.Add(Differ(DK_UNDEFINED, &effect.Source, 1, 0));
    replay.Add(Differ(DK_STAGE, &effect.Stage, 1, -1));
    TReplayDifference table = Differ(DK_VALUE, &effect.Integrate, 1, 2);
    table.Place.Frame = 0;
    replay.Add(table);
    for (const char* kind : {LK_CONSOLEPLACES, LK_CONSOLEORDER, LK_CONSOLEENDS}) {
        Told = &effect.Source;
        const TIds expected = {kind, "replay.undefined", "replay.stage", "replay.value"};
        EXPECT_EQ(expected, IdsOf(Tell(effect, replay, kind)));
    }
}

// What nothing drawn hangs on is left out, and only that.
TEST_F(LintReplays, ADeadEndHidesNothingThatIsDrawn)
{
    TSoundEffect effect(App);
    const TSampleNode end = effect.Effect.Add("Multiply");
    effect.Gravity.Wire("Velocity", end, "A");
    end.Wire("Product", effect.Effect.Add("Multiply"), "A");
    TEffectSchedule schedule;
    TErrorList errors;
    ASSERT_TRUE(schedule.Create(effect.GetGraph(), errors));
    int read = -1;
    int ended = -1;
    for (const TTiedNode& tied : schedule.GetGroup(1).TiedNodes)
        if (schedule.GetNode(tied.Node) == end.GetNode()) {
            read = tied.Inputs[0];
            ended = tied.Outputs[0];
        }
    ASSERT_NE(-1, read);
    ASSERT_NE(-1, ended);
    TReplayReport replay;
    replay.Add(Differ(DK_VALUE, &end, 1, ended));
    EXPECT_TRUE(Tell(effect, replay).empty());
    replay.Add(Differ(DK_VALUE, &end, 1, read));
    const TFindingList findings = Tell(effect, replay);
    EXPECT_ONLY("replay.value", findings);
    // The first that reads it.
    EXPECT_STREQ("Gravity", findings[0].Place.Node.Print());
}

TEST_F(LintReplays, ACountIsToldWhateverNodeItStandsAt)
{
    TSoundEffect effect(App);
    const TSampleNode end = effect.Effect.Add("Random Value");
    TReplayReport replay;
    replay.Add(Differ(DK_COUNT, &end, 1, -1));
    const TFindingList findings = Tell(effect, replay);
    EXPECT_ONLY("replay.count", findings);
    EXPECT_STREQ("Point Emitter", findings[0].Place.Node.Print());
}

// A library may class others with those that emit. A lint and a replay tell the same node.
TEST_F(LintReplays, AGroupStartsAtTheNodeThatEmits)
{
    TSoundEffect effect(App);
    const TSampleNode early = effect.Effect.Add("Random Value");
    early.Wire("Value", effect.Age, "Max Age");
    const TSampleNode late = effect.Effect.Add("Random Value");
    late.Wire("Value", effect.Colours, "Life");
    TEffectSchedule schedule;
    TErrorList errors;
    ASSERT_TRUE(schedule.Create(effect.GetGraph(), errors));
    for (const TSampleNode& node : {early, late, effect.Cone})
        effect.Type(node).Category = TU_EMITTER;
    vector<const TEffectNode*> births;
    for (const TTiedNode& tied : schedule.GetGroup(1).TiedNodes)
        if (schedule.GetNode(tied.Node)->GetNodeType()->Category == TU_EMITTER)
            births.push_back(schedule.GetNode(tied.Node));
    ASSERT_GT(births.size(), 2);
    EXPECT_NE(effect.Source.GetNode(), births.back());
    TReplayReport replay;
    replay.Add(Differ(DK_COUNT, nullptr, 1, -1));
    FindDifferenceSources(schedule, replay);
    EXPECT_EQ(effect.Source.GetNode(), replay.GetDifferences()[0].Place.Node);
    TFindingList findings;
    TLintReport report(findings, "effect");
    report.SetSchedule(&schedule);
    EXPECT_EQ(effect.Source.GetNode(), report.FindSource(1));
}
