#include "particles/cindermill/graph/text/keyindex.h"

#include "library/containers/append.h"
#include "library/containers/fnvhash.h"

static constexpr int FirstRoom = 8;

TKeyIndex::TKeyIndex()
{
    Grow();
}

// Case counts, unlike in HashText.
uint32_t TKeyIndex::GetHash(const TString& key)
{
    uint32_t hash = FnvStart32;
    for (const char* at = key.Print(); *at != '\0'; ++at)
        hash = AddToFnv(hash, static_cast<uint8_t>(*at));
    return HashNumber(hash);
}

void TKeyIndex::Grow()
{
    Room = Room == 0 ? FirstRoom : 2 * Room;
    Index.Reset(new THashIndex(Room));
    for (int i = 0; i < Keys.size(); ++i)
        Index->Add(i, GetHash(Keys[i]));
}

bool TKeyIndex::Add(const TString& key)
{
    if (Find(key) != -1)
        return false;
    if (Keys.size() == Room)
        Grow();
    Index->Add(Keys.size(), GetHash(key));
    Append(Keys, key);
    return true;
}

int TKeyIndex::Find(const TString& key) const
{
    return Index->Find(GetHash(key), [&](int i) { return Keys[i] == key; });
}
