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
    struct TExpected
    {
        int Signal;
        int Code;
        const char* Name;
    };
    for (const TExpected& expected : {
             TExpected{SIGSEGV, SEGV_MAPERR, "an Access Violation"},
             TExpected{SIGSEGV, SEGV_ACCERR, "an Access Violation"},
             TExpected{SIGBUS, BUS_ADRALN, "a Datatype Misalignment"},
             TExpected{SIGBUS, BUS_ADRERR, "an In Page Error"},
             TExpected{SIGBUS, BUS_OBJERR, "an In Page Error"},
             TExpected{SIGILL, ILL_ILLOPC, "an Illegal Instruction"},
             TExpected{SIGILL, ILL_PRVOPC, "an Illegal Instruction"},
             TExpected{SIGTRAP, TRAP_BRKPT, "a Breakpoint"},
             TExpected{SIGFPE, FPE_INTDIV, "an Integer Divide by Zero"},
             TExpected{SIGFPE, FPE_INTOVF, "an Integer Overflow"},
             TExpected{SIGFPE, FPE_FLTDIV, "a Float Divide by Zero"},
             TExpected{SIGFPE, FPE_FLTOVF, "a Float Overflow"},
             TExpected{SIGFPE, FPE_FLTUND, "a Float Underflow"},
             TExpected{SIGFPE, FPE_FLTRES, "a Float Inexact Result"},
             TExpected{SIGFPE, FPE_FLTINV, "a Float Invalid Operation"},
             TExpected{SIGFPE, FPE_FLTSUB, "a Array Bounds Exceeded"},
             TExpected{SIGFPE, SI_USER, "an Unknown exception type"},
             TExpected{SIGABRT, SI_TKILL, "an Unknown exception type"},
             TExpected{SIGSYS, SI_TKILL, "an Unknown exception type"},
             TExpected{SIGQUIT, SI_TKILL, "an Unknown exception type"},
             TExpected{SIGXCPU, SI_TKILL, "an Unknown exception type"},
         })
        EXPECT_STREQ(NameOf(expected.Signal, expected.Code), expected.Name)
            << expected.Signal << ", " << expected.Code;
}

TEST(TFailure, WhatNoSignalTellsHasANameToo)
{
    EXPECT_STREQ(GetFailureName(FK_STACKOVERFLOW), "a Stack Overflow");
    EXPECT_STREQ(GetFailureName(FK_NOMEMORY), "a No Memory");
}
