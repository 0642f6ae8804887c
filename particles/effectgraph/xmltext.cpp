#include "particles/effectgraph/xmltext.h"

TString QuoteText(const TString& text, int limit)
{
    TString quoted;
    if (text.Length() <= limit)
        quoted = text;
    else
        quoted.Left(text, limit);
    return quoted;
}

bool IsTrueText(const TString& text)
{
    return text.Compare("true") == 0 || text.Compare("1") == 0;
}
