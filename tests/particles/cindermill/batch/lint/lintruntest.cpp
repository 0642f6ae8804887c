#include "lintfixture.h"

#include <algorithm>
#include <cstring>

// What runs of the engine show.
class LintRuns : public TLintFixture
{
};

TEST_F(LintRuns, ASoundEffectHasNoFinding)
{
    TSoundEffect effect(App);
    const TFindingList findings = Lint(effect);
    EXPECT_TRUE(findings.empty()) << MessagesOf(findings);
}

TEST_F(LintRuns, AGroupThatIsTooSmallLosesParticles)
{
    TSoundEffect effect(App);
    effect.Source.Int("Particle Count", 20);
    const TFindingList findings = Lint(effect);
    EXPECT_ONLY("capacity.lost", findings);
    const TFinding& finding = findings[0];
    EXPECT_EQ(FS_WARNING, finding.Severity);
    EXPECT_STREQ("effect", finding.File.Print());
    EXPECT_STREQ("Point Emitter", finding.Place.Node.Print());
    EXPECT_STREQ("TPointEmitter", finding.Place.Type.Print());
    EXPECT_EQ(1, finding.Place.Group);
    EXPECT_EQ(effect.Source.GetNode()->ChunkIdx, finding.Place.Id);
    EXPECT_EQ(20, NumberOf(finding, "capacity"));
    EXPECT_EQ(20, NumberOf(finding, "peak"));
    // One particle comes in each frame, from the first on, and stays 50 frames.
    EXPECT_EQ(20, NumberOf(finding, "frame"));
    EXPECT_NEAR(0.4, NumberOf(finding, "time"), 0.001);
    EXPECT_EQ(150 - 20, NumberOf(finding, "lost"));
}

TEST_F(LintRuns, ABurstBeyondTheRoomIsCounted)
{
    TSoundEffect effect(App);
    effect.Trigger.Choose("Emit Mode", "Burst").Int("Per frame max emission", 80);
    const TFindingList findings = Lint(effect);
    EXPECT_ONLY("capacity.lost", findings);
    EXPECT_EQ(80 - 56, NumberOf(findings[0], "lost"));
    EXPECT_EQ(1, NumberOf(findings[0], "frame"));
}

TEST_F(LintRuns, AGroupThatIsFullIsToldAsSuch)
{
    TSoundEffect effect(App);
    effect.Trigger.Choose("Emit Mode", "Burst").Int("Per frame max emission", 56);
    const TFindingList findings = Lint(effect);
    EXPECT_ONLY("capacity.full", findings);
    EXPECT_EQ(FS_NOTE, findings[0].Severity);
    EXPECT_EQ(56, NumberOf(findings[0], "peak"));
}

TEST_F(LintRuns, AGroupOfWhichHalfIsNeverUsedIsWasted)
{
    TSoundEffect effect(App);
    effect.Source.Int("Particle Count", 200);
    const TFindingList findings = Lint(effect);
    EXPECT_ONLY("capacity.waste", findings);
    EXPECT_EQ(FS_WARNING, findings[0].Severity);
    EXPECT_EQ(200, NumberOf(findings[0], "capacity"));
    EXPECT_NEAR(51, NumberOf(findings[0], "peak"), 1);
}

