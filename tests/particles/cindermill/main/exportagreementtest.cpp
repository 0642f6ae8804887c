#include "commandsfixture.h"
#include "support/sampledocument.h"

#include "particles/cindermill/graph/engine/particlebuffer.h"
#include "particles/cindermill/graph/engine/random.h"
#include "particles/cindermill/graph/operations/deletegraphnodeop.h"
#include "particles/cindermill/main/documentcomparison.h"
#include "particles/effectgraph/export/efxfile.h"

#include <cstdio>
#include <functional>

namespace {

std::vector<std::string> TextsOf(const vector<TVerdictLine>& lines)
{
    std::vector<std::string> result;
    for (const TVerdictLine& line : lines)
        result.push_back(Text(line.Text));
    return result;
}

std::string TextOf(const TExportAgreement& agreement)
{
    TString text;
    agreement.GetText(text);
    return text.Print();
}

// As an idle pass does, if it is due. True if there is something to tell.
bool RunOnce(TExportAgreement& agreement)
{
    if (agreement.IsDue())
        agreement.RunPass();
    return agreement.TakeChange();
}

void RunToTheEnd(TExportAgreement& agreement)
{
    while (agreement.IsRunning())
        RunOnce(agreement);
}

// As many parts as there are frames.
TAgreementLimits FrameByFrame()
{
    TAgreementLimits limits;
    limits.Pass = 0;
    return limits;
}

// A clock that goes on by a step whenever it is read.
uint64_t Time = 0;
uint64_t Step = 0;
constexpr uint64_t Millisecond = 1000000;
constexpr uint64_t Second = 1000 * Millisecond;

uint64_t ReadClock()
{
    return Time += Step;
}

TAgreementLimits FrameByFrameByTheClock()
{
    Time = Second;
    Step = 1;
    TAgreementLimits limits = FrameByFrame();
    limits.Clock = ReadClock;
    return limits;
}

// Of a comparison that goes on.
int CountFrames(const TExportAgreement& agreement)
{
    TString text;
    agreement.GetProgress(text);
    int count = -1;
    EXPECT_EQ(std::sscanf(text.Print(), "Comparing preview and export: frame %d of", &count), 1);
    return count;
}

// An edit that asks something in the middle.
class TAskingOp : public TAddGraphNodeOp
{
public:
    TAskingOp(TDocument& document, const TNodeType& type, std::function<void()> ask)
        : TAddGraphNodeOp(document, type, 10, 20), Ask(std::move(ask))
    {
    }
    void Do(TEditContext& document) override
    {
        TAddGraphNodeOp::Do(document);
        Ask();
    }

private:
    std::function<void()> Ask;
};

const TEffectNode* FindNode(TDocument& document, const char* name)
{
    for (int i = 0; i < document.GetGraph()->GetNumNodes(); ++i)
        if (document.GetGraph()->GetNode(i)->GetNodeType()->Name.Compare(name) == 0)
            return document.GetGraph()->GetNode(i);
    return nullptr;
}

class ExportAgreement : public Commands
{
protected:
    // A person's: in the application's list.
    TDocument& Open(const std::string& sample)
    {
        const std::filesystem::path folder = SourcePath("samples");
        std::filesystem::copy(folder / "textures", Path("resources"),
                              std::filesystem::copy_options::overwrite_existing |
                                  std::filesystem::copy_options::recursive);
        std::filesystem::copy(folder / "animations", Path("resources"),
                              std::filesystem::copy_options::overwrite_existing |
                                  std::filesystem::copy_options::recursive);
        EXPECT_TRUE(App.Get().OpenDocument((folder / (sample + ".effect")).c_str()));
        Activate(Newest());
        EXPECT_TRUE(Newest().EnsureSchedule());
        return Newest();
    }
    void Export(const std::string& leaf)
    {
        Host.Choice = Path(leaf);
        App.Get().OnMenu(MI_EXPORT);
        ASSERT_TRUE(FileExists(Path(leaf).c_str()));
    }
    // As idle passes do.
    void Idle(TDocument& document)
    {
        do
            App.Get().OnIdle();
        while (document.GetAgreement().IsRunning());
    }
    // A bit of what a stage is drawn with.
    static void SpoilFile(const std::string& path)
    {
        TEfxFile file;
        TString fault;
        ASSERT_TRUE(file.Load(path.c_str(), fault)) << fault.Print();
        std::string bytes = ReadBytes(path);
        const size_t start = bytes.size() - file.GetImageSize();
        for (const TEfxGroup& group : file.GetGroups()) {
            for (const TEfxStage& stage : group.Stages) {
                if (stage.State.Size == 0)
                    continue;
                bytes[start + stage.State.Offset] ^= 1;
                WriteBytes(path, bytes);
                return;
            }
        }
        FAIL() << "nothing to spoil";
    }
};

} // namespace

