#pragma once

#include "particles/cindermill/interface/graphview.h"

#include <cstdint>

class TMouseDrag;

// The scrolling of a view by a drag close to its edges: a step for each move of the mouse, and while it rests
// there, steps in time, which come the faster the longer it does.
class TEdgeScroll
{
public:
    // The running drag is at the pixel. False if the view stays as it is.
    bool Scroll(TGraphView& view, double x, double y, int width, int height);
    // An idle pass: when steps are due, the drag is told once more where the mouse is.
    void OnIdle();

private:
    // The drag whose last move has scrolled; null for none.
    TMouseDrag* Drag = nullptr;
    // What its next move is for.
    int NumSteps = 1;
    uint32_t Since = 0;
    uint32_t LastStep = 0;
};
