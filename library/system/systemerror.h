#pragma once

#include "library/containers/string.h"

// Faults of files that the system has no code for.
enum TFileFault : int
{
    FF_NOREGULARFILE = -1,
    FF_TOOLARGE = -2
};

// Why the system refused a call, in its own words: "Permission denied". Takes a code of the system's, as
// errno holds it, or one of those above.
TString GetSystemErrorText(int error);
