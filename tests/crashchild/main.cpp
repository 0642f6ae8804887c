// A program that fails as its argument tells, with the crash report installed: crashchild WAY [MODE]. The
// functions have plain names, for a debugger's list of calls.

#include "library/containers/assertion.h"
#include "library/containers/string.h"
#include "library/system/thread.h"
#include "particles/cindermill/main/crashreport.h"
#include "particles/cindermill/main/settings.h"
#include "particles/cindermill/main/settingsstore.h"

#include <atomic>
#include <cfenv>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <stdexcept>
#include <thread>

#include <QtCore/QThread>

#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/ptrace.h>
#include <sys/stat.h>
#include <unistd.h>

#define FAILING extern "C" __attribute__((noinline, no_sanitize("address", "undefined")))

namespace {

std::atomic<int> Waiting(0);
std::atomic<bool> Never(false);
char* OwnPath = nullptr;
char* volatile HeapText = nullptr;

void Print(const char* text)
{
    if (write(STDOUT_FILENO, text, strlen(text)) < 0)
        _exit(99);
}

} // namespace

FAILING void FailByWriting()
{
    asm volatile("movl $1, 0x30");
}

FAILING void FailWithoutDescriptors()
{
    while (dup(STDOUT_FILENO) >= 0)
        ;
    FailByWriting();
}

FAILING void FailByReading()
{
    asm volatile("movl 0x40, %%eax" ::: "eax");
}

FAILING void FailByCalling()
{
    // The address is one that is never mapped.
    asm volatile("mov $0x50, %%rax\n\tcall *%%rax" ::: "rax");
}

// The processor tells no address for what can be none.
FAILING void FailByWildAddress()
{
    asm volatile("mov $0x1234567812345678, %%rax\n\tmovl $1, (%%rax)" ::: "rax");
}

FAILING int FailByRecursion(int depth)
{
    volatile char some[512];
    some[0] = static_cast<char>(depth);
    return FailByRecursion(depth + 1) + some[0];
}

// One function that needs more than there is.
FAILING int FailByLargeFrame()
{
    volatile char large[12 << 20];
    large[sizeof(large) / 2] = 1;
    large[0] = 2;
    return large[0] + large[sizeof(large) / 2];
}

FAILING void FailByIllegalInstruction()
{
    asm volatile("ud2");
}

FAILING void FailByBreakpoint()
{
    asm volatile("int3");
}

FAILING void FailByDivision()
{
    asm volatile("xor %%edx, %%edx\n\tmov $1, %%eax\n\txor %%ecx, %%ecx\n\tidiv %%ecx" ::
                     : "eax", "ecx", "edx");
}

FAILING void FailByFloatDivision()
{
    feenableexcept(FE_DIVBYZERO);
    volatile double zero = 0;
    volatile double result = 1 / zero;
    static_cast<void>(result);
}

FAILING void FailByLostPage()
{
    char path[] = "/tmp/crashchild-XXXXXX";
    const int file = mkstemp(path);
    unlink(path);
    if (ftruncate(file, 4096) != 0)
        _exit(98);
    char* memory = static_cast<char*>(mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0));
    if (ftruncate(file, 0) != 0)
        _exit(98);
    *reinterpret_cast<volatile char*>(memory) = 1;
}

// With the stack pointer in nowhere.
FAILING void FailWithoutStack()
{
    asm volatile("mov $0x123456789000, %rsp\n\tmovl $1, 0x30");
}

FAILING void FailByAssertion()
{
    ASSERT_TEXT_MSG(Never, "sun == shining", "it rains");
}

FAILING void FailByMemory()
{
#if defined(CINDERMILL_SANITIZED)
    throw std::bad_alloc();
#else
    volatile size_t size = size_t(1) << 62;
    char* volatile memory = new char[size];
    delete[] memory;
#endif
}

FAILING void FailByException()
{
    throw std::runtime_error("nobody catches this");
}

FAILING void FailByRaise(int signal)
{
    raise(signal);
}

// All of the heap, the allocator's own lists included.
FAILING void BreakTheHeap()
{
    FILE* maps = fopen("/proc/self/maps", "r");
    char line[4096];
    unsigned long begin = 0;
    unsigned long end = 0;
    while (fgets(line, sizeof(line), maps) != nullptr)
        if (strstr(line, "[heap]") != nullptr)
            sscanf(line, "%lx-%lx", &begin, &end);
    // The allocator remembers where its free memory begins, not how much there is.
    memset(reinterpret_cast<void*>(begin), 0xcd, end - begin);
}

FAILING void WaitInThread()
{
    ++Waiting;
    while (!Never)
        usleep(1000000);
}

