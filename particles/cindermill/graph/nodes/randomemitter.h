#pragma once

#include "particles/cindermill/graph/effectexecnode.h"

// A random value between two bounds, each component on its own.
class TRandomEmitter : public TEffectExecNode
{
public:
    static int ClassId();
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;

private:
    int GetNumComponents() const { return GetTypeFloats(GetInputType(0)); }
};