TEST_F(ExportAgreement, InPartsItComesToTheSameAsAtOnce)
{
    for (const char* name : {"fountain", "fireflies", "leaves", "comet", "campfire"}) {
        SCOPED_TRACE(name);
        TDocument& document = Open(name);
        TDocumentComparison comparison(App.Get(), document);
        TErrorList errors;
        TRandomRun draws;
        draws.Restart(TReplayOptions().Seed);
        draws.Enter();
        const bool done = comparison.Run(TReplayOptions(), errors);
        draws.Leave();
        ASSERT_TRUE(done);
        const TReplayVerdict whole(document.GetSchedule(), comparison.GetReport(),
                                   comparison.GetReport().NumFrames);
        TExportAgreement& agreement = document.GetAgreement();
        agreement.SetLimits(FrameByFrame());
        agreement.Begin();
        int parts = 0;
        for (; agreement.IsRunning(); ++parts) {
            RunOnce(agreement);
            // What the preview does meanwhile changes nothing.
            document.UpdateEngine(0.02f, errors);
        }
        ASSERT_TRUE(agreement.IsKnown()) << TextOf(agreement);
        EXPECT_GE(parts, comparison.GetReport().NumFrames);
        const TReplayVerdict& verdict = agreement.GetVerdict();
        EXPECT_EQ(Text(verdict.GetSummary().Text), Text(whole.GetSummary().Text));
        EXPECT_EQ(verdict.GetDifferences().size(), comparison.GetReport().GetDifferences().size());
        EXPECT_EQ(TextsOf(verdict.GetDifferences()), TextsOf(whole.GetDifferences()));
        EXPECT_EQ(TextsOf(verdict.GetReasons()), TextsOf(whole.GetReasons()));
        EXPECT_EQ(TextsOf(verdict.GetNotes()), TextsOf(whole.GetNotes()));
        EXPECT_EQ(verdict.GetFirstNode(), whole.GetFirstNode());
    }
}

// Each difference has its node and its reason looked for in a pass of its own where there is time for no
// more.
TEST_F(ExportAgreement, ItsEndComesInPartsToo)
{
    TDocument& document = Open("fireflies");
    TExportAgreement& agreement = document.GetAgreement();
    agreement.SetLimits(FrameByFrame());
    agreement.Begin();
    TString progress;
    agreement.GetProgress(progress);
    const int frames = std::atoi(Text(progress).substr(Text(progress).rfind(' ')).c_str());
    ASSERT_GT(frames, 0);
    while (CountFrames(agreement) < frames)
        RunOnce(agreement);
    int passes = 0;
    while (agreement.IsRunning()) {
        EXPECT_EQ(CountFrames(agreement), frames);
        EXPECT_FALSE(agreement.IsKnown());
        passes += agreement.IsDue() ? 1 : 0;
        RunOnce(agreement);
    }
    ASSERT_TRUE(agreement.IsKnown());
    const TReplayVerdict& verdict = agreement.GetVerdict();
    EXPECT_GT(verdict.GetNumDifferences(), 1);
    EXPECT_GE(passes, 2 * verdict.GetNumDifferences() + verdict.GetNotes().size());
}

