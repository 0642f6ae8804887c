#pragma once

#include "particles/cindermill/batch/batchcommand.h"

// The text of the File Properties dialog.
class TReportCommand final : public TBatchCommand
{
public:
    TReportCommand();
    int Run(TBatchSession& session, TArguments& arguments) const override;
    const char* GetHelp() const override;
    bool TellsOfSetup() const override { return true; }
};
