#include "batchfixture.h"

#include <sys/stat.h>
#include <unistd.h>

// What stands between the program and a file.

namespace fs = std::filesystem;

namespace {

class TFileFaults : public TBatch
{
protected:
    static std::string Quote(const std::string& path) { return "'" + path + "'"; }
    static std::string Types() { return "--node-types " + Quote(SourcePath("NodeTypes")) + " "; }
    // A sample's bytes in the folder.
    std::string Copy(const std::string& sample, const std::string& leaf)
    {
        WriteBytes(Folder.Path(leaf), ReadBytes(SourcePath("samples/" + sample)));
        return Folder.Path(leaf);
    }
    // A folder of node types with one file in it, made from one of the program's.
    std::string TypesWith(const std::string& from, const std::string& to)
    {
        std::string bytes = ReadBytes(SourcePath("NodeTypes/Life/Age.xml"));
        const size_t at = bytes.find(from);
        EXPECT_NE(std::string::npos, at);
        bytes.replace(at, from.size(), to);
        fs::create_directory(Folder.Path("types"));
        WriteBytes(Folder.Path("types/Age.xml"), bytes);
        return "--node-types " + Quote(Folder.Path("types")) + " types";
    }
    void LetOthersIn() { ASSERT_EQ(0, chmod(Folder.GetFolder().c_str(), 0777)); }
    static bool Holds(const std::string& text, const std::string& part)
    {
        return text.find(part) != std::string::npos;
    }
    // As Run, but nothing may hold the program up.
    TOutcome RunInTime(const std::string& arguments, const std::string& before = "")
    {
        const std::string command = before + " XDG_CONFIG_HOME='" + Folder.GetFolder() + "/config' timeout " +
                                    std::to_string(Patience) + " '" + CINDERMILL_BATCH + "' " + arguments +
                                    " >'" + Folder.Path("stdout") + "' 2>'" + Folder.Path("stderr") + "'";
        const int status = std::system(command.c_str());
        return TOutcome{WEXITSTATUS(status), ReadBytes(Folder.Path("stdout")),
                        ReadBytes(Folder.Path("stderr"))};
    }
    // The commands that read a file of each kind.
    std::vector<std::string> Readers(const std::string& file) const
    {
        const std::string out = Quote(Folder.Path("out"));
        std::vector<std::string> result;
        for (const char* command : {"check ", "report ", "dump ", "run ", "efx ", "translate "})
            result.push_back(command + Quote(file));
        for (const char* command : {"export ", "resave "})
            result.push_back(command + Quote(file) + " " + out);
        result.push_back("image " + Quote(file) + " " + out + " --format 0");
        return result;
    }
    void ExpectReadersTell(const std::string& file, const std::string& reason)
    {
        for (const std::string& line : Readers(file)) {
            const TOutcome outcome = RunInTime(line);
            EXPECT_EQ(1, outcome.Status) << line;
            EXPECT_EQ("", outcome.Out) << line;
            EXPECT_TRUE(Holds(outcome.Err, file)) << line << "\n" << outcome.Err;
            EXPECT_TRUE(Holds(outcome.Err, reason)) << line << "\n" << outcome.Err;
            EXPECT_FALSE(fs::exists(Folder.Path("out"))) << line;
        }
    }
};

} // namespace

TEST_F(TFileFaults, AFileThatMayNotBeReadIsToldSo)
{
    if (!CanNobodyRun())
        GTEST_SKIP() << "The build is closed to others.";
    LetOthersIn();
    const std::string file = Copy("fountain.effect", "locked.effect");
    ASSERT_EQ(0, chmod(file.c_str(), 0));
    const TNobody nobody;
    ExpectReadersTell(file, "Permission denied");
}

TEST_F(TFileFaults, AFileBehindAFolderThatMayNotBeSearchedIsToldSo)
{
    if (!CanNobodyRun())
        GTEST_SKIP() << "The build is closed to others.";
    LetOthersIn();
    fs::create_directory(Folder.Path("closed"));
    const std::string file = Copy("fountain.effect", "closed/a.effect");
    ASSERT_EQ(0, chmod(Folder.Path("closed").c_str(), 0));
    {
        const TNobody nobody;
        ExpectReadersTell(file, "Permission denied");
    }
    ASSERT_EQ(0, chmod(Folder.Path("closed").c_str(), 0755));
}

TEST_F(TFileFaults, AFolderInThePlaceOfAFileIsToldSo)
{
    fs::create_directory(Folder.Path("folder.effect"));
    ExpectReadersTell(Folder.Path("folder.effect"), "Is a directory");
}

