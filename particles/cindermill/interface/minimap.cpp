#include "particles/cindermill/interface/minimap.h"

#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/interface/documentwindows.h"
#include "particles/cindermill/interface/docwindow.h"
#include "particles/cindermill/interface/graph/nodecolour.h"
#include "particles/cindermill/interface/graph/nodeobj.h"
#include "particles/cindermill/main/document.h"

namespace {

constexpr int Width = 200;
constexpr int Height = 140;
// From the view's corner, and within the map around the graph.
constexpr int Distance = 10;
constexpr float Space = 8;
constexpr TGDIColour Paper = 0xFBFBF4;
constexpr TGDIColour Edge = 0x8A9097;
// One of the two stands out from whatever lies below.
constexpr TGDIColour ViewEdge = 0x14326E;
constexpr TGDIColour ViewHalo = 0xFFFFFF;
constexpr TGDIColour SelectedColour = 0xE06A00;
constexpr TGDIColour PointerColour = 0x1454DB;
constexpr TGDIColour ProblemColour = 0xC62828;

TWindowClass& GetWindowClass()
{
    static TWindowClass windowClass("cindermill_minimap", 0, Paper);
    return windowClass;
}

void Extend(TVector2& min, TVector2& max, const TVector2& low, const TVector2& high)
{
    for (int i = 0; i < 2; ++i) {
        min[i] = low[i] < min[i] ? low[i] : min[i];
        max[i] = high[i] > max[i] ? high[i] : max[i];
    }
}

} // namespace

void TMinimap::Toggle(TDocWindow& docWindow)
{
    DocWindow = &docWindow;
    if (IsShown()) {
        Hide();
        return;
    }
    TWindowParams params;
    params.Class = &GetWindowClass();
    params.Owner = &Graph;
    if (GetHandle() == nullptr && !Create(params))
        return;
    Place();
    Show();
    BringToTop();
}

void TMinimap::Place()
{
    if (GetHandle() == nullptr)
        return;
    int width = 0;
    int height = 0;
    Graph.GetSize(width, height);
    MoveTo(width - Width - Distance, height - Height - Distance, Width, Height);
}

void TMinimap::GetView(TVector2& min, TVector2& max) const
{
    int width = 0;
    int height = 0;
    Graph.GetSize(width, height);
    min = Graph.PixelToWorld(0, 0);
    max = Graph.PixelToWorld(width, height);
}

// All nodes, and the view.
TMinimap::TMapping TMinimap::FindMapping() const
{
    TVector2 min;
    TVector2 max;
    GetView(min, max);
    const TEffectGraph& graph = *DocWindow->GetDocument().GetGraph();
    for (int i = 0; i < graph.GetNumNodes(); ++i) {
        const TNodeObj* object =
            DocWindow->GetWindows().GetScene().FindNode(static_cast<const TToolNode*>(graph.GetNode(i)));
        if (object == nullptr)
            continue;
        TVector2 low;
        TVector2 high;
        object->GetRectangle(low, high);
        Extend(min, max, low, high);
    }
    TMapping mapping;
    const float across = (Width - 2 * Space) / (max[0] - min[0]);
    const float down = (Height - 2 * Space) / (max[1] - min[1]);
    mapping.Scale = across < down ? across : down;
    mapping.Corner = min;
    mapping.Inset = (TVector2(Width, Height) - (max - min) * mapping.Scale) * 0.5f;
    return mapping;
}

TVector2 TMinimap::ToMap(const TVector2& point) const
{
    return (point - Mapping.Corner) * Mapping.Scale + Mapping.Inset;
}

bool TMinimap::OnMessage(const TMessage& message)
{
    switch (message.Type) {
    case MT_PAINT:
        Paint(*message.Context);
        return true;
    case MT_LEFTDOWN:
        if (!IsDragging)
            Mapping = FindMapping();
        IsDragging = true;
        MoveView(message);
        return true;
    case MT_MOUSEMOVE:
        if (IsDragging)
            MoveView(message);
        return true;
    case MT_LEFTUP:
        IsDragging = false;
        Redraw();
        return true;
    case MT_RIGHTDOWN:
    case MT_RIGHTUP:
    case MT_MIDDLEDOWN:
        return true;
    default:
        return false;
    }
}

void TMinimap::MoveView(const TMessage& message)
{
    if ((message.Buttons & MB_LEFT) == 0) {
        IsDragging = false;
        return;
    }
    const TVector2 place(static_cast<float>(message.X), static_cast<float>(message.Y));
    const TVector2 centre = (place - Mapping.Inset) * (1.0f / Mapping.Scale) + Mapping.Corner;
    int width = 0;
    int height = 0;
    Graph.GetSize(width, height);
    TGraphView view = Graph.GetView();
    view.SetCentre(centre, view.GetScale(), width, height);
    Graph.StopFocus();
    Graph.SetView(view);
}

void TMinimap::PaintBox(TGDIContext& context, const TVector2& min, const TVector2& max, int grown) const
{
    const int least = 3 - 2 * grown;
    const TVector2 low = ToMap(min);
    const TVector2 high = ToMap(max);
    int edges[4];
    for (int i = 0; i < 2; ++i) {
        edges[i] = static_cast<int>(low[i]);
        edges[i + 2] = static_cast<int>(high[i] + 0.5f);
        edges[i + 2] = edges[i + 2] < edges[i] + least ? edges[i] + least : edges[i + 2];
    }
    context.Rectangle(edges[0] - grown, edges[1] - grown, edges[2] + grown, edges[3] + grown);
}

void TMinimap::Paint(TGDIContext& context)
{
    if (!IsDragging)
        Mapping = FindMapping();
    context.SetPen(Edge);
    context.SetBrush(Paper);
    context.Rectangle(0, 0, Width, Height);
    context.SetClip(1, 1, Width - 1, Height - 1);
    const TEffectGraph& graph = *DocWindow->GetDocument().GetGraph();
    context.SetNoPen();
    for (int i = 0; i < graph.GetNumNodes(); ++i) {
        const TToolNode* node = static_cast<const TToolNode*>(graph.GetNode(i));
        const TNodeObj* object = DocWindow->GetWindows().GetScene().FindNode(node);
        if (object == nullptr)
            continue;
        TVector2 low;
        TVector2 high;
        object->GetRectangle(low, high);
        const bool isPointedAt = DocWindow->GetWindows().GetScene().GetPointedAt() == node;
        context.SetBrush(isPointedAt                       ? PointerColour
                         : !object->GetProblem().IsEmpty() ? ProblemColour
                         : node->IsSelected()              ? SelectedColour
                                              : ToGDIColour(GetNodeTypeColour(node->GetNodeType()->Colour)));
        PaintBox(context, low, high, isPointedAt ? 2 : 0);
    }
    TVector2 min;
    TVector2 max;
    GetView(min, max);
    PaintView(context, min, max);
    context.ClearClip();
}

void TMinimap::PaintView(TGDIContext& context, const TVector2& min, const TVector2& max) const
{
    context.SetNoBrush();
    context.SetPen(ViewHalo);
    PaintBox(context, min, max, 1);
    PaintBox(context, min, max, -2);
    context.SetPen(ViewEdge);
    PaintBox(context, min, max);
    PaintBox(context, min, max, -1);
}
