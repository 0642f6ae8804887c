#pragma once

#include "particles/cindermill/graph/effectexecnode.h"

// An acceleration along a vector; it does not pull towards the wind's speed.
class TWind : public TEffectExecNode
{
public:
    static int ClassId();
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;
};