TEST_F(LintRuns, RoomThatChildrenOfAFrameNeedIsNoWaste)
{
    TSoundEffect effect(App);
    // One particle that emits three in each frame.
    effect.Trigger.Choose("Emit Mode", "Burst").Int("Per frame max emission", 1);
    effect.Source.Int("Particle Count", 4);
    effect.Cone.Set("Direction", {0, 1, 0}).Set("Cone Cosine", {1});
    effect.Cone.Set("Minimum Speed", {3.5f}).Set("Maximum Speed", {3.5f});
    effect.Gravity.Set("Acceleration", {0, 0, 0});
    effect.Type(effect.Stage).SetRenderPriority(0);
    const TSampleNode flash = effect.Effect.Add("Point Emitter").Int("Particle Count", 160);
    const TSampleNode age = effect.Effect.Add("Age").Set("Max Age", {1});
    const TSampleNode colours = effect.Effect.Add("Colour Over Life").Set("Life", {1});
    const TSampleNode stage =
        effect.Effect.Add("Sprite Render Stage").Texture("Texture", "spark.dds").Priority(9);
    const TSampleNode length = effect.Effect.Add("Select Component").Choose("Component", "Length");
    effect.Gravity.Wire("Velocity", length, "Vector");
    length.Wire("Value", flash, "Emission Trigger");
    flash.Wire("Start Transform", stage, "Transform");
    age.Wire("Age", colours, "Time");
    colours.Wire("Value", stage, "Colour");
    TIds ids = IdsOf(Lint(effect));
    EXPECT_EQ(0, std::count(ids.begin(), ids.end(), "capacity.waste"));
    EXPECT_EQ(0, std::count(ids.begin(), ids.end(), "emission.over"));
    effect.Source.Int("Particle Count", 2);
    ids = IdsOf(Lint(effect));
    EXPECT_EQ(1, std::count(ids.begin(), ids.end(), "emission.over"));
    effect.Source.Int("Particle Count", 20);
    ids = IdsOf(Lint(effect));
    EXPECT_EQ(1, std::count(ids.begin(), ids.end(), "capacity.waste"));
}

TEST_F(LintRuns, HalfOfTheRoomIsNoWaste)
{
    TSoundEffect effect(App);
    effect.Trigger.Choose("Emit Mode", "Burst").Int("Per frame max emission", 28);
    EXPECT_TRUE(Lint(effect).empty());
}

TEST_F(LintRuns, ARateThatTheFrameCutsIsTold)
{
    TSoundEffect effect(App);
    // Ten in a frame, of which four come.
    effect.Trigger.Set("Rate", {500});
    effect.Source.Int("Particle Count", 210);
    const TFindingList findings = Lint(effect);
    EXPECT_ONLY("emission.cut", findings);
    EXPECT_STREQ("Emitter", findings[0].Place.Node.Print());
    EXPECT_EQ(0, findings[0].Place.Group);
    EXPECT_NEAR(10, NumberOf(findings[0], "due"), 0.001);
    EXPECT_EQ(4, NumberOf(findings[0], "most"));
    EXPECT_NEAR(6 * 150, NumberOf(findings[0], "lost"), 1);
}

TEST_F(LintRuns, ARateThatTheFrameJustHoldsIsNot)
{
    TSoundEffect effect(App);
    effect.Trigger.Set("Rate", {200});
    effect.Source.Int("Particle Count", 210);
    const TFindingList findings = Lint(effect);
    EXPECT_TRUE(findings.empty()) << MessagesOf(findings);
}

TEST_F(LintRuns, AChanceAboveOneIsCutToo)
{
    TSoundEffect effect(App);
    effect.Trigger.Choose("Emit Mode", "Chance").Set("Rate", {8});
    effect.Source.Int("Particle Count", 210);
    const TFindingList findings = Lint(effect);
    EXPECT_ONLY("emission.cut", findings);
    EXPECT_NEAR(8, NumberOf(findings[0], "due"), 0.001);
}

TEST_F(LintRuns, MoreBirthsInAFrameThanTheFileTellsAreTold)
{
    TSoundEffect effect(App);
    // Of a count that was computed the file tells the largest group that it can come from: 100.
    const TSampleNode trigger =
        effect.Effect.Add("Emitter").Set("Rate", {100}).Int("Per frame max emission", 3);
    const TSampleNode count = effect.Effect.Add("Multiply");
    trigger.Wire("Count", count, "A");
    count.Set("B", {60});
    const TSampleNode burst = effect.Effect.Add("Point Emitter").Int("Particle Count", 8000);
    const TSampleNode age = effect.Effect.Add("Age").Set("Max Age", {1});
    const TSampleNode colours = effect.Effect.Add("Colour Over Life").Set("Life", {1});
    const TSampleNode stage =
        effect.Effect.Add("Sprite Render Stage").Texture("Texture", "spark.dds").Priority(9);
    count.Wire("Product", burst, "Emission Trigger");
    burst.Wire("Start Transform", stage, "Transform");
    age.Wire("Age", colours, "Time");
    colours.Wire("Value", stage, "Colour");
    const TFindingList findings = Lint(effect);
    EXPECT_ONLY("emission.over", findings);
    EXPECT_EQ(120, NumberOf(findings[0], "births"));
    EXPECT_EQ(100, NumberOf(findings[0], "most"));
    EXPECT_EQ(1, NumberOf(findings[0], "frame"));
}

