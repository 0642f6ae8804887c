#include "particles/cindermill/batch/batchprogram.h"

#include "particles/cindermill/batch/batchcommand.h"
#include "particles/cindermill/batch/batchsession.h"

#include <cstdio>

namespace {

// A failed assertion ends the command: what it was writing has not replaced anything.
int Start(const TBatchCommand& command, TBatchSession& session, TArguments& arguments)
{
    int status = StatusErrors;
    TString text;
    const bool finished = RunGuarded(
        [&] {
            if (!session.Init())
                return;
            if (command.NeedsNodeTypes)
                session.LoadNodeTypes();
            status = command.Run(session, arguments);
        },
        text);
    if (!finished) {
        std::fprintf(stderr, "%s\n", text.Print());
        status = StatusErrors;
    }
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        std::fputs("The standard output cannot be written\n", stderr);
        status = status == StatusUsage ? StatusUsage : StatusErrors;
    }
    return status;
}

} // namespace

int RunBatchProgram(int argc, char** argv)
{
    TArguments arguments(argc - 1, argv + 1);
    TBatchSession session;
    if (!session.ReadOptions(arguments))
        return ReportUsage("An option lacks its directory");
    const char* word = arguments.Take();
    if (word == nullptr)
        return ReportUsage("No command is given");
    if (const TBatchCommand* command = FindBatchCommand(word))
        return Start(*command, session, arguments);
    return ReportUsage("There is no command \"%s\"", word);
}
