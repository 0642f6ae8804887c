#pragma once

#include "library/containers/string.h"

// Receives the listing line by line, without line ends.
using TListingLine = void (*)(const char* line, void* data);

// A readable listing of an exported file, for whoever looks for what is wrong in one: header, command table,
// groups, streams with command names and rows by kind, patches, transforms, stages with decoded state words.
// False with a sentence in `fault` when the file is not a whole and sound one; lines may have gone out
// before.
bool ListEfx(const char* path, TListingLine line, void* data, TString& fault);
