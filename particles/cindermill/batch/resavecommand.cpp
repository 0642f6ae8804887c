#include "particles/cindermill/batch/resavecommand.h"

#include "particles/cindermill/batch/batchsession.h"
#include "particles/cindermill/main/document.h"

TResaveCommand::TResaveCommand() : TBatchCommand("resave", "IN OUT") {}

const char* TResaveCommand::GetHelp() const
{
    return "Loads an effect and saves it again, if what comes out would open again.\n";
}

int TResaveCommand::Run(TBatchSession& session, TArguments& arguments) const
{
    const char* in = arguments.TakeName();
    const char* out = in != nullptr ? arguments.TakeName() : nullptr;
    if (out == nullptr || !arguments.IsEmpty())
        return ReportUsage("resave takes a file and the file to write");
    TDocument document(session.GetApp());
    if (!session.LoadFile(document, in))
        return StatusErrors;
    if (document.SaveAs(out))
        return StatusDone;
    TString reason = document.GetSaveError();
    if (reason.IsEmpty()) {
        reason = "The file cannot be written: ";
        reason += document.GetChunks().File.GetFault().Print();
    }
    PrintMessage(out, reason);
    return StatusErrors;
}
