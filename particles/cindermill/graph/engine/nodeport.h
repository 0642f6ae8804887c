#pragma once

#include "particles/cindermill/graph/engine/portvalue.h"

#include <cstddef>

// How the values of a port are reached.
enum TPortAccess
{
    // They are copied as they stand.
    PA_PLAIN,
    // Each has to be converted.
    PW_CONVERTED,
    // Through the checked functions: somebody watches the port, or there is nothing behind it.
    PA_CHECKED
};

// Where the values of one port stand while its node goes over the particles: for the node classes, whose
// Execute loops over indices and calls Load and Store thousands of times a frame. So what is the same for all
// particles is found once, ahead of the loop, and the loop meets one kind of port only: floats at Base +
// index * Step.
//
// Values that cannot be used as they stand are staged, NumStaged at a time. A scalar that feeds a vector,
// say: for the particles 64 to 95 its values are first converted into Staged[0] to Staged[31], the loop reads
// them there, and what it writes to a staged output goes, converted, to the particles behind it.
//
// The loop goes on counting by the particles' indices. Therefore Base is where index 0 would stand and may
// lie ahead of the array: in the example 64 steps ahead of Staged, so that index 70 leads to Staged[6]. The
// same holds for an attribute's dense run in a ring, whose index 0 may be a place that the ring does not
// have.
struct TNodePort
{
    static constexpr int NumStaged = 32;

    // For the loop: the place where index 0 is or would be, and the bytes from one index to the next, 0 where
    // all particles share one value.
    uint8_t* Base = nullptr;
    ptrdiff_t Step = 0;
    // How many floats are copied, at least one, and how many zeros an output has behind them.
    int Floats = 1;
    int Zeros = 0;

    // What is found ahead of the loop.
    TPortAccess Access = PA_CHECKED;
    // The attribute at ring position 0, and the bytes from one position to the next.
    uint8_t* Data = nullptr;
    ptrdiff_t Stride = 0;
    // An input's types are those of its attribute and of the port; an output's, the other way round.
    int From = 0;
    int To = 0;
    // An input's, of `From`.
    int FromFloats = 0;
    // What a bypassed node's output takes its value from; -1 for zero.
    int BypassInput = -1;

    // Values on their way in or out. The first also holds the value of an input that is not wired, and takes
    // that of an output that nobody reads.
    TPortValue Staged[NumStaged];

    float* At(int index) const { return reinterpret_cast<float*>(Base + index * Step); }
    // One value of the port's own for all particles.
    void UseOwn(const TPortValue& value)
    {
        Staged[0] = value;
        Access = PA_PLAIN;
        Data = reinterpret_cast<uint8_t*>(Staged[0].GetFloats());
        Stride = 0;
        Floats = MaxValueFloats;
        Zeros = 0;
        UseAttribute(0);
    }
    bool IsOwn() const { return Data == reinterpret_cast<const uint8_t*>(Staged[0].GetFloats()); }
    // `position` is that of index 0.
    void UseAttribute(int position)
    {
        Base = reinterpret_cast<uint8_t*>(AttributeAt(position));
        Step = Stride;
    }
    // For `count` indices from `index` on, rising or falling by `step`. Returns the lowest of them, which is
    // the one that Staged[0] is for.
    int UseStaged(int index, int step, int count)
    {
        const int lowest = step > 0 ? index : index - (count - 1);
        Step = sizeof(TPortValue);
        Base = reinterpret_cast<uint8_t*>(Staged) - lowest * Step;
        Floats = MaxValueFloats;
        Zeros = 0;
        return lowest;
    }
    float* AttributeAt(int position) const { return reinterpret_cast<float*>(Data + position * Stride); }
};

// One to six floats. Unrolled, so that a value can live in registers.
inline void CopyFloats(const float* source, float* dest, int count)
{
    dest[0] = source[0];
    if (count == 1)
        return;
    dest[1] = source[1];
    if (count == 2)
        return;
    dest[2] = source[2];
    if (count == 3)
        return;
    dest[3] = source[3];
    if (count == 4)
        return;
    dest[4] = source[4];
    dest[5] = source[5];
}

// One to three zeros.
inline void ClearFloats(float* dest, int count)
{
    dest[0] = 0;
    if (count == 1)
        return;
    dest[1] = 0;
    if (count == 2)
        return;
    dest[2] = 0;
}
