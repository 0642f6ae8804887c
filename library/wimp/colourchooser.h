#pragma once

#include "library/wimp/gdi/themecolour.h"

// Hears of a colour that is tried.
using TColourTried = void (*)(TGDIColour colour, void* context);

// Asks for a colour, beginning with the one that is given. Until it is chosen, each that is looked at is
// told. False, and the colour as it was, on Cancel.
bool ChooseColour(const char* title, TGDIColour& colour, TColourTried tried, void* context);
