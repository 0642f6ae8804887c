#include "library/containers/shortentext.h"

#include <cstddef>

TString ShortenText(const char* text, int limit)
{
    TString result(text);
    const int length = result.Length();
    if (length <= limit)
        return result;
    TString end;
    end.Format("... (%d characters)", length);
    result.Left(text, limit);
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
