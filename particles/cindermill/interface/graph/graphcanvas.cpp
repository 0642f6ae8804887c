#include "particles/cindermill/interface/graph/graphcanvas.h"

#include "library/containers/classregistry.h"
#include "library/containers/shortentext.h"
#include "library/maths/scalar.h"
#include "library/wimp/gl/renderer.h"
#include "library/wimp/gl/renderwindow.h"
#include "library/wimp/window.h"
#include "particles/cindermill/graph/operations/deletegraphedgeop.h"
#include "particles/cindermill/graph/operations/deletegraphnodeop.h"
#include "particles/cindermill/graph/operations/graphsteps.h"
#include "particles/cindermill/graph/operations/movegraphnodeop.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/interface/graph/graphscene.h"
#include "particles/cindermill/interface/graph/nodeobj.h"
#include "particles/cindermill/interface/graph/nodesearch.h"
#include "particles/cindermill/main/documentstep.h"

#include <cmath>

namespace {

constexpr float Unbounded = 1e30f;

TNodeObj* AsNode(TRenderObject* object)
{
    return object->GetClassId() == TNodeObj::NameID() ? static_cast<TNodeObj*>(object) : nullptr;
}

// Truncated, but for places that only rounding has kept from being whole.
int ToPosition(float place)
{
    constexpr double Slack = 1.0 / 256.0;
    const double nearest = std::floor(place + 0.5);
    return FloatToInt(std::fabs(place - nearest) < Slack ? nearest : place);
}

// The nearest place on the lines of the grid.
float SnapToGrid(float place)
{
    return static_cast<float>(std::floor(double(place) / TGridRender::Step + 0.5) * TGridRender::Step);
}

// The distance from b to a, with wrapping: places may come from any file.
int Distance(int a, int b)
{
    return static_cast<int>(static_cast<unsigned>(a) - static_cast<unsigned>(b));
}

} // namespace

TGraphCanvas::TGraphCanvas(TGraphScene& scene) : Scene(scene), Draft(scene) {}

TGraphCanvas::~TGraphCanvas() = default;

void TGraphCanvas::Render(TRenderer& renderer)
{
    TRenderObjects::Render(renderer);
    if (Objects.empty())
        Hint.Render(renderer, Scene.GetHost().GetClearPart(renderer));
    Scene.GetPortWalk().Render(renderer);
}

void TGraphCanvas::GetBounds(TVector2& min, TVector2& max)
{
    min = TVector2(-Unbounded, -Unbounded);
    max = TVector2(Unbounded, Unbounded);
}

TRenderObject* TGraphCanvas::HitTest(const TVector2& point)
{
    TRenderObject* hit = TRenderObjects::HitTest(point);
    return hit != nullptr ? hit : this;
}

bool TGraphCanvas::Event(const TRenderEvent& event)
{
    if (event.Code != RE_HOVER && event.Code < RE_REDRAW && Scene.GetHelp().Hide())
        Scene.GetHost().RedrawGraphs();
    switch (event.Code) {
    case RE_NODEDRAG:
        return OnNodePressed(*static_cast<TNodeObj*>(event.Source), event.Point);
    case RE_PORTDRAG:
        return OnPortPressed(*static_cast<TNodeObj*>(event.Source), event.Point, event.Detail);
    case RE_KEY:
        // A key that a control has no use for is not meant for the nodes.
        if (event.Source != this && AsNode(event.Source) == nullptr)
            return TRenderObjects::Event(event);
        return OnKey(event.Detail) || TRenderObjects::Event(event);
    case RE_REDRAW:
        Scene.GetHost().RedrawGraphs();
        return true;
    default:
        return TRenderObjects::Event(event);
    }
}

bool TGraphCanvas::OnKey(int key)
{
    if (key == KEY_ESCAPE && IsDragging()) {
        CancelDrag();
        return true;
    }
    if (key != KEY_DELETE && key != KEY_BACKSPACE)
        return false;
    TDocument& document = Scene.GetDocument();
    if (document.GetSelection().empty())
        return false;
    Scene.CancelDrags();
    document.ApplyOperation(new TDeleteGraphNodeOp(document.GetSelection()));
    return true;
}

