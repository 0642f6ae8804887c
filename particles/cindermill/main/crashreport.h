#pragma once

// What the program leaves behind when it fails: "ERRORLOG.TXT", a report for people, and "CRASH.DMP", the
// memory for a debugger. Both are put beside the program, or, where it cannot write there, into its folder of
// the user's state.
class TCrashReport
{
public:
    // First of all in a program with windows. False if a debugger traces the program, which then does
    // without.
    static bool Install();
    // A copy of the setting: a failed program cannot ask for it.
    static void SetDebugMode(int mode);
};
