#include "batchfixture.h"
#include "support/json.h"

#include "particles/cindermill/batch/findings/findingkinds.h"
#include "particles/cindermill/batch/project/project.h"
#include "particles/effectgraph/error.h"

namespace {

namespace fs = std::filesystem;

class TProjectFile : public TBatch
{
protected:
    static std::string Quote(const std::string& path) { return "'" + path + "'"; }
    std::string Write(const std::string& text)
    {
        WriteBytes(Folder.Path("project.toml"), text);
        return "--project " + Quote(Folder.Path("project.toml")) + " ";
    }
    // The errors of a file, one a line; "" for none.
    std::string FaultsOf(const std::string& text)
    {
        Write(text);
        TProject project;
        TErrorList errors;
        const bool loaded = project.Load(Folder.Path("project.toml").c_str(), errors);
        EXPECT_EQ(loaded, errors.empty());
        std::string result;
        for (const TError* error : errors) {
            TString line;
            error->GetText(line);
            result += line.Print();
        }
        return result;
    }
    // The user's settings, in which the flags of the policies are 2, 4 and 8.
    void SetPolicies(int flags)
    {
        fs::create_directories(Folder.Path("config/TolvTools"));
        WriteBytes(Folder.Path("config/TolvTools/VORCindermill.conf"),
                   "[General]\nRegVersion=0\nGeneralFlags=" + std::to_string(flags) + "\n");
    }
    std::string Export() { return "export " + Sample("fountain") + " " + Quote(Folder.Path("out.efx")); }
    bool IsExported()
    {
        const bool exported = fs::exists(Folder.Path("out.efx"));
        fs::remove(Folder.Path("out.efx"));
        return exported;
    }
};

// The reason of the only allowance, or "".
std::string ReasonOf(const TProject& project, const std::string& file, const TFindingPlace& place)
{
    TFinding finding = MakeFinding("engine.error", file.c_str(), "x");
    finding.Place = place;
    project.Judge(finding);
    return finding.Allowed.Print();
}

} // namespace

TEST_F(TProjectFile, AnEmptyOneSaysNothing)
{
    EXPECT_EQ("", FaultsOf(""));
    TProject project;
    TErrorList errors;
    ASSERT_TRUE(project.Load(Folder.Path("project.toml").c_str(), errors));
    EXPECT_TRUE(project.IsLoaded());
    for (int i = 0; i < BG_NUMBUDGETS; ++i)
        EXPECT_EQ(TProject::NoLimit, project.GetLimit(static_cast<TBudget>(i)));
    EXPECT_FALSE(project.GetPolicies().MustHaveBoundingBox);
    EXPECT_EQ(FS_WARNING, project.GetSeverity("export.warning", FS_WARNING));
    EXPECT_TRUE(project.GetNodeTypes().IsEmpty());
}

TEST_F(TProjectFile, ItsValuesAreTaken)
{
    fs::create_directories(Folder.Path("types"));
    fs::create_directories(Folder.Path("assets"));
    EXPECT_EQ("", FaultsOf("node-types = \"types\"\nresources = \"assets\"\n"
                           "[policies]\nfailure-prevents-export = true\nno-mixed-bounding-boxes = true\n"
                           "[budgets]\nrows = 56\ninput-buffers = 1\noutput-buffers = 2\nprogram-kb = 3\n"
                           "workspace-kb = 4\nparticle-bytes = 5\nfile-bytes = 6\nparticles = 0\n"
                           "[severities]\nengine.error = \"note\"\n\"type.stale\" = \"error\"\n"));
    TProject project;
    TErrorList errors;
    ASSERT_TRUE(project.Load(Folder.Path("project.toml").c_str(), errors));
    EXPECT_TRUE(project.GetPolicies().FailurePreventsExport);
    EXPECT_FALSE(project.GetPolicies().MustHaveBoundingBox);
    EXPECT_TRUE(project.GetPolicies().NoMixedBoundingBoxes);
    const int64_t limits[] = {56, 1, 2, 3, 4, 5, 6, 0};
    for (int i = 0; i < BG_NUMBUDGETS; ++i)
        EXPECT_EQ(limits[i], project.GetLimit(static_cast<TBudget>(i)));
    EXPECT_EQ(FS_NOTE, project.GetSeverity("engine.error", FS_ERROR));
    EXPECT_EQ(FS_ERROR, project.GetSeverity("type.stale", FS_WARNING));
    EXPECT_EQ(FS_WARNING, project.GetSeverity("type.missing", FS_WARNING));
    EXPECT_EQ(Folder.Path("types"), Text(project.GetNodeTypes()));
    EXPECT_EQ(Folder.Path("assets"), Text(project.GetResources()));
}