TEST_F(TFileFaults, APipeOrADeviceHoldsNothingUp)
{
    ASSERT_EQ(0, mkfifo(Folder.Path("pipe.effect").c_str(), 0666));
    ExpectReadersTell(Folder.Path("pipe.effect"), "It is no regular file");
    fs::create_symlink("/dev/zero", Folder.Path("zero.effect"));
    ExpectReadersTell(Folder.Path("zero.effect"), "It is no regular file");
}

TEST_F(TFileFaults, ATextureOrAnAnimationThatIsAPipeOrADeviceHoldsNothingUp)
{
    fs::create_directory(Folder.Path("resources"));
    for (const char* folder : {"samples/textures", "samples/animations"})
        for (const auto& entry : fs::directory_iterator(SourcePath(folder))) {
            const std::string name = Folder.Path("resources/" + entry.path().filename().string());
            if (entry.path().extension() == ".dds")
                fs::create_symlink("/dev/zero", name);
            else
                ASSERT_EQ(0, mkfifo(name.c_str(), 0666));
        }
    for (const auto& entry : fs::directory_iterator(SourcePath("samples"))) {
        if (entry.path().extension() != ".effect")
            continue;
        const TOutcome outcome =
            RunInTime("--resources " + Quote(Folder.Path("resources")) + " check " + Quote(entry.path()));
        EXPECT_EQ(1, outcome.Status) << entry.path();
        EXPECT_TRUE(Holds(outcome.Err, ": It is no regular file")) << entry.path() << outcome.Err;
    }
}

TEST_F(TFileFaults, WhatCannotBeWrittenIsToldWithTheReason)
{
    const std::string effect = Copy("fountain.effect", "a.effect");
    fs::create_directory(Folder.Path("folder"));
    ASSERT_EQ(0, mkfifo(Folder.Path("pipe").c_str(), 0666));
    const struct
    {
        std::string Out;
        std::string Reason;
    } cases[] = {
        {Folder.Path("folder"), "Is a directory"},
        {Folder.Path("pipe"), "It is no regular file"},
        {Folder.Path("none/out"), "No such file or directory"},
        {Folder.Path(std::string(300, 'x')), "File name too long"},
    };
    for (const auto& each : cases)
        for (const std::string& line : {"resave " + Quote(effect) + " " + Quote(each.Out),
                                        Resources() + "export " + Quote(effect) + " " + Quote(each.Out),
                                        "image " + Quote(SourcePath("samples/textures/drop.dds")) + " " +
                                            Quote(each.Out) + " --format 0"}) {
            const TOutcome outcome = RunInTime(line);
            EXPECT_EQ(1, outcome.Status) << line;
            EXPECT_TRUE(Holds(outcome.Err, each.Out)) << line << "\n" << outcome.Err;
            EXPECT_TRUE(Holds(outcome.Err, each.Reason)) << line << "\n" << outcome.Err;
        }
}

TEST_F(TFileFaults, AFolderThatMayNotBeWrittenToIsTold)
{
    if (!CanNobodyRun())
        GTEST_SKIP() << "The build is closed to others.";
    LetOthersIn();
    fs::create_directory(Folder.Path("closed"));
    const std::string out = Copy("fountain.effect", "closed/a.effect");
    const std::string before = ReadBytes(out);
    ASSERT_EQ(0, chmod(out.c_str(), 0666));
    ASSERT_EQ(0, chmod(Folder.Path("closed").c_str(), 0555));
    {
        const TNobody nobody;
        const TOutcome outcome = Run("resave " + Sample("aura") + " " + Quote(out));
        EXPECT_EQ(1, outcome.Status);
        EXPECT_EQ(out + ": The file cannot be written: No file can be made in " + Folder.Path("closed") +
                      ": Permission denied\n",
                  outcome.Err);
    }
    EXPECT_EQ(before, ReadBytes(out));
    ASSERT_EQ(0, chmod(Folder.Path("closed").c_str(), 0755));
}

TEST_F(TFileFaults, SavingThroughALinkKeepsTheLinkAndTheRights)
{
    const std::string target = Copy("fountain.effect", "target.effect");
    ASSERT_EQ(0, chmod(target.c_str(), 0640));
    fs::create_symlink("target.effect", Folder.Path("link.effect"));
    EXPECT_EQ(0, Run("resave " + Sample("aura") + " " + Quote(Folder.Path("link.effect"))).Status);
    EXPECT_TRUE(fs::is_symlink(Folder.Path("link.effect")));
    EXPECT_EQ(ReadBytes(SourcePath("samples/aura.effect")), ReadBytes(target));
    struct stat info;
    ASSERT_EQ(0, stat(target.c_str(), &info));
    EXPECT_EQ(0640u, info.st_mode & 07777);
}

