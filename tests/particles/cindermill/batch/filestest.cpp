#include "batchfixture.h"
#include "support/json.h"

#include "particles/cindermill/batch/dependencyfile.h"
#include "particles/cindermill/batch/effectpaths.h"

#include <algorithm>
#include <chrono>
#include <set>
#include <thread>

#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

class TBatchFiles : public TBatch
{
protected:
    static std::string Quote(const std::string& path) { return "'" + path + "'"; }
    void Make(const std::string& leaf)
    {
        fs::create_directories(fs::path(Folder.Path(leaf)).parent_path());
        WriteBytes(Folder.Path(leaf), "");
    }
    // What a word in the folder stands for, from the folder on.
    std::vector<std::string> Expand(const std::string& word)
    {
        vector<TString> files;
        ExpandEffectPaths((Folder.GetFolder() + "/" + word).c_str(), files);
        std::vector<std::string> result;
        for (const TString& file : files)
            result.push_back(std::string(file.Print()).substr(Folder.GetFolder().size() + 1));
        return result;
    }
    // A library in the folder in which one type has another description.
    std::string ChangedLibrary(const std::string& leaf)
    {
        fs::copy(SourcePath("NodeTypes"), Folder.Path("library"), fs::copy_options::recursive);
        const std::string path = Folder.Path("library/" + leaf);
        std::string bytes = ReadBytes(path);
        bytes.insert(bytes.find("<description>") + 13, "Changed. ");
        WriteBytes(path, bytes);
        return "--node-types " + Quote(Folder.Path("library")) + " ";
    }
};

using TNames = std::vector<std::string>;

// A folder of effects, with textures, under a name that every tool of a build must be told of with care.
class TBuild : public TBatchFiles
{
protected:
    TBuild() : Root(Folder.Path("a b#c$d:e"))
    {
        fs::create_directories(Root + "/effects");
        fs::create_directories(Root + "/out");
        fs::copy(SourcePath("samples/textures"), Root + "/textures");
        fs::copy(SourcePath("samples/animations"), Root + "/textures/animations");
        for (const char* name : {"fountain", "rain", "sparks", "campfire", "comet"})
            fs::copy(SourcePath("samples/" + std::string(name) + ".effect"),
                     Root + "/effects/" + name + ".effect");
        fs::copy(SourcePath("NodeTypes"), Root + "/types", fs::copy_options::recursive);
        WriteBytes(Root + "/project.toml", "resources = \"textures\"\nnode-types = \"types\"\n");
        for (const auto& entry : fs::recursive_directory_iterator(Root))
            fs::last_write_time(entry.path(), fs::file_time_type::clock::now() - std::chrono::hours(1));
    }
    // The effects that a tool exports when it is run.
    std::set<std::string> Exported(const std::string& tool)
    {
        const std::string log = Folder.Path("log");
        const std::string command = "cd " + Quote(Root) + " && XDG_CONFIG_HOME='" + Folder.GetFolder() +
                                    "/config' " + tool + " >'" + log + "' 2>&1";
        EXPECT_EQ(0, std::system(command.c_str())) << ReadBytes(log);
        std::set<std::string> result;
        for (const std::string& line : Lines(ReadBytes(log)))
            if (line.find("Exporting ") != std::string::npos)
                result.insert(line.substr(line.find("Exporting ") + 10));
        return result;
    }
    // As if it were saved anew, once the clock of the files has moved on.
    void Touch(const std::string& leaf)
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        fs::last_write_time(Root + "/" + leaf, fs::file_time_type::clock::now());
    }
    void ExpectEachChangeExportsWhatHangsOnIt(const std::string& tool)
    {
        const std::set<std::string> none;
        EXPECT_EQ(5u, Exported(tool).size());
        EXPECT_EQ(none, Exported(tool));
        const struct
        {
            const char* Changed;
            std::set<std::string> Names;
        } cases[] = {
            {"textures/drop.dds", {"fountain", "rain"}},
            {"textures/spark.dds", {"rain", "sparks"}},
            {"textures/fire.dds", {"campfire"}},
            {"textures/tile.hvt", {}},
            {"textures/animations/knot.vori", {"comet"}},
            {"effects/sparks.effect", {"sparks"}},
            {"types/Curves/AnimatedTexture.xml", {"campfire"}},
            {"project.toml", {"fountain", "rain", "sparks", "campfire", "comet"}},
        };
        for (const auto& each : cases) {
            Touch(each.Changed);
            std::set<std::string> expected;
            for (const std::string& name : each.Names)
                expected.insert("out/" + name + ".efx");
            EXPECT_EQ(expected, Exported(tool)) << each.Changed;
            EXPECT_EQ(none, Exported(tool)) << "after " << each.Changed;
        }
    }

    const std::string Root;
};

} // namespace

