#include "library/system/files/xmlfile.h"

#include "library/containers/append.h"
#include "library/containers/assertion.h"
#include "library/containers/log.h"
#include "library/system/path.h"

static constexpr const char* CommentStart = "!--";

// The names of the elements that a search stands in, outermost first. Files are not to be trusted with depth
// or length.
class TXmlFile::TNameStack
{
public:
    int GetDepth() const { return Starts.size(); }
    // "" when there is none.
    const char* GetTop() const { return Starts.empty() ? "" : Text.data() + Starts.back(); }
    void Push(const char* name)
    {
        Append(Starts, Text.size());
        while (*name != 0)
            Append(Text, *name++);
        Append(Text, '\0');
    }
    void Pop()
    {
        Text.resize(Starts.back());
        Starts.pop_back();
    }

private:
    vector<char> Text;
    vector<int> Starts;
};

bool TXmlFile::OpenRead(const char* path)
{
    if (!TFile::OpenRead(path))
        return false;
    Stack.clear();
    FoundEmpty = false;
    HasMismatch = false;
    return true;
}

bool TXmlFile::Close()
{
    if (IsOpen() && HasMismatch)
        DebugPrintf("Mismatched closing tags in %s\n", GetShownPath(GetPath()).Print());
    return TFile::Close();
}

bool TXmlFile::SkipQuoted(char quote)
{
    char c;
    while (ReadCharacter(c)) {
        if (c == quote)
            return true;
        if (c == '\\' && !ReadCharacter(c))
            return false;
    }
    return false;
}

bool TXmlFile::ScanTo(char terminator)
{
    Brackets.clear();
    char c;
    while (ReadCharacter(c)) {
        switch (c) {
        case '"':
        case '\'':
            if (!SkipQuoted(c))
                return false;
            continue;
        case '(':
            Append(Brackets, ')');
            break;
        case '[':
            Append(Brackets, ']');
            break;
        case '{':
            Append(Brackets, '}');
            break;
        case ')':
        case ']':
        case '}':
            if (!Brackets.empty() && Brackets.back() == c)
                Brackets.pop_back();
            break;
        default:
            if (c == terminator && Brackets.empty())
                return true;
        }
    }
    return false;
}

bool TXmlFile::SkipTo(char wanted)
{
    char c;
    while (ReadCharacter(c))
        if (c == wanted)
            return true;
    return false;
}

bool TXmlFile::ReadSpan(int begin, int end)
{
    const int length = end - begin;
    Span.resize(length + 1);
    SetFilePtr(begin);
    if (!Read(Span.data(), length))
        return false;
    Span[length] = 0;
    return true;
}

bool TXmlFile::ReadTag(TTag& tag)
{
    if (!SkipTo('<'))
        return false;
    const int begin = GetFilePtr();
    if (!ScanTo('>'))
        return false;
    const int contentPos = GetFilePtr();
    if (!ReadSpan(begin, contentPos - 1))
        return false;
    SetFilePtr(contentPos);

    char* const text = Span.data();
    char* const end = text + Span.size() - 1;
    char* name = text;
    tag.IsClosing = false;
    tag.IsEmpty = false;
    while (name < end && IsXmlBlank(*name))
        ++name;
    if (name < end && *name == '/') {
        tag.IsClosing = true;
        ++name;
        while (name < end && IsXmlBlank(*name))
            ++name;
    }
    char* nameEnd = name;
    while (nameEnd < end && !IsXmlBlank(*nameEnd))
        ++nameEnd;
    char* attributes = nameEnd;
    while (attributes < end && IsXmlBlank(*attributes))
        ++attributes;
    if (!tag.IsClosing && nameEnd > name && nameEnd[-1] == '/') {
        tag.IsClosing = tag.IsEmpty = true;
        --nameEnd;
    }
    if (!tag.IsClosing) {
        const char* last = end;
        while (last > text && IsXmlBlank(last[-1]))
            --last;
        if (last > text && (last[-1] == '/' || last[-1] == '?'))
            tag.IsClosing = tag.IsEmpty = true;
    }
    *nameEnd = 0;
    tag.Name = name;
    tag.Attributes = attributes;
    tag.AttributesEnd = end;
    return true;
}

void TXmlFile::Push(const TTag& tag)
{
    TElement element;
    element.Tag = tag.Name;
    if (tag.AttributesEnd - tag.Attributes >= 2) {
        element.Attributes.Assign(tag.Attributes, tag.AttributesEnd);
        element.Attributes.Trim();
    }
    element.ContentPos = GetFilePtr();
    element.IsEmpty = tag.IsEmpty;
    Stack.push_back(element);
}

