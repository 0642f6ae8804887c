#include "library/system/temporaryfile.h"

#include "library/containers/nametocrc.h"
#include "library/system/endsignal.h"
#include "library/system/path.h"

#include <atomic>

#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <signal.h>
#include <stdio.h>
#include <string.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/utsname.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace {

constexpr int MaxNames = 1000;
constexpr const char* NameEnd = ".tmp";

// The part of the names that is this machine's: a lock says nothing about a program on another one, which may
// share the folder.
TString MakeNameStart()
{
    utsname machine = {};
    uname(&machine);
    TString start;
    start.Format(".cindermill-%08x-", NameToCrc(machine.nodename));
    return start;
}

// Files are written at the very end of the process, too, and so it is never destroyed.
const TString& GetNameStart()
{
    static const TString& start = *new TString(MakeNameStart());
    return start;
}

// With the separator behind it; empty for the working directory.
void GetFolder(const char* path, TString& folder)
{
    const char* separator = strrchr(path, '/');
    folder.Assign(path, separator != nullptr ? separator + 1 : path);
}

void MakeName(const char* target, TString& path)
{
    static std::atomic<unsigned> counter = 0;
    TString name;
    name.Format("%s%d-%u%s", GetNameStart().Print(), static_cast<int>(getpid()), counter++, NameEnd);
    GetFolder(target, path);
    path += name;
}

// Of a name that begins as they do.
bool IsTemporaryName(const char* name)
{
    const size_t length = strlen(name);
    const size_t end = strlen(NameEnd);
    return length > end && strcmp(name + length - end, NameEnd) == 0;
}

int OpenRetrying(const char* path, int flags, mode_t mode)
{
    int handle;
    do
        handle = open(path, flags | O_CLOEXEC, mode);
    while (handle < 0 && errno == EINTR);
    return handle;
}

bool LockRetrying(int handle, int operation)
{
    int result;
    do
        result = flock(handle, operation);
    while (result != 0 && errno == EINTR);
    return result == 0;
}

// A file of a program that lives is locked.
void RemoveIfDead(const char* path)
{
    const int handle = OpenRetrying(path, O_RDWR | O_NOFOLLOW | O_NONBLOCK, 0);
    if (handle < 0)
        return;
    struct stat info;
    // Looked at under the lock: what another has taken away may have given its name to a new one.
    if (LockRetrying(handle, LOCK_EX | LOCK_NB) && fstat(handle, &info) == 0 && S_ISREG(info.st_mode) &&
        info.st_nlink > 0)
        unlink(path);
    close(handle);
}

// The folder may hold thousands of files, on another machine: only those that may be meant are asked about.
void RemoveDeadFiles(const char* target)
{
    TString folder;
    GetFolder(target, folder);
    vector<TString> names;
    ListNames(folder.IsEmpty() ? "." : folder.Print(), GetNameStart(), names);
    for (const TString& name : names) {
        if (!IsTemporaryName(name))
            continue;
        TString path(folder);
        path += name;
        RemoveIfDead(path);
    }
}

// Some file systems cannot be told to write through; that is no failure to write.
bool WriteThrough(int handle)
{
    int result;
    do
        result = fsync(handle);
    while (result != 0 && errno == EINTR);
    return result == 0 || errno == EINVAL || errno == ENOSYS;
}

// A name is on the disc when its folder is. What cannot be done about that is no failure: the file is whole.
void WriteFolderThrough(const char* target)
{
    TString folder;
    GetFolder(target, folder);
    const int handle = OpenRetrying(folder.IsEmpty() ? "." : folder.Print(), O_RDONLY | O_DIRECTORY, 0);
    if (handle < 0)
        return;
    WriteThrough(handle);
    close(handle);
}

// The names that a signal's handler takes away, which sees a slot only once its path is whole. Files are
// written by more threads than one. More of them than that at a time are left to the next one beside them.
struct TNameSlot
{
    std::atomic<bool> IsTaken;
    std::atomic<bool> IsWhole;
    char Path[PATH_MAX];
};
constexpr int NumSlots = 4;
TNameSlot Slots[NumSlots];

void OnEndSignal(int signal)
{
    for (const TNameSlot& slot : Slots)
        if (slot.IsWhole)
            unlink(slot.Path);
    EndBySignal(signal);
}

// No signal ends the program while this lives.
class TSignalsHeld
{
public:
    TSignalsHeld()
    {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &Before);
    }
    ~TSignalsHeld() { pthread_sigmask(SIG_SETMASK, &Before, nullptr); }
    TSignalsHeld(const TSignalsHeld&) = delete;
    TSignalsHeld& operator=(const TSignalsHeld&) = delete;

private:
    sigset_t Before;
};

} // namespace

void RemoveTemporaryFilesAtEnd()
{
    for (const int signal : {SIGTERM, SIGHUP, SIGINT}) {
        struct sigaction action = {};
        if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler == SIG_IGN)
            continue;
        action = {};
        action.sa_handler = OnEndSignal;
        sigfillset(&action.sa_mask);
        sigaction(signal, &action, nullptr);
    }
}

// With signals held.
void TTemporaryFile::TakeName()
{
    IsNamed = true;
    for (int i = 0; i < NumSlots; ++i) {
        if (Path.Length() >= PATH_MAX || Slots[i].IsTaken.exchange(true))
            continue;
        strcpy(Slots[i].Path, Path);
        Slots[i].IsWhole = true;
        Slot = i;
        return;
    }
}

