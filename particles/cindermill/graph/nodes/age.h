#pragma once

#include "particles/cindermill/graph/effectexecnode.h"

// Ages particles, and ends them past a maximum age.
class TAge : public TEffectExecNode
{
public:
    static int ClassId();
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;
};
