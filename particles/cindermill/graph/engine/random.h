#pragma once

#include <cstdint>

// The engine's generator of random numbers.
class TRandom
{
public:
    // Seeded from the performance counter, or from what SetDefaultSeed gave in its place.
    TRandom();
    TRandom(uint32_t s0, uint32_t s1) : S0(s0), S1(s1) {}

    void SetSeed(uint32_t a) { S0 = a; }
    void SetSequence(uint32_t b) { S1 = b; }
    void Next();
    uint32_t NextUnsigned();
    // 0 to n - 1; n 0 gives 0.
    uint32_t Range(uint32_t n);
    // n a power of two.
    uint32_t Mask(uint32_t n);
    // In [0, 1), in steps of 1 / n.
    double Unit(uint32_t n);
    // Of length 1; a zero draw gives (1, 0, 0).
    void Direction(float out[3], uint32_t n);

    // Makes every default seed come from this word in place of the performance counter's low one, so that a
    // run can be repeated, and seeds the generators of all node classes anew.
    static void SetDefaultSeed(uint32_t low);
    static void ClearDefaultSeed();

private:
    void SeedDefault();

    uint32_t S0;
    uint32_t S1;
};

// The generator that all nodes of a class share: seeded at first use, kept for the life of the process.
class TClassRandom
{
public:
    TRandom& Get();

private:
    friend class TRandom;
    TRandom* Generator = nullptr;
    TClassRandom* NextClass = nullptr;
};
