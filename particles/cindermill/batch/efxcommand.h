#pragma once

#include "particles/cindermill/batch/batchcommand.h"

// Lists a console file.
class TEfxCommand final : public TBatchCommand
{
public:
    TEfxCommand();
    int Run(TBatchSession& session, TArguments& arguments) const override;
    const char* GetHelp() const override;
};
