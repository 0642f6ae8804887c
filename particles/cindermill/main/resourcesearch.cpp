#include "particles/cindermill/main/resourcesearch.h"

#include "library/system/path.h"

bool FindEntry(const vector<TDirectoryEntry>& entries, const char* name, const char* directory, TString& path)
{
    for (const TDirectoryEntry& entry : entries) {
        if (entry.IsDirectory || entry.Name.Compare(name) != 0)
            continue;
        JoinPath(directory, entry.Name, path);
        return true;
    }
    return false;
}

bool IsSearched(const TDirectoryEntry& entry)
{
    return entry.IsDirectory && *entry.Name.Print() != '.';
}

TResourceSearch::TResourceSearch(const char* name, const list<TString>& knownDirectories)
    : SearchName(name), KnownDirectories(knownDirectories)
{
}

bool TResourceSearch::Run(const char* directory)
{
    return Search(directory, directory, true);
}

void TResourceSearch::Locate(const char* path)
{
    const TLock lock(Section);
    LocatedPath = path;
    LocateRequested = true;
}

void TResourceSearch::GetSearchStack(vector<TString>& directories)
{
    const TLock lock(Section);
    directories.clear();
    for (const TString& directory : SearchStack)
        directories.push_back(directory);
}

bool TResourceSearch::Search(const char* directory, const char* excluded, bool climb)
{
    if (LocateRequested) {
        const TLock lock(Section);
        Path = LocatedPath;
        return !Path.IsEmpty();
    }
    const TString here(directory);
    Push(here);
    const bool found = SearchDirectory(here, excluded);
    Pop();
    if (found || !climb)
        return found;
    TString parent(here);
    return parent.TruncateAtLast('\\') != -1 && Search(parent.Print(), here, true);
}

// What the directory holds itself comes before what its children hold.
bool TResourceSearch::SearchDirectory(const TString& directory, const char* excluded)
{
    vector<TDirectoryEntry> entries;
    ListDirectory(GetListablePath(directory), entries);
    if (FindEntry(entries, SearchName, directory.Print(), Path))
        return true;
    for (const TDirectoryEntry& entry : entries) {
        if (!IsSearched(entry))
            continue;
        TString child;
        JoinPath(directory.Print(), entry.Name, child);
        if (child.Compare(excluded) != 0 && !IsKnown(child) && Search(child, excluded, false))
            return true;
    }
    return false;
}

bool TResourceSearch::IsKnown(const char* directory) const
{
    for (const TString& known : KnownDirectories)
        if (known.Compare(directory) == 0)
            return true;
    return false;
}

void TResourceSearch::Push(const char* directory)
{
    const TLock lock(Section);
    SearchStack.push_back(directory);
}

void TResourceSearch::Pop()
{
    const TLock lock(Section);
    SearchStack.pop_back();
}
