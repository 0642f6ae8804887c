#include "particles/effectgraph/effectgraphclasses.h"

#include "particles/effectgraph/effectgraph.h"
#include "particles/effectgraph/groupparameter.h"
#include "particles/effectgraph/polytypeparameter.h"
#include "particles/effectgraph/rampparameter.h"
#include "particles/effectgraph/simpleparameters.h"
#include "particles/effectgraph/valueparameters.h"

void RegisterEffectGraphClasses()
{
    RegisterClasses<TEffectGraph, TEffectNode, TEffectEdge, TNodeType>();
    RegisterClasses<TNodeScalarParameter, TNodeScaleParameter, TNodeVector3Parameter,
                    TNodeQuaternionParameter, TNodeColourParameter, TNodeTransformParameter,
                    TNodeTexCoordParameter, TNodePolytypeParameter, TNodeBoolParameter, TNodeEnumParameter,
                    TNodeIntParameter, TNodeTextureParameter, TNodeRampParameter, TNodePolyRampParameter,
                    TNodeGroupParameter, TNodeAnimationParameter>();
}
