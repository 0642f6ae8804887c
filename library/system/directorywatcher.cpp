#include "library/system/directorywatcher.h"

#include "library/containers/string.h"
#include "library/system/path.h"

#include <errno.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Whatever gives a file another time, or puts another file in its place; and that the directory moves, as the
// platform would follow it.
constexpr uint32_t Events = IN_MODIFY | IN_CLOSE_WRITE | IN_MOVED_TO | IN_ATTRIB | IN_MOVE_SELF | IN_ONLYDIR;
constexpr int NoWatch = -1;

} // namespace

bool GetFileWriteTime(const char* path, int64_t& time)
{
    TString systemPath;
    ToSystemPath(path, systemPath);
    struct stat info;
    if (stat(systemPath.Print(), &info) != 0)
        return false;
    time = static_cast<int64_t>(info.st_mtim.tv_sec) * 1000000000 + info.st_mtim.tv_nsec;
    return true;
}

// Two spellings of one directory share the platform's watch.
struct TDirectoryWatcher::TDirectory
{
    TString Path;
    int Watch = NoWatch;
    bool Signalled = false;
};

TDirectoryWatcher::TDirectoryWatcher() = default;

TDirectoryWatcher::~TDirectoryWatcher()
{
    if (Handle >= 0)
        close(Handle);
}

bool TDirectoryWatcher::Watch(TDirectory& directory)
{
    directory.Watch = inotify_add_watch(Handle, directory.Path.Print(), Events);
    return directory.Watch >= 0;
}

int TDirectoryWatcher::Add(const char* path, int& error)
{
    if (Handle < 0)
        Handle = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    TOwner<TDirectory> directory(new TDirectory);
    ToSystemPath(path, directory->Path);
    if (Handle < 0 || !Watch(*directory)) {
        error = errno;
        return -1;
    }
    for (int i = 0; i < Directories.size(); ++i) {
        if (Directories[i] != nullptr)
            continue;
        Directories.Replace(i, directory.Release());
        return i;
    }
    Directories.push_back(directory.Release());
    return Directories.size() - 1;
}

void TDirectoryWatcher::Remove(int number)
{
    const int watch = Directories[number]->Watch;
    Directories.Replace(number, nullptr);
    bool shared = watch == NoWatch;
    for (const TDirectory* directory : Directories)
        shared = shared || (directory != nullptr && directory->Watch == watch);
    if (!shared)
        inotify_rm_watch(Handle, watch);
}

bool TDirectoryWatcher::TakeSignal(int number)
{
    ReadEvents();
    TDirectory& directory = *Directories[number];
    if (directory.Watch == NoWatch && Watch(directory))
        directory.Signalled = true;
    const bool signalled = directory.Signalled;
    directory.Signalled = false;
    return signalled;
}

void TDirectoryWatcher::ReadEvents()
{
    alignas(inotify_event) char buffer[4096];
    for (;;) {
        const ssize_t length = read(Handle, buffer, sizeof(buffer));
        if (length <= 0)
            return;
        for (ssize_t at = 0; at < length;) {
            const inotify_event* event = reinterpret_cast<const inotify_event*>(buffer + at);
            Mark(event->wd, (event->mask & (IN_IGNORED | IN_MOVE_SELF)) != 0);
            if ((event->mask & IN_MOVE_SELF) != 0)
                inotify_rm_watch(Handle, event->wd);
            at += static_cast<ssize_t>(sizeof(inotify_event)) + event->len;
        }
    }
}

// Events that were lost may have been anybody's.
void TDirectoryWatcher::Mark(int watch, bool gone)
{
    for (TDirectory* directory : Directories) {
        if (directory == nullptr || (watch != NoWatch && directory->Watch != watch))
            continue;
        directory->Signalled = true;
        if (gone)
            directory->Watch = NoWatch;
    }
}
