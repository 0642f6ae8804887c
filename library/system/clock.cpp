#include "library/system/clock.h"

#include <time.h>

static uint32_t (*TickCountSource)() = nullptr;

uint64_t GetPerformanceCounter()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<uint64_t>(now.tv_sec) * 1000000000u + static_cast<uint64_t>(now.tv_nsec);
}

uint32_t GetTickCount()
{
    if (TickCountSource != nullptr)
        return TickCountSource();
    return static_cast<uint32_t>(GetPerformanceCounter() / 1000000u);
}

void SetTickCountSource(uint32_t (*source)())
{
    TickCountSource = source;
}

int64_t GetWallTime()
{
    return time(nullptr);
}

void FormatLocalTime(int64_t time, TString& text)
{
    const time_t seconds = static_cast<time_t>(time);
    tm parts{};
    char buffer[32] = "";
    if (localtime_r(&seconds, &parts) != nullptr)
        strftime(buffer, sizeof(buffer), "%Y-%m-%d %H:%M:%S", &parts);
    text = buffer;
}
