#pragma once

#include "particles/cindermill/graph/nodes/renderstage.h"

// A rectangle that faces the eye.
class TSpriteRenderStage : public TRegistered<TSpriteRenderStage, TRenderStage>
{
public:
    static constexpr const char* RegisteredName = "TSpriteRenderStage";
    TSpriteRenderStage();
};