TEST_F(ExportAgreement, AnEditAtItsEndDropsIt)
{
    TDocument& document = Open("fireflies");
    TExportAgreement& agreement = document.GetAgreement();
    agreement.SetLimits(FrameByFrame());
    for (int more = 0; more < 40; more += 3) {
        agreement.Begin();
        TString progress;
        agreement.GetProgress(progress);
        const int frames = std::atoi(Text(progress).substr(Text(progress).rfind(' ')).c_str());
        while (CountFrames(agreement) < frames)
            RunOnce(agreement);
        for (int i = 0; i < more && agreement.IsRunning(); ++i)
            agreement.RunPass();
        agreement.Drop();
        EXPECT_FALSE(agreement.IsBegun());
    }
    agreement.Begin();
    RunToTheEnd(agreement);
    EXPECT_EQ(agreement.GetVerdict().GetFirstNode(), FindNode(document, "Noise"));
}

TEST_F(ExportAgreement, AnEffectThatAgreesIsToldToDoSo)
{
    TDocument& document = Open("fountain");
    TExportAgreement& agreement = document.GetAgreement();
    EXPECT_FALSE(agreement.IsBegun());
    agreement.Begin();
    RunToTheEnd(agreement);
    ASSERT_TRUE(agreement.IsKnown()) << TextOf(agreement);
    EXPECT_TRUE(agreement.GetVerdict().GetDifferences().empty());
    EXPECT_EQ(agreement.GetVerdict().GetFirstNode(), nullptr);
    EXPECT_EQ(Text(agreement.GetVerdict().GetHeadline().Text), "Preview and export agree");
    EXPECT_EQ(agreement.GetVerdict().GetHeadline().Kind, VK_AGREES);
    EXPECT_TRUE(agreement.GetVerdict().GetReasons().empty());
    // It is only asked for, and nothing was exported: nothing stays in sight.
    EXPECT_TRUE(agreement.GetLines().empty());
}

TEST_F(ExportAgreement, WhatTheConsoleDoesNotKnowIsAReasonThatIsTold)
{
    TDocument& document = Open("fireflies");
    TExportAgreement& agreement = document.GetAgreement();
    agreement.Begin();
    RunToTheEnd(agreement);
    ASSERT_TRUE(agreement.IsKnown()) << TextOf(agreement);
    const TReplayVerdict& verdict = agreement.GetVerdict();
    EXPECT_GT(verdict.GetDifferences().size(), 1);
    EXPECT_EQ(verdict.GetFirstNode(), FindNode(document, "Noise"));
    TString headline;
    headline.Format("%d differences between preview and export for known reasons, the first at Noise",
                    verdict.GetDifferences().size());
    EXPECT_EQ(Text(verdict.GetHeadline().Text), headline.Print());
    ASSERT_EQ(verdict.GetReasons().size(), 1);
    EXPECT_EQ(Text(verdict.GetReasons()[0].Text),
              "Noise in group 2: it is not exported, as the console has no command for it");
    EXPECT_EQ(verdict.GetReasons()[0].Node, verdict.GetFirstNode());
    for (const TVerdictLine& line : verdict.GetDifferences())
        EXPECT_EQ(line.Kind, VK_TOLD);
}

