#include "particles/cindermill/interface/displayplace.h"

namespace {

// Less is no display to work with, unless there is no room for more.
constexpr int LeastWidth = 400;
constexpr int LeastHeight = 300;
constexpr int SmallestWidth = 300;
constexpr int Step = 24;
constexpr int Shrink = 50;
// What the views of the next documents stand further aside than this one's: the display is in front of them
// too.
constexpr int Aside = 48;
// Of a display with its frame, which is not known before it is shown.
constexpr int FrameHeight = 40;
// Of a graph's frame, with the tabs.
constexpr int HeadHeight = 64;
// A display in front of the graph hides one of so many parts of it at most, and less if it can be smaller.
constexpr int LargestPart = 4;
constexpr int SmallPart = 8;

int GetWidth(const TWindowArea& area)
{
    return area.Right - area.Left;
}

int GetHeight(const TWindowArea& area)
{
    return area.Bottom - area.Top;
}

int Least(int a, int b)
{
    return a < b ? a : b;
}

int Most(int a, int b)
{
    return a > b ? a : b;
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

// A display that stands there already leaves the graph in sight, so the next one stands in line with it.
bool StandInLine(TWindowArea& area, const TWindowArea& graph, const TWindowArea& room,
                 const vector<TWindowArea>& others)
{
    for (const TWindowArea& other : others) {
        if (other.Left >= graph.Right && other.Left <= graph.Right + Aside &&
            FitBetween(area, other.Left, room.Right, true))
            return true;
        if (other.Right <= graph.Left && other.Right >= graph.Left - Aside &&
            FitBetween(area, room.Left, other.Right, false))
            return true;
    }
    return false;
}

// Not above the graph, and as high as that leaves it.
void StartAtTop(TWindowArea& area, const TWindowArea& graph, const TWindowArea& room)
{
    const int last = room.Bottom - FrameHeight - LeastHeight;
    const int top = Least(graph.Top, last);
    if (top > area.Top)
        MoveBy(area, 0, top - area.Top);
}

bool FitBeside(TWindowArea& area, const TWindowArea& graph, const TWindowArea& room)
{
    return FitBetween(area, graph.Right + Aside, room.Right, true) ||
           FitBetween(area, graph.Right, room.Right, true) || FitBetween(area, room.Left, graph.Left, false);
}

// One of so many parts of the graph.
bool HidesAtMost(const TWindowArea& display, const TWindowArea& graph, int part)
{
    if (!DoAreasOverlap(display, graph))
        return true;
    const int64_t width = Least(display.Right, graph.Right) - Most(display.Left, graph.Left);
    const int64_t height = Least(display.Bottom, graph.Bottom) - Most(display.Top, graph.Top);
    return width * height * part <= static_cast<int64_t>(GetWidth(graph)) * GetHeight(graph);
}

// Below the buttons and the tabs of the graph, above its map.
bool FitUpon(TWindowArea& area, const TWindowArea& graph, const TWindowArea& room)
{
    const int width = GetWidth(area);
    const int height = GetHeight(area);
    TWindowArea place;
    place.Right = room.Right;
    place.Top = graph.Top + HeadHeight;
    for (int wanted = width; wanted >= SmallestWidth; wanted -= Shrink) {
        place.Left = place.Right - wanted;
        place.Bottom = place.Top + Most(wanted * height / width, wanted * 3 / 4) + FrameHeight;
        const int part = wanted > LeastWidth ? SmallPart : LargestPart;
        if (place.Left < room.Left || place.Bottom > room.Bottom || !HidesAtMost(place, graph, part))
            continue;
        place.Bottom -= FrameHeight;
        area = place;
        return true;
    }
    return false;
}

// The transport is at its bottom.
void EndWithin(TWindowArea& area, const TWindowArea& room)
{
    const int bottom = room.Bottom - FrameHeight;
    if (area.Bottom <= bottom)
        return;
    const int least = area.Top + LeastHeight;
    area.Bottom = bottom > least ? bottom : least;
}

bool IsNear(int a, int b)
{
    return (a < b ? b - a : a - b) < Step / 2;
}

// Nearly so is the same: where a window was meant to stand and where it does differ by its frame.
bool HasSameCorner(const TWindowArea& area, const vector<TWindowArea>& others)
{
    for (const TWindowArea& other : others)
        if (IsNear(other.Left, area.Left) && IsNear(other.Top, area.Top))
            return true;
    return false;
}

} // namespace

bool DoAreasOverlap(const TWindowArea& a, const TWindowArea& b)
{
    return a.Left < b.Right && b.Left < a.Right && a.Top < b.Bottom && b.Top < a.Bottom;
}

bool LeavesGraphInSight(const TWindowArea& display, const TWindowArea& graph)
{
    return HidesAtMost(display, graph, LargestPart);
}

int GetClearWidth(const TWindowArea& display, const TWindowArea& area)
{
    const bool isAtRight = DoAreasOverlap(display, area) && display.Right >= area.Right;
    // Beside a wide one there is less room than above or below it.
    const bool isUseful = 2 * (display.Left - area.Left) >= GetWidth(area);
    return (isAtRight && isUseful ? display.Left : area.Right) - area.Left;
}

TWindowArea FindDisplayPlace(const TWindowArea& meant, const TWindowArea& graph, const TWindowArea& room,
                             const vector<TWindowArea>& others)
{
    TWindowArea place = meant;
    bool isUpon = false;
    if (DoAreasOverlap(place, graph)) {
        if (StandInLine(place, graph, room, others) || FitBeside(place, graph, room))
            StartAtTop(place, graph, room);
        else
            isUpon = !FitUpon(place, graph, room);
    }
    // Down, so that its title is seen, and aside only where that hides no more of the graph.
    const TWindowArea first = place;
    const int aside = isUpon ? Step : 0;
    while (HasSameCorner(place, others)) {
        MoveBy(place, aside, Step);
        if (place.Top + LeastHeight + FrameHeight <= room.Bottom)
            continue;
        place = first;
        break;
    }
    EndWithin(place, room);
    return place;
}
