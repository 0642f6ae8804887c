#include "particles/cindermill/graph/nodes/quadrenderstage.h"

namespace {

constexpr TRenderStageKind Kind = {
    "TQuadRenderStage",
    "IdQuadRenderStage",
    {"position", "rotation", "scale", "colour", "uvs", nullptr},
    {"worldViewProj", nullptr},
    {"spriteTexture", nullptr},
    {{"Texture", "No texture specified in Quad Render Stage"}, {}},
};

TRenderStageStatic& GetShared()
{
    static TRenderStageStatic shared(Kind);
    return shared;
}

} // namespace

TQuadRenderStage::TQuadRenderStage() : TRegistered(GetShared()) {}
