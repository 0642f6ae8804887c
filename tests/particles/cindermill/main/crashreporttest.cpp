#include "crashfixture.h"

#include <csignal>

#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

class CrashReport : public TCrashTest
{
protected:
    TExpectedReport Expected(const std::string& name, int signal, const std::string& module = "") const
    {
        TExpectedReport expected;
        expected.Program = Program();
        expected.Name = name;
        expected.Signal = signal;
        expected.Module = module.empty() ? Quote(Program()) : module;
        return expected;
    }
    // Lets the program fail and reads what it leaves beside itself.
    TEnd Fail(const std::string& way, const TExpectedReport& expected)
    {
        const TEnd end = Run({way});
        EXPECT_EQ(end.Signal, expected.Signal) << end.Output;
        ExpectReport(Report(ProgramFolder()), expected);
        EXPECT_EQ(ReadBytes(Dump(ProgramFolder())).substr(0, 4), "\177ELF");
        EXPECT_FALSE(std::filesystem::exists(StateFolder()));
        EXPECT_NE(end.Output.find("writing minidump\r\n"), std::string::npos) << end.Output;
        return end;
    }
};

const std::string Library = "/.*/libc\\.so\\.6";
const std::string AssertionText = "Assertion failed: 'sun == shining : it rains' In file ";

size_t Count(const std::string& text, const std::string& part)
{
    size_t count = 0;
    for (size_t place = 0; (place = text.find(part, place)) != std::string::npos; ++place)
        ++count;
    return count;
}

// The rest of the line that begins so.
std::string RestOfLine(const std::string& text, const std::string& begin)
{
    const size_t place = text.find(begin);
    if (place == std::string::npos)
        return "";
    return text.substr(place, text.find_first_of("\r\n", place) - place);
}

} // namespace

TEST_F(CrashReport, AFailedAccessTellsItsAddress)
{
    TExpectedReport expected = Expected("an Access Violation", SIGSEGV);
    expected.Access = "Write to location 00000030";
    TEnd end = Fail("write", expected);
    EXPECT_EQ(
        Count(end.Output, "Exception handler: Write to location 00000030 caused an access violation.\r\n"),
        1u);
    EXPECT_LT(end.Output.find("Exception handler: "), end.Output.find("writing minidump\r\n")) << end.Output;
    expected.Access = "Read from location 00000040";
    end = Fail("read", expected);
    EXPECT_EQ(
        Count(end.Output, "Exception handler: Read from location 00000040 caused an access violation.\r\n"),
        1u);
    expected.Access = "Read from location 00000050";
    expected.Module = "Unknown";
    expected.HasCode = false;
    Fail("call", expected);
}

TEST_F(CrashReport, WithoutAnAddressNoneIsTold)
{
    Fail("wild", Expected("an Access Violation", SIGSEGV));
    Fail("raised-fault", Expected("an Access Violation", SIGSEGV, Library));
}

TEST_F(CrashReport, TheEndOfTheStackIsNoAccessViolation)
{
    TExpectedReport expected = Expected("a Stack Overflow", SIGSEGV);
    expected.IsStackFull = true;
    for (const char* way : {"recursion", "large-frame", "thread-recursion"}) {
        const TEnd end = Fail(way, expected);
        EXPECT_EQ(Count(end.Output, "Exception handler"), 0u) << end.Output;
    }
}

// Threads that the program did not start itself: the standard library, the window system and drivers do.
TEST_F(CrashReport, TheEndOfTheStackIsToldOnEveryThread)
{
    TExpectedReport expected = Expected("a Stack Overflow", SIGSEGV);
    expected.IsStackFull = true;
    const TExpectedReport inProgram = expected;
    expected.Module = Quote(CINDERMILL_CRASHLIBRARY);
    const TExpectedReport inLibrary = expected;
    const struct
    {
        const char* Way;
        const TExpectedReport& Report;
        const char* Function;
    } table[] = {{"standard-thread", inProgram, "FailByRecursion"},
                 {"qt-thread", inProgram, "FailByRecursion"},
                 {"library-thread", inLibrary, "FailByLibraryRecursion"},
                 {"plain-thread", inLibrary, "FailByLibraryRecursion"},
                 {"deaf-thread", inLibrary, "FailByLibraryRecursion"}};
    for (const auto& row : table) {
        SCOPED_TRACE(row.Way);
        Fail(row.Way, row.Report);
        const std::string said = Debug({"bt 20"});
        EXPECT_TRUE(said.empty() || said.find(row.Function) != std::string::npos) << said;
    }
}

