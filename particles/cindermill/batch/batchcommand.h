#pragma once

#include "particles/cindermill/batch/arguments.h"

#include <cstdarg>
#include <cstdio>

class TBatchSession;

// What a command ends with, and the program after it.
constexpr int StatusDone = 0;
// The work was tried and something was reported.
constexpr int StatusErrors = 1;
// The command line is wrong.
constexpr int StatusUsage = 2;

// One command of the batch program: its word, what it takes, and what it does. It holds no state; what stays
// the same for all commands of a run is the session's.
class TBatchCommand
{
public:
    // `usage` tells the arguments in one line. Both texts live as long as the program.
    TBatchCommand(const char* name, const char* usage, bool needsNodeTypes = false)
        : Name(name), Usage(usage), NeedsNodeTypes(needsNodeTypes)
    {
    }
    virtual ~TBatchCommand() = default;
    // Results go to the standard output, messages to the standard error; gives the exit status.
    virtual int Run(TBatchSession& session, TArguments& arguments) const = 0;
    // What "help" tells of the command behind its usage: lines that end, and live as long as the program.
    virtual const char* GetHelp() const { return ""; }
    // Whether the command itself tells what is wrong with the project, and of a directory that should hold
    // node types and holds none: until then it may ask the session for nothing else.
    virtual bool TellsOfSetup() const { return false; }
    // Whether "--help" is a word like any other for the command.
    virtual bool TakesAnyWord() const { return false; }

    const char* const Name;
    const char* const Usage;
    // The library is read before the command runs; other commands read it only for a file that needs it.
    const bool NeedsNodeTypes;
};

// Null for an unknown word.
const TBatchCommand* FindBatchCommand(const char* word);

// The usage and the commands, and the usage of one with its help.
void PrintUsage(std::FILE* out);
void PrintHelp(const TBatchCommand& command);
// Tells what is wrong with the command line, and how it is used; gives the status of such a run.
int ReportUsage(const char* format, ...) CINDERMILL_PRINTF(1, 2);
