#include "particles/cindermill/interface/particles/displays.h"

#include "particles/cindermill/interface/particles/animationpathdisplay.h"
#include "particles/cindermill/interface/particles/attractordisplay.h"
#include "particles/cindermill/interface/particles/collisionplanedisplay.h"
#include "particles/cindermill/interface/particles/griddisplay.h"
#include "particles/cindermill/interface/particles/spheresurfacedisplay.h"
#include "particles/cindermill/interface/particles/volumedisplay.h"

void RegisterDisplayClasses()
{
    RegisterClasses<TAttractorDisplay, TCollisionPlaneDisplay, TGridDisplay, TSphereSurfaceDisplay,
                    TVolumeDisplay, TAnimationPathDisplay>();
}
