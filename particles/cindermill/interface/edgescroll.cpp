#include "particles/cindermill/interface/edgescroll.h"

#include "library/system/clock.h"
#include "library/wimp/wimp.h"

namespace {

// Shared by all drags.
int EdgeMargin = TGraphView::ScrollMargin;

// In milliseconds, each for one step.
int GetPeriod(int rested)
{
    constexpr int Longest = 10;
    constexpr int Shortest = 4;
    constexpr int Quickening = 300;
    const int period = Longest - rested / Quickening;
    return period > Shortest ? period : Shortest;
}

} // namespace

bool TEdgeScroll::Scroll(TGraphView& view, double x, double y, int width, int height)
{
    bool moved = false;
    for (int i = 0; i < NumSteps; ++i)
        moved = view.ScrollAtEdge(x, y, width, height, EdgeMargin);
    TMouseDrag* drag = moved ? TWimp::Get().GetMouseDrag() : nullptr;
    const uint32_t now = GetTickCount();
    if (drag != Drag)
        Since = now;
    Drag = drag;
    LastStep = now;
    return moved;
}

void TEdgeScroll::OnIdle()
{
    // Not at once: a click near an edge may tremble.
    constexpr int Delay = 200;
    // What a slow machine has missed is not made up for.
    constexpr int MaxSteps = 20;
    TMouseDrag* drag = TWimp::Get().GetMouseDrag();
    if (Drag == nullptr || drag != Drag) {
        Drag = nullptr;
        return;
    }
    const uint32_t now = GetTickCount();
    const int rested = static_cast<int>(now - Since) - Delay;
    const int waited = static_cast<int>(now - LastStep);
    const int steps = rested > 0 ? (waited < rested ? waited : rested) / GetPeriod(rested) : 0;
    if (steps == 0)
        return;
    NumSteps = steps < MaxSteps ? steps : MaxSteps;
    const uint32_t since = Since;
    // Set again by what scrolls.
    Drag = nullptr;
    drag->FollowAgain();
    NumSteps = 1;
    Since = since;
}
