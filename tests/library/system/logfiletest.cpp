#include "library/system/logfile.h"

#include "library/containers/log.h"
#include "support/testsupport.h"

#include <filesystem>

TEST(LogFile, TakesTheLogForItsLifetime)
{
    TTempFolder folder;
    const std::string path = folder.Path("log");
    testing::internal::CaptureStderr();
    DebugPrintf("before\n");
    {
        TLogFile log;
        ASSERT_TRUE(log.Open(path.c_str()));
        DebugPrintf("in it %d\n", 7);
        EXPECT_EQ(ReadBytes(path), "in it 7\n");
    }
    DebugPrintf("after\n");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "before\nafter\n");
    EXPECT_EQ(ReadBytes(path), "in it 7\n");
}

TEST(LogFile, KeepsThatOfTheRunBefore)
{
    TTempFolder folder;
    const std::string path = folder.Path("log");
    for (const char* text : {"first\n", "second\n", "third\n"}) {
        TLogFile log;
        ASSERT_TRUE(log.Open(path.c_str()));
        DebugPrintf("%s", text);
    }
    EXPECT_EQ(ReadBytes(path), "third\n");
    EXPECT_EQ(ReadBytes(path + ".old"), "second\n");
}

TEST(LogFile, WhereItCannotBeWrittenTheLogStaysWhereItWas)
{
    TTempFolder folder;
    testing::internal::CaptureStderr();
    {
        TLogFile log;
        EXPECT_FALSE(log.Open(folder.Path("nowhere/log").c_str()));
        DebugPrintf("here\n");
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "here\n");
}

TEST(LogFile, DoesNotFillTheDisc)
{
    TTempFolder folder;
    const std::string path = folder.Path("log");
    TLogFile log;
    ASSERT_TRUE(log.Open(path.c_str()));
    const std::string line(4000, 'x');
    for (int i = 0; i < 5000; ++i)
        DebugPrintf("%s\n", line.c_str());
    EXPECT_LE(std::filesystem::file_size(path), static_cast<uintmax_t>(TLogFile::MaxBytes));
    EXPECT_GT(std::filesystem::file_size(path), static_cast<uintmax_t>(TLogFile::MaxBytes) / 2);
}
