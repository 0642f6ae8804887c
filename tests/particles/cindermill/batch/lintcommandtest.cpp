#include "batchfixture.h"
#include "support/json.h"

namespace {

namespace fs = std::filesystem;

class TLintProgram : public TBatch
{
protected:
    TLintProgram()
    {
        fs::create_directories(Folder.Path("effects/inner"));
        fs::copy(SourcePath("samples/fountain.effect"), Folder.Path("effects/fountain.effect"));
        fs::copy(SourcePath("samples/burst.effect"), Folder.Path("effects/inner/burst.effect"));
    }
    std::string Path(const std::string& leaf) { return "'" + Folder.Path(leaf) + "'"; }
    // The fountain, whose texture is called otherwise.
    void Spoil()
    {
        std::string bytes = ReadBytes(Folder.Path("effects/fountain.effect"));
        bytes.replace(bytes.find("drop.dds"), 8, "drip.dds");
        WriteBytes(Folder.Path("effects/fountain.effect"), bytes);
    }
};

} // namespace

TEST_F(TLintProgram, WrongCommandLinesAreUsageErrors)
{
    for (const char* line :
         {"lint", "lint --seconds", "lint --seconds 0 a", "lint --seconds x a", "lint --seeds 0 a",
          "lint --seeds 1.5 a", "lint --other a", "lint --format yaml a", "lint --fail-on note a"}) {
        const TOutcome outcome = Run(line);
        EXPECT_EQ(2, outcome.Status) << line;
        EXPECT_EQ("", outcome.Out) << line;
        EXPECT_NE(std::string::npos, outcome.Err.find("\nusage: ")) << line;
    }
}

TEST_F(TLintProgram, NoSampleHasAWarning)
{
    const TOutcome outcome = Run(Resources() + "lint --fail-on warning '" + SourcePath("samples") + "'");
    EXPECT_EQ(0, outcome.Status);
    EXPECT_EQ("", outcome.Err);
    EXPECT_EQ(std::string::npos, outcome.Out.find(": warning: ")) << outcome.Out;
    EXPECT_EQ(std::string::npos, outcome.Out.find(": error: ")) << outcome.Out;
    // Grids are told of where there are some.
    EXPECT_NE(std::string::npos, outcome.Out.find("tiles.effect: note: "));
    EXPECT_NE(std::string::npos, outcome.Out.find("[console.grid] (node \"Grid\", type TGrid, group 1, "));
}

TEST_F(TLintProgram, AFolderStandsForAllEffectsBelowIt)
{
    const TOutcome outcome = Run(Resources() + "lint --budgets " + Path("effects"));
    EXPECT_EQ(0, outcome.Status);
    EXPECT_NE(std::string::npos, outcome.Out.find("fountain.effect: note: The effect takes "));
    EXPECT_NE(std::string::npos, outcome.Out.find("inner/burst.effect: note: The effect takes "));
}

TEST_F(TLintProgram, AnErrorFailsARunAndAWarningIfAsked)
{
    const std::string fountain = Path("effects/fountain.effect");
    EXPECT_EQ(0, Run(Resources() + "lint " + fountain).Status);
    // Of a library without its types, a node is a warning.
    fs::create_directories(Folder.Path("types"));
    fs::copy(SourcePath("NodeTypes/Life/Age.xml"), Folder.Path("types/Age.xml"));
    const std::string bare = "--node-types " + Path("types") + " " + Resources();
    EXPECT_EQ(0, Run(bare + "lint " + fountain).Status);
    const TOutcome warned = Run(bare + "lint --fail-on warning " + fountain);
    EXPECT_EQ(1, warned.Status);
    EXPECT_NE(std::string::npos, warned.Out.find("[type.missing]"));
    Spoil();
    const TOutcome outcome = Run(Resources() + "lint " + fountain);
    EXPECT_EQ(1, outcome.Status);
    EXPECT_EQ("", outcome.Err);
    EXPECT_NE(std::string::npos, outcome.Out.find("error: Texture \"drip.dds\" is not found [file.missing]"));
    EXPECT_EQ(1u, Lines(outcome.Out).size()) << outcome.Out;
}

