#include "particles/cindermill/interface/particles/budgetpanel.h"

#include "library/wimp/listwalk.h"

#include <cstring>

namespace {

constexpr TGDIFont RowFont = {nullptr, 12, 400};
constexpr TGDIColour Background = 0xF8F8F8;
TWindowClass BudgetClass("cindermill_particlewindow_budget", 0, Background);
constexpr TGDIColour TitleColour = 0xE4E4E4;
constexpr TGDIColour OnlyColour = 0xDCE8F8;
constexpr TGDIColour LineColour = 0xC8C8C8;
constexpr TGDIColour TextColour = 0x202020;
constexpr TGDIColour FaintColour = 0x606060;
constexpr TGDIColour BarColour = 0x9CC4A0;
constexpr TGDIColour FullColour = 0xE08078;
constexpr TGDIColour PeakColour = 0x507850;
constexpr TGDIColour OverColour = 0xC01818;
constexpr int RowHeight = 18;
constexpr int TextTop = 2;
constexpr int TextLeft = 6;
constexpr int MaxShown = 6;

// From the right edge on, the last one first.
struct TColumn
{
    const char* Title;
    int Width;
};
enum TColumnNumber
{
    CN_ALIVE,
    CN_BORN,
    CN_ROWS,
    CN_PROGRAM,
    CN_WORKSPACE,
    CN_NUMCOLUMNS
};
constexpr TColumn Columns[CN_NUMCOLUMNS] = {
    {"Alive", 104}, {"Born", 62}, {"Rows", 52}, {"Program", 58}, {"Work", 52}};

// Where there is little room the first ones are left.
int GetNumColumns(int width)
{
    constexpr int leastName = 110;
    int count = 0;
    for (int taken = leastName; count < CN_NUMCOLUMNS && taken + Columns[count].Width <= width; ++count)
        taken += Columns[count].Width;
    return count;
}

// The columns are as far to the right as their lines can still be followed.
int GetColumnLeft(int column, int width)
{
    constexpr int most = 720;
    const int count = GetNumColumns(width);
    int left = width < most ? width : most;
    for (int i = column; i < count; ++i)
        left -= Columns[i].Width;
    return left;
}

void PutText(TGDIContext& context, int column, int width, int top, const TString& text)
{
    if (column >= GetNumColumns(width))
        return;
    const int left = column < 0 ? TextLeft : GetColumnLeft(column, width);
    const int right = GetColumnLeft(column + 1, width);
    context.TextOutClipped(left, top + TextTop, right - left - 2, RowHeight - TextTop, text);
}

// Groups of one name are told apart by the number at its end, which stays.
void FitGroupName(const TString& name, int room, TString& shown)
{
    const char* text = name.Print();
    const char* number = strstr(text, " (");
    if (number == nullptr || GetTextWidth(RowFont, text) <= room) {
        FitText(RowFont, text, room, shown);
        return;
    }
    TString start;
    start.Assign(text, number);
    FitText(RowFont, start.Print(), room - GetTextWidth(RowFont, number), shown);
    shown += number;
}

void PutGroupName(TGDIContext& context, int width, int top, const TString& name)
{
    constexpr int gap = 4;
    TString shown;
    FitGroupName(name, GetColumnLeft(0, width) - TextLeft - gap, shown);
    PutText(context, -1, width, top, shown);
}

} // namespace

bool TBudgetPanel::Create(TWindow* owner, const TPreviewBudget& budget)
{
    Budget = &budget;
    TWindowParams params;
    params.Class = &BudgetClass;
    params.Owner = owner;
    params.VerticalScroll = true;
    if (!TWindow::Create(params))
        return false;
    // Before anything makes the window known to assistive tools.
    SetAccessible(&Access, "Budget");
    SetTip(
        "Alive: of the capacity, with the most since the start. Born: of what a frame may bring. Rows: of "
        "64. Program and Work: kilobytes at birth and in each frame. A click shows the group in the graph, "
        "with Alt it alone is drawn.");
    SetSpokenName("Budget");
    TakeTab();
    Hide();
    return true;
}

int TBudgetPanel::GetLineTop(int line) const
{
    return (line - ScrollY + 1) * RowHeight;
}

void TBudgetPanel::PressLine(int line, bool alone)
{
    if (line < 0 || line >= Budget->GetGroups().size())
        return;
    const TGroupBudget& group = Budget->GetGroups()[line];
    if (!alone || group.HasParticles)
        Report(group.Group, alone ? CC_BUTTON : CC_SELECTION);
}

