#include "particles/cindermill/interface/doctool.h"

#include "library/wimp/listwalk.h"
#include "particles/cindermill/interface/docwindow.h"
#include "particles/cindermill/interface/graph/nodecolour.h"
#include "particles/cindermill/main/cindermillapp.h"

namespace {

constexpr TGDIFont RowFont = {"Dotum", -11, 400};
constexpr TGDIColour White = 0xFFFFFF;
constexpr TGDIColour CategoryColour = 0xEDEDED;
constexpr TGDIColour LineColour = 0x202020;
constexpr TGDIColour TextColour = 0x202020;
constexpr int TextIndent = 20;
constexpr int TextTop = 4;
constexpr int TextMargin = 4;
// The box that opens and closes a category.
constexpr int BoxSize = 10;
constexpr int BoxTop = (TPalette::RowHeight - BoxSize) / 2;
constexpr int HelpTimer = 1;
// Clicks further to the right are not for the box.
constexpr int BoxReach = 9;
// Where the fill of a row begins, right of the lines and boxes.
constexpr int FillIndent = 14;

TWindowClass& GetWindowClass()
{
    static TWindowClass windowClass("cindermill_doctool", 0, White);
    return windowClass;
}

const TNodeTypeLibrary& GetLibrary()
{
    return TCindermillApp::Get().GetNodeTypes();
}

} // namespace

bool TDocTool::Create(TDocWindow& docWindow)
{
    DocWindow = &docWindow;
    Palette.Open(GetLibrary());
    TWindowParams params;
    params.Class = &GetWindowClass();
    params.Owner = &docWindow;
    params.VerticalScroll = true;
    if (!TWindow::Create(params))
        return false;
    ScrollTo(0);
    AddFilterKeys();
    return true;
}

// What the filter has no use for is the graph's, as the keys of the File and Edit menus are.
void TDocTool::AddFilterKeys()
{
    static constexpr int Codes[] = {'A' | SM_CTRL, 'C' | SM_CTRL, 'V' | SM_CTRL, 'X' | SM_CTRL};
    for (const int code : Codes)
        FilterKeys.Add(code,
                       [](int key, void* tool) { return static_cast<TDocTool*>(tool)->OnFilterKey(key); });
    FilterKeys.Attach(this);
}

bool TDocTool::OnFilterKey(int code)
{
    TMessage message;
    message.Type = MT_KEYDOWN;
    message.Key = code & ~SM_CTRL;
    message.KeyFlags = KF_CTRL;
    if (!Filter.OnMessage(message))
        return false;
    FollowFilter();
    return true;
}

void TDocTool::OpenLibrary()
{
    Palette.Open(GetLibrary());
    ShowFilter();
}

bool TDocTool::OnMessage(const TMessage& message)
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
    case MT_LEFTDOWN:
        OnLeftDown(message.GetPixelX(), message.GetPixelY());
        return true;
    case MT_RIGHTUP:
        return OnRightUp(message);
    case MT_FOCUSGAINED:
    case MT_FOCUSLOST:
        DocWindow->OnPaneFocus(*this, message.Type);
        return false;
    case MT_KEYDOWN:
    case MT_CHAR:
        return OnKey(message);
    case MT_MOUSEMOVE:
    case MT_MOUSELEAVE:
        OnMove(message);
        return false;
    case MT_TIMER:
        ShowHelp();
        return true;
    default:
        return false;
    }
}

bool TDocTool::OnKey(const TMessage& message)
{
    if (message.Type == MT_KEYDOWN && message.Key == KEY_ESCAPE) {
        OnEscape();
        return true;
    }
    if (message.Type == MT_KEYDOWN && message.Key == KEY_MENU && TWimp::Get().GetMouseDrag() == nullptr) {
        Filter.OpenMenu(*this, 0, GetListHeight());
        return true;
    }
    if (message.Type == MT_KEYDOWN && OnWalkKey(message.Key))
        return true;
    if (!Filter.OnMessage(message))
        return false;
    FollowFilter();
    return true;
}

// Beside a running drag the button does nothing.
bool TDocTool::OnRightUp(const TMessage& message)
{
    if (message.GetPixelY() < GetListHeight() || TWimp::Get().GetMouseDrag() != nullptr)
        return false;
    TakeFocus();
    Filter.OpenMenu(*this, message.GetPixelX(), message.GetPixelY());
    return true;
}

void TDocTool::OnCommand(TWimpControl* control, intptr_t argument, int code)
{
    if (code != CC_MENU)
        TWindow::OnCommand(control, argument, code);
    else if (Filter.OnMenu(static_cast<int>(argument)))
        FollowFilter();
}

