#include "particles/cindermill/batch/reportcommand.h"

#include "particles/cindermill/batch/batchsession.h"
#include "particles/cindermill/batch/effectfacts.h"
#include "particles/cindermill/batch/effectfindings.h"
#include "particles/cindermill/batch/findingarguments.h"
#include "particles/cindermill/main/document.h"

#include <cstdio>

namespace {

// The files of one run, one after the other.
class TEffectReporter
{
public:
    TEffectReporter(TBatchSession& session, TFactsReport& report, bool judges)
        : Session(session), Report(report), Judges(judges)
    {
    }

    // False where the file cannot be loaded.
    bool ReportFile(const char* path)
    {
        Report.AddFile(path);
        TDocument document(Session.GetApp());
        if (!Session.LoadGraph(document, path, Report))
            return false;
        if (Report.IsText())
            PrintText(document);
        if (!Judges)
            return true;
        TEffectFindings findings(document, path, Report);
        TEffectFacts facts;
        TLogCapture quiet(DropLine, nullptr);
        GetEffectFacts(document, facts, findings);
        Report.AddFacts(facts);
        return true;
    }

private:
    void PrintText(TDocument& document)
    {
        TString text;
        {
            TLogCapture quiet(DropLine, nullptr);
            document.GetReport(text);
        }
        std::printf("%s%s", Between, text.Print());
        Between = "\r\n";
    }

    TBatchSession& Session;
    TFactsReport& Report;
    const bool Judges;
    const char* Between = "";
};

} // namespace

TReportCommand::TReportCommand() : TBatchCommand("report", "[--format F] [--fail-on S] FILE...") {}

const char* TReportCommand::GetHelp() const
{
    return "Prints the text of the File Properties dialog, with its CR LF line ends, or the same as numbers. "
           "A\n"
           "folder stands for all effects below it, and a pattern for the files that it fits.\n"
           "\n"
           "  --format F            text, json, junit or sarif; text unless told\n"
           "  --fail-on S           status 1 from this severity on: warning or error. Unless told, text has\n"
           "                        status 1 for a file that cannot be loaded, the others from warning on\n";
}

int TReportCommand::Run(TBatchSession& session, TArguments& arguments) const
{
    TFindingArguments words(Name);
    TString fault;
    if (!words.Read(arguments, fault))
        return ReportUsage("%s", fault.Print());
    if (words.GetNames().empty())
        return ReportUsage("report takes one file");
    if (!words.CheckSetup(session))
        return StatusErrors;
    TFactsReport report(session.GetProject());
    words.Prepare(report, session);
    vector<TString> files;
    words.GetFiles(files);
    const bool judges = !words.IsText() || words.HasFailOn();
    TEffectReporter reporter(session, report, judges);
    bool loaded = true;
    for (const TString& file : files)
        loaded = reporter.ReportFile(file) && loaded;
    report.Write(stdout);
    return (judges ? report.HasFailed() : !loaded) ? StatusErrors : StatusDone;
}
