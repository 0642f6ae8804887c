#include "library/system/endsignal.h"

#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <unistd.h>

static constexpr int Signals[] = {SIGTERM, SIGHUP, SIGINT};

static int Pipe[2] = {-1, -1};
static volatile sig_atomic_t First = 0;

// May come in the middle of anything, on any thread: write() is all that it calls, and errno is whose it was.
// A full pipe has been readable for long.
static void OnSignal(int signal)
{
    const int error = errno;
    if (First == 0)
        First = signal;
    const char byte = 0;
    const ssize_t written = write(Pipe[1], &byte, 1);
    (void)written;
    errno = error;
}

static bool Watch(int signal)
{
    struct sigaction action
    {
    };
    if (sigaction(signal, nullptr, &action) != 0)
        return false;
    // Started to outlive its terminal, for example.
    if (action.sa_handler == SIG_IGN)
        return true;
    action = {};
    action.sa_handler = OnSignal;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    return sigaction(signal, &action, nullptr) == 0;
}

bool WatchEndSignals()
{
    if (Pipe[0] < 0 && pipe2(Pipe, O_CLOEXEC | O_NONBLOCK) != 0)
        return false;
    bool watched = true;
    for (int signal : Signals)
        watched = Watch(signal) && watched;
    return watched;
}

int GetEndSignalHandle()
{
    return Pipe[0];
}

int GetEndSignal()
{
    return First;
}

void EndBySignal(int signal)
{
    struct sigaction action
    {
    };
    action.sa_handler = SIG_DFL;
    sigemptyset(&action.sa_mask);
    sigaction(signal, &action, nullptr);
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, signal);
    sigprocmask(SIG_UNBLOCK, &set, nullptr);
    raise(signal);
    _exit(128 + signal);
}
