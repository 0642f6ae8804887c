#pragma once

#include <condition_variable>
#include <mutex>
#include <thread>

// Guards what two threads share: held for the lifetime of a TLock. A thread must not lock what it holds.
class TCriticalSection
{
private:
    friend class TLock;

    std::mutex Mutex;
};

class TLock
{
public:
    explicit TLock(TCriticalSection& section) : Lock(section.Mutex) {}

private:
    std::lock_guard<std::mutex> Lock;
};

// Set once by one thread, waited for by another.
class TEvent
{
public:
    void Set();
    // Whether it is set, after so many milliseconds at the latest.
    bool Wait(int milliseconds);

private:
    std::mutex Mutex;
    std::condition_variable Changed;
    bool IsSet = false;
};

// One piece of work beside the caller's.
class TThread
{
public:
    TThread() = default;
    // Waits for the end.
    ~TThread();
    TThread(const TThread&) = delete;
    TThread& operator=(const TThread&) = delete;

    // False if the system has no thread to give. What `work` uses must live until Join.
    bool Start(void (*work)(void* context), void* context);
    void Join();

private:
    std::thread Thread;
};
