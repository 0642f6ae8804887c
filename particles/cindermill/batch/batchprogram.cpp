#include "particles/cindermill/batch/batchprogram.h"

#include "particles/cindermill/batch/batchcommand.h"
#include "particles/cindermill/batch/batchsession.h"
#include "particles/cindermill/batch/helpcommand.h"

#include <cstdio>
#include <cstring>

namespace {

int Finish(int status)
{
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0)
        return status;
    std::fputs("The standard output cannot be written\n", stderr);
    return status == StatusUsage ? StatusUsage : StatusErrors;
}

// A failed assertion ends the command: what it was writing has not replaced anything.
int Start(const TBatchCommand& command, TBatchSession& session, TArguments& arguments)
{
    int status = StatusErrors;
    TString text;
    const bool finished = RunGuarded(
        [&] {
            if (!session.Init())
                return;
            if (!command.TellsOfSetup() && !(session.HasProject() && session.HasNodeTypes(false))) {
                PrintLines(session.GetProjectErrors());
                PrintLines(session.GetNodeTypeErrors());
                return;
            }
            if (command.NeedsNodeTypes)
                session.LoadNodeTypes();
            status = command.Run(session, arguments);
        },
        text);
    if (!finished) {
        std::fprintf(stderr, "%s\n", text.Print());
        status = StatusErrors;
    }
    return Finish(status);
}

// The short word may be the name of a file, where there are others.
bool AsksForHelp(const TArguments& arguments)
{
    return arguments.HasOption("--help") || (arguments.GetNumLeft() == 1 && arguments.HasOption("-h"));
}

// What needs neither settings nor files, so that nothing can be wrong with it.
bool Tell(const char* word, TArguments& arguments, int& status)
{
    const TBatchCommand* command = FindBatchCommand(word);
    if (std::strcmp(word, "--version") == 0) {
        std::printf("cindermill-batch %s\n", GetBatchVersion());
        status = StatusDone;
    } else if (std::strcmp(word, "--help") == 0 || std::strcmp(word, "-h") == 0 ||
               std::strcmp(word, "help") == 0) {
        status = THelpCommand::Tell(arguments);
    } else if (command != nullptr && !command->TakesAnyWord() && AsksForHelp(arguments)) {
        PrintHelp(*command);
        status = StatusDone;
    } else {
        return false;
    }
    status = Finish(status);
    return true;
}

} // namespace

int RunBatchProgram(int argc, char** argv)
{
    TArguments arguments(argc - 1, argv + 1);
    TBatchSession session;
    TString fault;
    if (!session.ReadOptions(arguments, fault))
        return ReportUsage("%s", fault.Print());
    const char* word = arguments.Take();
    if (word == nullptr)
        return ReportUsage("No command is given");
    int status = StatusDone;
    if (Tell(word, arguments, status))
        return status;
    if (const TBatchCommand* command = FindBatchCommand(word))
        return Start(*command, session, arguments);
    return ReportUsage("There is no command \"%s\"", word);
}
