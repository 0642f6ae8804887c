#pragma once

#include "library/system/crash/threadstate.h"

#include <atomic>

// Holds the other threads of the process and has their registers. Static storage, as it is large; one in a
// program.
class TThreadStopper
{
public:
    static constexpr int MaxThreads = 1024;

    // Stops them; those that do not answer to signals are told of as far as the system does.
    void Stop();
    // They go on.
    void Resume();
    // The calling thread waits for the end of the program, and is one of those stopped.
    [[noreturn]] void WaitForEnd(const ucontext_t& context);

    int GetCount() const;
    // Null for one that has not finished telling.
    const TThreadState* Get(int i) const;

private:
    static void OnStop(int signal, siginfo_t* info, void* context);
    bool SendToNew();
    void Send(pid_t id);
    bool HasAnswered(pid_t id) const;
    bool IsAsked(pid_t id) const;
    void WaitForAnswers();
    void TakeSilent();
    int AddSlot();
    void Add(const ucontext_t& context);
    void WaitWhileHeld();

    // Apart, so that the large ones are not touched before they are needed.
    TThreadState States[MaxThreads];
    std::atomic<bool> IsReady[MaxThreads];
    std::atomic<int> NumSlots;
    // Those that were asked to stop, or would not hear it.
    pid_t Asked[MaxThreads];
    bool IsDeaf[MaxThreads];
    int NumAsked;
    // 1 while threads wait.
    std::atomic<int> Held;
    int Signal;
};
