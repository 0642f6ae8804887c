#pragma once

#include "library/containers/vector.h"

#include <type_traits>

// How a long array is filled. A vector by itself grows by eight, which suits the many short ones; for
// thousands of elements each growth copies all of them. With these the room doubles instead.

// Room for `count` more elements.
template <class T>
void MakeRoom(vector<T>& target, int count)
{
    const int needed = target.size() + count;
    if (needed <= target.capacity())
        return;
    const int doubled = 2 * target.size() + 8;
    target.reserve(doubled > needed ? doubled : needed);
}

template <class T>
void Append(vector<T>& target, const std::type_identity_t<T>& value)
{
    // The value may lie in the block that the growth frees.
    if (target.size() == target.capacity()) {
        T copy(value);
        MakeRoom(target, 1);
        target.push_back(copy);
        return;
    }
    target.push_back(value);
}

// `count` more elements of whatever value: where the first of them stands.
template <class T>
T* Extend(vector<T>& target, int count)
{
    const int first = target.size();
    MakeRoom(target, count);
    target.resize(first + count);
    return target.data() + first;
}
