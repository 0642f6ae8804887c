#pragma once

#include "library/containers/vector.h"

#include <cstdint>

class TClassRandom;

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
    friend class TRandomRun;
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
    friend class TRandomRun;
    TRandom* Generator = nullptr;
    TClassRandom* NextClass = nullptr;
};

// The draws of one run of an effect, so that it can be repeated whatever else draws in between: while it is
// switched in, the generators of all node classes go on from where this run left them.
class TRandomRun
{
public:
    // All generators begin from this word.
    void Restart(uint32_t seed);
    // In pairs, one run at a time.
    void Enter();
    void Leave();

private:
    struct TState
    {
        TClassRandom* Class;
        TRandom Random;
    };

    static void Store(vector<TState>& states);
    static const TRandom* Find(const vector<TState>& states, const TClassRandom* wanted);

    uint32_t Seed = 0;
    // Of this run, and what the others left while this one is in.
    vector<TState> Own;
    vector<TState> Others;
    bool WasFixed = false;
    uint32_t FixedLow = 0;
};