void TTemporaryFile::LeaveName()
{
    IsNamed = false;
    if (Slot >= 0) {
        Slots[Slot].IsWhole = false;
        Slots[Slot].IsTaken = false;
    }
    Slot = -1;
}

bool TTemporaryFile::Fail(int error)
{
    Drop();
    Error = error;
    return false;
}

// Until it has the rights of the old file, nobody else reads the new one.
static mode_t GetFirstMode(const struct stat* old)
{
    return old != nullptr ? 0600 : 0666;
}

bool TTemporaryFile::Create(const char* target, const struct stat* old)
{
    Drop();
    RemoveDeadFiles(target);
    Target = target;
    const mode_t mode = GetFirstMode(old);
    return (OpenNameless(mode) || OpenNamed(mode)) && Resemble(old);
}

bool TTemporaryFile::CreateNamed(const char* target, const struct stat* old)
{
    Drop();
    RemoveDeadFiles(target);
    Target = target;
    return OpenNamed(GetFirstMode(old)) && Resemble(old);
}

// The name that such a file gets in the end is made from its entry in /proc.
bool TTemporaryFile::OpenNameless(unsigned mode)
{
    TString folder;
    GetFolder(Target, folder);
    Handle = OpenRetrying(folder.IsEmpty() ? "." : folder.Print(), O_WRONLY | O_TMPFILE, mode);
    if (Handle < 0)
        return false;
    Path.Format("/proc/self/fd/%d", Handle);
    IsNamed = false;
    if (access(Path, F_OK) == 0) {
        // What is locked before it has a name never looks dead.
        LockRetrying(Handle, LOCK_EX);
        return true;
    }
    Drop();
    return false;
}

bool TTemporaryFile::OpenNamed(unsigned mode)
{
    for (int i = 0; i < MaxNames; ++i) {
        const TSignalsHeld held;
        MakeName(Target, Path);
        Handle = OpenRetrying(Path, O_WRONLY | O_CREAT | O_EXCL, mode);
        if (Handle < 0 && errno == EEXIST)
            continue;
        if (Handle < 0)
            return Fail(errno);
        TakeName();
        // Another program may have taken it for a dead one's before it was locked.
        LockRetrying(Handle, LOCK_EX);
        struct stat info;
        if (fstat(Handle, &info) == 0 && info.st_nlink > 0)
            return true;
        LeaveName();
        close(Handle);
        Handle = -1;
    }
    return Fail(EEXIST);
}

// As far as that is allowed: only the superuser gives files away, and a group is given by its members.
static bool TakeOwner(int handle, const struct stat& old)
{
    return fchown(handle, old.st_uid, old.st_gid) == 0 ||
           fchown(handle, static_cast<uid_t>(-1), old.st_gid) == 0;
}

// What a file lets single people and groups do, or nothing: a folder may have given the new file other
// rights.
static void TakeAccessList(int handle, const char* target)
{
    static constexpr const char* Name = "system.posix_acl_access";
    constexpr size_t MaxList = 1 << 16;
    vector<char> list;
    list.resize(MaxList);
    const ssize_t size = getxattr(target, Name, list.data(), MaxList);
    if (size > 0)
        fsetxattr(handle, Name, list.data(), static_cast<size_t>(size), 0);
    else
        fremovexattr(handle, Name);
}

// The file that takes the old one's place is open to the same people.
bool TTemporaryFile::Resemble(const struct stat* old)
{
    if (old == nullptr)
        return true;
    TakeOwner(Handle, *old);
    TakeAccessList(Handle, Target);
    if (fchmod(Handle, old->st_mode & 07777) == 0)
        return true;
    const int error = errno;
    // Some file systems give every file the same rights.
    struct stat info;
    return (fstat(Handle, &info) == 0 && info.st_mode == old->st_mode) || Fail(error);
}

// Gives a nameless file a name: the target's, or, where there is one already, one to be renamed from.
bool TTemporaryFile::Link()
{
    const TString entry = Path;
    if (linkat(AT_FDCWD, entry, AT_FDCWD, Target, AT_SYMLINK_FOLLOW) == 0) {
        Path = Target;
        return true;
    }
    for (int i = 0; errno == EEXIST && i < MaxNames; ++i) {
        TString name;
        MakeName(Target, name);
        if (linkat(AT_FDCWD, entry, AT_FDCWD, name, AT_SYMLINK_FOLLOW) != 0)
            continue;
        Path = name;
        TakeName();
        return true;
    }
    return false;
}

bool TTemporaryFile::Replace()
{
    if (!WriteThrough(Handle))
        return Fail(errno);
    const TSignalsHeld held;
    if (!IsNamed && !Link())
        return Fail(errno);
    if (IsNamed && rename(Path, Target) != 0)
        return Fail(errno);
    // The lock goes with the handle, and so not before the name.
    LeaveName();
    Drop();
    WriteFolderThrough(Target);
    return true;
}

void TTemporaryFile::Drop()
{
    if (Handle >= 0) {
        const TSignalsHeld held;
        if (IsNamed)
            unlink(Path);
        LeaveName();
        close(Handle);
    }
    Handle = -1;
    Error = 0;
    Path = nullptr;
}
