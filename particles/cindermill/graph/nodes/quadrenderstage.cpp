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

TClassRegistrar Registrar(&TQuadRenderStage::ClassId);

} // namespace

TQuadRenderStage::TQuadRenderStage() : TRenderStage(GetShared()) {}

int TQuadRenderStage::ClassId()
{
    static const int id = RegisterClass(&ConstructClass<TQuadRenderStage, TEffectExecNode>, Kind.ClassName,
                                        TEffectExecNode::ClassId());
    return id;
}
