#include "library/containers/shortentext.h"

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
