#pragma once

#include "library/containers/ownerlist.h"
#include "library/containers/string.h"
#include "library/system/directorywatcher.h"

// Watches files that are in use and calls back when one was written. There is no thread: whoever has time
// polls, and each directory is looked at in turn, one for every hundred milliseconds.
//
// Paths are compared without case; "/" and "\\" are the same.
class TChangeNotify
{
public:
    // The path of the file, and the context given with the callback.
    using TCallback = void (*)(const char* path, void* context);

    // Whether the file is watched now: a directory that cannot be is logged.
    bool Add(const char* path, TCallback callback, void* context);
    // Asserts "found". Callbacks may remove themselves and others while they are called.
    void Remove(const char* path, TCallback callback, void* context);
    // What has been written to the file so far counts as told.
    void TakeChange(const char* path);
    // Does nothing within a callback of its own: one that waits for a person is not called over again.
    void Poll();

private:
    struct TListener
    {
        TCallback Callback;
        void* Context;
        bool operator==(const TListener& other) const
        {
            return Callback == other.Callback && Context == other.Context;
        }
    };
    struct TWatchedFile
    {
        TString Name;
        int64_t WriteTime = 0;
        vector<TListener> Listeners;
    };
    struct TDirectory
    {
        TString Path;
        int Number = -1;
        // By name.
        vector<TWatchedFile> Files;
    };

    int FindDirectory(const char* path) const;
    int FindFile(int directory, const char* name) const;
    int AddDirectory(const TString& path);
    void CheckDirectory(int index);
    void Call(const char* path);

    uint32_t LastPoll = 0;
    int Position = 0;
    bool Polling = false;
    // By path.
    TOwnerList<TDirectory> Directories;
    TDirectoryWatcher Watcher;
};
