#include "library/system/directorywatcher.h"

#include "support/testsupport.h"

#include <filesystem>

namespace {

namespace fs = std::filesystem;

class DirectoryWatcher : public testing::Test
{
protected:
    int Watch(const std::string& path)
    {
        int error = 0;
        return Watcher.Add(path.c_str(), error);
    }

    TTempFolder Folder;
    TDirectoryWatcher Watcher;
};

} // namespace

TEST_F(DirectoryWatcher, TellsAWrittenFileOnce)
{
    const int number = Watch(Folder.GetFolder());
    ASSERT_NE(number, -1);
    EXPECT_FALSE(Watcher.TakeSignal(number));
    WriteBytes(Folder.Path("a"), "new");
    EXPECT_TRUE(Watcher.TakeSignal(number));
    EXPECT_FALSE(Watcher.TakeSignal(number));
}

TEST_F(DirectoryWatcher, KeepsTwoDirectoriesApart)
{
    fs::create_directory(Folder.Path("a"));
    fs::create_directory(Folder.Path("b"));
    const int a = Watch(Folder.Path("a"));
    const int b = Watch(Folder.Path("b"));
    WriteBytes(Folder.Path("b/file"), "new");
    EXPECT_FALSE(Watcher.TakeSignal(a));
    EXPECT_TRUE(Watcher.TakeSignal(b));
}

TEST_F(DirectoryWatcher, OneOfTwoWatchesOfADirectoryMayGo)
{
    const int first = Watch(Folder.GetFolder());
    const int second = Watch(Folder.GetFolder() + "/.");
    WriteBytes(Folder.Path("a"), "new");
    EXPECT_TRUE(Watcher.TakeSignal(first));
    EXPECT_TRUE(Watcher.TakeSignal(second));
    Watcher.Remove(first);
    WriteBytes(Folder.Path("a"), "newer");
    EXPECT_TRUE(Watcher.TakeSignal(second));
    // The number is given out again.
    EXPECT_EQ(Watch(Folder.GetFolder()), first);
}

TEST_F(DirectoryWatcher, GivesTheErrorOfWhatIsNoDirectory)
{
    int error = 0;
    EXPECT_EQ(Watcher.Add(Folder.Path("missing").c_str(), error), -1);
    EXPECT_EQ(error, ENOENT);
    WriteBytes(Folder.Path("a"), "a file");
    EXPECT_EQ(Watcher.Add(Folder.Path("a").c_str(), error), -1);
    EXPECT_EQ(error, ENOTDIR);
}

TEST_F(DirectoryWatcher, ADirectoryThatComesBackIsTold)
{
    fs::create_directory(Folder.Path("a"));
    const int number = Watch(Folder.Path("a"));
    fs::remove(Folder.Path("a"));
    EXPECT_TRUE(Watcher.TakeSignal(number));
    EXPECT_FALSE(Watcher.TakeSignal(number));
    fs::create_directory(Folder.Path("a"));
    EXPECT_TRUE(Watcher.TakeSignal(number));
    WriteBytes(Folder.Path("a/file"), "new");
    EXPECT_TRUE(Watcher.TakeSignal(number));
}

TEST_F(DirectoryWatcher, ADirectoryThatMovesAwayIsNotFollowed)
{
    fs::create_directory(Folder.Path("a"));
    const int number = Watch(Folder.Path("a"));
    fs::rename(Folder.Path("a"), Folder.Path("b"));
    EXPECT_TRUE(Watcher.TakeSignal(number));
    WriteBytes(Folder.Path("b/file"), "elsewhere");
    EXPECT_FALSE(Watcher.TakeSignal(number));
    fs::create_directory(Folder.Path("a"));
    EXPECT_TRUE(Watcher.TakeSignal(number));
    WriteBytes(Folder.Path("a/file"), "new");
    EXPECT_TRUE(Watcher.TakeSignal(number));
    EXPECT_FALSE(Watcher.TakeSignal(number));
}

TEST(GetFileWriteTime, FollowsTheFile)
{
    TTempFolder folder;
    int64_t before = 0;
    EXPECT_FALSE(GetFileWriteTime(folder.Path("a").c_str(), before));
    WriteBytes(folder.Path("a"), "a");
    ASSERT_TRUE(GetFileWriteTime(folder.Path("a").c_str(), before));
    fs::last_write_time(folder.Path("a"), fs::last_write_time(folder.Path("a")) + std::chrono::seconds(3));
    int64_t after = 0;
    ASSERT_TRUE(GetFileWriteTime(folder.Path("a").c_str(), after));
    EXPECT_EQ(after - before, 3000000000);
}
