#include "particles/cindermill/interface/docgraphheader.h"

#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/interface/documentwindows.h"
#include "particles/cindermill/interface/docwindow.h"
#include "particles/cindermill/interface/particles/previewgroups.h"
#include "particles/cindermill/main/document.h"

namespace {

constexpr TGDIFont TabFont = {};
constexpr int TextLeft = 6;
constexpr int TextTop = 3;
constexpr TGDIColour White = 0xFFFFFF;
constexpr TGDIColour TextColour = 0x202020;
constexpr TGDIColour DisabledColour = 0xA8A8A8;
constexpr TGDIColour BadgeColour = 0xC62828;
constexpr int BadgeSize = 6;

TWindowClass& GetWindowClass()
{
    static TWindowClass windowClass("cindermill_docgraphheader", 0, White);
    return windowClass;
}

bool AreEqual(const vector<TString>& a, const vector<TString>& b)
{
    bool equal = a.size() == b.size();
    for (int i = 0; equal && i < a.size(); ++i)
        equal = a[i].Compare(b[i], true) == 0;
    return equal;
}

} // namespace

void GetTabLabels(const TEffectSchedule& schedule, vector<TString>& labels)
{
    vector<int> groups;
    vector<TString> names;
    GetParticleGroups(schedule, groups, names);
    labels.clear();
    labels.push_back(AllGroups);
    for (const TString& name : names)
        labels.push_back(name);
}

int GetTabGroup(const TEffectSchedule& schedule, int tab)
{
    vector<int> groups;
    ListParticleGroups(schedule, groups);
    return tab > 0 && tab <= groups.size() ? groups[tab - 1] : -1;
}

TDocGraphHeader::~TDocGraphHeader()
{
    if (IsRegistered)
        DocWindow->GetDocument().GetGraph()->RemoveCallback(&TDocGraphHeader::OnGraphChanged, this);
}

bool TDocGraphHeader::Create(TDocWindow& docWindow)
{
    DocWindow = &docWindow;
    TWindowParams params;
    params.Class = &GetWindowClass();
    params.Owner = &docWindow;
    if (!TWindow::Create(params))
        return false;
    docWindow.GetDocument().GetGraph()->AddCallback(&TDocGraphHeader::OnGraphChanged, this);
    IsRegistered = true;
    OnGraphChanged();
    return true;
}

void TDocGraphHeader::OnGraphChanged(void* data)
{
    static_cast<TDocGraphHeader*>(data)->OnGraphChanged();
}

void TDocGraphHeader::OnGraphChanged()
{
    const TEffectSchedule& schedule = DocWindow->GetDocument().GetSchedule();
    vector<TString> labels;
    ::GetTabLabels(schedule, labels);
    if (AreEqual(labels, Strip.GetLabels()))
        return;
    Strip.SetLabels(labels);
    Marked = Marked < labels.size() ? Marked : labels.size() - 1;
    Redraw();
}

bool TDocGraphHeader::OnMessage(const TMessage& message)
{
    switch (message.Type) {
    case MT_PAINT:
        Paint(*message.Context);
        return true;
    case MT_SIZE:
        LayoutGraph();
        return true;
    case MT_LEFTDOWN:
        OnPress(message);
        return true;
    case MT_WHEEL:
        OnWheel(message);
        return true;
    case MT_KEYDOWN:
        return OnKey(message);
    case MT_CHAR:
        if (message.Character == ' ' && !message.IsRepeat)
            PressTab(Marked);
        return message.Character == ' ';
    case MT_FOCUSGAINED:
    case MT_FOCUSLOST:
        DocWindow->OnPaneFocus(*this, message.Type);
        return false;
    case MT_LEFTUP:
        // The document may have dropped its schedule meanwhile.
        OnGraphChanged();
        OnTab(FindTab(message.GetPixelX(), message.GetPixelY()), (message.KeyFlags & KF_ALT) != 0);
        return true;
    default:
        return false;
    }
}

// The graph has all that the strip leaves.
void TDocGraphHeader::LayoutGraph()
{
    int width = 0;
    int height = 0;
    GetSize(width, height);
    Strip.SetWidth(width);
    TProblemStrip& problems = DocWindow->GetProblems();
    const int strip = problems.GetWantedHeight();
    const int graph = height > Height + strip ? height - Height - strip : 0;
    DocWindow->GetGraph().MoveTo(0, Height, width, graph);
    if (problems.GetHandle() == nullptr)
        return;
    problems.MoveTo(0, Height + graph, width, strip);
    // The keys do not go with what has been mended.
    if (strip == 0 && problems.HasFocus())
        DocWindow->GetGraph().TakeFocus();
    problems.Show(strip > 0);
}

void TDocGraphHeader::OnProblemsChanged()
{
    LayoutGraph();
    Redraw();
}

bool TDocGraphHeader::HasProblem(int tab) const
{
    const TDocumentProblems& problems = DocWindow->GetDocument().GetProblems();
    const TEffectSchedule& schedule = DocWindow->GetDocument().GetSchedule();
    if (tab == 0 || problems.empty())
        return !problems.empty();
    const int group = GetTabGroup(schedule, tab);
    for (int i = 0; group != -1 && i < schedule.GetNumTiedNodes(group); ++i)
        for (int p = 0; p < problems.size(); ++p)
            if (problems[p].Node == schedule.GetNode(schedule.GetTiedNode(group, i)))
                return true;
    return false;
}

