#include "particles/cindermill/batch/dumpcommand.h"

#include "library/containers/append.h"
#include "particles/cindermill/batch/batchsession.h"
#include "particles/cindermill/main/document.h"

#include <cstdio>
#include <cstring>

namespace {

void AppendLine(const char* text, void* data)
{
    vector<char>& log = *static_cast<vector<char>*>(data);
    const int length = static_cast<int>(std::strlen(text));
    memcpy(Extend(log, length), text, static_cast<size_t>(length));
}

} // namespace

TDumpCommand::TDumpCommand() : TBatchCommand("dump", "FILE") {}

const char* TDumpCommand::GetHelp() const
{
    return "Prints the log of the schedule's creation.\n";
}

int TDumpCommand::Run(TBatchSession& session, TArguments& arguments) const
{
    const char* path = arguments.TakeName();
    if (path == nullptr || !arguments.IsEmpty())
        return ReportUsage("dump takes one file");
    TDocument document(session.GetApp());
    if (!session.LoadGraph(document, path))
        return StatusErrors;
    TErrorList errors;
    vector<char> log;
    bool created = false;
    {
        TLogCapture capture(AppendLine, &log);
        created = document.CreateSchedule(errors);
    }
    if (!created) {
        PrintErrors(BR_SCHEDULEFAILED, errors);
        return StatusErrors;
    }
    std::fwrite(log.data(), 1, static_cast<size_t>(log.size()), stdout);
    return StatusDone;
}
