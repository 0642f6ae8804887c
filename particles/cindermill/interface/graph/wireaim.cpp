#include "particles/cindermill/interface/graph/wireaim.h"

#include "library/maths/scalar.h"
#include "library/wimp/gl/renderer.h"
#include "library/wimp/gl/renderpath.h"
#include "particles/cindermill/graph/operations/addgraphnodeop.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/interface/graph/graphscene.h"
#include "particles/cindermill/interface/graph/probenode.h"
#include "particles/cindermill/main/documentstep.h"

namespace {

float GetSquareTo(const TVector2& point, const TVector2& from, const TVector2& to)
{
    const TVector2 along = to - from;
    const float length = along.LengthSquared();
    float share =
        length > 0 ? ((point[0] - from[0]) * along[0] + (point[1] - from[1]) * along[1]) / length : 0;
    share = share < 0 ? 0 : share > 1 ? 1 : share;
    return (from + along * share - point).LengthSquared();
}

float GetSquareTo(const TVector2& point, const TVector2* curve)
{
    constexpr int Parts = 32;
    float least = GetSquareTo(point, curve[0], curve[0]);
    TVector2 from = curve[0];
    for (int i = 1; i <= Parts; ++i) {
        const TVector2 to = EvaluateCurve(curve, static_cast<float>(i) / Parts);
        const float square = GetSquareTo(point, from, to);
        least = square < least ? square : least;
        from = to;
    }
    return least;
}

bool IsNear(const TVector2& point, TToolEdgeRenderer& renderer, float reach)
{
    TVector2 min;
    TVector2 max;
    renderer.GetBounds(min, max);
    return point[0] >= min[0] - reach && point[0] <= max[0] + reach && point[1] >= min[1] - reach &&
           point[1] <= max[1] + reach;
}

} // namespace

TToolEdge* TWireAim::FindWire(const TEffectNode& node, const TVector2& point, float reach) const
{
    const TEffectGraph& graph = *Scene.GetDocument().GetGraph();
    TToolEdge* nearest = nullptr;
    float least = reach * reach;
    for (int i = 0; i < graph.GetNumEdges(); ++i) {
        TToolEdge* edge = static_cast<TToolEdge*>(graph.GetEdge(i));
        TToolEdgeRenderer* renderer = Scene.FindEdge(edge);
        if (renderer == nullptr || edge->GetSrcNode() == &node || edge->GetDstNode() == &node ||
            !IsNear(point, *renderer, reach))
            continue;
        const float square = GetSquareTo(point, renderer->GetCurve());
        if (square > least)
            continue;
        least = square;
        nearest = edge;
    }
    return nearest;
}

float TWireAim::GetReach(const TRenderer& renderer)
{
    constexpr float Units = 8.0f;
    constexpr float Pixels = 6.0f;
    const float reach = Pixels / renderer.GetScale()[0];
    return reach > Units ? reach : Units;
}

void TWireAim::Aim(TEffectNode& node, const TVector2& point, float reach)
{
    TToolEdge* edge = FindWire(node, point, reach);
    if (edge == Insertion.Edge)
        return;
    Clear();
    if (edge == nullptr || !FindInsertion(node, *edge, Insertion))
        return;
    Show(true);
}

void TWireAim::AimType(const TNodeType& type, const TVector2& point, float reach)
{
    TProbeNode probe(type);
    Aim(probe.Get(), point, reach);
}

void TWireAim::Clear()
{
    Show(false);
    Insertion = TInsertion();
}

void TWireAim::Forget(const TToolEdge* edge)
{
    if (edge == Insertion.Edge)
        Clear();
}

void TWireAim::Show(bool shown)
{
    TToolEdgeRenderer* renderer = IsAimed() ? Scene.FindEdge(Insertion.Edge) : nullptr;
    if (renderer != nullptr)
        renderer->SetLit(shown);
}

TToolNode* DropNode(TGraphScene& scene, const TNodeType& type, const TVector2& point, float reach)
{
    TDocument& document = scene.GetDocument();
    const TDocumentStep step(document);
    TAddGraphNodeOp* op = new TAddGraphNodeOp(document, type, FloatToInt(point[0]), FloatToInt(point[1]));
    TToolNode* node = op->GetNode();
    document.ApplyOperation(op);
    TWireAim aim(scene);
    aim.Aim(*node, point, reach);
    const TInsertion insertion = aim.GetInsertion();
    aim.Clear();
    if (insertion.Edge != nullptr)
        InsertIntoWire(document, node, insertion);
    return node;
}
