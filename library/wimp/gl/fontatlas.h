#pragma once

#include "library/containers/vector.h"
#include "library/maths/vector2.h"

#include <cstdint>

struct FT_FaceRec_;
struct FT_LibraryRec_;

constexpr int FirstFontCharacter = 32;
constexpr int NumFontCharacters = 96;

// One character's picture; sizes and positions in pixels of the atlas, y downwards from the base line.
struct TFontGlyph
{
    int Width = 0;
    int Height = 0;
    int BearingX = 0;
    // Negated: above the base line is below 0.
    int BearingY = 0;
    int Advance = 0;
    // -1 for a character without a picture.
    int Cell = -1;
    // Coverage, row by row; only while the atlas is built.
    vector<uint8_t> Pixels;
};

// The characters 32 to 127 of a font at one size, rasterised into one texture of equal cells. Building needs
// no OpenGL.
class TFontAtlas
{
public:
    TFontAtlas() = default;
    ~TFontAtlas();
    TFontAtlas(const TFontAtlas&) = delete;
    TFontAtlas& operator=(const TFontAtlas&) = delete;

    // Size is in pixels. The margin is empty texels around each cell. False if the file holds no font of the
    // size.
    bool Build(FT_LibraryRec_* library, const char* path, float size, int margin);

    // An empty box for each character but the space, without any font.
    bool BuildBoxes(float size);

    // Null for a character outside the range.
    const TFontGlyph* GetGlyph(char character) const;
    // The cell's size, without margins.
    int GetCellWidth() const { return CellWidth; }
    int GetCellHeight() const { return CellHeight; }
    // The top left of the box around all pictures, as seen from a pen on the base line.
    const int* GetBoxMin() const { return BoxMin; }
    int GetColumns() const { return Columns; }
    int GetWidth() const { return Width; }
    int GetHeight() const { return Height; }
    int GetMargin() const { return Margin; }
    // Where a glyph's picture begins in the texture.
    void GetPosition(const TFontGlyph& glyph, int& x, int& y) const;
    // The OpenGL texture, made when first asked for; needs a current context. Exact says that each texel will
    // fall on one pixel: filtering, which costs, then has nothing to do and is left out. So it is for all
    // that a frame draws with it.
    unsigned GetTexture(bool exact);
    // Red, green, blue, alpha; empty once the texture has been made.
    const vector<uint32_t>& GetTexels() const { return Texels; }

private:
    bool LoadGlyph(FT_FaceRec_* face, int character, TFontGlyph& glyph);
    void MakeBox(int height, TFontGlyph& glyph);
    // Lays the picture of a glyph out.
    void AddCell(TFontGlyph& glyph);
    bool DrawTexels();
    void LayOut();
    void DrawGlyph(const TFontGlyph& glyph);
    void SetFilter(int filter);
    void Upload();

    TFontGlyph Glyphs[NumFontCharacters];
    int CellWidth = 0;
    int CellHeight = 0;
    int BoxMin[2] = {};
    int BoxMax[2] = {};
    int NumCells = 0;
    int Columns = 0;
    int Width = 0;
    int Height = 0;
    int Margin = 0;
    vector<uint32_t> Texels;
    unsigned Texture = 0;
    bool Exact = false;
};
