#pragma once

#include <cstdint>

// The nearest whole number within the limits, which are below a billion. Halves go up, wherever 0 lies, so
// that what is moved by whole numbers is rounded alike. What is not a number becomes the lower limit.
inline int64_t NearestWhole(double value, double limit)
{
    if (!(value > -limit))
        value = -limit;
    else if (value > limit)
        value = limit;
    // Truncation is towards 0.
    constexpr int64_t positive = int64_t(1) << 32;
    return static_cast<int64_t>(value + (static_cast<double>(positive) + 0.5)) - positive;
}
