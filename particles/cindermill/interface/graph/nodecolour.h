#pragma once

#include "library/maths/vector4.h"
#include "library/wimp/gdi/themecolour.h"

// The colours of the drawing of nodes; red, green, blue, alpha.

// The colour that stands for a node type's colour number; numbers out of range count as the first.
TVector4 GetNodeTypeColour(int colour);
// Every channel but alpha moved by the delta, and kept from 0 to 1.
TVector4 ShiftColour(const TVector4& colour, float delta);
// From `a`, at 0, to `b`, at 1.
TVector4 MixColours(const TVector4& a, const TVector4& b, float amount);
// For text on the colour: near white or near black.
TVector4 GetContrastColour(const TVector4& colour);
// For what is drawn without OpenGL.
TGDIColour ToGDIColour(const TVector4& colour);
