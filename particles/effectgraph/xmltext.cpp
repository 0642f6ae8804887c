#include "particles/effectgraph/xmltext.h"

#include "library/containers/shortentext.h"

TString QuoteText(const TString& text, int limit)
{
    return ShortenText(OneLineText(text), limit);
}

bool IsTrueText(const TString& text)
{
    return text.Compare("true") == 0 || text.Compare("1") == 0;
}
