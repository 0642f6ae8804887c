#pragma once

#include "particles/cindermill/batch/batchcommand.h"

// Converts a picture.
class TImageCommand final : public TBatchCommand
{
public:
    TImageCommand();
    int Run(TBatchSession& session, TArguments& arguments) const override;
    const char* GetHelp() const override;
};
