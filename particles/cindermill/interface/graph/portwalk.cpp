#include "particles/cindermill/interface/graph/portwalk.h"

#include "library/containers/append.h"
#include "library/wimp/gl/renderer.h"
#include "library/wimp/gl/renderwindow.h"
#include "particles/cindermill/graph/operations/deletegraphedgeop.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/interface/controls/outlines.h"
#include "particles/cindermill/interface/graph/graphscene.h"
#include "particles/cindermill/interface/graph/nodeobj.h"
#include "particles/cindermill/interface/graph/nodeorder.h"
#include "particles/cindermill/interface/graph/nodesearch.h"
#include "particles/cindermill/interface/graph/porttext.h"
#include "particles/cindermill/main/document.h"

#include <algorithm>

namespace {

// In a view that is zoomed out the ring has so many pixels.
constexpr float RingRadius = 7.5f;
constexpr float RingPixels = 5.5f;
constexpr float RingWidth = 2.0f;
constexpr float RingWidthPixels = 2.0f;

float Larger(float a, float b)
{
    return a > b ? a : b;
}

TVector2 GetPlace(const TPort& port)
{
    return port.GetNode()->GetPortPosition(port.IsInput(), port.GetIndex());
}

bool IsBefore(const TEffectEdge& a, const TEffectEdge& b)
{
    const TToolNode& first = *static_cast<const TToolNode*>(a.GetDstNode());
    const TToolNode& second = *static_cast<const TToolNode*>(b.GetDstNode());
    return &first != &second ? IsReadBefore(first, second) : a.GetDstPort() < b.GetDstPort();
}

// The wires of an output, as their other ends are read.
void ListBranches(const TEffectNode& node, int output, vector<TEffectEdge*>& edges)
{
    for (int i = 0; i < node.GetNumOutputEdges(output); ++i)
        Append(edges, node.GetOutputEdge(output, i));
    std::stable_sort(edges.begin(), edges.end(),
                     [](const TEffectEdge* a, const TEffectEdge* b) { return IsBefore(*a, *b); });
}

// The ports that a wire on its way can end at, as they are read.
void ListTargets(const TGraphScene& scene, const TEffectGraph& graph, vector<TPort*>& ports)
{
    vector<TToolNode*> nodes;
    ListAsRead(graph, nodes);
    for (const TToolNode* node : nodes) {
        TNodeObj* object = scene.FindNode(node);
        for (int side = 0; object != nullptr && side < 2; ++side)
            for (int i = 0; i < object->GetNumPorts(side == 0); ++i)
                if (object->GetPort(side == 0, i).IsMarked())
                    Append(ports, &object->GetPort(side == 0, i));
    }
}

int GetType(const TPort& port)
{
    const TNodeType& type = *port.GetNode()->GetToolNode()->GetNodeType();
    return port.IsInput() ? type.GetInputType(port.GetIndex()) : type.GetOutputType(port.GetIndex());
}

// What is most likely meant: the nearest target in the direction in which values go, behind an output and
// before an input, and of the port's own type, if there is one.
TPort* FindFirstTarget(const vector<TPort*>& targets, const TPort& from)
{
    const TToolNode& node = *from.GetNode()->GetToolNode();
    TPort* best = nullptr;
    int bestRank = -1;
    for (TPort* port : targets) {
        const bool isBefore = IsReadBefore(*port->GetNode()->GetToolNode(), node);
        const int rank = (isBefore == from.IsInput() ? 2 : 0) + (GetType(*port) == GetType(from) ? 1 : 0);
        // Of those before it the last one is the nearest.
        if (rank < bestRank || (rank == bestRank && !isBefore))
            continue;
        best = port;
        bestRank = rank;
    }
    return best;
}

// The first port of the next node that has some, or of the previous one.
int FindNextNode(const vector<TPort*>& targets, int at, int direction)
{
    const auto isSameNode = [&targets](int a, int b) {
        return targets[a]->GetNode() == targets[b]->GetNode();
    };
    int found = at;
    while (found >= 0 && found < targets.size() && isSameNode(found, at))
        found += direction;
    if (found < 0 || found >= targets.size())
        return at;
    while (found > 0 && isSameNode(found - 1, found))
        --found;
    return found;
}

// A place beside the port for the port of a new node, below what stands there.
TVector2 FindRoom(const TGraphScene& scene, const TEffectGraph& graph, const TPort& port)
{
    constexpr float Away = 60;
    constexpr float Step = 20;
    constexpr int MaxSteps = 100;
    const TVector2 room(150, 60);
    const float side = port.IsInput() ? -1.0f : 1.0f;
    TVector2 place = GetPlace(port) + TVector2(side * Away, 0);
    const auto isTaken = [&] {
        const TVector2 min = place - TVector2(port.IsInput() ? room[0] : 0, Step);
        for (int i = 0; i < graph.GetNumNodes(); ++i) {
            const TNodeObj* object = scene.FindNode(static_cast<const TToolNode*>(graph.GetNode(i)));
            if (object != nullptr && object->OverlapsBox(min, min + room))
                return true;
        }
        return false;
    };
    for (int i = 0; i < MaxSteps && isTaken(); ++i)
        place += TVector2(0, Step);
    return place;
}

} // namespace