TEST_F(TFileFaults, AnEffectIsNotReplacedByItsExport)
{
    const std::string effect = Copy("fountain.effect", "a.effect");
    const std::string before = ReadBytes(effect);
    fs::create_symlink("a.effect", Folder.Path("link.efx"));
    fs::create_hard_link(effect, Folder.Path("hard.efx"));
    for (const std::string& out : {effect, Folder.Path("./a.effect"), Folder.Path("A.EFFECT"),
                                   Folder.Path("link.efx"), Folder.Path("hard.efx")}) {
        const TOutcome outcome = Run(Resources() + "export " + Quote(effect) + " " + Quote(out));
        EXPECT_EQ(1, outcome.Status) << out;
        EXPECT_EQ(out + ": This is the effect itself, which its export would replace\n", outcome.Err);
        EXPECT_EQ(before, ReadBytes(effect)) << out;
        EXPECT_EQ(before, ReadBytes(Folder.Path("hard.efx"))) << out;
    }
    EXPECT_EQ(0, Run(Resources() + "export " + Quote(effect) + " " + Quote(Folder.Path("b.efx"))).Status);
}

TEST_F(TFileFaults, ANodeTypeThatMayNotBeReadIsToldSo)
{
    if (!CanNobodyRun())
        GTEST_SKIP() << "The build is closed to others.";
    LetOthersIn();
    const std::string line = TypesWith("Age", "Age");
    ASSERT_EQ(0, chmod(Folder.Path("types").c_str(), 0777));
    ASSERT_EQ(0, chmod(Folder.Path("types/Age.xml").c_str(), 0));
    ASSERT_EQ(0, mkfifo(Folder.Path("types/Pipe.xml").c_str(), 0666));
    fs::create_directory(Folder.Path("types/closed"));
    ASSERT_EQ(0, chmod(Folder.Path("types/closed").c_str(), 0));
    {
        const TNobody nobody;
        const TOutcome outcome = RunInTime(line);
        EXPECT_EQ(1, outcome.Status);
        const std::string folder = Folder.Path("types");
        EXPECT_TRUE(Holds(outcome.Err, "Could not open node file " + folder + "\\Age.xml for reading\n" +
                                           folder + "\\Age.xml: Permission denied\n") ||
                    Holds(outcome.Err, "Age.xml: Permission denied\n"))
            << outcome.Err;
        EXPECT_TRUE(Holds(outcome.Err, "Pipe.xml: It is no regular file\n")) << outcome.Err;
        EXPECT_TRUE(Holds(outcome.Err, "closed: Permission denied\n")) << outcome.Err;
    }
    ASSERT_EQ(0, chmod(Folder.Path("types/closed").c_str(), 0755));
}

TEST_F(TFileFaults, ClosingTagsThatDoNotMatchAreToldWithFileAndLine)
{
    const struct
    {
        const char* From;
        const char* To;
        const char* Told;
    } cases[] = {
        {"<name>Age</name>\n    <desc", "<name>Age</nome>\n    <desc",
         "Age.xml [2] : The closing tag \"nome\" does not match \"name\" of line 2"},
        {"    </outputs>", "    </outports>",
         "Age.xml [24] : The closing tag \"outports\" does not match \"outputs\" of line 19"},
        {"</node>", "", "Age.xml [1] : The tag \"node\" is not closed"},
        {"</node>", "</node></node>", "Age.xml [28] : The closing tag \"node\" matches no tag"},
    };
    for (const auto& each : cases) {
        const TOutcome outcome = Run(TypesWith(each.From, each.To));
        EXPECT_EQ(1, outcome.Status) << each.To;
        EXPECT_TRUE(Holds(outcome.Err, each.Told)) << outcome.Err;
        EXPECT_TRUE(Holds(outcome.Err, Folder.Path("types"))) << outcome.Err;
    }
}

TEST_F(TFileFaults, CommentsAndProloguesNeedNoClosingTags)
{
    const TOutcome outcome =
        Run(TypesWith("<name>Age</name>", "<!-- was <nome>Old</nome> --><name>Age</name>"));
    EXPECT_EQ(0, outcome.Status) << outcome.Err;
    EXPECT_EQ(0u, outcome.Out.find("Age\t"));
}

