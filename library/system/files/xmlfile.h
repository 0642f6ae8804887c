#pragma once

#include "library/containers/list.h"
#include "library/system/file.h"

// Control characters and the space; bytes of 128 and above are part of names.
constexpr bool IsXmlBlank(char c)
{
    return static_cast<unsigned char>(c) < 33;
}

// A pull reader of nested elements, straight on the file. Entities and CDATA are not understood. Names
// compare without case.
class TXmlFile : public TFile
{
public:
    // No element is open, whatever a parse of an earlier file left.
    bool OpenRead(const char* path);
    // The log, which tells of tags that do not match where they are met, hears of the file.
    bool Close();

    // Finds a direct child of the open element from the start of its content, opens it and pushes it.
    // An empty element is found but not pushed: its text is empty, and it must not be left.
    bool FindTag(const char* name);
    bool FindTagFromHere(const char* name);
    // The index in `names` of the first child, in document order, that bears one of them; -1 if none does.
    int FindAnyTag(int count, const char* const* names);
    int FindAnyTagFromHere(int count, const char* const* names);
    // Whether the tag that the last search found closes itself, and so was not pushed.
    bool IsEmptyTag() const { return FoundEmpty; }

    // The text up to the next "<", untrimmed; after an empty element the empty text.
    bool GetText(TString& result);
    bool GetAttribute(const char* name, TString& result);
    void GetAttributeList(vector<TString>& result);
    void RewindTag();
    void RewindContent();
    bool LeaveTag();
    // Newlines before the open element's content, from 0. For messages only.
    int GetLineNumber();

private:
    struct TElement
    {
        TString Tag;
        TString Attributes;
        int ContentPos = 0;
        bool IsEmpty = false;
    };

    // A tag as it was read; the texts lie in Span.
    struct TTag
    {
        const char* Name;
        const char* Attributes;
        const char* AttributesEnd;
        bool IsClosing;
        // Together with IsClosing on what closes itself.
        bool IsEmpty;
    };
    class TNameStack;

    static bool IsComment(const char* name);
    bool SkipTo(char wanted);
    bool SkipQuoted(char quote);
    bool ScanTo(char terminator);
    bool ReadSpan(int begin, int end);
    bool ReadTag(TTag& tag);
    int Search(int count, const char* const* names, TTag& tag, bool closing);
    void Push(const TTag& tag);

    list<TElement> Stack;
    bool FoundEmpty = false;
    bool HasMismatch = false;
    vector<char> Span;
    vector<char> Brackets;
};
