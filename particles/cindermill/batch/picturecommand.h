#pragma once

#include "particles/cindermill/batch/batchcommand.h"

// Pictures of effects. They are drawn by a program of their own, so that this one needs no OpenGL: it gets
// the command line as it stands, and tells what is wrong with it.
class TPictureCommand final : public TBatchCommand
{
public:
    // Of one effect there are pictures at several moments and from several sides.
    TPictureCommand(const char* name, const char* usage, bool isOfOne);
    int Run(TBatchSession& session, TArguments& arguments) const override;
    const char* GetHelp() const override;

private:
    const bool IsOfOne;
};
