#pragma once

#include "library/containers/string.h"
#include "library/containers/vector.h"

// Appends the files that a word of the command line stands for: of a folder all effects below it, of a
// pattern all files that it fits, in the order of names. Anything else, and what comes to nothing, is taken
// for the name of a file.
//
// In a pattern "*" stands for any characters of one name, "?" for one, "[a-z]" for one of some, and the name
// "**" for any folders. Names that begin with a point are left out unless the pattern has the point.
void ExpandEffectPaths(const char* word, vector<TString>& files);

// Appends the effects below a folder in the order of names, without those in and of names that begin with a
// point. A folder that cannot be read stands for itself.
void ListEffectsBelow(const TString& folder, vector<TString>& files);

// Whether a name without separators fits a pattern without.
bool FitsPattern(const char* name, const char* pattern);
