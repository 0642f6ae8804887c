#pragma once

#include "particles/cindermill/batch/batchcommand.h"

// Pictures of effects. They are drawn by a program of their own, so that this one needs no OpenGL: it gets
// the command line as it stands, and tells what is wrong with it.
class TPictureCommand final : public TBatchCommand
{
public:
    TPictureCommand(const char* name, const char* usage);
    int Run(TBatchSession& session, TArguments& arguments) const override;
};
