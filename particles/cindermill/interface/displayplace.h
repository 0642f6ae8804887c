#pragma once

#include "library/containers/vector.h"
#include "library/wimp/window.h"

// Where an effect's display stands when it is first shown: where it was meant to, if that leaves the graph in
// sight, otherwise beside the graph, if that leaves enough of the display, with the top of the graph, as the
// buttons and menus of the main window are above it; otherwise smaller, upon the right edge of the graph, if
// that hides little of it; and not exactly upon another one. `room` is what there is on the screen.
TWindowArea FindDisplayPlace(const TWindowArea& meant, const TWindowArea& graph, const TWindowArea& room,
                             const vector<TWindowArea>& others);

bool DoAreasOverlap(const TWindowArea& a, const TWindowArea& b);
// Whether most of the graph can be seen beside a display in front of it.
bool LeavesGraphInSight(const TWindowArea& display, const TWindowArea& graph);
// What of the area, from its left edge on, a display in front of its right edge leaves in sight: at least
// half, or all is told.
int GetClearWidth(const TWindowArea& display, const TWindowArea& area);