TEST_F(ExportAgreement, AFileThatDoesSomethingElseIsToldApartFromWhatIsKnown)
{
    for (const char* name : {"fountain", "fireflies"}) {
        SCOPED_TRACE(name);
        TDocument& document = Open(name);
        const std::string file = Path(std::string(name) + ".efx");
        Export(std::string(name) + ".efx");
        ASSERT_NO_FATAL_FAILURE(SpoilFile(file));
        TExportAgreement& agreement = document.GetAgreement();
        agreement.BeginForFile(file.c_str(), "Exported");
        RunToTheEnd(agreement);
        ASSERT_TRUE(agreement.IsKnown()) << TextOf(agreement);
        const TReplayVerdict& verdict = agreement.GetVerdict();
        ASSERT_FALSE(verdict.GetDifferences().empty());
        EXPECT_EQ(verdict.GetDifferences()[0].Kind, VK_DIFFERS);
        for (int i = 1; i < verdict.GetDifferences().size(); ++i)
            EXPECT_EQ(verdict.GetDifferences()[i].Kind, VK_TOLD);
        EXPECT_EQ(verdict.GetHeadline().Kind, VK_DIFFERS);
        const bool isMixed = verdict.GetDifferences().size() > 1;
        EXPECT_EQ(isMixed, std::string(name) == "fireflies");
        EXPECT_EQ(Text(verdict.GetHeadline().Text).find(", 1 of them for no known reason") !=
                      std::string::npos,
                  isMixed)
            << verdict.GetHeadline().Text.Print();
        ASSERT_FALSE(agreement.GetLines().empty());
        EXPECT_EQ(Text(agreement.GetLines()[0].Text), Text(verdict.GetSummary().Text));
        EXPECT_EQ(agreement.GetLines().size(), 1 + verdict.GetReasons().size());
    }
}

TEST_F(ExportAgreement, AnEditInBetweenEndsIt)
{
    TDocument& document = Open("fireflies");
    TExportAgreement& agreement = document.GetAgreement();
    agreement.SetLimits(FrameByFrame());
    const auto begin = [&] {
        agreement.Begin();
        for (int i = 0; i < 5; ++i)
            RunOnce(agreement);
        EXPECT_TRUE(agreement.IsRunning());
        EXPECT_FALSE(RunOnce(agreement));
    };
    const auto expectDropped = [&] {
        EXPECT_FALSE(agreement.IsBegun());
        EXPECT_EQ(agreement.GetVerdict().GetFirstNode(), nullptr);
        // Once.
        EXPECT_TRUE(RunOnce(agreement));
        EXPECT_FALSE(RunOnce(agreement));
    };
    begin();
    vector<TToolNode*> nodes;
    nodes.push_back(static_cast<TToolNode*>(const_cast<TEffectNode*>(FindNode(document, "Noise"))));
    document.ApplyOperation(new TDeleteGraphNodeOp(nodes));
    expectDropped();
    ASSERT_TRUE(document.EnsureSchedule());
    begin();
    document.Undo();
    expectDropped();
    begin();
    document.Redo();
    expectDropped();
    // Without the noise nothing differs.
    ASSERT_TRUE(document.EnsureSchedule());
    agreement.Begin();
    RunToTheEnd(agreement);
    EXPECT_EQ(Text(agreement.GetVerdict().GetHeadline().Text), "Preview and export agree");
    // What is known goes as well.
    document.Undo();
    expectDropped();
}

TEST_F(ExportAgreement, ASelectionAndAScheduleMadeAnewEndNothing)
{
    TDocument& document = Open("fountain");
    TExportAgreement& agreement = document.GetAgreement();
    agreement.SetLimits(FrameByFrame());
    agreement.Begin();
    RunOnce(agreement);
    document.SelectNode(static_cast<TToolNode*>(document.GetGraph()->GetNode(0)), true);
    TString report;
    document.GetReport(report);
    document.RebuildSchedule(true);
    EXPECT_TRUE(agreement.IsRunning());
    RunToTheEnd(agreement);
    EXPECT_EQ(Text(agreement.GetVerdict().GetHeadline().Text), "Preview and export agree");
}

TEST_F(ExportAgreement, ADocumentMayCloseMeanwhile)
{
    TDocument& document = Open("fireflies");
    document.GetAgreement().SetLimits(FrameByFrame());
    document.GetAgreement().Begin();
    RunOnce(document.GetAgreement());
    App.Get().CloseDocument(&document);
    EXPECT_EQ(NumDocuments(), 0);
    App.Get().OnIdle();
}

