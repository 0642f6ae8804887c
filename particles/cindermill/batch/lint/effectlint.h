#pragma once

#include "particles/cindermill/batch/lint/lintfiles.h"
#include "particles/cindermill/batch/lint/lintlimits.h"
#include "particles/effectgraph/schedule/effectschedule.h"

class TErrorList;
class TExecServices;
class TLintGraph;
class TLintReport;
class TNodeTypeLibrary;

// Looks for what would go wrong with effects: see docs/lint.md. An effect is only looked at.
class TEffectLint
{
public:
    // Refers to all of them.
    TEffectLint(TExecServices& services, TResourceLocator& locator, const TNodeTypeLibrary& library,
                const TLintOptions& options)
        : Services(services), Library(library), Options(options), Files(locator)
    {
    }
    // A graph whose types are settled.
    void Lint(const TEffectGraph& graph, TLintReport& report);

private:
    void LintScheduled(const TEffectGraph& graph, const TEffectSchedule& schedule, TLintReport& report);
    bool LintRuns(const TEffectSchedule& schedule, const TLintGraph& graph, TLintReport& report,
                  double& work);
    void LintExport(const TEffectSchedule& schedule, const TLintGraph& graph, double work,
                    TLintReport& report);
    bool IsToldElsewhere(const char* error) const;
    void TellErrors(const char* kind, const TErrorList& errors, TLintReport& report) const;

    TExecServices& Services;
    const TNodeTypeLibrary& Library;
    const TLintOptions& Options;
    TLintFiles Files;
};
