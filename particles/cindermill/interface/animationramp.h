#pragma once

#include "particles/cindermill/main/animation/animation.h"
#include "particles/effectgraph/rampparameter.h"

class TNodeType;
class TToolNode;

// The curve of a shaper that an animation can be loaded into; null for any other node.
TNodeRampParameter* FindAnimatedRamp(const TToolNode& node);

// The keys of an animation as the curves of a ramp, straight from key to key. The ramp's values decide on the
// track: a scale takes the scaling, a quaternion the rotation, in degrees, all others the position. Curves
// that the track has no component for stay as they are in the ramp, as do all if it holds no keys.
void GetAnimationCurves(const TAnimation& animation, const TNodeRampParameter& ramp,
                        const TNodeType* nodeType, vector<TRampPoint>* curves);
