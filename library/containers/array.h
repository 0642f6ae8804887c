#pragma once

#include "library/containers/assertion.h"
#include "library/containers/log.h"

#include <cstddef>
#include <new>

// A block of exactly as many elements as asked for. Indexing is not checked.
template <class T>
class array
{
public:
    array() = default;
    array(const array& other) : array() { *this = other; }
    ~array() { delete[] _First; }
    array& operator=(const array& other)
    {
        if (this == &other)
            return *this;
        array copy;
        copy.resize(other.size());
        for (int i = 0; i < other.size(); ++i)
            copy._First[i] = other._First[i];
        swap(copy);
        return *this;
    }

    void swap(array& other) noexcept
    {
        T* first = _First;
        T* end = _End;
        _First = other._First;
        _End = other._End;
        other._First = first;
        other._End = end;
    }

    int size() const { return static_cast<int>(_End - _First); }
    T* begin() { return _First; }
    T* end() { return _End; }
    const T* begin() const { return _First; }
    const T* end() const { return _End; }
    T* data() { return _First; }
    const T* data() const { return _First; }
    T& operator[](int n) { return _First[n]; }
    const T& operator[](int n) const { return _First[n]; }

    // Always allocates anew, keeping what fits.
    void resize(int n)
    {
        T* block = Allocate(n);
        const int kept = n < size() ? n : size();
        for (int i = 0; i < kept; ++i)
            block[i] = static_cast<T&&>(_First[i]);
        delete[] _First;
        _First = block;
        _End = _First + n;
    }

private:
    static T* Allocate(int n)
    {
        T* newval = n >= 0 ? new (std::nothrow) T[static_cast<size_t>(n)]() : nullptr;
        ASSERT_TEXT_MSG(newval != nullptr, "newval != 0", TempFormat("new failed. size=%d", n));
        return newval;
    }

    T* _First = nullptr;
    T* _End = nullptr;
};
