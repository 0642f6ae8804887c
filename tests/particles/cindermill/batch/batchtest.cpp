#include "batchfixture.h"

#include <array>
#include <map>
#include <set>

TEST_F(TBatch, NoCommandIsAUsageError)
{
    const TOutcome outcome = Run("");
    EXPECT_EQ(2, outcome.Status);
    EXPECT_EQ("", outcome.Out);
    EXPECT_EQ("No command is given", Lines(outcome.Err).at(0));
    EXPECT_EQ(0u, Lines(outcome.Err).at(1).find("usage: cindermill-batch"));
}

TEST_F(TBatch, EveryCommandStandsInItsDescription)
{
    const std::string description = ReadBytes(SourcePath("docs/batch.md"));
    const std::vector<std::string> usage = Lines(Run("").Err);
    ASSERT_GT(usage.size(), 2u);
    for (size_t i = 2; i < usage.size(); ++i) {
        const std::string command = Fields(usage[i].substr(4), ' ').at(0);
        EXPECT_NE(description.find("\n| `" + command), std::string::npos) << command;
    }
}

TEST_F(TBatch, WrongCommandLinesAreUsageErrors)
{
    const char* lines[] = {"nonsense",
                           "--node-types",
                           "types more",
                           "check",
                           "report",
                           "dump a b",
                           "export a",
                           "run",
                           "run a --frames",
                           "run a --frames -1",
                           "run a --dt x",
                           "run a --seed -1",
                           "run a --seed 4294967296",
                           "run a --other",
                           "efx",
                           "translate",
                           "translate a --rough",
                           "image a b",
                           "image a b --format 7",
                           "image a b --format -1",
                           "resave a",
                           "hash"};
    for (const char* line : lines) {
        const TOutcome outcome = Run(line);
        EXPECT_EQ(2, outcome.Status) << line;
        EXPECT_EQ("", outcome.Out) << line;
        EXPECT_NE(std::string::npos, outcome.Err.find("\nusage: ")) << line;
    }
}

TEST_F(TBatch, HashPrintsBothIdentities)
{
    const TOutcome outcome = Run("hash Scalar scalar ''");
    EXPECT_EQ(0, outcome.Status);
    const std::vector<std::string> lines = Lines(outcome.Out);
    ASSERT_EQ(3u, lines.size());
    // Case counts in the second hash only; the empty name leaves both at their start.
    EXPECT_EQ(Fields(lines[0], '\t').at(1), Fields(lines[1], '\t').at(1));
    EXPECT_NE(Fields(lines[0], '\t').at(2), Fields(lines[1], '\t').at(2));
    EXPECT_EQ("\ta5cf41e1\tffffffff", lines[2]);
}

TEST_F(TBatch, TypesListsEveryNodeType)
{
    const TOutcome outcome = Run("--node-types '" + SourcePath("NodeTypes") + "' types");
    EXPECT_EQ(0, outcome.Status);
    EXPECT_EQ("", outcome.Err);
    std::set<std::string> classes;
    for (const std::string& line : Lines(outcome.Out)) {
        const std::vector<std::string> fields = Fields(line, '\t');
        ASSERT_EQ(5u, fields.size()) << line;
        classes.insert(fields[2]);
    }
    EXPECT_EQ(33u, classes.size());
}

TEST_F(TBatch, TypesReportsBadFilesAndGoesOn)
{
    std::filesystem::create_directory(Folder.Path("types"));
    std::filesystem::copy(SourcePath("NodeTypes/Life/Age.xml"), Folder.Path("types/Age.xml"));
    WriteBytes(Folder.Path("types/Bad.xml"), "<node><name>Bad</name></node>");
    const TOutcome outcome = Run("--node-types '" + Folder.Path("types") + "' types");
    EXPECT_EQ(1, outcome.Status);
    EXPECT_EQ(1u, Lines(outcome.Out).size());
    EXPECT_NE(std::string::npos, outcome.Err.find("Node type file missing description/type tags"));
    EXPECT_NE(std::string::npos, outcome.Err.find("Bad.xml"));
}

TEST_F(TBatch, TypesOfAnEmptyDirectoryIsOneError)
{
    std::filesystem::create_directory(Folder.Path("types"));
    const TOutcome outcome = Run("--node-types '" + Folder.Path("types") + "' types");
    EXPECT_EQ(1, outcome.Status);
    EXPECT_EQ(1u, Lines(outcome.Err).size());
    EXPECT_NE(std::string::npos, outcome.Err.find("No valid .xml node type files found under path"));
}

