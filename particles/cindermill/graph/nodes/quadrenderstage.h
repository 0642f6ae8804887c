#pragma once

#include "particles/cindermill/graph/nodes/renderstage.h"

// A rectangle that turns freely.
class TQuadRenderStage : public TRegistered<TQuadRenderStage, TRenderStage>
{
public:
    static constexpr const char* RegisteredName = "TQuadRenderStage";
    TQuadRenderStage();
};
