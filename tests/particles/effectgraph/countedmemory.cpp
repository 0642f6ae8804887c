#include "countedmemory.h"

#include <cstdlib>
#include <new>

#if !defined(CINDERMILL_SANITIZED)

static size_t AllocatedBytes = 0;

size_t GetAllocatedBytes()
{
    return AllocatedBytes;
}

void* operator new(std::size_t size)
{
    AllocatedBytes += size;
    void* memory = std::malloc(size != 0 ? size : 1);
    if (memory == nullptr)
        throw std::bad_alloc();
    return memory;
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

#endif
