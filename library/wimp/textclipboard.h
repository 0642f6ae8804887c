#pragma once

class TString;

// The text of the system's clipboard. Without a window system the program keeps it to itself.
void SetClipboardText(const char* text);
// False, and the text empty, if there is none.
bool GetClipboardText(TString& text);
