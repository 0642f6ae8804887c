#include "batchfixture.h"

#include <set>

namespace {

const char* const Header =
    "frame,time,group,particle,global,attribute,name,type,component,kind,preview,replay,times,worst,node";

// The columns of a line that hold no text in quotes.
enum TReplayColumnNumber
{
    COL_FRAME,
    COL_TIME,
    COL_GROUP,
    COL_PARTICLE,
    COL_GLOBAL,
    COL_ATTRIBUTE,
    COL_NAME,
    COL_TYPE,
    COL_COMPONENT,
    COL_KIND,
    COL_PREVIEW,
    COL_REPLAY,
    COL_TIMES,
    COL_WORST,
    COL_NODE,
    NUM_COLUMNS
};

// The last line of the standard error, by its numbers.
struct TSummary
{
    long long Compared = -1;
    long long Equal = -1;
    long long Undefined = -1;
    long long Unknown = -1;
    long long Particles = -1;
    int Frames = -1;
};

TSummary SummaryOf(const TOutcome& outcome)
{
    TSummary summary;
    const std::vector<std::string> lines = Lines(outcome.Err);
    const char* const last = lines.empty() ? "" : lines.back().c_str();
    EXPECT_EQ(6, std::sscanf(last,
                             "%lld values compared, %lld equal, %lld undefined, %lld unknown, %lld "
                             "particles counted in %d frames",
                             &summary.Compared, &summary.Equal, &summary.Undefined, &summary.Unknown,
                             &summary.Particles, &summary.Frames))
        << last;
    return summary;
}

} // namespace

TEST_F(TBatch, ReplayWithoutADifferenceIsDone)
{
    const TOutcome outcome = Run("replay " + Sample("fountain"));
    EXPECT_EQ(0, outcome.Status);
    EXPECT_EQ(std::string(Header) + "\n", outcome.Out);
    const TSummary summary = SummaryOf(outcome);
    EXPECT_GT(summary.Compared, 1000);
    EXPECT_EQ(summary.Compared, summary.Equal);
    EXPECT_EQ(0, summary.Undefined);
    EXPECT_EQ(0, summary.Unknown);
    EXPECT_GT(summary.Particles, 0);
    EXPECT_GE(summary.Frames, 100);
    EXPECT_LE(summary.Frames, 1000);
}

TEST_F(TBatch, ReplayTellsTheFirstDifferenceOfEachAttribute)
{
    // Its particles start on a grid, which the console does not know.
    const TOutcome outcome = Run("replay " + Sample("tiles"));
    EXPECT_EQ(1, outcome.Status);
    const std::vector<std::string> lines = Lines(outcome.Out);
    ASSERT_GT(lines.size(), 1u);
    EXPECT_EQ(Header, lines[0]);
    std::set<std::string> seen;
    for (size_t i = 1; i < lines.size(); ++i) {
        const std::vector<std::string> fields = Fields(lines[i], ',');
        ASSERT_EQ(static_cast<size_t>(NUM_COLUMNS), fields.size()) << lines[i];
        EXPECT_TRUE(
            seen.insert(fields[COL_GROUP] + "," + fields[COL_ATTRIBUTE] + "," + fields[COL_KIND]).second);
        EXPECT_GE(std::stoll(fields[COL_TIMES]), 1);
        EXPECT_NE("", fields[COL_NODE]);
    }
    EXPECT_NE(std::string::npos, outcome.Err.find("it is exported as a point"));
    EXPECT_GT(SummaryOf(outcome).Compared, SummaryOf(outcome).Equal);
}

