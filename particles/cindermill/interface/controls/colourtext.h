#pragma once

#include "library/containers/string.h"

// A colour as a line of text, for the clipboard: "#RRGGBBAA" where that tells the colour exactly, otherwise
// its four numbers, "0.3, 1, 0.25, 1".
void ColourToText(const float* rgba, TString& text);
// Reads both, and "#RRGGBB" and three numbers, which leave the alpha in `rgba` as it is. Numbers may stand in
// brackets, and are brought into 0 to 1. False, with nothing changed, for any other text.
bool TextToColour(const char* text, float* rgba);
