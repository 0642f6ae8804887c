#include "particles/cindermill/batch/efxlistcommand.h"

#include "library/containers/shortentext.h"
#include "particles/cindermill/batch/batchsession.h"
#include "particles/effectgraph/export/efxlisting.h"

#include <cstdio>

namespace {

void PrintLine(const char* line, void* data)
{
    (void)data;
    std::printf("%s\n", OneLineText(line).Print());
}

} // namespace

TEfxListCommand::TEfxListCommand() : TBatchCommand("efx", "FILE.efx") {}

const char* TEfxListCommand::GetHelp() const
{
    return "Prints a readable listing of a console file.\n";
}

int TEfxListCommand::Run(TBatchSession& session, TArguments& arguments) const
{
    (void)session;
    const char* path = arguments.TakeName();
    if (path == nullptr || !arguments.IsEmpty())
        return ReportUsage("efx takes one file");
    TString fault;
    if (ListEfx(path, PrintLine, nullptr, fault))
        return StatusDone;
    PrintMessage(path, fault);
    return StatusErrors;
}
