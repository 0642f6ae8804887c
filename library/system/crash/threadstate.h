#pragma once

#include <cstdint>

#include <signal.h>
#include <sys/procfs.h>
#include <sys/types.h>
#include <ucontext.h>

// Whether the registers of this processor are known here.
#if defined(__x86_64__)
constexpr bool KnowsProcessor = true;
#else
constexpr bool KnowsProcessor = false;
#endif

// The registers that a person reads.
struct TShownRegisters
{
    uint64_t Ax, Bx, Cx, Dx, Si, Di, Bp, Sp, Ip, Flags;
    unsigned Cs, Ss;
};

// The registers of a thread, as a debugger wants them.
struct TThreadState
{
    pid_t Id;
    bool HasFloats;
    elf_gregset_t Registers;
    elf_fpregset_t Floats;

    // In that thread, from what its handler was given.
    void Take(const ucontext_t& context);
    // From outside: of a thread that waits in a system call and answers to no signal. False if it does not
    // wait.
    bool TakeWaiting(pid_t id);
    void Show(TShownRegisters& shown) const;
    uintptr_t GetStackPointer() const;
    uintptr_t GetInstructionPointer() const;
    // Where the thread's own data is; 0 if unknown.
    uintptr_t GetThreadPointer() const;
};

// What the processor tells of an access that failed; false if the failure is none.
struct TAccess
{
    uintptr_t Address;
    bool IsWrite;
};
bool GetAccess(const siginfo_t& info, const ucontext_t& context, TAccess& access);
