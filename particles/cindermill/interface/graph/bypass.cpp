#include "particles/cindermill/interface/graph/bypass.h"

#include "library/containers/classregistry.h"
#include "library/wimp/gl/renderer.h"
#include "particles/cindermill/interface/controls/outlines.h"
#include "particles/cindermill/interface/graph/nodelayout.h"

TBypass::TBypass()
{
    constexpr float Near = 2.7f;
    constexpr float Far = NodeBoxSize - Near;
    const TVector2 corner(NodeBoxSize, NodeBoxSize);
    const TVector2 rim(1, 1);
    MakeBox(Box, TVector2(0, 0), corner, 2.5f, PC_ALL);
    Box.SetFillColour(TVector4(0.10f, 0.11f, 0.13f, 0.75f));
    MakeBox(Inside, rim, corner - rim, 1.5f, PC_ALL);
    Cross[0].MoveTo(TVector2(Near, Near));
    Cross[0].LineTo(TVector2(Far, Far));
    Cross[1].MoveTo(TVector2(Near, Far));
    Cross[1].LineTo(TVector2(Far, Near));
    for (TRenderPath& stroke : Cross) {
        stroke.SetWidth(1.8f);
        stroke.SetStrokeColour(TVector4(0.75f, 0.05f, 0.02f, 1));
    }
    SetBypassed(false);
}

void TBypass::SetBypassed(bool bypassed)
{
    Bypassed = bypassed;
    Inside.SetFillColour(Bypassed ? TVector4(1, 0.96f, 0.90f, 1) : TVector4(0.769f, 0.816f, 0.816f, 1));
}

void TBypass::Render(TRenderer& renderer)
{
    Box.Render(renderer);
    Inside.Render(renderer);
    if (!Bypassed)
        return;
    for (TRenderPath& stroke : Cross)
        stroke.Render(renderer);
}

void TBypass::GetBounds(TVector2& min, TVector2& max)
{
    min = TVector2(0, 0);
    max = TVector2(NodeBoxSize, NodeBoxSize);
}

TRenderObject* TBypass::HitTest(const TVector2& point)
{
    const TVector2 inside = point - Origin;
    for (int i = 0; i < 2; ++i)
        if (!(inside[i] >= 0 && inside[i] <= NodeBoxSize))
            return nullptr;
    return this;
}