TEST_F(TProjectFile, WhatIsWrongIsToldWithFileAndLine)
{
    const struct
    {
        const char* Text;
        int Line;
        const char* Told;
    } cases[] = {
        {"\ncolour = 1\n", 2, "There is no key \"colour\" in a project file"},
        {"policies = 1", 1, "\"policies\" takes a table, not a whole number"},
        {"[policies]\nmust-have = true", 2, "There is no key \"must-have\" among the policies"},
        {"[policies]\nMust-Have-Bounding-Box = true", 2, "There is no key \"Must-Have-Bounding-Box\""},
        {"[policies]\nmust-have-bounding-box = 1", 2, "takes true or false, not a whole number"},
        {"[budgets]\nrow = 1", 2, "There is no key \"row\" among the budgets"},
        {"[budgets]\n\nrows = \"1\"", 3, "\"rows\" takes a whole number, not a text"},
        {"[budgets]\nrows = 1.5", 2, "\"rows\" takes a whole number, not a number with a point"},
        {"[budgets]\nrows = -1", 2, "\"rows\" takes a number from 0 to"},
        {"[budgets]\nrows = 9223372036854775807", 2, "\"rows\" takes a number from 0 to"},
        {"[severities]\nengine.eror = \"note\"", 2, "There is no key \"engine.eror\" among the findings"},
        {"[severities]\nengine.error = \"bad\"", 2, "\"engine.error\" is \"note\", \"warning\" or \"error\""},
        {"[severities]\nengine.error = true", 2, "\"engine.error\" takes a text, not true or false"},
        {"resources = \"\"", 1, "\"resources\" is empty"},
        {"resources = \"none\"", 1, "\"resources\" names no folder: "},
        {"node-types = [\"a\"]", 1, "\"node-types\" takes a text, not an array"},
        {"allow = 1", 1, "\"allow\" takes tables in double brackets"},
        {"allow = [1]", 1, "\"allow\" takes tables in double brackets"},
        {"\n[[allow]]\nfinding = \"engine.error\"\nfile = \"a\"", 2,
         "needs \"finding\", \"file\" and \"reason\""},
        {"[[allow]]\nfinding = \"none\"", 2, "There is no finding \"none\""},
        {"[[allow]]\nwhy = \"x\"", 2, "There is no key \"why\" of an allowed finding"},
        {"[[allow]]\nat = [1]", 2, "\"at\" takes two numbers in brackets"},
        {"[[allow]]\nat = [1, \"2\"]", 2, "\"at\" takes two numbers in brackets"},
        {"[[allow]]\ngroup = \"1\"", 2, "\"group\" takes a whole number, not a text"},
        {"\n\nrows = ", 3, "Error while parsing"},
        {"a = 1\na = 2", 2, "Error while parsing"},
    };
    for (const auto& each : cases) {
        const std::string faults = FaultsOf(each.Text);
        const std::string place = Folder.Path("project.toml") + " [" + std::to_string(each.Line) + "] : ";
        EXPECT_EQ(0u, faults.find(place)) << each.Text << "\n" << faults;
        EXPECT_NE(std::string::npos, faults.find(each.Told)) << each.Text << "\n" << faults;
        EXPECT_EQ(1u, Lines(faults).size()) << each.Text << "\n" << faults;
    }
    EXPECT_EQ(3u, Lines(FaultsOf("b = 1\na = 1\n[budgets]\nx = 1")).size());
    EXPECT_NE(std::string::npos, Lines(FaultsOf("b = 1\na = 1")).at(0).find("[1] : "));
}

TEST_F(TProjectFile, OneThatCannotBeReadStopsTheRun)
{
    const TOutcome wrong = Run(Write("x = 1") + "hash a");
    EXPECT_EQ(1, wrong.Status);
    EXPECT_EQ("", wrong.Out);
    EXPECT_EQ(Folder.Path("project.toml") + " [1] : There is no key \"x\" in a project file\n", wrong.Err);
    const TOutcome none = Run("--project " + Quote(Folder.Path("none.toml")) + " hash a");
    EXPECT_EQ(1, none.Status);
    EXPECT_EQ(Folder.Path("none.toml") + ": The file does not exist\n", none.Err);
    EXPECT_EQ(2, Run("--project").Status);
    EXPECT_EQ(1, Run("--project /dev/zero hash a").Status);
}

