#pragma once

#include "library/maths/vector2.h"
#include "library/maths/vector4.h"

class TRenderer;

// What the controls of colours and pictures are drawn with.

// What shines through where something is not opaque.
void DrawCheckerboard(TRenderer& renderer, const TVector2& min, const TVector2& max);
// Red, green, blue, alpha, brought into 0 to 1; over a checkerboard where the alpha is below 1.
void DrawColourSample(TRenderer& renderer, const TVector2& min, const TVector2& max, const float* rgba);
// The lines just inside the rectangle.
void DrawFrame(TRenderer& renderer, const TVector2& min, const TVector2& max, float width,
               const TVector4& colour);
// Around an area that shows colours.
void DrawAreaFrame(TRenderer& renderer, const TVector2& min, const TVector2& max);
// Marks a place, or a height across a strip, so that it can be seen on every colour.
void DrawPlaceMarker(TRenderer& renderer, const TVector2& place);
void DrawHeightMarker(TRenderer& renderer, float left, float right, float y);
