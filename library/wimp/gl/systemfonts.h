#pragma once

#include "library/containers/string.h"
#include "library/containers/vector.h"

// The font that is always there, whatever the system has.
constexpr const char* DefaultFontName = "Arial (TrueType)";

// A font as the system names it, such as "Arial (TrueType)", and its file, which exists.
struct TFontFile
{
    TString Name;
    TString Path;
};

// Appends the system's fonts. "Arial (TrueType)" is always among them where there is any font: without the
// face itself it is the system's default without serifs.
void ListSystemFonts(vector<TFontFile>& fonts);
