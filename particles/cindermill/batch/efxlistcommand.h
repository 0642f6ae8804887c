#pragma once

#include "particles/cindermill/batch/batchcommand.h"

// Lists a console file.
class TEfxListCommand final : public TBatchCommand
{
public:
    TEfxListCommand();
    int Run(TBatchSession& session, TArguments& arguments) const override;
    const char* GetHelp() const override;
};
