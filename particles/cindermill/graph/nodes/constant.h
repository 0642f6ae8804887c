#pragma once

#include "particles/cindermill/graph/execloop.h"

// Passes its value on.
class TConstant : public TExecLoop<TConstant, 1, 1>
{
public:
    static int ClassId();
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;
};
