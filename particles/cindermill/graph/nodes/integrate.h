#pragma once

#include "particles/cindermill/graph/execloop.h"
#include "particles/cindermill/graph/nodes/motionnode.h"

// Moves a position by its velocity, and a rotation by its speed.
class TIntegrate : public TExecLoop<TIntegrate, 2, 1, TMotionNode>
{
public:
    static int ClassId();
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;
};