TWireDraft& TPortWalk::GetDraft() const
{
    return Scene.GetCanvas().GetDraft();
}

// Null for a node that has no view object any more.
TPort* TPortWalk::GetPort() const
{
    TNodeObj* object = Node != nullptr ? Scene.FindNode(Node) : nullptr;
    return object != nullptr && Index < object->GetNumPorts(Input) ? &object->GetPort(Input, Index) : nullptr;
}

TPort* TPortWalk::GetMarked() const
{
    if (!IsOn())
        return nullptr;
    TPort* aim = Wiring ? GetDraft().GetAim() : nullptr;
    return aim != nullptr ? aim : GetPort();
}

bool TPortWalk::Enter(TToolNode& node, TRenderer& renderer)
{
    TNodeObj* object = Scene.FindNode(&node);
    const bool hasInputs = object != nullptr && object->GetNumPorts(true) > 0;
    if (object == nullptr || (!hasInputs && object->GetNumPorts(false) == 0))
        return false;
    EnterAt(object->GetPort(hasInputs, 0), renderer);
    return true;
}

void TPortWalk::EnterAt(TPort& port, TRenderer& renderer)
{
    Leave();
    SetFocus(this, &renderer);
    MoveTo(port);
}

void TPortWalk::MoveTo(TPort& port)
{
    TToolNode* node = port.GetNode()->GetToolNode();
    const vector<TToolNode*>& selection = Scene.GetDocument().GetSelection();
    // While another node is selected, the walk is nowhere.
    Node = nullptr;
    if (selection.empty() || selection[selection.size() - 1] != node)
        Scene.GetDocument().SelectNode(node, true);
    Node = node;
    Input = port.IsInput();
    Index = port.GetIndex();
    Show();
}

// Brings the marked port into sight and tells of it.
void TPortWalk::Show()
{
    const TPort* port = GetMarked();
    if (port == nullptr)
        return;
    TString text;
    TString name;
    if (Wiring) {
        const TPort& from = *GetDraft().GetFrom();
        TellPortName(from, name);
        text = from.IsInput() ? "Wire to " : "Wire from ";
        text += name;
        text += from.IsInput() ? " from " : " to ";
    }
    TellPortName(*port, name);
    text += name;
    text += ": ";
    TString state;
    TellPort(*port, state);
    text += state;
    Scene.GetHost().TellStatus(text.Print());
    if (GetFocusView() != nullptr)
        Scene.GetHost().PortMarked(*GetFocusView(), *port);
    Scene.GetHost().RedrawGraphs();
}

void TPortWalk::Leave()
{
    if (Node == nullptr)
        return;
    DropWire();
    Node = nullptr;
    if (GetFocus() == this)
        SetFocus(&Scene.GetRoot());
    Scene.GetHost().RedrawGraphs();
}

bool TPortWalk::DropWire()
{
    if (!Wiring)
        return false;
    Wiring = false;
    GetDraft().End();
    Scene.GetHost().RedrawGraphs();
    return true;
}

void TPortWalk::OnSelection()
{
    const vector<TToolNode*>& selection = Scene.GetDocument().GetSelection();
    if (Node != nullptr && (selection.empty() || selection[selection.size() - 1] != Node))
        Leave();
}

void TPortWalk::OnNodeGone(const TToolNode& node)
{
    DropWire();
    if (&node == Node)
        Leave();
}

