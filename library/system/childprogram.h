#pragma once

#include "library/containers/string.h"
#include "library/containers/vector.h"

// Runs a program with this one's own streams and waits for its end. The first word is the program's path.
// False if it could not be started, or did not end by itself; `fault` then tells why.
bool RunChildProgram(const vector<TString>& words, int& status, TString& fault);
