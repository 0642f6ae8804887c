#include "particles/cindermill/interface/graph/tooledgerenderer.h"

#include "library/containers/classregistry.h"
#include "library/wimp/gl/renderer.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/interface/controls/outlines.h"
#include "particles/cindermill/interface/graph/graphscene.h"
#include "particles/cindermill/interface/graph/nodecolour.h"
#include "particles/cindermill/interface/graph/nodeobj.h"

#include <algorithm>

namespace {

constexpr float NormalWidth = 2.25f;
constexpr float OfferedWidth = 4.0f;
// How much darker border there is around an edge.
constexpr float BorderWidth = 1.5f;
// In pixels: in a view that is zoomed out, edges stay visible.
constexpr float ThinnestEdge = 1.5f;
constexpr float ThinnestBorder = 1.0f;
constexpr float KnobRadius = 3.2f;
// Short curves would show their corners.
constexpr float Smoothness = 3.0f;

} // namespace

void TToolEdgeRenderer::Init(TNodeObj* output, int outputPort, TNodeObj* input, int inputPort)
{
    ASSERT_TEXT(output != nullptr || input != nullptr, "output != 0 || input != 0");
    OutputNode = output;
    OutputPort = outputPort;
    InputNode = input;
    InputPort = inputPort;
}

void TToolEdgeRenderer::Unhook()
{
    OutputNode = nullptr;
    InputNode = nullptr;
}

void TToolEdgeRenderer::Layout(const TToolEdge* edge)
{
    if (edge != nullptr)
        Init(Scene.GetNode(edge->GetSrcNode()), edge->GetSrcPort(), Scene.GetNode(edge->GetDstNode()),
             edge->GetDstPort());
    if (OutputNode == nullptr && InputNode == nullptr)
        return;
    const TVector2 from = OutputNode != nullptr ? OutputNode->GetPortPosition(false, OutputPort) : FreeEnd;
    const TVector2 to = InputNode != nullptr ? InputNode->GetPortPosition(true, InputPort) : FreeEnd;
    const TVector2 leave = OutputNode != nullptr ? TVector2(1, 0) : GetDirection(from, to);
    const TVector2 enter = InputNode != nullptr ? TVector2(-1, 0) : GetDirection(to, from);
    const float half = (to - from).Length() * 0.5f;
    Curve[0] = from;
    Curve[1] = from + leave * half;
    Curve[2] = to + enter * half;
    Curve[3] = to;
    TRenderPath* const paths[] = {&Border, &Line};
    for (TRenderPath* path : paths) {
        path->MoveTo(Curve[0]);
        path->CurveTo(Curve[1], Curve[2], Curve[3]);
    }
    const bool offered = OutputNode != nullptr && InputNode != nullptr &&
                         InputNode->GetToolNode()->GetInput(InputPort) == nullptr;
    Style = offered ? ES_OFFERED : ES_NORMAL;
    Width = offered ? OfferedWidth : NormalWidth;
    TouchBounds();
}

TVector4 TToolEdgeRenderer::GetColour() const
{
    const TVector4 orange(1, 0.50f, 0.08f, 1);
    if (Lit)
        return orange;
    const TNodeObj* const ends[] = {OutputNode, InputNode};
    for (const TNodeObj* node : ends)
        if (node != nullptr && node->GetToolNode() != nullptr && node->IsSelected())
            return orange;
    if (OutputNode == nullptr || OutputNode->GetToolNode() == nullptr)
        return TVector4(0.45f, 0.47f, 0.50f, 1);
    return ShiftColour(GetNodeTypeColour(OutputNode->GetToolNode()->GetNodeType()->Colour), 0.11f);
}

void TToolEdgeRenderer::Render(TRenderer& renderer)
{
    if (Hidden)
        return;
    const TVector4 colour = GetColour();
    const TVector4 border = MixColours(colour, TVector4(0.05f, 0.06f, 0.08f, 1), 0.7f);
    const float zoom = renderer.GetScale()[0];
    const float width = std::max(Lit ? OfferedWidth : Width, ThinnestEdge / zoom);
    RenderLine(renderer, Border, width + std::max(BorderWidth, ThinnestBorder / zoom), border);
    RenderLine(renderer, Line, width, colour);
    if (!Held)
        return;
    RenderKnob(renderer, Curve[0], colour, border);
    RenderKnob(renderer, Curve[3], colour, border);
}

void TToolEdgeRenderer::RenderLine(TRenderer& renderer, TRenderPath& path, float width,
                                   const TVector4& colour)
{
    path.SetWidth(width);
    path.SetStrokeColour(colour);
    path.Render(renderer, TVector2(0, 0), TVector2(1, 1), Smoothness);
}

void TToolEdgeRenderer::RenderKnob(TRenderer& renderer, const TVector2& place, const TVector4& colour,
                                   const TVector4& border)
{
    MakeCircle(Knob, KnobRadius);
    Knob.SetWidth(1);
    Knob.SetStrokeColour(border);
    Knob.SetFillColour(colour);
    Knob.Render(renderer, place, TVector2(1, 1), Smoothness);
}

void TToolEdgeRenderer::GetBounds(TVector2& min, TVector2& max)
{
    // A curve lies within its control points.
    const float margin = std::max(std::max(Width, OfferedWidth) + BorderWidth, KnobRadius + 1);
    min = max = Curve[0];
    for (const TVector2& point : Curve)
        for (int i = 0; i < 2; ++i) {
            min[i] = point[i] < min[i] ? point[i] : min[i];
            max[i] = point[i] > max[i] ? point[i] : max[i];
        }
    min -= TVector2(margin, margin);
    max += TVector2(margin, margin);
}

TRenderObject* TToolEdgeRenderer::HitTest(const TVector2& point)
{
    (void)point;
    return nullptr;
}