TEST_F(TProjectFile, OneFindingOfOneNodeIsAllowed)
{
    fs::create_directories(Folder.Path("sub"));
    WriteBytes(Folder.Path("sub/a.effect"), "");
    WriteBytes(Folder.Path("sub/b.effect"), "");
    Write(
        "[[allow]]\nfinding = \"engine.error\"\nfile = \"sub/a.effect\"\nnode = \"Sprite\"\nat = [10, -4.5]\n"
        "group = 1\nreason = \"It stays\"\n");
    TProject project;
    TErrorList errors;
    ASSERT_TRUE(project.Load(Folder.Path("project.toml").c_str(), errors));
    TFindingPlace place;
    place.Node = "Sprite";
    place.Group = 1;
    place.X = 10.0f;
    place.Y = -4.5f;
    EXPECT_EQ("It stays", ReasonOf(project, Folder.Path("sub/a.effect"), place));
    EXPECT_EQ("It stays", ReasonOf(project, Folder.Path("sub/../sub/a.effect"), place));
    EXPECT_EQ("", ReasonOf(project, Folder.Path("sub/b.effect"), place));
    TFindingPlace other = place;
    other.X = 11.0f;
    EXPECT_EQ("", ReasonOf(project, Folder.Path("sub/a.effect"), other));
    other = place;
    other.Group = 2;
    EXPECT_EQ("", ReasonOf(project, Folder.Path("sub/a.effect"), other));
    other = place;
    other.Node = "sprite";
    EXPECT_EQ("", ReasonOf(project, Folder.Path("sub/a.effect"), other));
    EXPECT_EQ("", ReasonOf(project, Folder.Path("sub/a.effect"), TFindingPlace()));
    TFinding warning = MakeFinding("export.warning", Folder.Path("sub/a.effect").c_str(), "x");
    warning.Place = place;
    project.Judge(warning);
    EXPECT_TRUE(warning.Allowed.IsEmpty());
}

TEST_F(TProjectFile, SeveritiesAndAllowancesDecideTheExitStatus)
{
    std::string bytes = ReadBytes(SourcePath("samples/fountain.effect"));
    bytes[bytes.find("drop.dds") + 7] = 'x';
    const std::string file = Folder.Path("a.effect");
    WriteBytes(file, bytes);
    const std::string check = "check --format json " + Quote(file);
    EXPECT_EQ(1, Run(Write("") + check).Status);
    EXPECT_EQ(0, Run(Write("[severities]\nengine.error = \"note\"") + check).Status);
    EXPECT_EQ(0, Run(Write("[severities]\nengine.error = \"warning\"") + check + " --fail-on error").Status);
    const std::string allow = "[[allow]]\nfinding = \"engine.error\"\nfile = \"a.effect\"\n"
                              "node = \"Sprite Render Stage\"\nreason = \"It comes later\"\n";
    const TOutcome allowed = Run(Write(allow) + check);
    EXPECT_EQ(0, allowed.Status) << allowed.Out;
    TJson json;
    std::string fault;
    ASSERT_TRUE(ParseJson(allowed.Out, json, fault));
    EXPECT_EQ("It comes later", json["findings"][0]["allowed"].Text);
    EXPECT_EQ(Folder.Path("project.toml"), json["project"].Text);
    EXPECT_EQ(1.0, json["counts"]["allowed"].Number);
    EXPECT_EQ(0.0, json["counts"]["errors"].Number);
    EXPECT_EQ(0, Run(Write(allow) + "check " + Quote(file)).Status) << "as text, too";
    const TOutcome sarif = Run(Write(allow) + "check --format sarif " + Quote(file));
    ASSERT_TRUE(ParseJson(sarif.Out, json, fault));
    EXPECT_EQ("It comes later", json["runs"][0]["results"][0]["suppressions"][0]["justification"].Text);
}

// The same file and command give the same, whoever runs them.
TEST_F(TProjectFile, PoliciesComeFromTheProjectAndNotFromTheUser)
{
    for (const int flags : {0, 2, 10}) {
        SetPolicies(flags);
        const TOutcome none = Run(Resources() + Write("") + Export());
        EXPECT_EQ(0, none.Status) << none.Err;
        EXPECT_EQ("", none.Err);
        EXPECT_TRUE(IsExported());
        const TOutcome warned =
            Run(Resources() + Write("[policies]\nmust-have-bounding-box = true") + Export());
        EXPECT_EQ(1, warned.Status);
        EXPECT_EQ("1 warnings:\nWarning: Effect file does not contain a bounding box\n", warned.Err);
        EXPECT_TRUE(IsExported());
        const TOutcome passed = Run(Resources() + Write("[policies]\nmust-have-bounding-box = true") +
                                    Export() + " --fail-on error");
        EXPECT_EQ(0, passed.Status);
        EXPECT_EQ(warned.Err, passed.Err);
        EXPECT_TRUE(IsExported());
        const TOutcome stopped = Run(
            Resources() + Write("[policies]\nmust-have-bounding-box = true\nfailure-prevents-export = true") +
            Export());
        EXPECT_EQ(1, stopped.Status);
        EXPECT_EQ("Export failed:\nError 0 : Fatal Error: Effect file does not contain a bounding box\n",
                  stopped.Err);
        EXPECT_FALSE(IsExported());
    }
}

