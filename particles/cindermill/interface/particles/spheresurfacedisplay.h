#pragma once

#include "particles/cindermill/interface/particles/spacedisplay.h"

// The sphere or ellipsoid where particles start.
class TSphereSurfaceDisplay : public TSpaceDisplay
{
public:
    static int ClassId();
    void Init(TEffectNode* node) override;
    void Render(const TSceneView& view) override;
};
