#include "lintfixture.h"

#include "support/randomgraph.h"
#include "support/testgraph.h"

#include "library/containers/image/image.h"
#include "particles/effectgraph/export/exportpolicies.h"

#include <algorithm>
#include <cstring>
#include <filesystem>

// What the graph, the files and the export tell.
class LintGraphs : public TLintFixture
{
protected:
    bool Mentions(const TFinding& finding, const char* text)
    {
        return std::strstr(finding.Message.Print(), text) != nullptr;
    }
};

TEST_F(LintGraphs, WhatReachesNoStageIsToldByItsLastNode)
{
    TSoundEffect effect(App);
    const TSampleNode first = effect.Effect.Add("Constant");
    const TSampleNode second = effect.Effect.Add("Multiply");
    const TSampleNode last = effect.Effect.Add("Add");
    first.Wire("Result", second, "A");
    second.Wire("Product", last, "A");
    const TFindingList findings = Lint(effect);
    EXPECT_ONLY("graph.unused", findings);
    EXPECT_EQ(FS_WARNING, findings[0].Severity);
    EXPECT_STREQ("Add", findings[0].Place.Node.Print());
    EXPECT_EQ(3, NumberOf(findings[0], "nodes"));
    EXPECT_EQ(static_cast<float>(last.GetNode()->GetX()), findings[0].Place.X);
    EXPECT_EQ(static_cast<float>(last.GetNode()->GetY()), findings[0].Place.Y);
}

TEST_F(LintGraphs, WhatEndsOrTellsSomethingNeedsNoOutput)
{
    TSoundEffect effect(App);
    const TSampleNode end = effect.Effect.Add("Prune");
    const TSampleNode height = effect.Effect.Add("Select Component").Choose("Component", "X");
    effect.Gravity.Wire("Velocity", height, "Vector");
    height.Wire("Value", end, "Kill");
    effect.Effect.Add("Effect");
    const TIds ids = IdsOf(Lint(effect));
    EXPECT_EQ(ids.end(), std::find(ids.begin(), ids.end(), "graph.unused"));
}

TEST_F(LintGraphs, AStageWithoutAnEmitterIsToldWithAllThatLeadsToIt)
{
    TSoundEffect effect(App);
    const TSampleNode place = effect.Effect.Add("Make Transform");
    const TSampleNode stage =
        effect.Effect.Add("Sprite Render Stage").Texture("Texture", "spark.dds").Priority(9);
    place.Wire("Transform", stage, "Transform");
    const TFindingList findings = Lint(effect);
    EXPECT_ONLY("graph.dropped", findings);
    EXPECT_EQ(stage.GetNode()->ChunkIdx, findings[0].Place.Id);
    EXPECT_EQ(-1, findings[0].Place.Group);
}

TEST_F(LintGraphs, ABypassedNodeIsTold)
{
    TSoundEffect effect(App);
    effect.Type(effect.Gravity).SetFlag(FL_BYPASSED, true);
    const TFindingList findings = Lint(effect);
    EXPECT_ONLY("graph.bypassed", findings);
    EXPECT_STREQ("Gravity", findings[0].Place.Node.Print());
    EXPECT_TRUE(Mentions(findings[0], "passes its inputs on"));
}

TEST_F(LintGraphs, ABypassedEmitterIsToldOnce)
{
    TSoundEffect effect(App);
    effect.Type(effect.Source).SetFlag(FL_BYPASSED, true);
    const TFindingList findings = Lint(effect);
    EXPECT_ONLY("graph.bypassed", findings);
    EXPECT_TRUE(Mentions(findings[0], "starts no particles"));
}

TEST_F(LintGraphs, AWireThatConvertsIsANote)
{
    TSoundEffect effect(App);
    const TSampleNode size = effect.Effect.Add("Scalar Over Life").Set("Life", {1});
    effect.Age.Wire("Age", size, "Time");
    size.Wire("Value", effect.Stage, "Scale");
    const TFindingList findings = Lint(effect);
    EXPECT_ONLY("graph.converts", findings);
    EXPECT_EQ(FS_NOTE, findings[0].Severity);
    EXPECT_STREQ("Sprite Render Stage", findings[0].Place.Node.Print());
    EXPECT_TRUE(Mentions(findings[0], "Scalar"));
    EXPECT_TRUE(Mentions(findings[0], "Scale"));
}

