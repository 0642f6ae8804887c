#include "batchfixture.h"
#include "support/json.h"

#include <csignal>
#include <fstream>
#include <set>

#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

class TFormats : public TBatch
{
protected:
    static std::string Quote(const std::string& path) { return "'" + path + "'"; }
    static TJson Schema(const std::string& name)
    {
        TJson schema;
        std::string fault;
        EXPECT_TRUE(ParseJson(ReadBytes(SourcePath("docs/schemas/" + name)), schema, fault)) << fault;
        return schema;
    }
    static TJson Parse(const std::string& text)
    {
        TJson json;
        std::string fault;
        EXPECT_TRUE(ParseJson(text, json, fault)) << fault << "\n" << text;
        return json;
    }
    static void ExpectFits(const std::string& schema, const TJson& json)
    {
        for (const std::string& fault : FindSchemaFaults(Schema(schema), json))
            ADD_FAILURE() << schema << " " << fault;
    }
    // The document, held against its schema. Nothing stands beside it.
    TJson RunJson(const std::string& arguments, int status)
    {
        const TOutcome outcome = Run(arguments);
        EXPECT_EQ(status, outcome.Status) << arguments << outcome.Err;
        EXPECT_EQ("", outcome.Err);
        const TJson json = Parse(outcome.Out);
        const bool isSarif = arguments.find("sarif") != std::string::npos;
        ExpectFits(isSarif ? "sarif.schema.json" : "findings.schema.json", json);
        return json;
    }
    std::string RunJunit(const std::string& arguments, int status)
    {
        const TOutcome outcome = Run(arguments);
        EXPECT_EQ(status, outcome.Status) << arguments << outcome.Err;
        EXPECT_EQ("", outcome.Err);
        WriteBytes(Folder.Path("junit.xml"), outcome.Out);
        const std::string line = "xmllint --noout --schema '" + SourcePath("docs/schemas/junit.xsd") + "' '" +
                                 Folder.Path("junit.xml") + "' >'" + Folder.Path("xmllint") + "' 2>&1";
        EXPECT_EQ(0, std::system(line.c_str())) << ReadBytes(Folder.Path("xmllint")) << outcome.Out;
        return outcome.Out;
    }
    // A sample in the folder whose textures are not to be found.
    std::string Textureless(const std::string& sample, const std::string& leaf)
    {
        std::string bytes = ReadBytes(SourcePath("samples/" + sample + ".effect"));
        for (const char* extension : {".dds", ".hvt"})
            for (size_t at = bytes.find(extension); at != std::string::npos;
                 at = bytes.find(extension, at + 1))
                bytes[at + 3] = 'x';
        WriteBytes(Folder.Path(leaf), bytes);
        // By full paths, so that nothing is searched for.
        fs::create_directories(Folder.Path("config/TolvTools"));
        WriteBytes(Folder.Path("config/TolvTools/VORCindermill.conf"),
                   "[General]\nRegVersion=0\nResourceMode=2\n");
        return Folder.Path(leaf);
    }
};

int Count(const std::string& text, const std::string& part)
{
    int count = 0;
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++count;
    return count;
}

} // namespace

