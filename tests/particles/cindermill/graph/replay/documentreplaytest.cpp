#include "replaybench.h"

#include "support/randomgraph.h"
#include "support/sampleservices.h"
#include "support/testapp.h"

#include <cstdlib>
#include <filesystem>
#include <map>
#include <set>

// What the samples show that the console does not know. All others agree to the bit, and the one that has a
// volume does so as well, as nothing that is drawn hangs on it.
const std::map<std::string, std::string> Differing = {
    {"comet", "Animation Path"}, {"fireflies", "Noise"}, {"flipbook", "Grid"},
    {"leaves", "Grid"},          {"rain", "Grid"},       {"tiles", "Grid"},
    {"waterfall", "Grid"},
};

TEST(DocumentReplay, SamplesAgreeButForWhatIsNotExported)
{
    TTestApp app;
    const TQuiet quiet;
    std::set<std::string> differing;
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
        EXPECT_GE(report.NumFrames, 100);
        EXPECT_GT(report.NumEqual, 0);
        EXPECT_EQ(0, report.NumUnknown);
        EXPECT_EQ(0, report.NumUndefined);
        const auto reason = Differing.find(name);
        if (reason == Differing.end()) {
            EXPECT_EQ(AgreementOf(report).Differences, std::vector<std::string>());
        } else {
            EXPECT_FALSE(report.GetDifferences().empty());
            differing.insert(name);
        }
        for (const TReplayDifference& difference : report.GetDifferences()) {
            EXPECT_EQ(DK_VALUE, difference.Kind);
            ASSERT_NE(nullptr, difference.Place.Node);
            if (reason != Differing.end()) {
                EXPECT_EQ(reason->second, difference.Place.Node->GetNodeType()->Name.Print());
            }
        }
    }
    EXPECT_EQ(Differing.size(), differing.size());
}

TEST(DocumentReplay, AChoiceBeyondTheConsolesTableIsTold)
{
    TTestApp app;
    const TQuiet quiet;
    TDocument document(app.Get());
    ASSERT_TRUE(document.BatchLoad(SourcePath("samples/sparks.effect").c_str()));
    TNodeEnumParameter* function = nullptr;
    for (int i = 0; i < document.GetGraph()->GetNumNodes() && function == nullptr; ++i)
        function = document.GetGraph()->GetNode(i)->GetNodeType()->FindParameterOf<TNodeEnumParameter>(
            "Depth Test.Function", PK_ENUM);
    ASSERT_NE(function, nullptr);
    for (const int number : {7, 8, 9, -1}) {
        function->AddEntry({("Entry " + std::to_string(number)).c_str(), number});
        function->SetValue(function->GetValues().size() - 1);
        TErrorList errors;
        ASSERT_TRUE(document.ResolveTypes(errors) && document.CreateSchedule(errors));
        TSampleServices services;
        TReplayOptions options;
        options.Frames = 1;
        std::string error;
        const TAgreement agreement = CompareWithReplay(document.GetSchedule(), services, options, error);
        EXPECT_EQ(error, "");
        std::string told;
        for (const std::string& note : agreement.Notes)
            told += note.find("Depth Test.Function") != std::string::npos ? note : "";
        EXPECT_EQ(told, number == 7 ? ""
                                    : "Velocity Trail Render Stage in group 2: \"Depth Test.Function\" is " +
                                          std::to_string(number) + ", and the console's table ends at 7");
    }
}

// Of any effect that is exported: nothing fails, and whatever differs is told beforehand.
TEST(DocumentReplay, RandomEffectsAgreeButForWhatIsTold)
{
    const char* many = std::getenv("CINDERMILL_RANDOM_GRAPHS");
    const uint32_t count = many != nullptr ? static_cast<uint32_t>(std::atoi(many)) : 150;
    TTestApp app;
    const TQuiet quiet;
    int replayed = 0;
    int withoutReason = 0;
    for (uint32_t seed = 1; seed <= count; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        TDocument document(app.Get());
        ASSERT_TRUE(document.New());
        TDice dice(seed);
        TRandomGraph graph(app.Get(), document, dice);
        graph.AddSystem();
        graph.Build(static_cast<int>(seed % 30));
        TErrorList errors;
        if (!document.CreateSchedule(errors))
            continue;
        TSampleServices services;
        TReplayOptions options;
        options.Frames = 20;
        options.Seed = seed;
        std::string error;
        const TAgreement agreement = CompareWithReplay(document.GetSchedule(), services, options, error);
        if (!error.empty())
            continue;
        ++replayed;
        if (!agreement.Reasons.empty())
            continue;
        EXPECT_EQ(agreement.Differences, std::vector<std::string>());
        withoutReason += agreement.Equal > 0 ? 1 : 0;
    }
    EXPECT_GT(replayed, 0);
    EXPECT_GT(withoutReason, 0);
}
