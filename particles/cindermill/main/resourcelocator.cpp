#include "particles/cindermill/main/resourcelocator.h"

#include "library/system/file.h"
#include "library/system/message.h"
#include "library/system/path.h"
#include "particles/cindermill/main/settings.h"

namespace {

void Join(const char* directory, const char* name, TString& path)
{
    path = directory;
    path += "\\";
    path += name;
}

// The directory without what separates it from a name behind it.
void CutTrailingSeparators(TString& directory)
{
    int length = directory.Length();
    while (length > 0 && (directory.c_str()[length - 1] == '\\' || directory.c_str()[length - 1] == '/'))
        --length;
    TString cut;
    cut.Left(directory, length);
    directory = cut;
}

// An entry of a directory on the disc: the top of a file system is the empty path with its separator.
const char* Listable(const TString& directory)
{
    return directory.IsEmpty() ? "\\" : directory.c_str();
}

// A file of the name in the directory.
bool FindEntry(const vector<TDirectoryEntry>& entries, const char* name, const char* directory, TString& path)
{
    for (const TDirectoryEntry& entry : entries) {
        if (entry.IsDirectory || entry.Name.Compare(name) != 0)
            continue;
        Join(directory, entry.Name, path);
        return true;
    }
    return false;
}

// Whether a search goes down into the entry.
bool IsSearched(const TDirectoryEntry& entry)
{
    return entry.IsDirectory && *entry.Name.Print() != '.';
}

// Depth first, whatever is known already.
bool FindBelow(const char* name, const char* directory, TString& path)
{
    const TString here(directory);
    vector<TDirectoryEntry> entries;
    ListDirectory(Listable(here), entries);
    if (FindEntry(entries, name, here.Print(), path))
        return true;
    for (const TDirectoryEntry& entry : entries) {
        TString child;
        Join(here.Print(), entry.Name, child);
        if (IsSearched(entry) && FindBelow(name, child, path))
            return true;
    }
    return false;
}

} // namespace

bool TResourceLocator::Init(const char* directory, bool headless)
{
    ToKeptPath(directory, StartDirectory);
    CutTrailingSeparators(StartDirectory);
    Headless = headless;
    ReadSettings();
    return true;
}

void TResourceLocator::ReadSettings()
{
    Mode = Settings.GetResourceMode();
    ToKeptPath(Settings.GetResourcePath(), BasePath);
    if (!BasePath.IsEmpty() && BasePath.FindLast('\\') != BasePath.Length() - 1)
        BasePath += "\\";
}

void TResourceLocator::AddSearchDirectory(const char* directory)
{
    TString kept;
    ToKeptPath(directory, kept);
    CutTrailingSeparators(kept);
    SearchDirectories.push_back(kept);
}

bool TResourceLocator::IsKnown(const char* directory) const
{
    for (const TString& known : KnownDirectories)
        if (known.Compare(directory) == 0)
            return true;
    return false;
}

void TResourceLocator::Remember(const char* directory)
{
    if (!IsKnown(directory))
        KnownDirectories.push_back(directory);
}

bool TResourceLocator::PrepareName(TString& path)
{
    if (Mode == RM_LEAFNAME) {
        TString directory;
        TString kept;
        ToKeptPath(path, kept);
        directory.SetDirectory(kept);
        Remember(directory);
        TString leaf;
        leaf.SetFileName(path);
        path = leaf;
        return true;
    }
    if (Mode == RM_FULLPATH)
        return true;
    TString kept;
    ToKeptPath(path, kept);
    if (kept.CompareStart(BasePath) != 0) {
        TString shownPath;
        TString shownBase;
        ToShownPath(path, shownPath);
        ToShownPath(BasePath, shownBase);
        ShowMessage("File %s does not fall under your resource base path %s", shownPath.Print(),
                    shownBase.Print());
        return false;
    }
    TString relative;
    relative.Right(kept, kept.Length() - BasePath.Length());
    path = relative;
    return true;
}

TFindResult TResourceLocator::Find(const char* name, TString& path)
{
    // No file has an empty name: nothing need be walked to know.
    if (name == nullptr || *name == 0)
        return FR_NOTFOUND;
    if (FindInSearchDirectories(name, path))
        return FR_FOUND;
    if (Mode == RM_RELATIVEPATH) {
        TString full(BasePath);
        const bool skip = name != nullptr && (*name == '/' || *name == '\\');
        full += skip ? name + 1 : name;
        return FindPath(full, path);
    }
    if (Mode == RM_FULLPATH)
        return FindPath(name, path);
    if (FindInKnownDirectories(name, path))
        return FR_FOUND;
    return Search(name, StartDirectory, StartDirectory, true, path) ? FR_FOUND : FR_NOTFOUND;
}

// A stored path is tried as it stands under each directory, then its leaf anywhere below.
bool TResourceLocator::FindInSearchDirectories(const char* name, TString& path) const
{
    TString leaf;
    leaf.SetFileName(name);
    for (const TString& directory : SearchDirectories) {
        Join(directory, name, path);
        if (FileExists(path) || FindBelow(leaf, directory, path))
            return true;
    }
    return false;
}

TFindResult TResourceLocator::FindPath(const char* path, TString& result) const
{
    ToKeptPath(path, result);
    return FileExists(result) ? FR_FOUND : FR_NOTFOUND;
}

bool TResourceLocator::FindInKnownDirectories(const char* name, TString& path) const
{
    for (const TString& directory : KnownDirectories) {
        vector<TDirectoryEntry> entries;
        ListDirectory(Listable(directory), entries);
        if (FindEntry(entries, name, directory.Print(), path))
            return true;
    }
    return false;
}

// Depth first below the directory, then one level up, to the root.
bool TResourceLocator::Search(const char* name, const char* directory, const char* excluded, bool climb,
                              TString& path)
{
    TString here(directory);
    TString below(excluded);
    while (!SearchBelow(name, here, below, path)) {
        const int separator = here.FindLast('\\');
        if (!climb || separator == -1)
            return false;
        below = here;
        here.TruncateAtLast('\\');
    }
    return true;
}

bool TResourceLocator::SearchBelow(const char* name, const char* directory, const char* excluded,
                                   TString& path)
{
    const TString here(directory);
    vector<TDirectoryEntry> entries;
    ListDirectory(Listable(here), entries);
    if (FindEntry(entries, name, here.Print(), path)) {
        Remember(here);
        return true;
    }
    for (const TDirectoryEntry& entry : entries) {
        if (!IsSearched(entry))
            continue;
        TString child;
        Join(here.Print(), entry.Name, child);
        if (child.Compare(excluded) != 0 && !IsKnown(child) && SearchBelow(name, child, excluded, path))
            return true;
    }
    return false;
}
