#include "particles/cindermill/graph/nodes/nodes.h"

#include "particles/cindermill/graph/nodes/add.h"
#include "particles/cindermill/graph/nodes/age.h"
#include "particles/cindermill/graph/nodes/animatedtexture.h"
#include "particles/cindermill/graph/nodes/animationpath.h"
#include "particles/cindermill/graph/nodes/attractor.h"
#include "particles/cindermill/graph/nodes/blendedquadrenderstage.h"
#include "particles/cindermill/graph/nodes/blendedspriterenderstage.h"
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
#include "particles/cindermill/graph/nodes/quadrenderstage.h"
#include "particles/cindermill/graph/nodes/randomemitter.h"
#include "particles/cindermill/graph/nodes/selectcomponent.h"
#include "particles/cindermill/graph/nodes/shaper.h"
#include "particles/cindermill/graph/nodes/spheresurface.h"
#include "particles/cindermill/graph/nodes/spriterenderstage.h"
#include "particles/cindermill/graph/nodes/turbulence.h"
#include "particles/cindermill/graph/nodes/velocitycone.h"
#include "particles/cindermill/graph/nodes/velocitytrailrenderstage.h"
#include "particles/cindermill/graph/nodes/volume.h"
#include "particles/cindermill/graph/nodes/wind.h"

void RegisterExecNodes()
{
    RegisterClasses<TAdd, TAge, TAnimatedTexture, TAnimationPath, TAttractor, TBuildVector, TCollisionPlane,
                    TConstant, TDamping, TEffect, TEmitter, TEventTrigger, TGravity, TGrid, TIntegrate,
                    TMakeTransform, TMultiply, TNoise, TPointEmitter, TPrune, TRandomEmitter,
                    TSelectComponent, TShaper, TSphereSurface, TTurbulence, TVelocityCone, TVolume, TWind>();
    RegisterClasses<TQuadRenderStage, TBlendedQuadRenderStage, TSpriteRenderStage, TBlendedSpriteRenderStage,
                    TVelocityTrailRenderStage>();
}