// What holds the outputs against the schemas would notice.
TEST_F(TFormats, TheValidatorRefusesWhatItsSchemaDoes)
{
    const TJson schema = Schema("findings.schema.json");
    const std::string good = Run("check --format json " + Sample("fountain") + " none").Out;
    ASSERT_TRUE(FindSchemaFaults(schema, Parse(good)).empty());
    const struct
    {
        const char* From;
        const char* To;
    } changes[] = {
        {"\"version\": 1", "\"version\": 2"},
        {"\"severity\": \"error\"", "\"severity\": \"fatal\""},
        {"\"line\": null", "\"line\": 0"},
        {"\"line\": null", "\"line\": \"1\""},
        {"\"line\": null,", ""},
        {"\"line\": null", "\"lines\": null"},
        {"\"id\": \"load.failed\"", "\"id\": \"load\""},
        {"\"files\": 2", "\"files\": 2.5"},
        {"\"numbers\": {}", "\"numbers\": {\"a\": \"b\"}"},
        {"\"node\": null", "\"node\": {}"},
        {"\"failOn\": \"warning\"", "\"failOn\": \"note\""},
    };
    for (const auto& change : changes) {
        std::string bad = good;
        const size_t at = bad.find(change.From);
        ASSERT_NE(std::string::npos, at) << change.From;
        bad.replace(at, std::string(change.From).size(), change.To);
        EXPECT_FALSE(FindSchemaFaults(schema, Parse(bad)).empty()) << change.To;
    }
    TJson unknown = schema;
    unknown.Members["uniqueItems"].Kind = TJson::JK_FLAG;
    EXPECT_FALSE(FindSchemaFaults(unknown, Parse(good)).empty());
}

TEST_F(TFormats, JsonThatIsNoneIsRefused)
{
    TJson json;
    std::string fault;
    for (const char* text : {"", "{", "[1,]", "{\"a\":1,}", "01", "\"\n\"", "{\"a\":1 \"b\":2}", "nul",
                             "[1] 2", "{\"a\":1,\"a\":2}", "\"\\x\""})
        EXPECT_FALSE(ParseJson(text, json, fault)) << text;
    EXPECT_TRUE(ParseJson(" {\"a\": [1.5e3, -0, true, null, \"\\u0041\\n\"]} ", json, fault));
    EXPECT_EQ(1500.0, json["a"][0].Number);
    EXPECT_EQ("A\n", json["a"][4].Text);
}

TEST_F(TFormats, ADirectoryWithoutNodeTypesIsAFindingOfEveryFormat)
{
    fs::create_directories(Folder.Path("empty"));
    WriteBytes(Folder.Path("team.toml"), "node-types = \"empty\"\n[severities]\ntype.error = \"note\"\n");
    for (const std::string& options :
         {"--node-types " + Quote(Folder.Path("empty")), "--node-types " + Quote(Folder.Path("none")),
          "--project " + Quote(Folder.Path("team.toml"))})
        for (const std::string& command :
             {std::string("types"), "check " + Sample("fountain"), "check --stale " + Sample("fountain"),
              "lint " + Sample("fountain"), "replay " + Sample("fountain"), "report " + Sample("fountain")}) {
            SCOPED_TRACE(options + " " + command);
            const std::string line = options + " " + command + " --fail-on error --format ";
            const TJson json = RunJson(line + "json", 1);
            ASSERT_EQ(1, json["findings"].size());
            EXPECT_EQ("type.error", json["findings"][0]["id"].Text);
            EXPECT_EQ(0u,
                      json["findings"][0]["message"].Text.find("No valid .xml node type files found under"));
            EXPECT_EQ(1, json["files"].size());
            const TJson sarif = RunJson(line + "sarif", 1);
            EXPECT_EQ("type.error", sarif["runs"][0]["results"][0]["ruleId"].Text);
            EXPECT_NE(std::string::npos, RunJunit(line + "junit", 1).find("type.error"));
        }
}

TEST_F(TFormats, ASoundEffectPassesInEveryFormat)
{
    const TJson json = RunJson(Resources() + "check --format json " + Sample("fountain"), 0);
    EXPECT_EQ(1.0, json["version"].Number);
    EXPECT_EQ("check", json["command"].Text);
    EXPECT_TRUE(json["passed"].Flag);
    EXPECT_EQ(0, json["findings"].size());
    EXPECT_EQ(SourcePath("samples/fountain.effect"), json["files"][0]["file"].Text);
    const TJson sarif = RunJson(Resources() + "check --format sarif " + Sample("fountain"), 0);
    EXPECT_EQ("2.1.0", sarif["version"].Text);
    EXPECT_EQ(0, sarif["runs"][0]["results"].size());
    EXPECT_EQ(1, sarif["runs"][0]["artifacts"].size());
    const std::string junit = RunJunit(Resources() + "check --format junit " + Sample("fountain"), 0);
    EXPECT_EQ(0, Count(junit, "<failure"));
    EXPECT_EQ(1, Count(junit, "<testcase "));
    EXPECT_EQ("", Run(Resources() + "check --format text " + Sample("fountain")).Out);
}