TEST_F(CrashReport, ThreadsThatEndLeaveNothingBehind)
{
    const TEnd end = Run({"threads-end"});
    EXPECT_EQ(end.Status, 0) << end.Output;
}

TEST_F(CrashReport, AThreadThatStartsLeavesTheLoaderAlone)
{
    const TEnd end = Run({"loader-error"});
    EXPECT_EQ(end.Status, 0) << end.Output;
}

TEST_F(CrashReport, EachSignalHasItsName)
{
    TExpectedReport illegal = Expected("an Illegal Instruction", SIGILL);
    illegal.Code = "0f 0b ";
    Fail("illegal", illegal);
    Fail("breakpoint", Expected("a Breakpoint", SIGTRAP));
    Fail("division", Expected("an Integer Divide by Zero", SIGFPE));
    Fail("float-division", Expected("a Float Divide by Zero", SIGFPE));
    Fail("lost-page", Expected("an In Page Error", SIGBUS));
    Fail("abort", Expected("an Unknown exception type", SIGABRT, Library));
    Fail("exception", Expected("an Unknown exception type", SIGABRT, Library));
    Fail("quit", Expected("an Unknown exception type", SIGQUIT, Library));
}

TEST_F(CrashReport, MemoryThatIsMissingHasAName)
{
    const TEnd end = Fail("memory", Expected("a No Memory", SIGABRT, Library));
    EXPECT_EQ(Count(end.Output, "raising exception\r\n"), 1u) << end.Output;
}

TEST_F(CrashReport, AFailedAssertionIsThePlace)
{
    const TEnd end = Run({"assertion"});
    EXPECT_EQ(end.Signal, SIGABRT);
    TExpectedReport expected = Expected("an Unknown exception type", SIGABRT, Library);
    expected.Place = RestOfLine(end.Output, AssertionText);
    EXPECT_NE(expected.Place, "") << end.Output;
    ExpectReport(Report(ProgramFolder()), expected);
    EXPECT_EQ(Count(end.Output, "raising exception\r\n"), 1u) << end.Output;
    EXPECT_LT(end.Output.find("writing minidump\r\n"), end.Output.find(AssertionText)) << end.Output;
}

TEST_F(CrashReport, TheReportIsThereBeforeTheBoxAndTheOtherThreadsGoOn)
{
    const TEnd end = Run({"assertion-box"});
    EXPECT_EQ(end.Signal, SIGABRT);
    EXPECT_NE(end.Output.find("others go on\nreport first\n" + AssertionText), std::string::npos)
        << end.Output;
}

TEST_F(CrashReport, WhatFailsInTheBoxEndsTheProgram)
{
    const TEnd end = Run({"assertion-in-box"});
    EXPECT_EQ(end.Signal, SIGABRT);
    EXPECT_NE(end.Output.find("report first\nAssert Failure|" + AssertionText), std::string::npos)
        << end.Output;
    EXPECT_EQ(Count(end.Output, "writing minidump"), 1u) << end.Output;
}

TEST_F(CrashReport, AGuardedFailureReportsNothing)
{
    const TEnd end = Run({"guarded"});
    EXPECT_EQ(end.Status, 0) << end.Output;
    EXPECT_EQ(end.Output, "sun == shining : it rains");
    EXPECT_FALSE(std::filesystem::exists(Report(ProgramFolder())));
    EXPECT_FALSE(std::filesystem::exists(Dump(ProgramFolder())));
}

TEST_F(CrashReport, UnderADebuggerThereIsNone)
{
    const TEnd end = Run({"traced"});
    EXPECT_EQ(end.Status, 3);
    EXPECT_EQ(end.Output, "not installed\n");
}

