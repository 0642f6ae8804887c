#include "library/system/crash/crashfile.h"

#include <initializer_list>

#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

bool JoinTexts(char* buffer, size_t size, const char* first, const char* second, const char* third)
{
    size_t used = 0;
    for (const char* text : {first, second, third}) {
        for (; *text != 0; ++text) {
            if (used + 1 == size) {
                buffer[used] = 0;
                return false;
            }
            buffer[used++] = *text;
        }
    }
    buffer[used] = 0;
    return true;
}

size_t ReadSmallFile(const char* path, char* buffer, size_t size)
{
    size_t used = 0;
    const int handle = open(path, O_RDONLY | O_CLOEXEC);
    while (handle >= 0 && used + 1 < size) {
        const ssize_t got = read(handle, buffer + used, size - 1 - used);
        if (got > 0)
            used += static_cast<size_t>(got);
        else if (got == 0 || errno != EINTR)
            break;
    }
    if (handle >= 0)
        close(handle);
    buffer[used] = 0;
    return used;
}

void MakeCrashFolder(const char* path)
{
    char part[PATH_MAX];
    if (*path == 0 || !JoinTexts(part, sizeof(part), path, ""))
        return;
    for (char* place = part + 1; *place != 0; ++place) {
        if (*place != '/')
            continue;
        *place = 0;
        mkdir(part, 0700);
        *place = '/';
    }
    mkdir(part, 0700);
}

// Whatever is there and cannot be taken away is opened only if it is a file. What memory holds is its user's
// alone.
int CreateCrashFile(const char* path, TWriteThrough through)
{
    unlink(path);
    const int flags = O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    const int handle = open(path, through == WT_YES ? flags | O_SYNC : flags, 0600);
    struct stat info;
    if (handle < 0 || (fstat(handle, &info) == 0 && S_ISREG(info.st_mode)))
        return handle;
    close(handle);
    return -1;
}