TEST_F(LintGraphs, AWireThatNothingComesThroughIsAWarning)
{
    TSoundEffect effect(App);
    const TSampleNode constant = effect.Effect.Add("Constant");
    // No hand can draw such a wire; an older file may hold one.
    TEffectEdge edge;
    TEffectNode& source = *constant.GetNode();
    TEffectNode& stage = *effect.Stage.GetNode();
    const int uvs = effect.Type(effect.Stage).FindInput("UVs");
    edge.SetEnds(&source, 0, &stage, uvs);
    stage.SetInput(uvs, &edge);
    source.AddOutputEdge(0, &edge);
    effect.GetGraph().AddEdge(&edge);
    const TFindingList findings = Lint(effect);
    effect.GetGraph().RemoveEdge(&edge);
    source.RemoveOutputEdge(0, &edge);
    stage.SetInput(uvs, nullptr);
    EXPECT_ONLY("graph.zero", findings);
    EXPECT_EQ(FS_WARNING, findings[0].Severity);
    EXPECT_TRUE(Mentions(findings[0], "TextureCoords"));
}

TEST_F(LintGraphs, StagesOfOnePriorityAreToldOnce)
{
    TSoundEffect effect(App);
    for (int i = 0; i < 2; ++i) {
        const TSampleNode stage = effect.Effect.Add("Sprite Render Stage").Texture("Texture", "spark.dds");
        effect.Integrate.Wire("Position", stage, "Transform");
        effect.Colours.Wire("Value", stage, "Colour");
    }
    TFindingList findings = Lint(effect);
    EXPECT_ONLY("graph.priority", findings);
    EXPECT_EQ(FS_WARNING, findings[0].Severity);
    EXPECT_EQ(3, NumberOf(findings[0], "stages"));
    EXPECT_EQ(effect.Type(effect.Stage).GetRenderPriority(), NumberOf(findings[0], "priority"));
    int priority = 20;
    for (int n = 0; n < effect.GetGraph().GetNumNodes(); ++n)
        if (effect.GetGraph().GetNode(n)->GetNodeType()->Category == TU_RENDER)
            effect.GetGraph().GetNode(n)->GetNodeType()->SetRenderPriority(priority++);
    findings = Lint(effect);
    EXPECT_TRUE(findings.empty()) << MessagesOf(findings);
}

TEST_F(LintGraphs, ATypeThatHasChangedIsTold)
{
    TSoundEffect effect(App);
    effect.Type(effect.Colours).Description = "of old";
    const TFindingList findings = Lint(effect);
    EXPECT_ONLY("type.stale", findings);
    EXPECT_EQ(FS_WARNING, findings[0].Severity);
    EXPECT_EQ(effect.Colours.GetNode()->ChunkIdx, findings[0].Place.Id);
}

TEST_F(LintGraphs, ANodeThatAnArtistNamedIsOfItsType)
{
    TSoundEffect effect(App);
    effect.Type(effect.Gravity).Name = "Heaviness";
    EXPECT_TRUE(Lint(effect).empty());
}

TEST_F(LintGraphs, ATypeThatTheLibraryLacksIsTold)
{
    TSoundEffect effect(App);
    effect.Type(effect.Gravity).Name = "Heaviness";
    effect.Type(effect.Gravity).ClassName = "TIntegral";
    const TFindingList findings = Lint(effect);
    const TIds expected = {"type.missing", "engine.error"};
    ASSERT_EQ(expected, IdsOf(findings)) << MessagesOf(findings);
    EXPECT_STREQ("Heaviness", findings[0].Place.Node.Print());
    EXPECT_STREQ("TIntegral", findings[0].Place.Type.Print());
    // Each is told where it is.
    EXPECT_EQ(findings[0].Place.Id, findings[1].Place.Id);
}

