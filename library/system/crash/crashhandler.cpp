#include "library/system/crash/crashhandler.h"

#include "library/system/crash/crashfile.h"
#include "library/system/crash/crashwriter.h"
#include "library/system/crash/signalstack.h"
#include "library/system/crash/threadstart.h"
#include "library/system/endsignal.h"

#include <atomic>
#include <cxxabi.h>
#include <exception>
#include <new>
#include <typeinfo>

#include <errno.h>
#include <fcntl.h>
#include <string.h>
#include <sys/syscall.h>
#include <unistd.h>

// What runs between a signal and the end of the program can rely on nothing of the process: the heap may be
// broken, any lock may be held, by the failing thread itself too. So it uses
//
// - storage that was there before: static objects, and a stack of its own (TSignalStack) that holds no large
// objects;
// - system calls and what the system's manual lists as safe in a signal handler: open, read, write, close,
//   unlink, mkdir, lseek, ftruncate, fsync, stat, fstat, time, getpid, getppid, getuid, getgid, pause,
//   sigaction, sigprocmask, raise, and the functions of memory and strings without a locale. Calls that the
//   list leaves out (futex, tgkill, getdents64, process_vm_readv, pread, gettid, arch_prctl, getrlimit,
//   pipe2) go to the system without anything of the library in between that locks or allocates;
// - memory that is not known to be good only through the system (ReadMemory, and write), which answers with
// an error;
// - formatting of its own (TCrashWriter): printf may allocate and takes locks.
//
// No lock is taken. The first failing thread claims the report with one exchange; a second one waits without
// end, as the first ends the program. All signals are blocked meanwhile: a fault of the report itself ends
// the program at once, by the system's own rule.

namespace {

// Those whose default action is the end with a core. The one for too large a file is not among them: it is a
// failed write and no failure of the program.
constexpr int Signals[] = {SIGSEGV, SIGBUS, SIGILL, SIGTRAP, SIGFPE, SIGABRT, SIGSYS, SIGQUIT, SIGXCPU};

TCrash Crash;
TCrashReporter Reporter = nullptr;
std::terminate_handler OldTerminate = nullptr;
// One report in a run.
std::atomic<bool> FirstCall(true);
// The thread that reports, or that is to; 0 for none.
std::atomic<pid_t> Owner(0);
// Descriptors for the report: a program that fails may have used up all that it may have.
constexpr int NumReserved = 4;
int Reserved[NumReserved];
// A failure that the program found itself, for the handler on the same thread.
struct TRequest
{
    bool IsThere;
    TFailureKind Kind;
    const char* Text;
} Request;

pid_t GetThread()
{
    return static_cast<pid_t>(syscall(SYS_gettid));
}

void Unblock(int signal)
{
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, signal);
    sigprocmask(SIG_UNBLOCK, &set, nullptr);
}

void Raise(int signal)
{
    syscall(SYS_tgkill, getpid(), GetThread(), signal);
}

// A pipe that nobody reads, or a disc that is full, must not end the report, nor what is said after it. The
// program ends soon: nobody needs the old actions.
void LetWritesFail()
{
    struct sigaction ignore = {};
    ignore.sa_handler = SIG_IGN;
    sigaction(SIGXFSZ, &ignore, nullptr);
    sigaction(SIGPIPE, &ignore, nullptr);
}

void Report(const siginfo_t& info, const ucontext_t& context)
{
    LetWritesFail();
    for (const int handle : Reserved)
        close(handle);
    TFailure& failure = Crash.Failure;
    failure.Info = info;
    failure.Thread.Take(context);
    failure.HasAccess = info.si_signo == SIGSEGV && GetAccess(info, context, failure.Access);
    failure.Kind = Request.IsThere ? Request.Kind : GetFailureKind(info);
    failure.Text = Request.IsThere ? Request.Text : nullptr;
    Crash.Others.Stop();
    Crash.Map.Read();
    if (IsStackOverflow(failure, Crash.Map))
        failure.Kind = FK_STACKOVERFLOW;
    Reporter(Crash);
}

void OnSignal(int signal, siginfo_t* info, void* context)
{
    const int error = errno;
    pid_t owner = 0;
    const ucontext_t& registers = *static_cast<const ucontext_t*>(context);
    const bool isRequest = Owner == GetThread() && Request.IsThere;
    if (!isRequest && !Owner.compare_exchange_strong(owner, GetThread()) && owner != GetThread())
        Crash.Others.WaitForEnd(registers);
    if (FirstCall.exchange(false))
        Report(*info, registers);
    if (!isRequest)
        EndBySignal(signal);
    Request.IsThere = false;
    Crash.Others.Resume();
    errno = error;
}

// The report is written first, as what is thrown is still where it was thrown.
void OnTerminate()
{
    const std::type_info* type = abi::__cxa_current_exception_type();
    if (type != nullptr && (*type == typeid(std::bad_alloc) || *type == typeid(std::bad_array_new_length))) {
        ReportCrash(FK_NOMEMORY, nullptr);
        EndBySignal(SIGABRT);
    }
    if (OldTerminate != nullptr)
        OldTerminate();
    EndBySignal(SIGABRT);
}

// Whoever started the program may have it survive its terminal. A fault the system never ignores.
bool IsLeftAlone(int signal)
{
    struct sigaction now = {};
    return (signal == SIGQUIT || signal == SIGXCPU) && sigaction(signal, nullptr, &now) == 0 &&
           now.sa_handler == SIG_IGN;
}

bool IsTraced()
{
    char status[4096];
    ReadSmallFile("/proc/self/status", status, sizeof(status));
    const char* tracer = strstr(status, "\nTracerPid:\t");
    return tracer != nullptr && tracer[12] != '0';
}

} // namespace

bool InstallCrashHandler(TCrashReporter reporter)
{
    if (!KnowsProcessor || IsTraced())
        return false;
    Reporter = reporter;
    // It lasts as long as the main thread.
    static const TSignalStack stack;
    static_cast<void>(stack);
    EquipThreads();
    for (int& handle : Reserved)
        handle = open("/dev/null", O_RDONLY | O_CLOEXEC);
    struct sigaction action = {};
    action.sa_sigaction = OnSignal;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    sigfillset(&action.sa_mask);
    for (int signal : Signals)
        if (!IsLeftAlone(signal))
            sigaction(signal, &action, nullptr);
    OldTerminate = std::set_terminate(OnTerminate);
    return true;
}

// A signal to itself brings the registers, and the handler's stack.
void ReportCrash(TFailureKind kind, const char* text)
{
    pid_t owner = 0;
    if (!Owner.compare_exchange_strong(owner, GetThread())) {
        if (owner == GetThread())
            EndBySignal(SIGABRT);
        // Another thread's failure ends the program.
        for (;;)
            pause();
    }
    Request = TRequest{true, kind, text};
    LetWritesFail();
    WriteDebug("raising exception\r\n");
    Unblock(SIGABRT);
    Raise(SIGABRT);
}
