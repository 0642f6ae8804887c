#include "support/testsupport.h"

#include "particles/cindermill/interface/controls/colourtext.h"
#include "particles/cindermill/interface/controls/pickedcolour.h"

#include <cmath>
#include <limits>

namespace {

using TFloats = std::vector<float>;

TFloats Rgb(float hue, float saturation, float luminance)
{
    const float hsl[3] = {hue, saturation, luminance};
    TFloats rgb(3);
    HslToRgb(hsl, rgb.data());
    return rgb;
}

TFloats Hsl(float r, float g, float b)
{
    const float rgb[3] = {r, g, b};
    TFloats hsl(3);
    RgbToHsl(rgb, hsl.data());
    return hsl;
}

void ExpectNear(const TFloats& a, const TFloats& b)
{
    ASSERT_EQ(a.size(), b.size());
    for (size_t i = 0; i < a.size(); ++i)
        EXPECT_NEAR(a[i], b[i], 1e-5f) << "component " << i;
}

TPickedColour Picked(float r, float g, float b, float a = 1)
{
    const float rgba[4] = {r, g, b, a};
    TPickedColour colour;
    colour.SetRgba(rgba);
    return colour;
}

TFloats RgbaOf(const TPickedColour& colour)
{
    return TFloats(colour.GetRgba(), colour.GetRgba() + 4);
}

TFloats HslaOf(const TPickedColour& colour)
{
    return TFloats(colour.GetHsla(), colour.GetHsla() + 4);
}

std::string Written(float r, float g, float b, float a)
{
    const float rgba[4] = {r, g, b, a};
    TString text;
    ColourToText(rgba, text);
    return Text(text);
}

// What the text says; empty for none.
TFloats Read(const char* text)
{
    TFloats rgba = {0.125f, 0.125f, 0.125f, 0.125f};
    const TFloats before = rgba;
    if (TextToColour(text, rgba.data()))
        return rgba;
    EXPECT_EQ(rgba, before) << text;
    return TFloats();
}

} // namespace

TEST(PickedColour, HuesStandATurnsSixthApart)
{
    ExpectNear(Rgb(0, 1, 0.5f), {1, 0, 0});
    ExpectNear(Rgb(1 / 6.0f, 1, 0.5f), {1, 1, 0});
    ExpectNear(Rgb(2 / 6.0f, 1, 0.5f), {0, 1, 0});
    ExpectNear(Rgb(3 / 6.0f, 1, 0.5f), {0, 1, 1});
    ExpectNear(Rgb(4 / 6.0f, 1, 0.5f), {0, 0, 1});
    ExpectNear(Rgb(5 / 6.0f, 1, 0.5f), {1, 0, 1});
    ExpectNear(Rgb(1, 1, 0.5f), {1, 0, 0});
    ExpectNear(Rgb(0, 1, 0.25f), {0.5f, 0, 0});
    ExpectNear(Rgb(0, 1, 0.75f), {1, 0.5f, 0.5f});
    ExpectNear(Rgb(0, 0.5f, 0.5f), {0.75f, 0.25f, 0.25f});
}

TEST(PickedColour, WithoutSaturationAllHuesAreGrey)
{
    for (const float hue : {0.0f, 0.2f, 0.5f, 0.9f, 1.0f})
        for (const float luminance : {0.0f, 0.3f, 0.5f, 1.0f})
            EXPECT_EQ(Rgb(hue, 0, luminance), (TFloats{luminance, luminance, luminance}));
}

TEST(PickedColour, BothWaysLeadBack)
{
    for (int r = 0; r <= 4; ++r)
        for (int g = 0; g <= 4; ++g)
            for (int b = 0; b <= 4; ++b) {
                const TFloats rgb = {float(r) / 4, float(g) / 4, float(b) / 4};
                const TFloats hsl = Hsl(rgb[0], rgb[1], rgb[2]);
                for (const float value : hsl) {
                    EXPECT_GE(value, 0);
                    EXPECT_LE(value, 1);
                }
                ExpectNear(Rgb(hsl[0], hsl[1], hsl[2]), rgb);
            }
}