TEST_F(LintRuns, AGroupWithoutBirthsIsTold)
{
    TSoundEffect effect(App);
    effect.Trigger.Set("Start Delay", {30});
    const TFindingList findings = Lint(effect);
    EXPECT_ONLY("emission.none", findings);
    EXPECT_EQ(FS_WARNING, findings[0].Severity);
    EXPECT_EQ(2, NumberOf(findings[0], "seeds"));
    EXPECT_NEAR(3, NumberOf(findings[0], "seconds"), 0.03);
}

TEST_F(LintRuns, AGroupWhoseParentIsEmptyIsNotToldBesides)
{
    TSoundEffect effect(App);
    const TSampleNode flash = effect.Effect.Add("Point Emitter").Int("Particle Count", 60);
    const TSampleNode age = effect.Effect.Add("Age").Set("Max Age", {1});
    const TSampleNode colours = effect.Effect.Add("Colour Over Life").Set("Life", {1});
    const TSampleNode stage =
        effect.Effect.Add("Sprite Render Stage").Texture("Texture", "spark.dds").Priority(9);
    effect.Age.Wire("Age", flash, "Emission Trigger");
    flash.Wire("Start Transform", stage, "Transform");
    age.Wire("Age", colours, "Time");
    colours.Wire("Value", stage, "Colour");
    effect.Trigger.Set("Rate", {0});
    const TFindingList findings = Lint(effect);
    EXPECT_ONLY("emission.none", findings);
    EXPECT_EQ(effect.Source.GetNode()->ChunkIdx, findings[0].Place.Id);
}

TEST_F(LintRuns, ParticlesThatStayAreANote)
{
    TSoundEffect effect(App);
    effect.Age.Set("Max Age", {1e9f});
    effect.Trigger.Choose("Emit Mode", "Burst").Int("Per frame max emission", 40);
    const TFindingList findings = Lint(effect);
    EXPECT_ONLY("life.stays", findings);
    EXPECT_EQ(FS_NOTE, findings[0].Severity);
    EXPECT_EQ(40, NumberOf(findings[0], "born"));
    EXPECT_EQ(0, NumberOf(findings[0], "lost"));
}

TEST_F(LintRuns, WhatAnEndlessGroupLosesIsToldWithIt)
{
    TSoundEffect effect(App);
    effect.Age.Set("Max Age", {1e9f});
    const TFindingList findings = Lint(effect);
    EXPECT_ONLY("life.endless", findings);
    EXPECT_EQ(FS_WARNING, findings[0].Severity);
    EXPECT_EQ(150, NumberOf(findings[0], "born"));
    EXPECT_EQ(150 - 56, NumberOf(findings[0], "lost"));
}

TEST_F(LintRuns, ALifeBeyondTheRunIsANote)
{
    TSoundEffect effect(App);
    effect.Age.Set("Max Age", {5});
    effect.Colours.Set("Life", {5});
    effect.Source.Int("Particle Count", 300);
    const TFindingList findings = Lint(effect);
    EXPECT_ONLY("life.beyond", findings);
    EXPECT_EQ(FS_NOTE, findings[0].Severity);
    EXPECT_EQ(5, NumberOf(findings[0], "life"));
    Options.Seconds = 8;
    EXPECT_TRUE(Lint(effect).empty());
}

TEST_F(LintRuns, TheNodeThatWritesNoNumberIsToldAndNoneBehindIt)
{
    TSoundEffect effect(App);
    effect.Cone.Set("Direction", {0, 0, 0});
    const TFindingList findings = Lint(effect);
    EXPECT_ONLY("number.bad", findings);
    EXPECT_EQ(FS_ERROR, findings[0].Severity);
    EXPECT_STREQ("Velocity Cone", findings[0].Place.Node.Print());
    EXPECT_EQ(1, NumberOf(findings[0], "frame"));
    EXPECT_NE(nullptr, std::strstr(findings[0].Message.Print(), "nan"));
}