TEST_F(TFormats, ErrorsOfTwoNodesOfOneTypeCanBeToldApart)
{
    const std::string file = Textureless("rain", "rain.effect");
    const TJson json = RunJson("check --format json " + Quote(file), 1);
    std::set<double> numbers;
    std::set<std::pair<double, double>> places;
    int stages = 0;
    for (const TJson& finding : json["findings"].Items) {
        EXPECT_EQ("engine.error", finding["id"].Text);
        EXPECT_EQ("error", finding["severity"].Text);
        EXPECT_EQ(file, finding["file"].Text);
        ASSERT_EQ(TJson::JK_OBJECT, finding["node"].Kind);
        EXPECT_EQ(TJson::JK_NUMBER, finding["group"].Kind);
        EXPECT_NE("", finding["node"]["name"].Text);
        EXPECT_NE("", finding["node"]["type"].Text);
        numbers.insert(finding["node"]["number"].Number);
        places.insert({finding["node"]["x"].Number, finding["node"]["y"].Number});
        ++stages;
    }
    EXPECT_EQ(3, stages);
    EXPECT_EQ(3u, numbers.size());
    EXPECT_EQ(3u, places.size());
    EXPECT_EQ(3.0, json["counts"]["errors"].Number);

    const TJson sarif = RunJson("check --format sarif " + Quote(file), 1);
    std::set<std::string> logical;
    for (const TJson& result : sarif["runs"][0]["results"].Items) {
        logical.insert(result["locations"][0]["logicalLocations"][0]["fullyQualifiedName"].Text);
        EXPECT_EQ(
            "engine.error",
            sarif["runs"][0]["tool"]["driver"]["rules"][static_cast<int>(result["ruleIndex"].Number)]["id"]
                .Text);
    }
    EXPECT_EQ(3u, logical.size());

    const std::string junit = RunJunit("check --format junit " + Quote(file), 1);
    EXPECT_EQ(1, Count(junit, "<failure"));
    for (const double number : numbers)
        EXPECT_NE(std::string::npos, junit.find("number " + std::to_string(static_cast<int>(number)) + ","))
            << junit;
}

// The same lines as ever.
TEST_F(TFormats, TextStaysAsItIs)
{
    const std::string file = Textureless("burst", "burst.effect");
    for (const char* command : {"check ", "check --format text --fail-on error "}) {
        const TOutcome outcome = Run(command + Quote(file));
        EXPECT_EQ(1, outcome.Status);
        EXPECT_EQ("", outcome.Out);
        const std::vector<std::string> lines = Lines(outcome.Err);
        ASSERT_GE(lines.size(), 3u) << outcome.Err;
        EXPECT_EQ(file + ": Schedule creation failed:", lines[0]);
        for (size_t n = 1; n < lines.size(); ++n)
            EXPECT_EQ(0u, lines[n].find("Error " + std::to_string(n - 1) +
                                        " : Could not resolve path for texture "))
                << lines[n];
    }
}

