#pragma once

#include <cstdint>

// The hash FNV-1a, in two sizes, which goes on byte by byte from its start. It tells apart what nobody has
// made to be alike.
constexpr uint32_t FnvStart32 = 2166136261u;
constexpr uint64_t FnvStart64 = 14695981039346656037u;

constexpr uint32_t AddToFnv(uint32_t hash, uint8_t byte)
{
    return (hash ^ byte) * 16777619u;
}

constexpr uint64_t AddToFnv(uint64_t hash, uint8_t byte)
{
    return (hash ^ byte) * 1099511628211u;
}

inline uint64_t AddToFnv(uint64_t hash, const void* bytes, int count)
{
    for (int i = 0; i < count; ++i)
        hash = AddToFnv(hash, static_cast<const uint8_t*>(bytes)[i]);
    return hash;
}