TEST_F(TBatchFiles, AFolderStandsForAllEffectsBelow)
{
    for (const char* leaf : {"fx/b.effect", "fx/A.EFFECT", "fx/deep/er/c.effect", "fx/d.efx", "fx/effect",
                             "fx/.hidden.effect", "fx/.git/e.effect", "other.effect"})
        Make(leaf);
    EXPECT_EQ((TNames{"fx/A.EFFECT", "fx/b.effect", "fx/deep/er/c.effect"}), Expand("fx"));
    EXPECT_EQ((TNames{"fx/A.EFFECT", "fx/b.effect", "fx/deep/er/c.effect"}), Expand("fx/"));
    EXPECT_EQ(TNames{"none"}, Expand("none"));
    fs::create_directory(Folder.Path("empty"));
    EXPECT_EQ(TNames{"empty"}, Expand("empty"));
}

TEST_F(TBatchFiles, APatternStandsForTheFilesThatItFits)
{
    for (const char* leaf : {"fx/b1.effect", "fx/b2.effect", "fx/b22.effect", "fx/c.efx", "fx/.b3.effect",
                             "fx/deep/b4.effect", "fx/deep/er/b5.effect", "fx/[x].effect"})
        Make(leaf);
    EXPECT_EQ((TNames{"fx/b1.effect", "fx/b2.effect", "fx/b22.effect"}), Expand("fx/b*.effect"));
    EXPECT_EQ((TNames{"fx/b1.effect", "fx/b2.effect"}), Expand("fx/b?.effect"));
    EXPECT_EQ(TNames{"fx/b2.effect"}, Expand("fx/b[2-9].effect"));
    EXPECT_EQ(TNames{"fx/b1.effect"}, Expand("fx/b[!2].effect"));
    EXPECT_EQ((TNames{"fx/.b3.effect"}), Expand("fx/.*.effect"));
    EXPECT_EQ(TNames{"fx/deep/b4.effect"}, Expand("fx/*/b*.effect"));
    EXPECT_EQ((TNames{"fx/b1.effect", "fx/b2.effect", "fx/deep/b4.effect", "fx/deep/er/b5.effect"}),
              Expand("fx/**/b?.effect"));
    EXPECT_EQ(TNames{"fx/deep/er/b5.effect"}, Expand("f*/d*/e*/b*"));
    // A file of the very name is meant by it.
    EXPECT_EQ(TNames{"fx/[x].effect"}, Expand("fx/[x].effect"));
    EXPECT_EQ(TNames{"fx/z*.effect"}, Expand("fx/z*.effect"));
}

