#pragma once

#include <cstdint>

#include <limits.h>

// What a report tells of the machine and the person, and where it goes. Taken while all is well, as some of
// it needs the library.
struct TSystemFacts
{
    char Program[PATH_MAX];
    char ProgramFolder[PATH_MAX];
    // The program's own among the user's folders; "" if there is none.
    char StateFolder[PATH_MAX];
    char User[256];
    char System[64];
    unsigned Version[3];
    int Processors;
    int ProcessorType;
    // Seconds to add to the universal time.
    long UtcOffset;

    void Take();
};

// In megabytes.
struct TMemoryFacts
{
    int PercentUsed = 0;
    int Physical = 0;
    int PhysicalFree = 0;
    int Paging = 0;
    int PagingFree = 0;
    int Address = 0;
    int AddressFree = 0;

    // With system calls only.
    void Read();
};

struct TDateTime
{
    int Year;
    int Month;
    int Day;
    int Hour;
    int Minute;
    int Second;

    // Of the seconds since the epoch. The library's function may lock and read files.
    explicit TDateTime(int64_t seconds);
};
