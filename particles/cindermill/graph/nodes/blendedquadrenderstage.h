#pragma once

#include "particles/cindermill/graph/nodes/renderstage.h"

// A rectangle that turns freely and fades from one texture to another.
class TBlendedQuadRenderStage : public TRenderStage
{
public:
    TBlendedQuadRenderStage();
    static int ClassId();
};