TEST(EffectPaths, NamesFitPatterns)
{
    const struct
    {
        const char* Name;
        const char* Pattern;
        bool Fits;
    } cases[] = {
        {"abc", "abc", true},    {"abc", "ab", false},    {"abc", "*", true},       {"", "*", true},
        {"", "?", false},        {"abc", "a*c", true},    {"abcbc", "a*bc", true},  {"abcbd", "a*bc", false},
        {"abc", "***", true},    {"abc", "a?c", true},    {"abc", "[a-c]bc", true}, {"abc", "[^a]bc", false},
        {"a-c", "a[-x]c", true}, {"a]c", "a[]]c", true},  {"a[c", "a[c", true},     {"abc", "*[", false},
        {"a*c", "a[*]c", true},  {"aXc", "a[*]c", false}, {"ABC", "abc", false},
    };
    for (const auto& each : cases)
        EXPECT_EQ(each.Fits, FitsPattern(each.Name, each.Pattern)) << each.Name << " " << each.Pattern;
}

TEST_F(TBatchFiles, FoldersAndPatternsAreCheckedAndReported)
{
    fs::create_directories(Folder.Path("fx/deep"));
    fs::copy(SourcePath("samples/fountain.effect"), Folder.Path("fx/a.effect"));
    fs::copy(SourcePath("samples/rain.effect"), Folder.Path("fx/deep/b.effect"));
    WriteBytes(Folder.Path("fx/deep/bad.effect"), "CHNK");
    const TOutcome check = Run(Resources() + "check " + Quote(Folder.Path("fx")));
    EXPECT_EQ(1, check.Status);
    EXPECT_EQ(0u, check.Err.find(Folder.Path("fx/deep/bad.effect") + ": "));
    EXPECT_EQ(1u, Lines(check.Err).size());
    EXPECT_EQ(0, Run(Resources() + "check " + Quote(Folder.Path("fx/**/?.effect"))).Status);
    const std::string first = Run(Resources() + "report " + Quote(Folder.Path("fx/a.effect"))).Out;
    const std::string second = Run(Resources() + "report " + Quote(Folder.Path("fx/deep/b.effect"))).Out;
    const TOutcome report = Run(Resources() + "report " + Quote(Folder.Path("fx/**/?.effect")));
    EXPECT_EQ(0, report.Status);
    EXPECT_EQ(first + "\r\n" + second, report.Out);
}

TEST_F(TBatchFiles, DependenciesAreListed)
{
    const TOutcome text = Run("--node-types " + Quote(SourcePath("NodeTypes")) + " " + Resources() +
                              "check --list-dependencies " + Sample("comet"));
    EXPECT_EQ(0, text.Status) << text.Err;
    std::map<std::string, int> kinds;
    for (const std::string& line : Lines(text.Out)) {
        const std::vector<std::string> fields = Fields(line, '\t');
        ASSERT_EQ(4u, fields.size()) << line;
        EXPECT_EQ(SourcePath("samples/comet.effect"), fields[0]);
        EXPECT_TRUE(fs::exists(fields[3])) << line;
        ++kinds[fields[1]];
    }
    // A comet's light and its glitter.
    EXPECT_EQ(2, kinds["texture"]);
    EXPECT_EQ(1, kinds["animation"]);
    EXPECT_GT(kinds["node-type"], 3);
    EXPECT_EQ(3u, kinds.size());
    TJson json;
    std::string fault;
    ASSERT_TRUE(ParseJson(Run("--node-types " + Quote(SourcePath("NodeTypes")) + " " + Resources() +
                              "check --list-dependencies --format json " + Sample("comet"))
                              .Out,
                          json, fault));
    const TJson& list = json["files"][0]["dependencies"];
    ASSERT_EQ(static_cast<int>(Lines(text.Out).size()), list.size());
    for (int i = 0; i < list.size(); ++i)
        EXPECT_EQ(Lines(text.Out)[static_cast<size_t>(i)],
                  SourcePath("samples/comet.effect") + "\t" + list[i]["kind"].Text + "\t" +
                      list[i]["name"].Text + "\t" + list[i]["path"].Text);
}

