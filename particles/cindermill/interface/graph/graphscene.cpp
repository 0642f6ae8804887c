#include "particles/cindermill/interface/graph/graphscene.h"

#include "library/maths/scalar.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/interface/controls/controldrag.h"
#include "particles/cindermill/interface/graph/nodelayout.h"
#include "particles/cindermill/interface/graph/nodeobj.h"
#include "particles/cindermill/main/document.h"

bool TGraphRoot::Event(const TRenderEvent& event)
{
    if (event.Code == RE_KEY && event.Source == this)
        return Scene.GetCanvas().OnKey(event.Detail);
    return TRenderObjects::Event(event);
}

TRenderer* TGraphRoot::FindView() const
{
    return Scene.GetHost().GetView();
}

TGraphScene::TGraphScene(TDocument& document, TGraphSceneHost& host)
    : Document(document), Host(host), RenderRoot(*this), Grid(*this), HelpText(RenderRoot), WireAim(*this),
      PortWalk(*this)
{
    RenderRoot.AddObject(&Background);
    RenderRoot.AddObject(&Grid);
    PortWalk.SetParent(&Grid);
    Document.SetListener(this);
}

TGraphScene::~TGraphScene()
{
    Document.SetListener(nullptr);
    CancelDrags();
    PortWalk.Leave();
    for (auto& entry : Edges)
        delete entry.second;
    for (auto& entry : Nodes)
        delete entry.second;
}

TNodeObj* TGraphScene::GetNode(TEffectNode* node)
{
    TToolNode* toolNode = static_cast<TToolNode*>(node);
    TNodeObj*& object = Nodes[toolNode];
    if (object == nullptr) {
        object = new TNodeObj(*this);
        object->Build(toolNode);
    }
    return object;
}

TToolEdgeRenderer* TGraphScene::GetEdge(TToolEdge* edge)
{
    TToolEdgeRenderer*& renderer = Edges[edge];
    if (renderer == nullptr)
        renderer = new TToolEdgeRenderer(*this);
    return renderer;
}

TNodeObj* TGraphScene::FindNode(const TToolNode* node) const
{
    auto it = Nodes.find(node);
    return it != Nodes.end() && it->second->GetParent() == &Grid ? it->second : nullptr;
}

TToolEdgeRenderer* TGraphScene::FindEdge(const TToolEdge* edge) const
{
    auto it = Edges.find(edge);
    return it != Edges.end() && it->second->GetParent() == &Grid ? it->second : nullptr;
}

void TGraphScene::PointAt(const TToolNode* node)
{
    if (node == PointedAt)
        return;
    PointedAt = node;
    Host.RedrawGraphs();
}

TNodeObj* TGraphScene::NodeAt(const TVector2& point)
{
    for (TRenderObject* object = Grid.HitTest(point); object != nullptr; object = object->GetParent())
        if (object->GetClassId() == TNodeObj::NameID())
            return static_cast<TNodeObj*>(object);
    return nullptr;
}

void TGraphScene::NodeAdded(TToolNode* node)
{
    Host.RedrawGraphs();
    EndGesture();
    TNodeObj* object = GetNode(node);
    if (object->GetParent() == &Grid)
        return;
    Grid.AddObject(object);
    object->Relayout();
    object->RefreshControls();
}

void TGraphScene::NodeRemoved(TToolNode* node)
{
    if (node == PointedAt)
        PointedAt = nullptr;
    Host.RedrawGraphs();
    Host.NodeLeft(*node);
    CancelDrags();
    PortWalk.OnNodeGone(*node);
    HelpText.Hide();
    TNodeObj* object = FindNode(node);
    if (object == nullptr)
        return;
    Grid.RemoveObject(object);
    TRenderObject::RemoveTick(object);
}

void TGraphScene::EdgeAdded(TToolEdge* edge)
{
    Host.RedrawGraphs();
    EndGesture();
    TToolEdgeRenderer* renderer = GetEdge(edge);
    renderer->Layout(edge);
    if (Grid.HasObject(renderer))
        return;
    Grid.AddObject(renderer);
    Grid.MoveToBack(renderer);
}

