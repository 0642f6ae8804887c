#include "particles/cindermill/graph/nodes/blendedspriterenderstage.h"

namespace {

// The messages are those of the quad stages: artists know them by these words.
constexpr TRenderStageKind Kind = {
    "TBlendedSpriteRenderStage",
    "IdBlendedSpriteRenderStage",
    {"position", "rotation", "scale", "blend", "colour", "uvs", nullptr},
    {"worldView", "proj", nullptr},
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

TBlendedSpriteRenderStage::TBlendedSpriteRenderStage() : TRegistered(GetShared()) {}
