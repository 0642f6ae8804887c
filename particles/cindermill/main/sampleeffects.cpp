#include "particles/cindermill/main/sampleeffects.h"

#include "library/system/file.h"
#include "library/system/path.h"

#include <stdlib.h>

namespace {

bool IsEffect(const TDirectoryEntry& entry)
{
    TString extension;
    extension.SetExtension(entry.Name);
    return !entry.IsDirectory && extension.Compare("effect") == 0;
}

} // namespace

void TSampleEffects::GetFolderBeside(const char* leaf, TString& folder) const
{
    folder = Folder;
    folder += "\\";
    folder += leaf;
    if (Folder.IsEmpty() || !IsDirectory(folder))
        folder = nullptr;
}

void TSampleEffects::List(vector<TString>& effects) const
{
    vector<TDirectoryEntry> entries;
    if (Folder.IsEmpty() || !ListDirectory(Folder, entries))
        return;
    for (const TDirectoryEntry& entry : entries) {
        if (!IsEffect(entry))
            continue;
        TString path = Folder;
        path += "\\";
        path += entry.Name;
        effects.push_back(path);
    }
}

void TSampleEffects::GetPicture(const char* effect, TString& path)
{
    TString name;
    name.SetFileName(effect);
    name.TruncateAtLast('.');
    path.SetDirectory(effect);
    path += "\\pictures\\";
    path += name;
    path += ".png";
}

// Whatever links and spellings the path takes.
bool TSampleEffects::Holds(const char* path) const
{
    TString directory;
    directory.SetDirectory(path);
    return !Folder.IsEmpty() && !directory.IsEmpty() && IsSameFile(directory, Folder);
}

bool TSampleEffects::IsProtected(const char* path) const
{
    if (!Holds(path))
        return false;
    for (const TString& released : Released)
        if (released.Compare(path) == 0)
            return false;
    return true;
}

void TSampleEffects::Release(const char* path)
{
    if (IsProtected(path))
        Released.push_back(path);
}

void TSampleEffects::GetOwnFolder(const vector<TString>& recentFiles, TString& folder) const
{
    for (int i = recentFiles.size() - 1; i >= 0; --i) {
        folder.SetDirectory(recentFiles[i]);
        if (!Holds(recentFiles[i]) && IsDirectory(folder))
            return;
    }
    folder = getenv("HOME");
    if (!IsDirectory(folder))
        folder = nullptr;
}
