#pragma once

#include "particles/cindermill/interface/particles/spacedisplay.h"

// The shape that points are tested against, where both its position and its size are fixed.
class TVolumeDisplay : public TRegistered<TVolumeDisplay, TSpaceDisplay>
{
public:
    static constexpr const char* RegisteredName = "TVolumeDisplay";
    void Init(TEffectNode* node) override;
    void Render(const TSceneView& view) override;
};
