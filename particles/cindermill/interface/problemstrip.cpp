#include "particles/cindermill/interface/problemstrip.h"

#include "library/wimp/gdi/gdicontext.h"
#include "library/wimp/listwalk.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/interface/docwindow.h"
#include "particles/cindermill/main/document.h"

namespace {

constexpr TGDIFont RowFont = {"Dotum", -11, 400};
constexpr TGDIColour Paper = 0xFBE9E6;
constexpr TGDIColour ProblemEdge = 0xD9A39C;
constexpr TGDIColour CalmEdge = 0xB4BCC4;
constexpr TGDIColour Ink = 0x202020;
constexpr TGDIColour Faint = 0x80706E;
constexpr int MarkSize = 8;
constexpr int TextLeft = 24;
constexpr int TextTop = 4;
constexpr int TextRight = 8;
constexpr int TipTimer = 1;

// What an entry is drawn with, by what it tells.
struct TLook
{
    TGDIColour Paper;
    TGDIColour Hover;
    TGDIColour Mark;
};
constexpr int ProblemLook = 0;
constexpr TLook Looks[] = {
    {Paper, 0xF6D9D4, 0xC62828},    {0xE9F3E7, 0xD8EAD5, 0x2E7D32}, {0xFFF1D6, 0xFBE3B4, 0xDD7A00},
    {0xE8EEF5, 0xD5E1EE, 0x4A78A8}, {0xEFEFEF, 0xE2E2E2, 0x808080}, {0xEFEFEF, 0xE2E2E2, 0x808080},
};
static_assert(sizeof(Looks) / sizeof(Looks[0]) == ProblemLook + 1 + VK_CUTSHORT + 1);

int GetLook(TVerdictKind kind)
{
    return ProblemLook + 1 + (kind - VK_AGREES);
}

TWindowClass& GetWindowClass()
{
    static TWindowClass windowClass("cindermill_problems", 0, Paper);
    return windowClass;
}

} // namespace

bool TProblemStrip::Create(TDocWindow& docWindow, TWindow& owner)
{
    DocWindow = &docWindow;
    TWindowParams params;
    params.Class = &GetWindowClass();
    params.Owner = &owner;
    if (!TWindow::Create(params))
        return false;
    SetAccessible(&Access, "Problems");
    Hide();
    return true;
}

int TProblemStrip::GetNumEntries() const
{
    return DocWindow->GetDocument().GetProblems().size() + GetNumVerdictLines();
}

int TProblemStrip::GetNumVerdictLines() const
{
    TDocument& document = DocWindow->GetDocument();
    const vector<TVerdictLine>& lines = document.GetAgreement().GetLines();
    const bool agrees = !lines.empty() && lines[0].Kind == VK_AGREES;
    return agrees && !document.GetProblems().empty() ? 0 : lines.size();
}

// A node may have gone.
TProblemStrip::TEntry TProblemStrip::GetEntry(int i) const
{
    TDocument& document = DocWindow->GetDocument();
    const TDocumentProblems& problems = document.GetProblems();
    TEntry entry;
    if (i < problems.size()) {
        entry.Text = problems[i].Text;
        entry.Node = problems[i].Node;
        entry.Look = ProblemLook;
    } else {
        const TVerdictLine& line = document.GetAgreement().GetLines()[i - problems.size()];
        entry.Text = line.Text;
        entry.Node = line.Node;
        entry.Look = GetLook(line.Kind);
        entry.IsVerdict = true;
    }
    if (entry.Node != nullptr && !document.GetGraph()->Has(entry.Node))
        entry.Node = nullptr;
    return entry;
}

int TProblemStrip::GetWantedHeight() const
{
    const int count = GetNumEntries();
    return RowHeight * (count < MaxRows ? count : MaxRows);
}