bool TPortWalk::Event(const TRenderEvent& event)
{
    switch (event.Code) {
    case RE_KEY:
        return OnKey(event.Detail);
    case RE_CHARACTER:
        return IsOn() && event.Detail == ' ' && OnKey(KEY_TAB);
    case RE_FOCUSLOST:
        OnFocusLost();
        return true;
    default:
        return TRenderObject::Event(event);
    }
}

// When the window loses the keys the walk goes on where it was once they come back.
void TPortWalk::OnFocusLost()
{
    DropWire();
    if (GetFocus() != this)
        Node = nullptr;
    Scene.GetHost().RedrawGraphs();
}

bool TPortWalk::OnKey(int key)
{
    if (!IsOn() || GetPort() == nullptr || (GetKeyFlags() & (KF_CTRL | KF_ALT)) != 0)
        return false;
    // Under a drag or a step what would be changed is theirs.
    if (TWimp::Get().GetMouseDrag() != nullptr || Scene.GetDocument().IsInStep())
        return true;
    switch (key) {
    case KEY_ESCAPE:
        OnEscape();
        break;
    case KEY_RETURN:
        Press(*GetMarked());
        break;
    case KEY_TAB:
        Search();
        break;
    case KEY_DELETE:
    case KEY_BACKSPACE:
        TakeWireOff();
        break;
    default:
        if (Wiring)
            WalkTargets(key);
        else
            WalkPorts(key);
        break;
    }
    return true;
}

void TPortWalk::OnEscape()
{
    if (DropWire())
        Show();
    else
        Leave();
}

void TPortWalk::WalkPorts(int key)
{
    const int count = GetPort()->GetNode()->GetNumPorts(Input);
    switch (key) {
    case KEY_UP:
        WalkSide(Index - 1);
        break;
    case KEY_DOWN:
        WalkSide(Index + 1);
        break;
    case KEY_HOME:
        WalkSide(0);
        break;
    case KEY_END:
        WalkSide(count - 1);
        break;
    case KEY_LEFT:
    case KEY_RIGHT:
        WalkAcross(key == KEY_LEFT);
        break;
    case KEY_PAGEUP:
    case KEY_PAGEDOWN:
        WalkBranches(key == KEY_PAGEUP ? -1 : 1);
        break;
    default:
        break;
    }
}

void TPortWalk::WalkSide(int index)
{
    TNodeObj* object = GetPort()->GetNode();
    if (index >= 0 && index < object->GetNumPorts(Input))
        MoveTo(object->GetPort(Input, index));
}

// To the node's other side, and from there on along the wire.
void TPortWalk::WalkAcross(bool toInputs)
{
    TNodeObj* object = GetPort()->GetNode();
    if (Input != toInputs) {
        const int last = object->GetNumPorts(toInputs) - 1;
        if (last >= 0)
            MoveTo(object->GetPort(toInputs, Index < last ? Index : last));
        return;
    }
    vector<TEffectEdge*> edges;
    if (Input && Node->GetInput(Index) != nullptr)
        Append(edges, Node->GetInput(Index));
    else if (!Input)
        ListBranches(*Node, Index, edges);
    if (edges.empty()) {
        Show();
        return;
    }
    const TEffectEdge& edge = *edges[0];
    TNodeObj* other = Scene.FindNode(static_cast<TToolNode*>(Input ? edge.GetSrcNode() : edge.GetDstNode()));
    if (other != nullptr)
        MoveTo(other->GetPort(!Input, Input ? edge.GetSrcPort() : edge.GetDstPort()));
}

// To the other inputs that have their values from where this one has its.
void TPortWalk::WalkBranches(int direction)
{
    TEffectEdge* own = Input ? Node->GetInput(Index) : nullptr;
    if (own == nullptr)
        return;
    vector<TEffectEdge*> edges;
    ListBranches(*own->GetSrcNode(), own->GetSrcPort(), edges);
    const int at = edges.index_of(own) + direction;
    if (at < 0 || at >= edges.size())
        return;
    if (TNodeObj* other = Scene.FindNode(static_cast<TToolNode*>(edges[at]->GetDstNode())))
        MoveTo(other->GetPort(true, edges[at]->GetDstPort()));
}

