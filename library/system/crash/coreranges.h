#pragma once

#include "library/system/crash/failure.h"

enum TCoreContents
{
    // The stacks, and what a debugger needs to tell the modules.
    CC_STACKS,
    // All memory that can be read.
    CC_ALL
};

constexpr uintptr_t PageSize = 4096;

struct TCoreRange
{
    uintptr_t Begin;
    uintptr_t End;
    const TMapping* Mapping;
};

// The memory that goes into a core, by ascending addresses. Static storage, as it is large.
class TCoreRanges
{
public:
    void Take(const TCrash& crash, TCoreContents contents);
    int GetCount() const { return Count; }
    const TCoreRange& Get(int i) const { return Ranges[i]; }

private:
    void TakeAll();
    void TakeThread(const TThreadState& thread);
    void TakeModules();
    void TakeLoader();
    void Add(uintptr_t begin, uintptr_t end);
    void Insert(const TCoreRange& range);

    // The number of parts has 16 bits in the file.
    static constexpr int MaxRanges = 65000;

    const TCrash* Crash;
    TCoreRange Ranges[MaxRanges];
    int Count;
};
