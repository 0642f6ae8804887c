#pragma once

#include "particles/cindermill/batch/batchcommand.h"

// An effect as stable text.
class TTextCommand final : public TBatchCommand
{
public:
    TTextCommand();
    int Run(TBatchSession& session, TArguments& arguments) const override;
    const char* GetHelp() const override;
};