TEST_F(LintGraphs, FilesThatAreNotThereAreToldOnceEach)
{
    TSoundEffect effect(App);
    effect.Stage.Texture("Texture", "nowhere.dds");
    const TSampleNode stage =
        effect.Effect.Add("Sprite Render Stage").Texture("Texture", "nowhere.dds").Priority(9);
    effect.Integrate.Wire("Position", stage, "Transform");
    const TFindingList findings = Lint(effect);
    EXPECT_ONLY("file.missing", findings);
    EXPECT_EQ(FS_ERROR, findings[0].Severity);
    EXPECT_EQ(2, NumberOf(findings[0], "nodes"));
    EXPECT_TRUE(Mentions(findings[0], "nowhere.dds"));
}

TEST_F(LintGraphs, AStageThatNamesNoTextureIsToldOnce)
{
    TSoundEffect effect(App);
    effect.Stage.Texture("Texture", "");
    const TFindingList findings = Lint(effect);
    EXPECT_ONLY("file.unnamed", findings);
    EXPECT_EQ(FS_ERROR, findings[0].Severity);
    EXPECT_STREQ("Sprite Render Stage", findings[0].Place.Node.Print());
}

TEST_F(LintGraphs, AnimationsAreLookedForToo)
{
    TSoundEffect effect(App);
    const TSampleNode path = effect.Effect.Add("Animation Path");
    effect.Age.Wire("Age", path, "Time");
    const TSampleNode sum = effect.Effect.Add("Add");
    const TSampleNode stage =
        effect.Effect.Add("Sprite Render Stage").Texture("Texture", "spark.dds").Priority(9);
    effect.Integrate.Wire("Position", sum, "A");
    path.Wire("Transform", sum, "B");
    sum.Wire("Sum", stage, "Transform");
    TFindingList findings = Lint(effect);
    EXPECT_ONLY("file.unnamed", findings);
    path.Animation("Animation", "gone.vori");
    findings = Lint(effect);
    EXPECT_ONLY("file.missing", findings);
    EXPECT_TRUE(Mentions(findings[0], "Animation \"gone.vori\""));
    WriteBytes(App.Path("resources/bad.vori"), "no animation");
    path.Animation("Animation", "bad.vori");
    findings = Lint(effect);
    EXPECT_ONLY("file.unreadable", findings);
    path.Animation("Animation", "path.vori");
    findings = Lint(effect);
    EXPECT_ONLY("console.nothing", findings);
}

TEST_F(LintGraphs, PicturesAreReadAndMeasured)
{
    TSoundEffect effect(App);
    TImage image;
    image.Create(12, 8);
    ASSERT_TRUE(image.Save(App.Path("resources/odd.dds").c_str(), IF_DDS_RAW));
    WriteBytes(App.Path("resources/text.dds"), "no picture");
    effect.Stage.Texture("Texture", "odd.dds");
    TFindingList findings = Lint(effect);
    EXPECT_ONLY("file.sides", findings);
    EXPECT_EQ(FS_WARNING, findings[0].Severity);
    EXPECT_EQ(12, NumberOf(findings[0], "width"));
    EXPECT_EQ(8, NumberOf(findings[0], "height"));
    effect.Stage.Texture("Texture", "text.dds");
    findings = Lint(effect);
    EXPECT_ONLY("file.unreadable", findings);
    EXPECT_EQ(FS_ERROR, findings[0].Severity);
}

TEST_F(LintGraphs, NamesThatLeadOutOfTheBaseAreTold)
{
    std::filesystem::create_directories(App.Path("resources/below"));
    std::filesystem::copy(App.Path("resources/spark.dds"), App.Path("resources/below/inner.dds"));
    std::filesystem::copy(App.Path("resources/spark.dds"), App.Path("outer.dds"));
    std::filesystem::copy(App.Path("resources/spark.dds"), App.Path("resources/..dots.dds"));
    TSoundEffect effect(App);
    for (const char* inside : {"below\\inner.dds", "below/inner.dds", "inner.dds", ".\\spark.dds",
                               "below\\..\\spark.dds", "..dots.dds"}) {
        effect.Stage.Texture("Texture", inside);
        EXPECT_TRUE(Lint(effect).empty()) << inside;
    }
    effect.Stage.Texture("Texture", "..\\outer.dds");
    TFindingList findings = Lint(effect);
    EXPECT_ONLY("file.outside", findings);
    EXPECT_EQ(FS_WARNING, findings[0].Severity);
    effect.Stage.Texture("Texture", "below\\..\\..\\outer.dds");
    findings = Lint(effect);
    EXPECT_ONLY("file.outside", findings);
}