TEST_F(TBatch, EverySampleChecksDumpsAndExports)
{
    int samples = 0;
    for (const auto& entry : std::filesystem::directory_iterator(SourcePath("samples"))) {
        if (entry.path().extension() != ".effect")
            continue;
        ++samples;
        const std::string effect = "'" + entry.path().string() + "'";
        const TOutcome check = Run(Resources() + "check " + effect);
        EXPECT_EQ(0, check.Status) << effect << check.Err;
        EXPECT_EQ("", check.Err);
        const TOutcome dump = Run("dump " + effect);
        EXPECT_EQ(0, dump.Status);
        EXPECT_EQ("", dump.Err);
        EXPECT_EQ(0u, dump.Out.find("Tied nodes "));
        EXPECT_NE(std::string::npos, dump.Out.find("\nSchedule\n\n"));
        const TOutcome exported = Run(Resources() + "export " + effect + " '" + Folder.Path("out.efx") + "'");
        EXPECT_EQ(0, exported.Status) << exported.Err;
        EXPECT_EQ("", exported.Out);
        const TOutcome report = Run(Resources() + "report " + effect);
        EXPECT_NE(std::string::npos, report.Out.find("Schedule creates valid efx file\r\n"));
        const auto size = std::filesystem::file_size(Folder.Path("out.efx"));
        EXPECT_NE(std::string::npos, report.Out.find("Size on disc: " + std::to_string(size) + " bytes\r\n"));
        const TOutcome listing = Run("efx '" + Folder.Path("out.efx") + "'");
        EXPECT_EQ(0, listing.Status) << listing.Err;
        EXPECT_EQ("", listing.Err);
        const TOutcome resaved = Run("resave " + effect + " '" + Folder.Path("again.effect") + "'");
        EXPECT_EQ(0, resaved.Status) << resaved.Err;
        EXPECT_EQ(ReadBytes(entry.path().string()), ReadBytes(Folder.Path("again.effect")));
    }
    EXPECT_GE(samples, 10);
}

TEST_F(TBatch, ARunWithASeedIsRepeatable)
{
    const TOutcome first = Run("run " + Sample("fountain") + " --frames 20 --dt 0.05 --seed 7");
    EXPECT_EQ(0, first.Status) << first.Err;
    EXPECT_EQ(first.Out, Run("run " + Sample("fountain") + " --frames 20 --dt 0.05 --seed 7").Out);
    EXPECT_NE(first.Out, Run("run " + Sample("fountain") + " --frames 20 --dt 0.05 --seed 8").Out);
    const std::vector<std::string> lines = Lines(first.Out);
    EXPECT_EQ("frame,time,group,particle,global,attribute,type,v0,v1,v2,v3,v4,v5", lines.at(0));
    int last = 0;
    for (size_t i = 1; i < lines.size(); ++i) {
        const std::vector<std::string> fields = Fields(lines[i], ',');
        ASSERT_EQ(13u, fields.size()) << lines[i];
        const int frame = std::stoi(fields[0]);
        EXPECT_TRUE(frame == last || frame == last + 1);
        last = frame;
    }
    EXPECT_EQ(20, last);
}

TEST_F(TBatch, RunTakesAHundredFramesUnlessTold)
{
    const std::vector<std::string> lines = Lines(Run("run " + Sample("fountain")).Out);
    ASSERT_GT(lines.size(), 1u);
    EXPECT_EQ("100", Fields(lines.back(), ',').at(0));
}

TEST_F(TBatch, RunNeedsNoTextures)
{
    EXPECT_EQ(
        0, Run("--resources '" + Folder.GetFolder() + "' run " + Sample("fountain") + " --frames 1").Status);
}

TEST_F(TBatch, AMissingFileIsNamed)
{
    for (const char* command : {"check", "report", "dump", "run"}) {
        const TOutcome outcome = Run(std::string(command) + " '" + Folder.Path("none.effect") + "'");
        EXPECT_EQ(1, outcome.Status);
        EXPECT_EQ("", outcome.Out);
        EXPECT_EQ(Folder.Path("none.effect") + ": The file does not exist\n", outcome.Err);
    }
    for (const std::string& line :
         {"export '" + Folder.Path("none.effect") + "' '" + Folder.Path("out.efx") + "'",
          "resave '" + Folder.Path("none.effect") + "' '" + Folder.Path("out.effect") + "'",
          "image '" + Folder.Path("none.dds") + "' '" + Folder.Path("out.tga") + "' --format 0",
          "efx '" + Folder.Path("none.efx") + "'", "translate '" + Folder.Path("none.sho") + "'"}) {
        const TOutcome outcome = Run(line);
        EXPECT_EQ(1, outcome.Status) << line;
        EXPECT_EQ(0u, outcome.Err.find(Folder.Path("none."))) << outcome.Err;
    }
    EXPECT_FALSE(std::filesystem::exists(Folder.Path("out.efx")));
}

