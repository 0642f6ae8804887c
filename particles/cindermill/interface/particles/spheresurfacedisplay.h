#pragma once

#include "particles/cindermill/interface/particles/spacedisplay.h"

// The sphere or ellipsoid where particles start.
class TSphereSurfaceDisplay : public TRegistered<TSphereSurfaceDisplay, TSpaceDisplay>
{
public:
    static constexpr const char* RegisteredName = "TSphereSurfaceDisplay";
    void Init(TEffectNode* node) override;
    void Render(const TSceneView& view) override;
};
