#pragma once

#include "particles/cindermill/graph/nodes/renderstage.h"

// A streak back along the particle's flight.
class TVelocityTrailRenderStage : public TRegistered<TVelocityTrailRenderStage, TRenderStage>
{
public:
    static constexpr const char* RegisteredName = "TVelocityTrailRenderStage";
    TVelocityTrailRenderStage();
};