TEST(PickedColour, HueAndSaturationOutliveBlackAndWhite)
{
    TPickedColour colour = Picked(0.2f, 0.4f, 0.6f);
    const TFloats before = HslaOf(colour);
    for (const float luminance : {0.0f, 1.0f}) {
        colour.SetHslaComponent(2, luminance);
        EXPECT_EQ(RgbaOf(colour), (TFloats{luminance, luminance, luminance, 1}));
        // As the parameter tells it back.
        colour.SetRgba(RgbaOf(colour).data());
        EXPECT_EQ(HslaOf(colour), (TFloats{before[0], before[1], luminance, 1}));
    }
    colour.SetHslaComponent(2, before[2]);
    ExpectNear(RgbaOf(colour), {0.2f, 0.4f, 0.6f, 1});
}

TEST(PickedColour, TheHueOutlivesGrey)
{
    TPickedColour colour = Picked(0.2f, 0.4f, 0.6f);
    const TFloats before = HslaOf(colour);
    colour.SetHslaComponent(1, 0);
    colour.SetRgba(RgbaOf(colour).data());
    EXPECT_EQ(HslaOf(colour), (TFloats{before[0], 0, before[2], 1}));
    colour.SetHslaComponent(0, 0.9f);
    colour.SetRgba(RgbaOf(colour).data());
    EXPECT_EQ(HslaOf(colour), (TFloats{0.9f, 0, before[2], 1}));
}

TEST(PickedColour, HueAndSaturationOutliveBlackThatRedGreenAndBlueMake)
{
    TPickedColour colour = Picked(0, 0, 0.6f);
    ExpectNear(HslaOf(colour), {2 / 3.0f, 1, 0.3f, 1});
    colour.SetRgbaComponent(2, 0);
    ExpectNear(HslaOf(colour), {2 / 3.0f, 1, 0, 1});
    colour.SetRgba(TFloats{0.5f, 0.5f, 0.5f, 1}.data());
    ExpectNear(HslaOf(colour), {2 / 3.0f, 0, 0.5f, 1});
}

TEST(PickedColour, AHueOfOneStaysOne)
{
    TPickedColour colour = Picked(0, 1, 0);
    colour.SetHslaComponent(0, 1);
    colour.SetRgba(RgbaOf(colour).data());
    EXPECT_EQ(HslaOf(colour), (TFloats{1, 1, 0.5f, 1}));
    EXPECT_EQ(RgbaOf(colour), (TFloats{1, 0, 0, 1}));
}

TEST(PickedColour, AnotherColourBringsItsOwnHueAndSaturation)
{
    TPickedColour colour = Picked(0.2f, 0.4f, 0.6f);
    colour.SetRgba(TFloats{1, 0.5f, 0.5f, 0.25f}.data());
    ExpectNear(HslaOf(colour), {0, 1, 0.75f, 0.25f});
}

TEST(PickedColour, TheAlphaLeavesEverythingElse)
{
    TPickedColour colour = Picked(2, 0.1f, -1, 1);
    const TFloats hsla = HslaOf(colour);
    colour.SetHslaComponent(3, 0.5f);
    EXPECT_EQ(RgbaOf(colour), (TFloats{2, 0.1f, -1, 0.5f}));
    EXPECT_EQ(HslaOf(colour), (TFloats{hsla[0], hsla[1], hsla[2], 0.5f}));
    colour.SetRgbaComponent(3, 0.25f);
    EXPECT_EQ(RgbaOf(colour), (TFloats{2, 0.1f, -1, 0.25f}));
    EXPECT_EQ(colour.GetHsla()[3], 0.25f);
}

