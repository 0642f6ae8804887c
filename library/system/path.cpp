#include "library/system/path.h"

#include "library/containers/append.h"

#include <algorithm>

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

// An open directory, closed with the object.
class TDirectory
{
public:
    explicit TDirectory(const char* path) : Handle(opendir(path)) {}
    ~TDirectory()
    {
        if (Handle != nullptr)
            closedir(Handle);
    }
    TDirectory(const TDirectory&) = delete;
    TDirectory& operator=(const TDirectory&) = delete;

    bool IsOpen() const { return Handle != nullptr; }
    int GetDescriptor() const { return dirfd(Handle); }
    // The next name but "." and "..", or null.
    const char* GetNext()
    {
        dirent* entry;
        do
            entry = readdir(Handle);
        while (entry != nullptr && (strcmp(entry->d_name, ".") == 0 || strcmp(entry->d_name, "..") == 0));
        return entry != nullptr ? entry->d_name : nullptr;
    }

private:
    DIR* Handle;
};

static bool IsThere(const char* path)
{
    struct stat info;
    return lstat(path, &info) == 0;
}

// The entry of a directory that differs from `name` in case only; of several the first by bytes, so that the
// choice does not hang on the order on the disc.
static bool FindEntryIgnoringCase(const char* directory, const char* name, TString& result)
{
    TDirectory entries(directory);
    if (!entries.IsOpen())
        return false;
    bool found = false;
    while (const char* entry = entries.GetNext()) {
        if (CompareText(entry, name) != 0 || (found && result.Compare(entry, true) <= 0))
            continue;
        result = entry;
        found = true;
    }
    return found;
}

static void FindPathIgnoringCase(const char* path, TString& result)
{
    TString found;
    const char* rest = path;
    while (*rest != 0) {
        const char* begin = rest;
        while (*begin == '/')
            ++begin;
        const char* end = begin;
        while (*end != 0 && *end != '/')
            ++end;
        TString separators;
        separators.Assign(rest, begin);
        found += separators.Print();
        if (begin == end)
            break;
        TString name;
        name.Assign(begin, end);
        TString exact(found);
        exact += name.Print();
        TString actual;
        if (IsThere(exact.Print())) {
            found = exact;
        } else if (FindEntryIgnoringCase(found.IsEmpty() ? "." : found.Print(), name.Print(), actual)) {
            found += actual.Print();
        } else {
            found += begin;
            break;
        }
        rest = end;
    }
    result = found;
}

void ToSystemPath(const char* path, TString& out)
{
    TString exact(path);
    exact.Replace('\\', '/');
    if (exact.IsEmpty() || IsThere(exact.Print()))
        out = exact;
    else
        FindPathIgnoringCase(exact.Print(), out);
}

TString GetShownPath(const char* path)
{
    TString shown(path);
    shown.Replace('\\', '/');
    return shown;
}

void ToKeptPath(const char* path, TString& out)
{
    TString kept(path);
    kept.Replace('/', '\\');
    out = kept;
}

void JoinPath(const char* directory, const char* name, TString& path)
{
    path = directory;
    path += "\\";
    path += name;
}

const char* GetListablePath(const TString& directory)
{
    return directory.IsEmpty() ? "\\" : directory.c_str();
}

void GetProgramPath(TString& out)
{
    vector<char> path;
    for (int size = 256;; size *= 2) {
        path.resize(size);
        const ssize_t length = readlink("/proc/self/exe", path.data(), static_cast<size_t>(size));
        if (length < size) {
            out.Assign(path.data(), path.data() + (length < 0 ? 0 : length));
            return;
        }
    }
}

void ListNames(const char* path, const char* start, vector<TString>& result)
{
    result.clear();
    TString systemPath;
    ToSystemPath(path, systemPath);
    TDirectory entries(systemPath.Print());
    if (!entries.IsOpen())
        return;
    while (const char* name = entries.GetNext())
        if (strncmp(name, start, strlen(start)) == 0)
            Append(result, name);
}

bool ListDirectory(const char* path, vector<TDirectoryEntry>& result, int* error)
{
    result.clear();
    TString systemPath;
    ToSystemPath(path, systemPath);
    TDirectory entries(systemPath.Print());
    struct stat own;
    if (!entries.IsOpen() || fstat(entries.GetDescriptor(), &own) != 0) {
        if (error != nullptr)
            *error = errno;
        return false;
    }
    while (const char* name = entries.GetNext()) {
        struct stat info;
        if (fstatat(entries.GetDescriptor(), name, &info, AT_SYMLINK_NOFOLLOW) != 0)
            continue;
        if (S_ISLNK(info.st_mode)) {
            // A walk must not leave its file system or run in a circle, which no file leads it to.
            if (fstatat(entries.GetDescriptor(), name, &info, 0) != 0 || !S_ISREG(info.st_mode))
                continue;
        } else if (info.st_dev != own.st_dev) {
            continue;
        }
        Append(result, TDirectoryEntry{name, S_ISDIR(info.st_mode)});
    }
    std::sort(result.begin(), result.end(), [](const TDirectoryEntry& a, const TDirectoryEntry& b) {
        const int order = a.Name.Compare(b.Name);
        return order != 0 ? order < 0 : a.Name.Compare(b.Name, true) < 0;
    });
    return true;
}
