#pragma once

#include "library/containers/vector.h"

#include <cstdint>

// Vertex data as the graphics card reads it: `Count` items of `Stride` bytes, of which each element is a
// part.
class TVertexStream
{
public:
    static constexpr int TypeFloat = 5126;

    struct TElement
    {
        int Type = TypeFloat;
        int Size = 0;
        int Offset = 0;
        bool Normalised = false;
    };

    // The data stays the caller's.
    void Init(void* data, int count, int stride, const vector<TElement>& elements);

    void* GetData() const { return Data; }
    int GetSize() const { return Size; }
    int GetCount() const { return Count; }
    int GetStride() const { return Stride; }
    const vector<TElement>& GetElements() const { return Elements; }

private:
    void* Data = nullptr;
    int Size = 0;
    int Count = 0;
    int Stride = 0;
    vector<TElement> Elements;
};