TEST(PickedColour, AColourOutOfRangeIsKeptAndCountsAsOneWithin)
{
    const TPickedColour colour = Picked(2, 0, -1, 3);
    EXPECT_EQ(RgbaOf(colour), (TFloats{2, 0, -1, 3}));
    EXPECT_EQ(HslaOf(colour), (TFloats{0, 1, 0.5f, 3}));
    TPickedColour edited = colour;
    edited.SetRgbaComponent(1, 0.5f);
    EXPECT_EQ(RgbaOf(edited), (TFloats{2, 0.5f, -1, 3}));
    const float none = std::numeric_limits<float>::quiet_NaN();
    const TPickedColour odd = Picked(none, none, none, none);
    EXPECT_EQ(odd.GetHsla()[2], 0);
    EXPECT_EQ(ClampToUnit(none), 0);
}

TEST(PickedColour, HueSaturationAndLuminanceTouchOnlyTheChannelsThatTheyChange)
{
    // White, as far as it can be shown.
    TPickedColour grey = Picked(2, 2, 2);
    grey.SetHslaComponent(0, 0.3f);
    grey.SetHslaComponent(1, 0.5f);
    EXPECT_EQ(RgbaOf(grey), (TFloats{2, 2, 2, 1}));
    EXPECT_EQ(HslaOf(grey), (TFloats{0.3f, 0.5f, 1, 1}));
    grey.SetHslaComponent(1, 0);
    grey.SetHslaComponent(2, 0.5f);
    EXPECT_EQ(RgbaOf(grey), (TFloats{0.5f, 0.5f, 0.5f, 1}));
    // From red to yellow only the green grows.
    TPickedColour red = Picked(2, 0, -1);
    red.SetHslaComponent(0, 1 / 6.0f);
    EXPECT_EQ(RgbaOf(red), (TFloats{2, 1, -1, 1}));
    red.SetHslaComponent(2, 0.25f);
    ExpectNear(RgbaOf(red), {0.5f, 0.5f, -1, 1});
}

TEST(ColourText, AColourOfBytesIsHex)
{
    EXPECT_EQ(Written(1, 0, 0, 1), "#FF0000FF");
    EXPECT_EQ(Written(18 / 255.0f, 52 / 255.0f, 171 / 255.0f, 0), "#1234AB00");
    for (int i = 0; i < 256; ++i) {
        const float value = static_cast<float>(i) / 255.0f;
        EXPECT_EQ(Read(Written(value, 0, 1, value).c_str()), (TFloats{value, 0, 1, value}));
    }
}

TEST(ColourText, AnyOtherIsItsNumbersExactly)
{
    EXPECT_EQ(Written(0.5f, 1, 0, 1), "0.5, 1, 0, 1");
    EXPECT_EQ(Written(2, 0, -1, 1), "2, 0, -1, 1");
    const float odd = 0.123456789f;
    EXPECT_EQ(Read(Written(odd, 1e-6f, 1, 0.1f).c_str()), (TFloats{odd, 1e-6f, 1, 0.1f}));
}

TEST(ColourText, HexIsReadInEitherCaseWithAndWithoutAlpha)
{
    EXPECT_EQ(Read("#ff0000FF"), (TFloats{1, 0, 0, 1}));
    EXPECT_EQ(Read("  #00fF0000\n"), (TFloats{0, 1, 0, 0}));
    EXPECT_EQ(Read("#0000FF"), (TFloats{0, 0, 1, 0.125f}));
}

TEST(ColourText, NumbersAreReadAndBroughtIntoRange)
{
    EXPECT_EQ(Read("0.5, 0.25, 1, 0"), (TFloats{0.5f, 0.25f, 1, 0}));
    EXPECT_EQ(Read("(1 0 0.5)"), (TFloats{1, 0, 0.5f, 0.125f}));
    EXPECT_EQ(Read("2; -1; 0.5; 7"), (TFloats{1, 0, 0.5f, 1}));
}

TEST(ColourText, OtherTextsAreNoColours)
{
    for (const char* text : {"", " ", "#", "#12", "#12345", "#1234567", "#123456789", "#GG0000", "FF0000FF",
                             "1", "1, 2", "1, 2, 3, 4, 5", "red", "1, x, 0", "nan, 0, 0", "#FF0000 x"})
        EXPECT_EQ(Read(text), TFloats()) << text;
    EXPECT_EQ(Read(nullptr), TFloats());
}
