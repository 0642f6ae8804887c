#pragma once

#include "library/containers/vector.h"

// The listeners of one object: pairs of a plain function and a data pointer, called in order of registration.
// TArgs are what the caller gives ahead of the data pointer.
template <class... TArgs>
class TCallbackList
{
public:
    using TFunction = void (*)(TArgs..., void* data);

    struct TEntry
    {
        TFunction CB;
        void* Data;
        bool operator==(const TEntry& other) const { return CB == other.CB && Data == other.Data; }
    };

    // Takes a pair any number of times.
    void Add(TFunction cb, void* data) { Entries.push_back(TEntry{cb, data}); }
    // Asserts that the pair is new.
    void AddOnce(TFunction cb, void* data)
    {
        for (TEntry* it = Entries.begin(); it != Entries.end(); ++it)
            ASSERT_TEXT(it->CB != cb || it->Data != data, "it->CB != cb || it->Data != data");
        Add(cb, data);
    }
    // Asserts that the pair is there.
    void Remove(TFunction cb, void* data)
    {
        TEntry* it = Entries.find(TEntry{cb, data});
        ASSERT_TEXT(it != Entries.end(), "0");
        Entries.erase(it);
    }
    // A listener may add or remove listeners, itself included.
    void Call(TArgs... args) const
    {
        const vector<TEntry> called = Entries;
        for (const TEntry& entry : called)
            if (Entries.find(entry) != Entries.end())
                entry.CB(args..., entry.Data);
    }
    int size() const { return Entries.size(); }

private:
    vector<TEntry> Entries;
};
