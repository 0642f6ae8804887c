#pragma once

#include "particles/cindermill/graph/effectexecnode.h"

// A vector from three numbers.
class TBuildVector : public TEffectExecNode
{
public:
    static int ClassId();
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;
};
