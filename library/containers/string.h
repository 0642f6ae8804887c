#pragma once

#include "library/containers/log.h"
#include "library/containers/vector.h"

// An owned, NUL-terminated 8-bit text. The empty string is always the null pointer; the length is found by
// scanning. A string may be assigned from a pointer into itself.
class TString
{
public:
    TString() = default;
    TString(const char* text);
    TString(const TString& other);
    TString(TString&& other) noexcept;
    ~TString();

    // The text; null for the empty string.
    const char* c_str() const { return Text; }
    operator const char*() const { return Text; }
    // The text for printing; "" for the empty string.
    const char* Print() const { return Text != nullptr ? Text : ""; }

    int Length() const;
    bool IsEmpty() const { return Text == nullptr; }
    // Byte order, as signed characters; null comes before every text, "" included. Zero means equal.
    int Compare(const char* other, bool caseSensitive = false) const;
    // Zero if the string begins with `prefix`.
    int CompareStart(const char* prefix, bool caseSensitive = false) const;
    // By bytes, case counts: for containers.
    bool operator==(const TString& other) const { return Compare(other.Text, true) == 0; }
    bool operator<(const TString& other) const { return Compare(other.Text, true) < 0; }

    TString& operator=(const char* text);
    TString& operator=(const TString& other);
    TString& operator=(TString&& other) noexcept;
    void Assign(const char* begin, const char* end);
    // Takes over a block made with new char[].
    void Adopt(char* block);
    TString& operator+=(const char* text);
    // The first, the last n characters of `text`.
    void Left(const char* text, int n);
    void Right(const char* text, int n);
    // At most 8,191 characters, or an assertion.
    TString& Format(const char* format, ...) CINDERMILL_PRINTF(2, 3);

    // The first number in the text, skipping all before it; 0 if there is none.
    int ToInt() const;
    // An optional "0x" or "&", then hexadecimal digits.
    unsigned ToHex() const;
    // No exponents: "1e5" is 1.
    float ToFloat() const;

    // An index, or -1.
    int Find(char ch, int start = 0) const;
    int FindLast(char ch) const;
    int FindString(const char* text, bool caseSensitive = false) const;

    // Each appends to its result.
    void Split(vector<TString>& result, char sep) const;
    void SplitBracketed(vector<TString>& result, char sep) const;
    void SplitInts(vector<int>& result, char sep) const;
    void SplitFloats(vector<float>& result, char sep) const;

    // Each returns the index of `ch`, or -1 with nothing changed. The character becomes the string's end, and
    // `rest` takes what stood behind it.
    int SplitAtFirst(char ch, TString& rest);
    int TruncateAtFirst(char ch);
    int SplitAtLast(char ch, TString& rest);
    int TruncateAtLast(char ch);

    // ASCII letters only.
    void ToUpper();
    void ToLower();
    void Replace(char from, char to);
    void Trim();

    // The part of `path` behind the last separator, before it, and behind the last point.
    void SetFileName(const char* path);
    void SetDirectory(const char* path);
    void SetExtension(const char* path);
    // "\\" to "/", lower case, no separator at the end.
    void NormalisePath();
    bool IsAbsolutePath() const;
    // For display in narrow places: middle directories give way to "...".
    void ShortenPath(TString& out, int maxLength) const;
    // `target` as seen from the directory of `base`. The two must differ.
    void MakeRelative(const char* base, const char* target);
    void MakeAbsolute(const char* base, const char* relative);

private:
    int CutAt(int at, TString* rest);
    void DropIfEmpty();

    char* Text = nullptr;
};

// Comparison of two texts by the rules of TString::Compare, either of which may be null.
int CompareText(const char* a, const char* b, bool caseSensitive = false);

// False if no digit was seen; the result is then 0.
bool ParseInt(const char* text, int& result);
bool ParseFloat(const char* text, float& result);
// Leaves `text` behind the number.
bool ParseIntAdvance(const char*& text, int& result);
