#include "library/wimp/controls/table.h"

#include "library/containers/append.h"
#include "library/containers/assertion.h"
#include "library/wimp/listwalk.h"

#include <cmath>

namespace {

constexpr int ColumnWidth = 80;
constexpr int SmallestColumn = 16;
constexpr int TextMargin = 4;
// So close to a border it is meant.
constexpr int BorderReach = 3;
constexpr TGDIColour White = 0xFFFFFF;
constexpr TGDIColour LineColour = 0xE0E0E0;

TWindowClass TableClass("efxdebug_tablewindow", 0, ButtonColour);
TWindowClass HeaderClass("table_header", 0, ButtonColour);
TWindowClass LabelClass("table_label", 0, ButtonColour);
TWindowClass MainClass("table_main", 0, White);

// Of one cell, which the text may fill and not leave.
void DrawText(TGDIContext& context, int left, int top, int width, const TString& text)
{
    context.TextOutClipped(left + TextMargin, top + 2, width - 2 * TextMargin, TTable::RowHeight,
                           text.Print());
}

void DrawButton(TGDIContext& context, int left, int top, int width, const TString& text)
{
    context.SetNoPen();
    context.SetBrush(ButtonColour);
    context.Rectangle(left, top, left + width, top + TTable::RowHeight);
    context.RaisedEdge(left, top, left + width, top + TTable::RowHeight);
    DrawText(context, left, top, width, text);
}

} // namespace

bool TTable::TPane::Create(TTable& table, const TWindowClass& windowClass,
                           bool (TTable::*handler)(const TMessage&), bool scrolls)
{
    Table = &table;
    Handler = handler;
    TWindowParams params;
    params.Class = &windowClass;
    params.Owner = &table;
    params.VerticalScroll = scrolls;
    return TWindow::Create(params);
}

bool TTable::TPane::OnMessage(const TMessage& message)
{
    if (message.Type == MT_RIGHTUP) {
        int x = message.GetPixelX();
        int y = message.GetPixelY();
        ClientToScreen(x, y);
        Table->ScreenToClient(x, y);
        Table->OnContext(x, y);
        return true;
    }
    if (message.Type == MT_KEYDOWN && message.Key == KEY_MENU) {
        Table->OnContext(0, 0);
        return true;
    }
    if (message.Type == MT_LEFTDOWN)
        Table->SetFocus();
    return (Table->*Handler)(message);
}

void TTable::Create(TWindow* owner, TTableProvider& provider, int flags)
{
    Provider = &provider;
    Flags = flags;
    TWindowParams params;
    params.Class = &TableClass;
    params.Owner = owner;
    ASSERT_TEXT(TWindow::Create(params), "0 : Failed to create table window");
    ASSERT_TEXT(Header.Create(*this, HeaderClass, &TTable::OnHeader, false),
                "0 : Failed to create table header window");
    ASSERT_TEXT(Labels.Create(*this, LabelClass, &TTable::OnLabels, false),
                "0 : Failed to create label window");
    ASSERT_TEXT(Main.Create(*this, MainClass, &TTable::OnMain, true),
                "0 : Failed to create table main window");
    Main.TakeTab();
    SetTableName("Table");
    Bar.Create(this, 0, "table_bar");
    Refresh();
    Layout();
}

// What is to be scrolled in one direction leaves less room in the other.
void TTable::Layout()
{
    if (Main.GetHandle() == nullptr)
        return;
    Place(false);
    int width = 0;
    int height = 0;
    Main.GetSize(width, height);
    if (GetAllColumns() > width)
        Place(true);
}

void TTable::Place(bool withBar)
{
    int width = 0;
    int height = 0;
    GetSize(width, height);
    const int foot = RowHeight + (withBar ? Bar.GetHeight() : 0);
    const int right = width > LabelWidth ? width - LabelWidth : 0;
    const int below = height > foot ? height - foot : 0;
    Header.MoveTo(LabelWidth, 0, right, RowHeight);
    Labels.MoveTo(0, RowHeight, LabelWidth, below);
    Main.MoveTo(LabelWidth, RowHeight, right, below);
    Bar.MoveTo(LabelWidth, RowHeight + below, right, Bar.GetHeight());
    Bar.Show(withBar);
    SetScroll();
}

