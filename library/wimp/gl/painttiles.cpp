#include "library/wimp/gl/painttiles.h"

#include "library/containers/wholenumbers.h"
#include "library/wimp/gl/texturerevision.h"

#include <cstring>

namespace {
// More than these are joined: each costs draw calls of its own.
constexpr int MaxParts = 6;
// What touches more tiles than these is looked at triangle by triangle: a curve passes through few of the
// tiles that lie around it.
constexpr int FewTiles = 6;
constexpr int HalfDot = TRenderList::PartsPerDot / 2;

// Wraps around.
int GetDistance(int from, int to)
{
    return static_cast<int>(static_cast<unsigned>(to) - static_cast<unsigned>(from));
}

uint64_t Mix(uint64_t look, uint64_t word)
{
    look = (look ^ word) * 0x9E3779B97F4A7C15u;
    return look ^ look >> 32;
}

uint64_t GetWord(int low, int high)
{
    return static_cast<uint32_t>(low) | static_cast<uint64_t>(static_cast<uint32_t>(high)) << 32;
}

uint64_t GetWord(const float* pair)
{
    uint64_t word = 0;
    memcpy(&word, pair, sizeof word);
    return word;
}

uint64_t MixColour(uint64_t look, const TVector4& colour)
{
    return Mix(Mix(look, GetWord(colour.Component)), GetWord(colour.Component + 2));
}

int64_t GetArea(const TDotRectangle& rectangle)
{
    return rectangle.IsEmpty()
               ? 0
               : int64_t(rectangle.Max[0] - rectangle.Min[0]) * (rectangle.Max[1] - rectangle.Min[1]);
}

// What painting two parts as one costs more.
int64_t GetWaste(const TDotRectangle& a, const TDotRectangle& b)
{
    return GetArea(a.Unite(b)) - GetArea(a) - GetArea(b);
}
} // namespace

void TPaintTiles::Compare(const TRenderList& list, const TPaintPlace& place)
{
    BeginGrid(place);
    for (int i = 0; i < list.GetNumItems(); ++i)
        AddItem(list, list.GetItem(i));
    FindParts();
    Known = false;
}

void TPaintTiles::BeginGrid(const TPaintPlace& place)
{
    const TPaintPlace& before = Now.Place;
    Known = Known && place.Width == before.Width && place.Height == before.Height &&
            place.Supersampling == before.Supersampling;
    for (int i = 0; i < 2; ++i)
        Shift[i] = Known ? place.Moved[i] - before.Moved[i] : 0;
    Before.Place = before;
    for (int i = 0; i < 2; ++i) {
        Before.First[i] = Now.First[i];
        Before.Count[i] = Now.Count[i];
    }
    Before.Looks.swap(Now.Looks);

    Now.Place = place;
    const int partsPerDot = TRenderList::PartsPerDot * place.Supersampling;
    TileParts = Side * partsPerDot;
    const int size[2] = {place.Width, place.Height};
    for (int i = 0; i < 2; ++i) {
        Now.First[i] = FloorOfQuotient(-place.Moved[i], Side);
        Now.Count[i] = FloorOfQuotient(size[i] - 1 - place.Moved[i], Side) - Now.First[i] + 1;
        Phase[i] = (-place.Moved[i] - Now.First[i] * Side) * partsPerDot;
        // Wraps around far out, as the places do.
        Anchor[i] =
            static_cast<int>(static_cast<unsigned>(place.Moved[i]) * static_cast<unsigned>(partsPerDot));
    }
    const int count = Now.Count[0] * Now.Count[1];
    if (Now.Looks.size() != count)
        Now.Looks.resize(count);
    for (uint64_t& look : Now.Looks)
        look = 0;
}

// The numbers of the tiles, the last ones included.
TDotRectangle TPaintTiles::GetTiles(const TDotRectangle& bounds) const
{
    TDotRectangle tiles;
    for (int i = 0; i < 2; ++i) {
        tiles.Min[i] = (bounds.Min[i] + Phase[i]) / TileParts;
        tiles.Max[i] = (bounds.Max[i] + Phase[i]) / TileParts;
        tiles.Max[i] = tiles.Max[i] < Now.Count[i] ? tiles.Max[i] : Now.Count[i] - 1;
    }
    return tiles;
}

