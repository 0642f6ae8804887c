#pragma once

#include "particles/cindermill/batch/effectdependencies.h"
#include "particles/cindermill/batch/findings/filefacts.h"
#include "particles/cindermill/batch/findings/findingreport.h"

// What a check tells beside findings: what each file hangs on, if it was asked.
class TCheckReport final : public TFindingReport
{
public:
    TCheckReport(const TFindingJudge& judge, bool listsDependencies)
        : TFindingReport("check", judge), ListsDependencies(listsDependencies)
    {
    }
    // Of the file that was added last.
    void AddDependencies(const vector<TDependency>& dependencies);
    void WriteFileFacts(int file, TJsonText& json) const override;

private:
    const bool ListsDependencies;
    TFileFacts<vector<TDependency>> Dependencies;
};
