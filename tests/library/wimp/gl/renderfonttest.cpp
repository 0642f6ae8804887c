#include "support/gltest.h"
#include "support/testsupport.h"

#include "library/containers/strtoid.h"
#include "library/system/file.h"
#include "library/wimp/gl/renderfont.h"
#include "library/wimp/gl/renderfonttable.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <ft2build.h>
#include FT_FREETYPE_H

namespace {

constexpr const char* Arial = "Arial (TrueType)";
const TVector4 Black(0, 0, 0, 1);

std::string ArialPath()
{
    static const std::string path = [] {
        vector<TFontFile> fonts;
        ListSystemFonts(fonts);
        for (const TFontFile& font : fonts)
            if (font.Name.Compare(Arial) == 0)
                return Text(font.Path);
        return std::string();
    }();
    return path;
}

int NumListings = 0;

void ListTestFonts(vector<TFontFile>& fonts)
{
    ++NumListings;
    fonts.push_back(TFontFile{"Test Sans (TrueType)", ArialPath().c_str()});
    fonts.push_back(TFontFile{"Broken (TrueType)", SourcePath("README.md").c_str()});
}

// The fonts of the list above alone.
class TFonts : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_NE(ArialPath(), "");
        NumListings = 0;
        TRenderFontTable::SetLister(ListTestFonts);
    }
    void TearDown() override { TRenderFontTable::SetLister(nullptr); }
};

void ListNoFont(vector<TFontFile>&) {}

void ListBrokenDefault(vector<TFontFile>& fonts)
{
    fonts.push_back(TFontFile{Arial, SourcePath("README.md").c_str()});
}

TVector2 SizeOf(const TFontInstance& font, const char* text)
{
    TVector2 size;
    font.GetTextSize(text, size);
    return size;
}

bool IsDark(const TPixel& pixel)
{
    return pixel.R < 128;
}

// The advance of a character as the rasteriser itself gives it.
int AdvanceOf(int character, float size)
{
    FT_Library library = nullptr;
    FT_Face face = nullptr;
    EXPECT_EQ(FT_Init_FreeType(&library), 0);
    EXPECT_EQ(FT_New_Face(library, ArialPath().c_str(), 0, &face), 0);
    FT_Set_Char_Size(face, 0, static_cast<FT_F26Dot6>(size * 64), 72, 72);
    FT_Load_Glyph(face, FT_Get_Char_Index(face, static_cast<FT_ULong>(character)), FT_LOAD_RENDER);
    const int advance = static_cast<int>(face->glyph->advance.x >> 6);
    FT_Done_Face(face);
    FT_Done_FreeType(library);
    return advance;
}

} // namespace

TEST(TSystemFonts, TheListHasExistingFilesAndAFaceWithoutSerifs)
{
    vector<TFontFile> fonts;
    ListSystemFonts(fonts);
    int found = 0;
    for (const TFontFile& font : fonts) {
        EXPECT_TRUE(FileExists(font.Path)) << Text(font.Path);
        const std::string name = Text(font.Name);
        ASSERT_GT(name.size(), 11u);
        EXPECT_EQ(name.substr(name.size() - 11), " (TrueType)");
        found += font.Name.Compare(Arial) == 0 ? 1 : 0;
    }
    EXPECT_EQ(found, 1);
}

TEST_F(TFonts, ANameNotInTheFontTableFailsWithoutACrashAtCreation)
{
    TFontInstance font;
    EXPECT_FALSE(font.Create("Elsewhere (TrueType)", 10));
    EXPECT_FALSE(font.IsCreated());
    EXPECT_FALSE(font.Create(nullptr, 10));
    EXPECT_FALSE(font.Create("", 10));
}

TEST_F(TFonts, AFileThatIsNoFontFails)
{
    TFontInstance font;
    EXPECT_FALSE(font.Create("Broken (TrueType)", 10));
    EXPECT_FALSE(font.Create("Test Sans (TrueType)", 0));
    EXPECT_FALSE(font.Create("Test Sans (TrueType)", -5));
    EXPECT_FALSE(font.Create("Test Sans (TrueType)", 1e9f));
    EXPECT_FALSE(font.Create("Test Sans (TrueType)", std::nanf("")));
}

