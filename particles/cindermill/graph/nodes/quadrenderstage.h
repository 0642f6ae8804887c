#pragma once

#include "particles/cindermill/graph/nodes/renderstage.h"

// A rectangle that turns freely.
class TQuadRenderStage : public TRenderStage
{
public:
    TQuadRenderStage();
    static int ClassId();
};
