#include "particles/cindermill/interface/docgraphheader.h"

#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/interface/documentwindows.h"
#include "particles/cindermill/interface/docwindow.h"
#include "particles/cindermill/main/document.h"
#include "particles/effectgraph/usage.h"

namespace {

constexpr TGDIFont TabFont = {};
constexpr int TextLeft = 6;
constexpr int TextTop = 3;
constexpr int TextSpace = 12;
constexpr TGDIColour White = 0xFFFFFF;
constexpr TGDIColour TextColour = 0x202020;

TWindowClass& GetWindowClass()
{
    static TWindowClass windowClass("cindermill_docgraphheader");
    if (!windowClass.IsRegistered())
        windowClass.Register(0, White);
    return windowClass;
}

TEffectNode* FindRenderNode(const TEffectSchedule& schedule, int group)
{
    for (int i = 0; i < schedule.GetNumTiedNodes(group); ++i) {
        const int node = schedule.GetTiedNode(group, i);
        if (schedule.GetNodeUsage(node) == TU_RENDER)
            return schedule.GetNode(node);
    }
    return nullptr;
}

// What runs once per effect has no particles to show, and a group may have lost all its nodes to others.
bool HasTab(const TEffectSchedule& schedule, int group)
{
    return !schedule.IsTriggerGroup(group) && schedule.GetNumTiedNodes(group) > 0;
}

bool AreEqual(const vector<TString>& a, const vector<TString>& b)
{
    bool equal = a.size() == b.size();
    for (int i = 0; equal && i < a.size(); ++i)
        equal = a[i].Compare(b[i], true) == 0;
    return equal;
}

} // namespace

void GetTabNames(const TEffectSchedule& schedule, vector<TString>& names)
{
    names.clear();
    names.push_back("All");
    if (!schedule.IsCreated())
        return;
    for (int group = 0; group < schedule.GetNumGroups(); ++group) {
        if (!HasTab(schedule, group))
            continue;
        TString name;
        name.Format("Group %d", group);
        if (const TEffectNode* node = FindRenderNode(schedule, group))
            name = node->GetNodeType()->Name;
        names.push_back(name);
    }
}

int GetTabGroup(const TEffectSchedule& schedule, int tab)
{
    int left = tab;
    int group = 0;
    while (group < schedule.GetNumGroups() && (!HasTab(schedule, group) || --left > 0))
        ++group;
    return tab > 0 && group < schedule.GetNumGroups() ? group : -1;
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
    vector<TString> names;
    ::GetTabNames(DocWindow->GetDocument().GetSchedule(), names);
    if (AreEqual(names, TabNames))
        return;
    TabNames = names;
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
    DocWindow->GetGraph().MoveTo(0, Height, width, height > Height ? height - Height : 0);
}

void TDocGraphHeader::GetTabEdges(int tab, int& left, int& right) const
{
    left = right = 0;
    for (int i = 0; i <= tab; ++i) {
        int width = 0;
        int height = 0;
        GetTextExtent(TabFont, TabNames[i], width, height);
        left = right;
        right = left + width + TextSpace;
    }
}

int TDocGraphHeader::FindTab(int x, int y) const
{
    if (y < 0 || y >= Height)
        return -1;
    for (int i = 0; i < TabNames.size(); ++i) {
        int left = 0;
        int right = 0;
        GetTabEdges(i, left, right);
        if (x >= left && x < right)
            return i;
    }
    return -1;
}

void TDocGraphHeader::Paint(TGDIContext& context) const
{
    context.SetFont(TabFont);
    context.SetTextColour(TextColour);
    context.SetNoPen();
    context.SetBrush(GetButtonColour());
    for (int i = 0; i < TabNames.size(); ++i) {
        int left = 0;
        int right = 0;
        GetTabEdges(i, left, right);
        context.Rectangle(left, 0, right, Height);
        context.RaisedEdge(left, 0, right, Height);
        context.TextOut(left + TextLeft, TextTop, TabNames[i]);
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
