#include "particles/cindermill/batch/resavecommand.h"

#include "particles/cindermill/batch/batchsession.h"
#include "particles/cindermill/main/document.h"

#include <cstdio>

TResaveCommand::TResaveCommand() : TBatchCommand("resave", "IN OUT") {}

const char* TResaveCommand::GetHelp() const
{
    return "Loads an effect and saves it again, if what comes out would open again.\n";
}

int TResaveCommand::Run(TBatchSession& session, TArguments& arguments) const
{
    if (arguments.GetNumLeft() != 2)
        return ReportUsage("resave takes a file and the file to write");
    const char* in = arguments.Take();
    const char* out = arguments.Take();
    TDocument document(session.GetApp());
    if (!session.LoadFile(document, in))
        return StatusErrors;
    if (document.SaveAs(out))
        return StatusDone;
    const TString& reason = document.GetSaveError();
    if (reason.IsEmpty())
        std::fprintf(stderr, "%s: The file cannot be written: %s\n", out,
                     document.GetChunks().File.GetFault().Print());
    else
        PrintMessage(out, reason);
    return StatusErrors;
}
