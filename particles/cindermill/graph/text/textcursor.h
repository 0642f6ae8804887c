#pragma once

#include "library/containers/string.h"

#include <cstring>

inline bool IsText(const TString& text, const char* word)
{
    return text.Compare(word, true) == 0;
}

// Reads one line of an effect's text from its start to its end. Each form takes what it names or, with false,
// nothing.
class TTextCursor
{
public:
    TTextCursor() = default;
    TTextCursor(const char* begin, const char* end) : At(begin), End(end) {}
    explicit TTextCursor(const TString& text) : TTextCursor(text.Print(), text.Print() + text.Length()) {}

    bool IsAtEnd() const { return At == End; }
    const char* GetPosition() const { return At; }
    TString GetRest() const;
    bool Take(const char* text);
    // All that is left, if it is this, and so with the others that take the last.
    bool TakeLast(const char* text);
    // A text in quotes, without them and with what is escaped in it put back. None that is longer than a file
    // can hold.
    bool TakeQuoted(TString& text);
    // A name in quotes, and the number behind it, which is told where several share the name.
    bool TakeName(TString& name);
    bool TakeInt(int& number);
    bool TakeFloat(float& number);
    // With a space between two.
    bool TakeFloats(float* numbers, int count);
    bool TakeLastQuoted(TString& text);
    bool TakeLastInt(int& number);
    bool TakeLastFloats(float* numbers, int count);
    // What stands ahead of the first ": " that is in no quotes, and the cursor behind that.
    bool TakeLabel(TTextCursor& label);
    // Up to the next line end, and the cursor behind it.
    void TakeLine(TString& line);
    // Up to the end of the last name in quotes, or the last ahead of one that is broken; nothing if there is
    // none.
    TString TakePath();

private:
    bool TakeEscaped(char& character);
    bool EndHere(bool taken, const char* start);

    const char* At = nullptr;
    const char* End = nullptr;
};
