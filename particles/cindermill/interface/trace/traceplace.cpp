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

TWindowArea MovedBy(const TWindowArea& area, int x, int y)
{
    return TWindowArea{area.Left + x, area.Top + y, area.Right + x, area.Bottom + y};
}

bool IsWithin(const TWindowArea& area, const TWindowArea& room)
{
    return area.Left >= room.Left && area.Top >= room.Top && area.Right <= room.Right &&
           area.Bottom <= room.Bottom;
}

bool HasCornerOf(const TWindowArea& area, const vector<TWindowArea>& others)
{
    const auto isNear = [](int a, int b) { return a - b < Step && b - a < Step; };
    for (const TWindowArea& other : others)
        if (isNear(other.Left, area.Left) && isNear(other.Top, area.Top))
            return true;
    return false;
}

bool CanStayInFront(const TWindowArea& area, const TTraceSurroundings& about)
{
    return GetDots(Intersect(area, about.Menus)) == 0 &&
           2 * GetDots(Intersect(area, about.Graph)) <= GetDots(about.Graph);
}

// Aside from the others, down or up.
TWindowArea StepAside(const TWindowArea& first, int down, const TTraceSurroundings& about)
{
    TWindowArea place = first;
    while (HasCornerOf(place, about.Others)) {
        place = MovedBy(place, Step, down);
        if (!IsWithin(place, about.Room))
            return first;
    }
    return place;
}

} // namespace

TTracePlace FindTracePlace(const TTraceSurroundings& about)
{
    const TWindowArea bottom = MovedBy(FirstPlace, 0, about.Room.Bottom - Step - FirstPlace.Bottom);
    const TWindowArea places[] = {StepAside(FirstPlace, Step, about), StepAside(bottom, -Step, about)};
    for (const TWindowArea& place : places)
        if (CanStayInFront(place, about))
            return TTracePlace{place, true};
    return TTracePlace{places[0], false};
}
