#include "library/system/crash/systemfacts.h"

#include "support/testsupport.h"

#include <filesystem>
#include <memory>

#include <sys/utsname.h>
#include <time.h>
#include <unistd.h>

TEST(TDateTime, IsThatOfTheLibrary)
{
    for (int64_t seconds : {0LL, 1LL, -1LL, 951782399LL, 951782400LL, 951868800LL, 1709164800LL, 1709251200LL,
                            4102444799LL, 4107542400LL, 1763800000LL, -2208988800LL}) {
        const time_t when = seconds;
        tm expected = {};
        gmtime_r(&when, &expected);
        const TDateTime time(seconds);
        EXPECT_EQ(time.Year, expected.tm_year + 1900) << seconds;
        EXPECT_EQ(time.Month, expected.tm_mon + 1) << seconds;
        EXPECT_EQ(time.Day, expected.tm_mday) << seconds;
        EXPECT_EQ(time.Hour, expected.tm_hour) << seconds;
        EXPECT_EQ(time.Minute, expected.tm_min) << seconds;
        EXPECT_EQ(time.Second, expected.tm_sec) << seconds;
    }
}

TEST(TSystemFacts, TellsTheProgramTheSystemAndTheUsersFolder)
{
    setenv("XDG_STATE_HOME", "/some/state", 1);
    const auto facts = std::make_unique<TSystemFacts>();
    facts->Take();
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe");
    EXPECT_EQ(facts->Program, program.string());
    EXPECT_EQ(facts->ProgramFolder, program.parent_path().string());
    EXPECT_STREQ(facts->StateFolder, "/some/state/cindermill");
    EXPECT_STREQ(facts->System, "Linux");
    utsname system;
    uname(&system);
    const std::string version = std::to_string(facts->Version[0]) + "." + std::to_string(facts->Version[1]);
    EXPECT_EQ(std::string(system.release).substr(0, version.size()), version);
    EXPECT_EQ(facts->Processors, sysconf(_SC_NPROCESSORS_ONLN));
    EXPECT_STRNE(facts->User, "");
    unsetenv("XDG_STATE_HOME");
}

TEST(TMemoryFacts, TellsWhatTheSystemTells)
{
    TMemoryFacts memory;
    memory.Read();
    const int64_t physical = sysconf(_SC_PHYS_PAGES) * (sysconf(_SC_PAGESIZE) / 1024) / 1024;
    EXPECT_NEAR(memory.Physical, static_cast<double>(physical), 1);
    EXPECT_GT(memory.PhysicalFree, 0);
    EXPECT_LE(memory.PhysicalFree, memory.Physical);
    EXPECT_GE(memory.PercentUsed, 0);
    EXPECT_LE(memory.PercentUsed, 100);
    EXPECT_LE(memory.PagingFree, memory.Paging);
    EXPECT_GT(memory.Address, memory.AddressFree);
    EXPECT_GT(memory.AddressFree, 0);
}
