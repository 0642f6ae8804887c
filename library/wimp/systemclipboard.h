#pragma once

#include "library/containers/owner.h"
#include "library/containers/vector.h"

#include <cstdint>

class TString;
class TSystemClipboardData;

// The system's clipboard, for what is there in a form of the program's own and as text at once. Other
// programs answer what is asked of theirs; one that does not makes a question last as long as the window
// system waits.
class TSystemClipboard
{
public:
    // False without a window system; then nothing is ever there.
    static bool IsThere();

    TSystemClipboard();
    ~TSystemClipboard();

    // Bytes of a type, and a text for all other programs; either may be empty.
    void Put(const char* type, const vector<uint8_t>& bytes, const char* text);
    // Whether what was put there last is still there.
    bool IsOwn() const;
    bool IsEmpty();
    bool HasType(const char* type);
    bool HasText();
    // False, and nothing in the result, where there is none, or more bytes than the limit. A text is UTF-8
    // and holds no zero.
    bool GetBytes(const char* type, int limit, vector<uint8_t>& bytes);
    bool GetText(int limit, TString& text);
    // Whether whoever has the clipboard now has let the last question wait for long.
    bool IsSlow() const;

private:
    TOwner<TSystemClipboardData> Data;
};
