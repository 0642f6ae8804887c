#include "library/system/file.h"

#include "library/containers/assertion.h"
#include "library/containers/shortentext.h"
#include "library/system/path.h"
#include "library/system/systemerror.h"

#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

static constexpr uint32_t BlockSize = 1024;
static constexpr int MaxLinks = 40;
static constexpr int MaxShownPath = 800;

static bool GetInfo(const char* path, struct stat& info)
{
    TString systemPath;
    ToSystemPath(path, systemPath);
    return stat(systemPath.Print(), &info) == 0;
}

// Why a file that is there is none to read or write, or 0.
static int GetKindFault(const struct stat& info)
{
    if (S_ISREG(info.st_mode))
        return 0;
    return S_ISDIR(info.st_mode) ? EISDIR : FF_NOREGULARFILE;
}

// The handle of a plain file, or -1 with the reason. Opening a pipe for reading would wait for its writer.
static int OpenPlainFile(const char* path, int64_t& size, int& error)
{
    TString systemPath;
    ToSystemPath(path, systemPath);
    int handle;
    do
        handle = open(systemPath.Print(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    while (handle < 0 && errno == EINTR);
    if (handle < 0) {
        error = errno;
        return -1;
    }
    struct stat info;
    error = fstat(handle, &info) != 0 ? errno : GetKindFault(info);
    if (error != 0) {
        close(handle);
        return -1;
    }
    size = info.st_size;
    return handle;
}

static bool ReadAt(int handle, void* buffer, uint32_t n, uint32_t position)
{
    unsigned char* to = static_cast<unsigned char*>(buffer);
    while (n > 0) {
        const ssize_t got = pread(handle, to, n, static_cast<off_t>(position));
        if (got < 0 && errno == EINTR)
            continue;
        if (got == 0)
            errno = 0;
        if (got <= 0)
            return false;
        to += got;
        position += static_cast<uint32_t>(got);
        n -= static_cast<uint32_t>(got);
    }
    return true;
}

bool FileExists(const char* path)
{
    struct stat info;
    return GetInfo(path, info) && !S_ISDIR(info.st_mode);
}

bool IsDirectory(const char* path)
{
    struct stat info;
    return GetInfo(path, info) && S_ISDIR(info.st_mode);
}

// Why a file that is there cannot be written to, or 0. A path in the system's own form.
static int GetWriteFault(const char* path, const struct stat& info)
{
    if (S_ISDIR(info.st_mode))
        return EISDIR;
    // The owner's bit is looked at by itself, as the superuser may write to what is marked read-only.
    if ((info.st_mode & S_IWUSR) == 0)
        return EACCES;
    return access(path, W_OK) == 0 ? 0 : errno;
}

bool FileIsWritable(const char* path)
{
    struct stat info;
    if (!GetInfo(path, info))
        return true;
    TString systemPath;
    ToSystemPath(path, systemPath);
    return GetWriteFault(systemPath.Print(), info) == 0;
}

bool ClearReadOnly(const char* path)
{
    struct stat info;
    if (!GetInfo(path, info))
        return false;
    TString systemPath;
    ToSystemPath(path, systemPath);
    if ((info.st_mode & S_IWUSR) == 0 && chmod(systemPath.Print(), (info.st_mode & 07777) | S_IWUSR) != 0)
        return false;
    // The owner's bit says nothing about another's file.
    return FileIsWritable(path);
}

uint32_t GetFileSize(const char* path)
{
    uint64_t size = 0;
    if (!GetFileSize64(path, size) || size > UINT32_MAX)
        return 0;
    return static_cast<uint32_t>(size);
}

bool GetFileSize64(const char* path, uint64_t& result)
{
    int64_t size = 0;
    int error = 0;
    const int handle = OpenPlainFile(path, size, error);
    if (handle < 0)
        return false;
    close(handle);
    result = static_cast<uint64_t>(size);
    return true;
}

bool ReadWholeFile(const char* path, void* buffer)
{
    int64_t size = 0;
    int error = 0;
    const int handle = OpenPlainFile(path, size, error);
    if (handle < 0)
        return false;
    const bool whole = size <= UINT32_MAX && ReadAt(handle, buffer, static_cast<uint32_t>(size), 0);
    close(handle);
    return whole;
}

bool ReadFileBytes(const char* path, vector<uint8_t>& bytes)
{
    TFile file;
    if (!file.OpenRead(path))
        return false;
    bytes.resize(file.GetSize());
    const bool read = file.GetSize() == 0 || file.Read(bytes.data(), file.GetSize());
    file.Close();
    return read;
}

bool MakeDirectory(const char* path)
{
    TString systemPath;
    ToSystemPath(path, systemPath);
    return mkdir(systemPath.Print(), 0777) == 0;
}

bool IsSameFile(const char* a, const char* b)
{
    struct stat first;
    struct stat second;
    return GetInfo(a, first) && GetInfo(b, second) && first.st_dev == second.st_dev &&
           first.st_ino == second.st_ino;
}

// Whichever part of the path is not there.
static bool IsMissing(int error)
{
    return error == ENOENT || error == ENOTDIR;
}

static TString GetReadText(int error)
{
    return IsMissing(error) ? TString("The file does not exist") : GetSystemErrorText(error);
}

// 0 for a file that can be read.
static int GetReadError(const char* path)
{
    int64_t size = 0;
    int error = 0;
    const int handle = OpenPlainFile(path, size, error);
    if (handle >= 0)
        close(handle);
    return error;
}

bool GetReadFault(const char* path, TString& fault)
{
    const int error = GetReadError(path);
    fault = nullptr;
    if (error != 0)
        fault = GetReadText(error);
    return error != 0 && !IsMissing(error);
}

bool GetReadRefusal(const char* path, TString& text)
{
    TString fault;
    if (!GetReadFault(path, fault))
        return false;
    text = ShortenText(GetShownPath(path), MaxShownPath);
    text += ": ";
    text += fault;
    return true;
}

// Follows the links that the last part of a path may be, to a file that need not exist.
static bool FollowLinks(TString& path)
{
    for (int i = 0; i < MaxLinks; ++i) {
        struct stat info;
        if (lstat(path.Print(), &info) != 0 || !S_ISLNK(info.st_mode))
            return true;
        char text[PATH_MAX];
        const ssize_t length = readlink(path.Print(), text, sizeof(text));
        if (length <= 0 || length >= static_cast<ssize_t>(sizeof(text)))
            return false;
        TString target;
        target.Assign(text, text + length);
        const int separator = text[0] == '/' ? -1 : path.FindLast('/');
        TString followed;
        if (separator >= 0)
            followed.Left(path.Print(), separator + 1);
        followed += target.Print();
        path = followed;
    }
    return false;
}

TFile::~TFile() noexcept(false)
{
    const bool open = IsOpen();
    Abandon();
    ASSERT_TEXT(!open || IsAssertUnwinding(), "!IsOpen() : Attempt to delete open file");
}

bool TFile::Fail(const char* reason)
{
    if (Fault.IsEmpty())
        Fault = reason;
    return false;
}

bool TFile::Fail(int error)
{
    return Fail(GetSystemErrorText(error));
}

// Where the file's folder is what stands in the way.
bool TFile::FailFolder(int error)
{
    TString folder;
    folder.SetDirectory(Temporary.GetTarget());
    TString reason;
    reason.Format("No file can be made in %s: %s", folder.IsEmpty() ? "the folder" : folder.Print(),
                  GetSystemErrorText(error).Print());
    return Fail(reason);
}

bool TFile::FailWrite(int error)
{
    WriteFailed = true;
    return Fail(error);
}

bool TFile::OpenRead(const char* path)
{
    ASSERT_TEXT(!IsOpen(), "!IsOpen() : Attempt to re-open file");
    Fault = nullptr;
    int64_t size = 0;
    int error = 0;
    const int handle = OpenPlainFile(path, size, error);
    if (handle < 0)
        return Fail(GetReadText(error));
    // Positions are given and taken as ints.
    if (size > INT_MAX) {
        close(handle);
        return Fail(FF_TOOLARGE);
    }
    Reset();
    if (Cache.size() == 0)
        Cache.resize(BlockSize);
    Handle = handle;
    Mode = 3;
    Size = static_cast<uint32_t>(size);
    Path = path;
    return true;
}

void TFile::OpenReadMemory(const void* bytes, int size)
{
    ASSERT_TEXT(!IsOpen(), "!IsOpen() : Attempt to re-open file");
    Fault = nullptr;
    Reset();
    if (Cache.size() == 0)
        Cache.resize(BlockSize);
    Memory = static_cast<const unsigned char*>(bytes);
    Mode = 3;
    Size = static_cast<uint32_t>(size);
    Path = nullptr;
}

bool TFile::OpenWrite(const char* path)
{
    ASSERT_TEXT(!IsOpen(), "!IsOpen() : Attempt top re-open file");
    Reset();
    Fault = nullptr;
    TString target;
    ToSystemPath(path, target);
    if (target.IsEmpty())
        return Fail(ENOENT);
    if (!FollowLinks(target))
        return Fail(ELOOP);
    struct stat old;
    const bool exists = stat(target, &old) == 0;
    int error = exists ? GetKindFault(old) : errno == ENOENT ? 0 : errno;
    if (exists && error == 0)
        error = GetWriteFault(target, old);
    if (error != 0)
        return Fail(error);
    if (!Temporary.Create(target, exists ? &old : nullptr))
        return FailFolder(Temporary.GetError());
    Handle = Temporary.GetHandle();
    Mode = 2;
    Path = path;
    return true;
}

bool TFile::Close()
{
    ASSERT_TEXT(IsOpen(), "IsOpen() : Attempt to close non-open file");
    if (IsRead()) {
        CloseSource();
        Reset();
        return true;
    }
    bool whole = !WriteFailed;
    if (!whole)
        Temporary.Drop();
    else if (!Temporary.Replace())
        whole = Fail(Temporary.GetError());
    Reset();
    return whole;
}

void TFile::Abandon()
{
    if (!IsOpen())
        return;
    if (IsRead())
        CloseSource();
    else
        Temporary.Drop();
    Reset();
}

void TFile::CloseSource()
{
    if (Handle >= 0)
        close(Handle);
}

bool TFile::ReadSource(void* buffer, uint32_t n, uint32_t position) const
{
    if (Handle >= 0)
        return ReadAt(Handle, buffer, n, position);
    memcpy(buffer, Memory + position, n);
    return true;
}

void TFile::Reset()
{
    Handle = -1;
    Memory = nullptr;
    Mode = 0;
    Size = 0;
    FilePtr = 0;
    CacheBase = -1;
    WriteFailed = false;
}

// The whole block, wherever the file pointer stands in it: no byte of the cache that lies within the file is
// ever left over from another block.
bool TFile::LoadBlock(uint32_t base)
{
    if (CacheBase == static_cast<int64_t>(base))
        return true;
    CacheBase = -1;
    const uint32_t count = Size - base < BlockSize ? Size - base : BlockSize;
    if (!ReadSource(Cache.data(), count, base))
        return errno != 0 && Fail(errno);
    CacheBase = base;
    return true;
}

bool TFile::Read(void* buffer, int n)
{
    ASSERT_TEXT(IsOpen(), "IsOpen() : Attempt to read from non-open file");
    ASSERT_TEXT(IsRead(), "IsRead() : Attempt to read from file opened for write");
    if (n < 0 || static_cast<uint32_t>(n) > Size - FilePtr)
        return false;
    if (n == 0)
        return true;
    unsigned char* to = static_cast<unsigned char*>(buffer);
    const uint32_t end = FilePtr + static_cast<uint32_t>(n);
    const uint32_t offset = FilePtr % BlockSize;
    const uint32_t first = FilePtr - offset;
    const uint32_t last = end - end % BlockSize;
    if (!LoadBlock(first))
        return false;
    if (first == last) {
        memcpy(to, Cache.data() + offset, static_cast<uint32_t>(n));
        FilePtr = end;
        return true;
    }
    const uint32_t head = BlockSize - offset;
    memcpy(to, Cache.data() + offset, head);
    const uint32_t middle = last - first - BlockSize;
    if (middle > 0 && !ReadSource(to + head, middle, first + BlockSize))
        return errno != 0 && Fail(errno);
    if (end > last) {
        if (!LoadBlock(last))
            return false;
        memcpy(to + head + middle, Cache.data(), end - last);
    }
    FilePtr = end;
    return true;
}

bool TFile::Write(const void* buffer, int n)
{
    ASSERT_TEXT(IsOpen(), "IsOpen() : Attempt to write to non-open file");
    ASSERT_TEXT(!IsRead(), "!IsRead() : Attempt to write to file opened for read");
    if (n < 0 || static_cast<uint32_t>(n) > INT_MAX - FilePtr)
        return FailWrite(FF_TOOLARGE);
    const unsigned char* from = static_cast<const unsigned char*>(buffer);
    while (n > 0) {
        const ssize_t written = write(Handle, from, static_cast<size_t>(n));
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return FailWrite(written < 0 ? errno : ENOSPC);
        from += written;
        n -= static_cast<int>(written);
        FilePtr += static_cast<uint32_t>(written);
    }
    return true;
}

int TFile::GetFilePtr() const
{
    ASSERT_TEXT(IsOpen(), "IsOpen() : Attempt to read file ptr of non-open file");
    return static_cast<int>(FilePtr);
}

void TFile::SetFilePtr(int pos)
{
    ASSERT_TEXT(IsOpen(), "IsOpen() : Attempt to set file ptr of non-open file");
    ASSERT_TEXT(IsRead(), "IsRead() : Attempt to set file ptr of non-read file");
    const uint32_t fileptr = static_cast<uint32_t>(pos);
    ASSERT_TEXT(fileptr <= Size, "fileptr <= Size : Attempt to set file ptr out of range");
    FilePtr = fileptr;
}

bool TFile::IsEof() const
{
    ASSERT_TEXT(IsOpen(), "IsOpen() : Attempt to read EOF status of non-open file");
    return FilePtr == Size;
}

void TFile::SetFileTime(int64_t time)
{
    ASSERT_TEXT(IsOpen(), "IsOpen()");
    timespec times[2] = {};
    times[0].tv_nsec = UTIME_OMIT;
    times[1].tv_sec = static_cast<time_t>(time);
    futimens(Handle, times);
}
