#pragma once

#include "particles/cindermill/graph/effectexecnode.h"

// Ends the particles whose flag is not 0.
class TPrune : public TEffectExecNode
{
public:
    static int ClassId();
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;
};
