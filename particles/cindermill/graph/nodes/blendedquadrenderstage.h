#pragma once

#include "particles/cindermill/graph/nodes/renderstage.h"

// A rectangle that turns freely and fades from one texture to another.
class TBlendedQuadRenderStage : public TRegistered<TBlendedQuadRenderStage, TRenderStage>
{
public:
    static constexpr const char* RegisteredName = "TBlendedQuadRenderStage";
    TBlendedQuadRenderStage();
};
