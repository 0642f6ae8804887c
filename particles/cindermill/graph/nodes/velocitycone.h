#pragma once

#include "particles/cindermill/graph/effectexecnode.h"

// Gives particles a random velocity inside a cone.
class TVelocityCone : public TEffectExecNode
{
public:
    static int ClassId();
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;
};
