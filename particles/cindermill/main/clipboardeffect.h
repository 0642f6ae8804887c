#pragma once

#include "library/containers/string.h"
#include "library/containers/vector.h"

#include <cstdint>

class TClipboard;
class TNodeTypeLibrary;

// Of the file of an effect.
constexpr int MaxClipboardEffect = 16 << 20;

// Copied nodes as other programs take them: the file of a small effect, and the text of it. What could not be
// read again, as it would be too much, is left empty.
void WriteClipboardEffect(const TClipboard& clipboard, vector<uint8_t>& effect, TString& text);

// The way back, for what comes from elsewhere and may hold anything. The clipboard takes all of it or, with
// the reason, nothing.
bool ReadClipboardEffect(const vector<uint8_t>& effect, const TNodeTypeLibrary& types, TClipboard& clipboard,
                         TString& fault);
bool ReadClipboardText(const char* text, const TNodeTypeLibrary& types, TClipboard& clipboard,
                       TString& fault);
