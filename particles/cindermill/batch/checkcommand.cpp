#include "particles/cindermill/batch/checkcommand.h"

#include "particles/cindermill/batch/batchsession.h"
#include "particles/cindermill/main/document.h"

#include <cstdio>

TCheckCommand::TCheckCommand() : TBatchCommand("check", "FILE...") {}

bool TCheckCommand::CheckFile(TBatchSession& session, const char* path)
{
    TDocument document(session.GetApp());
    if (!session.LoadGraph(document, path))
        return false;
    TErrorList errors;
    bool sound = false;
    {
        TLogCapture quiet(DropLine, nullptr);
        sound = document.CreateSchedule(errors) && document.InitEngine(errors, true);
    }
    if (sound && errors.empty())
        return true;
    std::fprintf(stderr, "%s: ", path);
    PrintErrors(sound ? BR_DONE : BR_SCHEDULEFAILED, errors);
    return false;
}

int TCheckCommand::Run(TBatchSession& session, TArguments& arguments) const
{
    if (arguments.IsEmpty())
        return ReportUsage("check needs a file");
    int status = StatusDone;
    while (const char* path = arguments.Take())
        if (!CheckFile(session, path))
            status = StatusErrors;
    return status;
}
