#pragma once

#include "library/containers/array.h"
#include "library/containers/ownerlist.h"
#include "library/maths/vector2.h"
#include "library/maths/vector4.h"
#include "library/wimp/gl/rendercover.h"

class TArbProgram;

enum TPrimitive
{
    PR_TRIANGLES,
    PR_QUADS,
    PR_FAN,
    PR_STRIP
};

// Gathers what is drawn and hands it to OpenGL in few calls. What needs the same state goes into one call
// even where something else came in between, as long as nothing is put over or under what it touches: the
// picture is that of drawing everything in its order. Points are in clip space.
class TRenderBatch
{
public:
    TRenderBatch();

    // Sets OpenGL up for drawing through the batch; End must follow.
    void BeginFrame();
    void EndFrame();
    // Draws what has been gathered. Needed before any other state of OpenGL is changed.
    void Flush();
    // Drops what has been gathered.
    void Clear();

    void SetColour(const TVector4& colour)
    {
        Colour = colour;
        // Changed within a primitive: its vertices differ.
        Shades = true;
    }
    const TVector4& GetColour() const { return Colour; }
    // Untextured, or through a fragment program with its first local parameter.
    void Begin(TPrimitive primitive);
    void Begin(TPrimitive primitive, unsigned texture, const TArbProgram& program, const TVector4& local);
    // The running primitive hides what lies below it, whatever alpha its program gives.
    void SetOpaque() { Opaque = true; }
    void Vertex(const TVector2& clip, const TVector2& texCoord)
    {
        if (NumVertices == Vertices.size())
            Vertices.resize(NumVertices * 2);
        Vertices[NumVertices++] = TVertex{clip, texCoord, Colour};
        SeesThrough |= Colour[3] < 1.0f;
    }
    void End();
    // Draw calls since BeginFrame.
    int GetNumCalls() const { return NumCalls; }

private:
    struct TVertex
    {
        TVector2 Point;
        TVector2 TexCoord;
        TVector4 Colour;
    };

    // What a primitive is drawn with. Blending and shading cost, so primitives that do not need them go
    // without.
    struct TState
    {
        const TArbProgram* Program = nullptr;
        unsigned Texture = 0;
        TVector4 Local = TVector4(0, 0, 0, 0);
        bool Blended = false;
        bool Shaded = false;

        bool operator==(const TState& rhs) const = default;
    };

    // One draw call. A layer lies over those before it.
    struct TLayer
    {
        TState State;
        TRenderCover Cover;
        array<TVertex> Vertices;
        array<unsigned> Indices;
        int NumVertices = 0;
        int NumIndices = 0;

        void Add(const TVertex* vertices, int count, TPrimitive primitive);
        void AddTriangle(int a, int b, int c);
    };

    bool GetBox(TRenderCover::TBox& box) const;
    TLayer& FindLayer(const TRenderCover::TBox& box);
    TLayer& AddLayer();
    void Draw(const TLayer& layer);

    // Of the running primitive.
    array<TVertex> Vertices;
    int NumVertices = 0;
    TPrimitive Primitive = PR_TRIANGLES;
    TState State;
    // Whether it has a vertex that is not opaque, and whether its colour has changed since it began.
    bool SeesThrough = false;
    bool Opaque = false;
    bool Shades = false;
    TVector4 Colour = TVector4(0, 0, 0, 1);

    // The first of them are in use; the others keep their memory.
    TOwnerList<TLayer> Layers;
    int NumLayers = 0;
    int NumCalls = 0;
};