void TPortWalk::WalkTargets(int key)
{
    vector<TPort*> targets;
    ListTargets(Scene, *Scene.GetDocument().GetGraph(), targets);
    const int last = targets.size() - 1;
    int at = targets.index_of(GetDraft().GetAim());
    if (at == -1)
        return;
    if (key == KEY_UP || key == KEY_DOWN)
        at += key == KEY_UP ? -1 : 1;
    else if (key == KEY_LEFT || key == KEY_RIGHT)
        at = FindNextNode(targets, at, key == KEY_LEFT ? -1 : 1);
    else if (key == KEY_HOME || key == KEY_END)
        at = key == KEY_HOME ? 0 : last;
    if (at >= 0 && at <= last)
        AimAt(targets[at]);
}

void TPortWalk::Press(TPort& port)
{
    if (!IsOn())
        return;
    if (!Wiring) {
        BeginWire(port);
    } else if (port.IsMarked()) {
        AimAt(&port);
        FinishWire();
    } else {
        TellWireRefusal(Scene, *GetDraft().GetFrom(), port);
    }
}

void TPortWalk::BeginWire(TPort& port)
{
    if (&port != GetPort())
        MoveTo(port);
    GetDraft().Begin(port);
    vector<TPort*> targets;
    ListTargets(Scene, *Scene.GetDocument().GetGraph(), targets);
    // The end of a wire that is taken up begins where it was.
    TPort* first = port.IsMarked() ? &port : FindFirstTarget(targets, port);
    if (first == nullptr) {
        GetDraft().End();
        Scene.GetHost().TellStatus("No port here can take the wire; Space searches for a node that can");
        Scene.GetHost().RedrawGraphs();
        return;
    }
    Wiring = true;
    AimAt(first);
}

void TPortWalk::AimAt(TPort* port)
{
    GetDraft().Aim(GetPlace(*port), port);
    Show();
}

// The walk stays where the wire was taken up.
void TPortWalk::FinishWire()
{
    const TWireEnds ends = GetDraft().GetEnds();
    DropWire();
    ConnectPorts(Scene.GetDocument(), ends);
    Show();
}

void TPortWalk::TakeWireOff()
{
    DropWire();
    TEffectEdge* edge = Input ? Node->GetInput(Index) : nullptr;
    if (edge == nullptr) {
        Scene.GetHost().TellStatus(Input ? "Nothing is wired to this input"
                                         : "A wire is taken off at the input where it ends");
        return;
    }
    Scene.GetDocument().ApplyOperation(new TDeleteGraphEdgeOp(static_cast<TToolEdge*>(edge)));
    Show();
}

void TPortWalk::Search()
{
    if (GetFocusView() == nullptr)
        return;
    DropWire();
    const TVector2 place = FindRoom(Scene, *Scene.GetDocument().GetGraph(), *GetPort());
    Scene.GetHost().SearchForWire(*GetFocusView(), place, TWireEnd{Node, Index, Input});
}

// Light around blue: it stands out from nodes, wires and paper.
void TPortWalk::Render(TRenderer& renderer)
{
    const TPort* port = GetMarked();
    const TRenderWindow* window = renderer.GetWindow();
    if (port == nullptr || GetFocusView() != &renderer || window == nullptr || !window->HasFocus())
        return;
    const float zoom = renderer.GetScale()[0];
    const float width = Larger(RingWidth, RingWidthPixels / zoom);
    const TVector4 colours[] = {TVector4(1, 1, 1, 1), TVector4(0.10f, 0.42f, 0.90f, 1)};
    MakeCircle(Ring, Larger(RingRadius, RingPixels / zoom));
    for (int i = 0; i < 2; ++i) {
        Ring.SetWidth(i == 0 ? width * 2 : width);
        Ring.SetStrokeColour(colours[i]);
        Ring.Render(renderer, GetPlace(*port));
    }
}

void TPortWalk::GetBounds(TVector2& min, TVector2& max)
{
    const TPort* port = GetMarked();
    const TVector2 middle = port != nullptr ? GetPlace(*port) : TVector2(0, 0);
    const TVector2 half(RingRadius + RingWidth, RingRadius + RingWidth);
    min = middle - half;
    max = middle + half;
}

TRenderObject* TPortWalk::HitTest(const TVector2& point)
{
    (void)point;
    return nullptr;
}