TEST_F(LintGraphs, BudgetsHoldWhatTheProjectLetsThem)
{
    TSoundEffect effect(App);
    Options.TellBudgets = true;
    TFindingList findings = Lint(effect);
    const TIds used(3, "budget.used");
    ASSERT_EQ(used, IdsOf(findings)) << MessagesOf(findings);
    Options.TellBudgets = false;
    for (int b = 0; b < BG_NUMBUDGETS; ++b) {
        const TBudget budget = static_cast<TBudget>(b);
        SCOPED_TRACE(GetBudgetName(budget));
        // Of the group that takes most, or of the whole effect.
        double most = 0;
        for (int i = 0; i < findings.size(); ++i)
            most = std::fmax(most, NumberOf(findings[i], GetBudgetName(budget)));
        ASSERT_GT(most, 0);
        Options.Limits = TLintLimits();
        Options.Limits.Most[budget] = static_cast<int64_t>(most);
        EXPECT_TRUE(Lint(effect).empty());
        Options.Limits.Most[budget] = static_cast<int64_t>(most) - 1;
        const TFindingList over = Lint(effect);
        ASSERT_FALSE(over.empty());
        for (int i = 0; i < over.size(); ++i) {
            EXPECT_STREQ("budget.over", over[i].Id);
            EXPECT_EQ(FS_ERROR, over[i].Severity);
            EXPECT_EQ(most, NumberOf(over[i], GetBudgetName(budget)));
            EXPECT_EQ(most - 1, NumberOf(over[i], "most"));
        }
    }
}

TEST_F(LintGraphs, PoliciesAreHeldAsTheyAreSet)
{
    TSoundEffect effect(App);
    Options.PolicyFlags = PF_MUSTHAVEBOUNDS | PF_NOMIXEDBOUNDS;
    TFindingList findings = Lint(effect);
    EXPECT_ONLY("box.none", findings);
    EXPECT_EQ(FS_WARNING, findings[0].Severity);
    Options.PolicyFlags |= PF_PREVENTEXPORT;
    findings = Lint(effect);
    EXPECT_ONLY("box.none", findings);
    EXPECT_EQ(FS_ERROR, findings[0].Severity);
    TNodeType& type = effect.Type(effect.Stage);
    type.SetFlag(FL_STATICBOUNDS, true);
    type.SetFlag(FL_DYNAMICBOUNDS, true);
    type.BoundsMin = TVector3(-50, -50, -50);
    type.BoundsMax = TVector3(50, 50, 50);
    findings = Lint(effect);
    EXPECT_ONLY("box.mixed", findings);
}

TEST_F(LintGraphs, NumbersThatTheirFieldsCutAreTold)
{
    TSoundEffect effect(App);
    effect.Trigger.Choose("Emit Mode", "Burst").Int("Per frame max emission", 300);
    effect.Source.Int("Particle Count", 310);
    TFindingList findings = Lint(effect);
    EXPECT_ONLY("number.field", findings);
    EXPECT_EQ(FS_ERROR, findings[0].Severity);
    EXPECT_STREQ("Emitter", findings[0].Place.Node.Print());
    EXPECT_EQ(300, NumberOf(findings[0], "value"));
    EXPECT_TRUE(Mentions(findings[0], "goes out as 44"));
    effect.Trigger.Int("Per frame max emission", 255);
    EXPECT_TRUE(Lint(effect).empty());
    const TSampleNode frames =
        effect.Effect.Add("Animated Texture").Int("Tile Count", 256).Int("X Divisions", 16);
    frames.Int("Y Divisions", 16);
    effect.Age.Wire("Age", frames, "Time");
    frames.Wire("UVs", effect.Stage, "UVs");
    findings = Lint(effect);
    EXPECT_ONLY("number.field", findings);
    EXPECT_STREQ("Animated Texture", findings[0].Place.Node.Print());
}

