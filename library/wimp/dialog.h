#pragma once

#include "library/containers/string.h"
#include "library/containers/vector.h"

// The program's dialogs that are made of a text, a list and buttons. Each waits for the answer.

// A list of lines with an OK button.
void ListDialog(int id, const char* title, const vector<TString>& lines);
// A read-only text with an OK button.
void TextDialog(int id, const char* title, const char* text);
// A text, a list, and buttons; returns the number of the one chosen. Closing the dialog is the last one.
int ChoiceDialog(int id, const char* title, const char* text, const vector<TString>& lines,
                 const vector<TString>& buttons);