void TPaintTiles::AddLook(const TDotRectangle& bounds, uint64_t look)
{
    const TDotRectangle tiles = GetTiles(bounds);
    for (int row = tiles.Min[1]; row <= tiles.Max[1]; ++row)
        for (int column = tiles.Min[0]; column <= tiles.Max[0]; ++column) {
            uint64_t& tile = Now.Looks[row * Now.Count[0] + column];
            tile = Mix(tile, look);
        }
}

uint64_t TPaintTiles::GetLook(const TRenderList::TItem& item, const TRenderList::TVertex* vertices) const
{
    const TRenderList::TState& state = item.State;
    uint64_t look = static_cast<uint64_t>(item.Primitive) * 4 + state.Blended * 2 + state.Shaded;
    if (state.Program != nullptr) {
        look = Mix(look, reinterpret_cast<uintptr_t>(state.Program));
        look = Mix(look, state.Texture | uint64_t(GetGlTextureRevision(state.Texture)) << 32);
        look = MixColour(look, state.Local);
    }
    if (state.IsClipped())
        for (int i = 0; i < 2; ++i) {
            const int low = state.Clip.Min[i];
            const int high = state.Clip.Max[i];
            look = Mix(look, GetWord(low == -TRenderList::Everywhere ? low : GetDistance(Anchor[i], low),
                                     high == TRenderList::Everywhere ? high : GetDistance(Anchor[i], high)));
        }
    look = MixColour(look, vertices->Colour);
    for (int i = 0; i < item.NumVertices; ++i) {
        const TRenderList::TVertex& vertex = vertices[i];
        look = Mix(look,
                   GetWord(GetDistance(Anchor[0], vertex.Place[0]), GetDistance(Anchor[1], vertex.Place[1])));
        if (state.Program != nullptr)
            look = Mix(look, GetWord(vertex.TexCoord.Component));
        if (state.Shaded)
            look = MixColour(look, vertex.Colour);
    }
    return look;
}

void TPaintTiles::AddItem(const TRenderList& list, const TRenderList::TItem& item)
{
    const TRenderList::TVertex* vertices = list.GetVertices(item);
    if (item.IsBox) {
        AddBox(vertices, item);
        return;
    }
    const uint64_t look = GetLook(item, vertices);
    const TDotRectangle tiles = GetTiles(item.Bounds);
    if ((tiles.Max[0] - tiles.Min[0] + 1) * (tiles.Max[1] - tiles.Min[1] + 1) <= FewTiles) {
        AddLook(item.Bounds, look);
        return;
    }
    ForEachTriangle(item.Primitive, item.NumVertices, [&](int a, int b, int c) {
        TDotRectangle bounds;
        for (int i = 0; i < 2; ++i) {
            const int places[3] = {vertices[a].Place[i], vertices[b].Place[i], vertices[c].Place[i]};
            bounds.Min[i] = bounds.Max[i] = places[0];
            for (const int place : places) {
                bounds.Min[i] = place < bounds.Min[i] ? place : bounds.Min[i];
                bounds.Max[i] = place > bounds.Max[i] ? place : bounds.Max[i];
            }
        }
        bounds = bounds.Intersect(item.Bounds);
        if (bounds.Min[0] <= bounds.Max[0] && bounds.Min[1] <= bounds.Max[1])
            AddLook(bounds, Mix(look, static_cast<uint64_t>(b)));
    });
}

