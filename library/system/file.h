#pragma once

#include "library/containers/array.h"
#include "library/containers/string.h"
#include "library/containers/vector.h"
#include "library/system/temporaryfile.h"

#include <cstdint>

// Path names, none needing an open file.
bool FileExists(const char* path);
bool IsDirectory(const char* path);
// True also for a file that does not exist yet.
bool FileIsWritable(const char* path);
// True if the file is not read-only, or could be made so; false if it does not exist.
bool ClearReadOnly(const char* path);
// 0 if the file cannot be opened.
uint32_t GetFileSize(const char* path);
bool GetFileSize64(const char* path, uint64_t& result);
// Reads GetFileSize bytes; whether all arrived.
bool ReadWholeFile(const char* path, void* buffer);
// The same, into as many bytes as the file has.
bool ReadFileBytes(const char* path, vector<uint8_t>& bytes);
bool MakeDirectory(const char* path);
// Whether two paths lead to one file, whatever links and spellings they take.
bool IsSameFile(const char* a, const char* b);
// Why a path cannot be opened for reading, as a person reads it; empty if it can. Whether the file is there
// and refused.
bool GetReadFault(const char* path, TString& fault);
// "PATH: Permission denied", for a file that is there and refused; false for others.
bool GetReadRefusal(const char* path, TString& text);

// The program's file: reading goes through a one-block cache, writing straight to the platform. Wrong use
// asserts.
//
// A file being written is a temporary one; Close puts it in the place of its target when every write
// succeeded, so that a failure leaves the old file as it was.
class TFile
{
public:
    TFile() = default;
    // Asserts that the file is closed; while an assertion unwinds, an open file is abandoned quietly.
    ~TFile() noexcept(false);
    TFile(const TFile&) = delete;
    TFile& operator=(const TFile&) = delete;

    bool OpenRead(const char* path);
    // Reads no file but these bytes, which must stay until it is closed.
    void OpenReadMemory(const void* bytes, int size);
    bool OpenWrite(const char* path);
    // False if the file was being written and is not whole on the disc; the old file then stands.
    bool Close();
    // Closes a file being written and drops it: the old file stands. Closes a file being read.
    void Abandon();

    bool Read(void* buffer, int n);
    bool Write(const void* buffer, int n);
    int GetFilePtr() const;
    void SetFilePtr(int pos);
    bool IsEof() const;
    // Seconds since the epoch, in UTC.
    void SetFileTime(int64_t time);
    int GetSize() const { return static_cast<int>(Size); }
    // Bytes between the file pointer and the end, for holding a count against before it is believed.
    int GetRemaining() const { return static_cast<int>(Size - FilePtr); }
    // The path given at opening.
    const TString& GetPath() const { return Path; }
    // Where the file being written can be read until it is closed.
    const TString& GetTemporaryPath() const { return Temporary.GetPath(); }
    // Why the last opening failed, or what came after it, as a person reads it; empty if nothing did.
    const TString& GetFault() const { return Fault; }

    bool IsOpen() const { return (Mode & 2) != 0; }
    bool IsRead() const { return (Mode & 1) != 0; }

protected:
    // The first reason is the one that counts. Always false.
    bool Fail(const char* reason);

    // Read of one byte, quick while it lies in the cached block.
    bool ReadCharacter(char& c)
    {
        const uint32_t offset = FilePtr % 1024;
        if (FilePtr >= Size || CacheBase != static_cast<int64_t>(FilePtr - offset))
            return Read(&c, 1);
        c = static_cast<char>(Cache[offset]);
        ++FilePtr;
        return true;
    }

private:
    bool Fail(int error);
    bool FailFolder(int error);
    bool FailWrite(int error);
    bool LoadBlock(uint32_t base);
    bool ReadSource(void* buffer, uint32_t n, uint32_t position) const;
    void CloseSource();
    void Reset();

    int Handle = -1;
    // What is read where there is no file.
    const unsigned char* Memory = nullptr;
    uint32_t Mode = 0;
    uint32_t Size = 0;
    uint32_t FilePtr = 0;
    array<unsigned char> Cache;
    int64_t CacheBase = -1;
    bool WriteFailed = false;
    TString Path;
    TString Fault;
    TTemporaryFile Temporary;
};
