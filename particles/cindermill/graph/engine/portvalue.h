#pragma once

#include "particles/effectgraph/valuetype.h"

// A port's value, of whatever type; what was not read is 0. It has room for the largest type, as a port may
// be declared with another type than the one that a node class is written for.
class TPortValue
{
public:
    TPortValue() = default;
    // The floats given, zeros behind them.
    template <class... TFloats>
    explicit TPortValue(float first, TFloats... rest) : Value{first, rest...}
    {
    }

    float operator[](int i) const { return Value[i]; }
    float& operator[](int i) { return Value[i]; }
    const float* GetFloats() const { return Value; }
    float* GetFloats() { return Value; }

private:
    float Value[MaxValueFloats] = {};
};
