#include "batchfixture.h"
#include "support/json.h"

namespace {

namespace fs = std::filesystem;

// What a run stands on before it looks at the first effect, and how what goes wrong is told of each file.
class TSetup : public TBatch
{
protected:
    std::string Path(const std::string& leaf) { return "'" + Folder.Path(leaf) + "'"; }
    TJson RunJson(const std::string& arguments, int status)
    {
        const TOutcome outcome = Run(arguments);
        EXPECT_EQ(status, outcome.Status) << arguments << "\n" << outcome.Err;
        TJson json;
        std::string fault;
        EXPECT_TRUE(ParseJson(outcome.Out, json, fault)) << arguments << "\n" << fault << outcome.Out;
        return json;
    }
    void ExpectSchema(const TJson& json)
    {
        TJson schema;
        std::string fault;
        ASSERT_TRUE(ParseJson(ReadBytes(SourcePath("docs/schemas/findings.schema.json")), schema, fault));
        for (const std::string& wrong : FindSchemaFaults(schema, json))
            ADD_FAILURE() << wrong;
    }
};

constexpr const char* Commands[] = {"types", "check", "check --stale", "lint", "replay", "report"};

} // namespace

TEST_F(TSetup, AFaultyProjectIsAFindingOfEveryFormat)
{
    WriteBytes(Folder.Path("faulty.toml"),
               "[severities]\nproject.error = \"note\"\n\ncolour = 1\nshade = 2\n");
    for (const std::string command : Commands) {
        const std::string files = command == "types" ? "" : " " + Sample("fountain");
        const std::string line = "--project " + Path("faulty.toml") + " " + command + files + " --format ";
        SCOPED_TRACE(line);
        const TJson json = RunJson(line + "json", 1);
        ExpectSchema(json);
        ASSERT_EQ(2, json["findings"].size());
        EXPECT_EQ("project.error", json["findings"][0]["id"].Text);
        EXPECT_EQ("error", json["findings"][0]["severity"].Text);
        EXPECT_EQ(4.0, json["findings"][0]["line"].Number);
        EXPECT_EQ(Folder.Path("faulty.toml"), json["findings"][0]["file"].Text);
        EXPECT_EQ(Folder.Path("faulty.toml"), json["project"].Text);
        EXPECT_EQ(1, json["files"].size());
        EXPECT_FALSE(json["passed"].Flag);
        EXPECT_EQ("", Run(line + "json").Err);
        EXPECT_EQ("project.error", RunJson(line + "sarif", 1)["runs"][0]["results"][1]["ruleId"].Text);
        EXPECT_NE(std::string::npos, Run(line + "junit").Out.find("project.error"));
        const TOutcome text = Run(line + "text");
        EXPECT_EQ(1, text.Status);
        EXPECT_EQ("", text.Out);
        EXPECT_EQ(2u, Lines(text.Err).size()) << text.Err;
    }
}

TEST_F(TSetup, AProjectThatCannotBeReadIsAFinding)
{
    for (const char* leaf : {"none.toml", "folder.toml"}) {
        fs::create_directories(Folder.Path("folder.toml"));
        const TJson json =
            RunJson("--project " + Path(leaf) + " check --format json " + Sample("fountain"), 1);
        ExpectSchema(json);
        ASSERT_EQ(1, json["findings"].size());
        EXPECT_EQ("project.error", json["findings"][0]["id"].Text);
        EXPECT_EQ(Folder.Path(leaf), json["findings"][0]["file"].Text);
    }
}

// The command line comes first: nothing was tried.
TEST_F(TSetup, AWrongCommandLineIsOneWithAFaultyProjectToo)
{
    WriteBytes(Folder.Path("faulty.toml"), "colour = 1\n");
    for (const std::string command : Commands) {
        const TOutcome outcome = Run("--project " + Path("faulty.toml") + " " + command + " --format yaml");
        EXPECT_EQ(2, outcome.Status) << command;
        EXPECT_EQ("", outcome.Out) << command;
    }
}

TEST_F(TSetup, AnEmptyNameAfterAnOptionIsAWrongCommandLine)
{
    for (const std::string option : {"--node-types", "--resources", "--project"}) {
        const TOutcome outcome = Run(option + " '' types");
        EXPECT_EQ(2, outcome.Status) << option;
        EXPECT_EQ("", outcome.Out) << option;
        EXPECT_EQ(option + " lacks its " + (option == "--project" ? "file" : "directory"),
                  Lines(outcome.Err).at(0));
    }
}

