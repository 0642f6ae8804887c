#include "documentfixture.h"

#include "particles/cindermill/graph/engine/effectexecnode.h"
#include "particles/cindermill/graph/operations/deletegraphnodeop.h"
#include "particles/effectgraph/export/efxfile.h"

#include <filesystem>

TEST_F(Document, AStructuralEditRebuildsARunningEngineOnly)
{
    TFakeHost host;
    TDocument document(App.Get(), &host);
    document.New();
    BuildEffect(document);
    // The stage's texture was named when nothing was connected yet: an engine was tried, in vain.
    EXPECT_EQ(host.Schedules, 1);
    EXPECT_FALSE(document.GetSchedule().IsCreated());
    host.Schedules = 0;
    ASSERT_TRUE(document.EnsureSchedule());
    EXPECT_EQ(host.Schedules, 1);
    EXPECT_TRUE(document.EnsureSchedule());
    EXPECT_EQ(host.Schedules, 1);
    TErrorList errors;
    ASSERT_TRUE(document.UpdateEngine(0.02f, errors));
    EXPECT_GT(document.GetEngine().GetTime(), 0);
    SetTexture(document, Quads, "spark.dds");
    EXPECT_GT(document.GetEngine().GetTime(), 0);
    Connect(document, Emitter, "Time", Add(document, "Event Trigger"), "Trigger");
    EXPECT_EQ(host.Schedules, 2);
    EXPECT_EQ(document.GetEngine().GetTime(), 0);
    EXPECT_TRUE(document.GetEngine().IsInited());
}

TEST_F(Document, AnotherNumberOfGroupsRedrawsTheWindows)
{
    TFakeHost host;
    TDocument document(App.Get(), &host);
    document.New();
    BuildEffect(document);
    ASSERT_EQ(document.GetSchedule().GetNumGroups(), 0);
    host.Redraws = 0;
    document.RebuildSchedule(true);
    ASSERT_GT(document.GetSchedule().GetNumGroups(), 0);
    EXPECT_EQ(host.Redraws, 1);
    document.RebuildSchedule(true);
    EXPECT_EQ(host.Redraws, 1);
}

TEST_F(Document, AScheduleThatFailsAtLoadShowsNoDialogAndAfterAnEditItDoes)
{
    std::string path;
    {
        TDocument document(App.Get());
        document.New();
        Add(document, "Wind");
        path = Path("bad.effect");
        ASSERT_TRUE(document.SaveAs(path.c_str()));
    }
    TDocument document(App.Get());
    ASSERT_TRUE(document.Load(path.c_str()));
    EXPECT_FALSE(document.GetEngine().IsInited());
    EXPECT_TRUE(TForms::Get().Errors.empty());

    TDocument good(App.Get());
    ASSERT_TRUE(good.Load(EffectFile("good.effect").c_str()));
    vector<TToolNode*> nodes;
    nodes.push_back(static_cast<TToolNode*>(good.GetGraph()->GetNode(1)));
    good.ApplyOperation(new TDeleteGraphNodeOp(nodes));
    EXPECT_EQ(
        TForms::Get().Errors,
        TNames{"Schedule errors|No emitters in graph. Graph must contain an emitter to produce new particle "
               "data"});
    EXPECT_FALSE(good.GetEngine().IsInited());
    // Without an engine nothing is rebuilt, and nothing shown, until it is asked for.
    good.Undo();
    EXPECT_EQ(TForms::Get().Errors.size(), 1u);
    EXPECT_FALSE(good.GetEngine().IsInited());
    EXPECT_TRUE(good.EnsureSchedule());
    EXPECT_TRUE(good.GetEngine().IsInited());
}

