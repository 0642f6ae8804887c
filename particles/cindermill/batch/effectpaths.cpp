#include "particles/cindermill/batch/effectpaths.h"

#include "library/containers/append.h"
#include "library/system/file.h"
#include "library/system/path.h"

#include <cstring>

namespace {

bool IsSeparator(char ch)
{
    return ch == '/' || ch == '\\';
}

// What stands behind the bracket's set, or null where it is not closed and so no set.
const char* FitSet(const char* pattern, char ch, bool& fits)
{
    const bool isNot = *pattern == '!' || *pattern == '^';
    const char* next = pattern + (isNot ? 1 : 0);
    bool found = false;
    for (bool first = true; first || *next != ']'; first = false) {
        if (*next == 0)
            return nullptr;
        char last = *next;
        const char begin = *next++;
        if (*next == '-' && next[1] != 0 && next[1] != ']') {
            last = next[1];
            next += 2;
        }
        found = found || (begin <= ch && ch <= last);
    }
    fits = found != isNot;
    return next + 1;
}

// One character of the name against what the pattern begins with, which is no "*"; null if it does not fit.
const char* FitOne(const char* pattern, char ch)
{
    if (*pattern == '?')
        return pattern + 1;
    if (*pattern == '[') {
        bool fits = false;
        if (const char* behind = FitSet(pattern + 1, ch, fits))
            return fits ? behind : nullptr;
    }
    return *pattern == ch ? pattern + 1 : nullptr;
}

bool HasWildcard(const char* text)
{
    return std::strpbrk(text, "*?[") != nullptr;
}

// Walks the folders that a pattern can fit.
class TPatternWalk
{
public:
    TPatternWalk(const char* pattern, vector<TString>& files) : Files(files) { Cut(pattern); }
    void Run() { Walk(Begin, 0); }

private:
    // The pattern's names, and the separators that it begins with.
    void Cut(const char* pattern)
    {
        const char* rest = pattern;
        while (IsSeparator(*rest))
            ++rest;
        Begin.Assign(pattern, rest);
        while (*rest != 0) {
            const char* end = rest;
            while (*end != 0 && !IsSeparator(*end))
                ++end;
            TString name;
            name.Assign(rest, end);
            Append(Names, name);
            rest = end;
            while (IsSeparator(*rest))
                ++rest;
        }
    }
    static TString Join(const TString& folder, const TString& name)
    {
        TString path(folder);
        if (!path.IsEmpty() && !IsSeparator(path.Print()[path.Length() - 1]))
            path += "/";
        path += name.Print();
        return path;
    }
    void Walk(const TString& folder, int at)
    {
        if (at == Names.size())
            return;
        const bool isLast = at == Names.size() - 1;
        if (!HasWildcard(Names[at])) {
            const TString path = Join(folder, Names[at]);
            if (!isLast)
                Walk(path, at + 1);
            else if (FileExists(path))
                Append(Files, path);
            return;
        }
        const bool isAnyFolders = Names[at].Compare("**", true) == 0;
        if (isAnyFolders)
            Walk(folder, at + 1);
        vector<TDirectoryEntry> entries;
        if (!ListDirectory(folder.IsEmpty() ? "." : folder.Print(), entries) && IsDirectory(folder))
            Append(Files, folder);
        for (const TDirectoryEntry& entry : entries) {
            const bool isHidden = entry.Name.Print()[0] == '.' && Names[at].Print()[0] != '.';
            if (isHidden || !FitsPattern(entry.Name, Names[at]))
                continue;
            const TString path = Join(folder, entry.Name);
            if (entry.IsDirectory)
                Walk(path, isAnyFolders ? at : at + 1);
            else if (isLast)
                Append(Files, path);
        }
    }

    vector<TString>& Files;
    TString Begin;
    vector<TString> Names;
};

} // namespace

void ListEffectsBelow(const TString& folder, vector<TString>& files)
{
    vector<TDirectoryEntry> entries;
    // What cannot be looked into is no folder without effects: it is told as a file that cannot be read.
    if (!ListDirectory(folder, entries))
        Append(files, folder);
    for (const TDirectoryEntry& entry : entries) {
        if (entry.Name.Print()[0] == '.')
            continue;
        TString path(folder);
        if (!IsSeparator(path.Print()[path.Length() - 1]))
            path += "/";
        path += entry.Name.Print();
        TString extension;
        extension.SetExtension(entry.Name);
        if (entry.IsDirectory)
            ListEffectsBelow(path, files);
        else if (entry.Name.Find('.') != -1 && extension.Compare("effect") == 0)
            Append(files, path);
    }
}

bool FitsPattern(const char* name, const char* pattern)
{
    // Where the last "*" stands, and the first character that it may not have swallowed yet.
    const char* star = nullptr;
    const char* swallowed = nullptr;
    while (*name != 0) {
        if (*pattern == '*') {
            star = ++pattern;
            swallowed = name;
            continue;
        }
        if (const char* next = FitOne(pattern, *name)) {
            pattern = next;
            ++name;
            continue;
        }
        if (star == nullptr)
            return false;
        pattern = star;
        name = ++swallowed;
    }
    while (*pattern == '*')
        ++pattern;
    return *pattern == 0;
}

void ExpandEffectPaths(const char* word, vector<TString>& files)
{
    const int before = files.size();
    if (IsDirectory(word))
        ListEffectsBelow(word, files);
    else if (!FileExists(word) && HasWildcard(word))
        TPatternWalk(word, files).Run();
    if (files.size() == before)
        Append(files, word);
}
