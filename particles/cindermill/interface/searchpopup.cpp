#include "particles/cindermill/interface/searchpopup.h"

#include "library/maths/scalar.h"
#include "library/wimp/gdi/brokentext.h"
#include "library/wimp/listwalk.h"
#include "particles/cindermill/interface/graph/nodecolour.h"

namespace {

constexpr TGDIFont RowFont = {"Dotum", -11, 400};
constexpr TGDIFont NameFont = {"Dotum", -11, 700};
constexpr TGDIColour Paper = 0xF7F8F9;
constexpr TGDIColour Edge = 0x55595E;
constexpr TGDIColour Ink = 0x202020;
constexpr TGDIColour Faint = 0x70767C;
constexpr TGDIColour MarkedColour = 0xCFE0F5;
constexpr TGDIColour Divider = 0xD5D8DB;
constexpr TGDIColour BarColour = 0xB4B9BE;
constexpr int SwatchSize = 10;
constexpr int TextTop = 4;
constexpr int NameLeft = 24;

TWindowClass& GetWindowClass()
{
    static TWindowClass windowClass("cindermill_search", 0, Paper);
    return windowClass;
}

} // namespace

bool TSearchPopup::Open(TWindow& owner, int x, int y, const char* hint, const char* nothing)
{
    TWindowParams params;
    params.Class = &GetWindowClass();
    params.Owner = &owner;
    if (GetHandle() == nullptr) {
        if (!Create(params))
            return false;
        SetAccessible(&Access, hint);
    }
    SetSpokenName(hint);
    Hint = hint;
    Nothing = nothing;
    WantedX = x;
    WantedY = y;
    Field.SetText("");
    Refresh(MC_PASSING);
    Show();
    BringToTop();
    TakeFocus();
    return true;
}

void TSearchPopup::SetChosen(TChosen chosen, void* data)
{
    Chosen = chosen;
    ChosenData = data;
}

void TSearchPopup::SetMarked(TMarked marked, void* data)
{
    Told = marked;
    ToldData = data;
}

void TSearchPopup::TellMark(TMarkCause cause)
{
    const bool isMarked = Marked != -1 && (cause == MC_PASSING || cause == MC_MEANT);
    if (Told != nullptr)
        Told(isMarked ? List.GetMatch(Marked).Item : -1, cause, ToldData);
}

void TSearchPopup::CloseBy(TMarkCause cause)
{
    if (!IsOpen())
        return;
    TellMark(cause);
    Told = nullptr;
    // Losing the keys closes it as well.
    if (HasFocus())
        GetOwner()->TakeFocus();
    Hide();
}

int TSearchPopup::GetNumRows() const
{
    const int count = List.GetNumMatches();
    return count < MaxRows ? count : MaxRows;
}

void TSearchPopup::Refresh(TMarkCause cause)
{
    List.Filter(Field.GetText().Print());
    FirstRow = 0;
    Marked = List.GetNumMatches() > 0 ? 0 : -1;
    Place();
    Redraw();
    TellMark(cause);
}

void TSearchPopup::Place()
{
    int width = 0;
    int height = 0;
    GetOwner()->GetSize(width, height);
    const int rows = GetNumRows() > 0 ? GetNumRows() : 1;
    const int ownHeight = ListTop + rows * RowHeight + HelpHeight;
    // By the height of a full list, so that it stays where it is while one types.
    const int fullHeight = ListTop + MaxRows * RowHeight + HelpHeight;
    if (Room > 0 && Room < width)
        width = Room;
    Width = width < FullWidth ? width : FullWidth;
    const int left = WantedX + Width > width ? width - Width : WantedX;
    const int top = WantedY + fullHeight > height ? height - fullHeight : WantedY;
    Left = left > 0 ? left : 0;
    MoveTo(Left, top > 0 ? top : 0, Width, ownHeight);
}

void TSearchPopup::SetText(const char* text)
{
    Field.SetText(text);
    Refresh(MC_MEANT);
}

void TSearchPopup::Mark(int match, TMarkCause cause)
{
    const int last = List.GetNumMatches() - 1;
    Marked = match < 0 ? 0 : match;
    // Before the first where there is none.
    if (Marked > last)
        Marked = last;
    if (Marked >= 0 && Marked < FirstRow)
        FirstRow = Marked;
    else if (Marked >= FirstRow + MaxRows)
        FirstRow = Marked - MaxRows + 1;
    Redraw();
    TellMark(cause);
}

