#include "particles/cindermill/batch/hashcommand.h"

#include "library/containers/nametocrc.h"
#include "library/containers/shortentext.h"
#include "library/containers/strtoid.h"
#include "particles/cindermill/batch/batchsession.h"

#include <cstdio>

THashCommand::THashCommand() : TBatchCommand("hash", "NAME...") {}

const char* THashCommand::GetHelp() const
{
    return "Prints for each name its 32-bit identity and its CRC, separated by tabs.\n";
}

int THashCommand::Run(TBatchSession& session, TArguments& arguments) const
{
    (void)session;
    if (arguments.IsEmpty())
        return ReportUsage("hash needs a name");
    while (const char* name = arguments.Take())
        std::printf("%s\t%08x\t%08x\n", OneLineText(name).Print(), StrToID(name), NameToCrc(name));
    return StatusDone;
}
