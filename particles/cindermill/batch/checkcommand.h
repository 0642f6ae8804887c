#pragma once

#include "particles/cindermill/batch/batchcommand.h"

// Tells what is wrong with effects.
class TCheckCommand final : public TBatchCommand
{
public:
    TCheckCommand();
    int Run(TBatchSession& session, TArguments& arguments) const override;
    const char* GetHelp() const override;
    bool TellsOfSetup() const override { return true; }
};