TEST_F(LintGraphs, AReferenceBeyondItsFieldIsTold)
{
    TSoundEffect effect(App);
    effect.Stage.Set("Alpha Test.Ref Value", {1.5f});
    EXPECT_TRUE(Lint(effect).empty());
    effect.Stage.Switch("Alpha Test", true);
    const TFindingList findings = Lint(effect);
    EXPECT_ONLY("number.field", findings);
    EXPECT_EQ(1.5, NumberOf(findings[0], "value"));
    EXPECT_TRUE(Mentions(findings[0], "goes out as 1"));
}

// Types of other makers may offer more than the console has.
TEST_F(LintGraphs, AChoiceBeyondTheConsolesTableIsTold)
{
    TSoundEffect effect(App);
    auto& function =
        *effect.Type(effect.Stage).FindParameterOf<TNodeEnumParameter>("Depth Test.Function", PK_ENUM);
    function.AddEntry({"Last of the table", 7});
    function.AddEntry({"Odd", 9});
    function.SetValue(function.GetValues().size() - 2);
    EXPECT_TRUE(Lint(effect).empty());
    function.SetValue(function.GetValues().size() - 1);
    const TFindingList findings = Lint(effect);
    EXPECT_ONLY("number.field", findings);
    EXPECT_STREQ("\"Depth Test.Function\" of Sprite Render Stage is 9: the console knows 0 to 7",
                 findings[0].Message.Print());
    EXPECT_EQ(9, NumberOf(findings[0], "value"));
    EXPECT_EQ(7, NumberOf(findings[0], "most"));
    effect.Stage.Switch("Depth Test", false);
    EXPECT_TRUE(Lint(effect).empty());
}

TEST_F(LintGraphs, AnExportThatFailsIsToldInItsOwnWords)
{
    TSoundEffect effect(App, true);
    const TSampleNode place = effect.Effect.Add("Make Transform");
    place.Wire("Transform", *effect.Plane, "Plane");
    const TFindingList findings = WithoutConversions(Lint(effect));
    EXPECT_ONLY("export.error", findings);
    EXPECT_EQ(FS_ERROR, findings[0].Severity);
    EXPECT_TRUE(Mentions(findings[0], "variable plane transform"));
}

TEST_F(LintGraphs, AGraphWithoutAScheduleIsToldByThatAlone)
{
    TSampleBuilder builder(App.Get());
    builder.Add("Sprite Render Stage").Texture("Texture", "spark.dds");
    const TFindingList findings = Lint(*builder.GetDocument().GetGraph());
    EXPECT_ONLY("schedule.error", findings);
    EXPECT_EQ(FS_ERROR, findings[0].Severity);
}

TEST_F(LintGraphs, AnEngineThatCannotBeMadeIsTold)
{
    TSoundEffect effect(App);
    effect.Type(effect.Gravity).ClassName = "TLevity";
    const TFindingList findings = Lint(effect);
    const TIds expected = {"type.stale", "engine.error"};
    EXPECT_EQ(expected, IdsOf(findings)) << MessagesOf(findings);
    EXPECT_TRUE(Mentions(findings[1], "TLevity"));
}

