#pragma once

#include "particles/cindermill/batch/batchcommand.h"

// Looks for what would go wrong with effects on the console, or is most likely not meant.
class TLintCommand final : public TBatchCommand
{
public:
    TLintCommand();
    int Run(TBatchSession& session, TArguments& arguments) const override;
    const char* GetHelp() const override;
    bool TellsOfSetup() const override { return true; }
};