TEST_F(Document, AFileGivenToAnEffectThatDoesNotRunForWantOfItStartsIt)
{
    App.Get().GetSettings().SetResourceMode(RM_FULLPATH);
    App.Get().GetResourceLocator().ReadSettings();
    TFakeHost host;
    TDocument document(App.Get(), &host);
    document.New();
    BuildEffect(document);
    SetTexture(document, Quads, "later.dds");
    EXPECT_FALSE(document.EnsureSchedule());
    ASSERT_FALSE(document.GetEngine().IsInited());
    TForms::Get().Errors.clear();
    SetTexture(document, Quads, "also missing.dds");
    EXPECT_FALSE(document.GetEngine().IsInited());
    // What is still missing is not told by a dialog.
    EXPECT_TRUE(TForms::Get().Errors.empty());
    SetTexture(document, Quads, "spark.dds");
    EXPECT_TRUE(document.GetEngine().IsInited());
    EXPECT_TRUE(host.HasSeenEngine);
    // While it runs, another name leaves it running.
    TErrorList errors;
    ASSERT_TRUE(document.UpdateEngine(0.02f, errors));
    SetTexture(document, Quads, "other.dds");
    EXPECT_GT(document.GetEngine().GetTime(), 0);
    document.Undo();
    EXPECT_GT(document.GetEngine().GetTime(), 0);
    // Undone and redone names count as given ones.
    document.ClearEngine();
    document.Undo();
    EXPECT_FALSE(document.GetEngine().IsInited());
    document.Redo();
    EXPECT_TRUE(document.GetEngine().IsInited());
    document.ClearEngine();
    document.Redo();
    EXPECT_FALSE(document.GetEngine().IsInited());
    document.Undo();
    EXPECT_TRUE(document.GetEngine().IsInited());
}

TEST_F(Document, AScheduleStandsThoughTheTextureIsMissingAndFollowsTheGraph)
{
    std::string path;
    {
        TDocument document(App.Get());
        document.New();
        BuildEffect(document);
        SetTexture(document, Quads, "later.dds");
        path = Path("missing.effect");
        ASSERT_TRUE(document.SaveAs(path.c_str()));
    }
    // No search of the whole disc.
    App.Get().GetSettings().SetResourceMode(RM_FULLPATH);
    App.Get().GetResourceLocator().ReadSettings();
    TFakeHost host;
    TDocument document(App.Get(), &host);
    ASSERT_TRUE(document.Load(path.c_str()));
    EXPECT_FALSE(document.GetEngine().IsInited());
    ASSERT_TRUE(document.GetSchedule().IsCreated());
    EXPECT_EQ(document.GetSchedule().GetNumGroups(), 2);
    EXPECT_EQ(document.GetSchedule().GetNumNodes(), 3);
    EXPECT_TRUE(TForms::Get().Errors.empty());
    // An edit that takes nodes out: the schedule must not go on naming them, and still nothing is shown.
    host.Schedules = 0;
    TToolNode* emitter = static_cast<TToolNode*>(document.GetGraph()->GetNode(0));
    Connect(document, emitter, "Time", Add(document, "Event Trigger"), "Trigger");
    EXPECT_EQ(document.GetSchedule().GetNumNodes(), 4);
    EXPECT_EQ(host.Schedules, 1);
    vector<TToolNode*> nodes;
    nodes.push_back(static_cast<TToolNode*>(document.GetGraph()->GetNode(3)));
    document.ApplyOperation(new TDeleteGraphNodeOp(nodes));
    EXPECT_EQ(document.GetSchedule().GetNumNodes(), 3);
    for (int i = 0; i < 3; ++i)
        document.Undo();
    EXPECT_EQ(document.GetSchedule().GetNumNodes(), 3);
    EXPECT_FALSE(document.GetEngine().IsInited());
    EXPECT_TRUE(TForms::Get().Errors.empty());
    // With the file that was named before, the effect runs again.
    document.Undo();
    EXPECT_TRUE(document.GetEngine().IsInited());
    while (document.CanUndo())
        document.Undo();
    EXPECT_FALSE(document.GetSchedule().IsCreated());
    EXPECT_EQ(document.GetSchedule().GetNumNodes(), 0);
    EXPECT_FALSE(document.GetEngine().IsInited());
    while (document.CanRedo())
        document.Redo();
    // A schedule is no engine: it is tried again.
    EXPECT_FALSE(document.EnsureSchedule());
    EXPECT_FALSE(document.Export(Path("out.efx").c_str()));
    std::filesystem::copy_file(Path("resources/spark.dds"), Path("resources/later.dds"));
    EXPECT_TRUE(document.EnsureSchedule());
    EXPECT_TRUE(document.Export(Path("out.efx").c_str()));
}

TEST_F(Document, EnsureScheduleShowsWhatIsWrong)
{
    TDocument document(App.Get());
    document.New();
    EXPECT_FALSE(document.EnsureSchedule());
    EXPECT_EQ(TForms::Get().Errors, TNames{"Schedule errors|Graph contains no nodes"});
    BuildEffect(document);
    EXPECT_TRUE(document.EnsureSchedule());
    EXPECT_TRUE(document.EnsureSchedule());
    EXPECT_EQ(TForms::Get().Errors.size(), 1u);
}

