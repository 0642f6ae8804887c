#pragma once

#include "particles/cindermill/interface/particles/spacedisplay.h"

// The crossings where particles start.
class TGridDisplay : public TSpaceDisplay
{
public:
    static int ClassId();
    void Init(TEffectNode* node) override;
    void Render(const TSceneView& view) override;
};
