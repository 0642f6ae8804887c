#include "particles/cindermill/interface/graph/nodeobj.h"

#include "library/containers/classregistry.h"
#include "library/wimp/gl/renderer.h"
#include "particles/cindermill/graph/operations/bypassflagop.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/interface/controls/nodeparametercontrols.h"
#include "particles/cindermill/interface/graph/graphscene.h"
#include "particles/cindermill/interface/graph/wiring.h"
#include "particles/cindermill/main/document.h"

namespace {

// What is drawn beyond the panel: ports, shadow, the glow of a selected node.
constexpr float DrawnMargin = 8.0f;
// How far beside the panel the row of a port still counts as the port when a drag ends.
constexpr float DropMargin = 12.0f;
constexpr float DropDepth = 36.0f;

// Whether an edge may run between the two when the other edge, if there is one, is away. One that stands at
// the input already is replaced.
bool CanTake(const TPort& from, const TPort& to, const TToolEdge* away)
{
    if (from.IsInput() == to.IsInput() || from.GetNode() == to.GetNode())
        return false;
    const TPort& output = from.IsInput() ? to : from;
    const TPort& input = from.IsInput() ? from : to;
    TToolNode* source = output.GetNode()->GetToolNode();
    TToolNode* destination = input.GetNode()->GetToolNode();
    const TEffectEdge* there = destination->GetInput(input.GetIndex());
    if (there != nullptr && there != away && there->GetSrcNode() == source &&
        there->GetSrcPort() == output.GetIndex())
        return false;
    return CanReplaceWire(source, output.GetIndex(), destination, input.GetIndex(), away);
}

} // namespace

TNodeObj::TNodeObj(TGraphScene& scene) : Scene(scene)
{
    Body.SetParent(this);
    Expanded.SetParent(this);
    Bypass.SetParent(this);
    Bypass.SetOrigin(TVector2(NodeBoxLeft, NodeBoxTop));
}

void TNodeObj::Build(TToolNode* toolNode)
{
    ToolNode = toolNode;
    WishedSize = TVector2(0, 0);
    MousePressed = false;
    Collapsed = true;
    Selected = false;
    PanelBuilt = false;
    Expanded.DeleteControls();
    BuildPorts();
    BuildPanels();
    Refresh();
    SetSelected(ToolNode->IsSelected());
}

void TNodeObj::BuildPorts()
{
    InPorts.clear();
    OutPorts.clear();
    const TNodeType& type = *ToolNode->GetNodeType();
    for (int i = 0; i < type.GetNumInputs(); ++i)
        InPorts.push_back(new TPort(this, i, true, type.GetInput(i)->Name));
    for (int i = 0; i < type.GetNumOutputs(); ++i)
        OutPorts.push_back(new TPort(this, i, false, type.GetOutput(i).Name));
    for (TPort* port : InPorts)
        port->SetParent(this);
    for (TPort* port : OutPorts)
        port->SetParent(this);
}

void TNodeObj::LayoutPorts()
{
    const float width = GetSize()[0];
    for (TPort* port : InPorts)
        port->SetOrigin(GetPortOffset(true, port->GetIndex(), width));
    for (TPort* port : OutPorts)
        port->SetOrigin(GetPortOffset(false, port->GetIndex(), width));
}

void TNodeObj::BuildPanels()
{
    const TNodeType& type = *ToolNode->GetNodeType();
    TVector2 size = MeasureNode(type);
    for (int i = 0; i < 2; ++i)
        if (WishedSize[i] > size[i])
            size[i] = WishedSize[i];
    Body.Build(type, size);
    if (PanelBuilt)
        Expanded.Build(type, size);
    LayoutPorts();
    TouchBounds();
}

// True if other controls are to be seen than before.
bool TNodeObj::UpdateConnections()
{
    for (TPort* port : InPorts)
        port->SetConnected(ToolNode->GetInput(port->GetIndex()) != nullptr);
    for (TPort* port : OutPorts)
        port->SetConnected(ToolNode->GetNumOutputEdges(port->GetIndex()) > 0);
    bool changed = false;
    for (int i = 0; i < Expanded.GetNumControls(); ++i) {
        const int port = Expanded.GetControlsPort(i);
        if (port != -1 && Expanded.ShowControls(i, ToolNode->GetInput(port) == nullptr))
            changed = true;
    }
    if (!Collapsed && !CanOpen())
        SetOpen(false);
    return changed;
}

void TNodeObj::UpdateBypass()
{
    const bool bypassed = CanBypass() && ToolNode->GetNodeType()->IsBypassed();
    Bypass.SetBypassed(bypassed);
    Body.GetPanel().SetBypassed(bypassed);
    Expanded.GetPanel().SetBypassed(bypassed);
}

