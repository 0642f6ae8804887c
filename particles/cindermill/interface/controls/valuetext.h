#pragma once

#include "library/containers/string.h"

// Values as lines of text, for the clipboard. Written so that what is read is exactly what was written,
// whatever the system's language.

// "1, 0.5, -3".
void PrintNumbers(TString& text, const double* numbers, int count);
void PrintFloats(TString& text, const float* numbers, int count);
// Exactly so many finite numbers with commas, semicolons or blanks between them, in brackets or without.
bool ParseNumbers(const char* text, double* numbers, int count);
// "true", "false", "1" or "0", without case.
bool ParseSwitch(const char* text, bool& result);
