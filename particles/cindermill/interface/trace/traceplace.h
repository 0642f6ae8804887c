#pragma once

#include "library/containers/vector.h"
#include "library/wimp/window.h"

// Where the first trace opens, or further down and aside where others stand, as far as the screen has room.
TWindowArea FindTracePlace(const vector<TWindowArea>& others, const TWindowArea& room);

// Whether at least half of the graph is left in sight, so that one can go on working there with the trace in
// front.
bool LeavesGraphInSight(const TWindowArea& trace, const TWindowArea& graph);