TEST_F(TBatchFiles, ADependencyThatIsNotThereHasNoPath)
{
    std::string bytes = ReadBytes(SourcePath("samples/fountain.effect"));
    bytes[bytes.find("drop.dds") + 7] = 'x';
    WriteBytes(Folder.Path("a.effect"), bytes);
    const TOutcome outcome = Run("check --list-dependencies " + Quote(Folder.Path("a.effect")));
    EXPECT_EQ(1, outcome.Status);
    EXPECT_NE(std::string::npos, outcome.Out.find("\ttexture\tdrop.ddx\t\n")) << outcome.Out;
}

TEST_F(TBatchFiles, StaleEffectsAreTold)
{
    const std::string same = "--node-types " + Quote(SourcePath("NodeTypes")) + " " + Resources();
    EXPECT_EQ(0, Run(same + "check --stale " + Quote(SourcePath("samples"))).Status);
    const std::string changed = ChangedLibrary("Forces/Gravity.xml") + Resources();
    EXPECT_EQ(0, Run(changed + "check " + Sample("fountain")).Status) << "nobody asks";
    const TOutcome outcome = Run(changed + "check --stale " + Sample("fountain"));
    EXPECT_EQ(1, outcome.Status);
    EXPECT_EQ(SourcePath("samples/fountain.effect") +
                  ": Node \"Gravity\" differs from the library's type of its name\n",
              outcome.Err);
    EXPECT_EQ(0, Run(changed + "check --stale --fail-on error " + Sample("fountain")).Status);
    EXPECT_EQ(0, Run(changed + "check --stale " + Sample("aura")).Status) << "it has no such node";
    TJson json;
    std::string fault;
    ASSERT_TRUE(
        ParseJson(Run(changed + "check --stale --format json " + Sample("fountain")).Out, json, fault));
    ASSERT_EQ(1, json["findings"].size());
    EXPECT_EQ("type.stale", json["findings"][0]["id"].Text);
    EXPECT_EQ("Gravity", json["findings"][0]["node"]["name"].Text);
}

TEST_F(TBatchFiles, ANodeWhoseClassTheLibraryLacksIsTold)
{
    fs::copy(SourcePath("NodeTypes"), Folder.Path("library"), fs::copy_options::recursive);
    fs::remove(Folder.Path("library/Forces/Gravity.xml"));
    const std::string types = "--node-types " + Quote(Folder.Path("library")) + " " + Resources();
    const TOutcome outcome = Run(types + "check --stale " + Sample("fountain"));
    EXPECT_EQ(1, outcome.Status);
    EXPECT_EQ(SourcePath("samples/fountain.effect") +
                  ": Node \"Gravity\" is of a type that the library does not have\n",
              outcome.Err);
}

// A node bears its type's name until an artist gives it one of its own.
TEST_F(TBatchFiles, ANodeWithANameOfItsOwnIsNotStale)
{
    std::string bytes = ReadBytes(SourcePath("samples/fountain.effect"));
    const size_t at = bytes.find(std::string("Gravity\0", 8));
    ASSERT_NE(std::string::npos, at);
    bytes[at] = 'L';
    WriteBytes(Folder.Path("a.effect"), bytes);
    const TOutcome outcome = Run("--node-types " + Quote(SourcePath("NodeTypes")) + " " + Resources() +
                                 "check --stale " + Quote(Folder.Path("a.effect")));
    EXPECT_EQ(0, outcome.Status) << outcome.Err;
}

TEST_F(TBatchFiles, ANameThatNoRuleCanHaveIsToldInOneLine)
{
    const std::string effect = Folder.Path("a\nb\t.effect");
    fs::copy(SourcePath("samples/fountain.effect"), effect);
    const TOutcome outcome = Run(Resources() + "export --depfile " + Quote(Folder.Path("out.d")) + " " +
                                 Quote(effect) + " " + Quote(Folder.Path("out.efx")));
    EXPECT_EQ(1, outcome.Status);
    EXPECT_EQ(1u, Lines(outcome.Err).size()) << outcome.Err;
    EXPECT_FALSE(fs::exists(Folder.Path("out.efx")));
}

