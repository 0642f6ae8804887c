#include "replaybench.h"

#include "support/fakeservices.h"
#include "support/randomgraph.h"
#include "support/testapp.h"

#include <cstdlib>
#include <filesystem>
#include <set>

namespace {

// Finds what the samples name.
class TSampleServices : public TFakeServices
{
public:
    bool FindResource(const char* name, TString& path) override
    {
        path = SourcePath(std::string("samples/animations/") + name).c_str();
        return true;
    }
};

// A document's effect beside the replay of its export. Textures need not exist.
class TDocumentReplay
{
public:
    explicit TDocumentReplay(TDocument& document) : Document(document), Exec(Services) {}
    ~TDocumentReplay() { Exec.Clear(); }

    // False if the effect cannot be scheduled, started or exported.
    bool Run(int frames, TAgreement& agreement)
    {
        TErrorList errors;
        Exec.SetBirthsApart(true);
        if (!Document.CreateSchedule(errors))
            return false;
        bool inited = false;
        const std::string assertion =
            AssertionOf([&] { inited = Exec.Init(Document.GetSchedule(), errors, true); });
        if (!inited || !assertion.empty())
            return false;
        TEfxFile file;
        std::string error;
        ExportInto(Exec, file, error);
        if (!error.empty())
            return false;
        for (int g = 0; g < file.GetGroups().size(); ++g)
            IsRounded = IsRounded ||
                        (!file.GetGroups()[g].IsTriggerGroup &&
                         file.GetGroups()[g].ParticleCount != Document.GetSchedule().GetParticleCount(g));
        TEffectReplay replay(file, Document.GetSchedule());
        return AssertionOf([&] { agreement = TReplayComparison(Exec, replay).Run(frames, 0.02f); }).empty();
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
    TEffectExec Exec;
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

TEST(DocumentReplay, SamplesAgreeButForWhatIsNotExported)
{
    TTestApp app;
    const TQuiet quiet;
    int agreeing = 0;
    for (const auto& entry : std::filesystem::directory_iterator(SourcePath("samples"))) {
        if (entry.path().extension() != ".effect")
            continue;
        SCOPED_TRACE(entry.path().stem().string());
        TDocument document(app.Get());
        ASSERT_TRUE(document.BatchLoad(entry.path().c_str()));
        TErrorList errors;
        ASSERT_TRUE(document.ResolveTypes(errors));
        TDocumentReplay replay(document);
        TAgreement agreement;
        ASSERT_TRUE(replay.Run(100, agreement));
        EXPECT_GT(agreement.Equal + agreement.Unknown, 0);
        if (!IsExportedWhole(replay.Classes()))
            continue;
        ++agreeing;
        EXPECT_EQ(agreement.Differences, std::vector<std::string>());
        EXPECT_EQ(agreement.Near, 0);
    }
    EXPECT_EQ(agreeing, 8);
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
        TDocumentReplay replay(document);
        TAgreement agreement;
        if (!replay.Run(20, agreement) || !IsExportedWhole(replay.Classes()) || replay.DiffersAsTold())
            continue;
        EXPECT_EQ(agreement.Differences, std::vector<std::string>());
        agreeing += agreement.Equal > 0 ? 1 : 0;
    }
    EXPECT_GT(agreeing, 0);
}