// What there is to give up, and then the keys.
void TDocTool::OnEscape()
{
    if (Filter.GetText().IsEmpty())
        DocWindow->OnPaneEscape();
    else if (!DocWindow->CancelAnyDrag())
        SetFilter("");
}

bool TDocTool::OnWalkKey(int key)
{
    const vector<TPaletteRow>& rows = Palette.GetRows();
    const int row = WalkList(key, Marked, rows.size(), GetListHeight() / TPalette::RowHeight);
    if (row != -1) {
        MarkRow(row);
        return true;
    }
    if (Marked < 0 || Marked >= rows.size() || (key != KEY_RETURN && key != KEY_LEFT && key != KEY_RIGHT))
        return false;
    const bool isCategory = rows[Marked].Type == -1;
    const bool isOpen = isCategory && Palette.IsExpanded(rows[Marked].Item);
    if (key == KEY_RETURN ? isCategory : isCategory && isOpen == (key == KEY_LEFT))
        ToggleCategory(Marked);
    else if (key == KEY_RETURN)
        AddType(Marked);
    else if (key == KEY_LEFT && rows[Marked].Parent != -1)
        MarkRow(rows[Marked].Parent);
    return true;
}

// All of them stand open under a filter.
void TDocTool::ToggleCategory(int row)
{
    if (Palette.HasFilter())
        return;
    Palette.Toggle(Palette.GetRows()[row].Item);
    ScrollTo(ScrollY);
    Redraw();
}

void TDocTool::MarkRow(int row)
{
    if (row < 0 || row >= Palette.GetRows().size())
        return;
    Marked = row;
    const int top = Palette.GetRows()[row].Top;
    if (top < ScrollY)
        ScrollTo(top);
    else if (top + TPalette::RowHeight > ScrollY + GetListHeight())
        ScrollTo(top + TPalette::RowHeight - GetListHeight());
    Redraw();
}

bool TDocTool::AddType(int row)
{
    const vector<TPaletteRow>& rows = Palette.GetRows();
    if (row < 0 || row >= rows.size() || rows[row].Type == -1)
        return false;
    DocWindow->AddInMiddle(*GetLibrary().GetType(rows[row].Type));
    return true;
}

void TDocTool::SetFilter(const char* text)
{
    Filter.SetText(text);
    ShowFilter();
}

// What is only marked or copied leaves the list where it is.
void TDocTool::FollowFilter()
{
    if (Filter.GetText().Compare(Palette.GetFilter()) == 0)
        Redraw();
    else
        ShowFilter();
}

// The first type that is found is what one looks for.
void TDocTool::ShowFilter()
{
    Palette.SetFilter(Filter.GetText().Print());
    const vector<TPaletteRow>& rows = Palette.GetRows();
    Marked = 0;
    while (Palette.HasFilter() && Marked < rows.size() - 1 && rows[Marked].Type == -1)
        ++Marked;
    ScrollTo(0);
    Redraw();
}

// The help comes once the pointer rests.
void TDocTool::OnMove(const TMessage& message)
{
    ShowTip(0, 0, nullptr);
    StopTimer(HelpTimer);
    if (message.Type == MT_MOUSELEAVE || message.Buttons != 0)
        return;
    PointerX = message.GetPixelX();
    PointerY = message.GetPixelY();
    StartTimer(HelpTimer, TipMilliseconds);
}

void TDocTool::ShowHelp()
{
    const int row = PointerY < GetListHeight() ? Palette.FindRow(PointerY + ScrollY) : -1;
    const int type = row != -1 ? Palette.GetRows()[row].Type : -1;
    if (type == -1 || TWimp::Get().GetMouseDrag() != nullptr)
        return;
    TString text = GetLibrary().GetType(type)->Name;
    if (!GetLibrary().GetType(type)->Description.IsEmpty()) {
        text += ": ";
        text += GetLibrary().GetType(type)->Description;
    }
    ShowTip(PointerX, PointerY, text.Print());
}

// The field stands below the list.
int TDocTool::GetListHeight() const
{
    int width = 0;
    int height = 0;
    GetSize(width, height);
    return height > TFilterField::Height ? height - TFilterField::Height : 0;
}

void TDocTool::ScrollTo(int position)
{
    const int height = GetListHeight();
    const int end = Palette.GetHeight() - height;
    if (position > end)
        position = end;
    if (position < 0)
        position = 0;
    SetScrollRange(Palette.GetHeight(), height, ScrollLine);
    SetScrollPosition(position);
    if (position == ScrollY)
        return;
    ScrollY = position;
    Redraw();
}

