#pragma once

class TString;

// The text of the system's clipboard. Without a window system the program keeps it to itself.
void SetClipboardText(const char* text);
// Whether there is any; nothing of it is fetched.
bool HasClipboardText();
// False, and the text empty, if there is none, or more than anything takes.
bool GetClipboardText(TString& text);