void TTable::SetTableName(const char* name)
{
    Main.SetAccessible(&Access, name);
    Header.SetAccessible(&HeaderTexts, "Columns");
}

void TTable::SetScroll()
{
    int width = 0;
    int height = 0;
    Main.GetSize(width, height);
    Main.SetScrollRange(Provider->GetNumRows() * RowHeight, height, RowHeight);
    Main.GetSize(width, height);
    Bar.SetRange(GetAllColumns(), width, SideStep);
}

void TTable::ScrollSideways(int pixels)
{
    Bar.SetPosition(GetFirstPixel() + pixels);
    RedrawCells();
}

void TTable::ScrollRows(int rows)
{
    Main.SetScrollPosition(Main.GetScrollPosition() + rows * RowHeight);
    RedrawCells();
}

void TTable::MarkRow(int row)
{
    if (row < 0 || row >= Provider->GetNumRows())
        return;
    Marked = row;
    int width = 0;
    int height = 0;
    Main.GetSize(width, height);
    const int top = Marked * RowHeight;
    if (top < Main.GetScrollPosition())
        Main.SetScrollPosition(top);
    else if (top + RowHeight > Main.GetScrollPosition() + height)
        Main.SetScrollPosition(top + RowHeight - height);
    RedrawCells();
}

void TTable::OnContext(int, int) {}

void TTable::OnWidth(int) {}

void TTable::OnCommand(TWimpControl* control, intptr_t argument, int code)
{
    if (control == &Bar)
        RedrawCells();
    else
        TWindow::OnCommand(control, argument, code);
}

void TTable::Refresh()
{
    const int columns = Provider->GetNumColumns();
    while (Widths.size() < columns)
        Widths.push_back(ColumnWidth);
    while (Widths.size() > columns)
        Widths.pop_back();
    DraggedColumn = -1;
    const int rows = Provider->GetNumRows();
    Marked = Marked >= rows && rows > 0 ? rows - 1 : Marked;
    Layout();
    RedrawCells();
}

void TTable::RedrawCells()
{
    Header.Redraw();
    Labels.Redraw();
    Main.Redraw();
}

void TTable::SetColumnWidth(int column, int width)
{
    Widths[column] = width > SmallestColumn ? width : SmallestColumn;
    Layout();
    RedrawCells();
}

int TTable::GetColumnWidth(int column) const
{
    return Widths[column];
}

int TTable::GetFirstRow() const
{
    return Main.GetScrollPosition() / RowHeight;
}

bool TTable::OnMessage(const TMessage& message)
{
    if (message.Type != MT_SIZE)
        return TWindow::OnMessage(message);
    Layout();
    return true;
}

int TTable::GetNumShownRows(const TWindow& pane) const
{
    int width = 0;
    int height = 0;
    pane.GetSize(width, height);
    const int room = (height + RowHeight - 1) / RowHeight;
    const int left = Provider->GetNumRows() - GetFirstRow();
    return left < room ? left : room;
}

int TTable::GetColumnEnd(int column) const
{
    int end = 0;
    for (int i = 0; i <= column; ++i)
        end += Widths[i];
    return end;
}

int TTable::FindBorder(int x) const
{
    // Of two that are close, the one further right can be dragged away from the other.
    for (int i = Widths.size() - 1; i >= 0; --i) {
        const int distance = x + GetFirstPixel() - GetColumnEnd(i);
        if (distance >= -BorderReach && distance <= BorderReach)
            return i;
    }
    return -1;
}

void TTable::BeginDrag(int column, int x)
{
    ASSERT_TEXT((Flags & FL_RESIZABLEHEADERS) != 0, "(Flags & FL_RESIZABLEHEADERS) != 0");
    if (TWimp::Get().GetMouseDrag() != nullptr)
        return;
    DraggedColumn = column;
    GrabOffset = x - GetColumnEnd(column);
    TWimp::Get().SetMouseDrag(this, Header);
}

