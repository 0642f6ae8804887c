#pragma once

#include "particles/cindermill/batch/batchcommand.h"

struct TReplayOptions;

// Holds what the preview of an effect shows against what its exported file does.
class TReplayCommand final : public TBatchCommand
{
public:
    TReplayCommand();
    int Run(TBatchSession& session, TArguments& arguments) const override;
    const char* GetHelp() const override;

private:
    // False where the command line is wrong, which has been told.
    static bool ReadOptions(TArguments& arguments, TReplayOptions& options);
};
