#include "particles/cindermill/interface/controls/pickedcolour.h"

#include <algorithm>
#include <cmath>

namespace {
constexpr int NumRgb = 3;

bool AreSame(const float* a, const float* b, int count)
{
    return std::equal(a, a + count, b);
}

// How much of a channel the pure hue has.
double HueChannel(double hue, double shift)
{
    // A whole turn is none: added to the shift first, it would cost the last digits.
    const double shifted = hue - std::floor(hue) + shift;
    const double turn = shifted - std::floor(shifted);
    return std::clamp(std::abs(turn * 6.0 - 3.0) - 1.0, 0.0, 1.0);
}
} // namespace

float ClampToUnit(float value)
{
    return value > 0.0f ? std::min(value, 1.0f) : 0.0f;
}

void HslToRgb(const float* hsl, float* rgb)
{
    constexpr double Shifts[NumRgb] = {0.0, 2.0 / 3.0, 1.0 / 3.0};
    const double luminance = hsl[2];
    const double chroma = (1.0 - std::abs(2.0 * luminance - 1.0)) * hsl[1];
    for (int i = 0; i < NumRgb; ++i) {
        const double value = luminance + chroma * (HueChannel(hsl[0], Shifts[i]) - 0.5);
        rgb[i] = ClampToUnit(static_cast<float>(value));
    }
}

void RgbToHsl(const float* rgb, float* hsl)
{
    const double r = rgb[0];
    const double g = rgb[1];
    const double b = rgb[2];
    const double high = std::max({r, g, b});
    const double low = std::min({r, g, b});
    const double span = high - low;
    hsl[0] = hsl[1] = 0.0f;
    hsl[2] = static_cast<float>((high + low) * 0.5);
    if (!(span > 0.0))
        return;
    hsl[1] = ClampToUnit(static_cast<float>(span / (1.0 - std::abs(high + low - 1.0))));
    double sixths = 0.0;
    if (high == r)
        sixths = (g - b) / span + (g < b ? 6.0 : 0.0);
    else if (high == g)
        sixths = (b - r) / span + 2.0;
    else
        sixths = (r - g) / span + 4.0;
    hsl[0] = static_cast<float>(sixths / 6.0);
}

void TPickedColour::SetRgba(const float* rgba)
{
    const bool isSame = AreSame(rgba, Rgba, NumRgb);
    std::copy(rgba, rgba + NumComponents, Rgba);
    Hsla[Alpha] = Rgba[Alpha];
    if (!isSame)
        TakeHsl();
}

void TPickedColour::SetRgbaComponent(int i, float value)
{
    float rgba[NumComponents];
    std::copy(Rgba, Rgba + NumComponents, rgba);
    rgba[i] = value;
    SetRgba(rgba);
}

void TPickedColour::SetHslaComponent(int i, float value)
{
    float before[NumRgb];
    HslToRgb(Hsla, before);
    Hsla[i] = value;
    if (i == Alpha) {
        Rgba[Alpha] = value;
        return;
    }
    float after[NumRgb];
    HslToRgb(Hsla, after);
    // A channel that the edit does not reach keeps what it had, beyond 0 to 1 too: a hue of grey reaches
    // none.
    for (int c = 0; c < NumRgb; ++c)
        if (after[c] != before[c])
            Rgba[c] = after[c];
}

void TPickedColour::TakeHsl()
{
    float rgb[NumRgb];
    for (int i = 0; i < NumRgb; ++i)
        rgb[i] = ClampToUnit(Rgba[i]);
    float given[NumRgb];
    HslToRgb(Hsla, given);
    if (AreSame(given, rgb, NumRgb))
        return;
    float hsl[NumRgb];
    RgbToHsl(rgb, hsl);
    const bool hasSaturation = hsl[2] > 0.0f && hsl[2] < 1.0f;
    const bool hasHue = hsl[1] > 0.0f;
    if (hasHue)
        Hsla[0] = hsl[0];
    if (hasSaturation)
        Hsla[1] = hsl[1];
    Hsla[2] = hsl[2];
}
