#pragma once

#include "particles/effectgraph/nodeparameter.h"
#include "particles/effectgraph/valuetype.h"

// The floats of a port that nothing feeds, zeros behind them: a quaternion's fourth row is one of these.
class TFixedValue
{
public:
    // All zeros for null.
    explicit TFixedValue(const TNodeParameter* port)
    {
        if (port != nullptr)
            port->GetValue(Floats);
    }
    float operator[](int i) const { return i >= 0 && i < MaxValueFloats ? Floats[i] : 0.0f; }

private:
    float Floats[MaxValueFloats] = {};
};
