#include "particles/cindermill/batch/findings/finding.h"

int TFindingList::GetWorst() const
{
    int worst = FS_NOTE - 1;
    for (const TFinding& finding : Findings)
        if (finding.Allowed.IsEmpty() && finding.Severity > worst)
            worst = finding.Severity;
    return worst;
}

const char* GetSeverityName(TFindingSeverity severity)
{
    static const char* const Names[] = {"note", "warning", "error"};
    return Names[severity];
}