bool TBudgetPanel::OnKey(const TMessage& message)
{
    switch (message.Key) {
    case KEY_RETURN:
        PressLine(Marked, (message.KeyFlags & KF_ALT) != 0);
        return true;
    case KEY_UP:
    case KEY_DOWN: {
        const int marked = WalkList(message.Key, Marked, Budget->GetGroups().size(), 1);
        Marked = marked > 0 ? marked : 0;
        if (Marked < ScrollY)
            ScrollTo(Marked);
        else if (Marked >= ScrollY + GetNumShown())
            ScrollTo(Marked - GetNumShown() + 1);
        Redraw();
        return true;
    }
    default:
        return message.Key != KEY_TAB && Owner->OnMessage(message);
    }
}

// Titles and totals stand above and below the groups.
int TBudgetPanel::GetWantedHeight() const
{
    const int groups = Budget->GetGroups().size();
    return (2 + (groups < MaxShown ? groups : MaxShown)) * RowHeight;
}

int TBudgetPanel::GetNumShown() const
{
    int width = 0;
    int height = 0;
    GetSize(width, height);
    const int shown = height / RowHeight - 2;
    return shown > 0 ? shown : 0;
}

void TBudgetPanel::SetOnlyGroup(int group)
{
    if (group == OnlyGroup)
        return;
    OnlyGroup = group;
    Redraw();
}

void TBudgetPanel::Update()
{
    ScrollTo(ScrollY);
    Redraw();
}

void TBudgetPanel::ScrollTo(int position)
{
    const int groups = Budget->GetGroups().size();
    const int last = groups > GetNumShown() ? groups - GetNumShown() : 0;
    ScrollY = position < last ? position : last;
    ScrollY = ScrollY > 0 ? ScrollY : 0;
    SetScrollRange(groups, GetNumShown(), 1);
    SetScrollPosition(ScrollY);
    Redraw();
}

bool TBudgetPanel::OnMessage(const TMessage& message)
{
    switch (message.Type) {
    case MT_PAINT:
        Paint(*message.Context);
        return true;
    case MT_SIZE:
        ScrollTo(ScrollY);
        return true;
    case MT_SCROLL:
        ScrollTo(message.GetPixelX());
        return true;
    case MT_WHEEL:
        ScrollTo(ScrollY - Wheel.Take(message.Delta));
        return true;
    case MT_LEFTUP:
        OnClick(message);
        return true;
    case MT_KEYDOWN:
        return OnKey(message);
    case MT_CHAR:
        return Owner->OnMessage(message);
    case MT_FOCUSGAINED:
    case MT_FOCUSLOST:
        Redraw();
        return false;
    default:
        return TWindow::OnMessage(message);
    }
}

void TBudgetPanel::OnClick(const TMessage& message)
{
    const int row = message.GetPixelY() / RowHeight - 1;
    const int group = row + ScrollY;
    if (message.Y < RowHeight || row >= GetNumShown() || group >= Budget->GetGroups().size())
        return;
    PressLine(group, (message.KeyFlags & KF_ALT) != 0);
}

void TBudgetPanel::Paint(TGDIContext& context) const
{
    int width = 0;
    int height = 0;
    GetSize(width, height);
    context.SetFont(RowFont);
    PaintTitles(context, width);
    const vector<TGroupBudget>& groups = Budget->GetGroups();
    for (int i = 0; i < GetNumShown() && i + ScrollY < groups.size(); ++i)
        PaintGroup(context, groups[i + ScrollY], width, (i + 1) * RowHeight);
    PaintTotals(context, width, height - RowHeight);
    if (HasFocus() && Marked < groups.size() && Marked >= ScrollY && Marked < ScrollY + GetNumShown())
        context.FocusFrame(0, GetLineTop(Marked), width, GetLineTop(Marked) + RowHeight);
}

void TBudgetPanel::PaintTitles(TGDIContext& context, int width) const
{
    context.SetNoPen();
    context.SetBrush(TitleColour);
    context.Rectangle(0, 0, width, RowHeight);
    context.SetTextColour(FaintColour);
    PutText(context, -1, width, 0, "Group");
    for (int i = 0; i < CN_NUMCOLUMNS; ++i)
        PutText(context, i, width, 0, Columns[i].Title);
}

void TBudgetPanel::PaintGroup(TGDIContext& context, const TGroupBudget& group, int width, int top) const
{
    if (group.Group == OnlyGroup) {
        context.SetNoPen();
        context.SetBrush(OnlyColour);
        context.Rectangle(0, top, width, top + RowHeight);
    }
    context.SetTextColour(TextColour);
    PutGroupName(context, width, top, group.Name);
    if (group.HasParticles)
        PaintParticles(context, group, width, top);
    PaintCode(context, group, width, top);
}

void TBudgetPanel::PaintParticles(TGDIContext& context, const TGroupBudget& group, int width, int top) const
{
    TString text;
    if (CN_ALIVE < GetNumColumns(width)) {
        PaintAlive(context, group, GetColumnLeft(CN_ALIVE, width), top);
        text.Format("%d/%d", group.Alive, group.Capacity);
        context.SetTextColour(group.Alive >= group.Capacity ? OverColour : TextColour);
        context.TextOut(GetColumnLeft(CN_ALIVE, width) + 4, top + TextTop, text);
    }
    text.Format("%d/%d", group.Born, group.MaxBorn);
    context.SetTextColour(group.Born > group.MaxBorn ? OverColour : TextColour);
    PutText(context, CN_BORN, width, top, text);
}

