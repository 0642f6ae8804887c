#pragma once

#include "particles/cindermill/graph/effectexecnode.h"

class TNodeEnumParameter;

// One component of a vector, its length or the inverse of that.
class TSelectComponent : public TEffectExecNode
{
public:
    static int ClassId();
    bool Init(TErrorList& errors) override;
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;

private:
    const TNodeEnumParameter* Component = nullptr;
};
