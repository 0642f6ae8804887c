#include "library/containers/string.h"

#include "library/containers/append.h"

#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace {

bool IsDigit(char ch)
{
    return ch >= '0' && ch <= '9';
}

bool IsSeparator(char ch)
{
    return ch == '/' || ch == '\\';
}

char Upper(char ch)
{
    return ch >= 'a' && ch <= 'z' ? static_cast<char>(ch - 'a' + 'A') : ch;
}

char Lower(char ch)
{
    return ch >= 'A' && ch <= 'Z' ? static_cast<char>(ch - 'A' + 'a') : ch;
}

const char* OrEmpty(const char* text)
{
    return text != nullptr ? text : "";
}

int TextLength(const char* text)
{
    return text != nullptr ? static_cast<int>(strlen(text)) : 0;
}

int CompareBytes(const char* a, const char* b, bool caseSensitive, bool prefixOnly)
{
    if (a == nullptr || b == nullptr)
        return (a != nullptr) - (b != nullptr);
    for (;; ++a, ++b) {
        if (prefixOnly && *b == 0)
            return 0;
        const signed char left = static_cast<signed char>(caseSensitive ? *a : Upper(*a));
        const signed char right = static_cast<signed char>(caseSensitive ? *b : Upper(*b));
        if (left != right)
            return left < right ? -1 : 1;
        if (left == 0)
            return 0;
    }
}

// The index of the last separator of a path, or -1.
int LastSeparator(const char* path)
{
    int at = -1;
    for (int i = 0; path[i] != 0; ++i)
        if (IsSeparator(path[i]))
            at = i;
    return at;
}

bool IsTrimmed(char ch)
{
    return static_cast<signed char>(ch) <= 32 || ch == 127;
}

int HexDigit(char ch)
{
    if (IsDigit(ch))
        return ch - '0';
    const char lower = Lower(ch);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

constexpr char OpenBrackets[] = "([{";
constexpr char CloseBrackets[] = ")]}";

int BracketIndex(const char* brackets, char ch)
{
    const char* found = ch != 0 ? strchr(brackets, ch) : nullptr;
    return found != nullptr ? static_cast<int>(found - brackets) : -1;
}

// The brackets open at one place of a text.
class TBracketStack
{
public:
    void Pass(char ch)
    {
        const int opened = BracketIndex(OpenBrackets, ch);
        if (opened >= 0)
            Append(Open, opened);
        const int closed = BracketIndex(CloseBrackets, ch);
        if (closed >= 0 && !Open.empty() && Open.back() == closed)
            Open.pop_back();
    }
    bool IsEmpty() const { return Open.empty(); }

private:
    vector<int> Open;
};

} // namespace

TString::TString(const char* text)
{
    *this = text;
}

TString::TString(const TString& other)
{
    *this = other.Text;
}

TString::TString(TString&& other) noexcept : Text(other.Text)
{
    other.Text = nullptr;
}

TString::~TString()
{
    delete[] Text;
}

int TString::Length() const
{
    return TextLength(Text);
}

int TString::Compare(const char* other, bool caseSensitive) const
{
    return CompareBytes(Text, other, caseSensitive, false);
}

int TString::CompareStart(const char* prefix, bool caseSensitive) const
{
    return CompareBytes(Text, prefix, caseSensitive, true);
}

TString& TString::operator=(const char* text)
{
    Assign(text, text + TextLength(text));
    return *this;
}

TString& TString::operator=(const TString& other)
{
    return *this = other.Text;
}

TString& TString::operator=(TString&& other) noexcept
{
    char* text = Text;
    Text = other.Text;
    other.Text = text;
    return *this;
}

void TString::Assign(const char* begin, const char* end)
{
    char* block = nullptr;
    if (begin != end && *begin != 0) {
        const size_t length = static_cast<size_t>(end - begin);
        block = new char[length + 1];
        memcpy(block, begin, length);
        block[length] = 0;
    }
    delete[] Text;
    Text = block;
}

void TString::Adopt(char* block)
{
    if (block != Text)
        delete[] Text;
    Text = block;
    DropIfEmpty();
}

TString& TString::operator+=(const char* text)
{
    const int added = TextLength(text);
    if (added == 0)
        return *this;
    const int length = Length();
    char* block = new char[static_cast<size_t>(length) + static_cast<size_t>(added) + 1];
    memcpy(block, Print(), static_cast<size_t>(length));
    memcpy(block + length, text, static_cast<size_t>(added) + 1);
    delete[] Text;
    Text = block;
    return *this;
}

void TString::Left(const char* text, int n)
{
    const int length = TextLength(text);
    const int taken = n < 0 ? 0 : (n < length ? n : length);
    Assign(text, text + taken);
}

void TString::Right(const char* text, int n)
{
    const int length = TextLength(text);
    ASSERT_TEXT(n <= length, "p>=data");
    const int taken = n < 0 ? 0 : n;
    Assign(text + (length - taken), text + length);
}