bool TGraphCanvas::BeginDrag(TDragMode mode, TNodeObj& node)
{
    TRenderer* renderer = GetRenderer();
    // Another button may be panning the view.
    if (IsDragging() || renderer == nullptr || TWimp::Get().GetMouseDrag() != nullptr)
        return false;
    Drag = mode;
    DragRenderer.Set(renderer);
    Grabbed = &node;
    Scene.GetHost().BeginDrag(*renderer, *this);
    return true;
}

// Ends what the drag shows; what it did is up to the caller.
void TGraphCanvas::EndDrag()
{
    if (Drag == DM_EDGE)
        Draft.End();
    ShowTakenOut(false);
    Scene.GetWireAim().Clear();
    TakesOut = false;
    Drag = DM_NONE;
    Grabbed = nullptr;
    Dragged.clear();
    DeltaX = DeltaY = 0;
    // The view may have gone meanwhile.
    if (DragRenderer.Get() != nullptr)
        Scene.GetHost().EndDrag(*DragRenderer.Get());
    else if (TWimp::Get().GetMouseDrag() == this)
        TWimp::Get().ClearMouseDrag();
    DragRenderer.Set(nullptr);
    Scene.GetHost().RedrawGraphs();
}

void TGraphCanvas::CancelDrag()
{
    if (!IsDragging())
        return;
    if (Drag == DM_NODES)
        MoveNodesBy(0, 0);
    if (Drag == DM_SIZE)
        Grabbed->SetWishedSize(SizeBefore);
    if (Drag == DM_PRESS)
        Grabbed->ReleaseButton();
    EndDrag();
}

void TGraphCanvas::OnMouseMove(double x, double y, int buttons)
{
    if (!IsDragging())
        return;
    TRenderer* renderer = DragRenderer.Get();
    if (renderer == nullptr) {
        CancelDrag();
        return;
    }
    const bool released = (buttons & MB_LEFT) == 0;
    // The release is no move: a click near an edge leaves all as it is.
    if (Drag != DM_PRESS && !released)
        Scene.GetHost().EdgeScroll(*renderer, x, y);
    const TVector2 pointer = renderer->PixelToWorld(x, y);
    // What cannot be seen is not meant.
    const TVector2* place = IsInView(x, y) ? &pointer : nullptr;
    TPort* under = Drag == DM_EDGE && place != nullptr ? FindMeantPort(pointer) : nullptr;
    switch (Drag) {
    case DM_NODES:
        MoveNodes(pointer);
        AimNode(pointer);
        if (released)
            FinishNodes();
        break;
    case DM_EDGE:
        Draft.Aim(pointer, under);
        if (released)
            FinishEdge(under, place);
        break;
    case DM_SIZE:
        Grabbed->Resize(pointer - Grabbed->GetOrigin() - Grabbed->GetPressPoint());
        if (released)
            EndDrag();
        break;
    case DM_PRESS:
        Grabbed->FollowPress(pointer - Grabbed->GetOrigin(), renderer);
        if (released)
            FinishPress(pointer);
        break;
    default:
        break;
    }
    Scene.GetHost().RedrawGraphs();
}

bool TGraphCanvas::OnNodePressed(TNodeObj& node, const TVector2& point)
{
    // What is taken out of its wires goes alone.
    const bool alone = (GetKeyFlags() & KF_ALT) != 0;
    if (!node.IsSelected() || (alone && Scene.GetDocument().GetSelection().size() > 1))
        Scene.GetDocument().SelectNode(node.GetToolNode(), alone || (GetKeyFlags() & KF_SHIFT) == 0);
    MoveToFront(&node);
    if (BeginDrag(DM_NODES, node)) {
        node.SetPressPoint(point);
        Dragged = Scene.GetDocument().GetSelection();
        TakesOut = Dragged.size() == 1 && (GetKeyFlags() & KF_ALT) != 0 && !IsUnwired(*node.GetToolNode());
    }
    Scene.GetHost().RedrawGraphs();
    return true;
}

