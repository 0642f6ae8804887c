#include "support/testsupport.h"

#include "library/system/lockedfolder.h"

#include <filesystem>

#include <sys/stat.h>

TEST(LockedFolder, IsMadeWithWhatIsAboveIt)
{
    const TTempFolder folder;
    const std::string parent = folder.Path("a/b");
    TLockedFolder first;
    ASSERT_TRUE(first.Create(parent.c_str()));
    TLockedFolder second;
    ASSERT_TRUE(second.Create(parent.c_str()));
    EXPECT_STRNE(first.GetPath(), second.GetPath());
    for (const char* path : {first.GetPath().c_str(), parent.c_str()}) {
        struct stat info;
        ASSERT_EQ(stat(path, &info), 0);
        EXPECT_TRUE(S_ISDIR(info.st_mode));
        EXPECT_EQ(info.st_mode & 0077, 0u) << path;
    }
}

TEST(LockedFolder, IsNobodyElsesAsLongAsItIsHeld)
{
    const TTempFolder folder;
    TLockedFolder held;
    ASSERT_TRUE(held.Create(folder.GetFolder().c_str()));
    TLockedFolder other;
    EXPECT_FALSE(other.TakeOver(held.GetPath()));
    EXPECT_FALSE(other.IsHeld());
    const TString path = held.GetPath();
    held.Release();
    EXPECT_TRUE(other.TakeOver(path));
    EXPECT_STREQ(other.GetPath(), path);
    EXPECT_FALSE(held.TakeOver(path));
}

TEST(LockedFolder, OfAProcessThatWasKilledCanBeTakenOver)
{
    const TTempFolder folder;
    ASSERT_TRUE(DoAndDie([&] {
        TLockedFolder held;
        ASSERT_TRUE(held.Create(folder.GetFolder().c_str()));
        WriteBytes(std::string(held.GetPath()) + "/kept", "text");
    }));
    const auto entry = *std::filesystem::directory_iterator(folder.GetFolder());
    TLockedFolder taken;
    ASSERT_TRUE(taken.TakeOver(entry.path().c_str()));
    EXPECT_EQ(ReadBytes(entry.path().string() + "/kept"), "text");
}

TEST(LockedFolder, GoesOnlyWhenItIsEmpty)
{
    const TTempFolder folder;
    TLockedFolder held;
    ASSERT_TRUE(held.Create(folder.GetFolder().c_str()));
    const std::string path = held.GetPath().Print();
    WriteBytes(path + "/kept", "text");
    held.Remove();
    EXPECT_FALSE(held.IsHeld());
    EXPECT_EQ(ReadBytes(path + "/kept"), "text");
    ASSERT_TRUE(held.TakeOver(path.c_str()));
    std::filesystem::remove(path + "/kept");
    held.Remove();
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(LockedFolder, IsNotMadeWhereNoneCanBe)
{
    const TTempFolder folder;
    WriteBytes(folder.Path("file"), "");
    TLockedFolder held;
    EXPECT_FALSE(held.Create(folder.Path("file").c_str()));
    EXPECT_FALSE(held.Create(folder.Path("file/below").c_str()));
    EXPECT_FALSE(held.TakeOver(folder.Path("file").c_str()));
    EXPECT_FALSE(held.TakeOver(folder.Path("missing").c_str()));
    EXPECT_FALSE(held.IsHeld());
}
