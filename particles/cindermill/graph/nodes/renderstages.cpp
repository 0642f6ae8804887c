#include "particles/cindermill/graph/nodes/renderstages.h"

#include "particles/cindermill/graph/nodes/blendedquadrenderstage.h"
#include "particles/cindermill/graph/nodes/blendedspriterenderstage.h"
#include "particles/cindermill/graph/nodes/quadrenderstage.h"
#include "particles/cindermill/graph/nodes/spriterenderstage.h"
#include "particles/cindermill/graph/nodes/velocitytrailrenderstage.h"

void RegisterRenderStages()
{
    TQuadRenderStage::ClassId();
    TBlendedQuadRenderStage::ClassId();
    TSpriteRenderStage::ClassId();
    TBlendedSpriteRenderStage::ClassId();
    TVelocityTrailRenderStage::ClassId();
}
