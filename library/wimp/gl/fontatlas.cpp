#include "library/wimp/gl/fontatlas.h"

#include "library/containers/assertion.h"
#include "library/wimp/gl/glcontext.h"
#include "library/wimp/gl/texturerevision.h"

#include <GL/glew.h>
#include <ft2build.h>
#include FT_FREETYPE_H

namespace {
constexpr int DotsPerInch = 72;
constexpr float MaxFontSize = 1024.0f;
constexpr int MaxTextureSide = 8192;
// White, so that filtering never darkens an edge; alpha 0. The bytes are red, green, blue, alpha.
constexpr uint32_t EmptyTexel = 0x00FFFFFF;

class TFace
{
public:
    TFace(FT_Library library, const char* path)
    {
        if (FT_New_Face(library, path, 0, &Face) != 0)
            Face = nullptr;
    }
    ~TFace()
    {
        if (Face != nullptr)
            FT_Done_Face(Face);
    }
    TFace(const TFace&) = delete;
    TFace& operator=(const TFace&) = delete;

    FT_Face Face = nullptr;
};

uint8_t GetCoverage(const FT_Bitmap& bm, unsigned x, unsigned y)
{
    ASSERT_TEXT(x < bm.width && y < bm.rows, "x < bm.width && y < bm.rows");
    const unsigned char* row = bm.buffer + static_cast<int>(y) * bm.pitch;
    if (bm.pixel_mode == FT_PIXEL_MODE_GRAY)
        return row[x];
    if (bm.pixel_mode == FT_PIXEL_MODE_MONO)
        return (row[x / 8] & (0x80 >> (x % 8))) != 0 ? 255 : 0;
    return 0;
}

int CeilingOfRoot(int count)
{
    int root = 0;
    while (root * root < count)
        ++root;
    return root;
}
} // namespace

TFontAtlas::~TFontAtlas()
{
    DeleteGlTexture(Texture);
}

bool TFontAtlas::Build(FT_LibraryRec_* library, const char* path, float size, int margin)
{
    if (!(size > 0.0f && size <= MaxFontSize))
        return false;
    TFace face(library, path);
    if (face.Face == nullptr)
        return false;
    if (FT_Set_Char_Size(face.Face, 0, static_cast<FT_F26Dot6>(size * 64), DotsPerInch, DotsPerInch) != 0)
        return false;
    Margin = margin;
    for (int i = 0; i < NumFontCharacters; ++i)
        if (!LoadGlyph(face.Face, FirstFontCharacter + i, Glyphs[i]))
            return false;
    return DrawTexels();
}

bool TFontAtlas::BuildBoxes(float size)
{
    if (!(size > 0.0f && size <= MaxFontSize))
        return false;
    // A file that did not load may have left some of its glyphs.
    NumCells = 0;
    // About the height of a capital.
    const int height = static_cast<int>(size * 0.7f) + 1;
    for (int i = 0; i < NumFontCharacters; ++i) {
        Glyphs[i] = TFontGlyph();
        Glyphs[i].Advance = height / 2 + 2;
        if (FirstFontCharacter + i != ' ')
            MakeBox(height, Glyphs[i]);
    }
    return DrawTexels();
}

void TFontAtlas::MakeBox(int height, TFontGlyph& glyph)
{
    glyph.Width = height / 2 + 1;
    glyph.Height = height;
    glyph.BearingY = -height;
    AddCell(glyph);
    glyph.Pixels.reserve(glyph.Width * glyph.Height);
    for (int y = 0; y < glyph.Height; ++y)
        for (int x = 0; x < glyph.Width; ++x) {
            const bool edge = x == 0 || y == 0 || x == glyph.Width - 1 || y == glyph.Height - 1;
            glyph.Pixels.push_back(edge ? 255 : 0);
        }
}

bool TFontAtlas::DrawTexels()
{
    LayOut();
    if (Width > MaxTextureSide || Height > MaxTextureSide)
        return false;
    Texels.reserve(Width * Height);
    Texels.resize(Width * Height);
    for (uint32_t& texel : Texels)
        texel = EmptyTexel;
    for (TFontGlyph& glyph : Glyphs) {
        DrawGlyph(glyph);
        vector<uint8_t>().swap(glyph.Pixels);
    }
    return true;
}

