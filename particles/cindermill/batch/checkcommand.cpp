#include "particles/cindermill/batch/checkcommand.h"

#include "library/containers/shortentext.h"
#include "particles/cindermill/batch/batchsession.h"
#include "particles/cindermill/batch/checkreport.h"
#include "particles/cindermill/batch/effectfindings.h"
#include "particles/cindermill/batch/findingarguments.h"
#include "particles/cindermill/batch/lint/lintnodetypes.h"
#include "particles/cindermill/batch/lint/lintreport.h"
#include "particles/cindermill/main/document.h"

#include <cstdio>

namespace {

struct TCheckSwitches
{
    bool ListsDependencies = false;
    bool FindsStale = false;
    bool IsVerbose = false;
};

// The files of one run, one after the other.
class TEffectCheck
{
public:
    TEffectCheck(TBatchSession& session, const TCheckSwitches& switches, TCheckReport& report,
                 bool isOfSeveral)
        : Session(session), Switches(switches), Report(report), IsOfSeveral(isOfSeveral)
    {
    }

    void CheckFile(const char* path)
    {
        Report.AddFile(path);
        TDocument document(Session.GetApp());
        if (!Session.LoadGraph(document, path, Report))
            return;
        TEffectFindings findings(document, path, Report);
        CheckEngine(document, path, findings);
        if (Switches.FindsStale)
            CheckTypes(document, path);
        if (Switches.ListsDependencies)
            ListDependencies(document, path);
    }

private:
    void CheckEngine(TDocument& document, const char* path, TEffectFindings& findings)
    {
        TErrorList errors;
        bool created = false;
        bool sound = false;
        {
            TLogCapture quiet(DropLine, nullptr);
            created = document.CreateSchedule(errors);
            sound = created && document.InitEngine(errors, true);
        }
        if (sound)
            return;
        findings.AddErrors(created ? "engine.error" : "schedule.error", errors);
        if (!Report.IsText())
            return;
        if (IsOfSeveral) {
            PrintErrorsOfFile(path, BR_SCHEDULEFAILED, errors);
            return;
        }
        std::fprintf(stderr, "%s: ", OneLineText(path).Print());
        PrintErrors(BR_SCHEDULEFAILED, errors);
    }
    void CheckTypes(TDocument& document, const char* path)
    {
        TFindingList findings;
        TLintReport report(findings, path);
        if (document.GetSchedule().IsCreated())
            report.SetSchedule(&document.GetSchedule());
        LintNodeTypes(*document.GetGraph(), Session.GetApp().GetNodeTypes(), report);
        for (int i = 0; i < findings.size(); ++i) {
            Report.Add(findings[i]);
            if (Report.IsText())
                PrintMessage(path, findings[i].Message);
        }
    }
    void ListDependencies(TDocument& document, const char* path)
    {
        vector<TDependency> dependencies;
        GetEffectDependencies(*document.GetGraph(), Session.GetApp(), dependencies);
        if (!Report.IsText()) {
            Report.AddDependencies(dependencies);
            return;
        }
        for (const TDependency& dependency : dependencies)
            std::printf("%s\t%s\t%s\t%s\n", OneLineText(path).Print(), GetDependencyKindName(dependency.Kind),
                        OneLineText(dependency.Name).Print(), OneLineText(dependency.Path).Print());
    }

    TBatchSession& Session;
    const TCheckSwitches& Switches;
    TCheckReport& Report;
    const bool IsOfSeveral;
};

} // namespace

TCheckCommand::TCheckCommand()
    : TBatchCommand("check", "[--format F] [--fail-on S] [--stale] [--list-dependencies] [--verbose] FILE...")
{
}

const char* TCheckCommand::GetHelp() const
{
    return "Loads, schedules and initialises the engine for each file, and reports what is wrong. A folder\n"
           "stands for all effects below it, and a pattern for the files that it fits.\n"
           "\n"
           "  --format F            text, json, junit or sarif; text unless told\n"
           "  --fail-on S           status 1 from this severity on: warning (unless told) or error\n"
           "  --stale               also tells of nodes whose types differ from the library's\n"
           "  --list-dependencies   also lists textures, animations and node types: file, kind, name and\n"
           "                        path, separated by tabs\n"
           "  --verbose             says where the export policies come from\n";
}

int TCheckCommand::Run(TBatchSession& session, TArguments& arguments) const
{
    TCheckSwitches switches;
    TFindingArguments words(Name);
    words.AddSwitch("--stale", switches.FindsStale);
    words.AddSwitch("--list-dependencies", switches.ListsDependencies);
    words.AddSwitch("--verbose", switches.IsVerbose);
    TString fault;
    if (!words.Read(arguments, fault))
        return ReportUsage("%s", fault.Print());
    if (words.GetNames().empty())
        return ReportUsage("check needs a file");
    if (!words.CheckSetup(session, switches.FindsStale))
        return StatusErrors;
    if (switches.IsVerbose)
        session.TellPolicies();
    if (switches.ListsDependencies)
        session.ReadNodeTypes();
    TCheckReport report(session.GetProject(), switches.ListsDependencies);
    words.Prepare(report, session);
    if (switches.FindsStale)
        TellNodeTypes(session, report);
    vector<TString> files;
    words.GetFiles(files);
    TEffectCheck check(session, switches, report, words.IsOfSeveral(files));
    for (const TString& file : files)
        check.CheckFile(file);
    report.Write(stdout);
    return report.HasFailed() ? StatusErrors : StatusDone;
}
