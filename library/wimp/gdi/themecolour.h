#pragma once

#include <cstdint>

// A colour as 0xRRGGBB.
using TGDIColour = uint32_t;

// Stands for the system's colour of buttons and of what stands between windows, whatever it is when drawn.
constexpr TGDIColour ButtonColour = 0x1000000;

// Whether the desktop shows light text on dark paper.
bool IsDarkTheme();

// The colour that one of a light desktop has on the desktop as it is: the same on a light one; on a dark one
// its hue stays, and what was as light as paper becomes as dark as it.
TGDIColour GetThemeColour(TGDIColour colour);