TEST_F(ExportAgreement, WithoutTheExportedFileNothingIsCompared)
{
    TDocument& document = Open("fountain");
    TExportAgreement& agreement = document.GetAgreement();
    agreement.BeginForFile(Path("gone.efx").c_str(), "Exported");
    EXPECT_FALSE(agreement.IsRunning());
    EXPECT_FALSE(agreement.IsKnown());
    EXPECT_EQ(TextOf(agreement), "Preview and export were not compared: the exported file cannot be read");
}

TEST_F(ExportAgreement, TooLargeAnEffectIsNotComparedOrNotToItsEnd)
{
    TDocument& document = Open("fountain");
    TExportAgreement& agreement = document.GetAgreement();
    TAgreementLimits limits;
    limits.Values = 10;
    agreement.SetLimits(limits);
    agreement.Begin();
    EXPECT_FALSE(agreement.IsRunning());
    EXPECT_FALSE(agreement.IsKnown());
    EXPECT_EQ(TextOf(agreement),
              "Preview and export were not compared: the effect is too large to be compared here");
    limits = TAgreementLimits();
    limits.Whole = 0;
    agreement.SetLimits(limits);
    agreement.Begin();
    RunToTheEnd(agreement);
    ASSERT_TRUE(agreement.IsKnown());
    EXPECT_EQ(Text(agreement.GetVerdict().GetHeadline().Text).find("No difference in the first 1 of "), 0)
        << agreement.GetVerdict().GetHeadline().Text.Print();
}

TEST_F(ExportAgreement, SlowFramesInARowCutItShortWhichIsNotToAgree)
{
    TDocument& document = Open("fountain");
    Export("fountain.efx");
    TExportAgreement& agreement = document.GetAgreement();
    TAgreementLimits limits = FrameByFrameByTheClock();
    limits.SlowFrames = 3;
    agreement.SetLimits(limits);
    agreement.BeginForFile(Path("fountain.efx").c_str(), "Exported");
    TString progress;
    agreement.GetProgress(progress);
    const std::string number = Text(progress).substr(Text(progress).rfind(' ') + 1);
    // A fourth by itself does not count.
    for (const uint64_t milliseconds : {200, 200, 1, 200, 200, 200}) {
        ASSERT_TRUE(agreement.IsRunning());
        Step = milliseconds * Millisecond;
        Time += 10 * Second;
        RunOnce(agreement);
    }
    // What is left to do is no frame.
    EXPECT_EQ(CountFrames(agreement), 6);
    RunToTheEnd(agreement);
    ASSERT_TRUE(agreement.IsKnown());
    const TReplayVerdict& verdict = agreement.GetVerdict();
    EXPECT_EQ(verdict.GetHeadline().Kind, VK_CUTSHORT);
    EXPECT_EQ(Text(verdict.GetHeadline().Text), "No difference in the first 6 of " + number + " frames");
    ASSERT_EQ(agreement.GetLines().size(), 1);
    EXPECT_EQ(agreement.GetLines()[0].Kind, VK_CUTSHORT);
    EXPECT_EQ(Text(agreement.GetLines()[0].Text),
              "No difference in the first 6 of " + number + " frames: more would take too long here");
}

TEST_F(ExportAgreement, SlowFramesNowAndThenEndNothing)
{
    TDocument& document = Open("fountain");
    TExportAgreement& agreement = document.GetAgreement();
    TAgreementLimits limits = FrameByFrameByTheClock();
    limits.Whole = 1000 * Second;
    agreement.SetLimits(limits);
    agreement.Begin();
    for (int i = 0; agreement.IsRunning(); ++i) {
        Step = (i % limits.SlowFrames == 0 ? 1 : 700) * Millisecond;
        Time += 10 * Second;
        RunOnce(agreement);
    }
    EXPECT_EQ(Text(agreement.GetVerdict().GetHeadline().Text), "Preview and export agree");
    EXPECT_EQ(agreement.GetVerdict().GetHeadline().Kind, VK_AGREES);
}

