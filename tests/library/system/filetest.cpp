#include "library/system/file.h"

#include "support/testsupport.h"

#include <filesystem>

#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

static std::string Pattern(int size)
{
    std::string bytes;
    for (int i = 0; i < size; ++i)
        bytes += static_cast<char>((i * 7 + i / 251) & 0xff);
    return bytes;
}

// A folder with one file, opened for reading.
class TFileTest : public testing::Test
{
protected:
    std::string Make(const std::string& bytes)
    {
        WriteBytes(Folder.Path("file"), bytes);
        return Folder.Path("file");
    }
    static std::string ReadSome(TFile& file, int n)
    {
        std::string bytes(static_cast<size_t>(n), '?');
        return file.Read(bytes.data(), n) ? bytes : "failed";
    }
    int CountEntries() const
    {
        int count = 0;
        for (const auto& entry : fs::directory_iterator(Folder.GetFolder()))
            count += entry.exists() || entry.is_symlink();
        return count;
    }

    TTempFolder Folder;
};

TEST_F(TFileTest, A1500ByteFileReadInStepsOf100ComesOutWhole)
{
    const std::string bytes = Pattern(1500);
    TFile file;
    ASSERT_TRUE(file.OpenRead(Make(bytes).c_str()));
    EXPECT_EQ(file.GetSize(), 1500);
    std::string read;
    while (!file.IsEof())
        read += ReadSome(file, 100);
    EXPECT_EQ(read, bytes);
    EXPECT_EQ(file.GetRemaining(), 0);
    EXPECT_TRUE(file.Close());
}

TEST_F(TFileTest, OneReadOf4000BytesFromPosition100)
{
    const std::string bytes = Pattern(5000);
    TFile file;
    ASSERT_TRUE(file.OpenRead(Make(bytes).c_str()));
    file.SetFilePtr(100);
    EXPECT_EQ(ReadSome(file, 4000), bytes.substr(100, 4000));
    EXPECT_EQ(file.GetFilePtr(), 4100);
    EXPECT_EQ(ReadSome(file, 900), bytes.substr(4100));
    EXPECT_TRUE(file.Close());
}

TEST_F(TFileTest, EveryPositionAndLengthGivesTheFilesBytes)
{
    const std::string bytes = Pattern(3500);
    TFile file;
    ASSERT_TRUE(file.OpenRead(Make(bytes).c_str()));
    const int edges[] = {0, 1, 500, 1023, 1024, 1025, 2047, 2048, 2049, 3000, 3071, 3072, 3499, 3500};
    for (int from : edges)
        for (int to : edges) {
            if (to < from)
                continue;
            file.SetFilePtr(from);
            ASSERT_EQ(ReadSome(file, to - from),
                      bytes.substr(static_cast<size_t>(from), static_cast<size_t>(to - from)))
                << from << " to " << to;
            ASSERT_EQ(file.GetFilePtr(), to);
        }
    EXPECT_TRUE(file.Close());
}

TEST_F(TFileTest, ABlockEnteredInItsMiddleHoldsNothingOfAnother)
{
    const std::string bytes = std::string(1024, 'a') + std::string(1024, 'b') + std::string(500, 'c');
    TFile file;
    ASSERT_TRUE(file.OpenRead(Make(bytes).c_str()));
    EXPECT_EQ(ReadSome(file, 10), std::string(10, 'a'));
    file.SetFilePtr(1024 + 1000);
    EXPECT_EQ(ReadSome(file, 24), std::string(24, 'b'));
    file.SetFilePtr(1024 + 100);
    EXPECT_EQ(ReadSome(file, 924), std::string(924, 'b'));
    file.SetFilePtr(2048 + 490);
    EXPECT_EQ(ReadSome(file, 10), std::string(10, 'c'));
    EXPECT_TRUE(file.Close());
}