TEST_F(TFormats, AFileThatCannotBeLoadedIsAFinding)
{
    WriteBytes(Folder.Path("bad.effect"), "CHNK");
    const std::string files = Quote(Folder.Path("bad.effect")) + " " + Quote(Folder.Path("none.effect"));
    for (const char* command : {"check ", "report "}) {
        const TJson json = RunJson(std::string(command) + "--format json " + files, 1);
        ASSERT_EQ(2, json["findings"].size());
        EXPECT_EQ("load.failed", json["findings"][0]["id"].Text);
        EXPECT_EQ(Folder.Path("bad.effect"), json["findings"][0]["file"].Text);
        EXPECT_EQ("The file does not exist", json["findings"][1]["message"].Text);
        EXPECT_FALSE(json["files"][1]["passed"].Flag);
        RunJson(std::string(command) + "--format sarif " + files, 1);
        const std::string junit = RunJunit(std::string(command) + "--format junit " + files, 1);
        EXPECT_NE(std::string::npos, junit.find(" tests=\"2\" failures=\"2\""));
    }
}

TEST_F(TFormats, AMendedLinkIsANoteAtItsNode)
{
    std::string bytes = ReadBytes(SourcePath("samples/fumes.effect"));
    bytes[bytes.find(std::string("Low\0\0\0\0\0", 8)) + 2] = 'x';
    const std::string file = Folder.Path("broken.effect");
    WriteBytes(file, bytes);
    for (const char* command : {"check ", "lint "}) {
        const TJson json = RunJson(Resources() + command + "--format json " + Quote(file), 0);
        int mended = 0;
        for (int i = 0; i < json["findings"].size(); ++i) {
            const TJson& finding = json["findings"][i];
            if (finding["id"].Text != "load.mended")
                continue;
            ++mended;
            EXPECT_EQ("note", finding["severity"].Text);
            EXPECT_EQ("Random Value", finding["node"]["name"].Text);
            EXPECT_EQ("TRandomEmitter", finding["node"]["type"].Text);
        }
        EXPECT_EQ(1, mended) << command;
    }
    const std::string junit = RunJunit(Resources() + "check --format junit " + Quote(file), 0);
    EXPECT_EQ(0, Count(junit, "<failure"));
    EXPECT_EQ(1, Count(junit, "<system-out>"));
}

TEST_F(TFormats, ReportTellsTheNumbersOfTheText)
{
    const TJson json = RunJson(Resources() + "report --format json " + Sample("campfire"), 0);
    const TJson& facts = json["files"][0]["facts"];
    const std::string text = Run(Resources() + "report " + Sample("campfire")).Out;
    const auto expect = [&](const std::string& line, const TJson& number) {
        EXPECT_NE(std::string::npos,
                  text.find(line + ": " + std::to_string(static_cast<int>(number.Number)) + "\r\n"))
            << line;
    };
    expect("Chunks in file", facts["chunks"]);
    expect("Graph nodes", facts["nodes"]);
    expect("Graph edges", facts["edges"]);
    expect("Groups in schedule", facts["schedule"]["groups"]);
    expect("Nodes in schedule", facts["schedule"]["nodes"]);
    ASSERT_EQ(facts["schedule"]["groups"].Number, facts["schedule"]["tiedNodes"].size());
    for (int group = 0; group < facts["schedule"]["tiedNodes"].size(); ++group)
        expect("Tied nodes in group " + std::to_string(group), facts["schedule"]["tiedNodes"][group]);
    for (const TJson* size : {&facts["size"], &facts["efx"]["size"]})
        EXPECT_NE(
            std::string::npos,
            text.find("Size on disc: " + std::to_string(static_cast<int>(size->Number)) + " bytes\r\n"));
    EXPECT_EQ(static_cast<double>(fs::file_size(SourcePath("samples/campfire.effect"))),
              facts["size"].Number);
}

TEST_F(TFormats, AReportOfWhatIsNotExportedFailsOnlyWhereItIsJudged)
{
    const std::string file = Quote(Textureless("fountain", "a.effect"));
    EXPECT_EQ(0, Run("report " + file).Status) << "as ever";
    EXPECT_EQ(1, Run("report --fail-on error " + file).Status);
    const TJson json = RunJson("report --format json " + file, 1);
    EXPECT_EQ(TJson::JK_NULL, json["files"][0]["facts"]["efx"].Kind);
    EXPECT_EQ(TJson::JK_OBJECT, json["files"][0]["facts"]["schedule"].Kind);
    EXPECT_EQ("engine.error", json["findings"][0]["id"].Text);
}

