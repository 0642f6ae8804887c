#include "particles/cindermill/interface/trace/traceplace.h"

namespace {

constexpr TWindowArea FirstPlace = {50, 50, 700, 500};
// More than the height of a title, which may lie above the place or in it.
constexpr int Step = 28;

int GetLength(int length)
{
    return length > 0 ? length : 0;
}

int GetDots(const TWindowArea& area)
{
    return GetLength(area.Right - area.Left) * GetLength(area.Bottom - area.Top);
}

TWindowArea Intersect(const TWindowArea& a, const TWindowArea& b)
{
    TWindowArea common;
    common.Left = a.Left > b.Left ? a.Left : b.Left;
    common.Top = a.Top > b.Top ? a.Top : b.Top;
    common.Right = a.Right < b.Right ? a.Right : b.Right;
    common.Bottom = a.Bottom < b.Bottom ? a.Bottom : b.Bottom;
    return common;
}

bool HasCornerOf(const TWindowArea& area, const vector<TWindowArea>& others)
{
    const auto isNear = [](int a, int b) { return a - b < Step && b - a < Step; };
    for (const TWindowArea& other : others)
        if (isNear(other.Left, area.Left) && isNear(other.Top, area.Top))
            return true;
    return false;
}

} // namespace

TWindowArea FindTracePlace(const vector<TWindowArea>& others, const TWindowArea& room)
{
    TWindowArea place = FirstPlace;
    while (HasCornerOf(place, others)) {
        place = {place.Left + Step, place.Top + Step, place.Right + Step, place.Bottom + Step};
        if (place.Right > room.Right || place.Bottom > room.Bottom)
            return FirstPlace;
    }
    return place;
}

bool LeavesGraphInSight(const TWindowArea& trace, const TWindowArea& graph)
{
    return 2 * GetDots(Intersect(trace, graph)) <= GetDots(graph);
}
