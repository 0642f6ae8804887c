#include "particles/cindermill/interface/docwindow.h"

#include "library/maths/scalar.h"
#include "particles/cindermill/graph/operations/addgraphnodeop.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/interface/documentwindows.h"
#include "particles/cindermill/interface/graph/nodeobj.h"
#include "particles/cindermill/main/cindermillapp.h"
#include "particles/cindermill/main/document.h"

#include <cmath>

namespace {

constexpr int IconId = 117;
constexpr float ToolWidth = 200;

TWindowClass& GetWindowClass()
{
    static TWindowClass windowClass("cindermill_docwindow", IconId, 0xFFFFFF);
    return windowClass;
}

// Each new view stands a little further down and to the right, until the cascade begins again.
void GetNextPosition(TWindowParams& params)
{
    static int cascade = 0;
    constexpr int Near = 50;
    constexpr int Right = 1100;
    constexpr int Bottom = 800;
    constexpr int Step = 16;
    params.X = cascade + Near;
    params.Y = cascade + Near;
    params.Width = Right - Near;
    params.Height = Bottom - Near;
    cascade = (cascade + Step) & 255;
}

// Nearly in the middle of a node.
bool IsUponNode(TGraphScene& scene, const TVector2& point)
{
    constexpr float Near = 4;
    const TEffectGraph& graph = *scene.GetDocument().GetGraph();
    for (int i = 0; i < graph.GetNumNodes(); ++i) {
        const TNodeObj* object = scene.FindNode(static_cast<const TToolNode*>(graph.GetNode(i)));
        if (object == nullptr)
            continue;
        TVector2 min;
        TVector2 max;
        object->GetRectangle(min, max);
        const TVector2 away = (min + max) * 0.5f - point;
        if (std::fabs(away[0]) < Near && std::fabs(away[1]) < Near)
            return true;
    }
    return false;
}

bool IsInside(const TWindow& window, double x, double y)
{
    int width = 0;
    int height = 0;
    window.GetSize(width, height);
    return x >= 0 && x < width && y >= 0 && y < height;
}

} // namespace

TDocWindow::~TDocWindow()
{
    CancelDrag();
}

bool TDocWindow::Create(TDocument& document, TWindow* frame)
{
    Document = &document;
    MouseTarget = &Graph;
    ASSERT_TEXT(CreateFrame(frame), "0 : Failed to create document window");
    ASSERT_TEXT(Tool.Create(*this), "0 : Failed to create doc tool sub window");
    ASSERT_TEXT(Header.Create(*this), "0 : Failed to create doc graph header sub window");
    const TRenderer* first =
        Windows.GetNumWindows() > 0 ? &Windows.GetWindow(0)->GetGraph().GetRenderer() : nullptr;
    ASSERT_TEXT(Graph.Create(*this, Header, first), "0 : Failed to create document graph window");
    ASSERT_TEXT(Problems.Create(*this, Header), "0 : Failed to create document window");
    Split.Attach(this);
    Split.AddPane(&Tool, false, nullptr, -1);
    Split.AddPane(&Header, false, &Tool, ToolWidth);
    Split.Layout();
    Access.Attach(*this);
    // The keys of the menus are the graph's, whatever was clicked last. It stands inside one of the others.
    TWindow* const panes[] = {&Tool, &Header, &Problems};
    for (TWindow* pane : panes)
        pane->SetKeyOwner(&Graph);
    Graph.SetKeyOwner(this);
    return true;
}

bool TDocWindow::CreateFrame(TWindow* frame)
{
    TWindowParams params;
    params.Class = &GetWindowClass();
    params.Title = "doc";
    params.Owner = frame;
    params.Kind = WK_MDICHILD;
    GetNextPosition(params);
    return TWindow::Create(params);
}

bool TDocWindow::OnMessage(const TMessage& message)
{
    switch (message.Type) {
    case MT_CLOSE:
        // The window may be gone when this returns.
        Windows.CloseView(this);
        return true;
    case MT_FOCUSGAINED:
        Graph.TakeFocus();
        return true;
    case MT_LEFTDOWN:
        Activate();
        break;
    case MT_MOUSEMOVE:
        // The pointer is the drag's, over the gap between the panes too.
        if (IsTypeDragging())
            return true;
        break;
    case MT_WHEEL:
        return OnWheel(message);
    case MT_KEYDOWN:
        return message.Key == KEY_ESCAPE && CancelAnyDrag();
    default:
        break;
    }
    return Split.OnMessage(message);
}

bool TDocWindow::OnWheel(const TMessage& message)
{
    TMessage moved = message;
    ClientToScreen(moved.X, moved.Y);
    MouseTarget->ScreenToClient(moved.X, moved.Y);
    return MouseTarget->OnMessage(moved);
}

void TDocWindow::Activate()
{
    TCindermillApp::Get().SetActiveDocWindow(this, Document);
    Windows.CollectShortcuts(*this);
}

void TDocWindow::BeginTypeDrag(const TNodeType& type)
{
    if (TWimp::Get().GetMouseDrag() != nullptr)
        return;
    DragType = &type;
    Graph.BuildGhost(type);
    TWimp::Get().SetMouseDrag(this, *this);
    ShowCursor(CU_DROP);
}

void TDocWindow::CancelDrag()
{
    if (DragType == nullptr)
        return;
    DragType = nullptr;
    TWimp::Get().ClearMouseDrag();
    ShowCursor(CU_CLASS);
    Windows.GetScene().GetWireAim().Clear();
    Graph.HideGhost();
}

