#pragma once

#include "particles/cindermill/interface/controls/rampmodel.h"

class TOperation;

// What brings a parameter to what an editor shows. Each gives null if there is nothing to do, otherwise an
// operation that the caller owns.

// One point that differs is moved; more, or a list of another length, replace the list.
TOperation* MakeCurveOperation(TNodeRampParameter& parameter, int channel, const TRampCurve& curve);
// For the four lists of a ramp: one channel that differs by itself, several in one step.
TOperation* MakeCurvesOperation(TNodeRampParameter& parameter, const TRampCurve* curves);
TOperation* MakeLockOperation(TNodeRampParameter& parameter, const int* locks);
TOperation* MakeLinearOperation(TNodeRampParameter& parameter, bool linear);