TEST_F(TFileTest, SetFilePtrToTheSizeIsLegalAndIsEof)
{
    TFile file;
    ASSERT_TRUE(file.OpenRead(Make("abc").c_str()));
    EXPECT_FALSE(file.IsEof());
    file.SetFilePtr(3);
    EXPECT_TRUE(file.IsEof());
    EXPECT_TRUE(file.Close());
}

TEST_F(TFileTest, ReadOfNothingAtABlockEdgeIsANoOp)
{
    TFile file;
    ASSERT_TRUE(file.OpenRead(Make(Pattern(1024)).c_str()));
    file.SetFilePtr(1024);
    char c = 'x';
    EXPECT_TRUE(file.Read(&c, 0));
    EXPECT_EQ(c, 'x');
    EXPECT_EQ(file.GetFilePtr(), 1024);
    EXPECT_TRUE(file.Close());
}

TEST_F(TFileTest, ReadPastTheEndFailsAndStays)
{
    TFile file;
    ASSERT_TRUE(file.OpenRead(Make("abc").c_str()));
    EXPECT_EQ(ReadSome(file, 4), "failed");
    EXPECT_EQ(file.GetFilePtr(), 0);
    EXPECT_EQ(ReadSome(file, 3), "abc");
    char c;
    EXPECT_FALSE(file.Read(&c, 1));
    EXPECT_FALSE(file.Read(&c, -1));
    EXPECT_TRUE(file.Close());
}

TEST_F(TFileTest, AFileThatShrankFailsTheRead)
{
    const std::string path = Make(Pattern(3000));
    TFile file;
    ASSERT_TRUE(file.OpenRead(path.c_str()));
    EXPECT_EQ(ReadSome(file, 1), Pattern(1));
    fs::resize_file(path, 10);
    EXPECT_EQ(ReadSome(file, 2500), "failed");
    EXPECT_TRUE(file.Close());
}

TEST_F(TFileTest, OpenReadRefusesWhatIsNoFile)
{
    TFile file;
    EXPECT_FALSE(file.OpenRead(Folder.Path("none").c_str()));
    EXPECT_FALSE(file.OpenRead(Folder.GetFolder().c_str()));
    ASSERT_EQ(mkfifo(Folder.Path("pipe").c_str(), 0600), 0);
    EXPECT_FALSE(file.OpenRead(Folder.Path("pipe").c_str()));
    EXPECT_FALSE(file.IsOpen());
}

TEST_F(TFileTest, OpenReadRefusesTwoGibibytesAndMore)
{
    const std::string path = Make("");
    TFile file;
    fs::resize_file(path, 0x80000000u);
    EXPECT_FALSE(file.OpenRead(path.c_str()));
    fs::resize_file(path, 0x7fffffffu);
    ASSERT_TRUE(file.OpenRead(path.c_str()));
    EXPECT_EQ(file.GetSize(), 0x7fffffff);
    file.SetFilePtr(0x7ffffffe);
    EXPECT_EQ(ReadSome(file, 1), std::string(1, '\0'));
    EXPECT_TRUE(file.Close());
}

TEST_F(TFileTest, PathIsTheOneGivenAndIsFoundWithoutCase)
{
    Make("abc");
    TFile file;
    const std::string given = Folder.GetFolder() + "\\FILE";
    ASSERT_TRUE(file.OpenRead(given.c_str()));
    EXPECT_EQ(Text(file.GetPath()), given);
    EXPECT_EQ(ReadSome(file, 3), "abc");
    EXPECT_TRUE(file.Close());
}

TEST_F(TFileTest, ModeTellsReadingFromWriting)
{
    const std::string path = Make("abc");
    TFile file;
    EXPECT_FALSE(file.IsOpen());
    EXPECT_FALSE(file.IsRead());
    ASSERT_TRUE(file.OpenRead(path.c_str()));
    EXPECT_TRUE(file.IsOpen());
    EXPECT_TRUE(file.IsRead());
    EXPECT_TRUE(file.Close());
    EXPECT_FALSE(file.IsOpen());
    ASSERT_TRUE(file.OpenWrite(path.c_str()));
    EXPECT_TRUE(file.IsOpen());
    EXPECT_FALSE(file.IsRead());
    EXPECT_TRUE(file.Close());
}

