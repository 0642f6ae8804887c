#pragma once

#include "particles/cindermill/graph/engine/execloop.h"
#include "particles/cindermill/graph/nodes/motionnode.h"

// A constant acceleration.
class TGravity : public TRegistered<TGravity, TExecLoop<TGravity, 2, 1, TMotionNode>>
{
public:
    static constexpr const char* RegisteredName = "TGravity";
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;
};
