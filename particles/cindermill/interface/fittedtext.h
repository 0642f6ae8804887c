#pragma once

#include "library/containers/string.h"
#include "library/containers/vector.h"
#include "library/wimp/gdi/gdicontext.h"

class TVector4;

// For what is drawn without OpenGL.

// As much of the text as has room in the width, with "..." where it is cut.
void FitText(const TGDIFont& font, const char* text, int width, TString& result);
// The text in lines of the width, of which there are so many at most.
void BreakText(const TGDIFont& font, const char* text, int width, int maxLines, vector<TString>& lines);
TGDIColour ToGDIColour(const TVector4& colour);
