#pragma once

#include "library/containers/string.h"
#include "library/containers/vector.h"
#include "library/wimp/gdi/gdicontext.h"

// The text in lines of the width, broken at its line ends and between words. There are so many lines at most,
// of which the last gives way to an ellipsis.
void BreakText(const TGDIFont& font, const char* text, int width, int maxLines, vector<TString>& lines);
