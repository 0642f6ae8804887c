#pragma once

#include "particles/cindermill/graph/effectexecnode.h"

class TNodeEnumParameter;
class TNodeIntParameter;
class TNodeScalarParameter;

// The rectangle of one tile of a texture sheet, chosen by time. A parameter that the node lacks counts as 0.
class TAnimatedTexture : public TEffectExecNode
{
public:
    static int ClassId();
    bool Init(TErrorList& errors) override;
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;

private:
    float GetTimeRange() const;
    int64_t ChooseFrame(float time) const;

    const TNodeScalarParameter* TimeRange = nullptr;
    const TNodeIntParameter* XDivisions = nullptr;
    const TNodeIntParameter* YDivisions = nullptr;
    const TNodeIntParameter* TileCount = nullptr;
    const TNodeEnumParameter* LoopMode = nullptr;
};