// Walks on to a direct child of the open element that bears one of the names. When `closing` is asked for,
// the end tag of the open element counts too, and nothing is opened.
int TXmlFile::Search(int count, const char* const* names, TTag& tag, bool closing)
{
    TNameStack local;
    const bool inside = !Stack.empty();
    if (inside)
        local.Push(Stack.back().Tag.Print());
    const int childDepth = local.GetDepth();
    while (ReadTag(tag)) {
        const bool starts = !tag.IsClosing || tag.IsEmpty;
        if (local.GetDepth() == childDepth && (starts || closing))
            for (int i = 0; i < count; ++i)
                if (CompareText(tag.Name, names[i]) == 0)
                    return i;
        if (tag.IsEmpty)
            continue;
        if (!tag.IsClosing) {
            if (!IsComment(tag.Name))
                local.Push(tag.Name);
        } else if (local.GetDepth() > 0 && CompareText(local.GetTop(), tag.Name) == 0) {
            local.Pop();
            if (inside && local.GetDepth() == 0)
                return -1;
        } else {
            HasMismatch = true;
            DebugPrintf("Mismatched closing tags - expecting %s, got %s\n", local.GetTop(), tag.Name);
        }
    }
    return -1;
}

bool TXmlFile::IsComment(const char* name)
{
    for (const char* c = CommentStart; *c != 0; ++c, ++name)
        if (*name != *c)
            return false;
    return true;
}

bool TXmlFile::FindTag(const char* name)
{
    return FindAnyTag(1, &name) == 0;
}

bool TXmlFile::FindTagFromHere(const char* name)
{
    return FindAnyTagFromHere(1, &name) == 0;
}

int TXmlFile::FindAnyTag(int count, const char* const* names)
{
    RewindContent();
    return FindAnyTagFromHere(count, names);
}

int TXmlFile::FindAnyTagFromHere(int count, const char* const* names)
{
    FoundEmpty = false;
    TTag tag;
    const int found = Search(count, names, tag, false);
    if (found < 0)
        return -1;
    if (tag.IsEmpty)
        FoundEmpty = true;
    else
        Push(tag);
    return found;
}

bool TXmlFile::GetText(TString& result)
{
    if (FoundEmpty) {
        result = nullptr;
        return true;
    }
    ASSERT_TEXT(!Stack.empty(), "!Stack.empty()");
    const int begin = Stack.back().ContentPos;
    SetFilePtr(begin);
    if (!SkipTo('<'))
        return false;
    // A search from here must meet the tag that ended the text.
    const int end = GetFilePtr() - 1;
    if (!ReadSpan(begin, end))
        return false;
    result.Assign(Span.data(), Span.data() + (end - begin));
    return true;
}

// The end of a piece of an attribute text: a blank or the text's end, or "=" where that counts, outside
// quotes.
static const char* FindPieceEnd(const char* text, bool stopAtEquals)
{
    for (; *text != 0; ++text) {
        const char c = *text;
        if (c == ' ' || c == '\t' || c == '\n' || (c == '=' && stopAtEquals))
            break;
        if (c != '"' && c != '\'')
            continue;
        for (++text; *text != 0 && *text != c; ++text)
            if (*text == '\\' && text[1] != 0)
                ++text;
        if (*text == 0)
            break;
    }
    return text;
}

bool TXmlFile::GetAttribute(const char* name, TString& result)
{
    ASSERT_TEXT(!Stack.empty(), "!Stack.empty()");
    const char* piece = Stack.back().Attributes.Print();
    for (;;) {
        const char* end = FindPieceEnd(piece, true);
        if (*end == 0)
            return false;
        if (*end == '=') {
            TString found;
            found.Assign(piece, end);
            found.Trim();
            if (found.Compare(name) == 0) {
                result.Assign(end + 1, FindPieceEnd(end + 1, false));
                result.Trim();
                return true;
            }
        }
        piece = end + 1;
    }
}

void TXmlFile::GetAttributeList(vector<TString>& result)
{
    ASSERT_TEXT(!Stack.empty(), "!Stack.empty()");
    Stack.back().Attributes.Split(result, ',');
}

void TXmlFile::RewindTag()
{
    ASSERT_TEXT(!Stack.empty(), "!Stack.empty()");
    RewindContent();
}

void TXmlFile::RewindContent()
{
    FoundEmpty = false;
    SetFilePtr(Stack.empty() ? 0 : Stack.back().ContentPos);
}

bool TXmlFile::LeaveTag()
{
    ASSERT_TEXT(!Stack.empty(), "!Stack.empty()");
    RewindContent();
    if (Stack.back().IsEmpty)
        return true;
    const TString name = Stack.back().Tag;
    const char* const names[1] = {name.Print()};
    TTag tag;
    for (int depth = 1; depth > 0;) {
        if (Search(1, names, tag, true) < 0)
            return false;
        if (!tag.IsEmpty)
            depth += tag.IsClosing ? -1 : 1;
    }
    Stack.pop_back();
    return true;
}

int TXmlFile::GetLineNumber()
{
    const int position = GetFilePtr();
    const int end = Stack.empty() ? position : Stack.back().ContentPos;
    SetFilePtr(0);
    int line = 0;
    char c;
    while (GetFilePtr() < end && ReadCharacter(c))
        if (c == '\n')
            ++line;
    SetFilePtr(position);
    return line;
}
