#include "particles/cindermill/main/recoverystore.h"

#include "library/system/clock.h"
#include "library/system/file.h"
#include "library/system/path.h"
#include "library/system/statefolder.h"

#include <string.h>

namespace {

constexpr const char* DamagedName = "damaged";
constexpr const char* Extension = ".effect";
// Of the document's name, in bytes: file systems bear 255.
constexpr int MaxLeaf = 100;

TString Join(const char* folder, const char* leaf)
{
    TString path(folder);
    path += "/";
    path += leaf;
    return path;
}

// The document's name as a person knows it, without what says that it is an effect.
TString GetLeaf(const char* documentPath)
{
    TString leaf;
    leaf.SetFileName(documentPath);
    TString extension;
    extension.SetExtension(leaf);
    if (extension.Compare("effect") == 0)
        leaf.TruncateAtLast('.');
    if (leaf.IsEmpty())
        return "unsaved";
    int length = leaf.Length();
    if (length > MaxLeaf) {
        length = MaxLeaf;
        // Not within a letter of several bytes.
        while (length > 0 && (leaf.Print()[length] & 0xC0) == 0x80)
            --length;
    }
    TString result;
    result.Left(leaf.Print(), length);
    return result;
}

bool IsRecoveryName(const TString& name)
{
    const int length = name.Length();
    const int tail = static_cast<int>(strlen(Extension));
    return length > tail && strcmp(name.Print() + length - tail, Extension) == 0;
}

bool IsWrittenLater(const TRecoveryNote& note)
{
    int64_t time = 0;
    return !note.Path.IsEmpty() && GetFileTime(note.Path, time) && time > note.Time;
}

} // namespace

void TRecoveryStore::Open(const char* folder)
{
    Root = folder;
}

bool TRecoveryStore::CanHold(const char* file)
{
    TString folder;
    folder.SetDirectory(file);
    return IsDirectory(folder);
}

bool TRecoveryStore::MakeName(const char* documentPath, TString& file)
{
    if (Own.IsHeld() && !IsDirectory(Own.GetPath()))
        Own.Release();
    if (!Own.IsHeld() && !Own.Create(Root))
        return false;
    TString number;
    number.Format("-%d", ++NumNames);
    TString leaf = GetLeaf(documentPath);
    leaf += number.Print();
    leaf += Extension;
    file = Join(Own.GetPath(), leaf.Print());
    return true;
}

void TRecoveryStore::FindLost(vector<TLostEffect>& lost, vector<TDamagedEffect>& damaged)
{
    RemoveOldDamaged();
    vector<TDirectoryEntry> entries;
    if (!ListDirectory(Root, entries))
        return;
    for (const TDirectoryEntry& entry : entries) {
        if (!entry.IsDirectory || entry.Name.Compare(DamagedName) == 0)
            continue;
        TOwner<TLockedFolder> folder(new TLockedFolder);
        if (!folder->TakeOver(Join(Root, entry.Name)))
            continue;
        const int before = lost.size();
        TakeOver(*folder, lost, damaged);
        if (lost.size() > before)
            Taken.push_back(folder.Release());
        else
            folder->Remove();
    }
}

// A write that the end of its process cut short has left a file under a name of its own.
void TRecoveryStore::TakeOver(TLockedFolder& folder, vector<TLostEffect>& lost,
                              vector<TDamagedEffect>& damaged) const
{
    vector<TDirectoryEntry> entries;
    ListDirectory(folder.GetPath(), entries);
    for (const TDirectoryEntry& entry : entries) {
        if (entry.IsDirectory || entry.Name.Compare(TLockedFolder::LockName, true) == 0)
            continue;
        const TString file = Join(folder.GetPath(), entry.Name);
        if (!IsRecoveryName(entry.Name)) {
            RemoveFile(file);
            continue;
        }
        TLostEffect effect;
        TDamagedEffect bad;
        if (!ReadRecoveryNote(file, effect.Note, bad.Fault, &bad.IsUnread)) {
            bad.File = file;
            if (!bad.IsUnread)
                SetAside(file, bad);
            damaged.push_back(bad);
            continue;
        }
        effect.File = file;
        effect.IsOlder = IsWrittenLater(effect.Note);
        lost.push_back(effect);
    }
}

TString TRecoveryStore::GetDamagedFolder() const
{
    return Join(Root, DamagedName);
}

// Names are one process's only, as its folder's name tells.
void TRecoveryStore::SetAside(const char* file, TDamagedEffect& damaged) const
{
    TString folder;
    folder.SetDirectory(file);
    TString owner;
    owner.SetFileName(folder);
    TString leaf;
    leaf.SetFileName(file);
    owner += "-";
    owner += leaf.Print();
    damaged.File = Join(GetDamagedFolder(), owner.Print());
    if (!MakeFolders(GetDamagedFolder()) || !MoveFile(file, damaged.File))
        damaged.File = file;
    else
        // Its days begin now, however long it lay before.
        TouchFile(damaged.File);
}

void TRecoveryStore::RemoveOldDamaged() const
{
    vector<TDirectoryEntry> entries;
    ListDirectory(GetDamagedFolder(), entries);
    for (const TDirectoryEntry& entry : entries) {
        const TString file = Join(GetDamagedFolder(), entry.Name);
        int64_t time = 0;
        if (GetFileTime(file, time) && GetWallTime() - time > DamagedSeconds)
            RemoveFile(file);
    }
}

void TRecoveryStore::GiveUpLost()
{
    for (TLockedFolder* folder : Taken)
        folder->Remove();
    Taken.clear();
}

void TRecoveryStore::Close()
{
    GiveUpLost();
    Own.Remove();
    Root = nullptr;
}