TEST_F(TBatch, DamagedFilesOfEveryKindAreRefusedByName)
{
    const std::string effect = ReadBytes(SourcePath("samples/fountain.effect"));
    for (size_t length :
         {size_t{0}, size_t{3}, size_t{8}, size_t{50}, effect.size() / 2, effect.size() - 1}) {
        WriteBytes(Folder.Path("bad.effect"), effect.substr(0, length));
        for (const char* command : {"check", "report", "dump", "run"}) {
            const TOutcome outcome = Run(std::string(command) + " '" + Folder.Path("bad.effect") + "'");
            EXPECT_EQ(1, outcome.Status) << command << " " << length;
            EXPECT_EQ("", outcome.Out);
            EXPECT_EQ(0u, outcome.Err.find(Folder.Path("bad.effect") + ": ")) << outcome.Err;
        }
    }
}

TEST_F(TBatch, AFailedExportLeavesTheOldFile)
{
    WriteBytes(Folder.Path("out.efx"), "old");
    WriteBytes(Folder.Path("bad.effect"), "CHNK");
    EXPECT_EQ(1, Run("export '" + Folder.Path("bad.effect") + "' '" + Folder.Path("out.efx") + "'").Status);
    EXPECT_EQ("old", ReadBytes(Folder.Path("out.efx")));
    // An effect whose texture cannot be found has no engine and so no export.
    const TOutcome outcome = Run("export " + Sample("fountain") + " /none/out.efx");
    EXPECT_EQ(1, outcome.Status);
    EXPECT_NE(std::string::npos, outcome.Err.find("Is it locked?"));
}

TEST_F(TBatch, ALinkThatNamesNothingIsMendedAndToldInOneLine)
{
    const std::string whole = ReadBytes(SourcePath("samples/fumes.effect"));
    // The input "High" follows "Low", and no output.
    const std::string link("Low\0\0\0\0\0", 8);
    const size_t at = whole.find(link);
    ASSERT_NE(std::string::npos, at);
    std::string broken = whole;
    broken[at + 2] = 'x';
    const std::string file = Folder.Path("broken.effect");
    WriteBytes(file, broken);
    const std::string types = "--node-types '" + SourcePath("NodeTypes") + "' ";
    const std::string line = file + ": Node \"Random Value\": \"High\" follows an input that does not exist; "
                                    "it follows \"Low\" now\n";
    for (const std::string& command :
         {"check '" + file + "'", "report '" + file + "'", "dump '" + file + "'",
          "run '" + file + "' --frames 2", "export '" + file + "' '" + Folder.Path("out.efx") + "'"}) {
        const TOutcome outcome = Run(types + Resources() + command);
        EXPECT_EQ(0, outcome.Status) << command;
        EXPECT_EQ(line, outcome.Err) << command;
    }
    const TOutcome resaved = Run(types + "resave '" + file + "' '" + Folder.Path("again.effect") + "'");
    EXPECT_EQ(0, resaved.Status);
    EXPECT_EQ(line, resaved.Err);
    EXPECT_EQ(whole, ReadBytes(Folder.Path("again.effect")));
    // A library that does not know the type is of no help.
    std::filesystem::create_directory(Folder.Path("types"));
    std::filesystem::copy(SourcePath("NodeTypes/Life/Age.xml"), Folder.Path("types/Age.xml"));
    const std::string without = "--node-types '" + Folder.Path("types") + "' ";
    const TOutcome alone = Run(without + "resave '" + file + "' '" + Folder.Path("alone.effect") + "'");
    EXPECT_EQ(0, alone.Status);
    EXPECT_NE(std::string::npos, alone.Err.find("it follows none now"));
    EXPECT_EQ(1u, Lines(alone.Err).size());
    EXPECT_EQ("", Run(Resources() + "check '" + Folder.Path("alone.effect") + "'").Err);
}

