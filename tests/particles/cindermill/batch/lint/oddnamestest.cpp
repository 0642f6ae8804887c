#include "../batchfixture.h"
#include "lintfixture.h"
#include "support/json.h"

#include <filesystem>

namespace {

namespace fs = std::filesystem;

// What no output may trip over: what separates, quotes, ends lines, and is no text at all.
constexpr const char* Odd = "a, \"b\";\n'c'\td\r\\<&\x1B[1m\x7F\xFF\xC3";

// An effect that much is told of, under names as plain or as odd as can be.
class OddNames : public TBatch
{
protected:
    OddNames()
    {
        fs::create_directories(Folder.Path("plain"));
        fs::create_directories(Folder.Path("odd"));
        // By full paths, so that nothing is searched for.
        fs::create_directories(Folder.Path("config/TolvTools"));
        WriteBytes(Folder.Path("config/TolvTools/VORCindermill.conf"),
                   "[General]\nRegVersion=0\nResourceMode=2\n");
        Save("plain", Folder.Path("plain/effect.effect"));
        Save(Odd, Folder.Path("odd/") + "x" + std::string(Odd).substr(0, 14) + ".effect");
    }
    void Save(const std::string& name, const std::string& path)
    {
        const TQuiet quiet;
        TSoundEffect effect(App);
        const TSampleNode grid = effect.Effect.Add("Grid").Int("Particle Count", 1000);
        const TSampleNode stage =
            effect.Effect.Add("Sprite Render Stage").Texture("Texture", (name + ".dds").c_str());
        effect.Trigger.Wire("Count", grid, "Emission Trigger");
        grid.Wire("Start Transform", stage, "Transform");
        stage.Switch("Alpha Test", true).Set("Alpha Test.Ref Value", {1.5f});
        const TSampleNode noise = effect.Effect.Add("Noise");
        grid.Wire("Start Transform", noise, "Position");
        noise.Wire("Value", stage, "Scale");
        for (const TSampleNode& node : {grid, noise, stage, effect.Trigger, effect.Gravity})
            effect.Type(node).Name = name.c_str();
        effect.Type(effect.Colours).Description = "of old";
        // As no person can save one: a file's name holds what its bytes say.
        const std::string plain = Folder.Path("effect");
        ASSERT_TRUE(effect.Effect.Save(plain.c_str()));
        fs::rename(plain, path);
    }
    TOutcome RunBoth(const std::string& command, const std::string& folder)
    {
        return Run("--node-types '" + SourcePath("NodeTypes") + "' --resources '" + App.Path("resources") +
                   "' " + command + " '" + Folder.Path(folder) + "'");
    }
    static TJson Parse(const std::string& text)
    {
        TJson json;
        std::string fault;
        EXPECT_TRUE(ParseJson(text, json, fault)) << fault << "\n" << text;
        return json;
    }

    TTestApp App;
};

// The fields of a row, out of their quotes.
std::vector<std::string> GetCells(const std::string& row)
{
    std::vector<std::string> cells(1);
    bool quoted = false;
    for (size_t i = 0; i < row.size(); ++i) {
        if (row[i] == '"' && quoted && i + 1 < row.size() && row[i + 1] == '"')
            cells.back() += row[i++];
        else if (row[i] == '"')
            quoted = !quoted;
        else if (row[i] == ',' && !quoted)
            cells.emplace_back();
        else
            cells.back() += row[i];
    }
    EXPECT_FALSE(quoted) << row;
    return cells;
}

} // namespace

TEST_F(OddNames, WhatIsOneLineStaysOneLine)
{
    for (const char* command :
         {"check", "check --stale --list-dependencies", "lint --budgets --suggest-box", "replay"}) {
        const TOutcome plain = RunBoth(command, "plain");
        const TOutcome odd = RunBoth(command, "odd");
        EXPECT_EQ(plain.Status, odd.Status) << command;
        EXPECT_GT(Lines(plain.Out).size() + Lines(plain.Err).size(), 0u) << command;
        EXPECT_EQ(Lines(plain.Out).size(), Lines(odd.Out).size()) << command << "\n" << odd.Out;
        EXPECT_EQ(Lines(plain.Err).size(), Lines(odd.Err).size()) << command << "\n" << odd.Err;
        for (const std::string& text : {odd.Out, odd.Err})
            EXPECT_EQ(std::string::npos, text.find('\x1B')) << command << "\n" << text;
    }
}

TEST_F(OddNames, AListingHasOneLineForEachTexture)
{
    const std::string effect = Folder.Path("texture.effect");
    const std::string out = Folder.Path("out.efx");
    std::vector<std::string> listings;
    fs::create_directories(Folder.Path("textures"));
    for (const std::string name : {"plain.dds", "a\nb\x1B[1m.dds"}) {
        fs::copy(SourcePath("samples/textures/drop.dds"), Folder.Path("textures/") + name);
        {
            const TQuiet quiet;
            TSoundEffect sound(App);
            sound.Stage.Texture("Texture", name.c_str());
            ASSERT_TRUE(sound.Effect.Save(effect.c_str()));
        }
        const TOutcome exported =
            Run("--resources '" + Folder.Path("textures") + "' export '" + effect + "' '" + out + "'");
        ASSERT_TRUE(fs::exists(out)) << exported.Err;
        const TOutcome listing = Run("efx '" + out + "'");
        EXPECT_EQ(0, listing.Status) << listing.Err;
        listings.push_back(listing.Out);
    }
    EXPECT_NE(std::string::npos, listings[0].find("texture 0: plain.dds\n")) << listings[0];
    EXPECT_NE(std::string::npos, listings[1].find("texture 0: a b [1m.dds\n")) << listings[1];
    EXPECT_EQ(Lines(listings[0]).size(), Lines(listings[1]).size());
}

