#include "particles/cindermill/interface/controls/colourtext.h"

#include "particles/cindermill/interface/controls/pickedcolour.h"
#include "particles/cindermill/interface/controls/valuetext.h"

#include <cmath>

namespace {
constexpr int NumComponents = TPickedColour::NumComponents;
// The alpha may be left out.
constexpr int LeastComponents = 3;
constexpr float MaxByte = 255.0f;

bool IsSpace(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

const char* SkipSpaces(const char* text)
{
    while (IsSpace(*text))
        ++text;
    return text;
}

// -1 for what is no digit.
int HexDigit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    const char lower = static_cast<char>(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

// The text behind the "#".
int ReadHex(const char* text, float* result)
{
    int count = 0;
    for (; count < NumComponents && HexDigit(text[0]) >= 0 && HexDigit(text[1]) >= 0; text += 2)
        result[count++] = static_cast<float>(HexDigit(text[0]) * 16 + HexDigit(text[1])) / MaxByte;
    return *SkipSpaces(text) == 0 ? count : 0;
}

int ReadNumbers(const char* text, float* result)
{
    double numbers[NumComponents];
    int count = NumComponents;
    while (count >= LeastComponents && !ParseNumbers(text, numbers, count))
        --count;
    for (int i = 0; i < count; ++i)
        result[i] = ClampToUnit(static_cast<float>(numbers[i]));
    return count;
}

bool IsByte(float value)
{
    return value >= 0.0f && value <= 1.0f && std::round(value * MaxByte) / MaxByte == value;
}
} // namespace

void ColourToText(const float* rgba, TString& text)
{
    bool isHex = true;
    unsigned bytes[NumComponents] = {};
    for (int i = 0; i < NumComponents; ++i) {
        isHex = isHex && IsByte(rgba[i]);
        bytes[i] = isHex ? static_cast<unsigned>(std::lround(rgba[i] * MaxByte)) : 0;
    }
    if (isHex) {
        text.Format("#%02X%02X%02X%02X", bytes[0], bytes[1], bytes[2], bytes[3]);
        return;
    }
    PrintFloats(text, rgba, NumComponents);
}

bool TextToColour(const char* text, float* rgba)
{
    if (text == nullptr)
        return false;
    text = SkipSpaces(text);
    float read[NumComponents];
    const int count = *text == '#' ? ReadHex(text + 1, read) : ReadNumbers(text, read);
    if (count < LeastComponents)
        return false;
    for (int i = 0; i < count; ++i)
        rgba[i] = read[i];
    return true;
}
