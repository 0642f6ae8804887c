#include "particles/cindermill/batch/findings/finding.h"

static const char* const SeverityNames[] = {"note", "warning", "error"};

void AddNumber(TFinding& finding, const char* name, double value)
{
    finding.Numbers.push_back(TFindingNumber{name, value});
}

const char* GetSeverityName(TFindingSeverity severity)
{
    return SeverityNames[severity];
}

bool ParseSeverity(const char* word, TFindingSeverity& severity)
{
    for (int i = FS_NOTE; i <= FS_ERROR; ++i) {
        if (CompareText(word, SeverityNames[i], true) != 0)
            continue;
        severity = static_cast<TFindingSeverity>(i);
        return true;
    }
    return false;
}