TEST_F(TLintProgram, AFileThatIsNoneIsToldAndTheOthersAreLookedAt)
{
    WriteBytes(Folder.Path("effects/bad.effect"), "no effect");
    const TOutcome outcome = Run(Resources() + "lint " + Path("effects"));
    EXPECT_EQ(1, outcome.Status);
    EXPECT_NE(std::string::npos, outcome.Out.find("bad.effect: error: "));
    EXPECT_NE(std::string::npos, outcome.Out.find("[load.failed]"));
    EXPECT_NE(std::string::npos, outcome.Out.find("burst.effect: note: "));
    EXPECT_EQ(1, Run("lint " + Path("nowhere.effect")).Status);
}

TEST_F(TLintProgram, FindingsStandInEachFormat)
{
    Spoil();
    for (const char* format : {"json", "sarif"}) {
        const TOutcome outcome = Run(Resources() + "lint --format " + format + " " + Path("effects"));
        EXPECT_EQ(1, outcome.Status);
        EXPECT_EQ("", outcome.Err);
        TJson json;
        std::string fault;
        ASSERT_TRUE(ParseJson(outcome.Out, json, fault)) << fault;
        TJson schema;
        const std::string name = format == std::string("json") ? "findings" : "sarif";
        ASSERT_TRUE(ParseJson(ReadBytes(SourcePath("docs/schemas/" + name + ".schema.json")), schema, fault));
        for (const std::string& wrong : FindSchemaFaults(schema, json))
            ADD_FAILURE() << wrong;
        EXPECT_NE(std::string::npos, outcome.Out.find("\"file.missing\""));
        EXPECT_NE(std::string::npos, outcome.Out.find("\"capacity.full\""));
        EXPECT_NE(std::string::npos, outcome.Out.find("\"peak\": 1"));
    }
    const TOutcome junit = Run(Resources() + "lint --format junit " + Path("effects"));
    EXPECT_EQ(1, junit.Status);
    EXPECT_NE(std::string::npos, junit.Out.find("file.missing"));
}

TEST_F(TLintProgram, TheProjectJudgesAndLimits)
{
    fs::create_directories(Folder.Path("assets"));
    fs::copy(SourcePath("samples/textures"), Folder.Path("assets"));
    const std::string lint = "--project " + Path("team.toml") + " lint " + Path("effects/fountain.effect");
    const std::string types = "node-types = \"" + SourcePath("NodeTypes") + "\"\nresources = \"assets\"\n";
    WriteBytes(Folder.Path("team.toml"), types + "[budgets]\nparticles = 459\nrows = 64\n");
    const TOutcome over = Run(lint);
    EXPECT_EQ(1, over.Status) << over.Err;
    EXPECT_NE(std::string::npos, over.Out.find("[budget.over]")) << over.Out;
    EXPECT_EQ(1u, Lines(over.Out).size()) << over.Out;
    WriteBytes(Folder.Path("team.toml"), types + "[budgets]\nparticles = 459\n[severities]\nbudget.over = "
                                                 "\"note\"\n");
    const TOutcome noted = Run(lint);
    EXPECT_EQ(0, noted.Status) << noted.Err;
    EXPECT_NE(std::string::npos, noted.Out.find(": note: "));
    WriteBytes(Folder.Path("team.toml"),
               types + "[policies]\nmust-have-bounding-box = true\nfailure-prevents-export = true\n");
    const TOutcome policy = Run(lint);
    EXPECT_EQ(1, policy.Status) << policy.Err;
    EXPECT_NE(std::string::npos, policy.Out.find("[box.none]"));
    WriteBytes(Folder.Path("team.toml"),
               types + "[policies]\nmust-have-bounding-box = true\nfailure-prevents-export = true\n"
                       "[[allow]]\nfinding = \"box.none\"\nfile = \"effects/fountain.effect\"\n"
                       "reason = \"Always seen.\"\n");
    const TOutcome allowed = Run(lint);
    EXPECT_EQ(0, allowed.Status) << allowed.Out << allowed.Err;
    EXPECT_NE(std::string::npos, allowed.Out.find("allowed: "));
    EXPECT_NE(std::string::npos, allowed.Out.find("Always seen."));
}

TEST_F(TLintProgram, ARunOfTheSameSeedShowsWhatWasFound)
{
    const TOutcome lint =
        Run(Resources() + "lint --seeds 1 --suggest-box " + Path("effects/fountain.effect"));
    EXPECT_EQ(0, lint.Status);
    EXPECT_NE(std::string::npos, lint.Out.find("[box.suggested]"));
    EXPECT_EQ(lint.Out,
              Run(Resources() + "lint --seeds 1 --suggest-box " + Path("effects/fountain.effect")).Out);
}