// As an unset variable of a script leaves one.
TEST_F(TBatchFiles, AnEmptyNameIsNoFile)
{
    const std::string file = Sample("fountain");
    for (const std::string& command : std::vector<std::string>{
             std::string("check ''"), std::string("check -- ''"), "check " + file + " ''",
             std::string("lint ''"), std::string("report ''"), std::string("replay ''"),
             std::string("check --format json ''"), "export '' out.efx", "export " + file + " ''"}) {
        const TOutcome outcome = Run(command);
        EXPECT_EQ(2, outcome.Status) << command;
        EXPECT_EQ("", outcome.Out) << command;
        EXPECT_EQ(0u, outcome.Err.find("The name of a file is empty\nusage: ")) << command << outcome.Err;
    }
    for (const std::string& command : std::vector<std::string>{
             std::string("dump ''"), std::string("run ''"), std::string("text ''"), std::string("efx ''"),
             std::string("translate ''"), "diff '' " + file, "diff " + file + " ''", "resave '' out",
             "resave " + file + " ''", std::string("image '' out --format 0")}) {
        const TOutcome outcome = Run(command);
        EXPECT_EQ(1, outcome.Status) << command;
        EXPECT_EQ("", outcome.Out) << command;
        EXPECT_EQ(1u, Lines(outcome.Err).size()) << command << outcome.Err;
    }
}

TEST_F(TBatchFiles, ADirectoryWithoutNodeTypesIsAnErrorOfEveryCommand)
{
    fs::create_directories(Folder.Path("types/below"));
    WriteBytes(Folder.Path("types/below/no.txt"), "");
    const std::string out = Quote(Folder.Path("out"));
    for (const std::string& directory : {Folder.Path("types"), Folder.Path("none")})
        for (const std::string& command :
             {std::string("types"), "check " + Sample("fountain"), "lint " + Sample("fountain"),
              "replay " + Sample("fountain"), "report " + Sample("fountain"), "dump " + Sample("fountain"),
              "run " + Sample("fountain"), "export " + Sample("fountain") + " " + out,
              "resave " + Sample("fountain") + " " + out, std::string("efx none.efx"),
              std::string("hash a")}) {
            const TOutcome outcome = Run("--node-types " + Quote(directory) + " " + command);
            EXPECT_EQ(1, outcome.Status) << command;
            EXPECT_EQ("", outcome.Out) << command;
            EXPECT_EQ("No valid .xml node type files found under path " + directory + "\n", outcome.Err)
                << command;
            EXPECT_FALSE(fs::exists(Folder.Path("out"))) << command;
        }
}

TEST(DependencyFile, NamesAreEscaped)
{
    const struct
    {
        const char* Name;
        const char* Escaped;
    } cases[] = {
        {"a/b.c-d_e", "a/b.c-d_e"}, {"a b", "a\\ b"}, {"a#b", "a\\#b"},       {"a$b", "a$$b"},
        {"a:b", "a\\:b"},           {"a\\b", "a\\b"}, {"a\\ b", "a\\\\\\ b"}, {"a%b", "a%b"},
    };
    for (const auto& each : cases) {
        TString escaped;
        EXPECT_TRUE(EscapeRuleName(each.Name, escaped));
        EXPECT_STREQ(each.Escaped, escaped.Print());
    }
    TString escaped;
    for (const char* name : {"a\nb", "a\rb", "a\tb", "a;b"})
        EXPECT_FALSE(EscapeRuleName(name, escaped));
}

