#pragma once

#include "library/system/crash/memorymap.h"
#include "library/system/crash/threadstate.h"
#include "library/system/crash/threadstopper.h"

#include <signal.h>

enum TFailureKind
{
    FK_UNKNOWN,
    FK_ACCESSVIOLATION,
    FK_STACKOVERFLOW,
    FK_INPAGEERROR,
    FK_MISALIGNMENT,
    FK_NOMEMORY,
    FK_ARRAYBOUNDS,
    FK_BREAKPOINT,
    FK_ILLEGALINSTRUCTION,
    FK_FLOATDIVIDE,
    FK_FLOATINEXACT,
    FK_FLOATINVALID,
    FK_FLOATOVERFLOW,
    FK_FLOATUNDERFLOW,
    FK_INTEGERDIVIDE,
    FK_INTEGEROVERFLOW,
    NumFailureKinds
};

struct TFailure
{
    TFailureKind Kind;
    // Null, or the text of what the program itself found to be wrong.
    const char* Text;
    siginfo_t Info;
    bool HasAccess;
    TAccess Access;
    TThreadState Thread;
};

// A program that has failed, with its other threads stopped. It takes megabytes, most of them never touched:
// static storage.
struct TCrash
{
    TFailure Failure;
    TMemoryMap Map;
    TThreadStopper Others;
};

// As the report words it.
const char* GetFailureName(TFailureKind kind);
// What the signal means. A fault beside the end of the stack is one of the stack.
TFailureKind GetFailureKind(const siginfo_t& info);
bool IsStackOverflow(const TFailure& failure, const TMemoryMap& map);
