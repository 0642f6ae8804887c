#pragma once

#include "library/containers/ownerlist.h"

#include <cstdint>

// When the file was last written, in units of the platform that only order counts for. False if there is
// none.
bool GetFileWriteTime(const char* path, int64_t& time);

// Tells which of some directories have had a file written, touched or put in place since they were last asked
// about. Never waits.
class TDirectoryWatcher
{
public:
    TDirectoryWatcher();
    ~TDirectoryWatcher();

    // A number for the directory, or -1 with the platform's error number. A directory that goes and comes
    // back is watched again.
    int Add(const char* path, int& error);
    void Remove(int number);
    // Whether something happened since the last call for this directory.
    bool TakeSignal(int number);

private:
    struct TDirectory;

    void ReadEvents();
    bool Watch(TDirectory& directory);
    void Mark(int watch, bool gone);

    int Handle = -1;
    // Null for a number that is free.
    TOwnerList<TDirectory> Directories;
};
