#pragma once

#include "library/system/crash/coreranges.h"

// A core file of the failed program, for the system's debugger, in the new file. What was never used of the
// memory becomes a hole. False if not all of it was written.
bool WriteCore(int file, const TCrash& crash, TCoreContents contents);
