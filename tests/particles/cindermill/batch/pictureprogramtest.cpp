#include "batchfixture.h"

namespace {

namespace fs = std::filesystem;

// How the batch program becomes the one that draws: a copy of it stands beside what a test puts there.
class TPictureProgram : public TBatch
{
protected:
    TPictureProgram()
    {
        fs::create_directories(Folder.Path("bin"));
        fs::copy(CINDERMILL_BATCH, Folder.Path("bin/cindermill-batch"));
    }
    void PutProgram(const std::string& text, bool isExecutable = true, const std::string& folder = "bin")
    {
        fs::create_directories(Folder.Path(folder));
        const std::string program = Folder.Path(folder + "/cindermill-picture");
        WriteBytes(program, text);
        fs::permissions(program,
                        isExecutable ? fs::perms::owner_all : fs::perms::owner_read | fs::perms::owner_write);
    }
    TOutcome Start(const std::string& program)
    {
        const std::string line = "cd '" + Folder.GetFolder() + "' && XDG_CONFIG_HOME=config " + program +
                                 " --node-types '" + SourcePath("NodeTypes") +
                                 "' picture 'a b.effect' out.png --seed 3 >out 2>err";
        const int status = std::system(line.c_str());
        return TOutcome{WEXITSTATUS(status), ReadBytes(Folder.Path("out")), ReadBytes(Folder.Path("err"))};
    }
};

constexpr const char* Telling = "#!/bin/sh\nprintf '%s|' \"$@\"\nexit 7\n";

} // namespace

TEST_F(TPictureProgram, ItIsFoundHoweverTheBatchProgramIsStarted)
{
    PutProgram(Telling);
    fs::create_directories(Folder.Path("links"));
    fs::create_symlink(Folder.Path("bin/cindermill-batch"), Folder.Path("links/batch"));
    const std::string expected =
        "--node-types|" + SourcePath("NodeTypes") + "|picture|a b.effect|out.png|--seed|3|";
    for (const char* program : {"bin/cindermill-batch", "links/batch",
                                "PATH=\"$PWD/bin:$PATH\" cindermill-batch", "PATH=\"links:$PATH\" batch"}) {
        const TOutcome outcome = Start(program);
        EXPECT_EQ(7, outcome.Status) << program << outcome.Err;
        EXPECT_EQ(expected, outcome.Out) << program;
        EXPECT_EQ("", outcome.Err) << program;
    }
}

// An installation keeps what nobody starts by hand out of the way of commands.
TEST_F(TPictureProgram, ItIsFoundInAnInstallationToo)
{
    PutProgram(Telling, true, "libexec/cindermill");
    EXPECT_EQ(7, Start("bin/cindermill-batch").Status);
    PutProgram("#!/bin/sh\nexit 8\n");
    EXPECT_EQ(8, Start("bin/cindermill-batch").Status);
}

TEST_F(TPictureProgram, WhatIsMissingOrCannotBeStartedIsTold)
{
    const std::string folder = Folder.Path("bin");
    const TOutcome missing = Start("bin/cindermill-batch");
    EXPECT_EQ(1, missing.Status);
    EXPECT_EQ("Pictures are drawn by the program cindermill-picture, which is not in " + folder + "\n",
              missing.Err);
    PutProgram(Telling, false);
    const TOutcome refused = Start("bin/cindermill-batch");
    EXPECT_EQ(1, refused.Status);
    EXPECT_EQ(folder + "/cindermill-picture cannot be started: Permission denied\n", refused.Err);
    PutProgram("no program");
    const TOutcome none = Start("bin/cindermill-batch");
    EXPECT_EQ(1, none.Status);
    EXPECT_EQ(folder + "/cindermill-picture cannot be started: Exec format error\n", none.Err);
}

// No program stands between the shell and the one that draws.
TEST_F(TPictureProgram, ItsEndBySignalIsTheOneThatAShellSees)
{
    PutProgram("#!/bin/sh\nkill -TERM $$\n");
    EXPECT_EQ(128 + 15, Start("sh -c 'bin/cindermill-batch \"$@\"; exit $?' sh").Status);
}
