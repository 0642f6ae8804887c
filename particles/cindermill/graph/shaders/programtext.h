#pragma once

#include "library/containers/string.h"
#include "library/containers/vector.h"

class TArbProgram;

// The text of a program for the driver while it is written: appending takes constant time on average, unlike
// that of a TString, which is scanned for its end each time.
class TProgramText
{
public:
    void Append(const char* text);
    void Append(const char* text, int count);
    // At most 255 characters.
    void Print(const char* format, ...) CINDERMILL_PRINTF(2, 3);

    int Length() const { return Characters.size(); }
    const char* Data() const { return Characters.data(); }
    void GetText(TString& result) const;

private:
    vector<char> Characters;
};

// A copy of a program's text without the two option lines that only one vendor's drivers know.
void StripVendorOptions(const char* text, TString& result);

// Gives a translated program's text to the driver in the form that it takes.
bool AssembleForDriver(TArbProgram& program, const TString& text);
