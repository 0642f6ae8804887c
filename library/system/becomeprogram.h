#pragma once

#include "library/containers/string.h"
#include "library/containers/vector.h"

// Goes on as another program, with this one's process, streams, and so with the signals that it is sent. The
// first word is the program's path. Returns only if it could not be started, with the system's reason.
void BecomeProgram(const vector<TString>& words, TString& fault);
