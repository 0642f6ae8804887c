#include "particles/cindermill/batch/lintcommand.h"

#include "library/system/path.h"
#include "particles/cindermill/batch/batchsession.h"
#include "particles/cindermill/batch/lint/effectlint.h"
#include "particles/cindermill/batch/lint/lintreport.h"
#include "particles/cindermill/main/appservices.h"

#include <cmath>
#include <cstdio>
#include <cstring>

namespace {

constexpr int MaxSeeds = 1000;
constexpr float MaxSeconds = 3600.0f;

// The effects below a folder, in the order of their names.
void GatherEffects(const TString& folder, vector<TString>& files)
{
    vector<TDirectoryEntry> entries;
    ListDirectory(folder, entries);
    for (const TDirectoryEntry& entry : entries) {
        TString path = folder;
        if (path.Print()[path.Length() - 1] != '/')
            path += "/";
        path += entry.Name.Print();
        TString extension;
        extension.SetExtension(entry.Name);
        if (entry.IsDirectory && entry.Name.Print()[0] != '.')
            GatherEffects(path, files);
        else if (!entry.IsDirectory && extension.Compare("effect") == 0)
            files.push_back(path);
    }
}

void PrintFinding(const TFinding& finding)
{
    std::printf("%s: %s: %s: %s", finding.File.Print(), GetSeverityName(finding.Severity), finding.Id,
                finding.Message.Print());
    if (!finding.Place.Node.IsEmpty())
        std::printf(" [%s (%s), group %d, at %g, %g]", finding.Place.Node.Print(), finding.Place.Type.Print(),
                    finding.Place.Group, double(finding.Place.X), double(finding.Place.Y));
    std::printf("\n");
}

// False where the file cannot be looked at, which is told.
bool LoadEffect(TDocument& document, const char* path, TLintReport& report)
{
    TErrorList errors;
    bool loaded = false;
    TString fault;
    const TLogCapture quiet(DropLine, nullptr);
    const bool whole = RunGuarded(
        [&] { loaded = document.BatchLoad(path) && document.CheckLoaded() && document.ResolveTypes(errors); },
        fault);
    for (const TError* note : document.GetLoadNotes())
        report.Add(LK_LOADMENDED, "%s", note->GetMessage().Print());
    if (loaded)
        return true;
    const char* reason = !whole           ? fault.Print()
                         : errors.empty() ? document.GetLoadError().Print()
                                          : (*errors.begin())->GetMessage().Print();
    report.Add(LK_LOADFAILED, "%s", reason);
    return false;
}

void LintFile(TBatchSession& session, TEffectLint& lint, const char* path, TFindingList& findings)
{
    TLintReport report(findings, path);
    TDocument document(session.GetApp());
    if (!LoadEffect(document, path, report))
        return;
    const TLogCapture quiet(DropLine, nullptr);
    TString fault;
    if (!RunGuarded([&] { lint.Lint(*document.GetGraph(), report); }, fault))
        report.Add(LK_STOPPED, "%s", fault.Print());
}

} // namespace

TLintCommand::TLintCommand()
    : TBatchCommand("lint", "FILE|DIR... [--seconds N] [--seeds N] [--suggest-box] [--budgets]", true)
{
}

int TLintCommand::Run(TBatchSession& session, TArguments& arguments) const
{
    TLintOptions options;
    vector<TString> files;
    while (!arguments.IsEmpty()) {
        if (arguments.TakeIf("--seconds")) {
            if (!ParseReal(arguments.Take(), options.Seconds) || options.Seconds <= 0 ||
                options.Seconds > MaxSeconds)
                return ReportUsage("--seconds takes a number of seconds, up to %g", double(MaxSeconds));
        } else if (arguments.TakeIf("--seeds")) {
            if (!ParseWhole(arguments.Take(), 1, MaxSeeds, options.NumSeeds))
                return ReportUsage("--seeds takes a whole number, 1 to %d", MaxSeeds);
        } else if (arguments.TakeIf("--suggest-box")) {
            options.SuggestBoxes = true;
        } else if (arguments.TakeIf("--budgets")) {
            options.TellBudgets = true;
        } else {
            const char* word = arguments.Take();
            vector<TDirectoryEntry> ignored;
            if (std::strncmp(word, "--", 2) == 0)
                return ReportUsage("lint does not know \"%s\"", word);
            if (ListDirectory(word, ignored))
                GatherEffects(word, files);
            else
                files.push_back(word);
        }
    }
    if (files.empty())
        return ReportUsage("lint needs a file, or a folder with effects");
    TAppServices services(session.GetApp().GetSettings(), session.GetApp().GetResourceLocator());
    options.PolicyFlags = services.GetPolicyFlags();
    TEffectLint lint(services, session.GetApp().GetResourceLocator(), session.GetApp().GetNodeTypes(),
                     options);
    TFindingList findings;
    for (const TString& file : files)
        LintFile(session, lint, file, findings);
    for (int i = 0; i < findings.size(); ++i)
        PrintFinding(findings[i]);
    return findings.GetWorst() >= FS_ERROR ? StatusErrors : StatusDone;
}