TEST_F(ExportAgreement, ASlowFrameIsFollowedByALongerRest)
{
    TDocument& document = Open("fountain");
    TExportAgreement& agreement = document.GetAgreement();
    agreement.SetLimits(FrameByFrameByTheClock());
    const auto run = [&](uint64_t step, uint64_t rest) {
        agreement.Begin();
        Step = step;
        RunOnce(agreement);
        EXPECT_EQ(CountFrames(agreement), 1);
        Step = 1;
        Time += rest;
        RunOnce(agreement);
        return CountFrames(agreement) == 2;
    };
    // A pass reads the clock twice after its beginning.
    EXPECT_FALSE(run(Millisecond, Millisecond));
    EXPECT_TRUE(run(Millisecond, 3 * Millisecond));
    EXPECT_FALSE(run(40 * Millisecond, 200 * Millisecond));
    EXPECT_TRUE(run(40 * Millisecond, 400 * Millisecond));
}

TEST_F(ExportAgreement, SeveralDocumentsTakeTurnsAndComeToTheSameAsAlone)
{
    TDocument* documents[] = {&Open("fireflies"), &Open("waterfall")};
    std::vector<std::string> alone[2];
    for (int i = 0; i < 2; ++i) {
        documents[i]->GetAgreement().Begin();
        RunToTheEnd(documents[i]->GetAgreement());
        alone[i] = TextsOf(documents[i]->GetAgreement().GetVerdict().GetDifferences());
        ASSERT_GE(alone[i].size(), 1u);
    }
    const TAgreementLimits limits = FrameByFrameByTheClock();
    for (TDocument* document : documents) {
        document->GetAgreement().SetLimits(limits);
        document->GetAgreement().Begin();
    }
    int frames[2] = {0, 0};
    for (int pass = 1; pass <= 40; ++pass) {
        Time += Second;
        App.Get().OnIdle();
        int sum = 0;
        for (int i = 0; i < 2; ++i)
            sum += frames[i] = CountFrames(documents[i]->GetAgreement());
        ASSERT_EQ(sum, pass);
    }
    EXPECT_EQ(frames[0], 20);
    EXPECT_EQ(frames[1], 20);
    // What one has taken, the other rests too.
    Step = 50 * Millisecond;
    App.Get().OnIdle();
    Step = 1;
    App.Get().OnIdle();
    EXPECT_EQ(CountFrames(documents[0]->GetAgreement()) + CountFrames(documents[1]->GetAgreement()), 41);
    while (documents[0]->GetAgreement().IsRunning() || documents[1]->GetAgreement().IsRunning()) {
        Time += Second;
        App.Get().OnIdle();
    }
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(TextsOf(documents[i]->GetAgreement().GetVerdict().GetDifferences()), alone[i]);
}

// While an edit asks something, idle passes go on, and its document is half changed.
TEST_F(ExportAgreement, ADocumentInTheMiddleOfAnEditIsLeftAlone)
{
    TDocument& other = Open("fountain");
    TDocument& document = Open("fireflies");
    const TAgreementLimits limits = FrameByFrameByTheClock();
    for (TDocument* each : {&other, &document}) {
        each->GetAgreement().SetLimits(limits);
        each->GetAgreement().Begin();
        Time += Second;
        App.Get().OnIdle();
    }
    const int told = HostOf(document).NumAgreements;
    const int frames = CountFrames(other.GetAgreement());
    bool isAsked = false;
    document.ApplyOperation(new TAskingOp(document, App.Type("Age"), [&] {
        isAsked = true;
        ASSERT_TRUE(document.IsInStep());
        // Nothing touches a node, whoever begins it.
        document.GetAgreement().Begin();
        for (int i = 0; i < 5; ++i) {
            Time += Second;
            App.Get().OnIdle();
        }
        EXPECT_EQ(CountFrames(document.GetAgreement()), 0);
        EXPECT_EQ(HostOf(document).NumAgreements, told);
        EXPECT_EQ(CountFrames(other.GetAgreement()), frames + 5);
    }));
    ASSERT_TRUE(isAsked);
    App.Get().OnIdle();
    EXPECT_GT(HostOf(document).NumAgreements, told);
}

