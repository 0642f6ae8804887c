#pragma once

#include <cstdint>

// Milliseconds of the monotonic clock, from an arbitrary start.
uint32_t GetTickCount();

// The high-resolution counter behind every random seed.
uint64_t GetPerformanceCounter();

// Replaces the system's tick count, for tests of what depends on time; null gives it back.
void SetTickCountSource(uint32_t (*source)());