void TGraphScene::EdgeRemoved(TToolEdge* edge)
{
    Host.RedrawGraphs();
    EndGesture();
    WireAim.Forget(edge);
    TToolEdgeRenderer* renderer = FindEdge(edge);
    if (renderer != nullptr)
        Grid.RemoveObject(renderer);
}

void TGraphScene::EdgeMoved(TToolEdge* edge)
{
    Host.RedrawGraphs();
    GetEdge(edge)->Layout(edge);
}

void TGraphScene::EdgeDetached(TToolEdge* edge)
{
    Host.RedrawGraphs();
    EndGesture();
    GetEdge(edge)->Unhook();
}

void TGraphScene::NodeChanged(TToolNode* node)
{
    Host.RedrawGraphs();
    TNodeObj* object = FindNode(node);
    if (object != nullptr)
        object->Refresh();
    PortWalk.OnSelection();
}

void TGraphScene::NodeTypeChanged(TToolNode* node)
{
    Host.RedrawGraphs();
    TNodeObj* object = FindNode(node);
    if (object != nullptr)
        object->Relayout();
}

// Edges that are on their way in or out of the graph are left alone.
void TGraphScene::LayoutEdges(TToolNode* node)
{
    auto layout = [this](TEffectEdge* edge) {
        TToolEdge* toolEdge = static_cast<TToolEdge*>(edge);
        TToolEdgeRenderer* renderer = FindEdge(toolEdge);
        if (renderer != nullptr)
            renderer->Layout(toolEdge);
    };
    for (int i = 0; i < node->GetNumInputs(); ++i)
        if (node->GetInput(i) != nullptr)
            layout(node->GetInput(i));
    for (int i = 0; i < node->GetNumOutputs(); ++i)
        for (int n = 0; n < node->GetNumOutputEdges(i); ++n)
            layout(node->GetOutputEdge(i, n));
}

// Polytypes and what follows them may have another type than before.
void TGraphScene::GraphChanged()
{
    PortWalk.DropWire();
    RefreshControls();
}

void TGraphScene::RefreshControls()
{
    for (auto& entry : Nodes)
        if (entry.second->GetParent() == &Grid)
            entry.second->RefreshControls();
}

void TGraphScene::ShowProblems(const TDocumentProblems& problems)
{
    for (auto& entry : Nodes) {
        TString text;
        problems.GetText(entry.first, text);
        entry.second->SetProblem(text);
    }
    Host.RedrawGraphs();
}

// What the mouse or the keys do on the canvas stands on the graph as it was.
void TGraphScene::EndGesture()
{
    Grid.CancelDrag();
    PortWalk.DropWire();
}

bool TGraphScene::CancelDrags()
{
    const bool isDragging = Grid.IsDragging() || PortWalk.IsWiring();
    EndGesture();
    TControlDrag* drag = dynamic_cast<TControlDrag*>(TWimp::Get().GetMouseDrag());
    if (drag == nullptr || !drag->GetObject().IsIn(RenderRoot))
        return isDragging;
    drag->Cancel();
    return true;
}

// By the type alone: the node may be too new to have a view object.
void TGraphScene::GetNodeHalfSize(TToolNode* node, int& x, int& y)
{
    const TVector2 size = MeasureNode(*node->GetNodeType());
    x = FloatToInt(size[0] * 0.5);
    y = FloatToInt(size[1] * 0.5);
}

void TGraphScene::NodeGoes(TToolNode* node)
{
    NodeRemoved(node);
    auto it = Nodes.find(node);
    if (it == Nodes.end())
        return;
    for (auto& entry : Edges)
        if (entry.second->GetOutputNode() == it->second || entry.second->GetInputNode() == it->second)
            entry.second->Unhook();
    delete it->second;
    Nodes.erase(it);
}

void TGraphScene::EdgeGoes(TToolEdge* edge)
{
    EdgeRemoved(edge);
    auto it = Edges.find(edge);
    if (it == Edges.end())
        return;
    delete it->second;
    Edges.erase(it);
}
