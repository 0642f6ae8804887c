#pragma once

#include "library/wimp/gdi/rgbpicture.h"
#include "library/wimp/gl/offscreen/offscreenwindow.h"
#include "library/wimp/gl/renderer.h"
#include "library/wimp/gl/renderfont.h"

struct TPictureOptions;

// Pictures of one size in rows, each with a line of text below it.
class TContactSheet
{
public:
    // The context, which is current, stays the caller's.
    TContactSheet(TOffscreenContext& context, const TPictureOptions& options, int count);

    // Lays it out; false, with the reason told, where it would be too large.
    bool Create();
    // The paper alone.
    TRgbPicture MakePicture() const;
    void PutCell(TRgbPicture& sheet, int index, const TRgbPicture& picture, const char* text);

private:
    static constexpr uint32_t PaperColour = 0x1E2023;

    TOffscreenWindow Label;
    TRenderer Renderer;
    TFontInstance Font;
    int Count;
    int Columns = 1;
    int CellWidth;
    int CellHeight;
    int SheetWidth = 0;
    int SheetHeight = 0;
};
