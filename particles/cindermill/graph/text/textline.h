#pragma once

#include "library/containers/append.h"
#include "library/containers/string.h"

// One value of an effect: what it is, and what it comes to.
struct TTextLine
{
    bool operator==(const TTextLine& other) const
    {
        return Node == other.Node && Label == other.Label && Value == other.Value;
    }

    TString Label;
    TString Value;
    // The number of the node at the other end of a wire, whose port is the value; -1 for all that is no wire.
    int Node = -1;
};

using TTextLines = vector<TTextLine>;

// A text that grows at its end, however long it is.
class TTextBuffer
{
public:
    TTextBuffer& operator<<(const char* text);
    TTextBuffer& operator<<(const TString& text) { return *this << text.Print(); }
    TTextBuffer& operator<<(int number);
    // The shortest digits that read back as this very number; every bit of one that is none.
    TTextBuffer& operator<<(float number);
    // With a space between two.
    TTextBuffer& AddFloats(const float* numbers, int count);
    // In quotes, with all but printed characters escaped, so that it stands on one line and is valid UTF-8.
    TTextBuffer& AddQuoted(const char* text);
    // Valid until the next change.
    const char* Print();
    TString GetText() { return TString(Print()); }

private:
    void Add(const char* text, int length);

    vector<char> Text;
};

// A name as it stands in a text, with its number if it is not the first of that name in its list.
TString QuoteNumbered(const TString& name, int number);
