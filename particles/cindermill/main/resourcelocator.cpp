#include "particles/cindermill/main/resourcelocator.h"

#include "library/containers/assertion.h"
#include "library/system/clock.h"
#include "library/system/file.h"
#include "library/system/message.h"
#include "library/system/path.h"
#include "library/system/thread.h"
#include "particles/cindermill/main/resourcehost.h"
#include "particles/cindermill/main/resourcesearch.h"
#include "particles/cindermill/main/settings.h"

namespace {

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

// Depth first, whatever is known already.
bool FindBelow(const char* name, const char* directory, TString& path)
{
    const TString here(directory);
    vector<TDirectoryEntry> entries;
    ListDirectory(GetListablePath(here), entries);
    if (FindEntry(entries, name, here.Print(), path))
        return true;
    for (const TDirectoryEntry& entry : entries) {
        TString child;
        JoinPath(here.Print(), entry.Name, child);
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
    ForgetMissing();
}

void TResourceLocator::AddSearchDirectory(const char* directory)
{
    TString kept;
    ToKeptPath(directory, kept);
    CutTrailingSeparators(kept);
    SearchDirectories.push_back(kept);
    FoundBelow.clear();
}

void TResourceLocator::GetBases(vector<TString>& directories) const
{
    directories = SearchDirectories;
    if (BasePath.IsEmpty() || Mode != RM_RELATIVEPATH)
        return;
    TString base = BasePath;
    CutTrailingSeparators(base);
    directories.push_back(base);
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

void TResourceLocator::RememberDirectoryOf(const char* path)
{
    TString kept;
    TString directory;
    ToKeptPath(path, kept);
    directory.SetDirectory(kept);
    Remember(directory);
}

void TResourceLocator::RememberFirst(const char* directory)
{
    list<TString> others;
    for (const TString& known : KnownDirectories)
        if (known.Compare(directory) != 0)
            others.push_back(known);
    KnownDirectories.clear();
    KnownDirectories.push_back(directory);
    for (const TString& known : others)
        KnownDirectories.push_back(known);
    ++Round;
}

// Another file of the name may lie in a directory that is consulted before.
void TResourceLocator::RememberChosen(const char* path)
{
    TString kept;
    TString directory;
    TString leaf;
    TString found;
    ToKeptPath(path, kept);
    directory.SetDirectory(kept);
    leaf.SetFileName(kept);
    Remember(directory);
    if (FindKnown(leaf, found) && found.Compare(kept) != 0)
        RememberFirst(directory);
}

bool TResourceLocator::PrepareName(TString& path)
{
    if (Mode == RM_LEAFNAME) {
        RememberChosen(path);
        TString leaf;
        leaf.SetFileName(path);
        path = leaf;
        return true;
    }
    if (Mode == RM_FULLPATH)
        return true;
    TString kept;
    ToKeptPath(path, kept);
    if (!BasePath.IsEmpty() && kept.CompareStart(BasePath) != 0) {
        ShowMessage("File %s does not fall under your resource base path %s", GetShownPath(path).Print(),
                    GetShownPath(BasePath).Print());
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
    if (!IsMissing(name) && FindInSearchDirectories(name, path))
        return FR_FOUND;
    if (Mode == RM_LEAFNAME)
        return FindLeaf(name, path);
    TString full;
    GetFullPath(name, full);
    return FindPath(name, full, path);
}

bool TResourceLocator::IsMissing(const char* name) const
{
    return Missing.find(name) != Missing.end();
}

// The end of a find that asks nobody.
TFindResult TResourceLocator::EndAlone(const char* name, bool found)
{
    if (!found && !IsMissing(name))
        Missing.push_back(name);
    return found ? FR_FOUND : FR_NOTFOUND;
}

// Where a stored name that is no leaf leads to.
void TResourceLocator::GetFullPath(const char* name, TString& path) const
{
    if (Mode == RM_FULLPATH) {
        path = name;
        return;
    }
    path = BasePath;
    // Without a base the name is the whole path, which may begin at the root.
    const bool isSeparated = !BasePath.IsEmpty() && (*name == '/' || *name == '\\');
    path += isSeparated ? name + 1 : name;
}

bool TResourceLocator::FindKnown(const char* name, TString& path) const
{
    if (name == nullptr || *name == 0)
        return false;
    if (FindInSearchDirectories(name, path))
        return true;
    if (Mode == RM_LEAFNAME)
        return FindInKnownDirectories(name, path) || FindLocatedFile(name, path);
    TString full;
    GetFullPath(name, full);
    ToKeptPath(full, path);
    return FileExists(path) || FindLocated(name, path);
}

void TResourceLocator::ForgetMissing()
{
    Missing.clear();
    ++Round;
}

// A stored path is tried as it stands under each directory, then its leaf anywhere below.
bool TResourceLocator::FindInSearchDirectories(const char* name, TString& path) const
{
    for (const TLocated& found : FoundBelow) {
        if (found.Name.Compare(name, true) != 0 || !FileExists(found.Path))
            continue;
        path = found.Path;
        return true;
    }
    TString leaf;
    leaf.SetFileName(name);
    for (const TString& directory : SearchDirectories) {
        JoinPath(directory, name, path);
        if (!FileExists(path) && !FindBelow(leaf, directory, path))
            continue;
        FoundBelow.push_back(TLocated{name, path});
        return true;
    }
    return false;
}

TFindResult TResourceLocator::FindPath(const char* name, const char* path, TString& result)
{
    ToKeptPath(path, result);
    if (FileExists(result))
        return FR_FOUND;
    if (!CanAsk())
        return EndAlone(name, false);
    return FindLocated(name, result) ? FR_LOCATED : Ask(name, result);
}

TFindResult TResourceLocator::FindLeaf(const char* name, TString& path)
{
    if (FindInKnownDirectories(name, path))
        return FR_FOUND;
    if (!CanAsk())
        return EndAlone(name, !IsMissing(name) && Search(name, path));
    return FindLocatedFile(name, path) ? FR_LOCATED : Ask(name, path);
}

// A program that is at rest only because it waits for one file does not ask for another.
TFindResult TResourceLocator::Ask(const char* name, TString& path)
{
    const TString wanted(name);
    if (Asking || IsMissing(name))
        return FR_NOTFOUND;
    struct TAsking
    {
        bool& Flag;
        explicit TAsking(bool& flag) : Flag(flag) { Flag = true; }
        ~TAsking() { Flag = false; }
    } asking(Asking);
    TFindResult result = FR_NOTFOUND;
    if (Mode == RM_LEAFNAME)
        result = SearchWithDialog(wanted, path);
    else if (Choose(wanted, path))
        result = FR_LOCATED;
    if (result == FR_NOTFOUND)
        Missing.push_back(wanted);
    if (result == FR_LOCATED)
        RememberLocated(wanted, path);
    return result;
}

// One file for each name: what has moved since is located again.
void TResourceLocator::RememberLocated(const char* name, const char* path)
{
    for (TLocated& located : Located) {
        if (located.Name.Compare(name) != 0)
            continue;
        located.Path = path;
        return;
    }
    Located.push_back(TLocated{name, path});
}

bool TResourceLocator::Choose(const char* name, TString& path)
{
    TString title = "Find resource ";
    title += GetShownPath(name);
    TString leaf;
    leaf.SetFileName(name);
    TString pattern;
    vector<TPathFilter> filters;
    if (leaf.FindLast('.') != -1) {
        TString extension;
        extension.SetExtension(leaf);
        pattern = "*.";
        pattern += extension;
        filters.push_back(TPathFilter{pattern, pattern});
    }
    filters.push_back(TPathFilter{"*.*", "*.*"});
    TString chosen;
    if (!Host->ChooseResource(title, filters, chosen))
        return false;
    ToKeptPath(chosen, path);
    return true;
}

bool TResourceLocator::FindLocated(const char* name, TString& path) const
{
    for (const TLocated& located : Located) {
        if (located.Name.Compare(name) != 0)
            continue;
        path = located.Path;
        return true;
    }
    return false;
}

bool TResourceLocator::FindLocatedFile(const char* name, TString& path) const
{
    TString located;
    if (!FindLocated(name, located) || !FileExists(located))
        return false;
    path = located;
    return true;
}

bool TResourceLocator::FindInKnownDirectories(const char* name, TString& path) const
{
    for (const TString& directory : KnownDirectories) {
        vector<TDirectoryEntry> entries;
        ListDirectory(GetListablePath(directory), entries);
        if (FindEntry(entries, name, directory.Print(), path))
            return true;
    }
    return false;
}

bool TResourceLocator::Search(const char* name, TString& path)
{
    TResourceSearch search(name, KnownDirectories);
    if (!search.Run(StartDirectory))
        return false;
    path = search.GetPath();
    RememberDirectoryOf(path);
    return true;
}

namespace {

// The work of the search's own thread.
struct TSearchWork
{
    static void Run(void* context)
    {
        TSearchWork& work = *static_cast<TSearchWork*>(context);
        TString text;
        RunGuarded([&] { work.Walk(); }, text);
        work.Done.Set();
    }
    void Walk()
    {
        do {
            Found = Search.Run(StartDirectory);
        } while (Endless && !Found && !Search.IsEnded());
    }

    TResourceSearch Search;
    const TString StartDirectory;
    const bool Endless;
    bool Found = false;
    TEvent Done;
};

class THostSearch
{
public:
    explicit THostSearch(TResourceHost& host) : Host(host) { Host.BeginSearch(); }
    ~THostSearch() { Host.EndSearch(); }
    THostSearch(const THostSearch&) = delete;
    THostSearch& operator=(const THostSearch&) = delete;

private:
    TResourceHost& Host;
};

} // namespace

TFindResult TResourceLocator::SearchWithDialog(const char* name, TString& path)
{
    TSearchWork work{{name, KnownDirectories}, StartDirectory, Endless, false, {}};
    TThread thread;
    if (!thread.Start(&TSearchWork::Run, &work))
        return Search(name, path) ? FR_FOUND : FR_NOTFOUND;
    TString located;
    const bool isLocated = Await(work.Search, work.Done, name, located);
    thread.Join();
    if (!isLocated && !work.Found)
        return FR_NOTFOUND;
    path = isLocated ? located : work.Search.GetPath();
    RememberDirectoryOf(path);
    return isLocated ? FR_LOCATED : FR_FOUND;
}

// Keeps the windows alive until the search has ended. True if the person gave the file.
bool TResourceLocator::Await(TResourceSearch& search, TEvent& done, const char* name, TString& path)
{
    constexpr uint32_t RefreshInterval = 300;
    const THostSearch hostSearch(*Host);
    const uint32_t begin = GetTickCount();
    uint32_t refreshed = 0;
    bool shown = false;
    bool ended = false;
    bool located = false;
    while (!done.Wait(1)) {
        const uint32_t now = GetTickCount();
        if (!shown && !ended && now - begin >= ShowDelay) {
            Host->ShowSearch(name);
            refreshed = now - RefreshInterval;
            shown = true;
        }
        if (shown && !ended && now - refreshed >= RefreshInterval) {
            vector<TString> directories;
            search.GetSearchStack(directories);
            Host->ListDirectories(directories);
            refreshed = now;
        }
        const TSearchAnswer answer = Host->Step();
        if (ended)
            continue;
        if (answer == SA_STOP) {
            search.Stop();
            ended = true;
        } else if (answer == SA_LOCATE && Choose(name, path)) {
            search.Locate(path);
            ended = located = true;
        }
    }
    return located;
}