TEST_F(ExportAgreement, WhatThePreviewDrawsStaysAsItIs)
{
    TDocument& document = Open("fountain");
    const auto run = [&](bool compares) {
        TRandom::SetDefaultSeed(7);
        document.RebuildSchedule(true);
        std::vector<float> values;
        TErrorList errors;
        if (compares) {
            document.GetAgreement().SetLimits(FrameByFrame());
            document.GetAgreement().Begin();
        }
        for (int frame = 0; frame < 40; ++frame) {
            if (compares)
                RunOnce(document.GetAgreement());
            EXPECT_TRUE(document.UpdateEngine(0.02f, errors));
            const TEffectSchedule& schedule = document.GetSchedule();
            for (int group = 0; group < schedule.GetNumGroups(); ++group)
                for (int attrib = 0; attrib < schedule.GetNumAttributes(group); ++attrib)
                    document.GetEngine().GetGroup(group)->ForEachValue(
                        attrib, schedule.GetAttributeUsage(group, attrib), 0,
                        document.GetEngine().GetNumParticles(group),
                        [&](const float* value) { values.push_back(value[0]); });
        }
        return values;
    };
    const std::vector<float> alone = run(false);
    const std::vector<float> beside = run(true);
    TRandom::ClearDefaultSeed();
    EXPECT_TRUE(document.GetAgreement().IsRunning());
    EXPECT_GT(alone.size(), 1000u);
    EXPECT_EQ(alone, beside);
}

// The preview's switch is the preview's: the comparison has its births as the console has them.
TEST_F(ExportAgreement, BirthsOfThePreviewPlayNoPart)
{
    for (const bool apart : {false, true}) {
        TDocument& document = Open("burst");
        document.GetEngine().SetBirthsApart(apart);
        document.RebuildSchedule(true);
        Export(apart ? "apart.efx" : "together.efx");
        Idle(document);
        EXPECT_EQ(Text(document.GetAgreement().GetVerdict().GetHeadline().Text), "Preview and export agree");
        EXPECT_EQ(document.GetEngine().AreBirthsApart(), apart);
    }
    EXPECT_EQ(ReadBytes(Path("apart.efx")), ReadBytes(Path("together.efx")));
}

TEST_F(ExportAgreement, AnExportTellsItWhenItIsFound)
{
    TDocument& document = Open("fireflies");
    Export("fireflies.efx");
    ASSERT_FALSE(Host.Statuses.empty());
    const std::string exported = Host.Statuses.back();
    EXPECT_EQ(exported.find("Exported "), 0u);
    EXPECT_TRUE(document.GetAgreement().IsRunning());
    // A drag is left alone.
    Host.Drags = true;
    document.GetAgreement().SetLimits(FrameByFrame());
    for (int i = 0; i < 5; ++i)
        App.Get().OnIdle();
    EXPECT_EQ(HostOf(document).NumAgreements, 0);
    TString progress;
    document.GetAgreement().GetProgress(progress);
    EXPECT_EQ(Text(progress).find("Comparing preview and export: frame 0 of "), 0u);
    Host.Drags = false;
    document.GetAgreement().SetLimits(TAgreementLimits());
    Idle(document);
    EXPECT_GE(HostOf(document).NumAgreements, 1);
    const TReplayVerdict& verdict = document.GetAgreement().GetVerdict();
    EXPECT_EQ(Host.Statuses.back(), exported + ". " + Text(verdict.GetHeadline().Text));
    ASSERT_EQ(document.GetAgreement().GetLines().size(), 2);
    EXPECT_EQ(document.GetAgreement().GetLines()[0].Node, FindNode(document, "Noise"));
    EXPECT_EQ(document.GetAgreement().GetLines()[1].Kind, VK_TOLD);
    // Once: nothing is told of it later.
    const size_t told = Host.Statuses.size();
    App.Get().OnIdle();
    EXPECT_EQ(Host.Statuses.size(), told);
    EXPECT_FALSE(document.IsModified());
    EXPECT_FALSE(document.CanUndo());
}

