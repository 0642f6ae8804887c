#pragma once

#include "particles/cindermill/batch/batchcommand.h"

// Prints a shader's assembly text.
class TTranslateCommand final : public TBatchCommand
{
public:
    TTranslateCommand();
    int Run(TBatchSession& session, TArguments& arguments) const override;
    const char* GetHelp() const override;
};
