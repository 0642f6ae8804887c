#include "library/system/crash/signalstack.h"

#include <signal.h>
#include <sys/mman.h>
#include <unistd.h>

// What the handlers need, without the registers that the system itself puts there.
static constexpr size_t HandlerBytes = 256 * 1024;

static size_t GetRegisterBytes()
{
    const long told = sysconf(_SC_MINSIGSTKSZ);
    return told > 0 ? static_cast<size_t>(told) : 0;
}

// The lowest page is a guard. Pages that no handler uses cost nothing. Without memory the thread has no such
// stack.
TSignalStack::TSignalStack() : Memory(nullptr), Size(0)
{
    const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    const size_t size = page + (HandlerBytes + GetRegisterBytes() + page - 1) / page * page;
    void* memory =
        mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_STACK, -1, 0);
    if (memory == MAP_FAILED)
        return;
    mprotect(memory, page, PROT_NONE);
    stack_t own = {};
    own.ss_sp = static_cast<char*>(memory) + page;
    own.ss_size = size - page;
    stack_t old = {};
    if (sigaltstack(&own, &old) != 0) {
        munmap(memory, size);
        return;
    }
    Memory = memory;
    Size = size;
    OldMemory = old.ss_sp;
    OldSize = old.ss_size;
    OldFlags = old.ss_flags;
}

TSignalStack::~TSignalStack()
{
    if (Memory == nullptr)
        return;
    stack_t old = {};
    old.ss_sp = OldMemory;
    old.ss_size = OldSize;
    old.ss_flags = OldFlags;
    if (sigaltstack(&old, nullptr) == 0)
        munmap(Memory, Size);
}