bool TSearchPopup::OnMessage(const TMessage& message)
{
    switch (message.Type) {
    case MT_PAINT:
        Paint(*message.Context);
        return true;
    case MT_FOCUSLOST:
        if (!IsFieldMenuOpen)
            Close();
        return false;
    case MT_KEYDOWN:
        if (message.Key == KEY_TAB) {
            Mark(Marked + ((message.KeyFlags & KF_SHIFT) != 0 ? -1 : 1));
            return true;
        }
        if (OnKey(message.Key))
            return true;
        break;
    case MT_CHAR:
        // The Space that opened it may be held still.
        if (message.IsRepeat && message.Character == ' ' && Field.GetText().IsEmpty())
            return true;
        break;
    case MT_MOUSEMOVE:
        if (const int row = FindRow(message.GetPixelX(), message.GetPixelY()); row != -1 && row != Marked)
            Mark(row, MC_PASSING);
        return true;
    case MT_LEFTUP:
        if (const int row = FindRow(message.GetPixelX(), message.GetPixelY()); row != -1)
            Choose(row);
        return true;
    case MT_WHEEL: {
        const int rows = Wheel.Take(message.Delta);
        const int limit = List.GetNumMatches() - GetNumRows();
        FirstRow = FirstRow - rows > limit ? limit : FirstRow - rows < 0 ? 0 : FirstRow - rows;
        Redraw();
        return true;
    }
    case MT_RIGHTUP:
        if (message.GetPixelY() < ListTop)
            OpenFieldMenu(message.GetPixelX(), message.GetPixelY());
        return true;
    case MT_LEFTDOWN:
    case MT_MIDDLEDOWN:
    case MT_RIGHTDOWN:
        return true;
    default:
        break;
    }
    const TString before = Field.GetText();
    if (!Field.OnMessage(message))
        return false;
    FollowField(before);
    return true;
}

// What is only marked or copied leaves the list where it is.
void TSearchPopup::FollowField(const TString& before)
{
    if (Field.GetText().Compare(before) == 0)
        Redraw();
    else
        Refresh(MC_MEANT);
}

bool TSearchPopup::OnKey(int key)
{
    switch (key) {
    case KEY_ESCAPE:
        CloseBy(MC_GIVENUP);
        return true;
    case KEY_RETURN:
        if (Marked != -1)
            Choose(Marked);
        return true;
    case KEY_MENU:
        OpenFieldMenu(Border, ListTop);
        return true;
    default:
        break;
    }
    const int match = WalkList(key, Marked, List.GetNumMatches(), MaxRows);
    if (match != -1)
        Mark(match);
    return match != -1;
}

void TSearchPopup::OpenFieldMenu(int x, int y)
{
    const TWindowHandle handle = GetHandle();
    IsFieldMenuOpen = true;
    Field.OpenMenu(*this, x, y);
    // A menu waits, and its window may be gone afterwards.
    if (TWindow::Find(handle) != this)
        return;
    IsFieldMenuOpen = false;
    if (!HasFocus())
        Close();
}

void TSearchPopup::OnCommand(TWimpControl* control, intptr_t argument, int code)
{
    const TString before = Field.GetText();
    if (code != CC_MENU)
        TWindow::OnCommand(control, argument, code);
    else if (Field.OnMenu(static_cast<int>(argument)))
        FollowField(before);
}

void TSearchPopup::Choose(int match)
{
    if (match < 0 || match >= List.GetNumMatches())
        return;
    const int item = List.GetMatch(match).Item;
    Told = nullptr;
    Close();
    if (Chosen != nullptr)
        Chosen(item, ChosenData);
}

int TSearchPopup::FindRow(int x, int y) const
{
    if (x < 0 || x >= Width || y < ListTop || y >= ListTop + GetNumRows() * RowHeight)
        return -1;
    return FirstRow + (y - ListTop) / RowHeight;
}

void TSearchPopup::Paint(TGDIContext& context) const
{
    int width = 0;
    int height = 0;
    GetSize(width, height);
    context.SetPen(Edge);
    context.SetBrush(Paper);
    context.Rectangle(0, 0, width, height);
    Field.Paint(context, Border, Border, width - Border, Hint.Print(), HasFocus());
    for (int row = 0; row < GetNumRows(); ++row)
        PaintRow(context, FirstRow + row);
    if (List.GetNumMatches() == 0) {
        context.SetFont(RowFont);
        context.SetTextColour(Faint);
        context.TextOut(Border + 6, ListTop + TextTop, Nothing.Print());
    }
    PaintBar(context);
    PaintHelp(context);
}

