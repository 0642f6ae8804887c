#pragma once

#include <type_traits>

// The least multiple of `to` that is not below the value.
template <class T>
constexpr T RoundUp(T value, std::type_identity_t<T> to)
{
    return (value + to - 1) / to * to;
}

template <class T>
constexpr bool IsPowerOf2(T value)
{
    return value > 0 && (value & (value - 1)) == 0;
}

// Rounded down below zero, too.
template <class T>
constexpr T FloorOfQuotient(T value, std::type_identity_t<T> divisor)
{
    const T quotient = value / divisor;
    return value % divisor < 0 ? quotient - 1 : quotient;
}
