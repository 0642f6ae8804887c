#include "support/randomgraph.h"
#include "support/dice.h"
#include "support/testapp.h"

#include "particles/cindermill/graph/operations/movegraphnodeop.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/effectgraph/export/efxfile.h"
#include "particles/effectgraph/export/exportdata.h"

#include <cstdlib>
#include <map>

namespace {

class RandomGraphs : public testing::Test
{
protected:
    // Calls the work with a document for each seed. The work tells of what it met by Count.
    template <class TWork>
    void ForEach(uint32_t usual, int edits, TWork&& work)
    {
        ForEachBuilt(
            usual, [edits](TRandomGraph& graph, uint32_t) { graph.Build(edits); }, work);
    }
    template <class TBuild, class TWork>
    void ForEachBuilt(uint32_t usual, TBuild&& build, TWork&& work)
    {
        const uint32_t count = Setting("CINDERMILL_RANDOM_GRAPHS", usual);
        const uint32_t first = Setting("CINDERMILL_RANDOM_SEED", 1);
        const TQuiet quiet;
        for (Seed = first; Seed < first + count; ++Seed) {
            SCOPED_TRACE("seed " + std::to_string(Seed));
            TellSeed();
            TDocument document(App.Get());
            ASSERT_TRUE(document.New());
            TDice dice(Seed);
            TRandomGraph graph(App.Get(), document, dice);
            build(graph, Seed);
            work(document);
            if (HasFatalFailure())
                return;
        }
    }
    // A soak that is ended by a sanitizer tells with its last line at which graph.
    void TellSeed() const
    {
        if (!IsSoak())
            return;
        std::printf("seed %u\n", Seed);
        std::fflush(stdout);
    }
    static bool IsSoak() { return std::getenv("CINDERMILL_RANDOM_GRAPHS") != nullptr; }
    void TearDown() override
    {
        if (!IsSoak())
            return;
        for (const auto& [what, count] : Counts)
            std::printf("%6d %s (first of seed %u)\n", count, what.c_str(), FirstSeeds[what]);
    }
    void Count(const std::string& what, int count = 1)
    {
        Counts[what] += count;
        FirstSeeds.emplace(what, Seed);
    }
    void CountErrors(const std::string& what, const TErrorList& errors)
    {
        TString text;
        if (!errors.empty())
            (*errors.begin())->GetText(text);
        Count(what + Text(text));
    }

    TTestApp App;
    uint32_t Seed = 0;
    std::map<std::string, int> Counts;
    std::map<std::string, uint32_t> FirstSeeds;
};

std::string SavedBytes(TDocument& document, const std::string& path)
{
    return document.SaveAs(path.c_str()) ? ReadBytes(path) : "";
}

void ExpectOrderRespectsEdges(const TDocument& document, const TEffectGraph& graph)
{
    std::map<const TEffectNode*, int> places;
    const TEffectSchedule& schedule = document.GetSchedule();
    for (int i = 0; i < schedule.GetNumNodes(); ++i)
        places[schedule.GetNode(i)] = i;
    EXPECT_EQ(static_cast<int>(places.size()), graph.GetNumNodes());
    for (int i = 0; i < graph.GetNumEdges(); ++i)
        EXPECT_LT(places[graph.GetEdge(i)->GetSrcNode()], places[graph.GetEdge(i)->GetDstNode()]);
}

void ExpectRowsBelow(const TEfxFile& file, const TEfxSpan& rows, int limit)
{
    for (uint32_t i = 0; i < rows.Size; ++i)
        EXPECT_LT(file.GetU8(rows.Offset + i), limit);
}

// One more than the machine has may be told, for the row that nothing else uses.
void ExpectMachineRows(const TEfxFile& file)
{
    for (const TEfxGroup& group : file.GetGroups())
        for (const TEfxPhase* phase : {&group.Emission, &group.Process}) {
            EXPECT_LE(phase->Rows, 65);
            for (const TEfxStream* stream : {&phase->Unpack, &phase->Execute, &phase->Pack})
                for (const TEfxCommand& command : stream->Commands) {
                    ExpectRowsBelow(file, command.Inputs, phase->Rows);
                    ExpectRowsBelow(file, command.Outputs, phase->Rows);
                    EXPECT_LE(command.Inputs.Size, 32u);
                    EXPECT_LE(command.Outputs.Size, 32u);
                }
        }
}

} // namespace

TEST_F(RandomGraphs, TheSameSeedGivesTheSameDocument)
{
    std::string saved[2];
    for (std::string& bytes : saved)
        ForEach(1, 60, [&](TDocument& document) { bytes = SavedBytes(document, App.Path("saved.effect")); });
    EXPECT_FALSE(saved[0].empty());
    EXPECT_EQ(saved[0], saved[1]);
}