TEST_F(TFonts, NamesAreComparedWithoutCase)
{
    TFontInstance font;
    TFontInstance other;
    EXPECT_TRUE(font.Create("Test Sans (TrueType)", 10));
    EXPECT_TRUE(other.Create("TEST SANS (truetype)", 10));
    EXPECT_EQ(font.GetFont(), other.GetFont());
    EXPECT_EQ(font.GetFont()->GetName(), StrToID("test sans (TrueType)"));
}

TEST_F(TFonts, TheSystemsFontsAreListedOnFirstUseOnly)
{
    EXPECT_EQ(NumListings, 0);
    TFontInstance font;
    font.Create("Nowhere (TrueType)", 10);
    font.Create("Test Sans (TrueType)", 11);
    EXPECT_EQ(NumListings, 1);
}

TEST_F(TFonts, RequestingTheSameFontAtTheSameSizeTwiceSharesOneTexture)
{
    TTestWindow window(10, 10);
    TRenderer renderer;
    TFontInstance a;
    TFontInstance b;
    TFontInstance c;
    ASSERT_TRUE(a.Create("Test Sans (TrueType)", 10));
    ASSERT_TRUE(b.Create("Test Sans (TrueType)", 10));
    ASSERT_TRUE(c.Create("Test Sans (TrueType)", 12));
    EXPECT_EQ(a.GetFont(), b.GetFont());
    EXPECT_NE(a.GetFont(), c.GetFont());
    const auto textureOf = [&](const TFontInstance& font) {
        return const_cast<TFontAtlas&>(font.GetFont()->GetAtlas()).GetTexture(false);
    };
    EXPECT_EQ(textureOf(a), textureOf(b));
    EXPECT_NE(textureOf(a), textureOf(c));
}

TEST_F(TFonts, ReferencesAreCountedAndAFontStaysAtCountZero)
{
    const TRenderFont* font = nullptr;
    {
        TFontInstance a;
        ASSERT_TRUE(a.Create("Test Sans (TrueType)", 13));
        font = a.GetFont();
        EXPECT_EQ(TRenderFontTable::GetRefCount(font), 1);
        TFontInstance b(a);
        TFontInstance c;
        c = b;
        const TFontInstance& itself = c;
        c = itself;
        EXPECT_EQ(TRenderFontTable::GetRefCount(font), 3);
        EXPECT_TRUE(c.Create("Test Sans (TrueType)", 13));
        EXPECT_EQ(TRenderFontTable::GetRefCount(font), 3);
        EXPECT_FALSE(c.Create("Nowhere (TrueType)", 13));
        EXPECT_EQ(TRenderFontTable::GetRefCount(font), 2);
    }
    EXPECT_EQ(TRenderFontTable::GetRefCount(font), 0);
    TFontInstance again;
    ASSERT_TRUE(again.Create("Test Sans (TrueType)", 13));
    EXPECT_EQ(again.GetFont(), font);
}

TEST_F(TFonts, ReleasingWhatNobodyHoldsIsAnAssertion)
{
    TRenderFont stranger(0, 10);
    EXPECT_EQ(AssertionOf([&] { TRenderFontTable::Release(&stranger); }), "it != Fonts.end()");
    TRenderFont* font = TRenderFontTable::AddRef("Test Sans (TrueType)", 14);
    ASSERT_NE(font, nullptr);
    TRenderFontTable::Release(font);
    EXPECT_EQ(AssertionOf([&] { TRenderFontTable::Release(font); }), "fontit->RefCount > 0");
}

TEST_F(TFonts, TextWithANullFontIsAnAssertion)
{
    TFontInstance font;
    TVector2 size;
    TRenderer renderer;
    EXPECT_EQ(AssertionOf([&] { font.GetTextSize("a", size); }), "Font != 0");
    EXPECT_EQ(AssertionOf([&] { font.DrawText(renderer, TVector2(0, 0), "a"); }), "Font != 0");
}

TEST_F(TFonts, SpaceHasAnAdvanceButNoCell)
{
    TFontInstance font;
    ASSERT_TRUE(font.Create("Test Sans (TrueType)", 10));
    const TFontGlyph* space = font.GetFont()->GetAtlas().GetGlyph(' ');
    ASSERT_NE(space, nullptr);
    EXPECT_GT(space->Advance, 0);
    EXPECT_EQ(space->Cell, -1);
    EXPECT_EQ(space->Width, 0);
    EXPECT_GE(font.GetFont()->GetAtlas().GetGlyph('!')->Cell, 0);
}