TEST_F(LintRuns, AValueThatGrowsWithoutEndIsToldWhenItIsNoNumber)
{
    TSoundEffect effect(App);
    effect.Gravity.Set("Acceleration", {0, 3e38f, 0});
    effect.Age.Set("Max Age", {2});
    effect.Colours.Set("Life", {2});
    effect.Source.Int("Particle Count", 110);
    const TFindingList findings = Lint(effect);
    EXPECT_ONLY("number.bad", findings);
    EXPECT_STREQ("Gravity", findings[0].Place.Node.Print());
    EXPECT_NE(nullptr, std::strstr(findings[0].Message.Print(), "infinity"));
    // 3e38 a second reaches the largest float after 1.13 of them.
    EXPECT_NEAR(1.14, NumberOf(findings[0], "time"), 0.05);
}

TEST_F(LintRuns, ANumberThatStandsOnANodeIsToldThere)
{
    TSoundEffect effect(App);
    effect.Source.Set("Transform", {INFINITY, 0, 0, 0, 0, 0});
    const TFindingList findings = Lint(effect);
    EXPECT_ONLY("number.bad", findings);
    EXPECT_STREQ("Point Emitter", findings[0].Place.Node.Print());
}

TEST_F(LintRuns, AStaticBoxThatIsLeftIsTold)
{
    TSoundEffect effect(App);
    TNodeType& type = effect.Type(effect.Stage);
    type.SetFlag(FL_STATICBOUNDS, true);
    type.BoundsMin = TVector3(-50, -50, -50);
    type.BoundsMax = TVector3(50, 50, 50);
    EXPECT_TRUE(Lint(effect).empty());
    effect.Gravity.Set("Acceleration", {0, 0, 0});
    effect.Cone.Set("Direction", {0, 1, 0}).Set("Cone Cosine", {1});
    effect.Cone.Set("Minimum Speed", {2}).Set("Maximum Speed", {2});
    effect.Stage.Set("Scale", {0.3f, 0.4f});
    type.BoundsMax[1] = 1.5f;
    const TFindingList findings = Lint(effect);
    EXPECT_ONLY("box.left", findings);
    EXPECT_EQ(FS_WARNING, findings[0].Severity);
    EXPECT_STREQ("TSpriteRenderStage", findings[0].Place.Type.Print());
    // Two units in the second of its life, and half a unit to the corner of its picture.
    EXPECT_NEAR(2 + 0.5 - 1.5, NumberOf(findings[0], "by"), 0.05);
    EXPECT_NEAR(0.5, NumberOf(findings[0], "time"), 0.05);
}

TEST_F(LintRuns, TheSuggestedBoxIsNotLeft)
{
    TSoundEffect effect(App);
    Options.SuggestBoxes = true;
    TFindingList findings = Lint(effect);
    EXPECT_ONLY("box.suggested", findings);
    EXPECT_EQ(FS_NOTE, findings[0].Severity);
    TNodeType& type = effect.Type(effect.Stage);
    type.SetFlag(FL_STATICBOUNDS, true);
    const char* mins[] = {"minX", "minY", "minZ"};
    const char* maxs[] = {"maxX", "maxY", "maxZ"};
    for (int i = 0; i < 3; ++i) {
        type.BoundsMin[i] = static_cast<float>(NumberOf(findings[0], mins[i]));
        type.BoundsMax[i] = static_cast<float>(NumberOf(findings[0], maxs[i]));
        EXPECT_LT(type.BoundsMin[i], type.BoundsMax[i]);
    }
    Options.SuggestBoxes = false;
    EXPECT_TRUE(Lint(effect).empty());
    type.BoundsMax[1] -= 0.2f;
    findings = Lint(effect);
    EXPECT_ONLY("box.left", findings);
}

