#include "replaybench.h"

#include "support/randomgraph.h"
#include "support/sampleservices.h"
#include "support/testapp.h"

#include <cstdlib>
#include <filesystem>
#include <map>
#include <set>

namespace {

// A document's effect beside the replay of its export. Textures need not exist.
class TReplayedDocument
{
public:
    explicit TReplayedDocument(TDocument& document) : Document(document) {}

    // False if the effect cannot be scheduled, started or exported.
    bool Run(int frames, TAgreement& agreement)
    {
        TErrorList errors;
        if (!Document.CreateSchedule(errors))
            return false;
        std::string error;
        TReplayOptions options;
        options.Frames = frames;
        agreement = CompareWithReplay(Document.GetSchedule(), Services, options, error);
        for (const std::string& note : agreement.Notes)
            IsRounded = IsRounded || note.find("is rounded up") != std::string::npos;
        return error.empty();
    }
    // Whether preview and console start or end from different numbers, as they are told to: a store that is
    // rounded up, a clock that several places share, a value that the trigger group works on in place.
    bool DiffersAsTold() const
    {
        const TEffectSchedule& schedule = Document.GetSchedule();
        bool differs = IsRounded;
        std::map<int, int> places;
        for (int g = 0; g < schedule.GetNumGroups(); ++g) {
            const bool isTriggerGroup = schedule.IsTriggerGroup(g);
            for (const TTiedNode& tied : schedule.GetGroup(g).TiedNodes) {
                const std::string name = schedule.GetNode(tied.Node)->GetNodeType()->ClassName.Print();
                const bool isClock = name == "TEmitter" || name == "TEffect";
                differs = differs || (isClock && (!isTriggerGroup || ++places[tied.Node] > 1));
                for (int o = 0; isTriggerGroup && o < tied.Outputs.size(); ++o)
                    differs =
                        differs || (tied.Outputs[o] != -1 && tied.Inputs.index_of(tied.Outputs[o]) != -1);
            }
        }
        return differs;
    }
    // The names of the classes in the effect.
    std::set<std::string> Classes() const
    {
        std::set<std::string> classes;
        for (int i = 0; i < Document.GetGraph()->GetNumNodes(); ++i)
            classes.insert(Document.GetGraph()->GetNode(i)->GetNodeType()->ClassName.Print());
        return classes;
    }

private:
    TDocument& Document;
    TSampleServices Services;
    bool IsRounded = false;
};

// The console knows no grid, noise, volume or animation path: what hangs on them differs.
bool IsExportedWhole(const std::set<std::string>& classes)
{
    for (const char* name : {"TGrid", "TNoise", "TVolume", "TAnimationPath"})
        if (classes.count(name) != 0)
            return false;
    return true;
}

} // namespace

// What the samples show that the console does not know. All others agree to the bit, and the one that has a
// volume does so as well, as nothing that is drawn hangs on it.
const std::map<std::string, std::string> Differing = {
    {"comet", "Animation Path"}, {"fireflies", "Noise"}, {"flipbook", "Grid"},
    {"leaves", "Grid"},          {"rain", "Grid"},       {"tiles", "Grid"},
};

TEST(DocumentReplay, SamplesAgreeButForWhatIsNotExported)
{
    TTestApp app;
    const TQuiet quiet;
    int numSamples = 0;
    for (const auto& entry : std::filesystem::directory_iterator(SourcePath("samples"))) {
        if (entry.path().extension() != ".effect")
            continue;
        const std::string name = entry.path().stem().string();
        SCOPED_TRACE(name);
        TDocument document(app.Get());
        ASSERT_TRUE(document.BatchLoad(entry.path().c_str()));
        TErrorList errors;
        ASSERT_TRUE(document.ResolveTypes(errors) && document.CreateSchedule(errors));
        TSampleServices services;
        TReplayComparison comparison(document.GetSchedule(), services);
        ASSERT_TRUE(comparison.Export(errors) && comparison.Run(TReplayOptions(), errors));
        const TReplayReport& report = comparison.GetReport();
        ++numSamples;
        EXPECT_GE(report.NumFrames, 100);
        EXPECT_GT(report.NumEqual, 0);
        EXPECT_EQ(0, report.NumUnknown);
        EXPECT_EQ(0, report.NumUndefined);
        const auto reason = Differing.find(name);
        if (reason == Differing.end()) {
            EXPECT_EQ(AgreementOf(report).Differences, std::vector<std::string>());
        } else {
            EXPECT_FALSE(report.GetDifferences().empty());
        }
        for (const TReplayDifference& difference : report.GetDifferences()) {
            EXPECT_EQ(DK_VALUE, difference.Kind);
            ASSERT_NE(nullptr, difference.Place.Node);
            if (reason != Differing.end()) {
                EXPECT_EQ(reason->second, difference.Place.Node->GetNodeType()->Name.Print());
            }
        }
    }
    EXPECT_EQ(15, numSamples);
}

TEST(DocumentReplay, RandomEffectsAgreeButForWhatIsNotExported)
{
    const char* many = std::getenv("CINDERMILL_RANDOM_GRAPHS");
    const uint32_t count = many != nullptr ? static_cast<uint32_t>(std::atoi(many)) : 100;
    TTestApp app;
    const TQuiet quiet;
    int agreeing = 0;
    for (uint32_t seed = 1; seed <= count; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        TDocument document(app.Get());
        ASSERT_TRUE(document.New());
        TDice dice(seed);
        TRandomGraph graph(app.Get(), document, dice);
        graph.AddSystem();
        graph.Build(static_cast<int>(seed % 30));
        TReplayedDocument replay(document);
        TAgreement agreement;
        if (!replay.Run(20, agreement) || !IsExportedWhole(replay.Classes()) || replay.DiffersAsTold())
            continue;
        EXPECT_EQ(agreement.Differences, std::vector<std::string>());
        agreeing += agreement.Equal > 0 ? 1 : 0;
    }
    EXPECT_GT(agreeing, 0);
}
