#include "particles/cindermill/interface/controls/combodropdown.h"

#include "library/wimp/gl/renderer.h"
#include "library/wimp/gl/renderwindow.h"
#include "particles/cindermill/interface/controls/combobox.h"
#include "particles/cindermill/interface/controls/controlhost.h"

namespace {

constexpr float ListBorder = 2.0f;
constexpr float ListInset = 6.0f;
constexpr float StripWidth = 8.0f;
constexpr float ShortestPip = 8.0f;
// Where neither above nor below is room for more, a list is still to be read.
constexpr int LeastRows = 3;

} // namespace

TComboDropDown::TComboDropDown(TControlHost& host, TComboBox& owner)
    : Host(host), Owner(owner), Strip(*this), Opening(*this)
{
    SetParent(&owner);
}

TComboDropDown::~TComboDropDown() = default;

void TComboDropDown::Open()
{
    if (IsOpen() || Owner.Items.empty())
        return;
    Place();
    Wheel.Forget();
    Marked = Owner.Selection;
    FirstRow = 0;
    SetMarked(Marked >= 0 ? Marked : 0);
    Marked = Owner.Selection;
    Opening.Item = -1;
    SetOverlay(this, GetRenderer());
    Opening.Begin(Host);
    Host.RedrawGraphs();
}

void TComboDropDown::Close()
{
    if (!IsOpen())
        return;
    Strip.Cancel();
    Opening.Cancel();
    SetOverlay(nullptr);
    Host.RedrawGraphs();
}

float TComboDropDown::MeasureWidth() const
{
    float width = Owner.Size[0];
    for (const TComboBox::TItem& item : Owner.Items) {
        TVector2 size;
        Owner.Font.GetTextSize(item.Text.Print(), size);
        const float needed = size[0] + 2 * ListInset + (IsScrolling() ? StripWidth : 0.0f);
        width = needed > width ? needed : width;
    }
    return width;
}

bool TComboDropDown::IsScrolling() const
{
    return NumRows < Owner.Items.size();
}

// Below the combo box, or above it, as high as there is room in the view.
void TComboDropDown::Place()
{
    const int numItems = Owner.Items.size();
    NumRows = numItems < MaxRows ? numItems : MaxRows;
    bool upwards = false;
    TRenderer* renderer = GetRenderer();
    if (renderer != nullptr && renderer->GetWindow() != nullptr) {
        int width = 0;
        int height = 0;
        renderer->GetWindow()->GetSize(width, height);
        const float top = Owner.GetAbsolutePosition()[1];
        const float above = top - renderer->PixelToWorld(0, 0)[1];
        const float below = renderer->PixelToWorld(0, height)[1] - top - Owner.Size[1];
        const float needed = RowHeight * static_cast<float>(NumRows) + 2 * ListBorder;
        upwards = below < needed && above > below;
        const int fit = static_cast<int>(((upwards ? above : below) - 2 * ListBorder) / RowHeight);
        if (fit < NumRows)
            NumRows = fit > LeastRows ? fit : NumRows < LeastRows ? NumRows : LeastRows;
    }
    Size = TVector2(MeasureWidth(), RowHeight * static_cast<float>(NumRows) + 2 * ListBorder);
    Box.Build(TVector2(0, 0), Size);
    SetOrigin(TVector2(0, upwards ? -Size[1] : Owner.Size[1]));
}

void TComboDropDown::ScrollTo(int firstRow)
{
    const int limit = Owner.Items.size() - NumRows;
    const int wanted = firstRow > limit ? limit : firstRow;
    FirstRow = wanted < 0 ? 0 : wanted;
    Host.RedrawGraphs();
}

void TComboDropDown::SetMarked(int item)
{
    Marked = item;
    if (item < FirstRow)
        ScrollTo(item);
    else if (item >= FirstRow + NumRows)
        ScrollTo(item - NumRows + 1);
    Host.RedrawGraphs();
}

bool TComboDropDown::OnWheel(int delta)
{
    if (!IsOpen() || HitTest(GetPointer() - GetAbsolutePosition() + Origin) == nullptr)
        return false;
    ScrollTo(FirstRow - Wheel.Take(delta));
    return true;
}

