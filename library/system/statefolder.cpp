#include "library/system/statefolder.h"

#include "library/system/path.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

static TString SystemPath(const char* path)
{
    TString result;
    ToSystemPath(path, result);
    return result;
}

// A relative path would lead somewhere else in each working directory, so it counts as none.
bool GetStateFolder(TString& path)
{
    const char* state = getenv("XDG_STATE_HOME");
    const char* home = getenv("HOME");
    if (state != nullptr && *state == '/') {
        path = state;
    } else if (home != nullptr && *home == '/') {
        path = home;
        path += "/.local/state";
    } else {
        return false;
    }
    path += "/cindermill";
    return true;
}

bool MakeFolders(const char* path)
{
    const TString all = SystemPath(path);
    const int length = all.Length();
    for (int i = 1; i <= length; ++i) {
        if (i < length && all.Print()[i] != '/')
            continue;
        TString part;
        part.Left(all.Print(), i);
        if (mkdir(part.Print(), 0700) != 0 && errno != EEXIST && errno != EROFS && errno != EACCES)
            return false;
    }
    struct stat info;
    return stat(all.Print(), &info) == 0 && S_ISDIR(info.st_mode);
}

bool RemoveFile(const char* path)
{
    return unlink(SystemPath(path).Print()) == 0;
}

bool MoveFile(const char* from, const char* to)
{
    return rename(SystemPath(from).Print(), SystemPath(to).Print()) == 0;
}

bool TouchFile(const char* path)
{
    return utimensat(AT_FDCWD, SystemPath(path).Print(), nullptr, 0) == 0;
}

bool GetFileTime(const char* path, int64_t& time)
{
    struct stat info;
    if (stat(SystemPath(path).Print(), &info) != 0)
        return false;
    time = info.st_mtime;
    return true;
}
