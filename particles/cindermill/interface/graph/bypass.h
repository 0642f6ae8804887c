#pragma once

#include "library/containers/classregistry.h"
#include "library/wimp/gl/renderobject.h"
#include "library/wimp/gl/renderpath.h"

// The box on a node that switches it off: empty while the node works, crossed out while it is bypassed.
class TBypass : public TRegistered<TBypass, TRenderObject>
{
public:
    static constexpr const char* RegisteredName = "TBypass";
    TBypass();

    void Render(TRenderer& renderer) override;
    void GetBounds(TVector2& min, TVector2& max) override;
    // Both sides of the box belong to it.
    TRenderObject* HitTest(const TVector2& point) override;

    void SetBypassed(bool bypassed);
    bool IsBypassed() const { return Bypassed; }

private:
    TRenderPath Box;
    TRenderPath Inside;
    TRenderPath Cross[2];
    bool Bypassed = false;
};
