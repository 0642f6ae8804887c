#include "library/containers/hashindex.h"

#include "library/containers/fnvhash.h"

static constexpr int FirstSize = 16;

// Spreads the bits, as a chain is chosen by the lowest ones.
static uint32_t Mix(uint32_t hash)
{
    hash ^= hash >> 16;
    hash *= 0x85EBCA6Bu;
    hash ^= hash >> 13;
    return hash;
}

uint32_t HashText(const char* text)
{
    uint32_t hash = FnvStart32;
    for (const char* ch = text != nullptr ? text : ""; *ch != 0; ++ch) {
        const bool isSmall = *ch >= 'a' && *ch <= 'z';
        hash = AddToFnv(hash, static_cast<uint8_t>(isSmall ? *ch - 'a' + 'A' : *ch));
    }
    return Mix(hash);
}

uint32_t HashNumber(uint32_t number)
{
    return Mix(number * 2654435761u);
}

THashIndex::THashIndex(int count)
{
    int size = FirstSize;
    while (size < count)
        size *= 2;
    Chains.resize(size);
    Items.resize(count);
}

void THashIndex::Add(int item, uint32_t hash)
{
    TChain& chain = Chains[GetChain(hash)];
    ASSERT(item > chain.Last);
    Items[item].Hash = hash;
    if (chain.Last == -1)
        chain.First = item;
    else
        Items[chain.Last].Next = item;
    chain.Last = item;
}

int THashIndex::SkipOthers(int item, uint32_t hash) const
{
    while (item != -1 && Items[item].Hash != hash)
        item = Items[item].Next;
    return item;
}

int THashIndex::FindFirst(uint32_t hash) const
{
    return SkipOthers(Chains[GetChain(hash)].First, hash);
}

int THashIndex::FindNext(int item) const
{
    return SkipOthers(Items[item].Next, Items[item].Hash);
}

void THashIndex::Remove(int item)
{
    TChain& chain = Chains[GetChain(Items[item].Hash)];
    int before = -1;
    int at = chain.First;
    while (at != item) {
        ASSERT(at != -1);
        before = at;
        at = Items[at].Next;
    }
    if (before == -1)
        chain.First = Items[item].Next;
    else
        Items[before].Next = Items[item].Next;
    if (chain.Last == item)
        chain.Last = before;
}
