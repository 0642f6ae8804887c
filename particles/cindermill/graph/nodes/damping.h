#pragma once

#include "particles/cindermill/graph/engine/execloop.h"
#include "particles/cindermill/graph/nodes/motionnode.h"

// Takes a share of the velocity away: a factor of 1 none, of 0 all of it within a second.
class TDamping : public TRegistered<TDamping, TExecLoop<TDamping, 2, 1, TMotionNode>>
{
public:
    static constexpr const char* RegisteredName = "TDamping";
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;
};
