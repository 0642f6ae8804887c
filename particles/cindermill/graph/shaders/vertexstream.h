#pragma once

#include "library/containers/vector.h"

#include <cstdint>

// Vertex data as the graphics card reads it: `Count` items of `Stride` bytes, of which each element is a
// part. With a ready OpenGL the card holds a copy; the buffer for it is made at the first use.
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

    struct TPosition
    {
        // 0 for none.
        unsigned Buffer = 0;
        const uint8_t* Base = nullptr;
    };

    TVertexStream() = default;
    ~TVertexStream();
    TVertexStream(const TVertexStream&) = delete;
    TVertexStream& operator=(const TVertexStream&) = delete;

    // The data stays the caller's; it must be as long as the items together.
    void Init(void* data, int count, int stride, const vector<TElement>& elements);
    // Replaces all of the card's copy. Without a ready OpenGL, or with software vertices, there is none.
    void Upload();
    // Where attributes are read from: the buffer, which is made if need be, or else the data itself.
    TPosition GetPosition();

    void* GetData() const { return Data; }
    int GetSize() const { return Size; }
    int GetCount() const { return Count; }
    int GetStride() const { return Stride; }
    // -1 for none.
    int GetBufferId() const { return BufferId; }
    const vector<TElement>& GetElements() const { return Elements; }
    // The element that begins at an offset of the item.
    const TElement& GetElementAt(int offset) const;

    // Keeps vertices out of the card's buffers from now on, for drivers that do badly with them.
    static void SetSoftwareVertices(bool software);
    static bool HasSoftwareVertices();

private:
    void* Data = nullptr;
    int Size = 0;
    int Count = 0;
    int Stride = 0;
    int BufferId = -1;
    vector<TElement> Elements;
};
