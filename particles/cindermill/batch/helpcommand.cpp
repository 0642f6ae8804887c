#include "particles/cindermill/batch/helpcommand.h"

#include <cstdio>

namespace {

const char* const Overview =
    "\n"
    "  --node-types DIR      the directory of the node types\n"
    "  --resources DIR       is searched for textures and animations ahead of anything else\n"
    "  --project FILE        export policies, budgets, severities and folders of a project\n"
    "\n"
    "\"cindermill-batch help COMMAND\" tells more of a command, \"cindermill-batch --version\" the version.\n"
    "The exit status is 0 when done with nothing to report, 1 when errors were reported, 2 when the command\n"
    "line is wrong.\n";

} // namespace

THelpCommand::THelpCommand() : TBatchCommand("help", "[COMMAND]") {}

const char* THelpCommand::GetHelp() const
{
    return "Tells how the program is used, or one of its commands.\n";
}

int THelpCommand::Run(TBatchSession& session, TArguments& arguments) const
{
    (void)session;
    return Tell(arguments);
}

int THelpCommand::Tell(TArguments& arguments)
{
    const char* word = arguments.Take();
    if (!arguments.IsEmpty())
        return ReportUsage("help takes one command");
    if (word == nullptr) {
        PrintUsage(stdout);
        std::fputs(Overview, stdout);
        return StatusDone;
    }
    const TBatchCommand* command = FindBatchCommand(word);
    if (command == nullptr)
        return ReportUsage("There is no command \"%s\"", word);
    PrintHelp(*command);
    return StatusDone;
}
