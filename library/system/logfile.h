#pragma once

#include <cstdint>

// Takes the log into a file for the object's lifetime, away from the standard error. The file of the run
// before is kept beside it, under its name with ".old" behind it.
class TLogFile
{
public:
    // What the file holds at most; what comes after that is dropped.
    static constexpr int64_t MaxBytes = 16 << 20;

    TLogFile() = default;
    ~TLogFile();
    TLogFile(const TLogFile&) = delete;
    TLogFile& operator=(const TLogFile&) = delete;

    // False, with the log left where it goes, if the file cannot be written.
    bool Open(const char* path);

private:
    static void Write(const char* text, void* data);

    int Handle = -1;
    int64_t NumBytes = 0;
};