void TNodeObj::Refresh()
{
    SetOrigin(TVector2(static_cast<float>(ToolNode->GetX()), static_cast<float>(ToolNode->GetY())));
    if (UpdateConnections())
        BuildPanels();
    Body.GetPanel().SetOpenable(CanOpen());
    UpdateBypass();
    LayoutEdges();
}

void TNodeObj::Relayout()
{
    BuildPanels();
    Refresh();
}

bool TNodeObj::CanOpen() const
{
    if (PanelBuilt)
        return Expanded.HasVisibleControls();
    const TNodeType& type = *ToolNode->GetNodeType();
    bool hasFreeInput = false;
    for (int i = 0; i < type.GetNumInputs(); ++i)
        hasFreeInput = hasFreeInput || ToolNode->GetInput(i) == nullptr;
    return hasFreeInput || type.GetNumParameters() > 0;
}

// The type's parameters stand first, then its input ports.
void TNodeObj::BuildControls()
{
    if (PanelBuilt)
        return;
    PanelBuilt = true;
    const TNodeType& type = *ToolNode->GetNodeType();
    for (int i = 0; i < type.GetNumParameters(); ++i)
        AddControls(*type.GetParameter(i), -1);
    for (int i = 0; i < type.GetNumInputs(); ++i)
        AddControls(*type.GetInput(i), i);
    Relayout();
}

void TNodeObj::AddControls(TNodeParameter& parameter, int inputPort)
{
    TNodeParameterControls* controls =
        CreateParameterControls(Scene.GetDocument(), *ToolNode, parameter, Scene.GetHost());
    if (controls != nullptr)
        Expanded.AddControls(controls, inputPort);
}

void TNodeObj::RefreshControls()
{
    for (int i = 0; i < Expanded.GetNumControls(); ++i)
        Expanded.GetControls(i).Refresh();
}

void TNodeObj::LayoutEdges()
{
    Scene.LayoutEdges(ToolNode);
}

bool TNodeObj::IsSelected() const
{
    return ToolNode->IsSelected();
}

void TNodeObj::SetSelected(bool selected)
{
    Selected = selected;
    const int state = Selected ? VS_SELECTED : VS_NORMAL;
    Body.SetVisualState(state);
    Expanded.SetVisualState(state);
}

void TNodeObj::SetOpen(bool open)
{
    Collapsed = !open;
    if (Collapsed)
        Expanded.LoseInput();
    TouchBounds();
    AddTick(this);
}

// Opened or closed, by whatever: the ports have moved, and the edges follow.
void TNodeObj::Tick(TRenderer* renderer)
{
    (void)renderer;
    RemoveTick(this);
    LayoutPorts();
    LayoutEdges();
    SendToParent(RE_REDRAW, TVector2(0, 0), 0);
}

void TNodeObj::Render(TRenderer& renderer)
{
    if (Selected != ToolNode->IsSelected())
        SetSelected(ToolNode->IsSelected());
    auto draw = [&renderer](TRenderObject& object) {
        renderer.PushOrigin(object.GetOrigin());
        object.Render(renderer);
        renderer.PopOrigin();
    };
    draw(Collapsed ? static_cast<TRenderObject&>(Body) : static_cast<TRenderObject&>(Expanded));
    if (CanBypass())
        draw(Bypass);
    for (TPort* port : InPorts)
        draw(*port);
    for (TPort* port : OutPorts)
        draw(*port);
    if (!Problem.IsEmpty())
        Mark.Render(renderer, GetSize());
    if (Scene.GetPointedAt() == ToolNode)
        TNodeMark::RenderPointer(renderer, GetSize());
}

void TNodeObj::SetProblem(const TString& text)
{
    Problem = text;
    TouchBounds();
}

TVector2 TNodeObj::GetSize() const
{
    return Collapsed ? Body.GetSize() : Expanded.GetSize();
}

void TNodeObj::GetBounds(TVector2& min, TVector2& max)
{
    const float margin = Problem.IsEmpty() ? DrawnMargin : TNodeMark::Margin;
    min = TVector2(-margin, -margin);
    max = GetSize() + TVector2(margin, margin);
}

void TNodeObj::GetRectangle(TVector2& min, TVector2& max) const
{
    min = GetOrigin();
    max = min + GetSize();
}

bool TNodeObj::OverlapsBox(const TVector2& min, const TVector2& max) const
{
    TVector2 low;
    TVector2 high;
    GetRectangle(low, high);
    return low[0] <= max[0] && high[0] >= min[0] && low[1] <= max[1] && high[1] >= min[1];
}

