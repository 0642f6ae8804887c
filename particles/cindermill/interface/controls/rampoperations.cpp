#include "particles/cindermill/interface/controls/rampoperations.h"

#include "particles/cindermill/graph/operations/flagparamop.h"
#include "particles/cindermill/graph/operations/rampchangepointsop.h"
#include "particles/cindermill/graph/operations/ramplockop.h"
#include "particles/cindermill/graph/operations/rampmovepointparamop.h"

TOperation* MakeCurveOperation(TNodeRampParameter& parameter, int channel, const TRampCurve& curve)
{
    const vector<TRampPoint>& before = parameter.GetCurve(channel);
    const vector<TRampPoint>& after = curve.GetPoints();
    if (before.size() != after.size())
        return new TRampChangePointsOp(&parameter, channel, after);
    int changed = 0;
    int last = -1;
    for (int i = 0; i < after.size(); ++i)
        if (!TRampCurve::IsSame(after[i], before[i])) {
            ++changed;
            last = i;
        }
    if (changed == 0)
        return nullptr;
    if (changed == 1)
        return new TRampMovePointParamOp(&parameter, channel, last, after[last]);
    return new TRampChangePointsOp(&parameter, channel, after);
}

TOperation* MakeCurvesOperation(TNodeRampParameter& parameter, const TRampCurve* curves)
{
    vector<TRampPoint> lists[TRampModel::MaxComponents];
    int changed = 0;
    int last = -1;
    for (int i = 0; i < TRampModel::MaxComponents; ++i) {
        lists[i] = curves[i].GetPoints();
        TRampCurve before;
        before.SetPoints(parameter.GetCurve(i));
        if (!(curves[i] == before)) {
            ++changed;
            last = i;
        }
    }
    if (changed == 0)
        return nullptr;
    if (changed == 1)
        return MakeCurveOperation(parameter, last, curves[last]);
    return new TRampChangeAllPointsOp(&parameter, lists);
}

TOperation* MakeLockOperation(TNodeRampParameter& parameter, const int* locks)
{
    for (int i = 0; i < parameter.GetDimensions(); ++i)
        if (parameter.GetLocks()[i] != locks[i])
            return new TRampLockOp(&parameter, locks);
    return nullptr;
}

TOperation* MakeLinearOperation(TNodeRampParameter& parameter, bool linear)
{
    return parameter.IsLinear() != linear ? new TRampLinearOp(&parameter, linear) : nullptr;
}
