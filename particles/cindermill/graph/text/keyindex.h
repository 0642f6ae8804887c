#pragma once

#include "library/containers/hashindex.h"
#include "library/containers/string.h"

// Texts, each once, and which of them a text is.
class TKeyIndex
{
public:
    explicit TKeyIndex(int count) : Index(count) {}

    // False, with nothing added, if it is there.
    bool Add(const TString& key);
    // In the order in which they came; -1 if it is not there.
    int Find(const TString& key) const;

private:
    vector<TString> Keys;
    THashIndex Index;
};
