#pragma once

#include "particles/cindermill/batch/batchcommand.h"

// Writes the console file.
class TExportCommand final : public TBatchCommand
{
public:
    TExportCommand();
    int Run(TBatchSession& session, TArguments& arguments) const override;
    const char* GetHelp() const override;
};
