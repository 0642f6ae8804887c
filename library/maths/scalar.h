#pragma once

#include <cstdint>

// Degrees to radians, in single precision.
constexpr float DegreesToRadians = 3.1415927f / 180.0f;

// Truncates. What no 32-bit integer can hold (not a number, infinite, too large) becomes the smallest one.
int32_t FloatToInt(double value);
