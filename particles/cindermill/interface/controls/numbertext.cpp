#include "particles/cindermill/interface/controls/numbertext.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

namespace {

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

// Behind the digits, and the point among them.
const char* SkipDigits(const char* at, bool isFloat, int& numDigits)
{
    bool point = false;
    numDigits = 0;
    for (; IsDigit(*at) || (isFloat && !point && *at == '.'); ++at) {
        if (*at == '.')
            point = true;
        else
            ++numDigits;
    }
    return at;
}

// Behind the number at the beginning of the text; the text itself for none.
const char* SkipNumber(const char* text, bool isFloat)
{
    int numDigits = 0;
    const char* end = SkipDigits(*text == '-' ? text + 1 : text, isFloat, numDigits);
    return numDigits > 0 ? end : text;
}

void FindFirst(const char* text, bool isFloat, TString& result)
{
    result = TString();
    for (const char* at = text; *at != 0; ++at) {
        const char* end = SkipNumber(at, isFloat);
        if (end == at)
            continue;
        result.Assign(at, end);
        return;
    }
}

// 1.5e-07, as programs write it.
bool FindWithExponent(const char* text, TString& result)
{
    while (*text == ' ')
        ++text;
    double value = 0;
    const auto parsed = std::from_chars(text, text + strlen(text), value);
    if (parsed.ec != std::errc() || !std::isfinite(value) || memchr(text, 'e', parsed.ptr - text) == nullptr)
        return false;
    constexpr int Room = 400;
    char buffer[Room];
    const auto printed = std::to_chars(buffer, buffer + Room, value, std::chars_format::fixed);
    if (printed.ec != std::errc())
        return false;
    result.Assign(buffer, printed.ptr);
    return true;
}

} // namespace

bool ParseNumber(const char* text, bool isFloat, double& value)
{
    const char* end = SkipNumber(text, isFloat);
    if (end == text || *end != 0)
        return false;
    double number = 0;
    const auto parsed = std::from_chars(text, end, number, std::chars_format::fixed);
    if (parsed.ec == std::errc::result_out_of_range) {
        // Too many digits in front of the point, or too many zeros behind it.
        const char* first = text + strspn(text, "-0");
        const bool large = IsDigit(*first);
        number = large ? std::numeric_limits<double>::max() : 0;
        if (large && *text == '-')
            number = -number;
    }
    value = number;
    return true;
}

void FindNumber(const char* text, TString& result)
{
    if (!FindWithExponent(text, result))
        FindFirst(text, true, result);
}

void FindWholeNumber(const char* text, TString& result)
{
    FindFirst(text, false, result);
}