TEST_F(TFonts, TheTextsSizeIsTheSumOfTheAdvancesAndTheCellsHeight)
{
    TFontInstance font;
    ASSERT_TRUE(font.Create("Test Sans (TrueType)", 10));
    const float height = static_cast<float>(font.GetFont()->GetAtlas().GetCellHeight());
    int width = 0;
    for (const char c : std::string("Wave 7"))
        width += AdvanceOf(c, 10);
    EXPECT_EQ(SizeOf(font, "Wave 7"), TVector2(static_cast<float>(width), height));
    EXPECT_EQ(SizeOf(font, ""), TVector2(0, height));
    EXPECT_EQ(SizeOf(font, nullptr), TVector2(0, height));
}

TEST_F(TFonts, CharactersOutside32To127AreSkipped)
{
    TFontInstance font;
    ASSERT_TRUE(font.Create("Test Sans (TrueType)", 10));
    EXPECT_EQ(SizeOf(font, "\x1f"
                           "a\n\t\x80\xff"
                           "b"),
              SizeOf(font, "ab"));
    EXPECT_NE(font.GetFont()->GetAtlas().GetGlyph('\x7f'), nullptr);
    EXPECT_EQ(font.GetFont()->GetAtlas().GetGlyph('\x80'), nullptr);
    EXPECT_EQ(font.GetFont()->GetAtlas().GetGlyph('\x1f'), nullptr);
}

TEST_F(TFonts, TheAtlasIsASquareOfCellsAsLargeAsTheBoxOfAllGlyphs)
{
    TFontInstance font;
    ASSERT_TRUE(font.Create("Test Sans (TrueType)", 12));
    const TFontAtlas& atlas = font.GetFont()->GetAtlas();
    int cells = 0;
    int low[2] = {1000, 1000};
    int high[2] = {-1000, -1000};
    for (int c = 32; c < 128; ++c) {
        const TFontGlyph& glyph = *atlas.GetGlyph(static_cast<char>(c));
        if (glyph.Cell < 0)
            continue;
        EXPECT_EQ(glyph.Cell, cells++);
        low[0] = std::min(low[0], glyph.BearingX);
        low[1] = std::min(low[1], glyph.BearingY);
        high[0] = std::max(high[0], glyph.BearingX + glyph.Width);
        high[1] = std::max(high[1], glyph.BearingY + glyph.Height);
        EXPECT_TRUE(glyph.Pixels.empty());
    }
    EXPECT_EQ(cells, 95);
    EXPECT_EQ(atlas.GetCellWidth(), high[0] - low[0]);
    EXPECT_EQ(atlas.GetCellHeight(), high[1] - low[1]);
    EXPECT_EQ(atlas.GetColumns(), 10);
    EXPECT_EQ(atlas.GetWidth(), 10 * atlas.GetCellWidth());
    EXPECT_EQ(atlas.GetHeight(), 10 * atlas.GetCellHeight());
}

TEST_F(TFonts, TexelsAreWhiteWithTheCoverageAsAlpha)
{
    TFontInstance font;
    ASSERT_TRUE(font.Create("Test Sans (TrueType)", 23));
    const TFontAtlas& atlas = font.GetFont()->GetAtlas();
    const vector<uint32_t>& texels = atlas.GetTexels();
    ASSERT_EQ(texels.size(), atlas.GetWidth() * atlas.GetHeight());
    uint32_t strongest = 0;
    for (const uint32_t texel : texels) {
        EXPECT_EQ(texel & 0xFFFFFF, 0xFFFFFFu);
        strongest = std::max(strongest, texel >> 24);
    }
    EXPECT_EQ(strongest, 255u);
    // The bar fills its box and nothing of its cell beside it.
    const TFontGlyph& bar = *atlas.GetGlyph('|');
    int x = 0;
    int y = 0;
    atlas.GetPosition(bar, x, y);
    EXPECT_GT(texels[(y + bar.Height / 2) * atlas.GetWidth() + x + bar.Width / 2] >> 24, 200u);
    EXPECT_EQ(texels[(y + bar.Height / 2) * atlas.GetWidth() + x + bar.Width] >> 24, 0u);
}

