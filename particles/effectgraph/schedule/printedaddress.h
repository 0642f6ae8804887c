#pragma once

#include <cstdint>

// An address as the reports print it, cut to 32 bits.
inline uint32_t PrintedAddress(const void* address)
{
    return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(address));
}
