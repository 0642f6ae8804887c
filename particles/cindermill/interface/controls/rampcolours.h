#pragma once

#include "library/maths/vector4.h"

// The colours of a ramp's components and of its editor; red, green, blue, alpha.
TVector4 GetRampColour(int component);
// "R", "G", "B", "A", or "X", "Y", "Z", "W".
const char* GetRampLabel(int component, bool colour);
TVector4 WithAlpha(const TVector4& colour, float alpha);