// As drivers' threads do.
FAILING void WaitDeafly()
{
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, nullptr);
    ++Waiting;
    while (!Never)
        usleep(1000000);
}

FAILING void SpinInThread()
{
    ++Waiting;
    while (!Never) {
    }
}

namespace {

void StartThread(void (*work)())
{
    const int before = Waiting;
    std::thread(work).detach();
    while (Waiting == before)
        usleep(1000);
}

void PathBeside(const char* leaf, char (&path)[4096])
{
    snprintf(path, sizeof(path), "%.*s/%s", static_cast<int>(strrchr(OwnPath, '/') - OwnPath), OwnPath, leaf);
}

bool IsReportThere()
{
    struct stat info;
    char path[4096];
    PathBeside("ERRORLOG.TXT", path);
    return stat(path, &info) == 0 && info.st_size > 0;
}

void FailByOwnThread()
{
    TThread thread;
    thread.Start([](void*) { FailByRecursion(0); }, nullptr);
    thread.Join();
}

void FailByStandardThread()
{
    std::thread([] { FailByRecursion(0); }).join();
}

void FailByQtThread()
{
    QThread* const thread = QThread::create([] { FailByRecursion(0); });
    thread->start();
    thread->wait();
}

// As drivers are: loaded while the program runs.
void FailByLibrary(const char* function)
{
    void* const library = dlopen(CINDERMILL_CRASHLIBRARY, RTLD_NOW | RTLD_LOCAL);
    void* const found = library != nullptr ? dlsym(library, function) : nullptr;
    if (found == nullptr)
        _exit(96);
    reinterpret_cast<void (*)()>(found)();
}

// Threads that end in each way give back what they were given, and their ends are still told.
void* EndByReturn(void* argument)
{
    return argument;
}

void* EndByExit(void* argument)
{
    pthread_exit(argument);
}

void* EndByCancel(void*)
{
    for (;;)
        pause();
}

int CountMappings()
{
    FILE* maps = fopen("/proc/self/maps", "r");
    int count = 0;
    for (int c = 0; (c = fgetc(maps)) != EOF;)
        count += c == '\n';
    fclose(maps);
    return count;
}

bool EndThreads()
{
    bool isTold = true;
    for (int i = 0; i < 200; ++i)
        for (void* (*work)(void*) : {EndByReturn, EndByExit, EndByCancel}) {
            pthread_t thread;
            void* result = nullptr;
            if (pthread_create(&thread, nullptr, work, &thread) != 0)
                return false;
            if (work == EndByCancel)
                pthread_cancel(thread);
            pthread_join(thread, &result);
            isTold = isTold && result == (work == EndByCancel ? PTHREAD_CANCELED : &thread);
        }
    return isTold;
}

// What the loader last said is still there after the first thread of a program.
int KeepLoaderError()
{
    if (dlopen("/nowhere/at/all.so", RTLD_NOW) != nullptr)
        return 1;
    pthread_t thread;
    if (pthread_create(&thread, nullptr, EndByReturn, &thread) != 0)
        return 2;
    pthread_join(thread, nullptr);
    return dlerror() != nullptr ? 0 : 3;
}

int CountLeftStacks()
{
    if (!EndThreads())
        return 1;
    const int before = CountMappings();
    if (!EndThreads())
        return 1;
    // The library's own threads keep some of their stacks for the next ones.
    return CountMappings() < before + 50 ? 0 : 2;
}

// The second thread cannot be stopped, and fails as soon as the first one's report begins.
void FailTwice()
{
    // One of an earlier run is not waited for.
    char path[4096];
    PathBeside("ERRORLOG.TXT", path);
    unlink(path);
    StartThread([] {
        sigset_t some;
        sigfillset(&some);
        for (int signal : {SIGSEGV, SIGFPE, SIGILL})
            sigdelset(&some, signal);
        pthread_sigmask(SIG_BLOCK, &some, nullptr);
        ++Waiting;
        while (!IsReportThere()) {
        }
        Print("second fails\n");
        FailByDivision();
    });
    FailByWriting();
}

void FailTogether()
{
    static std::atomic<int> ready(0);
    for (int i = 0; i < 3; ++i)
        StartThread([] {
            ++ready;
            ++Waiting;
            while (ready < 4) {
            }
            FailByIllegalInstruction();
        });
    ++ready;
    while (ready < 4) {
    }
    FailByIllegalInstruction();
}

// In the box, as in that of the window system, other code runs.
void FailInTheBox()
{
    SetAssertBox([](const char* title, const char* text) {
        Print(IsReportThere() ? "report first\n" : "no report\n");
        Print(title);
        Print("|");
        Print(text);
        FailByAssertion();
    });
    FailByAssertion();
}

void FailWithBox()
{
    StartThread(WaitInThread);
    StartThread([] {
        // Goes on while the box is shown.
        static std::atomic<int> turns(0);
        ++Waiting;
        SetAssertBox([](const char*, const char* text) {
            const int before = turns;
            for (int i = 0; i < 5000 && turns == before; ++i)
                usleep(1000);
            Print(turns != before ? "others go on\n" : "others stand\n");
            Print(IsReportThere() ? "report first\n" : "no report\n");
            Print(text);
        });
        ++Waiting;
        while (!Never) {
            ++turns;
            usleep(1000);
        }
    });
    while (Waiting < 3)
        usleep(1000);
    FailByAssertion();
}

void SetMode(const char* mode)
{
    char path[4096];
    PathBeside("settings.ini", path);
    TSettings* const settings = new TSettings(OpenSettingsFile(path));
    settings->Load();
    if (strcmp(mode, "stored") != 0)
        settings->SetDebugMode(atoi(mode));
}

// Not in the program's file as it stands.
void FillHeap()
{
    constexpr char Shifted[] = "uijt!mjft!po!uif!ifbq";
    char* const text = new char[sizeof(Shifted)];
    for (size_t i = 0; i < sizeof(Shifted); ++i)
        text[i] = static_cast<char>(Shifted[i] - (Shifted[i] != 0 ? 1 : 0));
    HeapText = text;
}

int FailGuarded()
{
    TString text;
    const bool went = RunGuarded(FailByAssertion, text);
    Print(went ? "went\n" : text.Print());
    return IsReportThere() ? 1 : 0;
}

struct TWay
{
    const char* Name;
    void (*Fail)();
};

const TWay Ways[] = {
    {"write", FailByWriting},
    {"read", FailByReading},
    {"descriptors", FailWithoutDescriptors},
    {"call", FailByCalling},
    {"wild", FailByWildAddress},
    {"recursion", [] { FailByRecursion(0); }},
    {"large-frame", [] { FailByLargeFrame(); }},
    {"thread-recursion", FailByOwnThread},
    {"standard-thread", FailByStandardThread},
    {"qt-thread", FailByQtThread},
    {"library-thread", [] { FailByLibrary("FailInLibraryThread"); }},
    {"plain-thread", [] { FailByLibrary("FailInPlainThread"); }},
    {"deaf-thread", [] { FailByLibrary("FailInDeafThread"); }},
    {"illegal", FailByIllegalInstruction},
    {"breakpoint", FailByBreakpoint},
    {"division", FailByDivision},
    {"float-division", FailByFloatDivision},
    {"lost-page", FailByLostPage},
    {"no-stack", FailWithoutStack},
    {"abort", [] { abort(); }},
    {"quit", [] { FailByRaise(SIGQUIT); }},
    {"raised-fault", [] { FailByRaise(SIGSEGV); }},
    {"assertion", FailByAssertion},
    {"assertion-box", FailWithBox},
    {"assertion-in-box", FailInTheBox},
    {"memory", FailByMemory},
    {"exception", FailByException},
    {"twice", FailTwice},
    {"together", FailTogether},
    {"broken-heap",
     [] {
         BreakTheHeap();
         FailByWriting();
     }},
    {"broken-heap-assertion",
     [] {
         BreakTheHeap();
         FailByAssertion();
     }},
    {"threads",
     [] {
         StartThread(WaitInThread);
         StartThread(WaitDeafly);
         StartThread(SpinInThread);
         FailByWriting();
     }},
};

} // namespace

int main(int argc, char** argv)
{
    OwnPath = realpath("/proc/self/exe", nullptr);
    const char* way = argc > 1 ? argv[1] : "";
    if (strcmp(way, "unprotected-heap") == 0) {
        BreakTheHeap();
        return malloc(24) != nullptr ? 0 : 1;
    }
    if (strcmp(way, "traced") == 0)
        ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
    if (!TCrashReport::Install()) {
        Print("not installed\n");
        return 3;
    }
    if (argc > 2)
        SetMode(argv[2]);
    FillHeap();
    if (strcmp(way, "guarded") == 0)
        return FailGuarded();
    if (strcmp(way, "threads-end") == 0)
        return CountLeftStacks();
    if (strcmp(way, "loader-error") == 0)
        return KeepLoaderError();
    for (const TWay& one : Ways)
        if (strcmp(one.Name, way) == 0)
            one.Fail();
    return 97;
}