TEST_F(TSetup, EveryLineOfOneOfSeveralFilesNamesIt)
{
    fs::create_directories(Folder.Path("fx"));
    for (const char* leaf : {"fx/a.effect", "fx/b.effect"}) {
        std::string bytes = ReadBytes(SourcePath("samples/burst.effect"));
        for (size_t at = bytes.find(".dds"); at != std::string::npos; at = bytes.find(".dds", at + 1))
            bytes[at + 3] = 'x';
        WriteBytes(Folder.Path(leaf), bytes);
    }
    // By full paths, so that nothing is searched for.
    fs::create_directories(Folder.Path("config/TolvTools"));
    WriteBytes(Folder.Path("config/TolvTools/VORCindermill.conf"),
               "[General]\nRegVersion=0\nResourceMode=2\n");
    for (const std::string& files : {Path("fx/a.effect") + " " + Path("fx/b.effect"), Path("fx")}) {
        const TOutcome outcome = Run("check " + files);
        EXPECT_EQ(1, outcome.Status);
        int ofA = 0;
        int ofB = 0;
        for (const std::string& line : Lines(outcome.Err)) {
            ofA += line.find(Folder.Path("fx/a.effect") + ": ") == 0;
            ofB += line.find(Folder.Path("fx/b.effect") + ": ") == 0;
        }
        EXPECT_EQ(static_cast<size_t>(ofA + ofB), Lines(outcome.Err).size()) << outcome.Err;
        EXPECT_GE(ofA, 2);
        EXPECT_EQ(ofA, ofB);
    }
}

// A slip of the hand makes no file, and reads none.
TEST_F(TSetup, AWordThatBeginsAsOptionsDoIsNoFile)
{
    const std::string file = Sample("fountain");
    const std::string go = "cd " + Path("") + " && ";
    const std::string program = Program;
    Program = go + program;
    for (const std::string& line :
         {std::string("dump --verbose"), std::string("text --format"), std::string("efx --frames"),
          std::string("run --frames 3 x"), std::string("translate --raw"), "resave " + file + " --out",
          "resave --out " + file, "diff " + file + " --stat", "diff --stat " + file,
          "image --out " + file + " --format 0", "image " + file + " --out --format 0",
          "resave " + file + " out more"}) {
        const TOutcome outcome = Run(line);
        EXPECT_EQ(2, outcome.Status) << line;
        EXPECT_EQ("", outcome.Out) << line;
        EXPECT_NE(std::string::npos, outcome.Err.find("\nusage: ")) << line;
    }
    EXPECT_FALSE(fs::exists(Folder.Path("--out")));
    // Whoever means it says so.
    EXPECT_EQ(0, Run("resave " + file + " -- --out").Status);
    EXPECT_EQ(0, Run("resave -- --out ./--again").Status);
    EXPECT_EQ(ReadBytes(Folder.Path("--out")), ReadBytes(Folder.Path("--again")));
    EXPECT_EQ(0, Run("diff -- --out --again").Status);
    EXPECT_EQ(0, Run("text -- --out").Status);
    EXPECT_EQ(1, Run("efx -- --out").Status);
}

TEST_F(TSetup, HelpIsToldWhereverItIsAskedFor)
{
    const std::string expected = Run("help export").Out;
    EXPECT_EQ(0u, expected.find("usage: "));
    const std::string file = Sample("fountain");
    for (const std::string& line : {std::string("export -h"), std::string("export --help"),
                                    "export " + file + " --help", "export --verbose --help " + file}) {
        const TOutcome outcome = Run(line);
        EXPECT_EQ(0, outcome.Status) << line;
        EXPECT_EQ(expected, outcome.Out) << line;
    }
    EXPECT_EQ(Run("help").Out, Run("-h").Out);
    EXPECT_EQ(0, Run("-h").Status);
    // Behind it all words are files.
    EXPECT_EQ(1, Run("check -- --help").Status);
    EXPECT_EQ(1, Run("check " + file + " -h").Status);
}

TEST_F(TSetup, AFolderOfResourcesThatIsNoneIsTold)
{
    const TOutcome outcome = Run("--resources " + Path("none") + " text " + Sample("fountain"));
    EXPECT_EQ(0, outcome.Status);
    EXPECT_EQ(Folder.Path("none") + ": This is no folder: nothing is found in it\n", outcome.Err);
    EXPECT_EQ("", Run(Resources() + "text " + Sample("fountain")).Err);
}

TEST_F(TSetup, AnEmptyNameIsShown)
{
    EXPECT_EQ("\"\": The file does not exist\n", Run("dump ''").Err);
}
