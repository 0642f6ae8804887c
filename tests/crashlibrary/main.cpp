// A library that knows nothing of the program that loads it, and starts threads as drivers do. Each fails by
// using up its stack.

#include <csignal>

#include <pthread.h>
#include <threads.h>

#define FAILING extern "C" __attribute__((noinline, no_sanitize("address", "undefined")))

FAILING int FailByLibraryRecursion(int depth)
{
    volatile char some[512];
    some[0] = static_cast<char>(depth);
    return FailByLibraryRecursion(depth + 1) + some[0];
}

static void* FailInThread(void*)
{
    FailByLibraryRecursion(0);
    return nullptr;
}

static int FailInPlain(void*)
{
    return FailByLibraryRecursion(0);
}

extern "C" __attribute__((visibility("default"))) void FailInLibraryThread()
{
    pthread_t thread;
    if (pthread_create(&thread, nullptr, FailInThread, nullptr) == 0)
        pthread_join(thread, nullptr);
}

extern "C" __attribute__((visibility("default"))) void FailInPlainThread()
{
    thrd_t thread;
    if (thrd_create(&thread, FailInPlain, nullptr) == thrd_success)
        thrd_join(thread, nullptr);
}

// As drivers do, so that no signal of the program comes to their threads.
extern "C" __attribute__((visibility("default"))) void FailInDeafThread()
{
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, &before);
    pthread_t thread;
    const bool started = pthread_create(&thread, nullptr, FailInThread, nullptr) == 0;
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    if (started)
        pthread_join(thread, nullptr);
}
