#pragma once

#include "library/containers/vector.h"
#include "library/wimp/window.h"

// What a trace that opens should leave alone.
struct TTraceSurroundings
{
    TWindowArea Room = {0, 0, 0, 0};
    // The main window's, with its title.
    TWindowArea Menus = {0, 0, 0, 0};
    TWindowArea Graph = {0, 0, 0, 0};
    // Traces that stand already.
    vector<TWindowArea> Others;
};

// Where a trace opens, and whether it stays in front of the main window: one goes on working there meanwhile.
// It does where the menus and half of the graph are left in sight, if need be at the bottom of the screen.
// None opens upon another as long as there is room.
struct TTracePlace
{
    TWindowArea Area;
    bool StaysInFront = false;
};

TTracePlace FindTracePlace(const TTraceSurroundings& about);