TEST_F(Document, EnsureScheduleTriesAgainWhatHadNoEngine)
{
    TDocument document(App.Get());
    document.New();
    BuildEffect(document);
    SetTexture(document, Quads, "later.dds");
    // No search of the whole disc.
    App.Get().GetSettings().SetResourceMode(RM_FULLPATH);
    App.Get().GetResourceLocator().ReadSettings();
    EXPECT_FALSE(document.EnsureSchedule());
    EXPECT_TRUE(document.GetSchedule().IsCreated());
    EXPECT_FALSE(document.EnsureSchedule());
    std::filesystem::copy_file(Path("resources/spark.dds"), Path("resources/later.dds"));
    EXPECT_TRUE(document.EnsureSchedule());
    EXPECT_TRUE(document.GetEngine().IsInited());
}

TEST_F(Document, AFailedAssertionInTheScheduleComesBackAsAnError)
{
    TDocument document(App.Get());
    document.New();
    TToolNode* points = Add(document, "Point Emitter");
    TToolNode* quads = Add(document, "Quad Render Stage");
    Connect(document, points, "Start Transform", quads, "Transform");
    TErrorList errors;
    EXPECT_FALSE(document.CreateSchedule(errors));
    ASSERT_EQ(errors.size(), 1);
    EXPECT_EQ(Text((*errors.begin())->GetMessage()), "j < groups.size()");
    EXPECT_FALSE(document.GetSchedule().IsCreated());
    EXPECT_EQ(document.GetSchedule().GetNumGroups(), 0);
    EXPECT_FALSE(document.EnsureSchedule());
    EXPECT_EQ(TForms::Get().Errors, TNames{"Schedule errors|j < groups.size()"});
    EXPECT_EQ(document.BatchExport(Path("out.efx").c_str(), errors), BR_SCHEDULEFAILED);
    TString report;
    document.GetReport(report);
    EXPECT_NE(Text(report).find("Graph does not create valid schedule\r\n"), std::string::npos);
}

namespace {

// Fails its assertions when told so.
class TFaultyNode : public TRegistered<TFaultyNode, TEffectExecNode>
{
public:
    static constexpr const char* RegisteredName = "TDocumentTestFaultyNode";
    static int Register()
    {
        static const int id = TFaultyNode::ClassId();
        return id;
    }
    bool Init(TErrorList&) override
    {
        ASSERT_TEXT(FailsIn != 'i', "Init of a faulty node");
        return true;
    }
    void Execute(int, float) override { ASSERT_TEXT(FailsIn != 'x', "Execute of a faulty node"); }
    void Export(TExportData&, TErrorList&) override
    {
        ASSERT_TEXT(FailsIn != 'e', "Export of a faulty node");
    }

    static char FailsIn;
};

char TFaultyNode::FailsIn = 0;

// Resets the fault, and gives a type of the class.
struct TFaulty
{
    explicit TFaulty(TTestApp& app) : Type(app.Type("Constant").Clone())
    {
        TFaultyNode::Register();
        TFaultyNode::FailsIn = 0;
        Type->ClassName = "TDocumentTestFaultyNode";
    }
    std::unique_ptr<TNodeType> Type;
};

} // namespace

TEST_F(Document, AFailedAssertionInTheEngineClearsIt)
{
    const TFaulty faulty(App);
    TDocument document(App.Get());
    document.New();
    BuildEffect(document);
    Add(document, *faulty.Type);
    TFaultyNode::FailsIn = 'i';
    EXPECT_FALSE(document.EnsureSchedule());
    EXPECT_EQ(TForms::Get().Errors, TNames{"Schedule errors|Init of a faulty node"});
    EXPECT_FALSE(document.GetEngine().IsInited());
    TFaultyNode::FailsIn = 0;
    document.RebuildSchedule(false);
    ASSERT_TRUE(document.GetEngine().IsInited());
    TErrorList errors;
    EXPECT_TRUE(document.UpdateEngine(0.02f, errors));
    TFaultyNode::FailsIn = 'x';
    EXPECT_FALSE(document.UpdateEngine(0.02f, errors));
    ASSERT_EQ(errors.size(), 1);
    EXPECT_EQ(Text((*errors.begin())->GetMessage()), "Execute of a faulty node");
    // The preview is empty until the next rebuild.
    EXPECT_FALSE(document.GetEngine().IsInited());
    EXPECT_TRUE(document.UpdateEngine(0.02f, errors));
    TFaultyNode::FailsIn = 0;
    document.RebuildSchedule(false);
    EXPECT_TRUE(document.GetEngine().IsInited());
}

