#include "particles/cindermill/graph/nodes/velocitytrailrenderstage.h"

namespace {

constexpr TRenderStageKind Kind = {
    "TVelocityTrailRenderStage",
    "IdVelocityTrailRenderStage",
    {"position", "velocity", "scale", "colour", "uvs", nullptr},
    {"worldViewProj", "eyePos", nullptr},
    {"spriteTexture", nullptr},
    {{"Texture", "No texture specified in Velocity Trail Render Stage"}, {}},
};

TRenderStageStatic& GetShared()
{
    static TRenderStageStatic shared(Kind);
    return shared;
}

} // namespace

TVelocityTrailRenderStage::TVelocityTrailRenderStage() : TRegistered(GetShared()) {}
