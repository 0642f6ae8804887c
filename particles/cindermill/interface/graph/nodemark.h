#pragma once

#include "library/maths/vector2.h"
#include "library/wimp/gl/renderpath.h"

class TRenderer;

// The signs on a node: of what keeps it from running, a frame around it and a badge above its corner, and of
// what points at it, a wide frame.
class TNodeMark
{
public:
    // How far it reaches beyond the node.
    static constexpr float Margin = 20.0f;

    void Render(TRenderer& renderer, const TVector2& size);
    static void RenderPointer(TRenderer& renderer, const TVector2& size);
    // Whether the badge is there, by the node's position.
    static bool HitsBadge(const TVector2& point, const TVector2& size);

private:
    static void RenderFrame(TRenderer& renderer, const TVector2& size, float distance, float width);
    static TVector2 GetBadge(const TVector2& size);

    TRenderPath Badge;
};