namespace {

// A running engine, and windows that hear of it. The host sees to it that the engine still stands when it is
// told that it goes.
class DocumentEngine : public Document
{
protected:
    void SetUp() override
    {
        Effect.New();
        BuildEffect(Effect);
        Add(Effect, *Faulty.Type);
        ASSERT_TRUE(Effect.EnsureSchedule());
    }
    void ExpectGone(int times) { EXPECT_EQ(Host.GoneEngines, times); }
    void ExpectSeen()
    {
        EXPECT_TRUE(Effect.GetEngine().IsInited());
        EXPECT_TRUE(Host.HasSeenEngine);
    }
    void ExpectNone()
    {
        EXPECT_FALSE(Effect.GetEngine().IsInited());
        EXPECT_FALSE(Host.HasSeenEngine);
    }
    void FailInAFrame()
    {
        TErrorList errors;
        TFaultyNode::FailsIn = 'x';
        EXPECT_FALSE(Effect.UpdateEngine(0.02f, errors));
        TFaultyNode::FailsIn = 0;
    }

    TFaulty Faulty{App};
    TFakeHost Host;
    TDocument Effect{App.Get(), &Host};
    TString Report;
};

} // namespace

TEST_F(DocumentEngine, IsSeenWhenItIsFirstDemanded)
{
    ExpectGone(0);
    ExpectSeen();
}

TEST_F(DocumentEngine, GoesAndComesWithAnUpdate)
{
    Effect.RebuildSchedule(true);
    ExpectGone(1);
    ExpectSeen();
}

TEST_F(DocumentEngine, GoesWithAFaultInAFrame)
{
    FailInAFrame();
    ExpectGone(1);
    ExpectNone();
}

TEST_F(DocumentEngine, IsStartedByAReport)
{
    FailInAFrame();
    Effect.GetReport(Report);
    ExpectGone(1);
    ExpectSeen();
}

TEST_F(DocumentEngine, GoesAndComesWithAReportOfAGraphThatHasANodeMore)
{
    Add(Effect, "Wind");
    Effect.GetReport(Report);
    ExpectGone(1);
    ExpectSeen();
}

TEST_F(DocumentEngine, IsLeftAloneByAReportOfTheGraphThatItRuns)
{
    Effect.GetReport(Report);
    ExpectGone(0);
    ExpectSeen();
}

TEST_F(DocumentEngine, GoesOnceHoweverOftenAnUpdateMakesNoOtherAndComesWhenItIsMended)
{
    TFaultyNode::FailsIn = 'i';
    Effect.RebuildSchedule(true);
    ExpectGone(1);
    ExpectNone();
    Effect.RebuildSchedule(true);
    ExpectGone(1);
    TFaultyNode::FailsIn = 0;
    ASSERT_TRUE(Effect.EnsureSchedule());
    ExpectGone(1);
    ExpectSeen();
}

TEST_F(DocumentEngine, GoesWithTheScheduleWhenTypesCannotBeSettled)
{
    const std::unique_ptr<TNodeType> lost(App.Type("Random Value").Clone());
    lost->GetInput(0)->Name = "Lost";
    TToolNode* random = Add(Effect, *lost);
    TToolNode* wind = Add(Effect, "Wind");
    const int schedules = Host.Schedules;
    Connect(Effect, random, "Value", wind, "Strength");
    ExpectGone(1);
    ExpectNone();
    EXPECT_GT(Host.Schedules, schedules) << "the schedule has gone, too";
}

TEST_F(Document, TheWindowsHearThatAScheduleWithoutAnEngineHasGone)
{
    TFakeHost host;
    TDocument document(App.Get(), &host);
    document.New();
    BuildEffect(document);
    SetTexture(document, Quads, "");
    EXPECT_FALSE(document.EnsureSchedule());
    ASSERT_TRUE(document.GetSchedule().IsCreated());
    const int schedules = host.Schedules;
    vector<TToolNode*> nodes;
    nodes.push_back(Points);
    document.ApplyOperation(new TDeleteGraphNodeOp(nodes));
    EXPECT_FALSE(document.GetSchedule().IsCreated());
    EXPECT_EQ(host.Schedules, schedules + 1);
    EXPECT_EQ(host.GoneEngines, 0);
}

