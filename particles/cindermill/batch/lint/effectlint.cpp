#include "particles/cindermill/batch/lint/effectlint.h"

#include "particles/cindermill/batch/lint/lintbirths.h"
#include "particles/cindermill/batch/lint/lintboxes.h"
#include "particles/cindermill/batch/lint/lintconsole.h"
#include "particles/cindermill/batch/lint/lintcurves.h"
#include "particles/cindermill/batch/lint/lintemission.h"
#include "particles/cindermill/batch/lint/lintexport.h"
#include "particles/cindermill/batch/lint/lintgraph.h"
#include "particles/cindermill/batch/lint/lintnodetypes.h"
#include "particles/cindermill/batch/lint/lintnumbers.h"
#include "particles/cindermill/batch/lint/lintpopulation.h"
#include "particles/cindermill/batch/lint/lintreplay.h"
#include "particles/cindermill/batch/lint/lintreport.h"
#include "particles/cindermill/batch/lint/lintrun.h"
#include "particles/cindermill/graph/engine/effectexec.h"
#include "particles/cindermill/graph/engine/unseenservices.h"
#include "particles/effectgraph/export/exportdata.h"
#include "particles/effectgraph/runcollecting.h"

namespace {

// What an engine says of files that were looked for before.
constexpr const char* AnimationErrors[] = {"No animation specified", "Could not resolve path for animation",
                                           "Could not load animation"};

constexpr double NoReplay = -1;

bool IsAnimationError(const char* text)
{
    const TString whole(text);
    for (const char* beginning : AnimationErrors)
        if (whole.CompareStart(beginning) == 0)
            return true;
    return false;
}

} // namespace

bool TEffectLint::IsToldElsewhere(const char* error) const
{
    return Files.LacksAnimation() && IsAnimationError(error);
}

void TEffectLint::TellErrors(const char* kind, const TErrorList& errors, TLintReport& report) const
{
    for (const TError* error : errors)
        if (!IsToldElsewhere(error->GetMessage()))
            report.AddError(kind, *error);
}

void TEffectLint::Lint(const TEffectGraph& graph, TLintReport& report)
{
    report.SetGraph(&graph);
    LintNodeTypes(graph, Library, report);
    Files.Tell(graph, report);
    TErrorList errors;
    TEffectSchedule schedule;
    if (!RunCollecting(errors, [&] { return schedule.Create(graph, errors); })) {
        TellErrors(LK_SCHEDULE, errors, report);
        return;
    }
    report.SetSchedule(&schedule);
    LintScheduled(graph, schedule, report);
    report.SetSchedule(nullptr);
}

// What stops the engine stops the export too, and is told once.
void TEffectLint::LintScheduled(const TEffectGraph& graph, const TEffectSchedule& schedule,
                                TLintReport& report)
{
    TLintGraph lint(graph, schedule);
    lint.FindUseful();
    lint.Tell(report);
    double work = 0;
    if (LintRuns(schedule, lint, report, work))
        LintExport(schedule, lint, work, report);
}

bool TEffectLint::LintRuns(const TEffectSchedule& schedule, const TLintGraph& graph, TLintReport& report,
                           double& work)
{
    TUnseenServices services(Services);
    TEffectExec exec(services);
    TLintRun run(exec, schedule, Options);
    TLintPopulation population(schedule, Options);
    TLintEmission emission(schedule, Options);
    TLintNumbers numbers(schedule);
    TLintBoxes boxes(schedule, Options.SuggestBoxes);
    TLintCurves curves(schedule);
    TLintBirths births(schedule, graph);
    TLintConsole console(schedule, graph);
    TLintTheme* const themes[] = {&population, &emission, &numbers, &boxes, &curves, &births, &console};
    for (TLintTheme* theme : themes)
        run.AddTheme(*theme);
    TErrorList errors;
    if (!run.Run(report, errors)) {
        TellErrors(LK_ENGINE, errors, report);
        return false;
    }
    for (TLintTheme* theme : themes)
        theme->Tell(report);
    // What ended a run early would end the replay.
    work = run.HasEndedEarly() ? NoReplay : run.GetWorkOfFrame();
    return true;
}

void TEffectLint::LintExport(const TEffectSchedule& schedule, const TLintGraph& graph, double work,
                             TLintReport& report)
{
    TUnseenServices services(Services);
    TEffectExec exec(services);
    exec.SetTexturesUsed(false);
    TErrorList errors;
    const bool exported = RunCollecting(errors, [&] {
        if (!exec.Init(schedule, errors, false))
            return false;
        TExportData exportData(schedule);
        if (!exec.Export(exportData, errors))
            return false;
        TLintExport(exportData, Options).Tell(report);
        return true;
    });
    // The replay exports anew, and would tell the same errors.
    TErrorList ignored;
    const bool replays = exported && errors.empty() && work != NoReplay;
    TellErrors(LK_EXPORT, errors, report);
    if (replays && !RunCollecting(ignored, [&] {
            return TLintReplay(schedule, graph, Options).Tell(services, work, report, ignored);
        }))
        TellErrors(LK_EXPORT, ignored, report);
}
