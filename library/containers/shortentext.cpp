#include "library/containers/shortentext.h"

#include <cstddef>

// Where a text may be cut so near below the limit that no character of it is broken; a text that is no UTF-8
// has none such, and is cut at the limit.
static int FindCut(const char* text, int limit)
{
    constexpr int MaxFollowing = 3;
    for (int cut = limit; cut > 0 && cut >= limit - MaxFollowing; --cut)
        if ((static_cast<unsigned char>(text[cut]) & 0xC0) != 0x80)
            return cut;
    return limit;
}

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
