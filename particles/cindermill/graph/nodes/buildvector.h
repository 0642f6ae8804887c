#pragma once

#include "particles/cindermill/graph/execloop.h"

// A vector from three numbers.
class TBuildVector : public TExecLoop<TBuildVector, 3, 1>
{
public:
    static int ClassId();
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;
};
