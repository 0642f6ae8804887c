#include "library/system/crash/crashwriter.h"

#include "library/system/crash/crashfile.h"
#include "support/testsupport.h"

#include <climits>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// What a writer puts into a file.
std::string Written(const std::function<void(TCrashWriter&)>& work)
{
    const TTempFolder folder;
    const std::string path = folder.Path("text");
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    {
        TCrashWriter out(file);
        work(out);
        EXPECT_TRUE(out.Flush());
    }
    close(file);
    return ReadBytes(path);
}

// The same by the library.
template <class... TArguments>
void ExpectAsPrintf(const char* format, TArguments... arguments)
{
    char expected[256];
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
#pragma GCC diagnostic ignored "-Wformat-security"
    snprintf(expected, sizeof(expected), format, arguments...);
    EXPECT_EQ(Written([&](TCrashWriter& out) { out.Print(format, arguments...); }), expected) << format;
#pragma GCC diagnostic pop
}

} // namespace

TEST(TCrashWriter, FormatsAsTheLibraryDoes)
{
    ExpectAsPrintf("plain\r\n");
    ExpectAsPrintf("%d%% of %s", 7, "all");
    for (int number : {0, 1, -1, 42, INT_MAX, INT_MIN}) {
        ExpectAsPrintf("[%d] [%02d] [%10d] [%-10d]", number, number, number, number);
        ExpectAsPrintf("[%u] [%x] [%08x] [%02x]", static_cast<unsigned>(number),
                       static_cast<unsigned>(number), static_cast<unsigned>(number),
                       static_cast<unsigned>(number));
    }
    ExpectAsPrintf("[%s] [%5s] [%-5s]", "", "ab", "ab");
}

TEST(TCrashWriter, WritesMoreThanItsBufferHolds)
{
    const std::string line(1000, 'x');
    const std::string text = Written([&](TCrashWriter& out) {
        for (int i = 0; i < 20; ++i)
            out.Print("%s", line.c_str());
        out.Fill(3);
        out.Write("end", 3);
    });
    EXPECT_EQ(text, std::string(20000, 'x') + std::string(3, '\0') + "end");
}

TEST(TCrashWriter, TellsOfAFullDisc)
{
    const int file = open("/dev/full", O_WRONLY | O_CLOEXEC);
    ASSERT_GE(file, 0);
    TCrashWriter out(file);
    out.Print("text");
    EXPECT_FALSE(out.Flush());
    out.Print("more");
    EXPECT_FALSE(out.Flush());
    close(file);
}

TEST(CrashFile, JoinsWhatFits)
{
    char text[8];
    EXPECT_TRUE(JoinTexts(text, sizeof(text), "ab", "cd", "efg"));
    EXPECT_STREQ(text, "abcdefg");
    EXPECT_FALSE(JoinTexts(text, sizeof(text), "ab", "cd", "efgh"));
    EXPECT_STREQ(text, "abcdefg");
}

TEST(CrashFile, ReadsTheBeginningOfAFile)
{
    const TTempFolder folder;
    WriteBytes(folder.Path("file"), "0123456789");
    char text[6];
    EXPECT_EQ(ReadSmallFile(folder.Path("file").c_str(), text, sizeof(text)), 5u);
    EXPECT_STREQ(text, "01234");
    EXPECT_EQ(ReadSmallFile(folder.Path("none").c_str(), text, sizeof(text)), 0u);
    EXPECT_STREQ(text, "");
}

TEST(CrashFile, AFileTakesThePlaceOfWhateverWasThere)
{
    const TTempFolder folder;
    const std::string path = folder.Path("file");
    const auto create = [&] {
        const int file = CreateCrashFile(path.c_str(), WT_NO);
        if (file < 0)
            return false;
        const bool written = write(file, "new", 3) == 3;
        close(file);
        return written && ReadBytes(path) == "new";
    };
    EXPECT_TRUE(create());
    WriteBytes(path, "old and longer");
    EXPECT_TRUE(create());
    ASSERT_EQ(chmod(path.c_str(), 0444), 0);
    EXPECT_TRUE(create());
    // What a link leads to is somebody else's.
    WriteBytes(folder.Path("other"), "other");
    unlink(path.c_str());
    ASSERT_EQ(symlink(folder.Path("other").c_str(), path.c_str()), 0);
    EXPECT_TRUE(create());
    EXPECT_EQ(ReadBytes(folder.Path("other")), "other");
    // Opening one would wait for its reader.
    unlink(path.c_str());
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_TRUE(create());
    unlink(path.c_str());
    ASSERT_EQ(mkdir(path.c_str(), 0700), 0);
    EXPECT_FALSE(create());
    EXPECT_LT(CreateCrashFile(folder.Path("none/file").c_str(), WT_NO), 0);
}

TEST(CrashFile, MakesAllFoldersOfAPath)
{
    const TTempFolder folder;
    const std::string deep = folder.Path("a/b/c");
    MakeCrashFolder(deep.c_str());
    struct stat info;
    ASSERT_EQ(stat(deep.c_str(), &info), 0);
    EXPECT_TRUE(S_ISDIR(info.st_mode));
    MakeCrashFolder(deep.c_str());
}