TEST_F(RandomGraphs, SavedAndLoadedAreEqualByteForByte)
{
    ForEach(20, 60, [&](TDocument& document) {
        const std::string bytes = SavedBytes(document, App.Path("first.effect"));
        EXPECT_EQ(static_cast<int>(bytes.size()), document.GetChunks().GetFileSize());
        TDocument loaded(App.Get());
        ASSERT_TRUE(loaded.BatchLoad(App.Path("first.effect").c_str())) << loaded.GetLoadError().Print();
        EXPECT_EQ(bytes, SavedBytes(loaded, App.Path("second.effect")));
        EXPECT_TRUE(loaded.CheckLoaded()) << loaded.GetLoadError().Print();
    });
}

TEST_F(RandomGraphs, UndoOfEverythingLeavesAnEmptyGraph)
{
    ForEach(20, 60, [&](TDocument& document) {
        while (document.CanRedo())
            document.Redo();
        const int nodes = document.GetGraph()->GetNumNodes();
        const int edges = document.GetGraph()->GetNumEdges();
        while (document.CanUndo())
            document.Undo();
        EXPECT_EQ(document.GetGraph()->GetNumNodes(), 0);
        EXPECT_EQ(document.GetGraph()->GetNumEdges(), 0);
        EXPECT_FALSE(document.IsModified());
        while (document.CanRedo())
            document.Redo();
        EXPECT_EQ(document.GetGraph()->GetNumNodes(), nodes);
        EXPECT_EQ(document.GetGraph()->GetNumEdges(), edges);
    });
}

TEST_F(RandomGraphs, ALoadedHistoryWorksLikeTheOldOne)
{
    ForEach(20, 60, [&](TDocument& document) {
        SavedBytes(document, App.Path("first.effect"));
        TDocument loaded(App.Get());
        ASSERT_TRUE(loaded.Load(App.Path("first.effect").c_str())) << loaded.GetLoadError().Print();
        EXPECT_FALSE(loaded.IsModified());
        for (TDocument* each : {&document, &loaded}) {
            while (each->CanRedo())
                each->Redo();
            while (each->CanUndo())
                each->Undo();
            EXPECT_EQ(each->GetGraph()->GetNumNodes(), 0);
            EXPECT_EQ(each->GetGraph()->GetNumEdges(), 0);
        }
        // A new edit frees what the tail held.
        loaded.ApplyOperation(new TMoveGraphNodeOp(vector<TToolNode*>(), 1, 1));
        vector<TChunk*> nodes;
        loaded.GetChunks().GetChunksOfClass(TToolNode::NameID(), nodes);
        EXPECT_EQ(nodes.size(), 0);
    });
}

TEST_F(RandomGraphs, ScheduleOrderRespectsEdges)
{
    ForEach(20, 30, [&](TDocument& document) {
        TErrorList errors;
        if (!document.CreateSchedule(errors)) {
            CountErrors("schedule: ", errors);
            ASSERT_FALSE(errors.empty());
            return;
        }
        Count("schedules created");
        ExpectOrderRespectsEdges(document, *document.GetGraph());
    });
    EXPECT_GT(Counts["schedules created"], 0);
}

TEST_F(RandomGraphs, TheEngineRunsTwentyFrames)
{
    ForEach(20, 30, [&](TDocument& document) {
        TErrorList errors;
        if (!document.CreateSchedule(errors) || !document.InitEngine(errors, true)) {
            CountErrors("engine: ", errors);
            return;
        }
        for (int i = 0; i < 20; ++i)
            if (!document.UpdateEngine(0.02f, errors)) {
                CountErrors("update: ", errors);
                return;
            }
        Count("engines ran");
    });
    EXPECT_GT(Counts["engines ran"], 0);
}

TEST_F(RandomGraphs, ExportIsDeterministicSoundAndAsLongAsForetold)
{
    ForEach(20, 30, [&](TDocument& document) {
        const std::string paths[2] = {App.Path("first.efx"), App.Path("second.efx")};
        for (const std::string& path : paths) {
            TErrorList errors;
            const TBatchResult result = document.BatchExport(path.c_str(), errors);
            if (result != BR_DONE) {
                CountErrors(result == BR_EXPORTFAILED ? "export: " : "schedule: ", errors);
                return;
            }
        }
        Count("exported");
        const std::string bytes = ReadBytes(paths[0]);
        EXPECT_EQ(bytes, ReadBytes(paths[1]));
        TExportData data(document.GetSchedule());
        TErrorList errors;
        ASSERT_TRUE(document.GetEngine().Export(data, errors));
        EXPECT_EQ(static_cast<int>(bytes.size()), data.GetFileSize());
        TEfxFile file;
        TString fault;
        ASSERT_TRUE(file.Load(paths[0].c_str(), fault)) << fault.Print();
        ExpectMachineRows(file);
    });
    EXPECT_GT(Counts["exported"], 0);
}