// Whatever an open panel has below its ports stays as high as it is.
void TNodeObj::Resize(const TVector2& size)
{
    SetWishedSize(TVector2(size[0], size[1] - (GetSize()[1] - Body.GetSize()[1])));
}

void TNodeObj::SetWishedSize(const TVector2& size)
{
    WishedSize = size;
    BuildPanels();
    LayoutEdges();
}

bool TNodeObj::IsInside(const TVector2& point) const
{
    const TVector2 size = GetSize();
    return point[0] >= 0 && point[1] >= 0 && point[0] < size[0] && point[1] < size[1];
}

TRenderObject* TNodeObj::HitTest(const TVector2& point)
{
    const TVector2 inside = point - Origin;
    if (!Collapsed)
        if (TRenderObject* hit = Expanded.HitTest(inside))
            return hit;
    const bool onMark = !Problem.IsEmpty() && TNodeMark::HitsBadge(inside, GetSize());
    return IsInside(inside) || onMark || FindPort(inside) != nullptr ? this : nullptr;
}

TPort* TNodeObj::FindPort(const TVector2& point)
{
    for (TPort* port : InPorts)
        if (port->HitTest(point) != nullptr)
            return port;
    for (TPort* port : OutPorts)
        if (port->HitTest(point) != nullptr)
            return port;
    return nullptr;
}

TPort* TNodeObj::FindDropPort(const TVector2& point)
{
    if (TPort* port = FindPort(point))
        return port;
    const float width = GetSize()[0];
    auto inRow = [&point](const TPort& port) {
        const float row = GetPortRow(port.GetIndex());
        return point[1] >= row - NodeRowHeight * 0.5f && point[1] < row + NodeRowHeight * 0.5f;
    };
    for (TPort* port : InPorts)
        if (inRow(*port) && point[0] >= -DropMargin && point[0] < DropDepth && point[0] < width * 0.5f)
            return port;
    for (TPort* port : OutPorts)
        if (inRow(*port) && point[0] < width + DropMargin && point[0] >= width - DropDepth &&
            point[0] >= width * 0.5f)
            return port;
    return nullptr;
}

static int GetPortType(const TPort& port)
{
    const TNodeType& type = *port.GetNode()->GetToolNode()->GetNodeType();
    return port.IsInput() ? type.GetInputType(port.GetIndex()) : type.GetOutputType(port.GetIndex());
}

TPort* TNodeObj::FindMeantPort(const TPort& from)
{
    TPort* best = nullptr;
    int bestRank = 0;
    for (TPort* port : from.IsInput() ? OutPorts : InPorts) {
        if (!port->IsMarked() || (port->IsInput() && ToolNode->GetInput(port->GetIndex()) != nullptr))
            continue;
        const int rank = port->GetLabel().Compare(from.GetLabel()) == 0 ? 3
                         : GetPortType(*port) == GetPortType(from)      ? 2
                                                                        : 1;
        if (rank > bestRank)
            best = port;
        bestRank = rank > bestRank ? rank : bestRank;
    }
    return best;
}

TVector2 TNodeObj::GetPortPosition(bool input, int index) const
{
    return Origin + GetPortOffset(input, index, GetSize()[0]);
}

void TNodeObj::MarkPorts(const TPort& port, bool on, const TToolEdge* away)
{
    for (TPort* own : InPorts)
        own->SetMarked(on && CanTake(port, *own, away));
    for (TPort* own : OutPorts)
        own->SetMarked(on && CanTake(port, *own, away));
}

bool TNodeObj::CanBypass() const
{
    return ToolNode->GetNodeType()->HasFlag(FL_BYPASSABLE);
}

bool TNodeObj::HitsButton(const TVector2& point, const TRenderer* view) const
{
    return Collapsed ? Body.GetRegion(point) == NR_BUTTON : Expanded.HitsButton(point, view);
}

bool TNodeObj::SendToParent(int code, const TVector2& point, int detail)
{
    return TellParent(code, detail, point);
}

bool TNodeObj::Event(const TRenderEvent& event)
{
    // Out of the graph: undone, or deleted.
    if (Parent == nullptr)
        return false;
    if (event.Source != this && event.Code < RE_REDRAW)
        return OnControlsEvent(event);
    if (event.Code < RE_REDRAW && event.Code != RE_HOVER && Scene.GetHelp().Hide())
        SendToParent(RE_REDRAW, event.Point, 0);
    switch (event.Code) {
    case RE_LEFTDOWN:
        return OnLeftDown(event.Point);
    case RE_HOVER:
        OnHover(event.Point);
        return true;
    case RE_NODEREFRESH:
    case RE_RELAYOUT:
        Relayout();
        return SendToParent(RE_REDRAW, event.Point, 0);
    default:
        return TRenderObjects::Event(event);
    }
}

