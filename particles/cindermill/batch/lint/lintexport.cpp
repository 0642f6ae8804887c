#include "particles/cindermill/batch/lint/lintexport.h"

#include "particles/cindermill/batch/lint/lintreport.h"
#include "particles/effectgraph/error.h"
#include "particles/effectgraph/export/exportdata.h"
#include "particles/effectgraph/export/exportpolicies.h"

#include <algorithm>

namespace {

// In the order of TBudget.
constexpr const char* BudgetTexts[BG_NUMBUDGETS] = {"rows of the working set",
                                                    "input buffers",
                                                    "output buffers",
                                                    "kilobytes of program",
                                                    "kilobytes of workspace",
                                                    "bytes for a particle",
                                                    "bytes of the exported file",
                                                    "particles"};
constexpr int NumGroupBudgets = BG_FILEBYTES;

} // namespace

void TLintExport::Tell(TLintReport& report) const
{
    const int numGroups = Export.GetResult().Groups.size();
    for (int g = 0; g < numGroups; ++g) {
        int64_t used[NumGroupBudgets];
        CountGroup(g, used);
        TellGroup(report, g, used);
    }
    TellWhole(report);
    TellPolicies(report);
}

// Of the two phases the one that takes more.
void TLintExport::CountGroup(int group, int64_t* used) const
{
    const TExportGroup& exported = Export.GetResult().Groups[group];
    const TPhaseHeader& emission = exported.Emission.Header;
    const TPhaseHeader& process = exported.Process.Header;
    used[BG_ROWS] = std::max<int64_t>(emission.Rows, process.Rows);
    used[BG_INPUTBUFFERS] = std::max<int64_t>(emission.InputBuffers, process.InputBuffers);
    used[BG_OUTPUTBUFFERS] = std::max<int64_t>(emission.OutputBuffers, process.OutputBuffers);
    used[BG_PROGRAMKB] = std::max<int64_t>(emission.ProgramKilobytes, process.ProgramKilobytes);
    used[BG_WORKSPACEKB] = std::max<int64_t>(emission.WorkspaceKilobytes, process.WorkspaceKilobytes);
    used[BG_PARTICLEBYTES] = exported.Stride;
}

void TLintExport::TellGroup(TLintReport& report, int group, const int64_t* used) const
{
    for (int b = 0; b < NumGroupBudgets; ++b)
        TellOver(report, group, static_cast<TBudget>(b), used[b]);
    if (!Options.TellBudgets)
        return;
    TFinding& finding =
        report.AddGroup(LK_BUDGETUSED, group,
                        "Group %d takes %d rows, %d input and %d output buffers, %d KB of program, %d KB of "
                        "workspace and %d bytes for a particle",
                        group, static_cast<int>(used[BG_ROWS]), static_cast<int>(used[BG_INPUTBUFFERS]),
                        static_cast<int>(used[BG_OUTPUTBUFFERS]), static_cast<int>(used[BG_PROGRAMKB]),
                        static_cast<int>(used[BG_WORKSPACEKB]), static_cast<int>(used[BG_PARTICLEBYTES]));
    for (int b = 0; b < NumGroupBudgets; ++b)
        AddNumber(finding, GetBudgetName(static_cast<TBudget>(b)), static_cast<double>(used[b]));
}

void TLintExport::TellOver(TLintReport& report, int group, TBudget budget, int64_t used) const
{
    const int64_t most = Options.Limits.Most[budget];
    if (most == TProject::NoLimit || used <= most)
        return;
    const char* format = "The effect takes %lld %s, and its project lets it take %lld";
    const char* groupFormat = "The group takes %lld %s, and its project lets it take %lld";
    const long long usedNumber = used;
    const long long mostNumber = most;
    TFinding& finding =
        group == -1
            ? report.Add(LK_BUDGETOVER, format, usedNumber, BudgetTexts[budget], mostNumber)
            : report.AddGroup(LK_BUDGETOVER, group, groupFormat, usedNumber, BudgetTexts[budget], mostNumber);
    AddNumber(finding, GetBudgetName(budget), static_cast<double>(used));
    AddNumber(finding, "most", static_cast<double>(most));
}

void TLintExport::TellWhole(TLintReport& report) const
{
    int64_t particles = 0;
    for (const TExportGroup& group : Export.GetResult().Groups)
        particles += group.IsTriggerGroup ? 0 : group.ParticleCount;
    const int64_t bytes = Export.GetFileSize();
    TellOver(report, -1, BG_FILEBYTES, bytes);
    TellOver(report, -1, BG_PARTICLES, particles);
    if (!Options.TellBudgets)
        return;
    TFinding& finding = report.Add(LK_BUDGETUSED, "The effect takes %d particles, and %d bytes of the file",
                                   static_cast<int>(particles), static_cast<int>(bytes));
    AddNumber(finding, GetBudgetName(BG_FILEBYTES), static_cast<double>(bytes));
    AddNumber(finding, GetBudgetName(BG_PARTICLES), static_cast<double>(particles));
}

// A policy that makes a broken one prevent the export makes it an error.
void TLintExport::TellPolicies(TLintReport& report) const
{
    constexpr int policies[] = {PF_MUSTHAVEBOUNDS, PF_NOMIXEDBOUNDS};
    for (const int policy : policies) {
        TErrorList ignored;
        if ((Options.PolicyFlags & policy) == 0 || Export.CheckPolicies(policy, ignored))
            continue;
        TFinding& finding =
            policy == PF_MUSTHAVEBOUNDS
                ? report.Add(LK_BOXNONE, "The effect has no bounding box")
                : report.Add(LK_BOXMIXED, "A render stage has a static and a dynamic bounding box");
        if ((Options.PolicyFlags & PF_PREVENTEXPORT) != 0)
            finding.Severity = FS_ERROR;
    }
}
