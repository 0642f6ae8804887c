#include "particles/cindermill/graph/nodes/blendedquadrenderstage.h"

namespace {

constexpr TRenderStageKind Kind = {
    "TBlendedQuadRenderStage",
    "IdBlendedQuadRenderStage",
    {"position", "rotation", "scale", "blend", "colour", "uvs", nullptr},
    {"worldViewProj", nullptr},
    {"spriteTexture", "blendTexture", nullptr},
    {{"Base Texture", "No base texture specified in Blended Quad Render Stage"},
     {"Blend Texture", "No blend texture specified in Blended Quad Render Stage"},
     {}},
};

TRenderStageStatic& GetShared()
{
    static TRenderStageStatic shared(Kind);
    return shared;
}

} // namespace

TBlendedQuadRenderStage::TBlendedQuadRenderStage() : TRegistered(GetShared()) {}
