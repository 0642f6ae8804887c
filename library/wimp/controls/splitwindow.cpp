#include "library/wimp/controls/splitwindow.h"

#include "library/containers/assertion.h"
#include "library/maths/scalar.h"

#include <cmath>

// A pane cannot be dragged away altogether.
static constexpr int SmallestPane = 10;

void TSplitWindow::Attach(TWindow* owner)
{
    Owner = owner;
}

void TSplitWindow::AddPane(TWindow* window, bool vertical, TWindow* afterWindow, float size)
{
    ASSERT_TEXT(window != nullptr, "window != 0");
    int at = 0;
    while (at < Panes.size() && Panes[at].Window != afterWindow)
        ++at;
    // Behind the pane found, or in front of the first one.
    at = at < Panes.size() ? at + 1 : 0;
    if (Panes.empty()) {
        Panes.push_back(TPane{0, vertical, window});
        Layout();
        return;
    }
    const int neighbour = at > 0 ? at - 1 : 0;
    const int whole = GetExtent(neighbour, vertical);
    if (size < 0)
        size = static_cast<float>(whole / 2);
    if (at == 0) {
        Panes[0].Size = size;
        Panes[0].Vertical = vertical;
        Panes.insert(Panes.begin(), TPane{0, vertical, window});
    } else {
        // The new pane takes what its neighbour leaves of the place that it had.
        if (at < Panes.size() && Panes[at].Vertical == vertical) {
            const int rest = whole - static_cast<int>(size) - Gap;
            Panes[at].Size = static_cast<float>(rest > 0 ? rest : 0);
        }
        Panes.insert(Panes.begin() + at, TPane{size, vertical, window});
    }
    Layout();
}

TSplitWindow::TArea TSplitWindow::GetClientArea() const
{
    TArea area = {0, 0, 0, 0};
    Owner->GetSize(area.Right, area.Bottom);
    return area;
}

// Cuts the area in two, the second part being that of the pane and all behind it.
void TSplitWindow::Divide(const TPane& pane, TArea& before, TArea& gap, TArea& rest)
{
    before = gap = rest;
    const int start = pane.Vertical ? rest.Top : rest.Left;
    const int end = pane.Vertical ? rest.Bottom : rest.Right;
    const int split = Clamp(start + static_cast<int>(pane.Size), start, end - Gap);
    if (pane.Vertical) {
        before.Bottom = gap.Top = split;
        gap.Bottom = rest.Top = split + Gap;
    } else {
        before.Right = gap.Left = split;
        gap.Right = rest.Left = split + Gap;
    }
}

void TSplitWindow::GetAreas(int pane, TArea& place, TArea& gap) const
{
    TArea rest = GetClientArea();
    gap = {0, 0, 0, 0};
    for (int i = 1; i <= pane; ++i)
        Divide(Panes[i], place, gap, rest);
    place = rest;
    TArea nextGap;
    if (pane + 1 < Panes.size())
        Divide(Panes[pane + 1], place, nextGap, rest);
}

int TSplitWindow::GetExtent(int pane, bool vertical) const
{
    TArea place;
    TArea gap;
    GetAreas(pane, place, gap);
    return vertical ? place.Bottom - place.Top : place.Right - place.Left;
}

void TSplitWindow::Layout()
{
    for (int i = 0; i < Panes.size(); ++i) {
        const TPane* pp = &Panes[i];
        ASSERT_TEXT(pp->Window != nullptr, "pp->Window != 0");
        TArea place;
        TArea gap;
        GetAreas(i, place, gap);
        const int width = place.Right - place.Left;
        const int height = place.Bottom - place.Top;
        pp->Window->MoveTo(place.Left, place.Top, width > 0 ? width : 0, height > 0 ? height : 0);
    }
    Owner->Redraw();
}

int TSplitWindow::FindGap(int x, int y) const
{
    for (int i = 1; i < Panes.size(); ++i) {
        TArea place;
        TArea gap;
        GetAreas(i, place, gap);
        if (x >= gap.Left && x < gap.Right && y >= gap.Top && y < gap.Bottom)
            return i;
    }
    return -1;
}

void TSplitWindow::DrawGaps(TGDIContext& context) const
{
    context.SetNoPen();
    context.SetBrush(ButtonColour);
    for (int i = 1; i < Panes.size(); ++i) {
        TArea place;
        TArea gap;
        GetAreas(i, place, gap);
        context.Rectangle(gap.Left, gap.Top, gap.Right, gap.Bottom);
    }
}

void TSplitWindow::DragTo(int x, int y)
{
    TArea before;
    TArea gap;
    GetAreas(DraggedGap - 1, before, gap);
    const bool vertical = Panes[DraggedGap].Vertical;
    const TArea client = GetClientArea();
    const int start = vertical ? before.Top : before.Left;
    const int end = (vertical ? client.Bottom : client.Right) - Gap - SmallestPane;
    const int size = Clamp((vertical ? y : x) - GrabOffset - start, SmallestPane, end - start);
    Panes[DraggedGap].Size = static_cast<float>(size);
    Layout();
}

void TSplitWindow::ShowCursor(int gap)
{
    if (gap == HoveredGap)
        return;
    HoveredGap = gap;
    if (gap < 0)
        Owner->SetCursor(CU_CLASS);
    else
        Owner->SetCursor(Panes[gap].Vertical ? CU_SPLITY : CU_SPLITX);
}

bool TSplitWindow::BeginDrag(const TMessage& message)
{
    const int gap = FindGap(message.GetPixelX(), message.GetPixelY());
    if (gap < 0 || TWimp::Get().GetMouseDrag() != nullptr)
        return false;
    TArea place;
    TArea area;
    GetAreas(gap, place, area);
    GrabOffset = Panes[gap].Vertical ? message.GetPixelY() - area.Top : message.GetPixelX() - area.Left;
    DraggedGap = gap;
    TWimp::Get().SetMouseDrag(this, *Owner);
    return true;
}

void TSplitWindow::OnMouseMove(double x, double y, int buttons)
{
    const int pixelX = static_cast<int>(std::floor(x));
    const int pixelY = static_cast<int>(std::floor(y));
    DragTo(pixelX, pixelY);
    if ((buttons & MB_LEFT) != 0)
        return;
    DraggedGap = -1;
    TWimp::Get().ClearMouseDrag();
    ShowCursor(FindGap(pixelX, pixelY));
}

bool TSplitWindow::OnMessage(const TMessage& message)
{
    switch (message.Type) {
    case MT_SIZE:
        Layout();
        return false;
    case MT_PAINT:
        if (message.Context != nullptr)
            DrawGaps(*message.Context);
        return false;
    case MT_LEFTDOWN:
        return BeginDrag(message);
    case MT_MOUSEMOVE:
        if (DraggedGap >= 0)
            return true;
        ShowCursor(FindGap(message.GetPixelX(), message.GetPixelY()));
        return HoveredGap >= 0;
    case MT_LEFTUP:
        if (DraggedGap < 0)
            return false;
        OnMouseMove(message.X, message.Y, message.Buttons & ~MB_LEFT);
        return true;
    case MT_MOUSELEAVE:
        if (DraggedGap < 0)
            ShowCursor(-1);
        return false;
    default:
        return false;
    }
}
