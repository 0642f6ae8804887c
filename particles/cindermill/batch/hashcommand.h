#pragma once

#include "particles/cindermill/batch/batchcommand.h"

// Prints the numbers that names become.
class THashCommand final : public TBatchCommand
{
public:
    THashCommand();
    int Run(TBatchSession& session, TArguments& arguments) const override;
    const char* GetHelp() const override;
    bool TakesAnyWord() const override { return true; }
};
