#pragma once

#include "library/containers/array.h"
#include "library/maths/vector2.h"
#include "library/maths/vector4.h"
#include "library/wimp/gl/dotrectangle.h"

class TArbProgram;

enum TPrimitive
{
    PR_TRIANGLES,
    PR_QUADS,
    PR_FAN,
    PR_STRIP
};

// Everything that a frame shows, in its order. Places are whole parts of a dot of the target, from its top
// left, as fine as rasterisers see them: what is moved by whole dots is the same in every digit, and can be
// recognised.
class TRenderList
{
public:
    static constexpr int PartsPerDot = 256;
    // No edge cuts here.
    static constexpr int Everywhere = 1 << 30;

    struct TVertex
    {
        int Place[2];
        TVector2 TexCoord;
        TVector4 Colour;
    };

    // What a primitive is drawn with. Blending, shading and clipping cost, so primitives that do not need
    // them go without.
    struct TState
    {
        const TArbProgram* Program = nullptr;
        unsigned Texture = 0;
        TVector4 Local = TVector4(0, 0, 0, 0);
        bool Blended = false;
        bool Shaded = false;
        // In parts of dots, and of whole dots.
        TDotRectangle Clip = Unclipped();

        bool operator==(const TState& rhs) const = default;
        bool IsClipped() const { return !(Clip == Unclipped()); }
    };

    struct TItem
    {
        TState State;
        TPrimitive Primitive = PR_TRIANGLES;
        // An upright rectangle of one colour: each part of it looks the same wherever it begins and ends.
        bool IsBox = false;
        int FirstVertex = 0;
        int NumVertices = 0;
        // What it may touch, in parts of dots: the last are touched too.
        TDotRectangle Bounds;
    };

    TRenderList();

    // Of a target of so many dots.
    void Clear(int width, int height);
    // Whatever is drawn from now on is cut off there, in dots.
    void SetClip(const TDotRectangle& clip);

    void SetColour(const TVector4& colour)
    {
        Colour = colour;
        // Changed within a primitive: its vertices differ.
        Shades = true;
    }
    // Untextured, or through a fragment program with its first local parameter.
    void Begin(TPrimitive primitive);
    void Begin(TPrimitive primitive, unsigned texture, const TArbProgram& program, const TVector4& local);
    // The running primitive hides what lies below it, whatever alpha its program gives.
    void SetOpaque() { Opaque = true; }
    void Vertex(const int* place, const TVector2& texCoord)
    {
        if (NumVertices == Vertices.size())
            Vertices.resize(NumVertices * 2);
        Vertices[NumVertices++] = TVertex{{place[0], place[1]}, texCoord, Colour};
        SeesThrough |= Colour[3] < 1.0f;
    }
    void End();
    // A rectangle of the colour, by two opposite corners.
    void Box(const int* corner, const int* opposite);

    int GetNumItems() const { return NumItems; }
    const TItem& GetItem(int i) const { return Items[i]; }
    const TVertex* GetVertices(const TItem& item) const { return Vertices.data() + item.FirstVertex; }

private:
    static constexpr TDotRectangle Unclipped()
    {
        return TDotRectangle{{-Everywhere, -Everywhere}, {Everywhere, Everywhere}};
    }
    TDotRectangle GetBounds() const;
    void AddItem(const TDotRectangle& bounds, bool isBox);

    array<TVertex> Vertices;
    int NumVertices = 0;
    array<TItem> Items;
    int NumItems = 0;
    // The target and the clip, in parts of dots.
    TDotRectangle Target;
    TDotRectangle Clip = Unclipped();

    // Of the running primitive.
    TItem Running;
    // Whether it has a vertex that is not opaque, and whether its colour has changed since it began.
    bool SeesThrough = false;
    bool Opaque = false;
    bool Shades = false;
    TVector4 Colour = TVector4(0, 0, 0, 1);
};

// Calls the function with the numbers of the three corners of each triangle of a primitive.
template <class TFunction>
void ForEachTriangle(TPrimitive primitive, int numVertices, const TFunction& function)
{
    switch (primitive) {
    case PR_TRIANGLES:
        for (int i = 0; i + 2 < numVertices; i += 3)
            function(i, i + 1, i + 2);
        break;
    case PR_QUADS:
        for (int i = 0; i + 3 < numVertices; i += 4) {
            function(i, i + 1, i + 2);
            function(i, i + 2, i + 3);
        }
        break;
    case PR_FAN:
        for (int i = 1; i + 1 < numVertices; ++i)
            function(0, i, i + 1);
        break;
    case PR_STRIP:
        for (int i = 0; i + 2 < numVertices; ++i)
            function(i, i + 1, i + 2);
        break;
    }
}
