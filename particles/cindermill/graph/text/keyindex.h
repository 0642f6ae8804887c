#pragma once

#include "library/containers/hashindex.h"
#include "library/containers/owner.h"
#include "library/containers/string.h"

// Texts, each once, and which of them a text is. However many they are, and however alike but for case, one
// is found at once.
class TKeyIndex
{
public:
    TKeyIndex();

    // False, with nothing added, if it is there.
    bool Add(const TString& key);
    // In the order in which they came; -1 if it is not there.
    int Find(const TString& key) const;
    int GetNumKeys() const { return Keys.size(); }

private:
    static uint32_t GetHash(const TString& key);
    void Grow();

    vector<TString> Keys;
    int Room = 0;
    TOwner<THashIndex> Index;
};