TEST_F(CrashReport, AThreadThatFailsMeanwhileWaits)
{
    TExpectedReport expected = Expected("an Access Violation", SIGSEGV);
    expected.Access = "Write to location 00000030";
    // It has to be quick, to fail before the first one has ended the program.
    bool isTwice = false;
    for (int i = 0; i < 20 && !isTwice; ++i) {
        const TEnd end = Fail("twice", expected);
        EXPECT_EQ(Count(end.Output, "writing minidump"), 1u) << end.Output;
        isTwice = Count(end.Output, "second fails\n") == 1;
    }
    EXPECT_TRUE(isTwice);
    for (int i = 0; i < 10; ++i)
        Fail("together", Expected("an Illegal Instruction", SIGILL));
}

TEST_F(CrashReport, NeedsNoHeap)
{
    if (!HasSystemHeap)
        GTEST_SKIP() << "the sanitizer keeps the heap where it cannot be broken";
    EXPECT_NE(Run({"unprotected-heap"}).Signal, 0) << "the heap is not broken";
    TExpectedReport expected = Expected("an Access Violation", SIGSEGV);
    expected.Access = "Write to location 00000030";
    Fail("broken-heap", expected);
    expected = Expected("an Unknown exception type", SIGABRT, Library);
    expected.Place = RestOfLine(Run({"assertion"}).Output, AssertionText);
    Fail("broken-heap-assertion", expected);
}

TEST_F(CrashReport, WithoutAStackTheRestIsTold)
{
    TExpectedReport expected = Expected("an Access Violation", SIGSEGV);
    expected.Access = "Write to location 00000030";
    expected.HasStack = false;
    Fail("no-stack", expected);
}

TEST_F(CrashReport, TheSettingDecidesTheSizeOfTheDump)
{
    const std::string text = "this lies on the heap";
    const auto hasHeap = [&](const char* mode) {
        const TEnd end = Run({"write", mode});
        EXPECT_EQ(end.Signal, SIGSEGV) << end.Output;
        const std::string dump = ReadBytes(Dump(ProgramFolder()));
        EXPECT_EQ(dump.substr(0, 4), "\177ELF");
        return dump.find(text) != std::string::npos;
    };
    EXPECT_FALSE(hasHeap("1"));
    EXPECT_LT(std::filesystem::file_size(Dump(ProgramFolder())), 4u << 20);
    EXPECT_TRUE(hasHeap("0"));
    EXPECT_GT(std::filesystem::file_size(Dump(ProgramFolder())), 4u << 20);
    EXPECT_TRUE(hasHeap("2"));
    EXPECT_TRUE(hasHeap("stored"));
    EXPECT_FALSE(hasHeap("1"));
    EXPECT_FALSE(hasHeap("stored"));
}

// What was reserved and never used takes no place.
TEST_F(CrashReport, AFullDumpTakesNoMoreThanTheMemoryInUse)
{
    ASSERT_EQ(Run({"threads", "2"}).Signal, SIGSEGV);
    struct stat info;
    ASSERT_EQ(stat(Dump(ProgramFolder()).c_str(), &info), 0);
    // Three threads have stacks of 8 megabytes, of which they use little.
    EXPECT_GT(info.st_size, 24 << 20);
    EXPECT_LT(info.st_blocks * 512, info.st_size - (20 << 20));
}

TEST_F(CrashReport, ADebuggerPrintsTheStacksOfAllThreads)
{
    for (const char* mode : {"1", "2"}) {
        ASSERT_EQ(Run({"threads", mode}).Signal, SIGSEGV);
        const std::string said =
            Debug({"bt", "thread apply all bt", "info sharedlibrary", "info registers rip"});
        if (said.empty())
            GTEST_SKIP() << "there is no gdb";
        SCOPED_TRACE(said);
        EXPECT_NE(said.find("Core was generated by"), std::string::npos);
        EXPECT_NE(said.find("Program terminated with signal SIGSEGV"), std::string::npos);
        const size_t first = said.find("#0 ");
        EXPECT_NE(said.find("FailByWriting", first), std::string::npos);
        EXPECT_LT(said.find("FailByWriting", first), said.find("\n", first));
        for (const char* name : {"in main", "WaitInThread", "WaitDeafly", "SpinInThread", "libc.so.6"})
            EXPECT_NE(said.find(name), std::string::npos) << name;
    }
}

