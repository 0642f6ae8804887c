#pragma once

#include "library/containers/string.h"

// A text as it may stand in a message, whose length is limited: its first characters, and how many it has
// where that is more.
TString ShortenText(const char* text, int limit);

// A name among others, which is told in one line by its beginning and its end: at most so many bytes, but for
// the "..." of what is left out between them.
TString ShortenName(const char* name, int limit);

// A name in a line that tells of several: whole if it is not longer than those that people give.
TString GetToldName(const TString& name);

// A text that is to stay in its line, and its field where tabs separate them: a blank for each control
// character.
TString OneLineText(const char* text);