void TBudgetPanel::PaintCode(TGDIContext& context, const TGroupBudget& group, int width, int top)
{
    if (group.Rows == 0)
        return;
    TString text;
    text.Format("%d/%d", group.Rows, TPreviewBudget::MaxRows);
    context.SetTextColour(group.Rows >= TPreviewBudget::MaxRows ? OverColour : TextColour);
    PutText(context, CN_ROWS, width, top, text);
    context.SetTextColour(TextColour);
    text.Format("%d+%d KB", group.Program[0], group.Program[1]);
    PutText(context, CN_PROGRAM, width, top, text);
    text.Format("%d+%d KB", group.Workspace[0], group.Workspace[1]);
    PutText(context, CN_WORKSPACE, width, top, text);
}

// A bar behind the numbers, and a mark at the peak.
void TBudgetPanel::PaintAlive(TGDIContext& context, const TGroupBudget& group, int left, int top) const
{
    const int width = Columns[CN_ALIVE].Width - 8;
    const int capacity = group.Capacity > 0 ? group.Capacity : 1;
    const auto place = [&](int count) {
        return left + static_cast<int>(static_cast<int64_t>(count) * width / capacity);
    };
    context.SetNoPen();
    context.SetBrush(TitleColour);
    context.Rectangle(left, top + 2, left + width, top + RowHeight - 2);
    context.SetBrush(group.Alive >= group.Capacity ? FullColour : BarColour);
    context.Rectangle(left, top + 2, place(group.Alive), top + RowHeight - 2);
    context.SetPen(group.Peak >= group.Capacity ? OverColour : PeakColour);
    context.Line(place(group.Peak), top + 2, place(group.Peak), top + RowHeight - 2);
}

void TBudgetPanel::PaintTotals(TGDIContext& context, int width, int top) const
{
    context.SetPen(LineColour);
    context.Line(0, top, width, top);
    TString text;
    TString bytes;
    GetTotals(text, bytes);
    int textWidth = 0;
    int textHeight = 0;
    context.GetTextExtent(bytes, textWidth, textHeight);
    context.SetTextColour(TextColour);
    const int right = width - textWidth - TextLeft;
    const int room = right - 2 * TextLeft;
    // The whole cost matters most.
    if (GetTextWidth(RowFont, text.Print()) > room)
        text.TruncateAtLast('(');
    context.TextOutClipped(TextLeft, top + TextTop, room, RowHeight - TextTop, text);
    context.TextOut(right, top + TextTop, bytes);
}

void TBudgetPanel::GetTotals(TString& cost, TString& bytes) const
{
    cost.Format("Effect: %.2f ms a frame (%.2f run, %.2f drawn)",
                static_cast<double>(Budget->GetRunCost() + Budget->GetDrawCost()),
                static_cast<double>(Budget->GetRunCost()), static_cast<double>(Budget->GetDrawCost()));
    bytes = "cannot be exported";
    if (Budget->GetNumBytes() >= 0)
        bytes.Format("%d bytes exported", Budget->GetNumBytes());
}

void TBudgetAccess::ListItems(vector<TAccessibleItem>& items)
{
    int width = 0;
    int height = 0;
    Panel.GetSize(width, height);
    const vector<TGroupBudget>& groups = Panel.GetBudget().GetGroups();
    for (int i = 0; i < groups.size(); ++i) {
        const TGroupBudget& group = groups[i];
        TAccessibleItem item;
        item.Name = group.Name;
        if (group.HasParticles)
            item.Value.Format("Alive %d of %d, born %d of %d, rows %d of %d", group.Alive, group.Capacity,
                              group.Born, group.MaxBorn, group.Rows, TPreviewBudget::MaxRows);
        else
            item.Value.Format("Rows %d of %d", group.Rows, TPreviewBudget::MaxRows);
        item.Description = item.Value;
        item.IsLive = true;
        item.HasFocus = Panel.HasFocus() && Panel.GetMarked() == i;
        item.Top = Panel.GetLineTop(i);
        item.Width = width;
        item.Height = RowHeight;
        items.push_back(item);
    }
    TAccessibleItem totals;
    totals.Role = AR_LABEL;
    TString bytes;
    Panel.GetTotals(totals.Name, bytes);
    totals.Name += ", ";
    totals.Name += bytes;
    totals.Top = height - RowHeight;
    totals.Width = width;
    totals.Height = RowHeight;
    items.push_back(totals);
}

void TBudgetAccess::PressItem(int item)
{
    Panel.PressLine(item, false);
}
