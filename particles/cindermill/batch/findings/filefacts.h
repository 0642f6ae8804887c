#pragma once

#include "library/containers/append.h"

// What a report tells of its files beside findings, by the number of the file. Of some nothing may be known.
template <class T>
class TFileFacts
{
public:
    void Set(int file, const T& facts)
    {
        while (Entries.size() <= file)
            Append(Entries, TEntry());
        Entries[file].IsKnown = true;
        Entries[file].Facts = facts;
    }
    // Null where nothing is known.
    const T* Get(int file) const
    {
        return file < Entries.size() && Entries[file].IsKnown ? &Entries[file].Facts : nullptr;
    }

private:
    struct TEntry
    {
        bool IsKnown = false;
        T Facts;
    };
    vector<TEntry> Entries;
};