bool TComboDropDown::IsOnStrip(const TVector2& point) const
{
    return IsScrolling() && point[0] >= Size[0] - StripWidth;
}

// -1 for none.
int TComboDropDown::FindItem(const TVector2& point) const
{
    if (point[0] < 0 || point[0] >= Size[0] || point[1] < ListBorder || IsOnStrip(point))
        return -1;
    const int row = static_cast<int>((point[1] - ListBorder) / RowHeight);
    return row < NumRows ? FirstRow + row : -1;
}

void TComboDropDown::ScrollByStrip(float y)
{
    const float share = static_cast<float>(NumRows) / static_cast<float>(Owner.Items.size());
    const float place = (y - ListBorder) / (Size[1] - 2 * ListBorder) - share * 0.5f;
    ScrollTo(static_cast<int>(place * static_cast<float>(Owner.Items.size()) + 0.5f));
}

bool TComboDropDown::Event(const TRenderEvent& event)
{
    switch (event.Code) {
    case RE_PRESSEDOUTSIDE:
        Close();
        return true;
    case RE_LEFTDOWN:
        if (IsOnStrip(event.Point)) {
            ScrollByStrip(event.Point[1]);
            Strip.Begin(Host);
        }
        return true;
    case RE_LEFTUP: {
        const int item = FindItem(event.Point);
        if (item >= 0)
            Owner.Choose(item);
        return true;
    }
    case RE_ENTER:
    case RE_MOVE:
        return OnPointer(event);
    case RE_WHEEL:
        return OnWheel(event.Detail) || TRenderObject::Event(event);
    case RE_LEAVE:
    case RE_HOVER:
        return true;
    default:
        return TRenderObject::Event(event);
    }
}

bool TComboDropDown::OnPointer(const TRenderEvent& event)
{
    const int item = FindItem(event.Point);
    if (item >= 0 && item != Marked)
        SetMarked(item);
    return true;
}

void TComboDropDown::TStripDrag::OnDrag(const TVector2& point, int keyFlags)
{
    (void)keyFlags;
    List.ScrollByStrip(point[1]);
}

void TComboDropDown::TOpeningDrag::OnDrag(const TVector2& point, int keyFlags)
{
    (void)keyFlags;
    Item = List.IsOpen() ? List.FindItem(point) : -1;
    if (Item >= 0)
        List.SetMarked(Item);
}

void TComboDropDown::TOpeningDrag::OnDragEnd()
{
    if (Item >= 0 && List.IsOpen())
        List.Owner.Choose(Item);
}

void TComboDropDown::Render(TRenderer& renderer)
{
    Box.RenderList(renderer);
    const float right = Size[0] - ListBorder - (IsScrolling() ? StripWidth : 0.0f);
    for (int row = 0; row < NumRows; ++row) {
        const int item = FirstRow + row;
        const float top = ListBorder + RowHeight * static_cast<float>(row);
        if (item == Marked || item == Owner.Selection) {
            renderer.SetColour(item == Marked ? GetSelectionColour() : GetChosenColour());
            renderer.DrawRectangle(TVector2(ListBorder, top), TVector2(right, top + RowHeight));
        }
        DrawControlText(renderer, Owner.Font, TVector2(ListInset, top + GetTextTop(Owner.Font, RowHeight)),
                        Owner.Items[item].Text.Print(), GetControlInk(0));
    }
    if (!IsScrolling())
        return;
    const float count = static_cast<float>(Owner.Items.size());
    const float height = Size[1] - 2 * ListBorder;
    float length = height * static_cast<float>(NumRows) / count;
    length = length > ShortestPip ? length : ShortestPip;
    const float way = static_cast<float>(FirstRow) / (count - static_cast<float>(NumRows));
    const float top = ListBorder + (height - length) * way;
    TControlBox pip;
    pip.Build(TVector2(right + 1, top), TVector2(Size[0] - ListBorder + 0.5f, top + length),
              StripWidth * 0.5f);
    pip.RenderPip(renderer, Strip.IsRunning() ? CL_PRESSED : 0);
}

void TComboDropDown::GetBounds(TVector2& min, TVector2& max)
{
    min = TVector2(0, 0);
    max = Size;
}