TEST_F(TBatch, AnUnsoundEffectIsNotSavedAgain)
{
    std::string bytes = ReadBytes(SourcePath("samples/fumes.effect"));
    // The type's name and its category stand on either side of its description.
    const std::string head = std::string("Random Value\0\0\0\0", 16) +
                             "A random value for each new particle, each component drawn for itself.";
    const size_t at = bytes.find(head);
    ASSERT_NE(std::string::npos, at);
    const size_t category = at + 16 + ((head.size() - 16 + 4) & ~size_t{3});
    bytes[category] = 99;
    WriteBytes(Folder.Path("bad.effect"), bytes);
    const TOutcome outcome =
        Run("resave '" + Folder.Path("bad.effect") + "' '" + Folder.Path("out.effect") + "'");
    EXPECT_EQ(1, outcome.Status);
    EXPECT_EQ(Folder.Path("bad.effect") +
                  ": Node \"Random Value\": \"Random Value\" has an unknown category\n",
              outcome.Err);
    EXPECT_FALSE(std::filesystem::exists(Folder.Path("out.effect")));
    WriteBytes(Folder.Path("out.effect"), "old");
    EXPECT_EQ(1,
              Run("resave '" + Folder.Path("bad.effect") + "' '" + Folder.Path("out.effect") + "'").Status);
    EXPECT_EQ("old", ReadBytes(Folder.Path("out.effect")));
}

TEST_F(TBatch, AFullDiscLeavesTheOldFile)
{
    const std::string limit = "ulimit -f 1; XDG_CONFIG_HOME='" + Folder.GetFolder() + "/config' '" +
                              std::string(CINDERMILL_BATCH) + "' ";
    const struct
    {
        std::string Arguments;
        std::string Leaf;
    } commands[] = {
        {"resave " + Sample("fountain"), "out.effect"},
        {Resources() + "export " + Sample("fountain"), "out.efx"},
        {"image '" + SourcePath("samples/textures/drop.dds") + "'", "out.tga"},
    };
    for (const auto& command : commands) {
        WriteBytes(Folder.Path(command.Leaf), "old");
        const std::string format = command.Leaf == "out.tga" ? " --format 0" : "";
        const std::string line = limit + command.Arguments + " '" + Folder.Path(command.Leaf) + "'" + format +
                                 " 2>'" + Folder.Path("err") + "'";
        const int status = std::system(("bash -c \"" + line + "\"").c_str());
        EXPECT_EQ(1, WEXITSTATUS(status)) << line;
        EXPECT_EQ("old", ReadBytes(Folder.Path(command.Leaf)));
        const std::string told = ReadBytes(Folder.Path("err"));
        EXPECT_NE(std::string::npos, told.find(Folder.Path(command.Leaf))) << told;
        EXPECT_NE(std::string::npos, told.find("File too large")) << told;
        for (const auto& entry : std::filesystem::directory_iterator(Folder.GetFolder()))
            EXPECT_NE('.', entry.path().filename().string()[0]) << entry.path();
    }
}

TEST_F(TBatch, ImagesChangeFormat)
{
    std::string picture;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(SourcePath("samples")))
        if (entry.path().extension() == ".dds")
            picture = entry.path().string();
    ASSERT_NE("", picture);
    for (int format = 0; format < 7; ++format) {
        const std::string out = Folder.Path("out" + std::to_string(format));
        const TOutcome outcome =
            Run("image '" + picture + "' '" + out + "' --format " + std::to_string(format));
        EXPECT_EQ(0, outcome.Status) << outcome.Err;
        EXPECT_GT(std::filesystem::file_size(out), 18u);
    }
    // What was written raw reads back to the same pixels in either container.
    EXPECT_EQ(0, Run("image '" + Folder.Path("out4") + "' '" + Folder.Path("back") + "' --format 1").Status);
    EXPECT_EQ(ReadBytes(Folder.Path("out1")), ReadBytes(Folder.Path("back")));
}

TEST_F(TBatch, TranslatePrintsBothForms)
{
    const std::string shader =
        "'" + std::string(CINDERMILL_BINARY_DIR) + "/shaders/TSpriteRenderStage.fragment.sho'";
    const TOutcome bound = Run("translate " + shader);
    EXPECT_EQ(0, bound.Status) << bound.Err;
    EXPECT_EQ(0u, bound.Out.find("!!ARBfp1.0\nOPTION NV_fragment_program2;\n"));
    const TOutcome raw = Run("translate " + shader + " --raw");
    EXPECT_EQ(0, raw.Status);
    EXPECT_NE(bound.Out, raw.Out);
    EXPECT_EQ("END\n", raw.Out.substr(raw.Out.size() - 4));
}
