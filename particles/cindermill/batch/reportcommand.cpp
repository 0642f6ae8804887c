#include "particles/cindermill/batch/reportcommand.h"

#include "particles/cindermill/batch/batchsession.h"
#include "particles/cindermill/main/document.h"

#include <cstdio>

TReportCommand::TReportCommand() : TBatchCommand("report", "FILE") {}

int TReportCommand::Run(TBatchSession& session, TArguments& arguments) const
{
    if (arguments.GetNumLeft() != 1)
        return ReportUsage("report takes one file");
    TDocument document(session.GetApp());
    if (!session.LoadGraph(document, arguments.Take()))
        return StatusErrors;
    TString report;
    {
        TLogCapture quiet(DropLine, nullptr);
        document.GetReport(report);
    }
    std::fputs(report.Print(), stdout);
    return StatusDone;
}
