#pragma once

#include "library/wimp/gl/wheelsteps.h"
#include "library/wimp/keyboardshortcut.h"
#include "library/wimp/window.h"
#include "particles/cindermill/interface/filterfield.h"
#include "particles/cindermill/interface/palette.h"

class TDocWindow;

// The palette of node types at the left of a document window. Types are dragged from it into the graph. With
// the keys, the arrows mark a row, Return brings a type into the middle of the view and opens and closes a
// category, as Left and Right do, and what is typed is the filter.
class TDocTool : public TWindow
{
public:
    bool Create(TDocWindow& docWindow);
    // Shows the library as it is now, with all of it open, or what the filter leaves of it.
    void OpenLibrary();
    bool OnMessage(const TMessage& message) override;
    // Of the filter's menu.
    void OnCommand(TWimpControl* control, intptr_t argument, int code) override;

    // What is typed while the palette has the keys.
    const TString& GetFilter() const { return Filter.GetText(); }
    int GetScroll() const { return ScrollY; }
    const TPalette& GetPalette() const { return Palette; }
    int GetListHeight() const;
    // As if it had been typed.
    void SetFilter(const char* text);
    // The row that the keys are at.
    int GetMarked() const { return Marked; }
    void MarkRow(int row);
    // A type becomes a node in the middle of the view; false for a category.
    bool AddType(int row);

private:
    static constexpr int ScrollLine = 10;

    void Paint(TGDIContext& context) const;
    void PaintType(TGDIContext& context, const TPaletteRow& row, int top, int width) const;
    void PaintCategory(TGDIContext& context, const TPaletteRow& row, int top, int width) const;
    static void PaintName(TGDIContext& context, const TPaletteRow& row, int top, int width, const char* name);
    void PaintBranches(TGDIContext& context, int category, int top) const;
    void OnLeftDown(int x, int y);
    bool OnKey(const TMessage& message);
    bool OnRightUp(const TMessage& message);
    void AddFilterKeys();
    bool OnFilterKey(int code);
    bool OnWalkKey(int key);
    void ToggleCategory(int row);
    void OnEscape();
    void FollowFilter();
    void ShowFilter();
    void OnMove(const TMessage& message);
    void ShowHelp();
    // Kept within the palette; the bar follows.
    void ScrollTo(int position);

    TDocWindow* DocWindow = nullptr;
    TPalette Palette;
    int ScrollY = 0;
    // In pixels: lines of the scroll bar.
    TWheelSteps Wheel = TWheelSteps(ScrollLine, 64);
    TFilterField Filter;
    TKeyboardShortcut FilterKeys{this};
    int Marked = 0;
    // Where the pointer rests.
    int PointerX = 0;
    int PointerY = -1;
};
