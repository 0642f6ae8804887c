#include "particles/cindermill/batch/lintcommand.h"

#include "particles/cindermill/batch/batchsession.h"
#include "particles/cindermill/batch/findingarguments.h"
#include "particles/cindermill/batch/lint/effectlint.h"
#include "particles/cindermill/batch/lint/lintreport.h"
#include "particles/cindermill/main/appservices.h"

#include <cstdio>

namespace {

constexpr int MaxSeeds = 1000;
constexpr float MaxSeconds = 3600.0f;

// The files of one run, one after the other.
class TFileLint
{
public:
    TFileLint(TBatchSession& session, const TLintOptions& options, TFindingReport& report)
        : Session(session), Report(report),
          Services(session.GetApp().GetSettings(), session.GetApp().GetResourceLocator()),
          Lint(Services, session.GetApp().GetResourceLocator(), session.GetApp().GetNodeTypes(), options)
    {
    }

    void LintFile(const char* path)
    {
        Report.AddFile(path);
        TFindingList findings;
        TLintReport report(findings, path);
        TDocument document(Session.GetApp());
        if (Load(document, path, report))
            LintGraph(*document.GetGraph(), report);
        for (int i = 0; i < findings.size(); ++i)
            Tell(findings[i]);
    }

private:
    // False where the file cannot be looked at, which is told.
    bool Load(TDocument& document, const char* path, TLintReport& report)
    {
        TErrorList errors;
        bool loaded = false;
        TString fault;
        const TLogCapture quiet(DropLine, nullptr);
        const bool whole = RunGuarded(
            [&] {
                loaded = document.BatchLoad(path) && document.CheckLoaded() && document.ResolveTypes(errors);
            },
            fault);
        report.SetGraph(document.GetGraph());
        for (const TError* note : document.GetLoadNotes())
            report.AddError(LK_LOADMENDED, *note);
        if (loaded)
            return true;
        report.Add(LK_LOADFAILED, "%s",
                   !whole           ? fault.Print()
                   : errors.empty() ? document.GetLoadError().Print()
                                    : (*errors.begin())->GetMessage().Print());
        return false;
    }
    void LintGraph(const TEffectGraph& graph, TLintReport& report)
    {
        const TLogCapture quiet(DropLine, nullptr);
        TString fault;
        if (!RunGuarded([&] { Lint.Lint(graph, report); }, fault))
            report.Add(LK_STOPPED, "%s", fault.Print());
    }
    // A report that is text keeps none.
    void Tell(TFinding& finding)
    {
        Report.Add(finding);
        if (!Report.IsText())
            return;
        Session.GetProject().Judge(finding);
        TString text;
        GetFindingText(finding, text);
        std::printf("%s\n", text.Print());
    }

    TBatchSession& Session;
    TFindingReport& Report;
    TAppServices Services;
    TEffectLint Lint;
};

// False with a sentence that tells what is wrong.
bool ReadNumbers(const TString& seconds, const TString& seeds, TLintOptions& options, TString& fault)
{
    if (!seconds.IsEmpty() &&
        (!ParseReal(seconds, options.Seconds) || options.Seconds <= 0 || options.Seconds > MaxSeconds)) {
        fault.Format("--seconds takes a number of seconds, up to %g", double(MaxSeconds));
        return false;
    }
    if (!seeds.IsEmpty() && !ParseWhole(seeds, 1, MaxSeeds, options.NumSeeds)) {
        fault.Format("--seeds takes a whole number, 1 to %d", MaxSeeds);
        return false;
    }
    return true;
}

} // namespace

TLintCommand::TLintCommand()
    : TBatchCommand(
          "lint", "[--seconds N] [--seeds N] [--suggest-box] [--budgets] [--format F] [--fail-on S] FILE...")
{
}

const char* TLintCommand::GetHelp() const
{
    return "Looks for what would go wrong with each effect, or is most likely not meant: in its graph, its "
           "files\n"
           "and its export, and in runs of the engine. docs/lint.md tells what there is to be found. A "
           "folder\n"
           "stands for all effects below it, and a pattern for the files that it fits.\n"
           "\n"
           "  --seconds N           seconds that each run takes, 10 unless told\n"
           "  --seeds N             how many runs there are, each with a seed of its own, 3 unless told\n"
           "  --suggest-box         also tells the box round all that each render stage drew\n"
           "  --budgets             also tells what each group and the effect take of the console\n"
           "  --format F            text, json, junit or sarif; text unless told\n"
           "  --fail-on S           status 1 from this severity on: error (unless told) or warning\n";
}

int TLintCommand::Run(TBatchSession& session, TArguments& arguments) const
{
    TLintOptions options;
    TString seconds;
    TString seeds;
    TFindingArguments words(Name);
    words.AddValue("--seconds", seconds);
    words.AddValue("--seeds", seeds);
    words.AddSwitch("--suggest-box", options.SuggestBoxes);
    words.AddSwitch("--budgets", options.TellBudgets);
    TString fault;
    if (!words.Read(arguments, fault) || !ReadNumbers(seconds, seeds, options, fault))
        return ReportUsage("%s", fault.Print());
    if (words.GetNames().empty())
        return ReportUsage("lint needs a file");
    if (!words.CheckSetup(session, true))
        return StatusErrors;
    for (int b = 0; b < BG_NUMBUDGETS; ++b)
        options.Limits.Most[b] = session.GetProject().GetLimit(static_cast<TBudget>(b));
    options.PolicyFlags =
        TAppServices(session.GetApp().GetSettings(), session.GetApp().GetResourceLocator()).GetPolicyFlags();
    TFindingReport report(Name, session.GetProject());
    words.Prepare(report, session);
    if (!words.HasFailOn())
        report.SetFailOn(FS_ERROR);
    TellNodeTypes(session, report);
    vector<TString> files;
    words.GetFiles(files);
    TFileLint lint(session, options, report);
    for (const TString& file : files)
        lint.LintFile(file);
    report.Write(stdout);
    return report.HasFailed() ? StatusErrors : StatusDone;
}
