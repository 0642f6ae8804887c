#pragma once

#include "library/containers/string.h"
#include "particles/effectgraph/rampparameter.h"

// Curves as a line of text, such as "{0,1}, {0.25,1}, {0.75,0}, {1,0}; {0,2}": the points of a curve, then
// those of the next. Numbers are told so that they read back exactly, whatever the system's language.
void WriteRampText(const vector<TRampPoint>* curves, int count, TString& text);
// How many curves the text holds, at most `max` of which are read; -1 if it is no such text, a number is not
// finite, or a curve ends within a segment.
int ReadRampText(const char* text, vector<TRampPoint>* curves, int max);
