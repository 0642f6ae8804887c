#include "library/system/crash/threadstate.h"

#include "library/system/crash/crashfile.h"
#include "library/system/crash/crashwriter.h"

#include <cstdio>

#include <string.h>
#include <sys/syscall.h>
#include <sys/user.h>
#include <unistd.h>

uintptr_t TThreadState::GetStackPointer() const
{
    TShownRegisters shown;
    Show(shown);
    return shown.Sp;
}

uintptr_t TThreadState::GetInstructionPointer() const
{
    TShownRegisters shown;
    Show(shown);
    return shown.Ip;
}

#if defined(__x86_64__)

#include <asm/prctl.h>

static_assert(sizeof(user_regs_struct) == sizeof(elf_gregset_t));
static_assert(sizeof(_libc_fpstate) == sizeof(elf_fpregset_t));

void TThreadState::Take(const ucontext_t& context)
{
    const greg_t* from = context.uc_mcontext.gregs;
    const auto get = [from](int which) { return static_cast<unsigned long long>(from[which]); };
    user_regs_struct to = {};
    to.r8 = get(REG_R8);
    to.r9 = get(REG_R9);
    to.r10 = get(REG_R10);
    to.r11 = get(REG_R11);
    to.r12 = get(REG_R12);
    to.r13 = get(REG_R13);
    to.r14 = get(REG_R14);
    to.r15 = get(REG_R15);
    to.rdi = get(REG_RDI);
    to.rsi = get(REG_RSI);
    to.rbp = get(REG_RBP);
    to.rbx = get(REG_RBX);
    to.rdx = get(REG_RDX);
    to.rax = get(REG_RAX);
    to.rcx = get(REG_RCX);
    to.rsp = get(REG_RSP);
    to.rip = get(REG_RIP);
    to.eflags = get(REG_EFL);
    // No system call is to be repeated.
    to.orig_rax = ~0ull;
    const unsigned long long segments = get(REG_CSGSFS);
    to.cs = segments & 0xffff;
    to.gs = segments >> 16 & 0xffff;
    to.fs = segments >> 32 & 0xffff;
    to.ss = segments >> 48;
    syscall(SYS_arch_prctl, ARCH_GET_FS, &to.fs_base);
    syscall(SYS_arch_prctl, ARCH_GET_GS, &to.gs_base);
    memcpy(&Registers, &to, sizeof(to));
    HasFloats = context.uc_mcontext.fpregs != nullptr;
    if (HasFloats)
        memcpy(&Floats, context.uc_mcontext.fpregs, sizeof(Floats));
    Id = static_cast<pid_t>(syscall(SYS_gettid));
}

static uint64_t ReadNumber(const char* text)
{
    uint64_t number = 0;
    for (text += strncmp(text, "0x", 2) == 0 ? 2 : 0;; ++text) {
        if (*text >= '0' && *text <= '9')
            number = number * 16 + static_cast<uint64_t>(*text - '0');
        else if (*text >= 'a' && *text <= 'f')
            number = number * 16 + static_cast<uint64_t>(*text - 'a' + 10);
        else
            return number;
    }
}

static void FormatPath(char* path, size_t size, pid_t id)
{
    char digits[16];
    char* place = digits + sizeof(digits);
    *--place = 0;
    for (; id > 0; id /= 10)
        *--place = static_cast<char>('0' + id % 10);
    JoinTexts(path, size, "/proc/self/task/", place, "/syscall");
}

// "number a b c d e f sp pc"; "running" if there is nothing to tell.
bool TThreadState::TakeWaiting(pid_t id)
{
    char path[64];
    FormatPath(path, sizeof(path), id);
    char line[512];
    ReadSmallFile(path, line, sizeof(line));
    const char* last = strrchr(line, ' ');
    if (last == nullptr || last == line)
        return false;
    const char* before = last - 1;
    while (before > line && *before != ' ')
        --before;
    user_regs_struct to = {};
    to.rsp = ReadNumber(before + 1);
    to.rip = ReadNumber(last + 1);
    to.orig_rax = ~0ull;
    memcpy(&Registers, &to, sizeof(to));
    HasFloats = false;
    Id = id;
    return to.rsp != 0;
}

void TThreadState::Show(TShownRegisters& shown) const
{
    user_regs_struct from;
    memcpy(&from, &Registers, sizeof(from));
    shown = TShownRegisters{from.rax,
                            from.rbx,
                            from.rcx,
                            from.rdx,
                            from.rsi,
                            from.rdi,
                            from.rbp,
                            from.rsp,
                            from.rip,
                            from.eflags,
                            static_cast<unsigned>(from.cs),
                            static_cast<unsigned>(from.ss)};
}

uintptr_t TThreadState::GetThreadPointer() const
{
    user_regs_struct from;
    memcpy(&from, &Registers, sizeof(from));
    return from.fs_base;
}

// Of an address that is no address at all the processor tells nothing.
bool GetAccess(const siginfo_t& info, const ucontext_t& context, TAccess& access)
{
    constexpr greg_t PageFault = 14;
    constexpr greg_t WriteBit = 2;
    if (info.si_code <= 0 || info.si_code == SI_KERNEL || context.uc_mcontext.gregs[REG_TRAPNO] != PageFault)
        return false;
    access.Address = reinterpret_cast<uintptr_t>(info.si_addr);
    access.IsWrite = (context.uc_mcontext.gregs[REG_ERR] & WriteBit) != 0;
    return true;
}

#else

void TThreadState::Take(const ucontext_t&)
{
    memset(this, 0, sizeof(*this));
}

bool TThreadState::TakeWaiting(pid_t)
{
    return false;
}

void TThreadState::Show(TShownRegisters& shown) const
{
    shown = TShownRegisters();
}

uintptr_t TThreadState::GetThreadPointer() const
{
    return 0;
}

bool GetAccess(const siginfo_t&, const ucontext_t&, TAccess&)
{
    return false;
}

#endif
