#include "particles/cindermill/picture/contactsheet.h"

#include "library/wimp/gl/renderobject.h"
#include "library/wimp/gl/systemfonts.h"

namespace {

constexpr int Gap = 10;
constexpr int LabelHeight = 22;
constexpr float FontSize = 13;
constexpr float TextTop = 4;

TVector4 ToColour(uint32_t colour)
{
    constexpr float whole = 255.0f;
    return TVector4(static_cast<float>(colour >> 16 & 0xFF) / whole,
                    static_cast<float>(colour >> 8 & 0xFF) / whole, static_cast<float>(colour & 0xFF) / whole,
                    1);
}

// One line of text on the sheet's paper, cut where there is no more room.
class TLabelDrawing : public TRenderObject
{
public:
    TLabelDrawing(const TFontInstance& font, const char* text, const TVector2& size, uint32_t paper)
        : Font(font), Text(text), Size(size), Paper(paper)
    {
    }
    void Render(TRenderer& renderer) override
    {
        renderer.SetColour(ToColour(Paper));
        renderer.DrawRectangle(TVector2(0, 0), Size);
        if (Font.IsCreated())
            Font.DrawText(renderer, TVector2(1, TextTop), Text, TVector4(0.82f, 0.83f, 0.85f, 1));
    }
    void GetBounds(TVector2& min, TVector2& max) override
    {
        min = TVector2(0, 0);
        max = Size;
    }

private:
    const TFontInstance& Font;
    const char* const Text;
    const TVector2 Size;
    const uint32_t Paper;
};

} // namespace

TContactSheet::TContactSheet(TOffscreenContext& context, int count, int columns)
    : Label(context), Count(count), Columns(columns < count ? columns : count)
{
    Font.Create(DefaultFontName, FontSize);
}

int TContactSheet::GetUsualColumns(int count)
{
    int columns = 1;
    while (columns * columns < count)
        ++columns;
    return columns;
}

bool TContactSheet::SetCellSize(int width, int height, int maxSide)
{
    const int rows = (Count + Columns - 1) / Columns;
    // Both are below 2^14, and so are rows and columns.
    SheetWidth = Gap + Columns * (width + Gap);
    SheetHeight = Gap + rows * (height + LabelHeight + Gap);
    CellWidth = width;
    CellHeight = height;
    return SheetWidth <= maxSide && SheetHeight <= maxSide && Label.Resize(width, LabelHeight) &&
           Renderer.Init(&Label);
}

void TContactSheet::PutCell(TRgbPicture& sheet, int index, const TRgbPicture& picture, const char* text)
{
    const int x = Gap + index % Columns * (CellWidth + Gap);
    const int y = Gap + index / Columns * (CellHeight + LabelHeight + Gap);
    sheet.Put(picture, x, y);
    const TVector2 size(static_cast<float>(CellWidth), static_cast<float>(LabelHeight));
    TLabelDrawing drawing(Font, text, size, PaperColour);
    Renderer.Render(drawing);
    TRgbPicture label(CellWidth, LabelHeight);
    Label.Read(label.GetPixels());
    sheet.Put(label, x, y + CellHeight);
}
