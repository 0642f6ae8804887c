#pragma once

#include "library/containers/string.h"

// Numbers as people write them: a sign, digits, a point. They do not depend on the system's language.

// Whether all of the text is one finite number; a whole one has no point. What is too large becomes the
// largest double.
bool ParseNumber(const char* text, bool isFloat, double& value);
// What of a text makes a number: the first one in it, in the way that a person would type it; empty for none.
void FindNumber(const char* text, TString& result);
void FindWholeNumber(const char* text, TString& result);