// In each tile it is what it covers there, so that its ends may move along with the window's edges.
void TPaintTiles::AddBox(const TRenderList::TVertex* vertices, const TRenderList::TItem& item)
{
    const uint64_t look = MixColour(item.State.Blended, vertices->Colour);
    const int* low = vertices[0].Place;
    const int* high = vertices[2].Place;
    const TDotRectangle tiles = GetTiles(item.Bounds);
    const int size[2] = {Now.Place.Width, Now.Place.Height};
    bool begins[2];
    bool ends[2];
    for (int i = 0; i < 2; ++i) {
        // A dot is covered if its middle is.
        begins[i] = low[i] > HalfDot;
        ends[i] = high[i] <= size[i] * (TileParts / Side) - HalfDot;
    }
    auto cover = [&](int axis, int tile) {
        const int start = tile * TileParts - Phase[axis];
        const int from = begins[axis] && low[axis] > start ? low[axis] - start : 0;
        const int to = ends[axis] && high[axis] < start + TileParts ? high[axis] - start : TileParts;
        return GetWord(from, to);
    };
    for (int row = tiles.Min[1]; row <= tiles.Max[1]; ++row) {
        const uint64_t down = Mix(look, cover(1, row));
        for (int column = tiles.Min[0]; column <= tiles.Max[0]; ++column) {
            uint64_t& tile = Now.Looks[row * Now.Count[0] + column];
            tile = Mix(tile, Mix(down, cover(0, column)));
        }
    }
}

// What of a tile is in sight, in dots.
TDotRectangle TPaintTiles::GetVisible(int column, int row) const
{
    const int tile[2] = {column, row};
    TDotRectangle visible;
    for (int i = 0; i < 2; ++i) {
        visible.Min[i] = (Now.First[i] + tile[i]) * Side + Now.Place.Moved[i];
        visible.Max[i] = visible.Min[i] + Side;
    }
    return visible.Intersect(TDotRectangle{{0, 0}, {Now.Place.Width, Now.Place.Height}});
}

// Kept is what of the picture before is still in sight.
bool TPaintTiles::IsSame(int column, int row, const TDotRectangle& kept) const
{
    if (!kept.Contains(GetVisible(column, row)))
        return false;
    const int oldColumn = Now.First[0] + column - Before.First[0];
    const int oldRow = Now.First[1] + row - Before.First[1];
    return Now.Looks[row * Now.Count[0] + column] == Before.Looks[oldRow * Before.Count[0] + oldColumn];
}

void TPaintTiles::FindParts()
{
    Parts.clear();
    const TDotRectangle window{{0, 0}, {Now.Place.Width, Now.Place.Height}};
    if (!Known) {
        Parts.push_back(window);
        return;
    }
    const TDotRectangle kept =
        TDotRectangle{{Shift[0], Shift[1]}, {Now.Place.Width + Shift[0], Now.Place.Height + Shift[1]}}
            .Intersect(window);
    for (int row = 0; row < Now.Count[1]; ++row)
        for (int column = 0; column < Now.Count[0]; ++column) {
            if (IsSame(column, row, kept))
                continue;
            TDotRectangle run = GetVisible(column, row);
            while (column + 1 < Now.Count[0] && !IsSame(column + 1, row, kept))
                run = run.Unite(GetVisible(++column, row));
            AddPart(run);
        }
}

void TPaintTiles::AddPart(const TDotRectangle& part)
{
    Parts.push_back(part);
    // A run of tiles below another.
    for (int i = 0; i + 1 < Parts.size(); ++i)
        if (GetWaste(Parts[i], part) <= 0) {
            Parts[i] = Parts[i].Unite(part);
            Parts.pop_back();
            return;
        }
    if (Parts.size() > MaxParts)
        JoinClosest();
}

void TPaintTiles::JoinClosest()
{
    int best[2] = {0, 1};
    int64_t least = GetWaste(Parts[0], Parts[1]);
    for (int a = 0; a < Parts.size(); ++a)
        for (int b = a + 1; b < Parts.size(); ++b) {
            const int64_t waste = GetWaste(Parts[a], Parts[b]);
            if (waste >= least)
                continue;
            least = waste;
            best[0] = a;
            best[1] = b;
        }
    Parts[best[0]] = Parts[best[0]].Unite(Parts[best[1]]);
    Parts.erase(Parts.begin() + best[1]);
}
