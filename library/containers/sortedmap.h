#pragma once

#include "library/containers/append.h"
#include "library/containers/map.h"

// A map whose iteration goes by ascending key, for tables whose order reaches a file or the screen.
template <class K, class V>
class sortedmap
{
public:
    using TEntry = TMapEntry<K, V>;
    using iterator = TEntry*;
    using const_iterator = const TEntry*;

    iterator begin() { return Entries.begin(); }
    iterator end() { return Entries.end(); }
    const_iterator begin() const { return Entries.begin(); }
    const_iterator end() const { return Entries.end(); }
    int size() const { return Entries.size(); }
    bool empty() const { return Entries.empty(); }
    void clear() { Entries.clear(); }

    iterator find(const K& key)
    {
        const int at = LowerBound(key);
        if (at < Entries.size() && Entries[at].first == key)
            return Entries.begin() + at;
        return Entries.end();
    }
    const_iterator find(const K& key) const { return const_cast<sortedmap*>(this)->find(key); }
    // The entry of the key, made with a default value if there is none.
    V& operator[](const K& key)
    {
        const int at = LowerBound(key);
        if (at == Entries.size() || !(Entries[at].first == key)) {
            MakeRoom(Entries, 1);
            Entries.insert(Entries.begin() + at, TEntry{key, V()});
        }
        return Entries[at].second;
    }
    iterator erase(iterator it) { return Entries.erase(it); }
    // The entry at a position in key order.
    const TEntry& at(int n) const { return Entries[n]; }

private:
    int LowerBound(const K& key) const
    {
        int low = 0;
        int high = Entries.size();
        while (low < high) {
            const int middle = (low + high) / 2;
            if (Entries[middle].first < key)
                low = middle + 1;
            else
                high = middle;
        }
        return low;
    }

    vector<TEntry> Entries;
};