TEST_F(TFileTest, AFileObjectMayBeUsedAgain)
{
    TFile file;
    ASSERT_TRUE(file.OpenRead(Make("first").c_str()));
    EXPECT_EQ(ReadSome(file, 5), "first");
    EXPECT_TRUE(file.Close());
    WriteBytes(Folder.Path("other"), "2nd");
    ASSERT_TRUE(file.OpenRead(Folder.Path("other").c_str()));
    EXPECT_EQ(file.GetFilePtr(), 0);
    EXPECT_EQ(ReadSome(file, 3), "2nd");
    EXPECT_TRUE(file.Close());
}

TEST_F(TFileTest, TheTargetAppearsAtClose)
{
    const std::string path = Folder.Path("new");
    TFile file;
    ASSERT_TRUE(file.OpenWrite(path.c_str()));
    EXPECT_TRUE(file.Write("ab", 2));
    EXPECT_TRUE(file.Write("", 0));
    EXPECT_TRUE(file.Write("cde", 3));
    EXPECT_EQ(file.GetFilePtr(), 5);
    EXPECT_FALSE(fs::exists(path));
    EXPECT_TRUE(file.Close());
    EXPECT_EQ(ReadBytes(path), "abcde");
    EXPECT_EQ(CountEntries(), 1);
}

TEST_F(TFileTest, AnAbandonedFileLeavesTheOldOne)
{
    const std::string path = Make("old");
    TFile file;
    ASSERT_TRUE(file.OpenWrite(path.c_str()));
    EXPECT_TRUE(file.Write("new", 3));
    EXPECT_EQ(ReadBytes(path), "old");
    file.Abandon();
    EXPECT_FALSE(file.IsOpen());
    EXPECT_EQ(ReadBytes(path), "old");
    EXPECT_EQ(CountEntries(), 1);
}

TEST_F(TFileTest, AFailedWriteFailsTheCloseAndLeavesTheOldFile)
{
    const std::string path = Make("old");
    struct rlimit before;
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    struct rlimit small = before;
    small.rlim_cur = 4096;
    auto* handler = signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    TFile file;
    const std::string bytes(5000, 'x');
    const bool opened = file.OpenWrite(path.c_str());
    const bool written = opened && file.Write(bytes.data(), 5000);
    const bool further = opened && file.Write("", 0);
    const bool closed = opened && file.Close();
    setrlimit(RLIMIT_FSIZE, &before);
    signal(SIGXFSZ, handler);
    EXPECT_TRUE(opened);
    EXPECT_FALSE(written);
    EXPECT_TRUE(further);
    EXPECT_FALSE(closed);
    EXPECT_EQ(Text(file.GetFault()), "File too large");
    EXPECT_FALSE(file.IsOpen());
    EXPECT_EQ(ReadBytes(path), "old");
    EXPECT_EQ(CountEntries(), 1);
}

TEST_F(TFileTest, AProgramThatIsKilledWhileItWritesLeavesNothingBehind)
{
    const std::string path = Make("old");
    for (int signal : {SIGTERM, SIGINT, SIGHUP, SIGKILL}) {
        const pid_t child = fork();
        if (child == 0) {
            ::signal(signal, SIG_DFL);
            TFile file;
            const std::string bytes = Pattern(5000);
            if (file.OpenWrite(path.c_str()) && file.Write(bytes.data(), 5000))
                raise(signal);
            _exit(1);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status)) << status;
        EXPECT_EQ(WTERMSIG(status), signal);
        EXPECT_EQ(ReadBytes(path), "old");
        EXPECT_EQ(CountEntries(), 1) << "signal " << signal;
    }
}

