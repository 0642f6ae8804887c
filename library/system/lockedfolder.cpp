#include "library/system/lockedfolder.h"

#include "library/system/clock.h"
#include "library/system/path.h"
#include "library/system/statefolder.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

static constexpr int MaxNames = 1000;

static TString LockPath(const char* folder)
{
    TString path(folder);
    path += "/";
    path += TLockedFolder::LockName;
    return path;
}

static bool LockFile(int handle)
{
    int result;
    do
        result = flock(handle, LOCK_EX | LOCK_NB);
    while (result != 0 && errno == EINTR);
    return result == 0;
}

// Whether the file still stands where it was opened: it may have been removed before it was locked.
static bool IsAt(int handle, const char* path)
{
    struct stat held;
    struct stat there;
    return fstat(handle, &held) == 0 && stat(path, &there) == 0 && held.st_dev == there.st_dev &&
           held.st_ino == there.st_ino;
}

static int OpenLock(const char* path, int flags)
{
    int handle;
    do
        handle = open(path, flags | O_CLOEXEC | O_NOFOLLOW, 0600);
    while (handle < 0 && errno == EINTR);
    return handle;
}

// The lock goes with the process, whatever ends it. Where nothing can be written any more, one that is there
// still does.
bool TLockedFolder::Lock(const char* path)
{
    const TString lock = LockPath(path);
    int handle = OpenLock(lock, O_RDWR | O_CREAT);
    if (handle < 0 && errno == EROFS)
        handle = OpenLock(lock, O_RDONLY);
    if (handle < 0)
        return false;
    const bool isLocked = LockFile(handle);
    if (!isLocked || !IsAt(handle, lock.Print())) {
        const int error = isLocked ? ENOENT : errno;
        close(handle);
        errno = error;
        return false;
    }
    Handle = handle;
    Path = path;
    return true;
}

// Between the making of a folder and its lock another process may think it left behind, and take it away:
// then the next name is tried.
bool TLockedFolder::Create(const char* parent)
{
    Release();
    if (!MakeFolders(parent))
        return false;
    TString root;
    ToSystemPath(parent, root);
    for (int i = 0; i < MaxNames; ++i) {
        TString name;
        name.Format("/%d-%llx", static_cast<int>(getpid()),
                    static_cast<unsigned long long>(GetPerformanceCounter()));
        TString path = root;
        path += name.Print();
        if (mkdir(path.Print(), 0700) != 0) {
            if (errno != EEXIST)
                return false;
            continue;
        }
        if (Lock(path.Print()))
            return true;
        const bool isTaken = errno == EWOULDBLOCK || errno == ENOENT;
        unlink(LockPath(path.Print()).Print());
        rmdir(path.Print());
        if (!isTaken)
            return false;
    }
    return false;
}

bool TLockedFolder::TakeOver(const char* path)
{
    Release();
    TString systemPath;
    ToSystemPath(path, systemPath);
    return Lock(systemPath.Print());
}

void TLockedFolder::Release()
{
    if (Handle >= 0)
        close(Handle);
    Handle = -1;
    Path = nullptr;
}

// The lock goes first, as it is in the folder; who finds the folder without it meanwhile finds nothing else
// in it either. Where there is more, the lock stays.
void TLockedFolder::Remove()
{
    if (Handle < 0)
        return;
    vector<TDirectoryEntry> entries;
    const bool isEmpty = ListDirectory(Path, entries) && entries.size() <= 1;
    if (isEmpty && unlink(LockPath(Path).Print()) == 0)
        rmdir(Path.Print());
    Release();
}