TEST_F(TGlTest, TextIsDrawnWithinItsSize)
{
    TFontInstance font;
    ASSERT_TRUE(font.Create(Arial, 10));
    const TVector2 size = SizeOf(font, "Hxg");
    for (const float zoom : {0.5f, 1.0f, 1.3f, 2.0f, 3.0f}) {
        Renderer.SetScale(TVector2(zoom, zoom));
        TDrawnObject root(
            [&](TRenderer& renderer) { font.DrawText(renderer, TVector2(10, 10), "Hxg", Black); });
        const TPicture picture = Paint(root);
        const auto inked = [](const TPixel& pixel) { return pixel.R < 250; };
        const int left = static_cast<int>(std::floor(10 * zoom)) - 1;
        const int top = left;
        const int width = static_cast<int>(std::ceil(size[0] * zoom)) + 2;
        const int height = static_cast<int>(std::ceil(size[1] * zoom)) + 2;
        EXPECT_GT(picture.Count(inked, left, top, width, height), 20 * zoom * zoom) << zoom;
        EXPECT_EQ(picture.Count(inked, left, top, width, height), picture.Count(inked)) << zoom;
    }
}

TEST_F(TGlTest, TextIsSharpAtTheOrdinaryZoom)
{
    TFontInstance font;
    ASSERT_TRUE(font.Create(Arial, 10));
    TDrawnObject root(
        [&](TRenderer& renderer) { font.DrawText(renderer, TVector2(10, 10), "HILTE", Black); });
    const TPicture picture = Paint(root);
    // Upright strokes reach nearly full strength, and do not smear over their neighbours.
    EXPECT_GE(picture.Count([](const TPixel& pixel) { return pixel.R < 70; }), 15);
    // A pan by a fraction of a pixel does not change that.
    Renderer.SetOffset(TVector2(0.2f, 0.3f));
    EXPECT_GE(Paint(root).Count([](const TPixel& pixel) { return pixel.R < 70; }), 15);
}

// A font of so much times the size is what a screen of that scale shows of a font.
TEST_F(TGlTest, OnAScaledScreenTextIsMadeOfTheScreensDots)
{
    for (const double dots : {1.25, 1.5, 1.75, 2.0, 3.0}) {
        TFontInstance font;
        TFontInstance large;
        ASSERT_TRUE(font.Create(Arial, 12));
        ASSERT_TRUE(large.Create(Arial, static_cast<float>(12 * dots)));
        // One character at a time: how they follow each other is settled by the measures of the ordinary
        // size.
        for (const char* text : {"H", "x", "g", "W"}) {
            TVector2 corner(0, 0);
            auto ink = [&](const TFontInstance& drawn, double scale) {
                Window.DotsPerPixel = scale;
                TDrawnObject root(
                    [&](TRenderer& renderer) { drawn.DrawText(renderer, TVector2(20, 20), text, Black); });
                const TPicture picture = Paint(root);
                std::vector<std::array<int, 3>> dotsDrawn;
                int left = Width;
                int top = Height;
                for (int y = 0; y < Height; ++y)
                    for (int x = 0; x < Width; ++x)
                        if (picture.At(x, y).R < 250) {
                            left = std::min(left, x);
                            top = std::min(top, y);
                            dotsDrawn.push_back({x, y, picture.At(x, y).R});
                        }
                for (std::array<int, 3>& dot : dotsDrawn) {
                    dot[0] -= left;
                    dot[1] -= top;
                }
                return dotsDrawn;
            };
            const auto scaled = ink(font, dots);
            EXPECT_GT(scaled.size(), 20u);
            EXPECT_EQ(scaled, ink(large, 1)) << text << " " << dots;
        }
    }
}

TEST_F(TGlTest, OnAScaledScreenALineOfTextIsAsLongAsItsMeasure)
{
    TFontInstance font;
    ASSERT_TRUE(font.Create(Arial, 10));
    const TVector2 size = SizeOf(font, "Emission HiliH");
    for (const double dots : {1.0, 1.25, 1.5, 1.75, 2.0}) {
        Window.DotsPerPixel = dots;
        TDrawnObject root(
            [&](TRenderer& renderer) { font.DrawText(renderer, TVector2(5, 10), "Emission HiliH", Black); });
        const TPicture picture = Paint(root);
        int right = 0;
        for (int y = 0; y < Height; ++y)
            for (int x = 0; x < Width; ++x)
                if (picture.At(x, y).R < 250)
                    right = std::max(right, x);
        EXPECT_NEAR(right / dots, 5 + size[0], 2) << dots;
    }
}

