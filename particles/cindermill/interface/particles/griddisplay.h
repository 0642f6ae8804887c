#pragma once

#include "particles/cindermill/interface/particles/spacedisplay.h"

// The crossings where particles start.
class TGridDisplay : public TRegistered<TGridDisplay, TSpaceDisplay>
{
public:
    static constexpr const char* RegisteredName = "TGridDisplay";
    void Init(TEffectNode* node) override;
    void Render(const TSceneView& view) override;
};