TEST_F(ExportAgreement, WhatTheStatusBarTellsMeanwhileStays)
{
    TDocument& document = Open("fountain");
    Export("fountain.efx");
    Host.ShowStatus("Saved");
    Idle(document);
    ASSERT_TRUE(document.GetAgreement().IsKnown());
    EXPECT_EQ(Host.Statuses.back(), "Saved");
    EXPECT_EQ(document.GetAgreement().GetLines().size(), 1);
}

TEST_F(ExportAgreement, AnExportThatFailsTellsNothing)
{
    TDocument& document = Open("fountain");
    Host.Choice = "/proc/none/a.efx";
    App.Get().OnMenu(MI_EXPORT);
    EXPECT_FALSE(document.GetAgreement().IsBegun());
}

TEST_F(ExportAgreement, FilePropertiesBeginIt)
{
    TDocument& document = Open("fountain");
    App.Get().OnMenu(MI_PROPERTIES);
    EXPECT_TRUE(document.GetAgreement().IsRunning());
    const size_t told = Host.Statuses.size();
    Idle(document);
    TString text;
    document.GetAgreement().GetText(text);
    EXPECT_EQ(Text(text).find("Preview and export agree: "), 0u);
    EXPECT_EQ(Host.Statuses.size(), told);
    EXPECT_TRUE(document.GetAgreement().GetLines().empty());
    // It is known until the next edit.
    App.Get().OnMenu(MI_PROPERTIES);
    EXPECT_FALSE(document.GetAgreement().IsRunning());
    EXPECT_TRUE(document.GetAgreement().IsKnown());
}

TEST_F(ExportAgreement, FilePropertiesOfWhatCannotRunSayWhy)
{
    TDocument& document = New();
    App.Get().OnMenu(MI_PROPERTIES);
    TString text;
    document.GetAgreement().GetText(text);
    EXPECT_EQ(Text(text), "Preview and export were not compared: The effect has no schedule");
}

TEST_F(ExportAgreement, FilePropertiesTryAgainWhatCouldNotBeCompared)
{
    std::filesystem::create_directory(Path("own"));
    for (const char* folder : {"samples/textures", "samples/animations"})
        std::filesystem::copy(SourcePath(folder), Path("own"));
    std::filesystem::copy(SourcePath("samples/comet.effect"), Path("own"));
    App.Get().GetSettings().SetResourceMode(RM_FULLPATH);
    App.Get().GetResourceLocator().ReadSettings();
    App.Get().GetResourceLocator().AddSearchDirectory(Path("own").c_str());
    ASSERT_TRUE(App.Get().OpenDocument(Path("own/comet.effect").c_str()));
    Activate(Newest());
    TDocument& document = Newest();
    const std::string animation = Path("own/knot.vori");
    std::filesystem::rename(animation, animation + ".away");
    App.Get().OnMenu(MI_PROPERTIES);
    TString text;
    document.GetAgreement().GetText(text);
    EXPECT_EQ(Text(text).find("Preview and export were not compared: Could not resolve path for animation"),
              0u)
        << text.Print();
    std::filesystem::rename(animation + ".away", animation);
    // As Options do, without which this program without windows keeps in mind what it has not found.
    App.Get().GetResourceLocator().ForgetMissing();
    App.Get().OnMenu(MI_PROPERTIES);
    ASSERT_TRUE(document.GetAgreement().IsRunning()) << TextOf(document.GetAgreement());
    Idle(document);
    EXPECT_TRUE(document.GetAgreement().IsKnown());
}

TEST_F(ExportAgreement, WhyThereWasNoneIsOneLineAndNeverEmpty)
{
    EXPECT_EQ(Text(TellNotCompared("Node a\nb\r\n\tc")),
              "Preview and export were not compared: Node a b   c");
    EXPECT_EQ(Text(TellNotCompared("")), "Preview and export were not compared, and nothing tells why");
    EXPECT_EQ(Text(TellNotCompared(nullptr)), "Preview and export were not compared, and nothing tells why");
}