TEST_F(CrashReport, ADebuggerPrintsWhatFailed)
{
    const struct
    {
        const char* Way;
        const char* Function;
    } table[] = {{"recursion", "FailByRecursion"},
                 {"large-frame", "FailByLargeFrame"},
                 {"call", "FailByCalling"},
                 {"abort", "abort"},
                 {"assertion", "FailByAssertion"},
                 {"memory", "FailByMemory"},
                 {"exception", "FailByException"},
                 {"division", "FailByDivision"},
                 {"thread-recursion", "FailByRecursion"}};
    for (const auto& row : table) {
        Run({row.Way});
        const std::string said = Debug({"bt 20"});
        if (said.empty())
            GTEST_SKIP() << "there is no gdb";
        EXPECT_NE(said.find(row.Function), std::string::npos) << row.Way << "\n" << said;
    }
    Run({"twice"});
    const std::string said = Debug({"thread apply all bt"});
    EXPECT_NE(said.find("FailByWriting"), std::string::npos) << said;
    EXPECT_NE(said.find("Thread 2"), std::string::npos) << said;
}

TEST_F(CrashReport, OldFilesAreReplacedAlsoIfTheyAreReadOnly)
{
    for (const std::string& path : {Report(ProgramFolder()), Dump(ProgramFolder())}) {
        WriteBytes(path, std::string(4 << 20, 'o'));
        ASSERT_EQ(chmod(path.c_str(), 0444), 0);
    }
    TExpectedReport expected = Expected("an Access Violation", SIGSEGV);
    expected.Access = "Write to location 00000030";
    Fail("write", expected);
    EXPECT_LT(std::filesystem::file_size(Dump(ProgramFolder())), 4u << 20);
}

TEST_F(CrashReport, GoesToTheUsersStateWhereTheProgramsFolderIsReadOnly)
{
    std::filesystem::create_directory(Folder.Path("state"));
    const auto all = std::filesystem::perms::all;
    std::filesystem::permissions(Folder.GetFolder(), all);
    std::filesystem::permissions(Folder.Path("state"), all);
    std::filesystem::permissions(ProgramFolder(), std::filesystem::perms(0555));
    const TEnd end = [this] {
        const TNobody nobody;
        return Run({"write"});
    }();
    EXPECT_EQ(end.Signal, SIGSEGV) << end.Output;
    TExpectedReport expected = Expected("an Access Violation", SIGSEGV);
    expected.Access = "Write to location 00000030";
    ExpectReport(Report(StateFolder()), expected);
    EXPECT_EQ(ReadBytes(Dump(StateFolder())).substr(0, 4), "\177ELF");
    EXPECT_FALSE(std::filesystem::exists(Report(ProgramFolder())));
}

// Whoever mends the fault is to find both side by side.
TEST_F(CrashReport, BothFilesGoToOneFolder)
{
    TExpectedReport expected = Expected("an Access Violation", SIGSEGV);
    expected.Access = "Write to location 00000030";
    for (const std::string& inTheWay : {Dump(ProgramFolder()), Report(ProgramFolder())}) {
        SCOPED_TRACE(inTheWay);
        std::filesystem::remove_all(StateFolder());
        std::filesystem::create_directory(inTheWay);
        const TEnd end = Run({"write"});
        EXPECT_EQ(end.Signal, SIGSEGV) << end.Output;
        EXPECT_EQ(Count(end.Output, "Exception handler: "), 1u) << end.Output;
        ExpectReport(Report(StateFolder()), expected);
        EXPECT_EQ(ReadBytes(Dump(StateFolder())).substr(0, 4), "\177ELF");
        std::filesystem::remove_all(inTheWay);
        EXPECT_FALSE(std::filesystem::exists(Report(ProgramFolder())));
        EXPECT_FALSE(std::filesystem::exists(Dump(ProgramFolder())));
    }
}

TEST_F(CrashReport, TheReportAloneStaysBesideTheProgramWhereTheDumpHasNoPlace)
{
    std::filesystem::create_directory(Dump(ProgramFolder()));
    WriteBytes(Folder.Path("state"), "in the way");
    const TEnd end = Run({"write"});
    EXPECT_EQ(end.Signal, SIGSEGV) << end.Output;
    TExpectedReport expected = Expected("an Access Violation", SIGSEGV);
    expected.Access = "Write to location 00000030";
    ExpectReport(Report(ProgramFolder()), expected);
    EXPECT_EQ(Count(end.Output, "Exception handler: "), 1u) << end.Output;
    EXPECT_EQ(Count(end.Output, "Error creating"), 0u) << end.Output;
}

