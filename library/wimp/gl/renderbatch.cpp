#include "library/wimp/gl/renderbatch.h"

#include "library/wimp/gl/device/arbprogram.h"
#include "library/wimp/gl/glcontext.h"

#include <GL/glew.h>

namespace {
// Beyond this a call's vertices cost more memory than a further call costs time.
constexpr int MaxGathered = 65536;
// More of them are seldom of use: whoever puts things over each other all the time gets no fewer calls.
constexpr int MaxLayers = 64;
} // namespace

void TRenderBatch::BeginFrame(int width, int height)
{
    Clear();
    NumCalls = 0;
    Width = width;
    Height = height;
    // As large as there is, so that what lies around the target is cut off by the scissor and not by OpenGL,
    // whose cuts move the edges a little.
    for (Spread = 1; Spread * 2 <= GetMaxTextureSide();)
        Spread *= 2;
    Margin = (Spread - (width > height ? width : height)) / 2;
    Margin = Margin > 0 ? Margin : 0;
    glViewport(-Margin, -Margin, Spread, Spread);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    if (glUseProgram != nullptr)
        glUseProgram(0);
    glDisable(GL_VERTEX_PROGRAM_ARB);
    glDisable(GL_FRAGMENT_PROGRAM_ARB);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_STENCIL_TEST);
    glDisable(GL_CULL_FACE);
    glDisable(GL_LIGHTING);
    glActiveTexture(GL_TEXTURE0);
    glDisable(GL_TEXTURE_2D);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glBlendEquation(GL_FUNC_ADD);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_COLOR_ARRAY);
    glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    glEnable(GL_SCISSOR_TEST);
    glClearColor(1.0f, 1.0f, 0.95f, 0.0f);
    CheckGlError();
}

void TRenderBatch::EndFrame()
{
    glDisableClientState(GL_VERTEX_ARRAY);
    glDisableClientState(GL_COLOR_ARRAY);
    glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    glDisable(GL_BLEND);
    glDisable(GL_SCISSOR_TEST);
    glShadeModel(GL_SMOOTH);
}

void TRenderBatch::DrawPart(const TRenderList& list, const TDotRectangle& part)
{
    Part = part;
    SetScissor(part);
    glClear(GL_COLOR_BUFFER_BIT);
    const TDotRectangle touched = part.Enlarge(TRenderList::PartsPerDot);
    for (int i = 0; i < list.GetNumItems(); ++i) {
        const TDotRectangle& bounds = list.GetItem(i).Bounds;
        if (bounds.Min[0] < touched.Max[0] && bounds.Max[0] > touched.Min[0] &&
            bounds.Min[1] < touched.Max[1] && bounds.Max[1] > touched.Min[1])
            Add(list, list.GetItem(i));
    }
    Flush();
}

void TRenderBatch::SetScissor(const TDotRectangle& rectangle) const
{
    if (rectangle.IsEmpty())
        glScissor(0, 0, 0, 0);
    else
        glScissor(rectangle.Min[0], Height - rectangle.Max[1], rectangle.Max[0] - rectangle.Min[0],
                  rectangle.Max[1] - rectangle.Min[1]);
}

void TRenderBatch::Clear()
{
    for (int i = 0; i < NumLayers; ++i) {
        TLayer& layer = *Layers[i];
        layer.Cover.Clear();
        layer.NumVertices = 0;
        layer.NumIndices = 0;
    }
    NumLayers = 0;
}

void TRenderBatch::Flush()
{
    for (int i = 0; i < NumLayers; ++i)
        Draw(*Layers[i]);
    Clear();
}

