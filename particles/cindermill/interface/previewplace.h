#pragma once

// A rectangle of the screen; the right and bottom edge excluded.
struct TScreenPlace
{
    int Left = 0;
    int Top = 0;
    int Right = 0;
    int Bottom = 0;
};

// Where a preview opens: beside the graph, or, where there is no room for that, small in the corner that
// hides least of it. `number` others have opened before, which it does not hide exactly.
TScreenPlace FindPreviewPlace(const TScreenPlace& screen, const TScreenPlace& graph, int number);