TString& TString::Format(const char* format, ...)
{
    char string[8192];
    va_list args;
    va_start(args, format);
    const int length = vsnprintf(string, sizeof(string), format, args);
    va_end(args);
    // A failure of the formatting is -1, which as a size is beyond every limit.
    const size_t s = static_cast<size_t>(length);
    ASSERT_TEXT(s < sizeof(string), "s < sizeof(string)");
    return *this = string;
}

int TString::ToInt() const
{
    int result = 0;
    ParseInt(Text, result);
    return result;
}

unsigned TString::ToHex() const
{
    const char* p = Print();
    if (p[0] == '0' && p[1] == 'x')
        p += 2;
    else if (p[0] == '&')
        ++p;
    unsigned result = 0;
    for (; HexDigit(*p) >= 0; ++p)
        result = result * 16 + static_cast<unsigned>(HexDigit(*p));
    return result;
}

float TString::ToFloat() const
{
    float result = 0;
    ParseFloat(Text, result);
    return result;
}

int TString::Find(char ch, int start) const
{
    const int length = Length();
    for (int i = start > 0 ? start : 0; i < length; ++i)
        if (Text[i] == ch)
            return i;
    return -1;
}

int TString::FindLast(char ch) const
{
    for (int i = Length() - 1; i >= 0; --i)
        if (Text[i] == ch)
            return i;
    return -1;
}

int TString::FindString(const char* text, bool caseSensitive) const
{
    if (Text == nullptr || text == nullptr)
        return -1;
    for (int start = 0; Text[start] != 0; ++start) {
        int i = 0;
        while (text[i] != 0 &&
               (caseSensitive ? Text[start + i] == text[i] : Lower(Text[start + i]) == Lower(text[i])))
            ++i;
        if (text[i] == 0)
            return start;
    }
    return -1;
}

void TString::Split(vector<TString>& result, char sep) const
{
    const char* begin = Print();
    while (*begin != 0) {
        const char* end = begin;
        while (*end != 0 && *end != sep)
            ++end;
        Append(result, TString());
        result.back().Assign(begin, end);
        begin = *end != 0 ? end + 1 : end;
    }
}

void TString::SplitBracketed(vector<TString>& result, char sep) const
{
    const char* begin = Print();
    while (*begin != 0) {
        TBracketStack brackets;
        const char* end = begin;
        while (*end != 0 && !(*end == sep && brackets.IsEmpty()))
            brackets.Pass(*end++);
        Append(result, TString());
        result.back().Assign(begin, end);
        result.back().Trim();
        begin = *end != 0 ? end + 1 : end;
    }
}

void TString::SplitInts(vector<int>& result, char sep) const
{
    vector<TString> pieces;
    Split(pieces, sep);
    for (const TString& piece : pieces) {
        int value = 0;
        if (ParseInt(piece, value))
            Append(result, value);
    }
}

void TString::SplitFloats(vector<float>& result, char sep) const
{
    vector<TString> pieces;
    Split(pieces, sep);
    for (const TString& piece : pieces) {
        float value = 0;
        if (ParseFloat(piece, value))
            Append(result, value);
    }
}

int TString::SplitAtFirst(char ch, TString& rest)
{
    return CutAt(Find(ch), &rest);
}

int TString::TruncateAtFirst(char ch)
{
    return CutAt(Find(ch), nullptr);
}

int TString::SplitAtLast(char ch, TString& rest)
{
    return CutAt(FindLast(ch), &rest);
}

int TString::TruncateAtLast(char ch)
{
    return CutAt(FindLast(ch), nullptr);
}

int TString::CutAt(int at, TString* rest)
{
    if (at == -1)
        return -1;
    Text[at] = 0;
    if (rest != nullptr)
        *rest = Text + at + 1;
    DropIfEmpty();
    return at;
}

void TString::DropIfEmpty()
{
    if (Text == nullptr || *Text != 0)
        return;
    delete[] Text;
    Text = nullptr;
}

void TString::ToUpper()
{
    for (char* p = Text; p != nullptr && *p != 0; ++p)
        *p = Upper(*p);
}

void TString::ToLower()
{
    for (char* p = Text; p != nullptr && *p != 0; ++p)
        *p = Lower(*p);
}

void TString::Replace(char from, char to)
{
    for (char* p = Text; p != nullptr && *p != 0; ++p)
        if (*p == from)
            *p = to;
    DropIfEmpty();
}

void TString::Trim()
{
    const char* begin = Print();
    const char* end = begin + Length();
    while (begin != end && IsTrimmed(*begin))
        ++begin;
    while (begin != end && IsTrimmed(end[-1]))
        --end;
    if (end - begin != Length())
        Assign(begin, end);
}

void TString::SetFileName(const char* path)
{
    const char* text = OrEmpty(path);
    *this = text + LastSeparator(text) + 1;
}

