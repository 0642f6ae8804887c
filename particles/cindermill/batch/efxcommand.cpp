#include "particles/cindermill/batch/efxcommand.h"

#include "particles/cindermill/batch/batchsession.h"
#include "particles/effectgraph/export/efxlisting.h"

#include <cstdio>

namespace {

void PrintLine(const char* line, void* data)
{
    (void)data;
    std::printf("%s\n", line);
}

} // namespace

TEfxCommand::TEfxCommand() : TBatchCommand("efx", "FILE.efx") {}

const char* TEfxCommand::GetHelp() const
{
    return "Prints a readable listing of a console file.\n";
}

int TEfxCommand::Run(TBatchSession& session, TArguments& arguments) const
{
    (void)session;
    if (arguments.GetNumLeft() != 1)
        return ReportUsage("efx takes one file");
    const char* path = arguments.Take();
    TString fault;
    if (ListEfx(path, PrintLine, nullptr, fault))
        return StatusDone;
    std::fprintf(stderr, "%s: %s\n", path, fault.Print());
    return StatusErrors;
}
