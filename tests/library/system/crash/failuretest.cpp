#include "library/system/crash/failure.h"

#include <gtest/gtest.h>

namespace {

const char* NameOf(int signal, int code)
{
    siginfo_t info = {};
    info.si_signo = signal;
    info.si_code = code;
    return GetFailureName(GetFailureKind(info));
}

} // namespace

TEST(TFailure, EachSignalHasItsName)
{
    EXPECT_STREQ(NameOf(SIGSEGV, SEGV_MAPERR), "an Access Violation");
    EXPECT_STREQ(NameOf(SIGSEGV, SEGV_ACCERR), "an Access Violation");
    EXPECT_STREQ(NameOf(SIGBUS, BUS_ADRALN), "a Datatype Misalignment");
    EXPECT_STREQ(NameOf(SIGBUS, BUS_ADRERR), "an In Page Error");
    EXPECT_STREQ(NameOf(SIGBUS, BUS_OBJERR), "an In Page Error");
    EXPECT_STREQ(NameOf(SIGILL, ILL_ILLOPC), "an Illegal Instruction");
    EXPECT_STREQ(NameOf(SIGILL, ILL_PRVOPC), "an Illegal Instruction");
    EXPECT_STREQ(NameOf(SIGTRAP, TRAP_BRKPT), "a Breakpoint");
    for (const int signal : {SIGABRT, SIGSYS, SIGQUIT, SIGXCPU})
        EXPECT_STREQ(NameOf(signal, SI_TKILL), "an Unknown exception type") << signal;
}

TEST(TFailure, ArithmeticHasANameForEachCode)
{
    EXPECT_STREQ(NameOf(SIGFPE, FPE_INTDIV), "an Integer Divide by Zero");
    EXPECT_STREQ(NameOf(SIGFPE, FPE_INTOVF), "an Integer Overflow");
    EXPECT_STREQ(NameOf(SIGFPE, FPE_FLTDIV), "a Float Divide by Zero");
    EXPECT_STREQ(NameOf(SIGFPE, FPE_FLTOVF), "a Float Overflow");
    EXPECT_STREQ(NameOf(SIGFPE, FPE_FLTUND), "a Float Underflow");
    EXPECT_STREQ(NameOf(SIGFPE, FPE_FLTRES), "a Float Inexact Result");
    EXPECT_STREQ(NameOf(SIGFPE, FPE_FLTINV), "a Float Invalid Operation");
    EXPECT_STREQ(NameOf(SIGFPE, FPE_FLTSUB), "a Array Bounds Exceeded");
    EXPECT_STREQ(NameOf(SIGFPE, SI_USER), "an Unknown exception type");
}

TEST(TFailure, WhatNoSignalTellsHasANameToo)
{
    EXPECT_STREQ(GetFailureName(FK_STACKOVERFLOW), "a Stack Overflow");
    EXPECT_STREQ(GetFailureName(FK_NOMEMORY), "a No Memory");
}