TEST_F(TBatch, ReplayTakesItsFramesAndTheirLength)
{
    EXPECT_EQ(0, SummaryOf(Run("replay " + Sample("fountain") + " --frames 0")).Frames);
    const TOutcome few = Run("replay " + Sample("fountain") + " --frames 7 --dt 0");
    EXPECT_EQ(0, few.Status);
    EXPECT_EQ(7, SummaryOf(few).Frames);
    // The same seed gives the same, another one other numbers of births.
    const std::string sparks = "replay " + Sample("fireflies") + " --seed ";
    EXPECT_EQ(Run(sparks + "7").Err, Run(sparks + "7").Err);
    EXPECT_NE(Run(sparks + "7").Err, Run(sparks + "8").Err);
}

TEST_F(TBatch, WrongReplayCommandLinesAreUsageErrors)
{
    for (const char* line : {"replay", "replay a --frames", "replay a --frames -1", "replay a --dt x",
                             "replay a --seed -1", "replay a --seed 4294967296"}) {
        const TOutcome outcome = Run(line);
        EXPECT_EQ(2, outcome.Status) << line;
        EXPECT_EQ("", outcome.Out) << line;
        EXPECT_NE(std::string::npos, outcome.Err.find("\nusage: ")) << line;
    }
}

TEST_F(TBatch, ReplayOfSeveralFilesNamesThemInRowsAndNotes)
{
    std::filesystem::create_directories(Folder.Path("effects/inner"));
    std::filesystem::copy(SourcePath("samples/tiles.effect"), Folder.Path("effects/inner/a, b.effect"));
    std::filesystem::copy(SourcePath("samples/fountain.effect"), Folder.Path("effects/fountain.effect"));
    const std::string alone = Run("replay " + Sample("tiles")).Out;
    const std::string tiles = Folder.Path("effects/inner/a, b.effect");
    const std::string fountain = Folder.Path("effects/fountain.effect");
    for (const std::string& names :
         {"'" + Folder.Path("effects") + "'", "'" + Folder.Path("effects/**/*.effect") + "'",
          "'" + fountain + "' '" + tiles + "'"}) {
        const TOutcome outcome = Run("replay " + names);
        EXPECT_EQ(1, outcome.Status);
        // One table, which is that of the file alone but for the last column.
        std::string expected;
        for (const std::string& line : Lines(alone))
            expected += line + (line == Header ? ",file" : ",\"" + tiles + "\"") + "\n";
        EXPECT_EQ(expected, outcome.Out);
        int summaries = 0;
        for (const std::string& line : Lines(outcome.Err)) {
            EXPECT_TRUE(line.rfind(fountain + ": ", 0) == 0 || line.rfind(tiles + ": ", 0) == 0) << line;
            summaries += line.find(" values compared, ") != std::string::npos ? 1 : 0;
        }
        EXPECT_EQ(2, summaries);
    }
    // A folder is several files even where it holds one.
    const TOutcome one = Run("replay '" + Folder.Path("effects/inner") + "'");
    EXPECT_EQ(1, one.Status);
    EXPECT_EQ(std::string(Header) + ",file", Lines(one.Out)[0]);
    EXPECT_EQ(0, Run("replay '" + fountain + "' '" + fountain + "'").Status);
}

TEST_F(TBatch, ReplayOfAFolderWithoutEffectsSaysWhatOtherCommandsSay)
{
    std::filesystem::create_directories(Folder.Path("empty"));
    for (const std::string& name : {Folder.Path("empty"), Folder.Path("no*.effect")}) {
        const TOutcome outcome = Run("replay '" + name + "'");
        EXPECT_EQ(1, outcome.Status);
        EXPECT_EQ("", outcome.Out);
        EXPECT_EQ(Run("check '" + name + "'").Err, outcome.Err);
        EXPECT_EQ(0u, outcome.Err.find(name + ": ")) << outcome.Err;
    }
}

TEST_F(TBatch, ReplayOfWhatIsNoEffectFails)
{
    const TOutcome missing = Run("replay '" + Folder.Path("missing.effect") + "'");
    EXPECT_EQ(1, missing.Status);
    EXPECT_EQ("", missing.Out);
    EXPECT_NE("", missing.Err);
}
