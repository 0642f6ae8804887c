#include "particles/cindermill/interface/problemstrip.h"

#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/interface/docwindow.h"
#include "particles/cindermill/main/document.h"

namespace {

constexpr TGDIFont RowFont = {"Dotum", -11, 400};
constexpr TGDIColour Paper = 0xFBE9E6;
constexpr TGDIColour HoverColour = 0xF6D9D4;
constexpr TGDIColour MarkColour = 0xC62828;
constexpr TGDIColour Edge = 0xD9A39C;
constexpr TGDIColour Ink = 0x202020;
constexpr TGDIColour Faint = 0x80706E;
constexpr int MarkSize = 8;
constexpr int TextLeft = 24;
constexpr int TextTop = 4;

TWindowClass& GetWindowClass()
{
    static TWindowClass windowClass("cindermill_problems");
    if (!windowClass.IsRegistered())
        windowClass.Register(0, Paper);
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
    Hide();
    return true;
}

int TProblemStrip::GetNumEntries() const
{
    return DocWindow->GetDocument().GetProblems().size();
}

int TProblemStrip::GetWantedHeight() const
{
    const int count = GetNumEntries();
    return RowHeight * (count < MaxRows ? count : MaxRows);
}

void TProblemStrip::Refresh()
{
    FirstRow = 0;
    Hovered = -1;
    Redraw();
}

// A problem of a node that has gone, or of none, leads nowhere.
bool TProblemStrip::HasNode(const TProblem& problem) const
{
    return problem.Node != nullptr && DocWindow->GetDocument().GetGraph()->Has(problem.Node);
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
    case MT_MOUSELEAVE: {
        const int entry = message.Type == MT_MOUSEMOVE ? FindEntry(message.GetPixelY()) : -1;
        if (entry == Hovered)
            return true;
        Hovered = entry;
        const bool leads = entry != -1 && HasNode(DocWindow->GetDocument().GetProblems()[entry]);
        SetCursor(leads ? CU_FINGER : CU_CLASS);
        Redraw();
        return true;
    }
    case MT_LEFTUP:
        OnClick(FindEntry(message.GetPixelY()));
        return true;
    case MT_WHEEL: {
        const int limit = GetNumEntries() - GetWantedHeight() / RowHeight;
        const int row = FirstRow + (message.Delta > 0 ? -1 : 1);
        FirstRow = row > limit ? limit : row < 0 ? 0 : row;
        Redraw();
        return true;
    }
    default:
        return false;
    }
}

void TProblemStrip::OnClick(int entry)
{
    if (entry == -1)
        return;
    TDocument& document = DocWindow->GetDocument();
    const TProblem& problem = document.GetProblems()[entry];
    if (!HasNode(problem))
        return;
    TToolNode* node = static_cast<TToolNode*>(const_cast<TEffectNode*>(problem.Node));
    DocWindow->Activate();
    document.SelectNode(node, true);
    vector<TToolNode*> nodes;
    nodes.push_back(node);
    DocWindow->GetGraph().TakeFocus();
    DocWindow->GetGraph().Focus(nodes, true);
}

void TProblemStrip::Paint(TGDIContext& context) const
{
    int width = 0;
    int height = 0;
    GetSize(width, height);
    context.SetFont(RowFont);
    const TDocumentProblems& problems = DocWindow->GetDocument().GetProblems();
    for (int i = FirstRow; i < problems.size(); ++i) {
        const int top = (i - FirstRow) * RowHeight;
        const bool leads = HasNode(problems[i]);
        context.SetNoPen();
        context.SetBrush(i == Hovered && leads ? HoverColour : Paper);
        context.Rectangle(0, top, width, top + RowHeight);
        context.SetBrush(MarkColour);
        const int mark = top + (RowHeight - MarkSize) / 2;
        context.Rectangle(MarkSize, mark, 2 * MarkSize, mark + MarkSize);
        context.SetTextColour(leads ? Ink : Faint);
        context.TextOutShortened(TextLeft, top + TextTop, width - TextLeft - 8, problems[i].Text.Print());
    }
    context.SetPen(Edge);
    context.Line(0, 0, width, 0);
    const int rows = height / RowHeight;
    if (problems.size() <= rows)
        return;
    TString more;
    more.Format("%d - %d of %d", FirstRow + 1, FirstRow + rows, problems.size());
    int textWidth = 0;
    int textHeight = 0;
    context.GetTextExtent(more.Print(), textWidth, textHeight);
    context.SetTextColour(Faint);
    context.TextOut(width - textWidth - 8, height - RowHeight + TextTop, more.Print());
}
