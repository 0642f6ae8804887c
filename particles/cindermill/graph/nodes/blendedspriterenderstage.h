#pragma once

#include "particles/cindermill/graph/nodes/renderstage.h"

// A rectangle that faces the eye and fades from one texture to another.
class TBlendedSpriteRenderStage : public TRegistered<TBlendedSpriteRenderStage, TRenderStage>
{
public:
    static constexpr const char* RegisteredName = "TBlendedSpriteRenderStage";
    TBlendedSpriteRenderStage();
};
