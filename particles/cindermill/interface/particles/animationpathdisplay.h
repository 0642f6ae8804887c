#pragma once

#include "library/containers/string.h"
#include "particles/cindermill/interface/particles/spacedisplay.h"

class TAnimation;

// The way that an animation takes.
class TAnimationPathDisplay : public TRegistered<TAnimationPathDisplay, TSpaceDisplay>
{
public:
    static constexpr const char* RegisteredName = "TAnimationPathDisplay";
    void Init(TEffectNode* node) override;
    // Takes the parameter's file when it is another than before, by its name or behind it.
    bool Tick() override;
    void Render(const TSceneView& view) override;

private:
    void FindAnew();
    void FindAgain();

    // The shared one of the file; null if it cannot be had.
    const TAnimation* Animation = nullptr;
    TString FileName;
    // Of the locator, when the file was looked for last.
    int Round = 0;
    bool Found = false;
};
