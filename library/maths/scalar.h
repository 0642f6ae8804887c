#pragma once

#include <cstdint>
#include <type_traits>

// Degrees to radians, in single precision.
constexpr float DegreesToRadians = 3.1415927f / 180.0f;

// The value, or the end of the range that it lies beyond: the lower one where the ends cross. Not a number
// stays so.
template <class T>
constexpr T Clamp(T value, std::type_identity_t<T> min, std::type_identity_t<T> max)
{
    if (value > max)
        value = max;
    return value < min ? min : value;
}

// The same, but that not a number becomes the lower end.
template <class T>
constexpr T ClampNumber(T value, std::type_identity_t<T> min, std::type_identity_t<T> max)
{
    if (value > max)
        value = max;
    return value >= min ? value : min;
}

// Truncates. What no 32-bit integer can hold (not a number, infinite, too large) becomes the smallest one.
int32_t FloatToInt(double value);
