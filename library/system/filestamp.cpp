#include "library/system/filestamp.h"

#include "library/containers/fnvhash.h"
#include "library/system/file.h"
#include "library/system/path.h"

#include <sys/stat.h>

bool TFileStamp::Take(const char* path)
{
    *this = TFileStamp();
    TString systemPath;
    ToSystemPath(path, systemPath);
    struct stat info;
    if (stat(systemPath.Print(), &info) != 0)
        return false;
    Path = path;
    IsTaken = true;
    Device = info.st_dev;
    Node = info.st_ino;
    Size = info.st_size;
    Seconds = info.st_mtim.tv_sec;
    Nanoseconds = info.st_mtim.tv_nsec;
    TakeContent(path);
    return true;
}

// Its hash, which two different files have alike by chance only.
void TFileStamp::TakeContent(const char* path)
{
    constexpr int BlockSize = 1 << 16;
    TFile file;
    if (!file.OpenRead(path))
        return;
    vector<unsigned char> block;
    block.resize(BlockSize);
    uint64_t hash = FnvStart64;
    bool isRead = true;
    while (isRead && !file.IsEof()) {
        const int count = file.GetRemaining() < BlockSize ? file.GetRemaining() : BlockSize;
        isRead = file.Read(block.data(), count);
        if (isRead)
            hash = AddToFnv(hash, block.data(), count);
    }
    file.Close();
    HasContent = isRead;
    Content = hash;
}

bool TFileStamp::HasChanged(const char* path) const
{
    TFileStamp now;
    if (!IsTaken || Path.Compare(path, true) != 0 || !now.Take(path))
        return false;
    if (Size != now.Size)
        return true;
    if (HasContent && now.HasContent)
        return Content != now.Content;
    return Device != now.Device || Node != now.Node || Seconds != now.Seconds ||
           Nanoseconds != now.Nanoseconds;
}

bool TFileStamp::GetContent(int64_t& size, uint64_t& hash) const
{
    if (!IsTaken || !HasContent)
        return false;
    size = Size;
    hash = Content;
    return true;
}

void TFileStamp::SetContent(const char* path, int64_t size, uint64_t hash)
{
    *this = TFileStamp();
    Path = path;
    IsTaken = true;
    Size = size;
    HasContent = true;
    Content = hash;
}
