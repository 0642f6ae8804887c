#pragma once

#include "library/containers/string.h"
#include "library/containers/vector.h"

// One of the things that a search can find.
struct TSearchEntry
{
    TString Name;
    // Where it belongs; tells it from others of its name.
    TString Folder;
    TString Help;
    // A node type's colour number.
    int Colour = 0;
    // The owner's.
    int Item = 0;
};

// Finds entries by a few letters of them. Each word of what is typed must be found somewhere: as letters of
// the name that follow each other, however far apart, or as a part of the folder or the help. The closer the
// words come to the name, the earlier the entry stands.
class TSearchList
{
public:
    void Add(const TSearchEntry& entry);
    // All entries, in the order in which they came, for an empty text.
    void Filter(const char* text);

    int GetNumEntries() const { return Entries.size(); }
    int GetNumMatches() const { return Matches.size(); }
    const TSearchEntry& GetMatch(int i) const { return Entries[Matches[i].Entry]; }

private:
    struct TMatch
    {
        int Entry;
        int Score;
    };

    vector<TSearchEntry> Entries;
    vector<TMatch> Matches;
};

// Whether each word of the text is found in the entry.
bool IsFound(const char* text, const TSearchEntry& entry);
// How well a word of lower case letters names something; 0 for not at all.
int GetSearchScore(const char* word, const TSearchEntry& entry);
