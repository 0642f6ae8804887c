#pragma once

#include "particles/cindermill/batch/batchcommand.h"

// What one effect has that another has not.
class TDiffCommand final : public TBatchCommand
{
public:
    TDiffCommand();
    int Run(TBatchSession& session, TArguments& arguments) const override;
    const char* GetHelp() const override;
};
