#include "particles/cindermill/graph/text/keyindex.h"

#include "library/containers/append.h"

bool TKeyIndex::Add(const TString& key)
{
    if (Find(key) != -1)
        return false;
    Index.Add(Keys.size(), HashText(key.Print()));
    Append(Keys, key);
    return true;
}

int TKeyIndex::Find(const TString& key) const
{
    return Index.Find(HashText(key.Print()), [&](int i) { return Keys[i] == key; });
}
