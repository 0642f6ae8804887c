#pragma once

#include "library/containers/string.h"

// A text as it may stand in a message, whose length is limited: its first characters, and how many it has
// where that is more.
TString ShortenText(const char* text, int limit);
