#pragma once

#include "library/containers/string.h"

#include <cstdint>

// Where the program keeps, from one run to the next, what is no setting and no document: a folder of the
// user's own, told by the environment. False where there is none.
bool GetStateFolder(TString& path);

// Makes the folder and those above it that are missing, open to the user alone.
bool MakeFolders(const char* path);

bool RemoveFile(const char* path);
// Within one file system. What stands at the new place goes.
bool MoveFile(const char* from, const char* to);
// As if the file had been written now.
bool TouchFile(const char* path);
// When the file was written last: seconds since the epoch, in UTC.
bool GetFileTime(const char* path, int64_t& time);
