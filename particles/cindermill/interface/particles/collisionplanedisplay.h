#pragma once

#include "particles/cindermill/interface/particles/spacedisplay.h"

// The rectangle that particles bounce off.
class TCollisionPlaneDisplay : public TRegistered<TCollisionPlaneDisplay, TSpaceDisplay>
{
public:
    static constexpr const char* RegisteredName = "TCollisionPlaneDisplay";
    void Init(TEffectNode* node) override;
    void Render(const TSceneView& view) override;
};