TEST_F(TBatchFiles, ARuleThatCannotBeWrittenIsToldAndTheOldOneStays)
{
    const std::string exportTo =
        Resources() + "export " + Sample("fountain") + " " + Quote(Folder.Path("out.efx")) + " --depfile ";
    const TOutcome folder = Run(exportTo + "/none/a.d");
    EXPECT_EQ(1, folder.Status);
    EXPECT_EQ(0u, folder.Err.find("/none/a.d: The file cannot be written: ")) << folder.Err;
    WriteBytes(Folder.Path("a.d"), "old");
    const TOutcome tab = Run(Resources() + "export " + Sample("fountain") + " " +
                             Quote(Folder.Path("tab\t.efx")) + " --depfile " + Quote(Folder.Path("a.d")));
    EXPECT_EQ(1, tab.Status);
    EXPECT_NE(std::string::npos,
              tab.Err.find("No rule can have a file's name with a line's end, a tab or a semicolon"));
    EXPECT_EQ("old", ReadBytes(Folder.Path("a.d")));
}

// What an export reads, and the export itself, are written over by no rule and no export.
TEST_F(TBatchFiles, WhatAnExportReadsIsNotWrittenOver)
{
    fs::copy(SourcePath("samples"), Folder.Path("art"), fs::copy_options::recursive);
    WriteBytes(Folder.Path("project.toml"), "");
    const std::string out = Folder.Path("out.efx");
    const std::string burst = Folder.Path("art/burst.effect");
    const std::string start = "--project " + Quote(Folder.Path("project.toml")) + " --resources " +
                              Quote(Folder.Path("art")) + " export " + Quote(burst) + " ";
    for (const std::string leaf : {"art/burst.effect", "art/textures/glow.dds", "project.toml"}) {
        const std::string path = Folder.Path(leaf);
        const std::string before = ReadBytes(path);
        EXPECT_EQ(1, Run(start + Quote(out) + " --depfile " + Quote(path)).Status) << leaf;
        EXPECT_EQ(1, Run(start + Quote(path)).Status) << leaf;
        EXPECT_EQ(before, ReadBytes(path)) << leaf;
        EXPECT_FALSE(fs::exists(out));
    }
    EXPECT_EQ(1, Run(start + Quote(out) + " --depfile " + Quote(out)).Status);
    EXPECT_FALSE(fs::exists(out));
}

// A build system would take the export for done, and never make its rule. An older one stays, and its age
// tells that it is to be made again.
TEST_F(TBatchFiles, AnExportWithoutItsRuleIsNotMade)
{
    const std::string out = Folder.Path("out.efx");
    const std::string start = Resources() + "export " + Sample("fountain") + " " + Quote(out);
    EXPECT_EQ(1, Run(start + " --depfile /none/a.d").Status);
    EXPECT_FALSE(fs::exists(out));
    WriteBytes(out, "older");
    EXPECT_EQ(1, Run(start + " --depfile /none/a.d").Status);
    EXPECT_EQ("older", ReadBytes(out));
}

// However the program ends, no export is newer than its rule: an old one may not name what it hangs on.
TEST_F(TBatchFiles, TheRuleIsThereBeforeTheExport)
{
    const std::string out = Folder.Path("out.efx");
    const std::string rule = Folder.Path("out.d");
    const int watch = inotify_init1(IN_NONBLOCK);
    ASSERT_GE(inotify_add_watch(watch, Folder.GetFolder().c_str(), IN_CREATE | IN_MOVED_TO), 0);
    for (int run = 0; run < 2; ++run) {
        ASSERT_EQ(0, Run(Resources() + "export " + Sample("fountain") + " " + Quote(out) + " --depfile " +
                         Quote(rule))
                         .Status);
        alignas(inotify_event) char events[4096];
        const ssize_t size = read(watch, events, sizeof(events));
        TNames names;
        for (ssize_t at = 0; at < size;) {
            const inotify_event* event = reinterpret_cast<const inotify_event*>(events + at);
            if (event->name == std::string("out.efx") || event->name == std::string("out.d"))
                names.emplace_back(event->name);
            at += static_cast<ssize_t>(sizeof(inotify_event)) + event->len;
        }
        EXPECT_EQ(names, (TNames{"out.d", "out.efx"}));
    }
    close(watch);
}

