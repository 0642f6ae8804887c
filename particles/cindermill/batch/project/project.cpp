#include "particles/cindermill/batch/project/project.h"

#include "library/system/file.h"

const char* GetBudgetName(TBudget budget)
{
    static const char* const Names[BG_NUMBUDGETS] = {"rows",       "input-buffers", "output-buffers",
                                                     "program-kb", "workspace-kb",  "particle-bytes",
                                                     "file-bytes", "particles"};
    return Names[budget];
}

TFindingSeverity TProject::GetSeverity(const char* id, TFindingSeverity usual) const
{
    for (const TSeverity& severity : Severities)
        if (severity.Id.Compare(id, true) == 0)
            return severity.Severity;
    return usual;
}

bool TProject::Covers(const TAllowance& allowance, const TFinding& finding)
{
    const TFindingPlace& place = finding.Place;
    return allowance.Id.Compare(finding.Id, true) == 0 && allowance.Node.Compare(place.Node, true) == 0 &&
           (allowance.Group == -1 || allowance.Group == place.Group) &&
           (!allowance.HasPlace || (allowance.X == place.X && allowance.Y == place.Y)) &&
           IsSameFile(allowance.File, finding.File);
}

void TProject::Judge(TFinding& finding) const
{
    finding.Severity = GetSeverity(finding.Id, finding.Severity);
    for (const TAllowance& allowance : Allowances) {
        if (!Covers(allowance, finding))
            continue;
        finding.Allowed = allowance.Reason;
        return;
    }
}
