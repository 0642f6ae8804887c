#include "particles/cindermill/graph/nodes/spriterenderstage.h"

namespace {

// The messages are those of the quad stages: artists know them by these words.
constexpr TRenderStageKind Kind = {
    "TSpriteRenderStage",
    "IdSpriteRenderStage",
    {"position", "rotation", "scale", "colour", "uvs", nullptr},
    {"worldView", "proj", nullptr},
    {"spriteTexture", nullptr},
    {{"Texture", "No texture specified in Quad Render Stage"}, {}},
};

TRenderStageStatic& GetShared()
{
    static TRenderStageStatic shared(Kind);
    return shared;
}

} // namespace

TSpriteRenderStage::TSpriteRenderStage() : TRegistered(GetShared()) {}
