#pragma once

#include "library/containers/string.h"
#include "particles/effectgraph/export/gpustate.h"

// A value of a render stage that no attribute feeds.
struct TStageConstant
{
    uint32_t Attrib = 0;
    float Value[4] = {};
};

struct TRenderStageData
{
    static constexpr int NumTextures = 2;

    int CommandIndex = 0;
    TGpuState State;
    TString Textures[NumTextures];
    vector<TStageConstant> Constants;
};
