#pragma once

#include "particles/cindermill/batch/batchcommand.h"

// Lists the node types.
class TTypesCommand final : public TBatchCommand
{
public:
    TTypesCommand();
    int Run(TBatchSession& session, TArguments& arguments) const override;
    const char* GetHelp() const override;
    bool TellsOfSetup() const override { return true; }
};
