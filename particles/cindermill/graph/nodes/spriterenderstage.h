#pragma once

#include "particles/cindermill/graph/nodes/renderstage.h"

// A rectangle that faces the eye.
class TSpriteRenderStage : public TRenderStage
{
public:
    TSpriteRenderStage();
    static int ClassId();
};
