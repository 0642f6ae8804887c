#pragma once

#include "library/containers/assertion.h"
#include "library/containers/log.h"

#include <cstddef>
#include <new>

// A growing array. All slots of the allocation are constructed elements, used or not; growth is by exactly
// eight. Indices are ints, as everywhere in the system.
template <class T>
class vector
{
public:
    using iterator = T*;
    using const_iterator = const T*;

    vector() = default;
    // Delegates, so that an element's failing copy frees the block.
    vector(const vector& other) : vector() { *this = other; }
    vector(vector&& other) noexcept : _First(other._First), _Last(other._Last), _End(other._End)
    {
        other._First = other._Last = other._End = nullptr;
    }
    ~vector() { delete[] _First; }

    vector& operator=(const vector& other)
    {
        if (this == &other)
            return *this;
        const int count = other.size();
        if (size() < count) {
            // The other may live in an element of this one, so the old block goes last.
            vector copy;
            copy._First = Allocate(count, "_First != 0");
            copy._Last = copy._End = copy._First + count;
            for (int i = 0; i < count; ++i)
                copy._First[i] = other._First[i];
            swap(copy);
            return *this;
        }
        for (int i = 0; i < count; ++i)
            _First[i] = other._First[i];
        _Last = _First + count;
        return *this;
    }
    vector& operator=(vector&& other) noexcept
    {
        swap(other);
        return *this;
    }
    void swap(vector& other) noexcept
    {
        Exchange(_First, other._First);
        Exchange(_Last, other._Last);
        Exchange(_End, other._End);
    }

    int size() const { return static_cast<int>(_Last - _First); }
    int capacity() const { return static_cast<int>(_End - _First); }
    bool empty() const { return _Last == _First; }
    iterator begin() { return _First; }
    iterator end() { return _Last; }
    const_iterator begin() const { return _First; }
    const_iterator end() const { return _Last; }
    T* data() { return _First; }
    const T* data() const { return _First; }

    T& operator[](int n)
    {
        ASSERT_TEXT(n >= 0 && n < size(), "n>=0 && n<size()");
        return _First[n];
    }
    const T& operator[](int n) const
    {
        ASSERT_TEXT(n >= 0 && n < size(), "n>=0 && n<size()");
        return _First[n];
    }
    // No check: the vector must not be empty.
    T& back() { return _Last[-1]; }
    const T& back() const { return _Last[-1]; }

    void push_back(const T& value)
    {
        if (_Last == _End) {
            // The value may lie in the block that the growth frees.
            T copy(value);
            reserve(size() + 8);
            *_Last++ = static_cast<T&&>(copy);
            return;
        }
        *_Last++ = value;
    }
    void pop_back() { erase(_Last - 1); }
    void clear() { _Last = _First; }
    void reserve(int n)
    {
        if (n <= capacity())
            return;
        const int used = size();
        T* block = Allocate(n, "newval != 0");
        for (int i = 0; i < used; ++i)
            block[i] = static_cast<T&&>(_First[i]);
        delete[] _First;
        _First = block;
        _Last = _First + used;
        _End = _First + n;
    }
    // New elements up to n are whatever the slots held: default-constructed, or left over from before a
    // clear.
    void resize(int n)
    {
        reserve(n);
        _Last = _First + n;
    }
    iterator erase(iterator it)
    {
        --_Last;
        for (T* p = it; p < _Last; ++p)
            *p = static_cast<T&&>(p[1]);
        // The slot given up keeps the last element's value, which a later resize shows again.
        if (it < _Last)
            *_Last = _Last[-1];
        return it;
    }
    // Puts the value in front of `it`; returns where it stands.
    iterator insert(iterator it, const T& value)
    {
        const int at = static_cast<int>(it - _First);
        T copy(value);
        push_back(copy);
        for (int i = size() - 1; i > at; --i)
            _First[i] = static_cast<T&&>(_First[i - 1]);
        _First[at] = static_cast<T&&>(copy);
        return _First + at;
    }
    iterator find(const T& value)
    {
        T* p = _First;
        while (p != _Last && !(*p == value))
            ++p;
        return p;
    }
    const_iterator find(const T& value) const { return const_cast<vector*>(this)->find(value); }
    // The position of the first equal element, or -1.
    int index_of(const T& value) const
    {
        const T* p = find(value);
        return p == _Last ? -1 : static_cast<int>(p - _First);
    }

private:
    static T* Allocate(int n, const char* expression)
    {
        T* block = n >= 0 ? new (std::nothrow) T[static_cast<size_t>(n)]() : nullptr;
        ASSERT_TEXT_MSG(block != nullptr, expression, TempFormat("new failed. size=%d", n));
        return block;
    }
    static void Exchange(T*& a, T*& b)
    {
        T* c = a;
        a = b;
        b = c;
    }

    T* _First = nullptr;
    T* _Last = nullptr;
    T* _End = nullptr;
};
