#include "particles/cindermill/batch/checkcommand.h"

#include "particles/cindermill/batch/batchsession.h"
#include "particles/cindermill/batch/checkreport.h"
#include "particles/cindermill/batch/effectfindings.h"
#include "particles/cindermill/batch/findingarguments.h"
#include "particles/cindermill/main/document.h"

#include <cstdio>

namespace {

bool HasClass(const TNodeTypeLibrary& library, const char* className)
{
    for (int i = 0; i < library.GetNumTypes(); ++i)
        if (library.GetType(i)->ClassName.Compare(className) == 0)
            return true;
    return false;
}

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
    TEffectCheck(TBatchSession& session, const TCheckSwitches& switches, TCheckReport& report)
        : Session(session), Switches(switches), Report(report)
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
            CheckTypes(document, path, findings);
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
        if (sound && errors.empty())
            return;
        findings.AddErrors(sound ? "engine.warning" : created ? "engine.error" : "schedule.error", errors);
        if (!Report.IsText())
            return;
        std::fprintf(stderr, "%s: ", path);
        PrintErrors(sound ? BR_DONE : BR_SCHEDULEFAILED, errors);
    }
    void CheckTypes(TDocument& document, const char* path, TEffectFindings& findings)
    {
        const TNodeTypeLibrary& library = Session.GetApp().GetNodeTypes();
        const TEffectGraph& graph = *document.GetGraph();
        for (int i = 0; i < graph.GetNumNodes(); ++i) {
            const TNodeType& type = *graph.GetNode(i)->GetNodeType();
            const bool isKnown = library.FindType(type.Name) != nullptr;
            // A node that an artist has named is still of its class.
            if (isKnown ? !type.NeedsRefresh(library) : HasClass(library, type.ClassName))
                continue;
            TString text;
            text = "Node \"";
            text += type.Name.Print();
            text += isKnown ? "\" differs from the library's type of its name"
                            : "\" is of a type that the library does not have";
            findings.AddOfNode(isKnown ? "type.stale" : "type.missing", *graph.GetNode(i), text);
            if (Report.IsText())
                std::fprintf(stderr, "%s: %s\n", path, text.Print());
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
            std::printf("%s\t%s\t%s\t%s\n", path, GetDependencyKindName(dependency.Kind),
                        dependency.Name.Print(), dependency.Path.Print());
    }

    TBatchSession& Session;
    const TCheckSwitches& Switches;
    TCheckReport& Report;
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
    if (switches.IsVerbose)
        session.TellPolicies();
    if (switches.FindsStale || switches.ListsDependencies)
        session.ReadNodeTypes();
    if (switches.FindsStale && session.GetApp().GetNodeTypes().GetNumTypes() == 0) {
        PrintLines(session.GetNodeTypeErrors());
        return StatusErrors;
    }
    TCheckReport report(session.GetProject(), switches.ListsDependencies);
    words.Prepare(report, session);
    vector<TString> files;
    words.GetFiles(files);
    TEffectCheck check(session, switches, report);
    for (const TString& file : files)
        check.CheckFile(file);
    report.Write(stdout);
    return report.HasFailed() ? StatusErrors : StatusDone;
}
