#pragma once

#include "particles/cindermill/graph/engine/execloop.h"
#include "particles/cindermill/graph/nodes/motionnode.h"

// Moves a position by its velocity, and a rotation by its speed.
class TIntegrate : public TRegistered<TIntegrate, TExecLoop<TIntegrate, 2, 1, TMotionNode>>
{
public:
    static constexpr const char* RegisteredName = "TIntegrate";
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;
};