void TTable::OnMouseMove(double x, double y, int buttons)
{
    (void)y;
    // The columns may have become others meanwhile.
    if (DraggedColumn >= 0) {
        SetColumnWidth(DraggedColumn, static_cast<int>(std::floor(x)) - GrabOffset -
                                          (GetColumnEnd(DraggedColumn) - Widths[DraggedColumn]));
        OnWidth(DraggedColumn);
    }
    if (DraggedColumn >= 0 && (buttons & MB_LEFT) != 0)
        return;
    DraggedColumn = -1;
    TWimp::Get().ClearMouseDrag();
}

bool TTable::OnHeader(const TMessage& message)
{
    const bool resizable = (Flags & FL_RESIZABLEHEADERS) != 0;
    switch (message.Type) {
    case MT_PAINT:
        if (message.Context != nullptr)
            DrawHeader(*message.Context);
        return true;
    case MT_LEFTDOWN:
        if (resizable && FindBorder(message.GetPixelX()) >= 0)
            BeginDrag(FindBorder(message.GetPixelX()), message.GetPixelX());
        return true;
    case MT_MOUSEMOVE:
        if (DraggedColumn < 0)
            Header.SetCursor(resizable && FindBorder(message.GetPixelX()) >= 0 ? CU_SPLITX : CU_CLASS);
        return true;
    case MT_LEFTUP:
        return true;
    default:
        return false;
    }
}

bool TTable::OnLabels(const TMessage& message)
{
    if (message.Type == MT_WHEEL)
        return OnMain(message);
    if (message.Type != MT_PAINT || message.Context == nullptr)
        return false;
    DrawLabels(*message.Context);
    return true;
}

bool TTable::OnMain(const TMessage& message)
{
    switch (message.Type) {
    case MT_PAINT:
        if (message.Context != nullptr)
            DrawCells(*message.Context);
        return true;
    case MT_WHEEL:
        if ((message.KeyFlags & KF_SHIFT) != 0) {
            ScrollSideways(-SideWheel.Take(message.Delta));
            return true;
        }
        Main.SetScrollPosition(Main.GetScrollPosition() - Wheel.Take(message.Delta));
        RedrawCells();
        return true;
    case MT_KEYDOWN:
        return OnKey(message.Key);
    case MT_LEFTDOWN:
        OnPress(message);
        return true;
    case MT_FOCUSGAINED:
    case MT_FOCUSLOST:
        Main.Redraw();
        return false;
    case MT_SCROLL:
        RedrawCells();
        return true;
    default:
        return false;
    }
}

void TTable::OnPress(const TMessage& message)
{
    const int row = (message.GetPixelY() + Main.GetScrollPosition()) / RowHeight;
    if (row < Provider->GetNumRows())
        MarkRow(row);
}

bool TTable::OnKey(int key)
{
    int width = 0;
    int height = 0;
    Main.GetSize(width, height);
    const int page = height / RowHeight > 1 ? height / RowHeight - 1 : 1;
    if (key == KEY_LEFT || key == KEY_RIGHT) {
        ScrollSideways(key == KEY_RIGHT ? SideStep : -SideStep);
        return true;
    }
    const int row = WalkList(key, Marked, Provider->GetNumRows(), page);
    // A page is scrolled whole, wherever in it the mark stands.
    if (key == KEY_PAGEUP || key == KEY_PAGEDOWN)
        ScrollRows(key == KEY_PAGEDOWN ? page : -page);
    MarkRow(row);
    return row != -1;
}

void TTable::DrawHeader(TGDIContext& context) const
{
    int left = -GetFirstPixel();
    for (int i = 0; i < Widths.size(); ++i) {
        TString text;
        Provider->GetHeader(i, text);
        DrawButton(context, left, 0, Widths[i], text);
        left += Widths[i];
    }
}

