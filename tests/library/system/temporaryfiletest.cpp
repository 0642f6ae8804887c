#include "library/system/temporaryfile.h"

#include "support/testsupport.h"

#include <filesystem>

#include <csignal>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

class TTemporaryFileTest : public testing::Test
{
protected:
    TTemporaryFileTest() : Target(Folder.Path("file")) { WriteBytes(Target, "old"); }

    int CountOthers() const
    {
        int count = 0;
        for (const auto& entry : fs::directory_iterator(Folder.GetFolder()))
            count += entry.path() != Target ? 1 : 0;
        return count;
    }
    // A program that begins a named file and is killed once `ready` has been told.
    pid_t StartWriter(int& ready)
    {
        int ends[2];
        EXPECT_EQ(pipe(ends), 0);
        const pid_t child = fork();
        if (child == 0) {
            TTemporaryFile file;
            if (!file.CreateNamed(Target.c_str(), nullptr) || write(file.GetHandle(), "part", 4) != 4 ||
                write(ends[1], "r", 1) != 1)
                _exit(1);
            for (;;)
                pause();
        }
        close(ends[1]);
        ready = ends[0];
        char c = 0;
        EXPECT_EQ(read(ready, &c, 1), 1);
        close(ready);
        return child;
    }
    static void Kill(pid_t child)
    {
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
    }

    TTempFolder Folder;
    const std::string Target;
};

} // namespace

TEST_F(TTemporaryFileTest, ANamedFileStandsBesideItsTargetAndTakesItsPlace)
{
    TTemporaryFile file;
    ASSERT_TRUE(file.CreateNamed(Target.c_str(), nullptr));
    EXPECT_EQ(write(file.GetHandle(), "new", 3), 3);
    EXPECT_EQ(CountOthers(), 1);
    EXPECT_EQ(fs::path(Text(file.GetPath())).parent_path(), Folder.GetFolder());
    EXPECT_EQ(ReadBytes(Text(file.GetPath())), "new");
    EXPECT_EQ(ReadBytes(Target), "old");
    EXPECT_TRUE(file.Replace());
    EXPECT_FALSE(file.IsOpen());
    EXPECT_EQ(ReadBytes(Target), "new");
    EXPECT_EQ(CountOthers(), 0);
}

TEST_F(TTemporaryFileTest, AProgramThatSaysSoLeavesNoNamesWhenASignalEndsIt)
{
    for (const int signal : {SIGTERM, SIGHUP, SIGINT}) {
        const pid_t child = fork();
        if (child == 0) {
            ::signal(signal, SIG_DFL);
            RemoveTemporaryFilesAtEnd();
            TTemporaryFile gone;
            TTemporaryFile first;
            TTemporaryFile second;
            if (gone.CreateNamed(Target.c_str(), nullptr) && first.CreateNamed(Target.c_str(), nullptr) &&
                second.CreateNamed(Target.c_str(), nullptr) && CountOthers() == 3) {
                gone.Drop();
                raise(signal);
            }
            _exit(1);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status)) << status;
        EXPECT_EQ(WTERMSIG(status), signal);
        EXPECT_EQ(CountOthers(), 0);
        EXPECT_EQ(ReadBytes(Target), "old");
    }
}

TEST_F(TTemporaryFileTest, AFileWithoutANameTakesAPlaceThatIsFreeOrNot)
{
    for (int i = 0; i < 2; ++i) {
        TTemporaryFile file;
        ASSERT_TRUE(file.Create(Target.c_str(), nullptr));
        EXPECT_EQ(write(file.GetHandle(), "new", 3), 3);
        EXPECT_EQ(CountOthers(), 0) << "the folder's file system knows no files without a name";
        EXPECT_TRUE(file.Replace());
        EXPECT_EQ(ReadBytes(Target), "new");
        fs::remove(Target);
    }
}

TEST_F(TTemporaryFileTest, WhatIsDroppedIsGone)
{
    TTemporaryFile file;
    ASSERT_TRUE(file.CreateNamed(Target.c_str(), nullptr));
    file.Drop();
    EXPECT_EQ(CountOthers(), 0);
    {
        TTemporaryFile forgotten;
        ASSERT_TRUE(forgotten.CreateNamed(Target.c_str(), nullptr));
    }
    EXPECT_EQ(CountOthers(), 0);
    EXPECT_EQ(ReadBytes(Target), "old");
}

TEST_F(TTemporaryFileTest, AFileOfADeadProgramIsTakenAwayByTheNextOneBesideIt)
{
    int ready = -1;
    Kill(StartWriter(ready));
    ASSERT_EQ(CountOthers(), 1);
    TTemporaryFile file;
    ASSERT_TRUE(file.Create(Target.c_str(), nullptr));
    EXPECT_EQ(CountOthers(), 0);
    Kill(StartWriter(ready));
    TTemporaryFile named;
    ASSERT_TRUE(named.CreateNamed(Target.c_str(), nullptr));
    EXPECT_EQ(CountOthers(), 1);
}

TEST_F(TTemporaryFileTest, AFileOfALivingProgramIsLeftAlone)
{
    int ready = -1;
    const pid_t child = StartWriter(ready);
    TTemporaryFile own;
    ASSERT_TRUE(own.CreateNamed(Target.c_str(), nullptr));
    TTemporaryFile next;
    EXPECT_TRUE(next.Create(Target.c_str(), nullptr));
    EXPECT_EQ(CountOthers(), 2);
    EXPECT_TRUE(own.Replace());
    Kill(child);
}

TEST_F(TTemporaryFileTest, FilesThatAreNoTemporaryOnesAreLeftAlone)
{
    int ready = -1;
    const pid_t child = StartWriter(ready);
    fs::path theirs;
    for (const auto& entry : fs::directory_iterator(Folder.GetFolder()))
        if (entry.path() != Target)
            theirs = entry.path();
    const std::string name = theirs.filename();
    Kill(child);
    fs::remove(theirs);
    // Of another machine, of another kind, and no files at all.
    const size_t machine = std::string(".cindermill-").size();
    ASSERT_EQ(name.substr(0, machine), ".cindermill-");
    std::string foreign = name;
    foreign[machine] = foreign[machine] == '0' ? '1' : '0';
    WriteBytes(Folder.Path(foreign), "x");
    WriteBytes(Folder.Path(name + "x"), "x");
    fs::create_directory(theirs);
    WriteBytes(Folder.Path(name + "/within"), "x");
    std::string link = name;
    link.insert(link.find(".tmp"), "0");
    fs::create_symlink(Target, Folder.Path(link));
    TTemporaryFile file;
    ASSERT_TRUE(file.Create(Target.c_str(), nullptr));
    EXPECT_EQ(CountOthers(), 4);
    EXPECT_EQ(ReadBytes(Target), "old");
}

TEST_F(TTemporaryFileTest, AFolderThatIsNotThereGivesTheSystemsReason)
{
    TTemporaryFile file;
    EXPECT_FALSE(file.Create(Folder.Path("none/file").c_str(), nullptr));
    EXPECT_EQ(file.GetError(), ENOENT);
    EXPECT_FALSE(file.CreateNamed(Folder.Path("none/file").c_str(), nullptr));
    EXPECT_EQ(file.GetError(), ENOENT);
    EXPECT_FALSE(file.IsOpen());
}
