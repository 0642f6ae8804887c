#pragma once

#include "particles/cindermill/batch/batchcommand.h"

// Runs the engine and prints what every attribute holds after every frame.
class TRunCommand final : public TBatchCommand
{
public:
    TRunCommand();
    int Run(TBatchSession& session, TArguments& arguments) const override;
    const char* GetHelp() const override;
};
