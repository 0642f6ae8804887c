#include "particles/cindermill/graph/operations/operations.h"

#include "particles/cindermill/graph/operations/addgraphedgeop.h"
#include "particles/cindermill/graph/operations/addgraphnodeop.h"
#include "particles/cindermill/graph/operations/addgraphnodesop.h"
#include "particles/cindermill/graph/operations/animflagsparamop.h"
#include "particles/cindermill/graph/operations/bypassflagop.h"
#include "particles/cindermill/graph/operations/changegraphedgeop.h"
#include "particles/cindermill/graph/operations/deletegraphedgeop.h"
#include "particles/cindermill/graph/operations/deletegraphnodeop.h"
#include "particles/cindermill/graph/operations/flagparamop.h"
#include "particles/cindermill/graph/operations/movegraphnodeop.h"
#include "particles/cindermill/graph/operations/nameparamop.h"
#include "particles/cindermill/graph/operations/nodepropertiesop.h"
#include "particles/cindermill/graph/operations/numberparamop.h"
#include "particles/cindermill/graph/operations/operationstack.h"
#include "particles/cindermill/graph/operations/polytypeusertypeop.h"
#include "particles/cindermill/graph/operations/rampchangepointsop.h"
#include "particles/cindermill/graph/operations/ramplockop.h"
#include "particles/cindermill/graph/operations/rampmovepointparamop.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/graph/operations/valueparamop.h"

void RegisterOperations()
{
    RegisterClasses<TOperationStack, TToolNode, TToolEdge>();
    RegisterClasses<TAddGraphNodeOp, TAddGraphNodesOp, TMoveGraphNodeOp, TDeleteGraphNodeOp, TAddGraphEdgeOp,
                    TChangeGraphEdgeOp, TDeleteGraphEdgeOp, TBypassFlagOp, TNodePropertiesOp>();
    RegisterClasses<TScalarParamOp, TScaleParamOp, TVector3ParamOp, TQuaternionParamOp, TColourParamOp,
                    TTransformParamOp, TTexCoordParamOp, TBoolParamOp, TGroupParamOp, TPolytypeUserTypeOp,
                    TEnumParamOp, TIntParamOp, TTextureParamOp, TRampMovePointParamOp, TRampChangePointsOp,
                    TRampChangeAllPointsOp, TRampLockOp, TRampLinearOp, TAnimNameParamOp,
                    TAnimFlagsParamOp>();
}