TEST_F(TProjectFile, WithoutOneTheUsersPoliciesHold)
{
    SetPolicies(2);
    EXPECT_EQ(1, Run(Resources() + Export()).Status);
    EXPECT_TRUE(IsExported());
    SetPolicies(10);
    EXPECT_EQ(1, Run(Resources() + Export()).Status);
    EXPECT_FALSE(IsExported());
    SetPolicies(0);
    EXPECT_EQ(0, Run(Resources() + Export()).Status);
    EXPECT_TRUE(IsExported());
}

TEST_F(TProjectFile, VerboseTellsWhereThePoliciesComeFrom)
{
    SetPolicies(10);
    for (const std::string& command : {"check " + Sample("fountain"), "export " + Sample("fountain") + " " +
                                                                          Quote(Folder.Path("out.efx"))}) {
        const TOutcome user = Run(Resources() + command + " --verbose");
        EXPECT_EQ(
            "The export policies are those of the user's settings: policy failure prevents export; effects "
            "must have bounding box",
            Lines(user.Err).at(0));
        const TOutcome project =
            Run(Resources() + Write("[policies]\nno-mixed-bounding-boxes = true") + command + " --verbose");
        EXPECT_EQ("The export policies are those of the project " + Folder.Path("project.toml") +
                      ": effects cannot mix static and dynamic bounding boxes\n",
                  project.Err);
        EXPECT_EQ("The export policies are those of the project " + Folder.Path("project.toml") + ": none\n",
                  Run(Resources() + Write("") + command + " --verbose").Err);
    }
}

TEST_F(TProjectFile, ItsFoldersAreUsedFromWhereverTheProgramRuns)
{
    fs::create_directories(Folder.Path("team/assets/deep"));
    fs::create_directories(Folder.Path("team/types"));
    fs::copy(SourcePath("samples/textures/drop.dds"), Folder.Path("team/assets/deep/drop.dds"));
    fs::copy(SourcePath("NodeTypes/Life/Age.xml"), Folder.Path("team/types/Age.xml"));
    WriteBytes(Folder.Path("team/project.toml"), "resources = \"assets\"\nnode-types = \"types\"\n");
    const std::string project = "--project " + Quote(Folder.Path("team/project.toml")) + " ";
    EXPECT_EQ(1u, Lines(Run(project + "types").Out).size());
    const TOutcome listed = Run(project + "check --list-dependencies " + Sample("fountain"));
    EXPECT_EQ(0, listed.Status) << listed.Err;
    EXPECT_NE(std::string::npos,
              listed.Out.find("\ttexture\tdrop.dds\t" + Folder.Path("team/assets/deep/drop.dds") + "\n"))
        << listed.Out;
    EXPECT_NE(std::string::npos, listed.Out.find("\tnode-type\tAge\t" + Folder.Path("team/types/Age.xml")));
    EXPECT_NE(std::string::npos, listed.Out.find("\tnode-type\tEmitter\t\n")) << "the team has no such type";
    // What the command line names goes before.
    EXPECT_LT(
        1u,
        Lines(Run("--node-types " + Quote(SourcePath("NodeTypes")) + " " + project + "types").Out).size());
}

TEST_F(TProjectFile, EveryFindingStandsInTheDescription)
{
    const std::string description =
        ReadBytes(SourcePath("docs/batch.md")) + ReadBytes(SourcePath("docs/lint.md"));
    for (int i = 0; i < GetNumFindingKinds(); ++i) {
        const TFindingKind& kind = GetFindingKind(i);
        EXPECT_NE(std::string::npos, description.find("| `" + std::string(kind.Id) + "` | " +
                                                      GetSeverityName(kind.Severity) + " | "))
            << kind.Id;
    }
}

TEST_F(TProjectFile, EveryKeyStandsInTheDescription)
{
    const std::string description = ReadBytes(SourcePath("docs/project-file.md"));
    for (int i = 0; i < BG_NUMBUDGETS; ++i)
        EXPECT_NE(std::string::npos,
                  description.find("`" + std::string(GetBudgetName(static_cast<TBudget>(i))) + "`"));
    // The example of the description is one that is read.
    fs::create_directories(Folder.Path("NodeTypes"));
    fs::create_directories(Folder.Path("assets"));
    std::string example;
    bool begun = false;
    for (const std::string& line : Lines(description)) {
        begun = begun || line == "    node-types = \"NodeTypes\"";
        if (begun && !line.empty() && line[0] != ' ')
            break;
        if (begun)
            example += (line.empty() ? line : line.substr(4)) + "\n";
    }
    EXPECT_NE(std::string::npos, example.find("[[allow]]"));
    EXPECT_EQ("", FaultsOf(example));
}