TEST_F(LintGraphs, NodesThatTheConsoleKnowsNothingOfAreTold)
{
    for (const char* name : {"Noise", "Volume"}) {
        TSoundEffect effect(App);
        const TSampleNode node = effect.Effect.Add(name);
        const TSampleNode size = effect.Effect.Add("Multiply");
        effect.Gravity.Wire("Velocity", node, strcmp(name, "Noise") == 0 ? "Position" : "Point");
        node.Wire(strcmp(name, "Noise") == 0 ? "Value" : "Result", size, "A");
        size.Wire("Product", effect.Stage, "Scale");
        const TFindingList findings = Lint(effect);
        const TIds ids = IdsOf(findings);
        EXPECT_EQ(1, std::count(ids.begin(), ids.end(), "console.nothing")) << MessagesOf(findings);
        for (int i = 0; i < findings.size(); ++i)
            EXPECT_EQ(FS_NOTE, findings[i].Severity) << MessagesOf(findings);
        effect.Type(node).SetFlag(FL_BYPASSED, true);
        const TIds bypassed = IdsOf(Lint(effect));
        EXPECT_EQ(0, std::count(bypassed.begin(), bypassed.end(), "console.nothing"));
    }
}

TEST_F(LintGraphs, AGridIsAPointOnTheConsole)
{
    TSoundEffect effect(App);
    const TSampleNode grid = effect.Effect.Add("Grid").Int("Particle Count", 56);
    const TSampleNode stage =
        effect.Effect.Add("Sprite Render Stage").Texture("Texture", "spark.dds").Priority(9);
    const TSampleNode age = effect.Effect.Add("Age").Set("Max Age", {1});
    const TSampleNode colours = effect.Effect.Add("Colour Over Life").Set("Life", {1});
    effect.Trigger.Wire("Count", grid, "Emission Trigger");
    grid.Wire("Start Transform", stage, "Transform");
    age.Wire("Age", colours, "Time");
    colours.Wire("Value", stage, "Colour");
    const TFindingList findings = Lint(effect);
    EXPECT_ONLY("console.grid", findings);
    EXPECT_EQ(FS_NOTE, findings[0].Severity);
    EXPECT_STREQ("TGrid", findings[0].Place.Type.Print());
    EXPECT_GT(findings[0].Place.Group, 0);
}

TEST_F(LintGraphs, APlaneThatTheConsoleSeesOtherwiseIsTold)
{
    TSoundEffect effect(App, true);
    TFindingList findings = WithoutConversions(Lint(effect));
    EXPECT_TRUE(findings.empty()) << MessagesOf(findings);
    effect.Plane->Set("Plane", {0, 1, 0, 0, 0, 0});
    findings = WithoutConversions(Lint(effect));
    EXPECT_ONLY("console.plane", findings);
    EXPECT_EQ(FS_NOTE, findings[0].Severity);
    EXPECT_TRUE(Mentions(findings[0], "off the origin"));
    effect.Plane->Set("Plane", {0, 0, 0, 0, 0, 0}).Set("Size", {0.1f, 0.1f});
    effect.Source.Set("Transform", {5, 0, 0, 0, 0, 0});
    effect.Gravity.Set("Acceleration", {0, -30, 0});
    findings = WithoutConversions(Lint(effect));
    EXPECT_ONLY("console.plane", findings);
    EXPECT_TRUE(Mentions(findings[0], "past the edge"));
}

TEST_F(LintGraphs, AnInputWhoseFixedValueIsExportedIsTold)
{
    TSoundEffect effect(App, true);
    const TSampleNode bounce = effect.Effect.Add("Random Value");
    bounce.Wire("Value", *effect.Plane, "Bounce");
    const TFindingList findings = WithoutConversions(Lint(effect));
    EXPECT_ONLY("console.fixed", findings);
    EXPECT_EQ(FS_NOTE, findings[0].Severity);
    EXPECT_STREQ("Collision Plane", findings[0].Place.Node.Print());
    EXPECT_TRUE(Mentions(findings[0], "\"Bounce\""));
}

TEST_F(LintGraphs, AValueOfBirthThatAllShareInThePreviewIsTold)
{
    TSoundEffect effect(App);
    // What reads the velocity at birth alone makes it a value of birth, for gravity too.
    const TSampleNode sum = effect.Effect.Add("Add");
    effect.Cone.Wire("Velocity", sum, "B");
    const TFindingList findings = Lint(effect);
    const TIds expected = {"graph.unused", "console.birth"};
    ASSERT_EQ(expected, IdsOf(findings)) << MessagesOf(findings);
    EXPECT_EQ(FS_NOTE, findings[1].Severity);
    EXPECT_STREQ("Velocity Cone", findings[1].Place.Node.Print());
}

