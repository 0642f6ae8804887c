#include "particles/cindermill/interface/controls/valuetext.h"

#include <charconv>
#include <cmath>
#include <string.h>

namespace {

template <class TNumber>
void Print(TString& text, const TNumber* numbers, int count)
{
    text = TString();
    for (int i = 0; i < count; ++i) {
        char buffer[64];
        const std::to_chars_result end = std::to_chars(buffer, buffer + sizeof(buffer) - 1, numbers[i]);
        *end.ptr = 0;
        if (i > 0)
            text += ", ";
        text += buffer;
    }
}

bool IsBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

void SkipBlanks(const char*& text, const char* end)
{
    while (text != end && IsBlank(*text))
        ++text;
}

// What stands around the whole of it.
void StripBrackets(const char*& text, const char*& end)
{
    SkipBlanks(text, end);
    while (end != text && IsBlank(end[-1]))
        --end;
    if (end - text < 2)
        return;
    const char* open = strchr("([{<", *text);
    if (*text == 0 || open == nullptr || end[-1] != ")]}>"[open - "([{<"])
        return;
    ++text;
    --end;
}

} // namespace

void PrintNumbers(TString& text, const double* numbers, int count)
{
    Print(text, numbers, count);
}

void PrintFloats(TString& text, const float* numbers, int count)
{
    Print(text, numbers, count);
}

bool ParseNumbers(const char* text, double* numbers, int count)
{
    if (text == nullptr)
        return false;
    const char* end = text + strlen(text);
    StripBrackets(text, end);
    for (int i = 0; i < count; ++i) {
        SkipBlanks(text, end);
        if (i > 0 && text != end && (*text == ',' || *text == ';'))
            ++text;
        SkipBlanks(text, end);
        if (text != end && *text == '+')
            ++text;
        const std::from_chars_result read = std::from_chars(text, end, numbers[i]);
        if (read.ec != std::errc() || !std::isfinite(numbers[i]))
            return false;
        text = read.ptr;
        // "1.2.3" is not 1.2 and 0.3.
        if (text != end && !IsBlank(*text) && *text != ',' && *text != ';')
            return false;
    }
    SkipBlanks(text, end);
    return text == end;
}

bool ParseSwitch(const char* text, bool& result)
{
    TString word(text);
    word.Trim();
    const bool isOn = word.Compare("true") == 0 || word.Compare("1") == 0;
    if (!isOn && word.Compare("false") != 0 && word.Compare("0") != 0)
        return false;
    result = isOn;
    return true;
}