TEST_F(TFileTest, WhatIsBeingWrittenCanBeRead)
{
    const std::string path = Make("old");
    TFile file;
    ASSERT_TRUE(file.OpenWrite(path.c_str()));
    EXPECT_TRUE(file.Write("new", 3));
    EXPECT_EQ(ReadBytes(Text(file.GetTemporaryPath())), "new");
    EXPECT_TRUE(file.Close());
    EXPECT_EQ(ReadBytes(path), "new");
}

TEST_F(TFileTest, TheSystemsReasonIsTold)
{
    const std::string path = Make("old");
    TFile file;
    EXPECT_FALSE(file.OpenRead(Folder.Path("none").c_str()));
    EXPECT_EQ(Text(file.GetFault()), "The file does not exist");
    EXPECT_FALSE(file.OpenRead((path + "/below").c_str()));
    EXPECT_EQ(Text(file.GetFault()), "The file does not exist");
    EXPECT_FALSE(file.OpenRead(Folder.GetFolder().c_str()));
    EXPECT_EQ(Text(file.GetFault()), "Is a directory");
    EXPECT_FALSE(file.OpenRead("/dev/zero"));
    EXPECT_EQ(Text(file.GetFault()), "It is no regular file");
    EXPECT_FALSE(file.OpenRead(Folder.Path(std::string(300, 'x')).c_str()));
    EXPECT_EQ(Text(file.GetFault()), "File name too long");
    EXPECT_FALSE(file.OpenWrite(Folder.GetFolder().c_str()));
    EXPECT_EQ(Text(file.GetFault()), "Is a directory");
    EXPECT_FALSE(file.OpenWrite("/dev/null"));
    EXPECT_EQ(Text(file.GetFault()), "It is no regular file");
    EXPECT_FALSE(file.OpenWrite(Folder.Path(std::string(300, 'x')).c_str()));
    EXPECT_EQ(Text(file.GetFault()), "File name too long");
    EXPECT_FALSE(file.OpenWrite(Folder.Path("none/file").c_str()));
    EXPECT_EQ(Text(file.GetFault()),
              "No file can be made in " + Folder.Path("none") + ": No such file or directory");
    ASSERT_TRUE(file.OpenRead(path.c_str()));
    EXPECT_EQ(Text(file.GetFault()), "");
    EXPECT_TRUE(file.Close());
}

TEST_F(TFileTest, WhatMayNotBeReadOrWrittenIsTold)
{
    const std::string path = Make("old");
    ASSERT_EQ(chmod(path.c_str(), 0), 0);
    ASSERT_EQ(chmod(Folder.GetFolder().c_str(), 0755), 0);
    const std::string open = Folder.Path("open");
    WriteBytes(open, "open");
    ASSERT_EQ(chmod(open.c_str(), 0666), 0);
    const TNobody nobody;
    TFile file;
    EXPECT_FALSE(file.OpenRead(path.c_str()));
    EXPECT_EQ(Text(file.GetFault()), "Permission denied");
    TString fault;
    GetReadFault(path.c_str(), fault);
    EXPECT_EQ(Text(fault), "Permission denied");
    GetReadFault(open.c_str(), fault);
    EXPECT_EQ(Text(fault), "");
    EXPECT_FALSE(file.OpenWrite(path.c_str()));
    EXPECT_EQ(Text(file.GetFault()), "Permission denied");
    if (access(Folder.GetFolder().c_str(), W_OK) == 0)
        GTEST_SKIP() << "the folder is the test's own";
    EXPECT_FALSE(file.OpenWrite(open.c_str()));
    EXPECT_EQ(Text(file.GetFault()), "No file can be made in " + Folder.GetFolder() + ": Permission denied");
}