void TSearchPopup::PaintRow(TGDIContext& context, int match) const
{
    const TSearchEntry& entry = List.GetMatch(match);
    const int top = GetRowTop(match);
    if (match == Marked) {
        context.SetNoPen();
        context.SetBrush(MarkedColour);
        context.Rectangle(Border, top, Width - Border, top + RowHeight);
    }
    const TGDIColour colour = ToGDIColour(GetNodeTypeColour(entry.Colour));
    context.SetPen(colour);
    context.SetBrush(ToGDIColour(MixColours(GetNodeTypeColour(entry.Colour), TVector4(1, 1, 1, 1), 0.6f)));
    const int swatch = top + (RowHeight - SwatchSize) / 2;
    context.Rectangle(Border + 6, swatch, Border + 6 + SwatchSize, swatch + SwatchSize);
    context.SetFont(RowFont);
    TString folder;
    FitText(RowFont, entry.Folder.Print(), Width / 2, folder);
    int folderWidth = 0;
    int height = 0;
    context.GetTextExtent(folder.Print(), folderWidth, height);
    const int folderLeft = Width - Border - 12 - folderWidth;
    context.SetTextColour(Faint);
    context.TextOut(folderLeft, top + TextTop, folder.Print());
    context.SetFont(NameFont);
    context.SetTextColour(Ink);
    context.TextOutShortened(NameLeft, top + TextTop, folderLeft - NameLeft - 8, entry.Name.Print());
}

// What the marked entry is for, in two lines.
void TSearchPopup::PaintHelp(TGDIContext& context) const
{
    constexpr int LineHeight = 14;
    if (Marked == -1)
        return;
    const int top = ListTop + GetNumRows() * RowHeight;
    context.SetPen(Divider);
    context.Line(Border, top, Width - Border, top);
    context.SetFont(RowFont);
    context.SetTextColour(Faint);
    vector<TString> lines;
    BreakText(RowFont, List.GetMatch(Marked).Help.Print(), Width - 2 * Border - 12, 2, lines);
    for (int i = 0; i < lines.size(); ++i)
        context.TextOut(Border + 6, top + 4 + i * LineHeight, lines[i].Print());
}

void TSearchPopup::PaintBar(TGDIContext& context) const
{
    const int count = List.GetNumMatches();
    const int rows = GetNumRows();
    if (count <= rows)
        return;
    const int height = rows * RowHeight;
    const int length = height * rows / count;
    const int top = ListTop + (height - length) * FirstRow / (count - rows);
    context.SetNoPen();
    context.SetBrush(BarColour);
    context.Rectangle(Width - Border - 5, top, Width - Border, top + length);
}

void TSearchAccess::AddField(vector<TAccessibleItem>& items) const
{
    TAccessibleItem field;
    field.Role = AR_TEXT;
    field.Name = Popup.GetHint();
    field.Value = Popup.GetText();
    field.HasFocus = Popup.HasFocus() && Popup.GetMarked() == -1;
    field.Left = TSearchPopup::Border;
    field.Top = TSearchPopup::Border;
    field.Width = Popup.GetWidth() - 2 * TSearchPopup::Border;
    field.Height = TFilterField::Height;
    items.push_back(field);
    if (Popup.GetMarked() != -1)
        return;
    TAccessibleItem nothing;
    nothing.Role = AR_LABEL;
    nothing.Name = Popup.GetNothing();
    items.push_back(nothing);
}

void TSearchAccess::ListItems(vector<TAccessibleItem>& items)
{
    AddField(items);
    const TSearchList& list = Popup.GetList();
    items.reserve(items.size() + list.GetNumMatches());
    for (int i = 0; i < list.GetNumMatches(); ++i) {
        const TSearchEntry& entry = list.GetMatch(i);
        TAccessibleItem item;
        item.Name = entry.Name;
        item.Description = entry.Folder;
        item.Description += entry.Folder.IsEmpty() || entry.Help.IsEmpty() ? "" : ": ";
        item.Description += entry.Help;
        item.IsSelected = i == Popup.GetMarked();
        item.TakesFocus = true;
        item.HasFocus = item.IsSelected && Popup.HasFocus();
        item.Left = TSearchPopup::Border;
        item.Top = Popup.GetRowTop(i);
        item.Width = Popup.GetWidth() - 2 * TSearchPopup::Border;
        item.Height = TSearchPopup::RowHeight;
        items.push_back(item);
    }
}

// The field is the first.
void TSearchAccess::PressItem(int item)
{
    Popup.Choose(item - 1);
}

void TSearchAccess::FocusItem(int item)
{
    if (item > 0)
        Popup.Mark(item - 1);
    Popup.TakeFocus();
}

bool TSearchAccess::EnterItem(int item, const char* text)
{
    if (item != 0)
        return false;
    Popup.SetText(text);
    return true;
}
