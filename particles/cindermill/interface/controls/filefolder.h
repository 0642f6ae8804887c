#pragma once

#include "library/wimp/filechooser.h"

// Where a chooser for a node's file begins: beside the file that it names now. Empty for the folder that was
// chosen from last; a person who has chosen none in this run finds what came with the program, in the folder
// of that name beside the samples.
void GetFileFolder(const TString& name, const vector<TFileFilter>& filters, const char* sampleFolder,
                   TString& folder);