void TDocTool::OnLeftDown(int x, int y)
{
    TakeFocus();
    ShowTip(0, 0, nullptr);
    StopTimer(HelpTimer);
    Redraw();
    const int index = y < GetListHeight() ? Palette.FindRow(y + ScrollY) : -1;
    if (index != -1) {
        Marked = index;
        const TPaletteRow row = Palette.GetRows()[index];
        if (row.Type != -1)
            DocWindow->BeginTypeDrag(*GetLibrary().GetType(row.Type));
        else if (x < row.Indent + BoxReach)
            ToggleCategory(index);
    }
    DocWindow->SetMouseTarget(this);
}

void TDocTool::Paint(TGDIContext& context) const
{
    int width = 0;
    int height = 0;
    GetSize(width, height);
    context.SetFont(RowFont);
    const vector<TPaletteRow>& rows = Palette.GetRows();
    for (int i = 0; i < rows.size(); ++i) {
        const int top = rows[i].Top - ScrollY;
        if (rows[i].Type == -1)
            PaintBranches(context, i, top);
        if (top <= -TPalette::RowHeight || top >= height)
            continue;
        if (rows[i].Type != -1)
            PaintType(context, rows[i], top, width);
        else
            PaintCategory(context, rows[i], top, width);
    }
    if (HasFocus() && Marked >= 0 && Marked < rows.size()) {
        const int top = rows[Marked].Top - ScrollY;
        context.FocusFrame(rows[Marked].Indent + FillIndent, top, width, top + TPalette::RowHeight);
    }
    context.SetNoPen();
    context.SetBrush(White);
    context.Rectangle(0, GetListHeight(), width, height);
    Filter.Paint(context, 1, GetListHeight(), width - 1, "Filter", HasFocus());
}

void TDocTool::PaintType(TGDIContext& context, const TPaletteRow& row, int top, int width) const
{
    const TNodeType& type = *GetLibrary().GetType(row.Type);
    const TVector4 colour = GetNodeTypeColour(type.Colour);
    context.SetPen(ToGDIColour(colour));
    context.SetBrush(ToGDIColour(MixColours(colour, TVector4(1, 1, 1, 1), 0.6f)));
    // One line between two rows.
    context.Rectangle(row.Indent + FillIndent, top - 1, width, top + TPalette::RowHeight);
    PaintName(context, row, top, width, type.Name);
}

void TDocTool::PaintCategory(TGDIContext& context, const TPaletteRow& row, int top, int width) const
{
    context.SetNoPen();
    context.SetBrush(CategoryColour);
    context.Rectangle(row.Indent + FillIndent, top, width, top + TPalette::RowHeight);

    const int left = row.Indent;
    const int boxTop = top + BoxTop;
    context.SetPen(LineColour);
    context.SetBrush(White);
    context.Rectangle(left, boxTop, left + BoxSize, boxTop + BoxSize);
    context.SetNoPen();
    context.SetBrush(LineColour);
    // Two pixels thick, in the middle of an even box.
    const int middle = BoxSize / 2;
    context.Rectangle(left + 2, boxTop + middle - 1, left + BoxSize - 2, boxTop + middle + 1);
    if (!Palette.IsExpanded(row.Item))
        context.Rectangle(left + middle - 1, boxTop + 2, left + middle + 1, boxTop + BoxSize - 2);

    PaintName(context, row, top, width, GetLibrary().GetItem(row.Item).Name);
}

void TDocTool::PaintName(TGDIContext& context, const TPaletteRow& row, int top, int width, const char* name)
{
    const int left = row.Indent + TextIndent;
    context.SetTextColour(TextColour);
    context.TextOutShortened(left, top + TextTop, width - TextMargin - left, name);
}

// The dotted line from a category's box down to its last entry, with an arm to each.
void TDocTool::PaintBranches(TGDIContext& context, int category, int top) const
{
    const int last = Palette.FindLastChild(category);
    if (last == -1)
        return;
    const vector<TPaletteRow>& rows = Palette.GetRows();
    const int x = rows[category].Indent + BoxSize / 2;
    auto middleOf = [&](int row) { return rows[row].Top - ScrollY + TPalette::RowHeight / 2; };
    context.SetPen(LineColour, true);
    context.Line(x, top + BoxTop + BoxSize, x, middleOf(last) + 1);
    for (int i = category + 1; i <= last; ++i) {
        if (rows[i].Parent != category)
            continue;
        const int end = rows[i].Type == -1 ? rows[i].Indent : rows[i].Indent + FillIndent;
        context.Line(x, middleOf(i), end, middleOf(i));
    }
}
