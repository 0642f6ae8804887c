#include "particles/cindermill/interface/graph/nodemark.h"

#include "library/wimp/gl/renderer.h"
#include "particles/cindermill/interface/controls/outlines.h"

namespace {

constexpr float FrameDistance = 3.0f;
constexpr float FrameWidth = 2.0f;
// In a view that is zoomed out it still stands out.
constexpr float ThinnestFrame = 1.5f;
constexpr float PointerDistance = 7.0f;
constexpr float PointerWidth = 4.0f;
constexpr float BadgeRadius = 7.5f;

TVector4 GetMarkColour()
{
    return TVector4(0.80f, 0.13f, 0.13f, 1);
}

float Larger(float a, float b)
{
    return a > b ? a : b;
}

} // namespace

TVector2 TNodeMark::GetBadge(const TVector2& size)
{
    return TVector2(size[0] - BadgeRadius, -BadgeRadius - FrameDistance);
}

bool TNodeMark::HitsBadge(const TVector2& point, const TVector2& size)
{
    return (point - GetBadge(size)).LengthSquared() <= BadgeRadius * BadgeRadius;
}

void TNodeMark::RenderFrame(TRenderer& renderer, const TVector2& size, float distance, float width)
{
    const TVector2 from(-distance, -distance);
    const TVector2 to = size - from;
    // The corners belong to the level lines.
    const TVector2 across(width * 0.5f, 0);
    renderer.DrawLine(from - across, TVector2(to[0], from[1]) + across, width);
    renderer.DrawLine(TVector2(from[0], to[1]) - across, to + across, width);
    renderer.DrawLine(from, TVector2(from[0], to[1]), width);
    renderer.DrawLine(TVector2(to[0], from[1]), to, width);
}

void TNodeMark::RenderPointer(TRenderer& renderer, const TVector2& size)
{
    const float zoom = renderer.GetScale()[0];
    renderer.SetColour(TVector4(0.08f, 0.33f, 0.86f, 1));
    RenderFrame(renderer, size, Larger(PointerDistance, PointerDistance / zoom),
                Larger(PointerWidth, PointerWidth / zoom));
}

void TNodeMark::Render(TRenderer& renderer, const TVector2& size)
{
    const float zoom = renderer.GetScale()[0];
    renderer.SetColour(GetMarkColour());
    RenderFrame(renderer, size, FrameDistance, Larger(FrameWidth, ThinnestFrame / zoom));
    const TVector2 badge = GetBadge(size);
    MakeCircle(Badge, BadgeRadius);
    Badge.SetWidth(0);
    Badge.SetFillColour(GetMarkColour());
    Badge.Render(renderer, badge);
    // The exclamation mark.
    renderer.SetColour(TVector4(1, 1, 1, 1));
    renderer.DrawRectangle(badge + TVector2(-1.1f, -4.8f), badge + TVector2(1.1f, 1.4f));
    renderer.DrawRectangle(badge + TVector2(-1.1f, 2.8f), badge + TVector2(1.1f, 5.0f));
}