// What a soak does with each of its graphs.
TEST_F(RandomGraphs, ScheduledRunForTwoHundredFramesAndExported)
{
    constexpr int frames = 200;
    const auto build = [](TRandomGraph& graph, uint32_t seed) {
        graph.AddSystem();
        graph.Build(static_cast<int>(seed % 30));
    };
    ForEachBuilt(4, build, [&](TDocument& document) {
        TErrorList errors;
        if (!document.CreateSchedule(errors)) {
            CountErrors("schedule: ", errors);
            ASSERT_FALSE(errors.empty());
            return;
        }
        Count("schedules created");
        if (document.InitEngine(errors, true)) {
            int frame = 0;
            int64_t particles = 0;
            while (frame < frames && document.UpdateEngine(0.02f, errors)) {
                for (int group = 0; group < document.GetEngine().GetNumGroups(); ++group)
                    particles += document.GetEngine().GetNumParticles(group);
                ++frame;
            }
            Count("frames", frame);
            if (frame == frames)
                Count(particles > 0 ? "ran to the end" : "ran to the end, without a particle");
            else
                CountErrors("update: ", errors);
        } else {
            CountErrors("engine: ", errors);
        }
        TErrorList exportErrors;
        const std::string path = App.Path("soaked.efx");
        if (document.BatchExport(path.c_str(), exportErrors) != BR_DONE) {
            CountErrors("export: ", exportErrors);
            ASSERT_FALSE(exportErrors.empty());
            return;
        }
        Count("exported");
        TEfxFile file;
        TString fault;
        ASSERT_TRUE(file.Load(path.c_str(), fault)) << fault.Print();
        ExpectMachineRows(file);
    });
    EXPECT_GT(Counts["ran to the end"], 0);
    EXPECT_GT(Counts["exported"], 0);
}

TEST_F(RandomGraphs, EditsGoOnBesideARunningPreview)
{
    const uint32_t count = Setting("CINDERMILL_RANDOM_GRAPHS", 10);
    const uint32_t first = Setting("CINDERMILL_RANDOM_SEED", 1);
    const TQuiet quiet;
    int frames = 0;
    for (uint32_t seed = first; seed < first + count; ++seed) {
        TDocument document(App.Get());
        ASSERT_TRUE(document.New());
        TDice dice(seed);
        TRandomGraph graph(App.Get(), document, dice);
        graph.AddSystem();
        for (int i = 0; i < 30; ++i) {
            graph.Edit();
            TErrorList errors;
            if (!document.GetEngine().IsInited())
                document.RebuildSchedule(true);
            if (document.GetEngine().IsInited() && document.UpdateEngine(0.02f, errors))
                ++frames;
            TString report;
            if (graph.Chance(0.1))
                document.GetReport(report);
        }
    }
    EXPECT_GT(frames, 0);
}

TEST_F(RandomGraphs, EditsEndAComparisonWhereverItIs)
{
    const uint32_t count = Setting("CINDERMILL_RANDOM_GRAPHS", 10);
    const uint32_t first = Setting("CINDERMILL_RANDOM_SEED", 1);
    const TQuiet quiet;
    // One frame a pass, without a rest on a slow machine.
    TAgreementLimits limits;
    limits.Pass = 0;
    limits.Clock = [] {
        static uint64_t now = 0;
        return ++now;
    };
    int ended = 0;
    int known = 0;
    for (uint32_t seed = first; seed < first + count; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        TDocument document(App.Get());
        ASSERT_TRUE(document.New());
        TExportAgreement& agreement = document.GetAgreement();
        agreement.SetLimits(limits);
        TDice dice(seed);
        TRandomGraph graph(App.Get(), document, dice);
        graph.AddSystem();
        for (int i = 0; i < 30; ++i) {
            const unsigned edits = document.GetNumEdits();
            const bool wasRunning = agreement.IsRunning();
            graph.Edit();
            if (document.GetNumEdits() != edits) {
                EXPECT_FALSE(agreement.IsBegun());
                ended += wasRunning ? 1 : 0;
            }
            if (!document.EnsureSchedule())
                continue;
            agreement.Begin();
            for (uint32_t parts = graph.Below(1000); parts > 0 && agreement.IsRunning(); --parts)
                if (agreement.IsDue())
                    agreement.RunPass();
            known += agreement.IsKnown() ? 1 : 0;
        }
    }
    EXPECT_GT(ended, 0);
    EXPECT_GT(known, 0);
}
