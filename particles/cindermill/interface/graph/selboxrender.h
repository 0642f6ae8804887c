#pragma once

#include "library/containers/classregistry.h"
#include "library/wimp/gl/renderobject.h"
#include "library/wimp/gl/renderpath.h"

// The rubber band of a box selection, between two corners in world units.
class TSelBoxRender : public TRegistered<TSelBoxRender, TRenderObject>
{
public:
    static constexpr const char* RegisteredName = "TSelBoxRender";

    // The box is empty at first.
    void Begin(const TVector2& corner);
    void Extend(const TVector2& corner);
    void GetBox(TVector2& min, TVector2& max) const;
    float GetDiagonal() const { return (To - From).Length(); }

    void Render(TRenderer& renderer) override;
    void GetBounds(TVector2& min, TVector2& max) override;
    TRenderObject* HitTest(const TVector2& point) override;

private:
    TVector2 From = TVector2(0, 0);
    TVector2 To = TVector2(0, 0);
    TRenderPath Path;
};
