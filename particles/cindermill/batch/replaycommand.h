#pragma once

#include "particles/cindermill/batch/batchcommand.h"

// Holds what the preview of an effect shows against what its exported file does.
class TReplayCommand final : public TBatchCommand
{
public:
    TReplayCommand();
    const char* GetHelp() const override;
    bool TellsOfSetup() const override { return true; }
    int Run(TBatchSession& session, TArguments& arguments) const override;
};
