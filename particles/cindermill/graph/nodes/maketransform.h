#pragma once

#include "particles/cindermill/graph/effectexecnode.h"

// A transform from a translation and a rotation.
class TMakeTransform : public TEffectExecNode
{
public:
    static int ClassId();
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;
};