// A comparison tells of its progress again and again, and nobody who reads on is thrown back for that.
void TProblemStrip::Refresh()
{
    const int last = GetLastFirstRow();
    FirstRow = FirstRow > last ? last : FirstRow;
    const int count = GetNumEntries();
    Hovered = Hovered < count ? Hovered : -1;
    Marked = Marked >= count && count > 0 ? count - 1 : Marked;
    if (Told != -1 && (Told >= count || GetEntry(Told).Text.Compare(ToldText) != 0))
        EndTip();
    Redraw();
}

void TProblemStrip::Mark(int entry)
{
    if (entry < 0 || entry >= GetNumEntries())
        return;
    const int rows = GetWantedHeight() / RowHeight;
    Marked = entry;
    if (Marked < FirstRow)
        FirstRow = Marked;
    else if (Marked >= FirstRow + rows)
        FirstRow = Marked - rows + 1;
    Redraw();
}

int TProblemStrip::GetLastFirstRow() const
{
    return GetNumEntries() - GetWantedHeight() / RowHeight;
}

int TProblemStrip::FindEntry(int y) const
{
    const int entry = FirstRow + y / RowHeight;
    return y >= 0 && entry < GetNumEntries() ? entry : -1;
}

bool TProblemStrip::OnMessage(const TMessage& message)
{
    switch (message.Type) {
    case MT_PAINT:
        Paint(*message.Context);
        return true;
    case MT_MOUSEMOVE:
    case MT_MOUSELEAVE:
        OnPointer(message);
        return true;
    case MT_TIMER:
        StopTimer(TipTimer);
        TellWhole(FindEntry(PointerY), PointerX, PointerY);
        return true;
    case MT_LEFTUP:
        EndTip();
        PressEntry(FindEntry(message.GetPixelY()));
        return true;
    case MT_KEYDOWN:
        return OnKey(message.Key);
    case MT_CHAR:
        if (message.Character != ' ')
            return false;
        if (!message.IsRepeat)
            PressEntry(Marked);
        return true;
    case MT_FOCUSGAINED:
    case MT_FOCUSLOST:
        DocWindow->OnPaneFocus(*this, message.Type);
        return false;
    case MT_WHEEL: {
        const int limit = GetLastFirstRow();
        const int row = FirstRow - Wheel.Take(message.Delta);
        FirstRow = row > limit ? limit : row < 0 ? 0 : row;
        EndTip();
        Redraw();
        return true;
    }
    default:
        return false;
    }
}

void TProblemStrip::OnPointer(const TMessage& message)
{
    EndTip();
    const bool isIn = message.Type == MT_MOUSEMOVE;
    PointerX = message.GetPixelX();
    PointerY = message.GetPixelY();
    if (isIn && message.Buttons == 0)
        StartTimer(TipTimer, TipMilliseconds);
    const int entry = isIn ? FindEntry(PointerY) : -1;
    if (entry == Hovered)
        return;
    Hovered = entry;
    SetCursor(entry != -1 && GetEntry(entry).Node != nullptr ? CU_FINGER : CU_CLASS);
    Redraw();
}

void TProblemStrip::TellWhole(int entry, int x, int y)
{
    if (entry == -1)
        return;
    const TString text = GetEntry(entry).Text;
    if (GetTextWidth(RowFont, text.Print()) <= GetTextRoom(entry))
        return;
    Told = entry;
    ToldText = text;
    ShowTip(x, y, text.Print());
}

void TProblemStrip::EndTip()
{
    StopTimer(TipTimer);
    if (Told != -1)
        ShowTip(0, 0, nullptr);
    Told = -1;
}

bool TProblemStrip::OnKey(int key)
{
    switch (key) {
    case KEY_RETURN:
        PressEntry(Marked);
        return true;
    case KEY_ESCAPE:
        DocWindow->OnPaneEscape();
        return true;
    default:
        break;
    }
    const int entry = WalkList(key, Marked, GetNumEntries(), MaxRows);
    Mark(entry);
    if (entry == -1)
        return false;
    EndTip();
    TellWhole(entry, TextLeft, GetEntryTop(entry));
    return true;
}

