#include "library/wimp/gl/renderlist.h"

namespace {
constexpr int StartVertices = 1024;
constexpr int StartItems = 64;
} // namespace

TRenderList::TRenderList()
{
    Vertices.resize(StartVertices);
    Items.resize(StartItems);
}

void TRenderList::Clear(int width, int height)
{
    NumVertices = 0;
    NumItems = 0;
    Target = TDotRectangle{{0, 0}, {width, height}}.Enlarge(PartsPerDot);
    Clip = Unclipped();
}

void TRenderList::SetClip(const TDotRectangle& clip)
{
    Clip = Unclipped();
    for (int i = 0; i < 2; ++i) {
        // What the target's own edge cuts off is no matter of the clip's.
        if (clip.Min[i] > 0)
            Clip.Min[i] = clip.Min[i] < Target.Max[i] / PartsPerDot ? clip.Min[i] * PartsPerDot : Everywhere;
        if (clip.Max[i] < Target.Max[i] / PartsPerDot)
            Clip.Max[i] = clip.Max[i] > 0 ? clip.Max[i] * PartsPerDot : -Everywhere;
    }
}

void TRenderList::Begin(TPrimitive primitive)
{
    Running.State = TState();
    Running.Primitive = primitive;
    Running.FirstVertex = NumVertices;
    SeesThrough = false;
    Opaque = false;
    Shades = false;
}

void TRenderList::Begin(TPrimitive primitive, unsigned texture, const TArbProgram& program,
                        const TVector4& local)
{
    Begin(primitive);
    Running.State.Program = &program;
    Running.State.Texture = texture;
    Running.State.Local = local;
}

TDotRectangle TRenderList::GetBounds() const
{
    const TVertex* vertex = Vertices.data() + Running.FirstVertex;
    TDotRectangle bounds{{vertex->Place[0], vertex->Place[1]}, {vertex->Place[0], vertex->Place[1]}};
    for (const TVertex* end = Vertices.data() + NumVertices; vertex != end; ++vertex)
        for (int i = 0; i < 2; ++i) {
            bounds.Min[i] = vertex->Place[i] < bounds.Min[i] ? vertex->Place[i] : bounds.Min[i];
            bounds.Max[i] = vertex->Place[i] > bounds.Max[i] ? vertex->Place[i] : bounds.Max[i];
        }
    return bounds;
}

void TRenderList::End()
{
    if (NumVertices - Running.FirstVertex < 3) {
        NumVertices = Running.FirstVertex;
        return;
    }
    const TDotRectangle bounds = GetBounds();
    if (!Clip.Contains(bounds))
        Running.State.Clip = Clip;
    const TDotRectangle seen = bounds.Intersect(Clip).Intersect(Target);
    // Out of sight.
    if (seen.Min[0] > seen.Max[0] || seen.Min[1] > seen.Max[1]) {
        NumVertices = Running.FirstVertex;
        return;
    }
    AddItem(seen, false);
}

// What is cut off it leaves a box.
void TRenderList::Box(const int* corner, const int* opposite)
{
    TDotRectangle box;
    for (int i = 0; i < 2; ++i) {
        box.Min[i] = corner[i] < opposite[i] ? corner[i] : opposite[i];
        box.Max[i] = corner[i] < opposite[i] ? opposite[i] : corner[i];
    }
    box = box.Intersect(Clip);
    const TDotRectangle seen = box.Intersect(Target);
    if (seen.IsEmpty())
        return;
    Begin(PR_QUADS);
    const int places[4][2] = {{box.Min[0], box.Min[1]},
                              {box.Max[0], box.Min[1]},
                              {box.Max[0], box.Max[1]},
                              {box.Min[0], box.Max[1]}};
    for (const auto& place : places)
        Vertex(place, TVector2(0, 0));
    AddItem(seen, true);
}

void TRenderList::AddItem(const TDotRectangle& bounds, bool isBox)
{
    if (NumItems == Items.size())
        Items.resize(2 * NumItems);
    Running.State.Blended = !Opaque && (SeesThrough || Running.State.Program != nullptr);
    Running.State.Shaded = Shades;
    Running.NumVertices = NumVertices - Running.FirstVertex;
    Running.Bounds = bounds;
    Running.IsBox = isBox;
    Items[NumItems++] = Running;
}
