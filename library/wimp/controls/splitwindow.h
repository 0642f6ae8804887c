#pragma once

#include "library/containers/vector.h"
#include "library/wimp/wimp.h"
#include "library/wimp/window.h"

// Divides its owner's client area into panes, with gaps that the user can drag.
class TSplitWindow : public TMouseDrag
{
public:
    static constexpr int Gap = 4;

    // The window whose client area is divided.
    void Attach(TWindow* owner);
    // Behind afterWindow, or first. Vertical panes stand one above the other. The size is that of the pane
    // before the gap, in pixels; -1: half of the neighbour. What is left behind the gap is the next pane's,
    // which further panes divide in their turn. Asserts "window != 0".
    void AddPane(TWindow* window, bool vertical, TWindow* afterWindow, float size);
    // Messages of the owner; true if consumed. Painting and a new size are left to the owner as well.
    bool OnMessage(const TMessage& message);
    void Layout();
    void OnMouseMove(double x, double y, int buttons) override;
    void OnCaptureLost() override { DraggedGap = -1; }

private:
    struct TPane
    {
        // Of the pane in front of this one, across the gap between them.
        float Size;
        bool Vertical;
        TWindow* Window;
    };

    struct TArea
    {
        int Left;
        int Top;
        int Right;
        int Bottom;
    };

    static void Divide(const TPane& pane, TArea& before, TArea& gap, TArea& rest);
    TArea GetClientArea() const;
    // Where a pane stands, and where the gap in front of it.
    void GetAreas(int pane, TArea& place, TArea& gap) const;
    int GetExtent(int pane, bool vertical) const;
    int FindGap(int x, int y) const;
    void DrawGaps(TGDIContext& context) const;
    bool BeginDrag(const TMessage& message);
    void DragTo(int x, int y);
    void ShowCursor(int gap);

    TWindow* Owner = nullptr;
    vector<TPane> Panes;
    // The pane behind the gap that is dragged or that the pointer is over, -1 for none.
    int DraggedGap = -1;
    int HoveredGap = -1;
    int GrabOffset = 0;
};
