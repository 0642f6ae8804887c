#pragma once

#include "particles/cindermill/graph/engine/portvalue.h"

#include <cstddef>

// How the values of a port are reached.
enum TPortWay
{
    // They are copied as they stand.
    PW_PLAIN,
    // Each has to be converted.
    PW_CONVERTED,
    // Through the checked functions: somebody watches the port, or there is nothing behind it.
    PW_CHECKED
};

// Where the values of one port stand while its node goes over the particles. What is the same for all
// particles is found once, ahead of the loop; values that cannot be used as they stand are staged: brought
// into a shape that can, some at a time, so that the loop itself meets one kind of port only.
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
    TPortWay Way = PW_CHECKED;
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
        Way = PW_PLAIN;
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
    // For `count` indices from `index` on; the lowest of them, for which the first value stands.
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