TEST_F(TBatchFiles, AFolderThatMayNotBeSearchedIsTold)
{
    if (!CanNobodyRun())
        GTEST_SKIP() << "The build is closed to others.";
    ASSERT_EQ(0, chmod(Folder.GetFolder().c_str(), 0777));
    Make("art/closed/a.effect");
    ASSERT_EQ(0, chmod(Folder.Path("art/closed").c_str(), 0));
    {
        const TNobody nobody;
        for (const char* word : {"art", "art/*/*.effect"}) {
            const TOutcome outcome = Run("check " + Quote(Folder.Path(word)));
            EXPECT_EQ(1, outcome.Status) << word;
            EXPECT_NE(std::string::npos, outcome.Err.find("art/closed: ")) << outcome.Err;
        }
    }
    ASSERT_EQ(0, chmod(Folder.Path("art/closed").c_str(), 0755));
}

TEST_F(TBatchFiles, AnEmptyNameIsNoProject)
{
    EXPECT_EQ(2, Run("--project '' types").Status);
}

TEST_F(TBuild, NinjaExportsWhatHangsOnAChange)
{
    std::string build =
        "rule export\n"
        "  command = '" CINDERMILL_BATCH "' --project project.toml export --fail-on error --depfile "
        "$out.d $in $out\n"
        "  depfile = $out.d\n"
        "  deps = gcc\n"
        "  description = Exporting $out\n\n";
    for (const char* name : {"fountain", "rain", "sparks", "campfire", "comet"})
        build += "build out/" + std::string(name) + ".efx: export effects/" + name + ".effect\n";
    WriteBytes(Root + "/build.ninja", build);
    ExpectEachChangeExportsWhatHangsOnIt("ninja");
}

TEST_F(TBuild, MakeExportsWhatHangsOnAChange)
{
    WriteBytes(Root + "/Makefile", "effects := $(wildcard effects/*.effect)\n"
                                   "exports := $(effects:effects/%.effect=out/%.efx)\n"
                                   "all: $(exports)\n"
                                   "out/%.efx: effects/%.effect\n"
                                   "\t@echo Exporting $@\n"
                                   "\t@'" CINDERMILL_BATCH
                                   "' --project project.toml export --fail-on error --depfile $@.d $< $@\n"
                                   "-include $(exports:=.d)\n");
    ExpectEachChangeExportsWhatHangsOnIt("make");
}

// Whole paths, with all that such paths hold here.
TEST_F(TBuild, WholePathsGoThroughARuleToo)
{
    const std::string out = Root + "/out/rain.efx";
    EXPECT_EQ(0,
              Run("--project " + Quote(Root + "/project.toml") + " export " +
                  Quote(Root + "/effects/rain.effect") + " " + Quote(out) + " --depfile " + Quote(out + ".d"))
                  .Status);
    // The tool reads the rule, and then knows what the file hangs on.
    std::string escaped;
    for (const char ch : out)
        escaped += ch == ' ' || ch == ':' || ch == '$' ? std::string("$") + ch : std::string(1, ch);
    WriteBytes(Root + "/build.ninja",
               "rule copy\n  command = true\n  depfile = out/rain.efx.d\n  deps = gcc\n"
               "build " +
                   escaped + ": copy\n");
    const std::string log = Folder.Path("log");
    const std::string command =
        "cd " + Quote(Root) + " && ninja >'" + log + "' && ninja -t deps >'" + log + "'";
    EXPECT_EQ(0, std::system(command.c_str())) << ReadBytes(log);
    const std::vector<std::string> lines = Lines(ReadBytes(log));
    for (const char* leaf : {"effects/rain.effect", "project.toml", "textures/drop.dds", "textures/ring.hvt",
                             "types/Life/Age.xml"})
        EXPECT_EQ(1, std::count(lines.begin(), lines.end(), "    " + Root + "/" + leaf)) << ReadBytes(log);
}