void TProblemStrip::PressEntry(int entry)
{
    const TEffectNode* node = entry >= 0 && entry < GetNumEntries() ? GetEntry(entry).Node : nullptr;
    if (node != nullptr && !DocWindow->GetDocument().IsInStep())
        DocWindow->ShowNode(*static_cast<TToolNode*>(const_cast<TEffectNode*>(node)));
}

void TProblemStrip::PaintEntry(TGDIContext& context, int i, int width) const
{
    const TEntry entry = GetEntry(i);
    const TLook& look = Looks[entry.Look];
    const int top = (i - FirstRow) * RowHeight;
    const bool leads = entry.Node != nullptr;
    context.SetNoPen();
    context.SetBrush(i == Hovered && leads ? look.Hover : look.Paper);
    context.Rectangle(0, top, width, top + RowHeight);
    context.SetBrush(look.Mark);
    const int mark = top + (RowHeight - MarkSize) / 2;
    context.Rectangle(MarkSize, mark, 2 * MarkSize, mark + MarkSize);
    context.SetTextColour(leads || entry.Look != ProblemLook ? Ink : Faint);
    context.TextOutShortened(TextLeft, top + TextTop, GetTextRoom(i), entry.Text.Print());
}

TString TProblemStrip::GetRange() const
{
    TString range;
    const int count = GetNumEntries();
    const int rows = GetWantedHeight() / RowHeight;
    if (count > rows)
        range.Format("%d - %d of %d", FirstRow + 1, FirstRow + rows, count);
    return range;
}

// The last one in sight leaves room for how many there are.
int TProblemStrip::GetTextRoom(int entry) const
{
    int width = 0;
    int height = 0;
    GetSize(width, height);
    const int room = width - TextLeft - TextRight;
    const TString range = GetRange();
    const bool isLast = entry == FirstRow + GetWantedHeight() / RowHeight - 1;
    return isLast && !range.IsEmpty() ? room - GetTextWidth(RowFont, range.Print()) - TextRight : room;
}

void TProblemStrip::Paint(TGDIContext& context) const
{
    int width = 0;
    int height = 0;
    GetSize(width, height);
    context.SetFont(RowFont);
    const int count = GetNumEntries();
    for (int i = FirstRow; i < count; ++i)
        PaintEntry(context, i, width);
    context.SetPen(DocWindow->GetDocument().GetProblems().empty() ? CalmEdge : ProblemEdge);
    context.Line(0, 0, width, 0);
    if (HasFocus())
        context.FocusFrame(0, GetEntryTop(Marked), width, GetEntryTop(Marked) + RowHeight);
    const TString range = GetRange();
    context.SetTextColour(Faint);
    context.TextOut(width - GetTextWidth(RowFont, range.Print()) - TextRight, height - RowHeight + TextTop,
                    range.Print());
}

void TProblemAccess::ListItems(vector<TAccessibleItem>& items)
{
    int width = 0;
    int height = 0;
    Strip.GetSize(width, height);
    const int count = Strip.GetNumEntries();
    for (int i = 0; i < count; ++i) {
        const TProblemStrip::TEntry entry = Strip.GetEntry(i);
        TAccessibleItem item;
        item.Role = entry.Node != nullptr ? AR_ITEM : AR_LABEL;
        item.Name = entry.Text;
        item.Description = entry.IsVerdict ? "Preview and export" : "Problem";
        item.IsLive = entry.IsVerdict;
        item.TakesFocus = true;
        item.HasFocus = Strip.HasFocus() && Strip.GetMarked() == i;
        item.Top = Strip.GetEntryTop(i);
        item.Width = width;
        item.Height = TProblemStrip::RowHeight;
        items.push_back(item);
    }
}

void TProblemAccess::PressItem(int item)
{
    Strip.PressEntry(item);
}

void TProblemAccess::FocusItem(int item)
{
    Strip.Mark(item);
    Strip.TakeFocus();
}