TEST_F(TFileFaults, AZeroByteInANodeTypeIsToldWithFileAndLine)
{
    const struct
    {
        const char* From;
        std::string To;
    } cases[] = {{"<name>Age</name>", std::string("<name>A\0ge</name>", 17)},
                 {"<classname>", std::string("<class\0name>", 12)},
                 {"<processhint/>", std::string("<processhint a=\"\0\"/>", 20)}};
    for (const auto& each : cases) {
        const TOutcome outcome = Run(TypesWith(each.From, each.To));
        EXPECT_EQ(1, outcome.Status);
        EXPECT_EQ("", outcome.Out) << "the type is loaded, cut short";
        EXPECT_TRUE(Holds(outcome.Err, "Age.xml [")) << outcome.Err;
        EXPECT_TRUE(Holds(outcome.Err, "The file holds a zero byte")) << outcome.Err;
    }
}

TEST_F(TFileFaults, AZeroByteInANameOfAnEffectIsTold)
{
    std::string bytes = ReadBytes(SourcePath("samples/fumes.effect"));
    // Within one word of the file, so that what follows is still where it was.
    const std::string name("Random Value\0\0\0\0", 16);
    const size_t at = bytes.find(name);
    ASSERT_NE(std::string::npos, at);
    bytes[at + 9] = 0;
    bytes[at + 10] = 'x';
    const std::string file = Folder.Path("cut.effect");
    WriteBytes(file, bytes);
    const TOutcome outcome = Run("check " + Quote(file));
    EXPECT_EQ(1, outcome.Status);
    EXPECT_EQ(file + ": A text of the file holds a zero byte\n", outcome.Err);
}

TEST_F(TFileFaults, SettingsThatAreNoRegularFileHoldNothingUp)
{
    fs::create_directories(Folder.Path("config/TolvTools"));
    const std::string settings = Folder.Path("config/TolvTools/VORCindermill.conf");
    ASSERT_EQ(0, mkfifo(settings.c_str(), 0666));
    const TOutcome pipe = RunInTime("hash x");
    EXPECT_EQ(0, pipe.Status);
    EXPECT_EQ(1u, Lines(pipe.Out).size());
    EXPECT_EQ("The settings are not used: " + settings + ": It is no regular file\n", pipe.Err);
    EXPECT_TRUE(fs::is_fifo(settings));
    fs::remove(settings);
    fs::create_symlink("/dev/zero", settings);
    EXPECT_EQ("The settings are not used: " + settings + ": It is no regular file\n",
              RunInTime("hash x").Err);
    fs::remove(settings);
    fs::create_directory(settings);
    EXPECT_EQ("The settings are not used: " + settings + ": Is a directory\n", RunInTime("hash x").Err);
    fs::remove(settings);
    WriteBytes(settings, "[General]\nRegVersion=0\n");
    EXPECT_EQ("", RunInTime("hash x").Err);
}

TEST_F(TFileFaults, SettingsThatMayNotBeReadAreTold)
{
    if (!CanNobodyRun())
        GTEST_SKIP() << "The build is closed to others.";
    LetOthersIn();
    fs::create_directories(Folder.Path("config/TolvTools"));
    const std::string settings = Folder.Path("config/TolvTools/VORCindermill.conf");
    WriteBytes(settings, "[General]\nRegVersion=0\n");
    ASSERT_EQ(0, chmod(settings.c_str(), 0));
    const TNobody nobody;
    const TOutcome outcome = RunInTime("hash x");
    EXPECT_EQ(0, outcome.Status);
    EXPECT_EQ("The settings are not used: " + settings + ": Permission denied\n", outcome.Err);
}

TEST_F(TFileFaults, APathThatIsTooLongForAMessageIsNamed)
{
    std::string path = Folder.GetFolder();
    for (int i = 0; i < 20; ++i)
        path += "/" + std::string(150, 'x');
    const std::string start = path.substr(0, 500);
    for (const std::string& line :
         {Resources() + "export " + Sample("fountain") + " " + Quote(path),
          "resave " + Sample("fountain") + " " + Quote(path), "check " + Quote(path), "efx " + Quote(path)}) {
        const TOutcome outcome = Run(line);
        EXPECT_EQ(1, outcome.Status);
        EXPECT_TRUE(Holds(outcome.Err, start)) << outcome.Err;
        EXPECT_FALSE(Holds(outcome.Err, "sizeof")) << outcome.Err;
    }
}