TEST_F(TFileTest, AnotherUsersFileKeepsItsOwnerGroupAndRights)
{
    if (getuid() != 0)
        GTEST_SKIP() << "only the superuser writes for others";
    const std::string path = Make("old");
    ASSERT_EQ(chown(path.c_str(), 65534, 12), 0);
    ASSERT_EQ(chmod(path.c_str(), 0664), 0);
    TFile file;
    ASSERT_TRUE(file.OpenWrite(path.c_str()));
    EXPECT_TRUE(file.Write("new", 3));
    EXPECT_TRUE(file.Close());
    struct stat info;
    ASSERT_EQ(stat(path.c_str(), &info), 0);
    EXPECT_EQ(info.st_uid, 65534u);
    EXPECT_EQ(info.st_gid, 12u);
    EXPECT_EQ(info.st_mode & 07777, 0664u);
    EXPECT_EQ(ReadBytes(path), "new");
}

TEST_F(TFileTest, AFileThatAnotherLetsOneWriteKeepsItsRights)
{
    if (getuid() != 0)
        GTEST_SKIP() << "only the superuser makes files of others";
    ASSERT_EQ(chmod(Folder.GetFolder().c_str(), 0777), 0);
    const std::string path = Make("old");
    ASSERT_EQ(chmod(path.c_str(), 0666), 0);
    const TNobody nobody;
    TFile file;
    ASSERT_TRUE(file.OpenWrite(path.c_str())) << Text(file.GetFault());
    EXPECT_TRUE(file.Write("new", 3));
    EXPECT_TRUE(file.Close());
    struct stat info;
    ASSERT_EQ(stat(path.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0666u);
    EXPECT_EQ(ReadBytes(path), "new");
}

TEST_F(TFileTest, OneFileIsKnownBehindLinksAndSpellings)
{
    const std::string path = Make("x");
    WriteBytes(Folder.Path("other"), "x");
    fs::create_symlink("file", Folder.Path("link"));
    fs::create_hard_link(path, Folder.Path("hard"));
    for (const std::string& same : {path, Folder.Path("./file"), Folder.Path("FILE"), Folder.Path("link"),
                                    Folder.Path("hard"), Folder.GetFolder() + "\\file"})
        EXPECT_TRUE(IsSameFile(path.c_str(), same.c_str())) << same;
    EXPECT_FALSE(IsSameFile(path.c_str(), Folder.Path("other").c_str()));
    EXPECT_FALSE(IsSameFile(path.c_str(), Folder.Path("none").c_str()));
    EXPECT_FALSE(IsSameFile(Folder.Path("none").c_str(), Folder.Path("none").c_str()));
}

TEST_F(TFileTest, ATargetThatCannotBeReplacedFailsTheClose)
{
    const std::string path = Folder.Path("new");
    TFile file;
    ASSERT_TRUE(file.OpenWrite(path.c_str()));
    EXPECT_TRUE(file.Write("x", 1));
    fs::create_directory(path);
    EXPECT_FALSE(file.Close());
    EXPECT_TRUE(fs::is_directory(path));
    EXPECT_EQ(CountEntries(), 1);
}

TEST_F(TFileTest, OpenWriteRefusesReadOnlyFilesDirectoriesAndPlacesThatAreNotThere)
{
    const std::string path = Make("old");
    ASSERT_EQ(chmod(path.c_str(), 0444), 0);
    TFile file;
    EXPECT_FALSE(file.OpenWrite(path.c_str()));
    EXPECT_FALSE(file.OpenWrite(Folder.GetFolder().c_str()));
    EXPECT_FALSE(file.OpenWrite(Folder.Path("none/file").c_str()));
    EXPECT_FALSE(file.OpenWrite(""));
    EXPECT_FALSE(file.OpenWrite("/dev/null"));
    EXPECT_FALSE(file.IsOpen());
    EXPECT_EQ(ReadBytes(path), "old");
    EXPECT_EQ(CountEntries(), 1);
}

TEST_F(TFileTest, TheOldFilesModeIsKept)
{
    const std::string path = Make("old");
    for (mode_t mode : {0600u, 0664u, 0755u}) {
        ASSERT_EQ(chmod(path.c_str(), mode), 0);
        TFile file;
        ASSERT_TRUE(file.OpenWrite(path.c_str()));
        EXPECT_TRUE(file.Write("new", 3));
        EXPECT_TRUE(file.Close());
        struct stat info;
        ASSERT_EQ(stat(path.c_str(), &info), 0);
        EXPECT_EQ(info.st_mode & 07777, mode);
    }
}

TEST_F(TFileTest, WritingGoesThroughSymbolicLinks)
{
    const std::string path = Make("old");
    fs::create_directory(Folder.Path("links"));
    fs::create_symlink("../file", Folder.Path("links/one"));
    fs::create_symlink(Folder.Path("links/one"), Folder.Path("two"));
    TFile file;
    ASSERT_TRUE(file.OpenWrite(Folder.Path("two").c_str()));
    EXPECT_TRUE(file.Write("new", 3));
    EXPECT_TRUE(file.Close());
    EXPECT_EQ(ReadBytes(path), "new");
    EXPECT_TRUE(fs::is_symlink(Folder.Path("two")));
    EXPECT_TRUE(fs::is_symlink(Folder.Path("links/one")));
}

TEST_F(TFileTest, ALinkToNoFileMakesTheFile)
{
    fs::create_symlink("target", Folder.Path("link"));
    TFile file;
    ASSERT_TRUE(file.OpenWrite(Folder.Path("link").c_str()));
    EXPECT_TRUE(file.Write("new", 3));
    EXPECT_TRUE(file.Close());
    EXPECT_TRUE(fs::is_symlink(Folder.Path("link")));
    EXPECT_EQ(ReadBytes(Folder.Path("target")), "new");
}

TEST_F(TFileTest, ALinkToItselfIsRefused)
{
    fs::create_symlink("loop", Folder.Path("loop"));
    TFile file;
    EXPECT_FALSE(file.OpenWrite(Folder.Path("loop").c_str()));
    EXPECT_FALSE(file.OpenRead(Folder.Path("loop").c_str()));
}

TEST_F(TFileTest, WritingReplacesTheFileOfOtherCase)
{
    Make("old");
    TFile file;
    ASSERT_TRUE(file.OpenWrite(Folder.Path("FILE").c_str()));
    EXPECT_TRUE(file.Write("new", 3));
    EXPECT_TRUE(file.Close());
    EXPECT_EQ(ReadBytes(Folder.Path("file")), "new");
    EXPECT_EQ(CountEntries(), 1);
}

TEST_F(TFileTest, TwoWritersOfOneTargetDoNotMeet)
{
    const std::string path = Folder.Path("file");
    TFile a;
    TFile b;
    ASSERT_TRUE(a.OpenWrite(path.c_str()));
    ASSERT_TRUE(b.OpenWrite(path.c_str()));
    EXPECT_TRUE(a.Write("aaaa", 4));
    EXPECT_TRUE(b.Write("bb", 2));
    EXPECT_TRUE(a.Close());
    EXPECT_EQ(ReadBytes(path), "aaaa");
    EXPECT_TRUE(b.Close());
    EXPECT_EQ(ReadBytes(path), "bb");
}

TEST_F(TFileTest, SetFileTimeSetsTheTimeOfTheLastWrite)
{
    const std::string path = Folder.Path("file");
    TFile file;
    ASSERT_TRUE(file.OpenWrite(path.c_str()));
    EXPECT_TRUE(file.Write("x", 1));
    file.SetFileTime(1000000000);
    EXPECT_TRUE(file.Close());
    struct stat info;
    ASSERT_EQ(stat(path.c_str(), &info), 0);
    EXPECT_EQ(info.st_mtime, 1000000000);
}

TEST_F(TFileTest, WrongUseOfAnOpenFileAsserts)
{
    const std::string path = Make("abc");
    char c = 0;
    TFile read;
    ASSERT_TRUE(read.OpenRead(path.c_str()));
    EXPECT_EQ(AssertionOf([&] { read.OpenRead(path.c_str()); }), "!IsOpen() : Attempt to re-open file");
    EXPECT_EQ(AssertionOf([&] { read.OpenWrite(path.c_str()); }), "!IsOpen() : Attempt top re-open file");
    EXPECT_EQ(AssertionOf([&] { read.Write(&c, 1); }),
              "!IsRead() : Attempt to write to file opened for read");
    EXPECT_EQ(AssertionOf([&] { read.SetFilePtr(4); }),
              "fileptr <= Size : Attempt to set file ptr out of range");
    EXPECT_EQ(AssertionOf([&] { read.SetFilePtr(-1); }),
              "fileptr <= Size : Attempt to set file ptr out of range");
    EXPECT_TRUE(read.Close());
    TFile write;
    ASSERT_TRUE(write.OpenWrite(path.c_str()));
    EXPECT_EQ(AssertionOf([&] { write.Read(&c, 1); }),
              "IsRead() : Attempt to read from file opened for write");
    EXPECT_EQ(AssertionOf([&] { write.SetFilePtr(0); }),
              "IsRead() : Attempt to set file ptr of non-read file");
    write.Abandon();
}

TEST_F(TFileTest, UseOfAClosedFileAsserts)
{
    char c = 0;
    TFile file;
    EXPECT_EQ(AssertionOf([&] { file.Close(); }), "IsOpen() : Attempt to close non-open file");
    EXPECT_EQ(AssertionOf([&] { file.Read(&c, 1); }), "IsOpen() : Attempt to read from non-open file");
    EXPECT_EQ(AssertionOf([&] { file.Write(&c, 1); }), "IsOpen() : Attempt to write to non-open file");
    EXPECT_EQ(AssertionOf([&] { file.GetFilePtr(); }),
              "IsOpen() : Attempt to read file ptr of non-open file");
    EXPECT_EQ(AssertionOf([&] { file.SetFilePtr(0); }),
              "IsOpen() : Attempt to set file ptr of non-open file");
    EXPECT_EQ(AssertionOf([&] { file.IsEof(); }), "IsOpen() : Attempt to read EOF status of non-open file");
    EXPECT_EQ(AssertionOf([&] { file.SetFileTime(0); }), "IsOpen()");
}

TEST_F(TFileTest, DeletingAnOpenFileAssertsAndDropsIt)
{
    const std::string path = Make("old");
    const std::string text = AssertionOf([&] {
        TFile file;
        file.OpenWrite(path.c_str());
        file.Write("new", 3);
    });
    EXPECT_EQ(text, "!IsOpen() : Attempt to delete open file");
    EXPECT_EQ(ReadBytes(path), "old");
    EXPECT_EQ(CountEntries(), 1);
}

TEST_F(TFileTest, WhileAnAssertionUnwindsAnOpenFileIsDroppedQuietly)
{
    const std::string path = Make("old");
    const std::string text = AssertionOf([&] {
        TFile file;
        file.OpenWrite(path.c_str());
        file.Write("new", 3);
        file.SetFilePtr(0);
    });
    EXPECT_EQ(text, "IsRead() : Attempt to set file ptr of non-read file");
    EXPECT_EQ(ReadBytes(path), "old");
    EXPECT_EQ(CountEntries(), 1);
}

TEST_F(TFileTest, PathQuestions)
{
    const std::string path = Make("abc");
    EXPECT_TRUE(FileExists(path.c_str()));
    EXPECT_TRUE(FileExists(Folder.Path("FILE").c_str()));
    EXPECT_FALSE(FileExists(Folder.Path("none").c_str()));
    EXPECT_FALSE(FileExists(Folder.GetFolder().c_str()));
    EXPECT_FALSE(FileExists(""));
    EXPECT_TRUE(IsDirectory(Folder.GetFolder().c_str()));
    EXPECT_FALSE(IsDirectory(path.c_str()));
    EXPECT_FALSE(IsDirectory(Folder.Path("none").c_str()));
}

TEST_F(TFileTest, ReadOnlyFilesCanBeTold)
{
    const std::string path = Make("abc");
    EXPECT_TRUE(FileIsWritable(path.c_str()));
    EXPECT_TRUE(FileIsWritable(Folder.Path("none").c_str()));
    EXPECT_FALSE(FileIsWritable(Folder.GetFolder().c_str()));
    ASSERT_EQ(chmod(path.c_str(), 0444), 0);
    EXPECT_FALSE(FileIsWritable(path.c_str()));
}

TEST_F(TFileTest, ClearReadOnlyLeavesAWritableFile)
{
    const std::string path = Make("abc");
    EXPECT_TRUE(ClearReadOnly(path.c_str()));
    ASSERT_EQ(chmod(path.c_str(), 0444), 0);
    EXPECT_TRUE(ClearReadOnly(path.c_str()));
    struct stat info;
    ASSERT_EQ(stat(path.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0644u);
    EXPECT_FALSE(ClearReadOnly(Folder.Path("none").c_str()));
}

TEST_F(TFileTest, AnotherUsersFileIsNotUnlocked)
{
    const std::string path = MakeForeignFile(Folder.GetFolder());
    const TNobody nobody;
    struct stat before;
    ASSERT_EQ(stat(path.c_str(), &before), 0);
    ASSERT_NE(before.st_mode & S_IWUSR, 0u);
    ASSERT_FALSE(FileIsWritable(path.c_str()));
    EXPECT_FALSE(ClearReadOnly(path.c_str()));
    struct stat after;
    ASSERT_EQ(stat(path.c_str(), &after), 0);
    EXPECT_EQ(after.st_mode, before.st_mode);
}

TEST_F(TFileTest, SizesOfFilesNotOpen)
{
    const std::string path = Make("abc");
    uint64_t size = 7;
    EXPECT_EQ(GetFileSize(path.c_str()), 3u);
    EXPECT_TRUE(GetFileSize64(path.c_str(), size));
    EXPECT_EQ(size, 3u);
    EXPECT_EQ(GetFileSize(Folder.Path("none").c_str()), 0u);
    EXPECT_FALSE(GetFileSize64(Folder.Path("none").c_str(), size));
    EXPECT_EQ(GetFileSize(Folder.GetFolder().c_str()), 0u);
    fs::resize_file(path, 0xfffffff0u);
    EXPECT_EQ(GetFileSize(path.c_str()), 0xfffffff0u);
    fs::resize_file(path, 0x100000005u);
    EXPECT_EQ(GetFileSize(path.c_str()), 0u);
    EXPECT_TRUE(GetFileSize64(path.c_str(), size));
    EXPECT_EQ(size, 0x100000005u);
}

TEST_F(TFileTest, ReadWholeFileTellsWhetherAllArrived)
{
    const std::string bytes = Pattern(3000);
    const std::string path = Make(bytes);
    std::string read(3000, '?');
    EXPECT_TRUE(ReadWholeFile(path.c_str(), read.data()));
    EXPECT_EQ(read, bytes);
    EXPECT_FALSE(ReadWholeFile(Folder.Path("none").c_str(), read.data()));
    EXPECT_FALSE(ReadWholeFile(Folder.GetFolder().c_str(), read.data()));
}

TEST_F(TFileTest, MakeDirectoryMakesOneThatIsNotThere)
{
    EXPECT_TRUE(MakeDirectory((Folder.GetFolder() + "\\made").c_str()));
    EXPECT_TRUE(fs::is_directory(Folder.Path("made")));
    EXPECT_FALSE(MakeDirectory(Folder.Path("made").c_str()));
    EXPECT_FALSE(MakeDirectory(Folder.Path("none/made").c_str()));
}