TEST_F(Document, AFailedAssertionInTheExportLeavesNoFileAndTheOldOne)
{
    const TFaulty faulty(App);
    TDocument document(App.Get());
    document.New();
    BuildEffect(document);
    Add(document, *faulty.Type);
    ASSERT_TRUE(document.EnsureSchedule());
    WriteBytes(Path("out.efx"), "old");
    TFaultyNode::FailsIn = 'e';
    EXPECT_FALSE(document.Export(Path("out.efx").c_str()));
    EXPECT_EQ(TForms::Get().Errors, TNames{"Export errors|Export of a faulty node"});
    EXPECT_EQ(ReadBytes(Path("out.efx")), "old");
    TErrorList errors;
    EXPECT_EQ(document.BatchExport(Path("new.efx").c_str(), errors), BR_EXPORTFAILED);
    EXPECT_FALSE(std::filesystem::exists(Path("new.efx")));
    TString report;
    document.GetReport(report);
    EXPECT_NE(Text(report).find("Schedule does not create valid efx file\r\n"), std::string::npos);
    TFaultyNode::FailsIn = 0;
    EXPECT_TRUE(document.Export(Path("out.efx").c_str()));
    EXPECT_NE(ReadBytes(Path("out.efx")), "old");
}

TEST_F(Document, AnEffectThatNeedsTooManyRowsTellsHowManyAndWhere)
{
    TDocument document(App.Get());
    document.New();
    BuildEffect(document);
    // A colour that is a sum of many: all of them wait in rows of their own.
    TToolNode* sum = Add(document, "Random Value");
    for (int i = 0; i < 20; ++i) {
        TToolNode* add = Add(document, "Add");
        Connect(document, sum, i == 0 ? "Value" : "Sum", add, "A");
        Connect(document, Add(document, "Random Value"), "Value", add, "B");
        sum = add;
    }
    Connect(document, sum, "Sum", Quads, "Colour");
    TErrorList errors;
    EXPECT_EQ(document.BatchExport(Path("many.efx").c_str(), errors), BR_EXPORTFAILED);
    ASSERT_EQ(errors.size(), 1);
    const std::string text = Text((*errors.begin())->GetMessage());
    int group = -1;
    int rows = 0;
    EXPECT_EQ(
        std::sscanf(text.c_str(), "0 : Group %d needs %d rows at a time in its emission", &group, &rows), 2)
        << text;
    EXPECT_EQ(group, 1);
    // Twenty-one colours at a time.
    EXPECT_GE(rows, 21 * 4);
    EXPECT_NE(text.find("of which there are 64 at most"), std::string::npos) << text;
    EXPECT_FALSE(std::filesystem::exists(Path("many.efx")));
}

TEST_F(Document, TypesThatCannotBeSettledAreAnErrorAndNotTheEnd)
{
    // An input that follows one that is not there.
    const std::unique_ptr<TNodeType> type(App.Type("Random Value").Clone());
    TDocument document(App.Get());
    document.New();
    BuildEffect(document);
    ASSERT_TRUE(document.EnsureSchedule());
    type->GetInput(0)->Name = "Lost";
    TToolNode* random = Add(document, *type);
    EXPECT_TRUE(TForms::Get().Errors.empty());
    Connect(document, random, "Value", Add(document, "Wind"), "Strength");
    EXPECT_EQ(TForms::Get().Errors, TNames{"Schedule errors|i < node->GetNodeType()->GetNumInputs()"});
    EXPECT_FALSE(document.GetEngine().IsInited());
    document.Undo();
    document.Undo();
    document.Undo();
    EXPECT_TRUE(document.EnsureSchedule());
}

TEST_F(Document, ExportWithoutAnEngineIsAnError)
{
    TDocument document(App.Get());
    document.New();
    BuildEffect(document);
    EXPECT_FALSE(document.Export(Path("out.efx").c_str()));
    EXPECT_EQ(TForms::Get().Errors, TNames{"Export errors|EffectExecSchedule.IsInited()"});
}

TEST_F(Document, ExportWritesTheFileAndShowsNothingWithoutWarnings)
{
    TDocument document(App.Get());
    document.New();
    BuildEffect(document);
    ASSERT_TRUE(document.EnsureSchedule());
    EXPECT_TRUE(document.Export(Path("out.efx").c_str()));
    EXPECT_TRUE(TForms::Get().Errors.empty());
    TEfxFile file;
    TString fault;
    EXPECT_TRUE(file.Load(Path("out.efx").c_str(), fault)) << fault.Print();
    EXPECT_FALSE(document.Export("/nowhere/at/all.efx"));
    EXPECT_EQ(TForms::Get().Errors.size(), 1u);
}