void TRenderBatch::Draw(const TLayer& layer)
{
    const TRenderList::TState& state = layer.State;
    if (state.Program != nullptr) {
        glActiveTexture(GL_TEXTURE0);
        glBindTexture(GL_TEXTURE_2D, state.Texture);
        state.Program->Bind();
        state.Program->SetLocal(0, state.Local.Component);
    }
    if (state.Blended)
        glEnable(GL_BLEND);
    else
        glDisable(GL_BLEND);
    glShadeModel(state.Shaded ? GL_SMOOTH : GL_FLAT);
    TDotRectangle clip;
    for (int i = 0; i < 2; ++i) {
        clip.Min[i] = state.Clip.Min[i] / TRenderList::PartsPerDot;
        clip.Max[i] = state.Clip.Max[i] / TRenderList::PartsPerDot;
    }
    SetScissor(Part.Intersect(clip));
    const TVertex* vertices = layer.Vertices.data();
    glVertexPointer(2, GL_FLOAT, sizeof(TVertex), vertices->Point.Component);
    glTexCoordPointer(2, GL_FLOAT, sizeof(TVertex), vertices->TexCoord.Component);
    glColorPointer(4, GL_FLOAT, sizeof(TVertex), vertices->Colour.Component);
    glDrawRangeElements(GL_TRIANGLES, 0, static_cast<unsigned>(layer.NumVertices - 1), layer.NumIndices,
                        GL_UNSIGNED_INT, layer.Indices.data());
    if (state.Program != nullptr)
        state.Program->Unbind();
    ++NumCalls;
    CheckGlError();
}

void TRenderBatch::Add(const TRenderList& list, const TRenderList::TItem& item)
{
    TVector2 min;
    TVector2 max;
    const int size[2] = {Width, Height};
    for (int i = 0; i < 2; ++i) {
        const double toClip = 2.0 / (double(size[i]) * TRenderList::PartsPerDot);
        min[i] = static_cast<float>(item.Bounds.Min[i] * toClip - 1.0);
        max[i] = static_cast<float>(item.Bounds.Max[i] * toClip - 1.0);
    }
    TRenderCover::TBox box;
    if (!TRenderCover::GetCells(min, max, box))
        return;
    TLayer& layer = FindLayer(item, box);
    layer.Cover.Add(box);
    const int first = layer.NumVertices;
    AddVertices(layer, list.GetVertices(item), item.NumVertices);
    ForEachTriangle(item.Primitive, item.NumVertices,
                    [&](int a, int b, int c) { layer.AddTriangle(first + a, first + b, first + c); });
}

// The lowest layer of the item's state that has everything it touches below itself.
TRenderBatch::TLayer& TRenderBatch::FindLayer(const TRenderList::TItem& item, const TRenderCover::TBox& box)
{
    TLayer* found = nullptr;
    for (int i = NumLayers - 1; i >= 0; --i) {
        TLayer* layer = Layers[i];
        if (layer->State == item.State)
            found = layer;
        if (layer->Cover.Touches(box))
            break;
    }
    if (found != nullptr && found->NumVertices + item.NumVertices <= MaxGathered)
        return *found;
    if (found != nullptr || NumLayers == MaxLayers)
        Flush();
    return AddLayer(item.State);
}

TRenderBatch::TLayer& TRenderBatch::AddLayer(const TRenderList::TState& state)
{
    if (NumLayers == Layers.size())
        Layers.push_back(new TLayer);
    TLayer& layer = *Layers[NumLayers++];
    layer.State = state;
    return layer;
}

void TRenderBatch::AddVertices(TLayer& layer, const TRenderList::TVertex* vertices, int count) const
{
    if (layer.NumVertices + count > layer.Vertices.size())
        layer.Vertices.resize(2 * (layer.NumVertices + count));
    // Exact, as all of it is by powers of two.
    const float toClip = 2.0f / (static_cast<float>(Spread) * TRenderList::PartsPerDot);
    const int left = Margin * TRenderList::PartsPerDot;
    const int bottom = (Height + Margin) * TRenderList::PartsPerDot;
    TVertex* to = layer.Vertices.data() + layer.NumVertices;
    for (int i = 0; i < count; ++i) {
        const TRenderList::TVertex& from = vertices[i];
        const TVector2 point(static_cast<float>(from.Place[0] + left) * toClip - 1.0f,
                             static_cast<float>(bottom - from.Place[1]) * toClip - 1.0f);
        to[i] = TVertex{point, from.TexCoord, from.Colour};
    }
    layer.NumVertices += count;
}

void TRenderBatch::TLayer::AddTriangle(int a, int b, int c)
{
    if (NumIndices + 3 > Indices.size())
        Indices.resize(2 * (NumIndices + 3));
    Indices[NumIndices++] = static_cast<unsigned>(a);
    Indices[NumIndices++] = static_cast<unsigned>(b);
    Indices[NumIndices++] = static_cast<unsigned>(c);
}
