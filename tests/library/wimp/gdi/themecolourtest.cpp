#include "library/wimp/gdi/themecolour.h"

#include "support/windowtest.h"

#include <QtGui/QPalette>
#include <QtWidgets/QApplication>

namespace {

class ThemeColour : public TWindowTest
{
protected:
    ~ThemeColour() override { QApplication::setPalette(Before); }
    static void SetDesktop(QRgb paper, QRgb ink, QRgb button)
    {
        QPalette palette;
        palette.setColor(QPalette::Base, QColor(paper));
        palette.setColor(QPalette::Text, QColor(ink));
        palette.setColor(QPalette::Button, QColor(button));
        QApplication::setPalette(palette);
    }
    static int GetLightness(TGDIColour colour) { return QColor::fromRgb(colour).lightness(); }
    static int GetHue(TGDIColour colour) { return QColor::fromRgb(colour).hslHue(); }

private:
    QPalette Before = QApplication::palette();
};

} // namespace

TEST_F(ThemeColour, OnALightDesktopColoursAreWhatTheyAre)
{
    SetDesktop(0xFFFFFF, 0x000000, 0xEFEFEF);
    EXPECT_FALSE(IsDarkTheme());
    for (const TGDIColour colour : {0x000000u, 0xFFFFFFu, 0x123456u, 0xFBE9E6u})
        EXPECT_EQ(GetThemeColour(colour), colour);
    EXPECT_EQ(GetThemeColour(ButtonColour), 0xEFEFEFu);
}

TEST_F(ThemeColour, OnADarkDesktopPaperAndInkChangePlaces)
{
    SetDesktop(0x242424, 0xF0F0F0, 0x3A3A3A);
    EXPECT_TRUE(IsDarkTheme());
    EXPECT_EQ(GetThemeColour(0xFFFFFF), 0x242424u);
    EXPECT_EQ(GetThemeColour(0x000000), 0xF0F0F0u);
    EXPECT_EQ(GetThemeColour(ButtonColour), 0x3A3A3Au);
    // The lighter it was the darker it is.
    int last = 256;
    for (TGDIColour grey = 0; grey < 256; grey += 15) {
        const int lightness = GetLightness(GetThemeColour(grey << 16 | grey << 8 | grey));
        EXPECT_LT(lightness, last);
        last = lightness;
    }
}

TEST_F(ThemeColour, OnADarkDesktopAColourKeepsItsHue)
{
    SetDesktop(0x242424, 0xF0F0F0, 0x3A3A3A);
    for (const TGDIColour colour : {0xC62828u, 0x2E7D32u, 0x4A78A8u, 0xDD7A00u, 0xFFF1D6u, 0xFBE9E6u})
        EXPECT_NEAR(GetHue(GetThemeColour(colour)), GetHue(colour), 12) << std::hex << colour;
    for (const TGDIColour paper : {0xFFF1D6u, 0xFBE9E6u, 0xE9F3E7u})
        EXPECT_LT(GetLightness(GetThemeColour(paper)), 90) << std::hex << paper;
}
