#include "particles/cindermill/graph/nodes/nodes.h"

#include "particles/cindermill/graph/nodes/add.h"
#include "particles/cindermill/graph/nodes/age.h"
#include "particles/cindermill/graph/nodes/animatedtexture.h"
#include "particles/cindermill/graph/nodes/animationpath.h"
#include "particles/cindermill/graph/nodes/attractor.h"
#include "particles/cindermill/graph/nodes/buildvector.h"
#include "particles/cindermill/graph/nodes/collisionplane.h"
#include "particles/cindermill/graph/nodes/constant.h"
#include "particles/cindermill/graph/nodes/damping.h"
#include "particles/cindermill/graph/nodes/effect.h"
#include "particles/cindermill/graph/nodes/emitter.h"
#include "particles/cindermill/graph/nodes/eventtrigger.h"
#include "particles/cindermill/graph/nodes/gravity.h"
#include "particles/cindermill/graph/nodes/grid.h"
#include "particles/cindermill/graph/nodes/integrate.h"
#include "particles/cindermill/graph/nodes/maketransform.h"
#include "particles/cindermill/graph/nodes/multiply.h"
#include "particles/cindermill/graph/nodes/noise.h"
#include "particles/cindermill/graph/nodes/pointemitter.h"
#include "particles/cindermill/graph/nodes/prune.h"
#include "particles/cindermill/graph/nodes/randomemitter.h"
#include "particles/cindermill/graph/nodes/renderstages.h"
#include "particles/cindermill/graph/nodes/selectcomponent.h"
#include "particles/cindermill/graph/nodes/shaper.h"
#include "particles/cindermill/graph/nodes/spheresurface.h"
#include "particles/cindermill/graph/nodes/turbulence.h"
#include "particles/cindermill/graph/nodes/velocitycone.h"
#include "particles/cindermill/graph/nodes/volume.h"
#include "particles/cindermill/graph/nodes/wind.h"

namespace {

using TClassIdFunction = int (*)();

constexpr TClassIdFunction ClassIds[] = {&TAdd::ClassId,
                                         &TAge::ClassId,
                                         &TAnimatedTexture::ClassId,
                                         &TAnimationPath::ClassId,
                                         &TAttractor::ClassId,
                                         &TBuildVector::ClassId,
                                         &TCollisionPlane::ClassId,
                                         &TConstant::ClassId,
                                         &TDamping::ClassId,
                                         &TEffect::ClassId,
                                         &TEmitter::ClassId,
                                         &TEventTrigger::ClassId,
                                         &TGravity::ClassId,
                                         &TGrid::ClassId,
                                         &TIntegrate::ClassId,
                                         &TMakeTransform::ClassId,
                                         &TMultiply::ClassId,
                                         &TNoise::ClassId,
                                         &TPointEmitter::ClassId,
                                         &TPrune::ClassId,
                                         &TRandomEmitter::ClassId,
                                         &TSelectComponent::ClassId,
                                         &TShaper::ClassId,
                                         &TSphereSurface::ClassId,
                                         &TTurbulence::ClassId,
                                         &TVelocityCone::ClassId,
                                         &TVolume::ClassId,
                                         &TWind::ClassId};

} // namespace

void RegisterExecNodes()
{
    for (const TClassIdFunction classId : ClassIds)
        classId();
    RegisterRenderStages();
}
