#pragma once

#include "library/wimp/gdi/rgbpicture.h"
#include "library/wimp/gl/offscreen/offscreenwindow.h"
#include "library/wimp/gl/renderer.h"
#include "library/wimp/gl/renderfont.h"

// Pictures of one size in rows, each with a line of text below it.
class TContactSheet
{
public:
    // The context, which is current, stays the caller's.
    TContactSheet(TOffscreenContext& context, int count, int columns);

    // The size of the whole, which a sheet of no more than `maxSide` pixels has.
    bool SetCellSize(int width, int height, int maxSide);
    // Asks for SetCellSize first.
    TRgbPicture MakePicture() const { return TRgbPicture(SheetWidth, SheetHeight); }
    void Clear(TRgbPicture& sheet) const { sheet.Fill(PaperColour); }
    void PutCell(TRgbPicture& sheet, int index, const TRgbPicture& picture, const char* text);

    // As many columns as make a sheet about as wide as it is high.
    static int GetUsualColumns(int count);

private:
    static constexpr uint32_t PaperColour = 0x1E2023;

    TOffscreenWindow Label;
    TRenderer Renderer;
    TFontInstance Font;
    int Count;
    int Columns;
    int CellWidth = 0;
    int CellHeight = 0;
    int SheetWidth = 0;
    int SheetHeight = 0;
};
