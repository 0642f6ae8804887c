#pragma once

#include "particles/cindermill/interface/particles/spacedisplay.h"

// The rectangle that particles bounce off.
class TCollisionPlaneDisplay : public TSpaceDisplay
{
public:
    static int ClassId();
    void Init(TEffectNode* node) override;
    void Render(const TSceneView& view) override;
};