TEST_F(TFormats, TypesAreListedWithTheirPorts)
{
    const std::string types = "--node-types " + Quote(SourcePath("NodeTypes")) + " types";
    const TJson json = RunJson(types + " --format json", 0);
    const std::vector<std::string> lines = Lines(Run(types).Out);
    ASSERT_EQ(static_cast<int>(lines.size()), json["types"].size());
    for (int i = 0; i < json["types"].size(); ++i) {
        const TJson& type = json["types"][i];
        const auto ports = [](const TJson& list) {
            std::string text;
            for (const TJson& port : list.Items)
                text += (text.empty() ? "" : ", ") + port["name"].Text + ":" + port["type"].Text;
            return text;
        };
        EXPECT_EQ(lines[static_cast<size_t>(i)], type["name"].Text + "\t" + type["category"].Text + "\t" +
                                                     type["class"].Text + "\t" + ports(type["inputs"]) +
                                                     "\t" + ports(type["outputs"]));
        EXPECT_NE(std::string::npos,
                  ReadBytes(type["file"].Text).find("<name>" + type["name"].Text + "</name>"));
    }
    RunJson(types + " --format sarif", 0);
    RunJunit(types + " --format junit", 0);
}

TEST_F(TFormats, AFaultInANodeTypeHasItsLine)
{
    fs::create_directory(Folder.Path("types"));
    fs::copy(SourcePath("NodeTypes/Life/Age.xml"), Folder.Path("types/Age.xml"));
    WriteBytes(Folder.Path("types/Bad.xml"), "<node>\n<name>Bad</name>\n</node>");
    const std::string types = "--node-types " + Quote(Folder.Path("types")) + " types";
    const TJson json = RunJson(types + " --format json", 1);
    ASSERT_EQ(1, json["findings"].size());
    EXPECT_EQ("type.error", json["findings"][0]["id"].Text);
    EXPECT_EQ(Folder.Path("types/Bad.xml"), json["findings"][0]["file"].Text);
    const TOutcome text = Run(types);
    const std::string line = std::to_string(static_cast<int>(json["findings"][0]["line"].Number));
    EXPECT_NE(std::string::npos, text.Err.find("Bad.xml [" + line + "] : ")) << text.Err;
    const TJson sarif = RunJson(types + " --format sarif", 1);
    EXPECT_EQ(
        json["findings"][0]["line"].Number,
        sarif["runs"][0]["results"][0]["locations"][0]["physicalLocation"]["region"]["startLine"].Number);
    RunJunit(types + " --format junit", 1);
}

TEST_F(TFormats, AFaultInANodeTypeIsAFindingWhereverTypesAreComparedWith)
{
    fs::copy(SourcePath("NodeTypes"), Folder.Path("types"), fs::copy_options::recursive);
    for (const bool isDamaged : {false, true}) {
        if (isDamaged)
            WriteBytes(Folder.Path("types/Bad.xml"), "<node>\n<name>Bad</name>\n</node>");
        for (const char* command : {"lint ", "check --stale --fail-on error "}) {
            SCOPED_TRACE(command);
            const int status = isDamaged ? 1 : 0;
            const std::string line = "--node-types " + Quote(Folder.Path("types")) + " " + Resources() +
                                     command + Sample("fountain") + " --format ";
            const TJson json = RunJson(line + "json", status);
            int faults = 0;
            for (int i = 0; i < json["findings"].size(); ++i) {
                const TJson& finding = json["findings"][i];
                faults += finding["id"].Text == "type.error" ? 1 : 0;
                EXPECT_EQ(finding["id"].Text == "type.error",
                          finding["file"].Text == Folder.Path("types/Bad.xml"));
            }
            EXPECT_EQ(status, faults);
            EXPECT_EQ(isDamaged ? 2 : 1, json["files"].size());
            RunJson(line + "sarif", status);
            EXPECT_EQ(isDamaged, RunJunit(line + "junit", status).find("type.error") != std::string::npos);
            const TOutcome text = Run(line + "text");
            EXPECT_EQ(status, text.Status);
            EXPECT_EQ(static_cast<size_t>(status), Lines(text.Err).size()) << text.Err;
            EXPECT_EQ(isDamaged, text.Err.find("types/Bad.xml [") != std::string::npos) << text.Err;
        }
    }
}

