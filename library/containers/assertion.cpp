#include "library/containers/assertion.h"

#include "library/containers/log.h"
#include "library/containers/string.h"

#include <cstdio>
#include <exception>

namespace {

TAssertReport AssertReport = nullptr;
TAssertHook AssertHook = nullptr;
TAssertBox AssertBox = nullptr;
thread_local int GuardDepth = 0;

void ReportFailure(const char* text)
{
    if (AssertBox != nullptr) {
        DebugPrintf("%s", text);
        AssertBox("Assert Failure", text);
        return;
    }
    // The trap that follows ends the program without flushing anything.
    fputs(text, stdout);
    fflush(stdout);
}

} // namespace

void AssertFail(const char* expr, const char* file, unsigned line)
{
    if (TAssertGuard::IsActive())
        throw TAssertionFailure(expr);
    char text[256];
    snprintf(text, sizeof(text), "Assertion failed: '%s' In file %s : Line %u\n", expr, file, line);
    if (AssertReport != nullptr)
        AssertReport(text);
    ReportFailure(text);
    if (AssertHook != nullptr)
        AssertHook(expr, file, line);
    __builtin_trap();
}

void AssertFailMsg(const char* expr, const char* message, const char* file, unsigned line)
{
    char joined[256];
    snprintf(joined, sizeof(joined), "%s : %s", expr, message);
    AssertFail(joined, file, line);
}

void SetAssertReport(TAssertReport report)
{
    AssertReport = report;
}

void SetAssertHook(TAssertHook hook)
{
    AssertHook = hook;
}

void SetAssertBox(TAssertBox box)
{
    AssertBox = box;
}

TAssertionFailure::TAssertionFailure(const char* expr)
{
    snprintf(Text, sizeof(Text), "%s", expr);
}

TAssertGuard::TAssertGuard()
{
    ++GuardDepth;
}

TAssertGuard::~TAssertGuard()
{
    --GuardDepth;
}

bool TAssertGuard::IsActive()
{
    return GuardDepth > 0;
}

TAssertPause::TAssertPause() : Depth(GuardDepth)
{
    GuardDepth = 0;
}

TAssertPause::~TAssertPause()
{
    GuardDepth = Depth;
}

bool IsAssertUnwinding()
{
    return std::uncaught_exceptions() > 0;
}

void StoreGuardText(TString& result, const char* text)
{
    result = text;
}