TEST_F(LintRuns, AMostOfBirthsBelowZeroIsNotHeldAgainstThem)
{
    TSoundEffect effect(App);
    effect.Trigger.Int("Per frame max emission", -1);
    const TIds ids = IdsOf(Lint(effect));
    EXPECT_EQ(1, std::count(ids.begin(), ids.end(), "number.field"));
    EXPECT_EQ(0, std::count(ids.begin(), ids.end(), "emission.over"));
    EXPECT_EQ(0, std::count(ids.begin(), ids.end(), "emission.none"));
}

TEST_F(LintRuns, ACurveOfAnotherLengthThanTheLifeIsTold)
{
    TSoundEffect effect(App);
    effect.Colours.Set("Life", {2.5f});
    const TFindingList findings = Lint(effect);
    EXPECT_ONLY("graph.curve", findings);
    EXPECT_STREQ("Colour Over Life", findings[0].Place.Node.Print());
    EXPECT_EQ(2.5, NumberOf(findings[0], "curve"));
    EXPECT_EQ(1, NumberOf(findings[0], "life"));
}

TEST_F(LintRuns, ACurveWhoseLastPointIsNotAtOneIsOfAnotherLength)
{
    TSoundEffect effect(App);
    effect.Colours.Colours("Value", {{0, 1, 1, 1, 1}, {0.5f, 1, 1, 1, 0}});
    const TFindingList findings = Lint(effect);
    EXPECT_ONLY("graph.curve", findings);
    EXPECT_EQ(0.5, NumberOf(findings[0], "curve"));
}

TEST_F(LintRuns, ALifeOfEachParticleIsHeldAgainstItsOwnCurve)
{
    TSoundEffect effect(App);
    const TSampleNode life = effect.Effect.Add("Random Value");
    life.Wire("Value", effect.Age, "Max Age");
    life.Wire("Value", effect.Colours, "Life");
    life.Set("Low", {0.9f}).Set("High", {1.1f});
    TFindingList findings = Lint(effect);
    EXPECT_TRUE(findings.empty()) << MessagesOf(findings);
    life.Set("Low", {0.2f}).Set("High", {1.1f});
    EXPECT_TRUE(Lint(effect).empty());
}

TEST_F(LintRuns, ALintSaysTheSameEachTime)
{
    TSoundEffect effect(App);
    effect.Trigger.Choose("Emit Mode", "Chance").Set("Rate", {1.5f});
    effect.Source.Int("Particle Count", 60);
    Options.SuggestBoxes = true;
    const std::string first = MessagesOf(Lint(effect));
    EXPECT_NE(std::string::npos, first.find("capacity.lost"));
    EXPECT_EQ(first, MessagesOf(Lint(effect)));
}

TEST_F(LintRuns, AnEffectThatAsksForTooMuchIsNotRunToTheEnd)
{
    TSoundEffect effect(App);
    const TSampleNode trigger = effect.Effect.Add("Emitter").Choose("Emit Mode", "Burst");
    const TSampleNode count = effect.Effect.Add("Multiply");
    const TSampleNode source = effect.Effect.Add("Point Emitter").Int("Particle Count", 400000);
    const TSampleNode stage =
        effect.Effect.Add("Sprite Render Stage").Texture("Texture", "spark.dds").Priority(9);
    const TSampleNode age = effect.Effect.Add("Age").Set("Max Age", {4});
    const TSampleNode colours = effect.Effect.Add("Colour Over Life").Set("Life", {4});
    trigger.Wire("Count", count, "A");
    count.Wire("Product", source, "Emission Trigger");
    source.Wire("Start Transform", stage, "Transform");
    age.Wire("Age", colours, "Time");
    colours.Wire("Value", stage, "Colour");
    trigger.Int("Per frame max emission", 1);
    count.Set("B", {300000});
    Options.Seconds = 8;
    const TFindingList findings = Lint(effect);
    const TIds ids = IdsOf(findings);
    EXPECT_NE(ids.end(), std::find(ids.begin(), ids.end(), "run.short"));
    EXPECT_EQ(1, std::count(ids.begin(), ids.end(), "run.short"));
}
