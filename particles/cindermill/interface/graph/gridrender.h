#pragma once

#include "library/wimp/gl/renderobject.h"

// The squared paper under a graph, without end.
class TGridRender : public TRenderObject
{
public:
    // Between two lines.
    static constexpr int Step = 16;

    void Render(TRenderer& renderer) override;
    void GetBounds(TVector2& min, TVector2& max) override;
    TRenderObject* HitTest(const TVector2& point) override;
};
