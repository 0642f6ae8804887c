#include "particles/cindermill/interface/displayplace.h"

namespace {

// Less is no display to work with.
constexpr int LeastWidth = 400;
constexpr int LeastHeight = 100;
constexpr int Step = 24;

int GetWidth(const TWindowArea& area)
{
    return area.Right - area.Left;
}

void MoveBy(TWindowArea& area, int x, int y)
{
    area.Left += x;
    area.Right += x;
    area.Top += y;
    area.Bottom += y;
}

// Between two edges; false if there is not enough between them. Against the one that the graph is at.
bool FitBetween(TWindowArea& area, int left, int right, bool atLeft)
{
    if (right - left < LeastWidth)
        return false;
    const int width = GetWidth(area) < right - left ? GetWidth(area) : right - left;
    area.Left = atLeft ? left : right - width;
    area.Right = area.Left + width;
    return true;
}

bool HasSameCorner(const TWindowArea& area, const vector<TWindowArea>& others)
{
    for (const TWindowArea& other : others)
        if (other.Left == area.Left && other.Top == area.Top)
            return true;
    return false;
}

} // namespace

bool DoAreasOverlap(const TWindowArea& a, const TWindowArea& b)
{
    return a.Left < b.Right && b.Left < a.Right && a.Top < b.Bottom && b.Top < a.Bottom;
}

TWindowArea FindDisplayPlace(const TWindowArea& meant, const TWindowArea& graph, const TWindowArea& room,
                             const vector<TWindowArea>& others)
{
    TWindowArea place = meant;
    if (DoAreasOverlap(place, graph) && !FitBetween(place, graph.Right, room.Right, true))
        FitBetween(place, room.Left, graph.Left, false);
    // Down, so that its title is seen, and aside only where that hides no more of the graph.
    const TWindowArea first = place;
    const int aside = DoAreasOverlap(first, graph) ? Step : 0;
    while (HasSameCorner(place, others)) {
        MoveBy(place, aside, Step);
        if (place.Top + LeastHeight > room.Bottom)
            return first;
    }
    return place;
}
