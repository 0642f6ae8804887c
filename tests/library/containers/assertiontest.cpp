#include "library/containers/assertion.h"

#include "library/containers/log.h"
#include "support/testsupport.h"

#include <stdexcept>
#include <thread>

#include <signal.h>

namespace {

struct TUnwindProbe
{
    bool& Seen;
    ~TUnwindProbe() { Seen = IsAssertUnwinding(); }
};

} // namespace

TEST(AssertionDeathTest, PrintsOnStandardOutputAndTraps)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            // The death test reads the standard error.
            dup2(2, 1);
            AssertFail("a < b", "dir/file.cpp", 12);
        },
        [](int status) { return WIFSIGNALED(status) != 0; },
        "Assertion failed: 'a < b' In file dir/file.cpp : Line 12\n");
}

TEST(AssertionDeathTest, BoxShowsTheTextAfterTheLog)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            SetAssertBox(
                [](const char* title, const char* text) { fprintf(stderr, "[%s|%s]", title, text); });
            AssertFailMsg("cond", "explanation", "f.cpp", 3);
        },
        [](int status) { return WIFSIGNALED(status) != 0; },
        "^Assertion failed: 'cond : explanation' In file f.cpp : Line 3\n"
        "\\[Assert Failure.Assertion failed: 'cond : explanation' In file f.cpp : Line 3\n\\]");
}

TEST(AssertionDeathTest, HookIsCalledBeforeTheTrap)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            SetAssertHook([](const char* expr, const char* file, unsigned line) {
                fprintf(stderr, "hook %s %s %u", expr, file, line);
                _exit(7);
            });
            AssertFail("x", "f.cpp", 9);
        },
        testing::ExitedWithCode(7), "hook x f.cpp 9");
}

TEST(AssertionDeathTest, IsReportedBeforeItIsShown)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            SetAssertReport([](const char* text) { fprintf(stderr, "(%s)", text); });
            SetAssertBox([](const char*, const char* text) { fprintf(stderr, "[%s]", text); });
            DebugPrintf("before ");
            AssertFail("x", "f.cpp", 9);
        },
        [](int status) { return WIFSIGNALED(status) != 0; },
        "^before \\(Assertion failed: 'x' In file f.cpp : Line 9\n\\)"
        "Assertion failed: 'x' In file f.cpp : Line 9\n"
        "\\[Assertion failed: 'x' In file f.cpp : Line 9\n\\]");
}

TEST(Assertion, HookMayThrow)
{
    static std::string shown;
    shown.clear();
    SetAssertBox([](const char*, const char* text) { shown = text; });
    SetAssertHook([](const char* expr, const char*, unsigned) { throw std::runtime_error(expr); });
    std::string log;
    std::string thrown;
    try {
        log = LogOf([&] {
            try {
                AssertFail("x == 1", "f.cpp", 4);
            } catch (const std::runtime_error& error) {
                thrown = error.what();
            }
        });
    } catch (...) {
        ADD_FAILURE();
    }
    SetAssertHook(nullptr);
    SetAssertBox(nullptr);
    EXPECT_EQ(thrown, "x == 1");
    EXPECT_EQ(shown, "Assertion failed: 'x == 1' In file f.cpp : Line 4\n");
    EXPECT_EQ(log, shown);
}

TEST(Assertion, GuardGivesTheTextBack)
{
    EXPECT_EQ(AssertionOf([] {}), "");
    EXPECT_EQ(AssertionOf([] { ASSERT(1 + 1 == 3); }), "1 + 1 == 3");
    EXPECT_EQ(AssertionOf([] { ASSERT_MSG(1 == 2, "why"); }), "1 == 2 : why");
    EXPECT_EQ(AssertionOf([] { ASSERT_TEXT(false, "!IsOpen() : Attempt"); }), "!IsOpen() : Attempt");
    EXPECT_EQ(AssertionOf([] { ASSERT_TEXT_MSG(false, "0", TempFormat("n=%d", 5)); }), "0 : n=5");
}

TEST(Assertion, GuardedFailureShowsAndLogsNothing)
{
    static int calls;
    calls = 0;
    SetAssertReport([](const char*) { ++calls; });
    SetAssertBox([](const char*, const char*) { ++calls; });
    SetAssertHook([](const char*, const char*, unsigned) { ++calls; });
    const std::string log = LogOf([] { EXPECT_EQ(AssertionOf([] { ASSERT_TEXT(false, "x"); }), "x"); });
    SetAssertHook(nullptr);
    SetAssertBox(nullptr);
    SetAssertReport(nullptr);
    EXPECT_EQ(log, "");
    EXPECT_EQ(calls, 0);
}

TEST(Assertion, JoinedTextIsCutAt255Characters)
{
    const std::string message(400, 'm');
    EXPECT_EQ(AssertionOf([&] { AssertFailMsg("e", message.c_str(), "f", 1); }),
              ("e : " + message).substr(0, 255));
}

TEST(Assertion, GuardsNest)
{
    EXPECT_FALSE(TAssertGuard::IsActive());
    {
        TAssertGuard outer;
        EXPECT_EQ(AssertionOf([] { ASSERT_TEXT(false, "inner"); }), "inner");
        EXPECT_TRUE(TAssertGuard::IsActive());
        bool active = true;
        std::thread([&] { active = TAssertGuard::IsActive(); }).join();
        EXPECT_FALSE(active);
    }
    EXPECT_FALSE(TAssertGuard::IsActive());
}

TEST(Assertion, UnwindingIsSeenInDestructors)
{
    bool seen = true;
    {
        TUnwindProbe probe{seen};
    }
    EXPECT_FALSE(seen);
    AssertionOf([&] {
        TUnwindProbe probe{seen};
        ASSERT_TEXT(false, "x");
    });
    EXPECT_TRUE(seen);
    EXPECT_FALSE(IsAssertUnwinding());
}

TEST(Assertion, APauseTakesTheGuardsOutOfForceForItsLifetime)
{
    TAssertGuard outer;
    TAssertGuard guard;
    {
        TAssertPause pause;
        EXPECT_FALSE(TAssertGuard::IsActive());
        EXPECT_EQ(AssertionOf([] { ASSERT_TEXT(false, "inside"); }), "inside");
        EXPECT_FALSE(TAssertGuard::IsActive());
    }
    EXPECT_TRUE(TAssertGuard::IsActive());
}

TEST(Log, LongTextIsCutAt4095Characters)
{
    const std::string line(5000, 'l');
    EXPECT_EQ(LogOf([&] { DebugPrintf("%s", line.c_str()); }), line.substr(0, 4095));
}

TEST(Log, CapturesNest)
{
    std::string inner;
    const std::string outer = LogOf([&] {
        DebugPrintf("a%d", 1);
        inner = LogOf([] { DebugPrintf("b"); });
        DebugPrintf("c\n");
    });
    EXPECT_EQ(outer, "a1c\n");
    EXPECT_EQ(inner, "b");
}

TEST(Log, GoesToStandardErrorWithoutASink)
{
    testing::internal::CaptureStderr();
    DebugPrintf("line %s\n", "x");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "line x\n");
}

TEST(Log, TempFormatOverwritesItsOneBuffer)
{
    const char* first = TempFormat("%d", 1);
    const char* second = TempFormat("%s", std::string(300, 't').c_str());
    EXPECT_EQ(first, second);
    EXPECT_EQ(std::string(second), std::string(255, 't'));
}
