#pragma once

#include "particles/cindermill/batch/batchcommand.h"

// Loads an effect and saves it again.
class TResaveCommand final : public TBatchCommand
{
public:
    TResaveCommand();
    int Run(TBatchSession& session, TArguments& arguments) const override;
    const char* GetHelp() const override;
};
