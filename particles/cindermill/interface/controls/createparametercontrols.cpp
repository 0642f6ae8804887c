#include "particles/cindermill/interface/controls/animationparametercontrols.h"
#include "particles/cindermill/interface/controls/boolparametercontrols.h"
#include "particles/cindermill/interface/controls/colourparametercontrols.h"
#include "particles/cindermill/interface/controls/enumparametercontrols.h"
#include "particles/cindermill/interface/controls/groupparametercontrols.h"
#include "particles/cindermill/interface/controls/intparametercontrols.h"
#include "particles/cindermill/interface/controls/polytypeparametercontrols.h"
#include "particles/cindermill/interface/controls/rampparametercontrols.h"
#include "particles/cindermill/interface/controls/texcoordparametercontrols.h"
#include "particles/cindermill/interface/controls/textureparametercontrols.h"
#include "particles/cindermill/interface/controls/transformparametercontrols.h"
#include "particles/cindermill/interface/controls/vectorparametercontrols.h"
#include "particles/effectgraph/nodeparameter.h"

namespace {

using TMaker = TNodeParameterControls* (*)();

template <class TControls>
TNodeParameterControls* Make()
{
    return new TControls;
}

struct TKindControls
{
    int Kind;
    TMaker Maker;
};

// A kind that is not listed has no controls.
constexpr TKindControls Table[] = {
    {TY_SCALAR, Make<TNodeScalarParameterControls>},
    {TY_SCALE, Make<TNodeScaleParameterControls>},
    {TY_VECTOR3, Make<TNodeVector3ParameterControls>},
    {TY_QUATERNION, Make<TNodeQuaternionParameterControls>},
    {TY_COLOUR, Make<TNodeColourParameterControls>},
    {TY_TRANSFORM, Make<TNodeTransformParameterControls>},
    {TY_TEXCOORDS, Make<TNodeTexCoordParameterControls>},
    {TY_POLYTYPE, Make<TNodePolytypeParameterControls>},
    {PK_BOOL, Make<TNodeBoolParameterControls>},
    {PK_ENUM, Make<TNodeEnumParameterControls>},
    {PK_INT, Make<TNodeIntParameterControls>},
    {PK_TEXTURE, Make<TNodeTextureParameterControls>},
    {PK_RAMP, Make<TNodeRampParameterControls>},
    {PK_POLYRAMP, Make<TNodePolyRampParameterControls>},
    {PK_GROUP, Make<TNodeGroupParameterControls>},
    {PK_ANIMATION, Make<TNodeAnimationParameterControls>},
};

} // namespace

TNodeParameterControls* CreateParameterControls(TDocument& document, TToolNode& toolNode,
                                                TNodeParameter& parameter, TControlHost& host)
{
    for (const TKindControls& entry : Table) {
        if (entry.Kind != parameter.Type)
            continue;
        TNodeParameterControls* controls = entry.Maker();
        controls->Build(document, toolNode, parameter, host);
        return controls;
    }
    return nullptr;
}
