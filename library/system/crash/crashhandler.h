#pragma once

#include "library/system/crash/failure.h"

// Gets a crash to report, once in a run. It may allocate nothing and call nothing but the functions of this
// layer and system calls: the process is broken, and its other threads are stopped.
using TCrashReporter = void (*)(const TCrash& crash);

// Takes the signals over that end the program, and the end by an exception that nobody catches. The reporter
// hears of the first failure; then the signal does what it always does. False, and nothing is done, if a
// debugger traces the program, or on a processor that is not known here.
bool InstallCrashHandler(TCrashReporter reporter);

// Reports a failure that the program itself has found, with its text, and comes back for the program to say
// so and to end. Within a failure that is already reported it ends at once.
void ReportCrash(TFailureKind kind, const char* text);
