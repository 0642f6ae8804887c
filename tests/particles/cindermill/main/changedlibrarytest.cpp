#include "support/refreshtrial.h"
#include "support/testapp.h"

#include "particles/effectgraph/error.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>

static std::vector<std::string> Samples()
{
    std::vector<std::string> paths;
    for (const auto& entry : std::filesystem::directory_iterator(SourcePath("samples")))
        if (entry.path().extension() == ".effect")
            paths.push_back(entry.path().string());
    std::sort(paths.begin(), paths.end());
    return paths;
}

namespace {

class ChangedLibrary : public testing::Test
{
protected:
    TTempFolder Folder;
    const TChangedLibrary Library{SourcePath("NodeTypes")};
};

} // namespace

TEST_F(ChangedLibrary, UnchangedItIsTheLibraryOfTheFiles)
{
    Library.Write(Folder.Path("types"));
    TErrorList errors;
    TNodeTypeLibrary original;
    TNodeTypeLibrary written;
    original.Load(SourcePath("NodeTypes").c_str(), errors);
    written.Load(Folder.Path("types").c_str(), errors);
    EXPECT_TRUE(errors.empty());
    ASSERT_EQ(written.GetNumTypes(), original.GetNumTypes());
    for (int i = 0; i < original.GetNumTypes(); ++i) {
        ASSERT_NE(written.FindType(original.GetType(i)->Name), nullptr);
        EXPECT_FALSE(original.GetType(i)->NeedsRefresh(written)) << original.GetType(i)->Name.Print();
    }
}

// An attack with files that nobody can read would find nothing.
TEST_F(ChangedLibrary, EveryEditHappensAndNearlyAllTypesCanBeRead)
{
    constexpr uint32_t libraries = 40;
    std::map<std::string, int> edits;
    int types = 0;
    int unreadable = 0;
    for (uint32_t seed = 1; seed <= libraries; ++seed) {
        TDice dice(seed);
        TChangedLibrary changed = Library;
        for (int i = 0; i < 15; ++i) {
            changed.Change(dice, {});
            ++edits[changed.GetLastEdit()];
        }
        changed.Write(Folder.Path("types"));
        TErrorList errors;
        TNodeTypeLibrary read;
        read.Load(Folder.Path("types").c_str(), errors);
        types += changed.GetNumTypes();
        unreadable += changed.GetNumTypes() - read.GetNumTypes();
    }
    for (const std::string& name : TChangedLibrary::GetEditNames())
        EXPECT_GT(edits[name], 0) << name;
    EXPECT_LT(unreadable, types / 50);
}

// The soak runs this with more seeds, as many as it has graphs.
TEST_F(ChangedLibrary, DocumentsGoThroughIt)
{
    const bool isSoak = std::getenv("CINDERMILL_RANDOM_GRAPHS") != nullptr;
    constexpr uint32_t usual = 60;
    const uint32_t count = Setting("CINDERMILL_RANDOM_GRAPHS", usual);
    const uint32_t first = Setting("CINDERMILL_RANDOM_SEED", 1);
    std::map<std::string, int> counts;
    std::map<std::string, uint32_t> firstSeeds;
    for (uint32_t seed = first; seed < first + count; ++seed) {
        if (isSoak) {
            std::printf("seed %u\n", seed);
            std::fflush(stdout);
        }
        TDice dice(seed);
        TRefreshTrial trial(Folder.GetFolder(), Library, dice);
        trial.SetSamples(Samples());
        EXPECT_TRUE(trial.Run()) << "seed " << seed << ": " << trial.GetFault() << "\n" << trial.GetStory();
        for (const auto& [what, number] : trial.GetCounts()) {
            counts[what] += number;
            firstSeeds.emplace(what, seed);
        }
    }
    // A single seed that is looked into need not meet everything.
    if (count >= usual) {
        for (const char* met :
             {"refreshes accepted", "refreshes declined", "values kept", "wires kept", "exported"})
            EXPECT_GT(counts[met], 0) << met;
    }
    if (isSoak)
        for (const auto& [what, number] : counts)
            std::printf("%6d %s (first of seed %u)\n", number, what.c_str(), firstSeeds[what]);
}
