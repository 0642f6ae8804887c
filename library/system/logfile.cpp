#include "library/system/logfile.h"

#include "library/containers/log.h"
#include "library/system/path.h"
#include "library/system/statefolder.h"

#include <fcntl.h>
#include <string.h>
#include <unistd.h>

TLogFile::~TLogFile()
{
    if (Handle < 0)
        return;
    SetLogSink(nullptr, nullptr);
    close(Handle);
}

bool TLogFile::Open(const char* path)
{
    TString own;
    ToSystemPath(path, own);
    TString old = own;
    old += ".old";
    MoveFile(own, old);
    Handle = open(own.Print(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0600);
    if (Handle < 0)
        return false;
    SetLogSink(&TLogFile::Write, this);
    return true;
}

// At once: what a program that fails said last is what is looked for.
void TLogFile::Write(const char* text, void* data)
{
    TLogFile& log = *static_cast<TLogFile*>(data);
    const size_t length = strlen(text);
    if (log.NumBytes + static_cast<int64_t>(length) > MaxBytes)
        return;
    log.NumBytes += static_cast<int64_t>(length);
    const ssize_t written = write(log.Handle, text, length);
    (void)written;
}
