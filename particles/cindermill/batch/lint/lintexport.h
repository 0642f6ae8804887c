#pragma once

#include "particles/cindermill/batch/lint/lintlimits.h"

class TExportData;
class TLintReport;
struct TExportGroup;

// What an export that was built tells: what the effect takes of the console, and whether it keeps the
// policies.
class TLintExport
{
public:
    // Refers to both of them.
    TLintExport(const TExportData& exportData, const TLintOptions& options)
        : Export(exportData), Options(options)
    {
    }
    void Tell(TLintReport& report) const;

private:
    void CountGroup(int group, int64_t* used) const;
    void TellGroup(TLintReport& report, int group, const int64_t* used) const;
    void TellWhole(TLintReport& report) const;
    void TellOver(TLintReport& report, int group, TBudget budget, int64_t used) const;
    void TellPolicies(TLintReport& report) const;

    const TExportData& Export;
    const TLintOptions& Options;
};