void TDocGraphHeader::GetTabEdges(int tab, int& left, int& right) const
{
    Strip.GetEdges(tab, left, right);
}

int TDocGraphHeader::FindTab(int x, int y) const
{
    return y >= 0 && y < Height ? Strip.FindTab(x) : -1;
}

void TDocGraphHeader::PressTab(int tab)
{
    OnGraphChanged();
    if (tab >= 0 && tab < Strip.GetLabels().size())
        OnTab(tab, false);
}

bool TDocGraphHeader::OnKey(const TMessage& message)
{
    switch (message.Key) {
    case KEY_LEFT:
    case KEY_RIGHT:
        MarkTab(Marked + (message.Key == KEY_RIGHT ? 1 : -1));
        return true;
    case KEY_HOME:
        MarkTab(0);
        return true;
    case KEY_END:
        MarkTab(Strip.GetLabels().size() - 1);
        return true;
    case KEY_RETURN:
        OnGraphChanged();
        OnTab(Marked, (message.KeyFlags & KF_ALT) != 0);
        return true;
    case KEY_ESCAPE:
        DocWindow->OnPaneEscape();
        return true;
    default:
        return false;
    }
}

void TDocGraphHeader::MarkTab(int tab)
{
    if (tab < 0 || tab >= Strip.GetLabels().size())
        return;
    Marked = tab;
    int left = 0;
    int right = 0;
    GetTabEdges(tab, left, right);
    if (left < 0)
        Strip.ScrollBy(left);
    else if (right > Strip.GetRoom())
        Strip.ScrollBy(right - Strip.GetRoom());
    Redraw();
}

void TDocGraphHeader::OnPress(const TMessage& message)
{
    const bool isOverTabs = message.GetPixelY() >= 0 && message.GetPixelY() < Height;
    const int arrow = isOverTabs ? Strip.FindArrow(message.GetPixelX()) : 0;
    if (arrow != 0 && Strip.ScrollTab(arrow))
        Redraw();
}

void TDocGraphHeader::OnWheel(const TMessage& message)
{
    if (Strip.ScrollBy(-Wheel.Take(message.Delta)))
        Redraw();
}

void TDocGraphHeader::Paint(TGDIContext& context) const
{
    context.SetFont(TabFont);
    context.SetTextColour(TextColour);
    context.SetNoPen();
    context.SetBrush(ButtonColour);
    context.SetClip(0, 0, Strip.GetRoom(), Height);
    for (int i = 0; i < Strip.GetLabels().size(); ++i) {
        int left = 0;
        int right = 0;
        GetTabEdges(i, left, right);
        context.Rectangle(left, 0, right, Height);
        context.RaisedEdge(left, 0, right, Height);
        context.TextOut(left + TextLeft, TextTop, Strip.GetLabels()[i]);
        if (HasProblem(i))
            PaintBadge(context, right);
        if (HasFocus() && i == Marked) {
            context.FocusFrame(left, 0, right, Height);
            context.SetNoPen();
            context.SetBrush(ButtonColour);
        }
    }
    context.ClearClip();
    if (Strip.HasArrows())
        PaintArrows(context);
}

void TDocGraphHeader::PaintBadge(TGDIContext& context, int right)
{
    context.SetBrush(BadgeColour);
    context.Rectangle(right - BadgeSize - 1, 1, right - 1, 1 + BadgeSize);
    context.SetBrush(ButtonColour);
}

void TDocGraphHeader::PaintArrows(TGDIContext& context) const
{
    constexpr int HalfHeight = 4;
    for (int direction = -1; direction <= 1; direction += 2) {
        const int left = Strip.GetRoom() + (direction > 0 ? TTabStrip::ArrowWidth : 0);
        const int middle = left + TTabStrip::ArrowWidth / 2;
        context.SetNoPen();
        context.SetBrush(ButtonColour);
        context.Rectangle(left, 0, left + TTabStrip::ArrowWidth, Height);
        context.RaisedEdge(left, 0, left + TTabStrip::ArrowWidth, Height);
        context.SetPen(Strip.CanScroll(direction) ? TextColour : DisabledColour);
        for (int i = 0; i < HalfHeight; ++i) {
            const int x = middle - direction * (i - HalfHeight / 2);
            context.Line(x, Height / 2 - i, x, Height / 2 + i + 1);
        }
    }
}

void TDocGraphHeader::OnTab(int tab, bool alone)
{
    if (tab == -1)
        return;
    if (tab == 0) {
        if (alone)
            DocWindow->GetWindows().ShowGroupAlone(-1);
        else
            DocWindow->FocusAll(false);
        return;
    }
    const TEffectSchedule* schedule = &DocWindow->GetDocument().GetSchedule();
    ASSERT(schedule->IsCreated());
    const int group = GetTabGroup(*schedule, tab);
    ASSERT(group != -1);
    if (alone)
        DocWindow->GetWindows().ShowGroupAlone(group);
    else
        DocWindow->FocusGroup(group);
}