bool TDocWindow::CancelAnyDrag()
{
    if (IsTypeDragging()) {
        CancelDrag();
        return true;
    }
    return Graph.CancelDrag() || Windows.GetScene().CancelDrags();
}

void TDocWindow::OnPaneEscape()
{
    if (!CancelAnyDrag())
        Graph.TakeFocus();
}

void TDocWindow::OnPaneFocus(TWindow& pane, TMessageType type)
{
    if (type == MT_FOCUSGAINED)
        Activate();
    pane.Redraw();
}

void TDocWindow::ShowCursor(TCursor cursor)
{
    if (cursor == Cursor)
        return;
    Cursor = cursor;
    SetCursor(cursor);
}

bool TDocWindow::IsOverGraph(double x, double y, double& graphX, double& graphY) const
{
    graphX = x;
    graphY = y;
    ClientToScreen(graphX, graphY);
    Graph.ScreenToClient(graphX, graphY);
    return IsInside(*this, x, y) && IsInside(Graph, graphX, graphY);
}

void TDocWindow::OnMouseMove(double x, double y, int buttons)
{
    if (DragType == nullptr)
        return;
    double graphX = 0;
    double graphY = 0;
    const bool isOver = IsOverGraph(x, y, graphX, graphY);
    if ((buttons & MB_LEFT) == 0) {
        const TNodeType& type = *DragType;
        CancelDrag();
        if (isOver)
            DropType(graphX, graphY, type);
        return;
    }
    if (isOver) {
        ShowCursor(CU_DROP);
        Graph.EdgeScroll(graphX, graphY);
        Windows.GetScene().GetWireAim().AimType(*DragType, Graph.PixelToWorld(graphX, graphY),
                                                TWireAim::GetReach(Graph.GetRenderer()));
        Graph.ShowGhost(graphX, graphY);
    } else {
        ShowCursor(CU_DRAG);
        Windows.GetScene().GetWireAim().Clear();
        Graph.HideGhost();
    }
}

// The keys are for the new node now, no longer for the palette.
void TDocWindow::DropType(double x, double y, const TNodeType& type)
{
    const TVector2 point = Graph.PixelToWorld(x, y);
    Graph.TakeFocus();
    SetMouseTarget(&Graph);
    TToolNode* node = DropNode(Windows.GetScene(), type, point, TWireAim::GetReach(Graph.GetRenderer()));
    if (node != nullptr)
        Document->SelectNode(node, true);
}

bool TDocWindow::MayEdit() const
{
    return !Document->IsInStep() && TWimp::Get().GetMouseDrag() == nullptr;
}

void TDocWindow::AddInMiddle(const TNodeType& type)
{
    if (!MayEdit())
        return;
    int width = 0;
    int height = 0;
    Graph.GetSize(width, height);
    TVector2 point = Graph.PixelToWorld(width / 2.0, height / 2.0);
    // Not upon the one that was added before, which nobody would find. Very far out a step aside leads
    // nowhere.
    constexpr float Aside = 20;
    constexpr float Farthest = 1e6f;
    while (std::fabs(point[0]) < Farthest && std::fabs(point[1]) < Farthest &&
           IsUponNode(Windows.GetScene(), point))
        point += TVector2(Aside, Aside);
    TAddGraphNodeOp* op = new TAddGraphNodeOp(*Document, type, FloatToInt(point[0]), FloatToInt(point[1]));
    TToolNode* node = op->GetNode();
    Document->ApplyOperation(op);
    Document->SelectNode(node, true);
}

bool TDocWindow::WalkPanes(int direction)
{
    TWindow* const panes[] = {&Tool, &Header, &Graph, &Problems};
    constexpr int NumPanes = sizeof(panes) / sizeof(panes[0]);
    int at = 0;
    while (at < NumPanes && !panes[at]->HasFocus())
        ++at;
    if (at == NumPanes || TWimp::Get().GetMouseDrag() != nullptr)
        return false;
    do
        at = (at + direction + NumPanes) % NumPanes;
    while (!panes[at]->IsShown());
    panes[at]->TakeFocus();
    return true;
}

void TDocWindow::FocusSelected(bool animate)
{
    const vector<TToolNode*>& nodes = Document->GetSelection();
    if (!nodes.empty())
        Graph.Focus(nodes, animate);
}

void TDocWindow::FocusGroup(int group)
{
    const TEffectSchedule& schedule = Document->GetSchedule();
    if (!schedule.IsCreated() || group < 0 || group >= schedule.GetNumGroups())
        return;
    vector<TToolNode*> nodes;
    for (int i = 0; i < schedule.GetNumTiedNodes(group); ++i)
        nodes.push_back(static_cast<TToolNode*>(schedule.GetNode(schedule.GetTiedNode(group, i))));
    if (!nodes.empty())
        Graph.Focus(nodes, false);
}

void TDocWindow::ShowNode(TToolNode& node)
{
    Activate();
    Document->SelectNode(&node, true);
    vector<TToolNode*> nodes;
    nodes.push_back(&node);
    Graph.TakeFocus();
    Graph.Focus(nodes, true);
}

void TDocWindow::FocusAll(bool animate)
{
    const TEffectGraph& graph = *Document->GetGraph();
    vector<TToolNode*> nodes;
    for (int i = 0; i < graph.GetNumNodes(); ++i)
        nodes.push_back(static_cast<TToolNode*>(graph.GetNode(i)));
    if (!nodes.empty())
        Graph.Focus(nodes, animate);
}
