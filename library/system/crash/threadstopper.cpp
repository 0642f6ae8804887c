#include "library/system/crash/threadstopper.h"

#include "library/system/crash/crashfile.h"

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <linux/futex.h>
#include <signal.h>
#include <string.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

namespace {

constexpr int MaxMilliseconds = 1000;

TThreadStopper* Stopper = nullptr;

void Wait(std::atomic<int>& word, int value, int milliseconds)
{
    const timespec time = {milliseconds / 1000, milliseconds % 1000 * 1000000L};
    syscall(SYS_futex, &word, FUTEX_WAIT_PRIVATE, value, &time, nullptr, 0);
}

pid_t GetThread()
{
    return static_cast<pid_t>(syscall(SYS_gettid));
}

// 0 for what is no number.
pid_t ReadId(const char* name)
{
    pid_t id = 0;
    for (; *name >= '0' && *name <= '9'; ++name)
        id = id * 10 + (*name - '0');
    return *name == 0 ? id : 0;
}

// Threads of drivers block all signals.
bool BlocksSignal(const char* name, int signal)
{
    char path[64];
    char status[4096];
    if (!JoinTexts(path, sizeof(path), "/proc/self/task/", name, "/status"))
        return false;
    ReadSmallFile(path, status, sizeof(status));
    const char* line = strstr(status, "\nSigBlk:");
    if (line == nullptr)
        return false;
    uint64_t mask = 0;
    for (line += 8; *line != 0 && *line != '\n'; ++line) {
        if (*line >= '0' && *line <= '9')
            mask = mask << 4 | static_cast<uint64_t>(*line - '0');
        else if (*line >= 'a' && *line <= 'f')
            mask = mask << 4 | static_cast<uint64_t>(*line - 'a' + 10);
    }
    return (mask >> (signal - 1) & 1) != 0;
}

} // namespace

void TThreadStopper::Stop()
{
    Stopper = this;
    Signal = SIGRTMAX - 1;
    NumAsked = 0;
    Held = 1;
    struct sigaction action = {};
    action.sa_sigaction = &TThreadStopper::OnStop;
    action.sa_flags = SA_SIGINFO | SA_RESTART | SA_ONSTACK;
    sigfillset(&action.sa_mask);
    sigaction(Signal, &action, nullptr);
    // A thread that has not stopped yet may begin another.
    constexpr int MaxPasses = 4;
    for (int pass = 0; pass < MaxPasses && SendToNew(); ++pass)
        WaitForAnswers();
    TakeSilent();
}

void TThreadStopper::Resume()
{
    Held = 0;
    NumSlots = 0;
    syscall(SYS_futex, &Held, FUTEX_WAKE_PRIVATE, INT_MAX, nullptr, nullptr, 0);
}

void TThreadStopper::WaitForEnd(const ucontext_t& context)
{
    Add(context);
    std::atomic<int> never(0);
    for (;;)
        Wait(never, 0, MaxMilliseconds);
}

int TThreadStopper::GetCount() const
{
    const int count = NumSlots;
    return count < MaxThreads ? count : MaxThreads;
}

const TThreadState* TThreadStopper::Get(int i) const
{
    return IsReady[i] ? &States[i] : nullptr;
}

void TThreadStopper::OnStop(int, siginfo_t*, void* context)
{
    const int error = errno;
    if (Stopper->Held == 1) {
        Stopper->Add(*static_cast<const ucontext_t*>(context));
        Stopper->WaitWhileHeld();
    }
    errno = error;
}

void TThreadStopper::WaitWhileHeld()
{
    while (Held == 1)
        Wait(Held, 1, MaxMilliseconds);
}

// Whether there was a thread that had not been asked yet.
bool TThreadStopper::SendToNew()
{
    const int folder = open("/proc/self/task", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0)
        return false;
    const int before = NumAsked;
    const pid_t own = GetThread();
    alignas(dirent64) char buffer[4096];
    for (;;) {
        const long got = syscall(SYS_getdents64, folder, buffer, sizeof(buffer));
        if (got <= 0)
            break;
        for (long place = 0; place < got;) {
            const dirent64& entry = *reinterpret_cast<const dirent64*>(buffer + place);
            place += entry.d_reclen;
            const pid_t id = ReadId(entry.d_name);
            if (id == 0 || id == own || IsAsked(id) || NumAsked == MaxThreads)
                continue;
            IsDeaf[NumAsked] = BlocksSignal(entry.d_name, Signal);
            Asked[NumAsked++] = id;
            if (!IsDeaf[NumAsked - 1])
                Send(id);
        }
    }
    close(folder);
    return NumAsked > before;
}

void TThreadStopper::Send(pid_t id)
{
    // Gone meanwhile: nothing to wait for.
    if (syscall(SYS_tgkill, getpid(), id, Signal) != 0)
        IsDeaf[NumAsked - 1] = true;
}

bool TThreadStopper::IsAsked(pid_t id) const
{
    for (int i = 0; i < NumAsked; ++i)
        if (Asked[i] == id)
            return true;
    return false;
}

bool TThreadStopper::HasAnswered(pid_t id) const
{
    for (int i = 0; i < GetCount(); ++i)
        if (IsReady[i] && States[i].Id == id)
            return true;
    return false;
}

void TThreadStopper::WaitForAnswers()
{
    std::atomic<int> never(0);
    for (int waited = 0; waited < MaxMilliseconds; ++waited) {
        bool all = true;
        for (int i = 0; i < NumAsked && all; ++i)
            all = IsDeaf[i] || HasAnswered(Asked[i]);
        if (all)
            return;
        Wait(never, 0, 1);
    }
}

void TThreadStopper::TakeSilent()
{
    for (int i = 0; i < NumAsked; ++i) {
        TThreadState state;
        if (HasAnswered(Asked[i]) || !state.TakeWaiting(Asked[i]))
            continue;
        const int slot = AddSlot();
        if (slot < 0)
            return;
        States[slot] = state;
        IsReady[slot] = true;
    }
}

// -1 if there is none left.
int TThreadStopper::AddSlot()
{
    const int slot = NumSlots.fetch_add(1);
    if (slot >= MaxThreads)
        return -1;
    IsReady[slot] = false;
    return slot;
}

void TThreadStopper::Add(const ucontext_t& context)
{
    const int slot = AddSlot();
    if (slot < 0)
        return;
    States[slot].Take(context);
    IsReady[slot] = true;
}
