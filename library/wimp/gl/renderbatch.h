#pragma once

#include "library/containers/array.h"
#include "library/containers/ownerlist.h"
#include "library/wimp/gl/rendercover.h"
#include "library/wimp/gl/renderlist.h"

// Hands what a list holds to OpenGL in few calls. What needs the same state goes into one call even where
// something else came in between, as long as nothing is put over or under what it touches: the picture is
// that of drawing everything in its order.
class TRenderBatch
{
public:
    // Sets OpenGL up for drawing into a target of so many dots; EndFrame must follow.
    void BeginFrame(int width, int height);
    void EndFrame();
    // Clears the part of the target, in its dots, and draws what of the list touches it.
    void DrawPart(const TRenderList& list, const TDotRectangle& part);
    // Draw calls since BeginFrame.
    int GetNumCalls() const { return NumCalls; }

private:
    struct TVertex
    {
        TVector2 Point;
        TVector2 TexCoord;
        TVector4 Colour;
    };

    // One draw call. A layer lies over those before it.
    struct TLayer
    {
        TRenderList::TState State;
        TRenderCover Cover;
        array<TVertex> Vertices;
        array<unsigned> Indices;
        int NumVertices = 0;
        int NumIndices = 0;

        void AddTriangle(int a, int b, int c);
    };

    void Add(const TRenderList& list, const TRenderList::TItem& item);
    void AddVertices(TLayer& layer, const TRenderList::TVertex* vertices, int count) const;
    TLayer& FindLayer(const TRenderList::TItem& item, const TRenderCover::TBox& box);
    TLayer& AddLayer(const TRenderList::TState& state);
    void Flush();
    void Clear();
    void Draw(const TLayer& layer);
    void SetScissor(const TDotRectangle& rectangle) const;

    // Of the target, in dots. Clip space is spread over a square, whose side is a power of two so that no
    // place is rounded, with a margin left of the target and below it.
    int Width = 0;
    int Height = 0;
    int Spread = 1;
    int Margin = 0;
    TDotRectangle Part;
    // The first of them are in use; the others keep their memory.
    TOwnerList<TLayer> Layers;
    int NumLayers = 0;
    int NumCalls = 0;
};