TEST_F(LintGraphs, AnEventIsToldAsTheConsolesOwn)
{
    TSoundEffect effect(App);
    const TSampleNode event = effect.Effect.Add("Event Trigger");
    effect.Trigger.Wire("Count", event, "Trigger");
    const TFindingList findings = Lint(effect);
    EXPECT_ONLY("console.event", findings);
}

TEST_F(LintGraphs, TheEndOfAnEffectIsTheConsolesAlone)
{
    TSoundEffect effect(App);
    const TSampleNode root = effect.Effect.Add("Effect");
    EXPECT_TRUE(Lint(effect).empty());
    root.Switch("Max Life Time", true);
    const TFindingList findings = Lint(effect);
    EXPECT_ONLY("console.life", findings);
}

TEST_F(LintGraphs, ASumOfTwoTypesIsAnotherOnTheConsole)
{
    TSoundEffect effect(App);
    const TSampleNode sum = effect.Effect.Add("Add");
    const TSampleNode stage =
        effect.Effect.Add("Sprite Render Stage").Texture("Texture", "spark.dds").Priority(9);
    effect.Integrate.Wire("Position", sum, "A");
    effect.Gravity.Wire("Velocity", sum, "B");
    sum.Wire("Sum", stage, "Transform");
    const TFindingList findings = WithoutConversions(Lint(effect));
    EXPECT_ONLY("console.sum", findings);
    EXPECT_EQ(FS_NOTE, findings[0].Severity);
    EXPECT_STREQ("TAdd", findings[0].Place.Type.Print());
}

TEST_F(LintGraphs, SeveralNodesThatEndParticlesAreTold)
{
    TSoundEffect effect(App, true);
    const TSampleNode end = effect.Effect.Add("Prune");
    effect.Plane->Wire("Collision", end, "Kill");
    const TFindingList findings = WithoutConversions(Lint(effect));
    EXPECT_ONLY("console.ends", findings);
    EXPECT_EQ(2, NumberOf(findings[0], "nodes"));
}

TEST_F(LintGraphs, AGroupThatRunsAheadOfItsParentIsTold)
{
    TSoundEffect effect(App);
    effect.Type(effect.Stage).SetRenderPriority(9);
    const TSampleNode flash = effect.Effect.Add("Point Emitter").Int("Particle Count", 4000);
    const TSampleNode age = effect.Effect.Add("Age").Set("Max Age", {1});
    const TSampleNode colours = effect.Effect.Add("Colour Over Life").Set("Life", {1});
    const TSampleNode stage =
        effect.Effect.Add("Sprite Render Stage").Texture("Texture", "spark.dds").Priority(0);
    const TSampleNode length = effect.Effect.Add("Select Component").Choose("Component", "Length");
    effect.Gravity.Wire("Velocity", length, "Vector");
    length.Wire("Value", flash, "Emission Trigger");
    flash.Wire("Start Transform", stage, "Transform");
    age.Wire("Age", colours, "Time");
    colours.Wire("Value", stage, "Colour");
    const TIds ids = IdsOf(Lint(effect));
    EXPECT_EQ(1, std::count(ids.begin(), ids.end(), "console.order"));
}

TEST_F(LintGraphs, NoGraphThatCanBeBuiltEndsALint)
{
    Options.Seconds = 0.4f;
    Options.NumSeeds = 1;
    Options.SuggestBoxes = true;
    Options.TellBudgets = true;
    for (uint32_t seed = 1; seed <= 60; ++seed) {
        TDocument document(App.Get());
        ASSERT_TRUE(document.New());
        TDice dice(seed);
        TRandomGraph(App.Get(), document, dice).Build(40);
        const TFindingList findings = Lint(*document.GetGraph());
        for (int i = 0; i < findings.size(); ++i) {
            EXPECT_FALSE(findings[i].Message.IsEmpty());
            EXPECT_EQ(nullptr, std::strchr(findings[i].Message.Print(), '\n')) << findings[i].Message.Print();
        }
    }
}
