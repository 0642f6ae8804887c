#pragma once

#include "particles/cindermill/graph/nodes/renderstage.h"

// A streak back along the particle's flight.
class TVelocityTrailRenderStage : public TRenderStage
{
public:
    TVelocityTrailRenderStage();
    static int ClassId();
};
