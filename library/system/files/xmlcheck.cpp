#include "library/system/files/xmlcheck.h"

#include "library/containers/append.h"
#include "library/containers/shortentext.h"
#include "library/system/file.h"
#include "library/system/files/xmlfile.h"

#include <string.h>

namespace {

constexpr int MaxShownName = 100;
constexpr const char* CommentStart = "<!--";
constexpr const char* CommentEnd = "-->";

class TXmlChecker
{
public:
    TXmlChecker(const vector<char>& bytes, TXmlFault& tags, TXmlFault& zero)
        : At(bytes.data()), End(bytes.data() + bytes.size()), Tags(tags), Zero(zero)
    {
    }
    void Check();

private:
    struct TOpen
    {
        const char* Name;
        int Length;
        int Line;
    };

    void Step();
    bool StartsWith(const char* text) const;
    void SkipBehind(const char* text);
    const char* FindTagEnd(const char* begin) const;
    const char* FindCommentEnd() const;
    void CheckComment();
    void CheckRest();
    bool IsRead(const char* tag) const;
    void CheckTag(const char* begin, const char* end);
    void CloseTag(const char* name, int length);
    void FailTags(int line, const TString& text);
    void FailZero(TXmlFault::TKind kind);

    const char* At;
    const char* End;
    int Line = 0;
    vector<TOpen> Open;
    TXmlFault& Tags;
    TXmlFault& Zero;
};

TString ShownName(const char* name, int length)
{
    TString text;
    text.Assign(name, name + length);
    return ShortenText(text, MaxShownName);
}

void TXmlChecker::Step()
{
    if (*At++ == '\n')
        ++Line;
}

bool TXmlChecker::StartsWith(const char* text) const
{
    const size_t length = strlen(text);
    return static_cast<size_t>(End - At) >= length && memcmp(At, text, length) == 0;
}

void TXmlChecker::SkipBehind(const char* text)
{
    while (At < End && !StartsWith(text))
        Step();
    for (size_t i = strlen(text); i > 0 && At < End; --i)
        Step();
}

// The ">" of the tag, outside quotes and brackets, which may hold others.
const char* TXmlChecker::FindTagEnd(const char* begin) const
{
    vector<char> brackets;
    for (const char* c = begin; c < End; ++c) {
        switch (*c) {
        case '"':
        case '\'': {
            const char quote = *c;
            for (++c; c < End && *c != quote; ++c)
                if (*c == '\\' && c + 1 < End)
                    ++c;
            break;
        }
        case '(':
            Append(brackets, ')');
            break;
        case '[':
            Append(brackets, ']');
            break;
        case '{':
            Append(brackets, '}');
            break;
        case ')':
        case ']':
        case '}':
            if (!brackets.empty() && brackets.back() == *c)
                brackets.pop_back();
            break;
        case '>':
            if (brackets.empty())
                return c;
            break;
        default:
            break;
        }
    }
    return nullptr;
}

void TXmlChecker::FailTags(int line, const TString& text)
{
    Tags.Kind = TXmlFault::Tags;
    Tags.Line = line;
    Tags.Text = text;
}

void TXmlChecker::FailZero(TXmlFault::TKind kind)
{
    // One in a tag says more than one before it.
    if (Zero.Kind == kind || Zero.Kind == TXmlFault::ZeroInTag)
        return;
    Zero.Kind = kind;
    Zero.Line = Line;
    Zero.Text = "The file holds a zero byte";
}

// The ">" that ends the comment at hand for other readers; the file's end where there is none.
const char* TXmlChecker::FindCommentEnd() const
{
    const size_t length = strlen(CommentEnd);
    for (const char* c = At; static_cast<size_t>(End - c) >= length; ++c)
        if (memcmp(c, CommentEnd, length) == 0)
            return c + length - 1;
    return End;
}

// Whether a tag within a comment would be found, or would close the element that the comment stands in.
bool TXmlChecker::IsRead(const char* tag) const
{
    const char* name = tag + 1;
    while (name < End && IsXmlBlank(*name))
        ++name;
    if (name == End || *name != '/')
        return true;
    ++name;
    while (name < End && IsXmlBlank(*name))
        ++name;
    const char* end = name;
    while (end < End && !IsXmlBlank(*end) && *end != '>')
        ++end;
    TString closed;
    closed.Assign(name, end);
    TString opened;
    if (!Open.empty())
        opened.Assign(Open.back().Name, Open.back().Name + Open.back().Length);
    return opened.Compare(closed) == 0;
}

// To TXmlFile a comment is a tag, which ends at its first ">" outside quotes and brackets. What it then makes
// of the rest may be far from what was meant.
void TXmlChecker::CheckComment()
{
    const char* end = FindCommentEnd();
    const char* tag = At;
    while (tag < end && Tags.Kind == TXmlFault::None) {
        const char* tagEnd = FindTagEnd(tag);
        if (tagEnd == nullptr || tagEnd > end) {
            FailTags(Line, "A quote or a bracket in a comment hides what follows it");
            return;
        }
        tag = tagEnd;
        while (tag < end && *tag != '<')
            ++tag;
        if (tag < end && IsRead(tag))
            FailTags(Line, "A comment ends at its first \">\", and a tag behind that is read");
    }
}

// Behind a fault in the tags a zero byte is as bad as before it.
void TXmlChecker::CheckRest()
{
    bool isInTag = false;
    for (; At < End; Step()) {
        if (*At == '<')
            isInTag = true;
        else if (*At == '>')
            isInTag = false;
        else if (*At == 0)
            FailZero(isInTag ? TXmlFault::ZeroInTag : TXmlFault::ZeroInText);
    }
}

void TXmlChecker::Check()
{
    while (At < End && Tags.Kind == TXmlFault::None) {
        if (*At != '<') {
            if (*At == 0)
                FailZero(TXmlFault::ZeroInText);
            Step();
        } else if (StartsWith(CommentStart)) {
            CheckComment();
            SkipBehind(CommentEnd);
        } else {
            const char* end = FindTagEnd(At);
            if (end == nullptr) {
                FailTags(Line, "A tag has no end");
                break;
            }
            const char* begin = At + 1;
            CheckTag(begin, end);
            while (At <= end)
                Step();
        }
    }
    CheckRest();
    if (Tags.Kind != TXmlFault::None || Open.empty())
        return;
    TString text;
    text.Format("The tag \"%s\" is not closed", ShownName(Open.back().Name, Open.back().Length).Print());
    FailTags(Open.back().Line, text);
}

void TXmlChecker::CheckTag(const char* begin, const char* end)
{
    if (memchr(begin, 0, static_cast<size_t>(end - begin)) != nullptr)
        FailZero(TXmlFault::ZeroInTag);
    const char* last = end;
    while (last > begin && IsXmlBlank(last[-1]))
        --last;
    while (begin < last && IsXmlBlank(*begin))
        ++begin;
    if (begin == last)
        return;
    if (*begin == '!') {
        // Behind blanks it is a comment to TXmlFile.
        if (strncmp(begin, CommentStart + 1, strlen(CommentStart + 1)) != 0)
            FailTags(Line, "Of the tags that begin with \"!\" only comments are understood");
        return;
    }
    const bool closes = *begin == '/';
    if (closes)
        ++begin;
    while (begin < last && IsXmlBlank(*begin))
        ++begin;
    const char* nameEnd = begin;
    while (nameEnd < last && !IsXmlBlank(*nameEnd))
        ++nameEnd;
    const int length = static_cast<int>(nameEnd - begin);
    if (closes)
        CloseTag(begin, length);
    else if (last[-1] != '/' && last[-1] != '?' && (length == 0 || nameEnd[-1] != '/'))
        Append(Open, TOpen{begin, length, Line});
}

void TXmlChecker::CloseTag(const char* name, int length)
{
    TString closed;
    closed.Assign(name, name + length);
    TString text;
    if (Open.empty()) {
        text.Format("The closing tag \"%s\" matches no tag", ShownName(name, length).Print());
        FailTags(Line, text);
        return;
    }
    const TOpen& open = Open.back();
    TString opened;
    opened.Assign(open.Name, open.Name + open.Length);
    if (opened.Compare(closed) != 0) {
        text.Format("The closing tag \"%s\" does not match \"%s\" of line %d",
                    ShownName(name, length).Print(), ShownName(open.Name, open.Length).Print(), open.Line);
        FailTags(Line, text);
        return;
    }
    Open.pop_back();
}

} // namespace

void CheckXml(const char* path, TXmlFault& tags, TXmlFault& zero)
{
    tags = TXmlFault();
    zero = TXmlFault();
    TFile file;
    if (!file.OpenRead(path))
        return;
    vector<char> bytes;
    bytes.resize(file.GetSize());
    const bool isRead = file.GetSize() == 0 || file.Read(bytes.data(), file.GetSize());
    file.Close();
    if (isRead)
        TXmlChecker(bytes, tags, zero).Check();
}
