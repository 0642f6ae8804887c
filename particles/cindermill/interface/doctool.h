#pragma once

#include "library/wimp/window.h"
#include "particles/cindermill/interface/filterfield.h"
#include "particles/cindermill/interface/palette.h"

class TDocWindow;

// The palette of node types at the left of a document window. Types are dragged from it into the graph.
class TDocTool : public TWindow
{
public:
    bool Create(TDocWindow& docWindow);
    // Shows the library as it is now, with all of it open, or what the filter leaves of it.
    void OpenLibrary();
    bool OnMessage(const TMessage& message) override;

    // What is typed while the palette has the keys.
    const TString& GetFilter() const { return Filter.GetText(); }
    int GetScroll() const { return ScrollY; }
    const TPalette& GetPalette() const { return Palette; }

private:
    void Paint(TGDIContext& context) const;
    void PaintType(TGDIContext& context, const TPaletteRow& row, int top, int width) const;
    void PaintCategory(TGDIContext& context, const TPaletteRow& row, int top, int width) const;
    static void PaintName(TGDIContext& context, const TPaletteRow& row, int top, int width, const char* name);
    void PaintBranches(TGDIContext& context, int category, int top) const;
    void OnLeftDown(int x, int y);
    bool OnKey(const TMessage& message);
    void ShowFilter();
    void OnMove(const TMessage& message);
    void ShowHelp();
    int GetListHeight() const;
    // Kept within the palette; the bar follows.
    void ScrollTo(int position);

    TDocWindow* DocWindow = nullptr;
    TPalette Palette;
    int ScrollY = 0;
    TFilterField Filter;
    // Where the pointer rests.
    int PointerX = 0;
    int PointerY = -1;
};
