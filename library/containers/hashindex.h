#pragma once

#include "library/containers/vector.h"

#include <cstdint>

// Hashes; that of a text is the same for texts that are equal without case.
uint32_t HashText(const char* text);
uint32_t HashNumber(uint32_t number);

// Finds the items of an array by a hash of whatever they are looked up by. Items are numbers from 0 on. Other
// values may have the same hash, so what is found has still to be compared.
class THashIndex
{
public:
    // Items are added in ascending order, as many as told.
    explicit THashIndex(int count);
    void Add(int item, uint32_t hash);
    // The items of a hash, in ascending order: the first, and the one that follows; -1 behind the last.
    int FindFirst(uint32_t hash) const;
    int FindNext(int item) const;
    // The first item of the hash that is the one looked for; -1 if there is none.
    template <class TIsWanted>
    int Find(uint32_t hash, const TIsWanted& isWanted) const
    {
        int item = FindFirst(hash);
        while (item != -1 && !isWanted(item))
            item = FindNext(item);
        return item;
    }
    void Remove(int item);

private:
    struct TItem
    {
        uint32_t Hash = 0;
        int Next = -1;
    };
    struct TChain
    {
        int First = -1;
        int Last = -1;
    };

    int GetChain(uint32_t hash) const
    {
        return static_cast<int>(hash & (static_cast<uint32_t>(Chains.size()) - 1));
    }
    int SkipOthers(int item, uint32_t hash) const;

    vector<TItem> Items;
    // A power of two of them.
    vector<TChain> Chains;
};
