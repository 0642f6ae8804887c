#include "particles/cindermill/interface/graph/searchlist.h"

#include "library/containers/append.h"

#include <string.h>

namespace {

// The whole name, its beginning, the beginning of a word in it, the first letters of its words, any part of
// it, letters in their order; then what belongs to it.
enum TScore
{
    SC_WHOLE = 1000,
    SC_START = 800,
    SC_WORD = 600,
    SC_INITIALS = 500,
    SC_PART = 400,
    SC_LETTERS = 200,
    SC_FOLDER = 60,
    SC_HELP = 20
};

char ToLower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool IsWordStart(const char* text, int at)
{
    return at == 0 || text[at - 1] == ' ' || text[at - 1] == '_' || text[at - 1] == '-';
}

bool StartsWith(const char* text, const char* word)
{
    for (; *word != 0; ++text, ++word)
        if (ToLower(*text) != *word)
            return false;
    return true;
}

bool Holds(const char* text, const char* word)
{
    for (; *text != 0; ++text)
        if (StartsWith(text, word))
            return true;
    return false;
}

bool HasInitials(const char* text, const char* word)
{
    for (int i = 0; text[i] != 0 && *word != 0; ++i)
        if (IsWordStart(text, i) && ToLower(text[i]) == *word)
            ++word;
        else if (IsWordStart(text, i))
            return false;
    return *word == 0;
}

// How many letters lie between those of the word; -1 if they are not all there. One begins a word of the
// text: otherwise nearly every text would hold nearly every word.
int GetSpread(const char* text, const char* word)
{
    int best = -1;
    for (int start = 0; text[start] != 0; ++start) {
        if (!IsWordStart(text, start) || ToLower(text[start]) != *word)
            continue;
        int at = start;
        const char* letter = word;
        for (; text[at] != 0 && *letter != 0; ++at)
            letter += ToLower(text[at]) == *letter ? 1 : 0;
        const int spread = at - start - static_cast<int>(strlen(word));
        if (*letter == 0 && (best == -1 || spread < best))
            best = spread;
    }
    return best;
}

int GetNameScore(const char* name, const char* word)
{
    if (StartsWith(name, word))
        return strlen(name) == strlen(word) ? SC_WHOLE : SC_START;
    for (int i = 1; name[i] != 0; ++i)
        if (IsWordStart(name, i) && StartsWith(name + i, word))
            return SC_WORD;
    if (HasInitials(name, word))
        return SC_INITIALS;
    if (Holds(name, word))
        return SC_PART;
    const int spread = GetSpread(name, word);
    constexpr int Most = SC_LETTERS - SC_FOLDER - 1;
    return spread == -1 ? 0 : SC_LETTERS - (spread < Most ? spread : Most);
}

} // namespace

static void SplitWords(const char* text, vector<TString>& words)
{
    TString lower(text);
    lower.ToLower();
    lower.Split(words, ' ');
}

// -1 if a word is missing.
static int GetTotal(const vector<TString>& words, const TSearchEntry& entry)
{
    int total = 0;
    for (const TString& word : words) {
        const int score = word.IsEmpty() ? 0 : GetSearchScore(word.Print(), entry);
        if (!word.IsEmpty() && score == 0)
            return -1;
        total += score;
    }
    return total;
}

int GetSearchScore(const char* word, const TSearchEntry& entry)
{
    if (const int score = GetNameScore(entry.Name.Print(), word))
        return score;
    if (Holds(entry.Folder.Print(), word))
        return SC_FOLDER;
    return Holds(entry.Help.Print(), word) ? SC_HELP : 0;
}

bool IsFound(const char* text, const TSearchEntry& entry)
{
    vector<TString> words;
    SplitWords(text, words);
    return GetTotal(words, entry) != -1;
}

void TSearchList::Add(const TSearchEntry& entry)
{
    Append(Entries, entry);
    Append(Matches, TMatch{Entries.size() - 1, 0});
}

void TSearchList::Filter(const char* text)
{
    vector<TString> words;
    SplitWords(text, words);
    Matches.clear();
    for (int i = 0; i < Entries.size(); ++i) {
        const int total = GetTotal(words, Entries[i]);
        if (total == -1)
            continue;
        // Those that are equally good keep their order.
        int at = Matches.size();
        while (at > 0 && Matches[at - 1].Score < total)
            --at;
        Matches.insert(Matches.begin() + at, TMatch{i, total});
    }
}