void TTable::DrawLabels(TGDIContext& context) const
{
    const int first = GetFirstRow();
    const int count = GetNumShownRows(Labels);
    for (int i = 0; i < count; ++i) {
        TString text;
        Provider->GetLabel(first + i, text);
        DrawButton(context, 0, i * RowHeight, LabelWidth, text);
    }
}

void TTable::DrawCells(TGDIContext& context) const
{
    const int first = GetFirstRow();
    const int count = GetNumShownRows(Main);
    context.SetPen(LineColour);
    for (int row = 0; row < count; ++row) {
        const int top = row * RowHeight;
        int left = -GetFirstPixel();
        for (int column = 0; column < Widths.size(); ++column) {
            TString text;
            Provider->GetCell(first + row, column, text);
            DrawText(context, left, top, Widths[column], text);
            left += Widths[column];
            context.Line(left - 1, top, left - 1, top + RowHeight);
        }
        context.Line(0, top + RowHeight - 1, left, top + RowHeight - 1);
    }
    int width = 0;
    int height = 0;
    Main.GetSize(width, height);
    // Of an empty one all of it.
    if (Main.HasFocus() && count == 0)
        context.FocusFrame(0, 0, width, height);
    if (!Main.HasFocus() || Marked < first || Marked >= first + count)
        return;
    const int right = GetColumnLeft(Widths.size());
    const int top = (Marked - first) * RowHeight;
    context.FocusFrame(0, top, right < width ? right : width, top + RowHeight);
}

// All texts of a row, so that it is read by moving to it.
void TTableAccess::AddRow(int row, vector<TAccessibleItem>& items) const
{
    const TTableProvider& provider = Table.GetProvider();
    TAccessibleItem cell;
    cell.Parent = items.size();
    cell.IsLive = true;
    cell.Top = (row - Table.GetFirstRow()) * TTable::RowHeight;
    cell.Height = TTable::RowHeight;
    TAccessibleItem whole = cell;
    whole.Role = AR_ROW;
    whole.Parent = -1;
    whole.TakesFocus = true;
    whole.IsSelected = row == Table.GetMarkedRow();
    whole.HasFocus = whole.IsSelected && Table.HasKeys();
    whole.Width = Table.GetColumnLeft(provider.GetNumColumns());
    provider.GetLabel(row, whole.Name);
    whole.Name += ":";
    Append(items, whole);
    cell.Role = AR_ROWLABEL;
    provider.GetLabel(row, cell.Name);
    Append(items, cell);
    cell.Role = AR_CELL;
    for (int column = 0; column < provider.GetNumColumns(); ++column) {
        provider.GetHeader(column, cell.Description);
        provider.GetCell(row, column, cell.Name);
        cell.Value = cell.Name;
        cell.Left = Table.GetColumnLeft(column);
        cell.Width = Table.GetColumnWidth(column);
        Append(items, cell);
        TString part;
        part.Format("%s %s %s", column > 0 ? "," : "", cell.Description.Print(), cell.Name.Print());
        items[cell.Parent].Name += part;
    }
}

void TTableAccess::ListItems(vector<TAccessibleItem>& items)
{
    const int first = Table.GetFirstRow();
    const int count = Table.GetNumShownRows();
    for (int row = first; row < first + count; ++row)
        AddRow(row, items);
}

// Of a row, or of the row of a cell.
void TTableAccess::FocusItem(int item)
{
    Table.MarkRow(Table.GetFirstRow() + item / (Table.GetProvider().GetNumColumns() + 2));
    Table.SetFocus();
}

void THeaderAccess::ListItems(vector<TAccessibleItem>& items)
{
    const TTableProvider& provider = Table.GetProvider();
    for (int column = 0; column < provider.GetNumColumns(); ++column) {
        TAccessibleItem item;
        item.Role = AR_HEADER;
        provider.GetHeader(column, item.Name);
        item.Left = Table.GetColumnLeft(column);
        item.Width = Table.GetColumnWidth(column);
        item.Height = TTable::RowHeight;
        Append(items, item);
    }
}