TEST_F(TFormats, WhatComparesTypesNeedsSome)
{
    // A program of its own, in a place where there are none.
    fs::create_directories(Folder.Path("bin"));
    fs::copy(CINDERMILL_BATCH, Folder.Path("bin/cindermill-batch"));
    Program = "cd '" + Folder.Path("bin") + "' && ./cindermill-batch";
    EXPECT_EQ(0, Run(Resources() + "check " + Sample("fountain")).Status);
    for (const char* command : {"lint ", "check --stale "}) {
        SCOPED_TRACE(command);
        const std::string line = Resources() + command + Sample("fountain");
        const TJson json = RunJson(line + " --format json", 1);
        ASSERT_EQ(1, json["findings"].size());
        EXPECT_EQ("type.error", json["findings"][0]["id"].Text);
        const TOutcome text = Run(line);
        EXPECT_EQ(1, text.Status);
        EXPECT_EQ("", text.Out);
        EXPECT_EQ(0u, text.Err.find("No valid .xml node type files found under")) << text.Err;
    }
}

TEST_F(TFormats, NamesOfAnyBytesAreWritten)
{
    const std::string name = "a&<\">'%20 \x01\xff\xc3\xa9\\.effect";
    const std::string arguments = Quote("a&<\">'\\''%20 \x01\xff\xc3\xa9\\.effect");
    const TJson json = RunJson("check --format json " + arguments, 1);
    EXPECT_EQ("a&<\">'%20 \x01\xef\xbf\xbd\xc3\xa9\\.effect", json["files"][0]["file"].Text);
    const TJson sarif = RunJson("check --format sarif " + arguments, 1);
    EXPECT_EQ("a%26%3C%22%3E%27%2520%20%01%FF%C3%A9/.effect",
              sarif["runs"][0]["artifacts"][0]["location"]["uri"].Text);
    RunJunit("check --format junit " + arguments, 1);
}

TEST_F(TFormats, WrongOptionsAreUsageErrors)
{
    for (const char* line : {"check --format", "check --format yaml a", "check --fail-on note a",
                             "check --fail-on", "check --stail a", "report --stale a", "types --verbose",
                             "export a b --depfile", "export a b --format json", "export a b c"}) {
        const TOutcome outcome = Run(line);
        EXPECT_EQ(2, outcome.Status) << line;
        EXPECT_EQ("", outcome.Out) << line;
        EXPECT_NE(std::string::npos, outcome.Err.find("\nusage: ")) << line;
    }
    // Behind two dashes all words are names.
    EXPECT_EQ("--format: The file does not exist\n", Run("check -- --format").Err);
}