bool TFontAtlas::LoadGlyph(FT_FaceRec_* face, int character, TFontGlyph& glyph)
{
    const FT_UInt index = FT_Get_Char_Index(face, static_cast<FT_ULong>(character));
    if (FT_Load_Glyph(face, index, FT_LOAD_RENDER) != 0)
        return false;
    const FT_GlyphSlot slot = face->glyph;
    const FT_Bitmap& bm = slot->bitmap;
    glyph.Advance = static_cast<int>(slot->advance.x >> 6);
    if (bm.width < 1 || bm.rows < 1)
        return true;
    glyph.Width = static_cast<int>(bm.width);
    glyph.Height = static_cast<int>(bm.rows);
    glyph.BearingX = slot->bitmap_left;
    glyph.BearingY = -slot->bitmap_top;
    AddCell(glyph);
    glyph.Pixels.reserve(glyph.Width * glyph.Height);
    for (unsigned y = 0; y < bm.rows; ++y)
        for (unsigned x = 0; x < bm.width; ++x)
            glyph.Pixels.push_back(GetCoverage(bm, x, y));
    return true;
}

void TFontAtlas::AddCell(TFontGlyph& glyph)
{
    const int min[2] = {glyph.BearingX, glyph.BearingY};
    const int max[2] = {min[0] + glyph.Width, min[1] + glyph.Height};
    for (int i = 0; i < 2; ++i) {
        if (NumCells == 0 || min[i] < BoxMin[i])
            BoxMin[i] = min[i];
        if (NumCells == 0 || max[i] > BoxMax[i])
            BoxMax[i] = max[i];
    }
    glyph.Cell = NumCells++;
}

void TFontAtlas::LayOut()
{
    CellWidth = BoxMax[0] - BoxMin[0];
    CellHeight = BoxMax[1] - BoxMin[1];
    Columns = CeilingOfRoot(NumCells);
    const int rows = Columns > 0 ? (NumCells + Columns - 1) / Columns : 0;
    Width = Columns * (CellWidth + 2 * Margin);
    Height = rows * (CellHeight + 2 * Margin);
}

void TFontAtlas::GetPosition(const TFontGlyph& glyph, int& x, int& y) const
{
    x = glyph.Cell % Columns * (CellWidth + 2 * Margin) + Margin + glyph.BearingX - BoxMin[0];
    y = glyph.Cell / Columns * (CellHeight + 2 * Margin) + Margin + glyph.BearingY - BoxMin[1];
}

void TFontAtlas::DrawGlyph(const TFontGlyph& glyph)
{
    if (glyph.Cell < 0)
        return;
    const int texwidth = Width;
    const int texheight = Height;
    int left = 0;
    int top = 0;
    GetPosition(glyph, left, top);
    const uint8_t* coverage = glyph.Pixels.data();
    for (int y = 0; y < glyph.Height; ++y) {
        for (int x = 0; x < glyph.Width; ++x) {
            const int xx = left + x;
            const int yy = top + y;
            ASSERT_TEXT(xx >= 0 && xx < texwidth, "xx >= 0 && xx < texwidth");
            ASSERT_TEXT(yy >= 0 && yy < texheight, "yy >= 0 && yy < texheight");
            Texels[yy * texwidth + xx] = EmptyTexel | static_cast<uint32_t>(*coverage++) << 24;
        }
    }
}

const TFontGlyph* TFontAtlas::GetGlyph(char character) const
{
    const int index = static_cast<unsigned char>(character) - FirstFontCharacter;
    return index >= 0 && index < NumFontCharacters ? &Glyphs[index] : nullptr;
}

void TFontAtlas::SetFilter(int filter)
{
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filter);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filter);
}

void TFontAtlas::Upload()
{
    glGenTextures(1, &Texture);
    glBindTexture(GL_TEXTURE_2D, Texture);
    SetFilter(GL_LINEAR);
    // The packed type reads the words the same on every machine.
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, Width, Height, 0, GL_RGBA, GL_UNSIGNED_INT_8_8_8_8_REV,
                 Texels.data());
    CheckGlError();
    TouchGlTexture(Texture);
    vector<uint32_t>().swap(Texels);
}

unsigned TFontAtlas::GetTexture(bool exact)
{
    if (Texture == 0)
        Upload();
    if (exact != Exact) {
        glBindTexture(GL_TEXTURE_2D, Texture);
        SetFilter(exact ? GL_NEAREST : GL_LINEAR);
        TouchGlTexture(Texture);
        Exact = exact;
    }
    return Texture;
}
