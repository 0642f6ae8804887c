#pragma once

#include <type_traits>

// The least multiple of `to` that is not below the value.
template <class T>
constexpr T RoundUp(T value, std::type_identity_t<T> to)
{
    return (value + to - 1) / to * to;
}