void TGraphCanvas::MoveNodesBy(int dx, int dy)
{
    for (TToolNode* node : Dragged) {
        TNodeObj* object = Scene.FindNode(node);
        if (object == nullptr)
            continue;
        object->SetOrigin(TVector2(static_cast<float>(double(node->GetX()) + dx),
                                   static_cast<float>(double(node->GetY()) + dy)));
        Scene.LayoutEdges(node);
    }
}

// The grabbed node's position is a whole number; the other nodes keep their distance to it.
void TGraphCanvas::MoveNodes(const TVector2& pointer)
{
    TVector2 place = pointer - Grabbed->GetPressPoint();
    if (IsSnapping())
        place = TVector2(SnapToGrid(place[0]), SnapToGrid(place[1]));
    DeltaX = Distance(ToPosition(place[0]), Grabbed->GetToolNode()->GetX());
    DeltaY = Distance(ToPosition(place[1]), Grabbed->GetToolNode()->GetY());
    MoveNodesBy(DeltaX, DeltaY);
    ShowTakenOut(TakesOut && (DeltaX != 0 || DeltaY != 0));
}

// Ctrl may have gone down before the drag, or in the middle of it.
bool TGraphCanvas::IsSnapping() const
{
    const TWindow* window = GetDragWindow();
    return ((GetKeyFlags() | (window != nullptr ? window->GetKeyFlags() : 0)) & KF_CTRL) != 0;
}

void TGraphCanvas::FinishNodes()
{
    const int dx = DeltaX;
    const int dy = DeltaY;
    const bool takesOut = TakesOut;
    const vector<TToolNode*> nodes = Dragged;
    const TInsertion insertion = Scene.GetWireAim().GetInsertion();
    // The operation moves them once more, for good.
    CancelDrag();
    if (dx == 0 && dy == 0)
        return;
    TDocument& document = Scene.GetDocument();
    const TDocumentStep step(document);
    if (takesOut)
        TakeOutOfWires(document, nodes[0]);
    document.ApplyOperation(new TMoveGraphNodeOp(nodes, dx, dy));
    if (insertion.Edge != nullptr)
        InsertIntoWire(document, nodes[0], insertion);
}

// A node that nothing is wired to goes into the wire under the pointer.
void TGraphCanvas::AimNode(const TVector2& pointer)
{
    if (Dragged.size() != 1 || !IsUnwired(*Dragged[0]))
        return;
    Scene.GetWireAim().Aim(*Dragged[0], pointer, TWireAim::GetReach(*DragRenderer.Get()));
}

void TGraphCanvas::ShowTakenOut(bool shown)
{
    if (shown == IsTakenOut)
        return;
    IsTakenOut = shown;
    const TToolNode& node = *Grabbed->GetToolNode();
    vector<TEffectEdge*> edges;
    GetEdges(node, edges);
    for (const TEffectEdge* edge : edges) {
        if (TToolEdgeRenderer* renderer = Scene.FindEdge(static_cast<const TToolEdge*>(edge)))
            renderer->SetHidden(shown);
        if (shown && edge->GetSrcNode() == &node)
            ShowJoin(*edge);
    }
    if (shown)
        return;
    for (TToolEdgeRenderer* join : Joins)
        RemoveObject(join);
    Joins.clear();
}

// The edge, which leaves the taken node, as it will be.
void TGraphCanvas::ShowJoin(const TEffectEdge& edge)
{
    const TEffectEdge* before = FindWayPast(*Grabbed->GetToolNode(), edge);
    if (before == nullptr)
        return;
    TToolEdgeRenderer* join = new TToolEdgeRenderer(Scene);
    Joins.push_back(join);
    join->Init(Scene.GetNode(before->GetSrcNode()), before->GetSrcPort(), Scene.GetNode(edge.GetDstNode()),
               edge.GetDstPort());
    join->SetLit(true);
    join->Layout();
    AddObjectFront(join);
}

void TGraphCanvas::BeginResize(TNodeObj& node, const TVector2& grab)
{
    if (!BeginDrag(DM_SIZE, node))
        return;
    node.SetPressPoint(grab);
    SizeBefore = node.GetWishedSize();
}