TEST_F(TGlTest, TextTakesItsColour)
{
    TFontInstance font;
    ASSERT_TRUE(font.Create(Arial, 12));
    font.SetColour(TVector4(1, 0, 0, 1));
    TDrawnObject root([&](TRenderer& renderer) {
        font.DrawText(renderer, TVector2(10, 10), "HH");
        font.DrawText(renderer, TVector2(10, 50), "HH", TVector4(0, 0, 1, 1));
    });
    const TPicture picture = Paint(root);
    const auto red = [](const TPixel& pixel) { return pixel.R > 200 && pixel.G < 120; };
    const auto blue = [](const TPixel& pixel) { return pixel.B > 200 && pixel.G < 120; };
    EXPECT_GT(picture.Count(red, 0, 0, Width, 40), 5);
    EXPECT_EQ(picture.Count(red, 0, 45, Width, 60), 0);
    EXPECT_GT(picture.Count(blue, 0, 45, Width, 60), 5);
    EXPECT_EQ(picture.Count(blue, 0, 0, Width, 40), 0);
}

TEST_F(TGlTest, TextsOfOneFontAndColourTakeOneCall)
{
    TFontInstance font;
    ASSERT_TRUE(font.Create(Arial, 10));
    TDrawnObject root([&](TRenderer& renderer) {
        for (int i = 0; i < 10; ++i)
            font.DrawText(renderer, TVector2(10, static_cast<float>(10 + 12 * i)), "Position", Black);
    });
    Paint(root);
    EXPECT_EQ(Renderer.GetNumCalls(), 1);
}

TEST_F(TGlTest, DrawingSkipsWhatHasNoGlyph)
{
    TFontInstance font;
    ASSERT_TRUE(font.Create(Arial, 10));
    TDrawnObject root([&](TRenderer& renderer) {
        font.DrawText(renderer, TVector2(10, 10), " \n\xe4 ", Black);
        font.DrawText(renderer, TVector2(10, 10), "", Black);
        font.DrawText(renderer, TVector2(10, 10), nullptr, Black);
    });
    EXPECT_EQ(Paint(root).Count(IsDark), 0);
}

TEST(TFontsMissing, TheDefaultFontIsBoxesOnASystemWithoutFonts)
{
    for (const TRenderFontTable::TLister lister : {ListNoFont, ListBrokenDefault}) {
        TRenderFontTable::SetLister(lister);
        TFontInstance font;
        // A size that nothing else has asked for: fonts stay.
        const float size = lister == ListNoFont ? 17.5f : 18.5f;
        EXPECT_FALSE(font.Create("Other (TrueType)", size));
        ASSERT_TRUE(font.Create("arial (truetype)", size));
        const TFontAtlas& atlas = font.GetFont()->GetAtlas();
        EXPECT_GT(SizeOf(font, "Emitter")[0], 7.0f);
        EXPECT_GT(SizeOf(font, "Emitter")[1], 10.0f);
        EXPECT_EQ(SizeOf(font, "  ")[0], SizeOf(font, "mi")[0]);
        EXPECT_EQ(atlas.GetGlyph(' ')->Cell, -1);
        EXPECT_EQ(atlas.GetGlyph('!')->Cell, 0);
        EXPECT_EQ(atlas.GetGlyph(127)->Cell, NumFontCharacters - 2);
        EXPECT_FALSE(font.Create(Arial, 0.0f));
        TRenderFontTable::SetLister(nullptr);
    }
}

TEST_F(TGlTest, BoxesAreDrawnAtAnyZoom)
{
    TRenderFontTable::SetLister(ListNoFont);
    TFontInstance font;
    ASSERT_TRUE(font.Create(Arial, 20.5f));
    TDrawnObject object([&](TRenderer& renderer) { font.DrawText(renderer, TVector2(10, 10), "AB", Black); });
    for (const float zoom : {1.0f, 4.0f, 0.5f}) {
        Renderer.SetScale(TVector2(zoom, zoom));
        const TPicture picture = Paint(object);
        const auto isDrawn = [](const TPixel& pixel) { return pixel.R < 220; };
        EXPECT_GT(picture.Count(isDrawn), 10) << zoom;
        // They are hollow.
        EXPECT_FALSE(IsDark(picture.At(static_cast<int>(14 * zoom), static_cast<int>(18 * zoom)))) << zoom;
    }
    TRenderFontTable::SetLister(nullptr);
}
