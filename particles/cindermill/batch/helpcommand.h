#pragma once

#include "particles/cindermill/batch/batchcommand.h"

// Tells how the program is used, or one of its commands.
class THelpCommand final : public TBatchCommand
{
public:
    THelpCommand();
    int Run(TBatchSession& session, TArguments& arguments) const override;
    const char* GetHelp() const override;
    // The same where there is no session, as nothing can be wrong with one.
    static int Tell(TArguments& arguments);
};
