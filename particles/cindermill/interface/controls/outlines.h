#pragma once

#include "library/maths/vector2.h"

class TRenderPath;

// Outlines that several objects are drawn with. Each takes the place of what the path had.

enum TPanelCorner
{
    PC_TOPLEFT = 1,
    PC_TOPRIGHT = 2,
    PC_BOTTOMRIGHT = 4,
    PC_BOTTOMLEFT = 8,
    PC_TOP = 3,
    PC_BOTTOM = 12,
    PC_ALL = 15
};

// A box, the named corners of which are rounded.
void MakeBox(TRenderPath& path, const TVector2& min, const TVector2& max, float radius, int corners);
// A circle around the origin.
void MakeCircle(TRenderPath& path, float radius);
