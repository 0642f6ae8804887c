#include "library/system/crash/threadstart.h"

#include "library/system/crash/signalstack.h"

#include <atomic>
#include <initializer_list>

#include <dlfcn.h>
#include <errno.h>
#include <pthread.h>
#include <signal.h>
#include <stdlib.h>
#include <threads.h>

// The program has the two functions of the system's library by which threads are started. It stands in front
// of all libraries where they look for these names, so that their threads begin here too.
//
// Nothing here needs an initialisation: a library may start a thread before main.

#if defined(__clang__) && defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) || __has_feature(memory_sanitizer)
#define CINDERMILL_LEAVES_THREADS
#endif
#endif

#if defined(CINDERMILL_LEAVES_THREADS)

void EquipThreads() {}

#else

namespace {

std::atomic<bool> IsEquipping(false);

// The result is what the thread leaves to whoever waits for it.
template <class TResult>
struct TThreadStart
{
    TResult (*Work)(void*);
    void* Argument;
};

// A fault whose signal is blocked ends the program at once. Whoever starts a thread with all signals blocked
// means those that the system sends.
void UnblockFaults()
{
    sigset_t faults;
    sigemptyset(&faults);
    for (const int signal : {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGTRAP, SIGSYS})
        sigaddset(&faults, signal);
    pthread_sigmask(SIG_UNBLOCK, &faults, nullptr);
}

// The stack goes as the work ends: by a return, by pthread_exit, or cancelled.
template <class TResult>
TResult RunEquipped(void* start)
{
    const TThreadStart<TResult> own = *static_cast<TThreadStart<TResult>*>(start);
    free(start);
    UnblockFaults();
    const TSignalStack stack;
    return own.Work(own.Argument);
}

using TPosixCreate = int (*)(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
using TPlainCreate = int (*)(thrd_t*, thrd_start_t, void*);

std::atomic<TPosixCreate> PosixCreate(nullptr);
std::atomic<TPlainCreate> PlainCreate(nullptr);

template <class TFunction>
TFunction FindNext(std::atomic<TFunction>& found, const char* name)
{
    TFunction function = found;
    if (function == nullptr) {
        function = reinterpret_cast<TFunction>(dlsym(RTLD_NEXT, name));
        found = function;
    }
    return function;
}

TPosixCreate FindPosixCreate()
{
    return FindNext(PosixCreate, "pthread_create");
}

TPlainCreate FindPlainCreate()
{
    return FindNext(PlainCreate, "thrd_create");
}

// By way of RunEquipped; without memory for that, as it was asked for.
template <class TResult, class TCreate>
int StartThread(const TCreate& create, TResult (*work)(void*), void* argument)
{
    void* const memory = IsEquipping ? malloc(sizeof(TThreadStart<TResult>)) : nullptr;
    if (memory == nullptr)
        return create(work, argument);
    *static_cast<TThreadStart<TResult>*>(memory) = TThreadStart<TResult>{work, argument};
    const int fault = create(RunEquipped<TResult>, memory);
    if (fault != 0)
        free(memory);
    return fault;
}

} // namespace

// The loader is asked now, and not by the first thread that starts another: that one may be in the
// constructor of a library, with the loader waiting, and it may yet ask what the loader last said. Who starts
// a thread before this asks all the same.
void EquipThreads()
{
    FindPosixCreate();
    FindPlainCreate();
    IsEquipping = true;
}

extern "C" __attribute__((visibility("default"))) int pthread_create(pthread_t* thread,
                                                                     const pthread_attr_t* attributes,
                                                                     void* (*work)(void*),
                                                                     void* argument) noexcept
{
    const TPosixCreate create = FindPosixCreate();
    if (create == nullptr)
        return EAGAIN;
    return StartThread(
        [&](void* (*start)(void*), void* passed) { return create(thread, attributes, start, passed); }, work,
        argument);
}

// The system's own does not call the one above.
extern "C" __attribute__((visibility("default"))) int thrd_create(thrd_t* thread, thrd_start_t work,
                                                                  void* argument)
{
    const TPlainCreate create = FindPlainCreate();
    if (create == nullptr)
        return thrd_error;
    return StartThread([&](thrd_start_t start, void* passed) { return create(thread, start, passed); }, work,
                       argument);
}

#endif
