#pragma once

#include "library/containers/string.h"

#include <cstdint>

// The words of a command line, taken from the front.
class TArguments
{
public:
    TArguments(int count, char** words) : Count(count), Words(words) {}

    bool IsEmpty() const { return Next == Count; }
    int GetNumLeft() const { return Count - Next; }
    // Null when there is none left.
    const char* Take() { return Next < Count ? Words[Next++] : nullptr; }
    // The next one, which stays; null when there is none left.
    const char* Peek() const { return Next < Count ? Words[Next] : nullptr; }
    // Takes the next word if it is this one.
    bool TakeIf(const char* word);
    // The name of a file. Null where there is none: a word that begins as options do is one only behind "--",
    // so that no slip of the hand makes a file of it.
    const char* TakeName();
    // Whether one of those left is this one; behind "--" all are names.
    bool HasOption(const char* word) const;

private:
    int Count;
    char** Words;
    int Next = 0;
    bool OnlyNames = false;
};

// Each is false unless the whole word is such a number in its range.
bool ParseWhole(const char* word, int min, int max, int& result);
bool ParseUnsigned(const char* word, uint32_t& result);
bool ParseReal(const char* word, float& result);
