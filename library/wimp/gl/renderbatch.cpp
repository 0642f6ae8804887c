#include "library/wimp/gl/renderbatch.h"

#include "library/wimp/gl/device/arbprogram.h"
#include "library/wimp/gl/glcontext.h"

#include <GL/glew.h>

namespace {
constexpr int StartSize = 1024;
// Beyond this a call's vertices cost more memory than a further call costs time.
constexpr int MaxGathered = 65536;
// More of them are seldom of use: whoever puts things over each other all the time gets no fewer calls.
constexpr int MaxLayers = 64;
} // namespace

TRenderBatch::TRenderBatch()
{
    Vertices.resize(StartSize);
}

void TRenderBatch::BeginFrame()
{
    Clear();
    NumCalls = 0;
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
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_COLOR_ARRAY);
    glEnableClientState(GL_TEXTURE_COORD_ARRAY);
}

void TRenderBatch::EndFrame()
{
    Flush();
    glDisableClientState(GL_VERTEX_ARRAY);
    glDisableClientState(GL_COLOR_ARRAY);
    glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    glDisable(GL_BLEND);
    glShadeModel(GL_SMOOTH);
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
    NumVertices = 0;
}

void TRenderBatch::Flush()
{
    for (int i = 0; i < NumLayers; ++i)
        Draw(*Layers[i]);
    Clear();
}

void TRenderBatch::Draw(const TLayer& layer)
{
    const TState& state = layer.State;
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

void TRenderBatch::Begin(TPrimitive primitive)
{
    Primitive = primitive;
    State = TState();
    NumVertices = 0;
    SeesThrough = false;
    Opaque = false;
    Shades = false;
}

void TRenderBatch::Begin(TPrimitive primitive, unsigned texture, const TArbProgram& program,
                         const TVector4& local)
{
    Begin(primitive);
    State.Program = &program;
    State.Texture = texture;
    State.Local = local;
}

void TRenderBatch::End()
{
    TRenderCover::TBox box;
    if (NumVertices < 3 || !GetBox(box))
        return;
    State.Blended = !Opaque && (SeesThrough || State.Program != nullptr);
    State.Shaded = Shades;
    TLayer& layer = FindLayer(box);
    layer.Cover.Add(box);
    layer.Add(Vertices.data(), NumVertices, Primitive);
}

// False for a primitive that is out of sight.
bool TRenderBatch::GetBox(TRenderCover::TBox& box) const
{
    TVector2 min = Vertices[0].Point;
    TVector2 max = min;
    for (int i = 1; i < NumVertices; ++i) {
        const TVector2& point = Vertices[i].Point;
        for (int axis = 0; axis < 2; ++axis) {
            min[axis] = point[axis] < min[axis] ? point[axis] : min[axis];
            max[axis] = point[axis] > max[axis] ? point[axis] : max[axis];
        }
    }
    return TRenderCover::GetCells(min, max, box);
}

// The lowest layer of the running primitive's state that has everything it touches below itself.
TRenderBatch::TLayer& TRenderBatch::FindLayer(const TRenderCover::TBox& box)
{
    TLayer* found = nullptr;
    for (int i = NumLayers - 1; i >= 0; --i) {
        TLayer* layer = Layers[i];
        if (layer->State == State)
            found = layer;
        if (layer->Cover.Touches(box))
            break;
    }
    if (found != nullptr && found->NumVertices + NumVertices <= MaxGathered)
        return *found;
    if (found != nullptr || NumLayers == MaxLayers) {
        const int count = NumVertices;
        Flush();
        NumVertices = count;
    }
    return AddLayer();
}

TRenderBatch::TLayer& TRenderBatch::AddLayer()
{
    if (NumLayers == Layers.size())
        Layers.push_back(new TLayer);
    TLayer& layer = *Layers[NumLayers++];
    layer.State = State;
    return layer;
}

void TRenderBatch::TLayer::Add(const TVertex* vertices, int count, TPrimitive primitive)
{
    if (NumVertices + count > Vertices.size())
        Vertices.resize(2 * (NumVertices + count));
    const int first = NumVertices;
    for (int i = 0; i < count; ++i)
        Vertices[NumVertices++] = vertices[i];
    switch (primitive) {
    case PR_TRIANGLES:
        for (int i = first; i + 2 < NumVertices; i += 3)
            AddTriangle(i, i + 1, i + 2);
        break;
    case PR_QUADS:
        for (int i = first; i + 3 < NumVertices; i += 4) {
            AddTriangle(i, i + 1, i + 2);
            AddTriangle(i, i + 2, i + 3);
        }
        break;
    case PR_FAN:
        for (int i = first + 1; i + 1 < NumVertices; ++i)
            AddTriangle(first, i, i + 1);
        break;
    case PR_STRIP:
        for (int i = first; i + 2 < NumVertices; ++i)
            AddTriangle(i, i + 1, i + 2);
        break;
    }
}

void TRenderBatch::TLayer::AddTriangle(int a, int b, int c)
{
    if (NumIndices + 3 > Indices.size())
        Indices.resize(2 * (NumIndices + 3));
    Indices[NumIndices++] = static_cast<unsigned>(a);
    Indices[NumIndices++] = static_cast<unsigned>(b);
    Indices[NumIndices++] = static_cast<unsigned>(c);
}