// What a control leaves. A press there is one on the node's body.
bool TNodeObj::OnControlsEvent(const TRenderEvent& event)
{
    if (event.Code != RE_LEFTDOWN)
        return TRenderObjects::Event(event);
    Scene.GetHelp().Hide();
    SetFocus(this, GetRenderer());
    return SendToParent(RE_NODEDRAG, GetPointer() - GetAbsolutePosition(), 0);
}

bool TNodeObj::OnLeftDown(const TVector2& point)
{
    SetFocus(this, GetRenderer());
    if (CanBypass() && Bypass.HitTest(point) != nullptr) {
        ToggleBypass();
        return true;
    }
    // Ports stand half in the panel.
    if (TPort* port = FindPort(point))
        return SendToParent(RE_PORTDRAG, point,
                            port->IsInput() ? port->GetIndex() : GetNumPorts(true) + port->GetIndex());
    if (HitsButton(point, GetRenderer())) {
        Scene.GetCanvas().BeginPress(*this);
        return true;
    }
    const bool grip = Collapsed ? Body.GetRegion(point) == NR_GRIP : Expanded.GetRegion(point) == XR_GRIP;
    if (grip) {
        Scene.GetCanvas().BeginResize(*this, point - GetSize());
        return true;
    }
    return IsInside(point) && SendToParent(RE_NODEDRAG, point, 0);
}

void TNodeObj::ToggleBypass()
{
    const bool set = !ToolNode->GetNodeType()->IsBypassed();
    Scene.GetDocument().ApplyOperation(new TBypassFlagOp(ToolNode, set));
}

// The button comes up while the pointer is beside it, and goes down again when it comes back.
void TNodeObj::FollowPress(const TVector2& point, const TRenderer* view)
{
    ShowPressed(HitsButton(point, view));
}

void TNodeObj::FinishPress(const TVector2& point, const TRenderer* view)
{
    ReleaseButton();
    // The view stands still under the mouse.
    if (HitsButton(point, view))
        ToggleOpen();
}

void TNodeObj::ToggleOpen(const TRenderer* view)
{
    if (Collapsed && CanOpen())
        BuildControls();
    if (Collapsed && !CanOpen()) {
        Scene.GetHost().Warn();
        return;
    }
    SetOpen(Collapsed);
    LayoutPorts();
    Scene.GetCanvas().MoveToFront(this);
    SendToParent(RE_REDRAW, TVector2(0, 0), 0);
    if (!Collapsed && view != nullptr)
        Scene.GetHost().NodeOpened(*view, *this);
}

void TNodeObj::ReleaseButton()
{
    ShowPressed(false);
}

void TNodeObj::ShowPressed(bool pressed)
{
    if (MousePressed == pressed)
        return;
    MousePressed = pressed;
    Body.SetVisualState(pressed ? VS_PRESSED : VS_RELEASED);
    Expanded.SetVisualState(pressed ? VS_PRESSED : VS_RELEASED);
    SendToParent(RE_REDRAW, TVector2(0, 0), 0);
}

void TNodeObj::OnHover(const TVector2& point)
{
    if (Scene.GetCanvas().IsDragging() || TWimp::Get().GetMouseDrag() != nullptr)
        return;
    const TNodeType& type = *ToolNode->GetNodeType();
    TString text;
    TVector2 place = point;
    if (CanBypass() && Bypass.HitTest(point) != nullptr) {
        text = "Node bypass flag. Set to bypassed to ignore this node. Currently ";
        text += type.IsBypassed() ? "bypassed." : "not bypassed.";
        place = Bypass.GetOrigin() + TVector2(5, 5);
    } else if (const TPort* port = FindPort(point)) {
        const TString& description = port->IsInput() ? type.GetInput(port->GetIndex())->Description
                                                     : type.GetOutput(port->GetIndex()).Description;
        text = port->GetLabel();
        if (!description.IsEmpty()) {
            text += ": ";
            text += description;
        }
    } else if (HitsButton(point, GetRenderer())) {
        text = Collapsed ? "Click to show node properties" : "Click to hide node properties";
    } else {
        text = Problem;
    }
    if (text.IsEmpty())
        return;
    Scene.GetHelp().Show(text, GetAbsolutePosition() + place);
    SendToParent(RE_REDRAW, point, 0);
}
