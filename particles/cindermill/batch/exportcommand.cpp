#include "particles/cindermill/batch/exportcommand.h"

#include "library/system/file.h"
#include "particles/cindermill/batch/batchsession.h"
#include "particles/cindermill/main/document.h"

#include <cstdio>

TExportCommand::TExportCommand() : TBatchCommand("export", "FILE OUT.efx") {}

int TExportCommand::Run(TBatchSession& session, TArguments& arguments) const
{
    if (arguments.GetNumLeft() != 2)
        return ReportUsage("export takes a file and the file to write");
    const char* in = arguments.Take();
    const char* out = arguments.Take();
    if (IsSameFile(in, out)) {
        std::fprintf(stderr, "%s: This is the effect itself, which its export would replace\n", out);
        return StatusErrors;
    }
    TDocument document(session.GetApp());
    if (!session.LoadGraph(document, in))
        return StatusErrors;
    TErrorList errors;
    TBatchResult result;
    {
        TLogCapture quiet(DropLine, nullptr);
        result = document.BatchExport(out, errors);
    }
    PrintErrors(result, errors);
    return result == BR_DONE && errors.empty() ? StatusDone : StatusErrors;
}