// One is of an unknown class, one cannot be scheduled.
TEST_F(OddNames, EachLineOfAReplayOfSeveralFilesBeginsWithItsFile)
{
    const std::string folder = Folder.Path("several");
    fs::create_directories(folder);
    {
        const TQuiet quiet;
        TSoundEffect unknown(App);
        unknown.Type(unknown.Gravity).ClassName = "TLevity";
        ASSERT_TRUE(unknown.Effect.Save((folder + "/a.effect").c_str()));
        TSoundEffect unscheduled(App);
        unscheduled.Type(unscheduled.Source).Category = TU_PROCESS;
        ASSERT_TRUE(unscheduled.Effect.Save((folder + "/b.effect").c_str()));
        TSoundEffect sound(App);
        ASSERT_TRUE(sound.Effect.Save((folder + "/c.effect").c_str()));
    }
    const TOutcome outcome = RunBoth("replay", "several");
    EXPECT_EQ(1, outcome.Status);
    int lines[3] = {};
    for (const std::string& line : Lines(outcome.Err)) {
        ASSERT_EQ(0u, line.find(folder + "/")) << outcome.Err;
        const size_t file = folder.size() + 1;
        ASSERT_GT(line.size(), file + 10) << outcome.Err;
        ASSERT_EQ(".effect: ", line.substr(file + 1, 9)) << outcome.Err;
        ++lines[line[file] - 'a'];
    }
    for (const int count : lines)
        EXPECT_GT(count, 0) << outcome.Err;
    EXPECT_NE(std::string::npos, outcome.Err.find("a.effect: Error 0 : ")) << outcome.Err;
    EXPECT_NE(std::string::npos, outcome.Err.find("b.effect: Schedule creation failed:\n")) << outcome.Err;
    EXPECT_NE(std::string::npos, outcome.Err.find("b.effect: Error 0 : ")) << outcome.Err;
}

TEST_F(OddNames, ColumnsStayColumns)
{
    const TOutcome list = RunBoth("check --list-dependencies", "odd");
    ASSERT_FALSE(Lines(list.Out).empty());
    for (const std::string& line : Lines(list.Out))
        EXPECT_EQ(4u, Fields(line, '\t').size()) << line;
    const std::vector<std::string> rows = Lines(RunBoth("replay", "odd").Out);
    ASSERT_GT(rows.size(), 1u);
    bool isNamed = false;
    for (const std::string& row : rows) {
        const std::vector<std::string> cells = GetCells(row);
        ASSERT_EQ(16u, cells.size()) << row;
        isNamed = isNamed || cells[14] == "a, \"b\"; 'c' d \\<& [1m \xFF\xC3";
    }
    EXPECT_TRUE(isNamed);
}

TEST_F(OddNames, DocumentsAreSound)
{
    for (const char* command : {"check --stale", "check --list-dependencies", "lint", "replay", "report"}) {
        SCOPED_TRACE(command);
        const std::string line = std::string(command) + " --format ";
        for (const char* format : {"json", "sarif"}) {
            const TJson document = Parse(RunBoth(line + format, "odd").Out);
            TJson schema;
            std::string fault;
            const std::string name = format == std::string("json") ? "findings" : "sarif";
            ASSERT_TRUE(
                ParseJson(ReadBytes(SourcePath("docs/schemas/" + name + ".schema.json")), schema, fault));
            for (const std::string& wrong : FindSchemaFaults(schema, document))
                ADD_FAILURE() << wrong;
        }
        WriteBytes(Folder.Path("junit.xml"), RunBoth(line + "junit", "odd").Out);
        const std::string check = "xmllint --noout --schema '" + SourcePath("docs/schemas/junit.xsd") +
                                  "' '" + Folder.Path("junit.xml") + "' >'" + Folder.Path("xmllint") +
                                  "' 2>&1";
        EXPECT_EQ(0, std::system(check.c_str())) << ReadBytes(Folder.Path("xmllint"));
    }
    // Names are whole there, as far as they are text.
    const TJson lint = Parse(RunBoth("lint --format json", "odd").Out);
    bool isNamed = false;
    for (int i = 0; i < lint["findings"].size(); ++i)
        isNamed =
            isNamed || (lint["findings"][i]["node"].Kind == TJson::JK_OBJECT &&
                        lint["findings"][i]["node"]["name"].Text.rfind("a, \"b\";\n'c'\td\r\\<&", 0) == 0);
    EXPECT_TRUE(isNamed);
}

TEST_F(OddNames, AReferenceBeyondItsFieldIsANoteOfTheReplay)
{
    const TOutcome outcome = RunBoth("replay", "plain");
    EXPECT_NE(
        std::string::npos,
        outcome.Err.find("\"Alpha Test.Ref Value\" is 1.5, which does not fit its field: 1 is exported"))
        << outcome.Err;
}
