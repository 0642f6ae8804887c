#pragma once

#include "particles/cindermill/graph/execloop.h"
#include "particles/cindermill/graph/nodes/motionnode.h"

// A constant acceleration.
class TGravity : public TExecLoop<TGravity, 2, 1, TMotionNode>
{
public:
    static int ClassId();
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;
};
