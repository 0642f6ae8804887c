#include "library/containers/shortentext.h"

#include <cstddef>

namespace {

constexpr int MaxFollowing = 3;

// Not one of the bytes of a character behind its first.
bool IsFirstByte(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0) != 0x80;
}

// Where a text may be cut so near below the limit that no character of it is broken; a text that is no UTF-8
// has none such, and is cut at the limit.
int FindCut(const char* text, int limit)
{
    for (int cut = limit; cut > 0 && cut >= limit - MaxFollowing; --cut)
        if (IsFirstByte(text[cut]))
            return cut;
    return limit;
}

// The same above it.
int FindCutAbove(const char* text, int limit)
{
    for (int cut = limit; cut <= limit + MaxFollowing; ++cut)
        if (IsFirstByte(text[cut]))
            return cut;
    return limit;
}

} // namespace

TString ShortenText(const char* text, int limit)
{
    TString result(text);
    const int length = result.Length();
    if (length <= limit)
        return result;
    TString end;
    end.Format("... (%d characters)", length);
    result.Left(text, FindCut(text, limit));
    result += end;
    return result;
}

TString ShortenName(const char* name, int limit)
{
    static const char* const Gap = "...";
    constexpr int GapLength = 3;
    const TString line = OneLineText(name);
    const int length = line.Length();
    if (length <= limit)
        return line;
    const int kept = limit > GapLength ? limit - GapLength : 0;
    const int end = kept / 2;
    TString result;
    result.Left(line.Print(), FindCut(line.Print(), kept - end));
    result += Gap;
    result += line.Print() + FindCutAbove(line.Print(), length - end);
    return result;
}

TString GetToldName(const TString& name)
{
    constexpr int MostBytes = 30;
    return ShortenName(name.Print(), MostBytes);
}

TString OneLineText(const char* text)
{
    TString result(text);
    const int length = result.Length();
    char* line = new char[static_cast<size_t>(length) + 1];
    for (int i = 0; i < length; ++i)
        line[i] = static_cast<unsigned char>(text[i]) < ' ' || text[i] == '\x7F' ? ' ' : text[i];
    line[length] = 0;
    result.Adopt(line);
    return result;
}
