#include "particles/cindermill/graph/text/textline.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <iterator>

namespace {

// How many bytes of valid UTF-8 stand at the place as one character above ASCII; 0 if none.
int GetUtf8Length(const unsigned char* at)
{
    const int length = (at[0] & 0xE0) == 0xC0   ? 2
                       : (at[0] & 0xF0) == 0xE0 ? 3
                       : (at[0] & 0xF8) == 0xF0 ? 4
                                                : 0;
    if (length == 0)
        return 0;
    uint32_t code = at[0] & (0xFFu >> (length + 1));
    for (int i = 1; i < length; ++i) {
        if ((at[i] & 0xC0) != 0x80)
            return 0;
        code = code << 6 | (at[i] & 0x3Fu);
    }
    static constexpr uint32_t Smallest[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool isSurrogate = code >= 0xD800 && code < 0xE000;
    // The first 32 behind ASCII are control characters.
    return code < Smallest[length] || code > 0x10FFFF || isSurrogate || code < 0xA0 ? 0 : length;
}

} // namespace

void TTextBuffer::Add(const char* text, int length)
{
    if (length > 0)
        std::memcpy(Extend(Text, length), text, static_cast<size_t>(length));
}

TTextBuffer& TTextBuffer::operator<<(const char* text)
{
    Add(text, static_cast<int>(std::strlen(text)));
    return *this;
}

TTextBuffer& TTextBuffer::operator<<(int number)
{
    char digits[16];
    Add(digits, std::snprintf(digits, sizeof(digits), "%d", number));
    return *this;
}

TTextBuffer& TTextBuffer::operator<<(float number)
{
    char digits[32];
    if (std::isnan(number)) {
        uint32_t bits = 0;
        std::memcpy(&bits, &number, sizeof(bits));
        Add(digits, std::snprintf(digits, sizeof(digits), "nan(0x%08x)", bits));
        return *this;
    }
    const std::to_chars_result result = std::to_chars(digits, std::end(digits), number);
    Add(digits, static_cast<int>(result.ptr - digits));
    return *this;
}

TTextBuffer& TTextBuffer::AddFloats(const float* numbers, int count)
{
    for (int i = 0; i < count; ++i)
        *this << (i > 0 ? " " : "") << numbers[i];
    return *this;
}

TTextBuffer& TTextBuffer::AddQuoted(const char* text)
{
    *this << "\"";
    for (const char* at = text; *at != '\0';) {
        const unsigned char ch = static_cast<unsigned char>(*at);
        const int length = GetUtf8Length(reinterpret_cast<const unsigned char*>(at));
        char escape[8];
        if (length > 0) {
            Add(at, length);
            at += length;
            continue;
        }
        if (ch == '"' || ch == '\\')
            Add(escape, std::snprintf(escape, sizeof(escape), "\\%c", ch));
        else if (ch == '\n')
            *this << "\\n";
        else if (ch < ' ' || ch >= 0x7F)
            Add(escape, std::snprintf(escape, sizeof(escape), "\\x%02x", ch));
        else
            Add(at, 1);
        ++at;
    }
    return *this << "\"";
}

const char* TTextBuffer::Print()
{
    // Past the end, so that the text goes on from there.
    Append(Text, '\0');
    Text.pop_back();
    return Text.data();
}

TString QuoteNumbered(const TString& name, int number)
{
    TTextBuffer text;
    text.AddQuoted(name.Print());
    if (number > 1)
        text << "#" << number;
    return text.GetText();
}
