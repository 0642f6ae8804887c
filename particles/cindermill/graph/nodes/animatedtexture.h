#pragma once

#include "particles/cindermill/graph/engine/execloop.h"

class TNodeEnumParameter;
class TNodeIntParameter;
class TNodeScalarParameter;

// The rectangle of one tile of a texture sheet, chosen by time. A parameter that the node lacks counts as 0.
class TAnimatedTexture : public TRegistered<TAnimatedTexture, TExecLoop<TAnimatedTexture, 1, 1>>
{
public:
    static constexpr const char* RegisteredName = "TAnimatedTexture";
    bool Init(TErrorList& errors) override;
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;

protected:
    void BeginRun() override;

private:
    float GetTimeRange() const;
    int64_t ChooseFrame(float time) const;

    const TNodeScalarParameter* TimeRange = nullptr;
    const TNodeIntParameter* XDivisions = nullptr;
    const TNodeIntParameter* YDivisions = nullptr;
    const TNodeIntParameter* TileCount = nullptr;
    const TNodeEnumParameter* LoopMode = nullptr;
    // The parameters as a run sees them.
    float Range = 0;
    int64_t Columns = 0;
    int64_t Rows = 0;
    int64_t Tiles = 0;
    int Mode = 0;
};
