#include "library/system/files/xmlcheck.h"

#include "library/containers/append.h"
#include "library/containers/shortentext.h"
#include "library/system/file.h"

#include <string.h>

namespace {

constexpr int MaxShownName = 100;

// Control characters and the space, as TXmlFile has it.
bool IsBlank(char c)
{
    return static_cast<unsigned char>(c) < 33;
}

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
    const char* FindTagEnd() const;
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
const char* TXmlChecker::FindTagEnd() const
{
    vector<char> brackets;
    for (const char* c = At; c < End; ++c) {
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

void TXmlChecker::Check()
{
    while (At < End && Tags.Kind == TXmlFault::None) {
        if (*At != '<') {
            if (*At == 0)
                FailZero(TXmlFault::ZeroInText);
            Step();
        } else if (StartsWith("<!--")) {
            SkipBehind("-->");
        } else if (StartsWith("<![CDATA[")) {
            SkipBehind("]]>");
        } else {
            const char* end = FindTagEnd();
            if (end == nullptr) {
                FailTags(Line, "A tag has no end");
                return;
            }
            const char* begin = At + 1;
            CheckTag(begin, end);
            while (At <= end)
                Step();
        }
    }
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
    while (last > begin && IsBlank(last[-1]))
        --last;
    while (begin < last && IsBlank(*begin))
        ++begin;
    if (begin == last || *begin == '!')
        return;
    const bool closes = *begin == '/';
    if (closes)
        ++begin;
    while (begin < last && IsBlank(*begin))
        ++begin;
    const char* nameEnd = begin;
    while (nameEnd < last && !IsBlank(*nameEnd))
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
