#include "particles/cindermill/interface/graph/port.h"

#include "library/wimp/gl/renderer.h"
#include "particles/cindermill/interface/controls/outlines.h"
#include "particles/cindermill/interface/graph/nodelayout.h"

namespace {

constexpr float DiscRadius = 3.6f;
constexpr float MarkedRadius = 4.4f;
constexpr float AimedRadius = 5.6f;
constexpr float HoleRadius = 1.6f;
// What a press may miss the centre by.
constexpr float PressRadius = 6.0f;
constexpr float Smoothness = 2.0f;

} // namespace

TPort::TPort(TNodeObj* node, int index, bool isInput, const TString& label)
    : Node(node), Index(index), Input(isInput), Label(label)
{
    Rebuild();
}

void TPort::Rebuild()
{
    MakeCircle(Disc, AimedAt ? AimedRadius : Marked ? MarkedRadius : DiscRadius);
    Disc.SetWidth(1);
    Disc.SetStrokeColour(TVector4(0, 0, 0, 1));
    Disc.SetFillColour(Marked ? TVector4(1, 0.10f, 0.05f, 1) : TVector4(0.5f, 0, 1, 1));
    MakeCircle(Hole, HoleRadius);
    Hole.SetWidth(0);
    Hole.SetFillColour(TVector4(0.93f, 0.92f, 0.97f, 1));
    TouchBounds();
}

void TPort::SetConnected(bool connected)
{
    Connected = connected;
}

void TPort::SetMarked(bool marked)
{
    if (marked == Marked)
        return;
    Marked = marked;
    Rebuild();
}

void TPort::SetAimedAt(bool aimedAt)
{
    if (aimedAt == AimedAt)
        return;
    AimedAt = aimedAt;
    Rebuild();
}

void TPort::Render(TRenderer& renderer)
{
    const float smoothness = Smoothness * GetNodeSmoothness(renderer.GetResolution()[1]);
    Disc.Render(renderer, TVector2(0, 0), TVector2(1, 1), smoothness);
    if (!Connected && !Marked)
        Hole.Render(renderer, TVector2(0, 0), TVector2(1, 1), smoothness);
}

void TPort::GetBounds(TVector2& min, TVector2& max)
{
    min = TVector2(-PressRadius, -PressRadius);
    max = TVector2(PressRadius, PressRadius);
}

TRenderObject* TPort::HitTest(const TVector2& point)
{
    return (point - Origin).LengthSquared() <= PressRadius * PressRadius ? this : nullptr;
}