#if !defined(CINDERMILL_SANITIZED)
namespace {

// What a run took.
struct TTaken
{
    int Status = -1;
    // The most memory that it held. What the system tells after its end would count this process's share,
    // too.
    long Kilobytes = 0;
    // What the processor was busy with it: the clock would tell of the machine's other work.
    double Seconds = 0.0;
};

long ReadPeak(pid_t process)
{
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    for (std::string line; std::getline(status, line);)
        if (line.compare(0, 6, "VmHWM:") == 0)
            return std::stol(line.substr(6));
    return 0;
}

// The run is stopped at its beginning and at its end.
TTaken Measure(std::vector<std::string> words, const std::string& out)
{
    std::vector<char*> arguments;
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        if (std::freopen(out.c_str(), "w", stdout) != nullptr &&
            ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) == 0)
            execv(arguments[0], arguments.data());
        _exit(3);
    }
    TTaken taken;
    rusage usage = {};
    int status = 0;
    while (wait4(child, &status, 0, &usage) == child && WIFSTOPPED(status)) {
        if (status >> 8 == (SIGTRAP | PTRACE_EVENT_EXIT << 8))
            taken.Kilobytes = ReadPeak(child);
        else
            ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACEEXIT);
        ptrace(PTRACE_CONT, child, nullptr, nullptr);
    }
    taken.Status = status;
    taken.Seconds = static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
                    static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) * 1e-6;
    return taken;
}

} // namespace

// The largest sample in a thousand copies, in one call, and in a hundred: what grows as the number of files
// does takes ten times as much, and nothing of it is kept.
TEST_F(TFormats, AThousandEffectsTakeNoMoreThanTheyMay)
{
    constexpr int Few = 100;
    constexpr int Many = 1000;
    fs::path largest;
    for (const auto& entry : fs::directory_iterator(SourcePath("samples")))
        if (entry.path().extension() == ".effect" &&
            (largest.empty() || entry.file_size() > fs::file_size(largest)))
            largest = entry.path();
    const auto copy = [&](const char* folder, int count) {
        fs::create_directory(Folder.Path(folder));
        for (int i = 0; i < count; ++i)
            fs::copy(largest, Folder.Path(folder) + "/" + std::to_string(i) + ".effect");
    };
    copy("few", Few);
    copy("many", Many);
    const std::string out = Folder.Path("out");
    for (const char* format : {"text", "json", "junit", "sarif"}) {
        const auto check = [&](const char* folder) {
            return Measure({CINDERMILL_BATCH, "--resources", SourcePath("samples"), "check", "--format",
                            format, Folder.Path(folder)},
                           out);
        };
        const TTaken few = check("few");
        const TTaken taken = check("many");
        EXPECT_EQ(0, few.Status);
        EXPECT_EQ(0, taken.Status);
        EXPECT_GT(taken.Kilobytes, 1024) << format;
        EXPECT_LT(taken.Kilobytes, 16 * 1024) << format;
        EXPECT_LT(taken.Seconds, 3 * Many / Few * few.Seconds) << format;
        if (format != std::string("json"))
            continue;
        const TJson json = Parse(ReadBytes(out));
        EXPECT_EQ(Many, json["files"].size());
        ExpectFits("findings.schema.json", json);
    }
}
#endif

// Notes fail nothing, differences do, and each names its node.
TEST_F(TFormats, ReplayTellsDifferencesAndNotes)
{
    const std::string both = Sample("fountain") + " " + Sample("tiles");
    const TJson json = RunJson("replay --format json --frames 20 " + both, 1);
    EXPECT_EQ("replay", json["command"].Text);
    EXPECT_EQ(2, json["files"].size());
    int numValues = 0;
    int numNotes = 0;
    for (const TJson& finding : json["findings"].Items) {
        numNotes += finding["id"].Text == "replay.note" ? 1 : 0;
        if (finding["id"].Text != "replay.value")
            continue;
        ++numValues;
        EXPECT_EQ("error", finding["severity"].Text);
        EXPECT_NE(std::string::npos, finding["file"].Text.find("tiles"));
        EXPECT_GE(finding["numbers"]["times"].Number, 1);
        EXPECT_EQ("TGrid", finding["node"]["type"].Text);
    }
    EXPECT_GE(numValues, 1);
    EXPECT_GE(numNotes, 2);
    RunJson("replay --format json --frames 20 " + Sample("fountain"), 0);
    RunJson("replay --format sarif --frames 20 " + both, 1);
    const std::string junit = RunJunit("replay --format junit --frames 20 " + both, 1);
    EXPECT_EQ(1, Count(junit, "<failure"));
}
