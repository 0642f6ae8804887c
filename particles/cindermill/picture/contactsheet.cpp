#include "particles/cindermill/picture/contactsheet.h"

#include "library/wimp/gl/renderobject.h"
#include "library/wimp/gl/systemfonts.h"
#include "particles/cindermill/picture/pictureoptions.h"

#include <cstdio>

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

// As many as make a sheet about as wide as it is high.
int GetUsualColumns(int count)
{
    int columns = 1;
    while (columns * columns < count)
        ++columns;
    return columns;
}

} // namespace

TContactSheet::TContactSheet(TOffscreenContext& context, const TPictureOptions& options, int count)
    : Label(context), Count(count), CellWidth(options.Width), CellHeight(options.Height)
{
    const int wanted = options.Columns > 0 ? options.Columns : GetUsualColumns(count);
    Columns = wanted < count ? wanted : count;
    Font.Create(DefaultFontName, FontSize);
}

bool TContactSheet::Create()
{
    constexpr int most = TPictureOptions::MaxSide;
    const int rows = (Count + Columns - 1) / Columns;
    // Both are below 2^14, and so are rows and columns.
    SheetWidth = Gap + Columns * (CellWidth + Gap);
    SheetHeight = Gap + rows * (CellHeight + LabelHeight + Gap);
    if (SheetWidth <= most && SheetHeight <= most && Label.Resize(CellWidth, LabelHeight) &&
        Renderer.Init(&Label))
        return true;
    std::fprintf(stderr, "A sheet has no more than %d pixels across and down\n", most);
    return false;
}

TRgbPicture TContactSheet::MakePicture() const
{
    TRgbPicture sheet(SheetWidth, SheetHeight);
    sheet.Fill(PaperColour);
    return sheet;
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
