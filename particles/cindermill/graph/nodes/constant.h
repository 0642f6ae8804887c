#pragma once

#include "particles/cindermill/graph/effectexecnode.h"

// Passes its value on.
class TConstant : public TEffectExecNode
{
public:
    static int ClassId();
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;
};