void TString::SetDirectory(const char* path)
{
    const char* text = OrEmpty(path);
    const int at = LastSeparator(text);
    Assign(text, text + (at > 0 ? at : 0));
}

void TString::SetExtension(const char* path)
{
    const char* text = OrEmpty(path);
    const char* point = strrchr(text, '.');
    *this = point != nullptr ? point + 1 : text;
}

void TString::NormalisePath()
{
    Replace('\\', '/');
    ToLower();
    const int length = Length();
    if (length > 0 && Text[length - 1] == '/')
        CutAt(length - 1, nullptr);
}

bool TString::IsAbsolutePath() const
{
    const int length = Length();
    if (length >= 2 && Text[1] == ':') {
        if (length < 4 || Upper(Text[0]) < 'A' || Upper(Text[0]) > 'Z' || !IsSeparator(Text[2]))
            return false;
        for (int i = 3; i < length; ++i)
            if (Text[i] < 32 || Text[i] > 126)
                return false;
        return true;
    }
    if (length < 3 || Text[0] != '/' || Text[1] != '/')
        return false;
    int separators = 0;
    for (int i = 2; i < length; ++i) {
        if (!IsSeparator(Text[i]))
            continue;
        if (i > 2 && IsSeparator(Text[i - 1]))
            return false;
        ++separators;
    }
    return separators > 2;
}

void TString::ShortenPath(TString& out, int maxLength) const
{
    vector<TString> pieces;
    Split(pieces, '/');
    if (pieces.size() == 1) {
        pieces.clear();
        Split(pieces, '\\');
    }
    const int n = pieces.size();
    if (Length() < maxLength || n <= 1) {
        out = *this;
        return;
    }
    const int middle = n / 2;
    for (int i = 0; i < n; ++i) {
        TString trial;
        for (int k = 0; k <= middle - i / 2 - 1; ++k) {
            trial += pieces[k];
            trial += "\\";
        }
        trial += "...";
        for (int k = middle + (i + 1) / 2 + 1; k < n; ++k) {
            trial += "\\";
            trial += pieces[k];
        }
        out = trial;
        if (trial.Length() < maxLength)
            return;
    }
}

void TString::MakeRelative(const char* base, const char* target)
{
    const auto fold = [](char ch) { return ch == '\\' ? '/' : Lower(ch); };
    const char* from = OrEmpty(base);
    const char* to = OrEmpty(target);
    int common = -1;
    int i = 0;
    for (; fold(from[i]) == fold(to[i]) && from[i] != 0; ++i)
        if (fold(from[i]) == '/')
            common = i;
    if (common <= 0) {
        *this = target;
        return;
    }
    TString result;
    for (const char* p = from + common + 1; *p != 0; ++p)
        if (IsSeparator(*p))
            result += "../";
    result += to + common + 1;
    *this = static_cast<TString&&>(result);
}

void TString::MakeAbsolute(const char* base, const char* relative)
{
    TString result(relative);
    if (!result.IsAbsolutePath()) {
        result.SetDirectory(base);
        const int length = result.Length();
        if (length == 0 || !IsSeparator(result.Text[length - 1]))
            result += "/";
        result += relative;
    }
    *this = static_cast<TString&&>(result);
}

int CompareText(const char* a, const char* b, bool caseSensitive)
{
    return CompareBytes(a, b, caseSensitive, false);
}

bool ParseInt(const char* text, int& result)
{
    return ParseIntAdvance(text, result);
}

bool ParseIntAdvance(const char*& text, int& result)
{
    result = 0;
    if (text == nullptr)
        return false;
    bool seen = false;
    bool negative = false;
    // Unsigned, as the digits may run over.
    uint32_t value = 0;
    for (; *text != 0; ++text) {
        if (IsDigit(*text)) {
            seen = true;
            value = value * 10 + static_cast<uint32_t>(*text - '0');
        } else if (seen) {
            break;
        } else if (*text == '-' && IsDigit(text[1])) {
            negative = true;
        }
    }
    result = static_cast<int>(negative ? 0 - value : value);
    return seen;
}

bool ParseFloat(const char* text, float& result)
{
    bool seen = false;
    bool negative = false;
    bool fraction = false;
    float value = 0;
    // Wraps after many digits, which is why it is an integer.
    uint32_t divisor = 10;
    for (const char* p = OrEmpty(text); *p != 0; ++p) {
        if (IsDigit(*p)) {
            const double digit = *p - '0';
            seen = true;
            if (fraction) {
                value = static_cast<float>(double(value) + digit / divisor);
                divisor *= 10;
            } else {
                value = static_cast<float>(double(value) * 10 + digit);
            }
        } else if (*p == '.') {
            if (fraction)
                break;
            fraction = true;
        } else if (seen) {
            break;
        } else if (*p == '-' && (IsDigit(p[1]) || p[1] == '.')) {
            negative = true;
        }
    }
    result = seen && negative ? -value : value;
    return seen;
}
