#pragma once

#include <cstddef>

// A stack of its own for the signal handlers of the calling thread, for the object's lifetime: a thread that
// has used up its stack can then still tell of it. Must end on the thread that it began on.
class TSignalStack
{
public:
    TSignalStack();
    ~TSignalStack();
    TSignalStack(const TSignalStack&) = delete;
    TSignalStack& operator=(const TSignalStack&) = delete;

private:
    void* Memory;
    size_t Size;
    void* OldMemory = nullptr;
    size_t OldSize = 0;
    int OldFlags = 0;
};
