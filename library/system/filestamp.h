#pragma once

#include "library/containers/string.h"

#include <cstdint>

// What a file was at a moment, to be told later whether another program has changed it. What it holds
// decides; times and places only where it cannot be read.
class TFileStamp
{
public:
    // False, and empty, if there is no file.
    bool Take(const char* path);
    // For a file that has another path from now on.
    void MoveTo(const char* path) { Path = path; }
    // Whether the file at the path is another than it was. A file that is gone has not changed, and nothing
    // is known of a path that the stamp was not taken of.
    bool HasChanged(const char* path) const;
    // What the file held, for a stamp that another process sets. False where nothing is known of it.
    bool GetContent(int64_t& size, uint64_t& hash) const;
    void SetContent(const char* path, int64_t size, uint64_t hash);

private:
    void TakeContent(const char* path);

    TString Path;
    bool IsTaken = false;
    uint64_t Device = 0;
    uint64_t Node = 0;
    int64_t Size = 0;
    int64_t Seconds = 0;
    int64_t Nanoseconds = 0;
    bool HasContent = false;
    uint64_t Content = 0;
};
