#pragma once

#include "library/containers/string.h"

#include <cstdint>

// Milliseconds of the monotonic clock, from an arbitrary start.
uint32_t GetTickCount();

// The high-resolution counter behind every random seed.
uint64_t GetPerformanceCounter();

// Replaces the system's tick count, for tests of what depends on time; null gives it back.
void SetTickCountSource(uint32_t (*source)());

// Seconds since the epoch, in UTC.
int64_t GetWallTime();
// As a person reads it where the program runs: "2008-03-18 17:35:08".
void FormatLocalTime(int64_t time, TString& text);
