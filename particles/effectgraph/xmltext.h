#pragma once

#include "library/containers/string.h"

// The texts of node type files.

// A string of a chunk file can be no longer.
constexpr int MaxTextLength = 4095;

// A text as it may stand in a message, whose length is limited and which stays in its line.
TString QuoteText(const TString& text, int limit = 800);

// "true" or "1".
bool IsTrueText(const TString& text);
