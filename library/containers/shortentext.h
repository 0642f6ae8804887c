#pragma once

#include "library/containers/string.h"

// A text as it may stand in a message, whose length is limited: its first characters, and how many it has
// where that is more.
TString ShortenText(const char* text, int limit);

// A text that is to stay in its line, and its field where tabs separate them: a blank for each control
// character.
TString OneLineText(const char* text);
