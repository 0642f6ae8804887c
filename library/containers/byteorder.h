#pragma once

#include <cstdint>

// Numbers as they stand in files and in a console's memory, whatever this machine's own order is.

inline uint32_t LittleU32(const uint8_t* p)
{
    return p[0] | static_cast<uint32_t>(p[1]) << 8 | static_cast<uint32_t>(p[2]) << 16 |
           static_cast<uint32_t>(p[3]) << 24;
}

inline uint32_t BigU32(const uint8_t* p)
{
    return static_cast<uint32_t>(p[0]) << 24 | static_cast<uint32_t>(p[1]) << 16 |
           static_cast<uint32_t>(p[2]) << 8 | p[3];
}

inline uint32_t BigU16(const uint8_t* p)
{
    return static_cast<uint32_t>(p[0]) << 8 | p[1];
}

inline void PutLittleU32(uint8_t* p, uint32_t value)
{
    for (int i = 0; i < 4; ++i)
        p[i] = static_cast<uint8_t>(value >> (8 * i));
}

inline void PutBigU32(uint8_t* p, uint32_t value)
{
    for (int i = 0; i < 4; ++i)
        p[i] = static_cast<uint8_t>(value >> (24 - 8 * i));
}
