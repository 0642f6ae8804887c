#pragma once

#include "library/containers/string.h"
#include "library/containers/vector.h"

// Writes a rule that a build system reads: the target hangs on the files. False with the reason; the old file
// stands then.
bool WriteDependencyFile(const char* path, const char* target, const vector<TString>& files, TString& fault);

// A name as such a rule has it; false for one that no rule can have.
bool EscapeRuleName(const char* name, TString& escaped);
