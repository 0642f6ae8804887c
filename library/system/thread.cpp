#include "library/system/thread.h"

#include <chrono>
#include <system_error>

void TEvent::Set()
{
    const std::lock_guard<std::mutex> lock(Mutex);
    IsSet = true;
    Changed.notify_all();
}

bool TEvent::Wait(int milliseconds)
{
    std::unique_lock<std::mutex> lock(Mutex);
    return Changed.wait_for(lock, std::chrono::milliseconds(milliseconds), [this] { return IsSet; });
}

TThread::~TThread()
{
    Join();
}

bool TThread::Start(void (*work)(void* context), void* context)
{
    Join();
    try {
        Thread = std::thread(work, context);
        return true;
    } catch (const std::system_error&) {
        return false;
    }
}

void TThread::Join()
{
    if (Thread.joinable())
        Thread.join();
}
