#include "particles/cindermill/graph/text/textcursor.h"

#include "library/containers/append.h"
#include "particles/effectgraph/xmltext.h"

#include <bit>
#include <charconv>
#include <cstdint>

TString TTextCursor::GetRest() const
{
    TString rest;
    rest.Assign(At, End);
    return rest;
}

bool TTextCursor::Take(const char* text)
{
    const size_t length = std::strlen(text);
    if (static_cast<size_t>(End - At) < length || std::memcmp(At, text, length) != 0)
        return false;
    At += length;
    return true;
}

bool TTextCursor::TakeLast(const char* text)
{
    const char* start = At;
    return EndHere(Take(text), start);
}

bool TTextCursor::TakeLastQuoted(TString& text)
{
    const char* start = At;
    return EndHere(TakeQuoted(text), start);
}

bool TTextCursor::TakeLastInt(int& number)
{
    const char* start = At;
    return EndHere(TakeInt(number), start);
}

bool TTextCursor::TakeLastFloats(float* numbers, int count)
{
    const char* start = At;
    return EndHere(TakeFloats(numbers, count), start);
}

bool TTextCursor::EndHere(bool taken, const char* start)
{
    if (taken && IsAtEnd())
        return true;
    At = start;
    return false;
}

// Behind a backslash.
bool TTextCursor::TakeEscaped(char& character)
{
    if (At == End)
        return false;
    character = *At++;
    if (character == 'n')
        character = '\n';
    if (character != 'x')
        return character == '\n' || character == '"' || character == '\\';
    if (End - At < 2)
        return false;
    uint8_t code = 0;
    const std::from_chars_result result = std::from_chars(At, At + 2, code, 16);
    if (result.ptr != At + 2 || code == 0)
        return false;
    At += 2;
    character = static_cast<char>(code);
    return true;
}

bool TTextCursor::TakeQuoted(TString& text)
{
    const char* start = At;
    vector<char> found;
    bool isWhole = false;
    if (Take("\""))
        while (At < End && !isWhole) {
            char character = *At++;
            if (character == '"')
                isWhole = true;
            else if (found.size() == MaxTextLength || (character == '\\' && !TakeEscaped(character)))
                break;
            else
                Append(found, character);
        }
    if (!isWhole) {
        At = start;
        return false;
    }
    text.Assign(found.data(), found.data() + found.size());
    return true;
}

bool TTextCursor::TakeName(TString& name)
{
    const char* start = At;
    int number = 0;
    if (TakeQuoted(name) && (!Take("#") || (TakeInt(number) && number > 1)))
        return true;
    At = start;
    return false;
}

bool TTextCursor::TakeInt(int& number)
{
    const std::from_chars_result result = std::from_chars(At, End, number);
    if (result.ec != std::errc())
        return false;
    At = result.ptr;
    return true;
}

bool TTextCursor::TakeFloat(float& number)
{
    const char* start = At;
    if (Take("nan(0x")) {
        uint32_t bits = 0;
        const std::from_chars_result result = std::from_chars(At, End, bits, 16);
        At = result.ptr;
        if (result.ec == std::errc() && Take(")")) {
            number = std::bit_cast<float>(bits);
            return true;
        }
        At = start;
        return false;
    }
    const std::from_chars_result result = std::from_chars(At, End, number);
    if (result.ec != std::errc())
        return false;
    At = result.ptr;
    return true;
}

bool TTextCursor::TakeFloats(float* numbers, int count)
{
    const char* start = At;
    for (int i = 0; i < count; ++i)
        if ((i > 0 && !Take(" ")) || !TakeFloat(numbers[i])) {
            At = start;
            return false;
        }
    return true;
}

bool TTextCursor::TakeLabel(TTextCursor& label)
{
    bool isQuoted = false;
    for (const char* at = At; at < End; ++at) {
        if (*at == '"')
            isQuoted = !isQuoted;
        else if (isQuoted && *at == '\\' && at + 1 < End)
            ++at;
        else if (!isQuoted && *at == ':') {
            label = TTextCursor(At, at);
            At = at + 1;
            Take(" ");
            return true;
        }
    }
    return false;
}

void TTextCursor::TakeLine(TString& line)
{
    const char* stop = At;
    while (stop < End && *stop != '\n')
        ++stop;
    line.Assign(At, stop);
    At = stop < End ? stop + 1 : stop;
}

TString TTextCursor::TakePath()
{
    const char* last = At;
    TTextCursor scan = *this;
    while (!scan.IsAtEnd()) {
        TString name;
        if (*scan.At != '"')
            ++scan.At;
        else if (scan.TakeName(name))
            last = scan.At;
        else
            break;
    }
    TString path;
    path.Assign(At, last);
    At = last;
    return path;
}