TEST_F(CrashReport, SaysSoWhereItCanBeWrittenNowhere)
{
    WriteBytes(Folder.Path("state"), "in the way");
    std::filesystem::create_directory(Report(ProgramFolder()));
    const TEnd end = Run({"write"});
    EXPECT_EQ(end.Signal, SIGSEGV);
    EXPECT_EQ(Count(end.Output, "Error creating exception report\r\n"), 1u) << end.Output;
    EXPECT_FALSE(std::filesystem::exists(Dump(ProgramFolder())));
}

TEST_F(CrashReport, OnAFullDiscTheSignalStillEndsTheProgram)
{
    constexpr rlim_t Limit = 2048;
    const TEnd end = Run({"write"}, [] {
        const rlimit limit = {Limit, Limit};
        setrlimit(RLIMIT_FSIZE, &limit);
    });
    EXPECT_EQ(end.Signal, SIGSEGV) << end.Output;
    EXPECT_EQ(std::filesystem::file_size(Report(ProgramFolder())), Limit);
    EXPECT_FALSE(std::filesystem::exists(Dump(ProgramFolder())));
    EXPECT_FALSE(std::filesystem::exists(Dump(StateFolder())));
}

TEST_F(CrashReport, AProgramThatHasUsedUpItsDescriptorsReports)
{
    TExpectedReport expected = Expected("an Access Violation", SIGSEGV);
    expected.Access = "Write to location 00000030";
    Fail("descriptors", expected);
}

TEST_F(CrashReport, ADumpThatDoesNotFitIsMadeSmall)
{
    constexpr rlim_t Limit = 4 << 20;
    const TEnd end = Run({"write", "2"}, [] {
        const rlimit limit = {Limit, Limit};
        setrlimit(RLIMIT_FSIZE, &limit);
    });
    EXPECT_EQ(end.Signal, SIGSEGV) << end.Output;
    EXPECT_LT(std::filesystem::file_size(Dump(ProgramFolder())), Limit);
    const std::string said = Debug({"bt"});
    if (said.empty())
        GTEST_SKIP() << "there is no gdb";
    EXPECT_NE(said.find("FailByWriting"), std::string::npos) << said;
}

// With no room for the report, and with room for it and none for the dump.
TEST_F(CrashReport, AFullDiscBesideTheProgramLeavesTheUsersState)
{
    const std::string disc = ProgramFolder();
    const uintmax_t size = std::filesystem::file_size(Program());
    const std::string options = "size=" + std::to_string(size + (512 << 10));
    if (mount("none", disc.c_str(), "tmpfs", 0, options.c_str()) != 0)
        GTEST_SKIP() << "only the superuser can make a small disc";
    std::filesystem::copy_file(CINDERMILL_CRASHCHILD, Program());
    for (const uintmax_t room : {8192u, 192u << 10}) {
        SCOPED_TRACE(room);
        std::filesystem::remove(disc + "/filling");
        std::filesystem::remove_all(StateFolder());
        const uintmax_t space = std::filesystem::space(disc).available;
        ASSERT_GT(space, room);
        WriteBytes(disc + "/filling", std::string((space - room) / 4096 * 4096, 'f'));
        const TEnd end = Run({"write"});
        EXPECT_EQ(end.Signal, SIGSEGV) << end.Output;
        TExpectedReport expected = Expected("an Access Violation", SIGSEGV);
        expected.Access = "Write to location 00000030";
        ExpectReport(Report(StateFolder()), expected);
        EXPECT_EQ(ReadBytes(Dump(StateFolder())).substr(0, 4), "\177ELF");
        EXPECT_FALSE(std::filesystem::exists(Report(disc)));
        EXPECT_FALSE(std::filesystem::exists(Dump(disc)));
    }
    EXPECT_EQ(umount2(disc.c_str(), MNT_DETACH), 0);
}
