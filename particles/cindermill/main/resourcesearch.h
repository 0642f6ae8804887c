#pragma once

#include "library/containers/list.h"
#include "library/containers/string.h"
#include "library/containers/vector.h"
#include "library/system/thread.h"

#include <atomic>

struct TDirectoryEntry;

// The file of that name, in any case of its letters, among a directory's entries.
bool FindEntry(const vector<TDirectoryEntry>& entries, const char* name, const char* directory,
               TString& path);
// Whether a search goes down into the entry.
bool IsSearched(const TDirectoryEntry& entry);

// One walk of the disc for a file. It may run on a thread of its own: then only what is said to be for the
// other thread may be called before it has ended.
class TResourceSearch
{
public:
    // Directories that are known have been searched already, and are left out.
    TResourceSearch(const char* name, const list<TString>& knownDirectories);

    // Depth first below the directory, then one level up, and so on to the root.
    bool Run(const char* directory);
    const TString& GetPath() const { return Path; }

    // For the other thread. The walk ends at its next directory: with the person's file, or with nothing.
    void Locate(const char* path);
    void Stop() { LocateRequested = true; }
    bool IsEnded() const { return LocateRequested; }
    // The directories that are being searched now, outermost first.
    void GetSearchStack(vector<TString>& directories);

private:
    bool Search(const char* directory, const char* excluded, bool climb);
    bool SearchDirectory(const TString& directory, const char* excluded);
    bool IsKnown(const char* directory) const;
    void Push(const char* directory);
    void Pop();

    TString SearchName;
    const list<TString> KnownDirectories;
    TString Path;
    std::atomic<bool> LocateRequested = false;
    TCriticalSection Section;
    // Guarded by the section.
    TString LocatedPath;
    list<TString> SearchStack;
};
