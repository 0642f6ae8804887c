#pragma once

#include "library/containers/log.h"

#include <cstddef>

// Text and bytes to an open file, through a buffer of its own. Formats by itself, as the library's printing
// may allocate and lock.
class TCrashWriter
{
public:
    // The file is not closed.
    explicit TCrashWriter(int handle) : Handle(handle) {}
    ~TCrashWriter() { Flush(); }
    TCrashWriter(const TCrashWriter&) = delete;
    TCrashWriter& operator=(const TCrashWriter&) = delete;

    // Knows %s, %d, %u, %x and %%, with "-", "0" and a width.
    void Print(const char* format, ...) CINDERMILL_PRINTF(2, 3);
    void Write(const void* bytes, size_t size);
    void Fill(size_t zeros);
    // Whether all that was written so far has reached the file.
    bool Flush();

private:
    struct TField
    {
        bool Left = false;
        bool Zeros = false;
        int Width = 0;
    };

    static const char* ReadField(const char* format, TField& field);
    void Put(char c);
    void PutPadded(const char* text, const TField& field);
    void PutNumber(unsigned long long number, unsigned base, bool negative, const TField& field);

    int Handle;
    size_t Used = 0;
    bool IsWhole = true;
    char Buffer[4096];
};

// A text for whoever reads the debug output.
void WriteDebug(const char* text);
