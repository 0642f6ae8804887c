#include "library/system/filestamp.h"

#include "support/testsupport.h"

#include <filesystem>

#include <sys/stat.h>

namespace fs = std::filesystem;

namespace {

class TFileStampTest : public testing::Test
{
protected:
    TFileStampTest() : File(Folder.Path("file"))
    {
        WriteBytes(File, "first");
        EXPECT_TRUE(Stamp.Take(File.c_str()));
    }
    bool HasChanged() const { return Stamp.HasChanged(File.c_str()); }

    TTempFolder Folder;
    const std::string File;
    TFileStamp Stamp;
};

} // namespace

TEST_F(TFileStampTest, WhatItHoldsIsWhatChanges)
{
    EXPECT_FALSE(HasChanged());
    WriteBytes(File, "other");
    EXPECT_TRUE(HasChanged());
    WriteBytes(File, "first");
    EXPECT_FALSE(HasChanged()) << "touched only";
    WriteBytes(File, "first and more");
    EXPECT_TRUE(HasChanged());
}

TEST_F(TFileStampTest, AChangeOfOneByteWithTheOldTimeIsSeen)
{
    const auto time = fs::last_write_time(File);
    WriteBytes(File, "fiRst");
    fs::last_write_time(File, time);
    EXPECT_TRUE(HasChanged());
}

TEST_F(TFileStampTest, AnotherFileInItsPlaceIsSeenAndACopyIsNot)
{
    WriteBytes(Folder.Path("copy"), "first");
    fs::rename(Folder.Path("copy"), File);
    EXPECT_FALSE(HasChanged());
    WriteBytes(Folder.Path("copy"), "other");
    fs::rename(Folder.Path("copy"), File);
    EXPECT_TRUE(HasChanged());
}

TEST_F(TFileStampTest, AFileThatIsGoneHasNotChanged)
{
    fs::remove(File);
    EXPECT_FALSE(HasChanged());
    EXPECT_FALSE(Stamp.Take(File.c_str()));
    WriteBytes(File, "new");
    EXPECT_FALSE(HasChanged()) << "nothing was known of it";
}

TEST_F(TFileStampTest, NothingIsKnownOfAnotherPath)
{
    WriteBytes(Folder.Path("b"), "other");
    EXPECT_FALSE(Stamp.HasChanged(Folder.Path("b").c_str()));
    Stamp.MoveTo(Folder.Path("b").c_str());
    EXPECT_TRUE(Stamp.HasChanged(Folder.Path("b").c_str()));
}

TEST_F(TFileStampTest, AFileThatMayNoLongerBeReadIsToldByItsTime)
{
    ASSERT_EQ(chmod(Folder.GetFolder().c_str(), 0755), 0);
    ASSERT_EQ(chmod(File.c_str(), 0), 0);
    const auto time = fs::last_write_time(File);
    {
        const TNobody nobody;
        EXPECT_FALSE(HasChanged());
    }
    fs::last_write_time(File, time + std::chrono::seconds(1));
    const TNobody nobody;
    EXPECT_TRUE(HasChanged());
}