void TGraphCanvas::BeginPress(TNodeObj& node)
{
    if (!BeginDrag(DM_PRESS, node))
        return;
    node.FollowPress(GetPointer() - node.GetOrigin(), GetRenderer());
}

void TGraphCanvas::FinishPress(const TVector2& pointer)
{
    TNodeObj& node = *Grabbed;
    const TRenderer* view = DragRenderer.Get();
    EndDrag();
    node.FinishPress(pointer - node.GetOrigin(), view);
}

// The port is told as in a TPortRef: below the number of inputs it is an input.
bool TGraphCanvas::OnPortPressed(TNodeObj& node, const TVector2& point, int port)
{
    if (!BeginDrag(DM_EDGE, node))
        return true;
    const bool input = port < node.GetNumPorts(true);
    Draft.Begin(node.GetPort(input, input ? port : port - node.GetNumPorts(true)));
    const TVector2 pointer = node.GetOrigin() + point;
    Draft.Aim(pointer, FindDropPort(pointer));
    Scene.GetHost().RedrawGraphs();
    return true;
}

TPort* TGraphCanvas::FindDropPort(const TVector2& point)
{
    for (int i = Objects.size() - 1; i >= 0; --i) {
        TNodeObj* node = AsNode(Objects[i]);
        if (node == nullptr)
            continue;
        const TVector2 inside = point - node->GetOrigin();
        if (TPort* port = node->FindDropPort(inside))
            return port;
        if (node->HitTest(point) != nullptr)
            return nullptr;
    }
    return nullptr;
}

// Somewhere on a node a new wire means its best port. The end of an old one is let go there.
TPort* TGraphCanvas::FindMeantPort(const TVector2& point)
{
    TPort* port = FindDropPort(point);
    const TWireEnds ends = Draft.GetEnds();
    if (port != nullptr || ends.Picked != nullptr)
        return port;
    TNodeObj* node = Scene.NodeAt(point);
    return node != nullptr ? node->FindMeantPort(*ends.From) : nullptr;
}

bool TGraphCanvas::IsInView(double x, double y) const
{
    int width = 0;
    int height = 0;
    DragRenderer.Get()->GetWindow()->GetSize(width, height);
    return x >= 0 && x < width && y >= 0 && y < height;
}

void TGraphCanvas::FinishEdge(const TPort* under, const TVector2* place)
{
    const TWireEnds ends = Draft.GetEnds();
    if (ends.To == nullptr && ends.Picked == nullptr) {
        FinishLooseEdge(under, place);
        return;
    }
    EndDrag();
    if (ends.To != nullptr)
        ConnectPorts(Scene.GetDocument(), ends);
    else if (under == nullptr)
        Scene.GetDocument().ApplyOperation(new TDeleteGraphEdgeOp(ends.Picked));
    else
        TellWireRefusal(Scene, *ends.From, *under);
}

// A new wire that ends at no port that could take it.
void TGraphCanvas::FinishLooseEdge(const TPort* under, const TVector2* place)
{
    const TPort* from = Draft.GetFrom();
    TRenderer* renderer = DragRenderer.Get();
    EndDrag();
    if (under != nullptr && under != from)
        TellWireRefusal(Scene, *from, *under);
    if (under != nullptr || place == nullptr)
        return;
    const TNodeObj* node = Scene.NodeAt(*place);
    if (node == nullptr)
        Scene.GetHost().SearchForWire(
            *renderer, *place, TWireEnd{from->GetNode()->GetToolNode(), from->GetIndex(), from->IsInput()});
    else if (node != from->GetNode())
        TellNoPort(*from, *node);
}

void TGraphCanvas::TellNoPort(const TPort& from, const TNodeObj& node)
{
    TString text;
    text.Format("%s has no %s that takes the wire",
                GetToldName(node.GetToolNode()->GetNodeType()->Name).Print(),
                from.IsInput() ? "output" : "free input");
    Scene.GetHost().TellStatus(text.Print());
}
