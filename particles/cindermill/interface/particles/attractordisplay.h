#pragma once

#include "particles/cindermill/interface/particles/spacedisplay.h"

// A cross where an attractor pulls to.
class TAttractorDisplay : public TRegistered<TAttractorDisplay, TSpaceDisplay>
{
public:
    static constexpr const char* RegisteredName = "TAttractorDisplay";
    void Init(TEffectNode* node) override;
    void Render(const TSceneView& view) override;
};
