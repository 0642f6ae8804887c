#pragma once

#include "particles/cindermill/interface/particles/spacedisplay.h"

// A cross where an attractor pulls to.
class TAttractorDisplay : public TSpaceDisplay
{
public:
    static int ClassId();
    void Init(TEffectNode* node) override;
    void Render(const TSceneView& view) override;
};
