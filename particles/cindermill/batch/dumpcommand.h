#pragma once

#include "particles/cindermill/batch/batchcommand.h"

// The log of the schedule's creation.
class TDumpCommand final : public TBatchCommand
{
public:
    TDumpCommand();
    int Run(TBatchSession& session, TArguments& arguments) const override;
    const char* GetHelp() const override;
};
