#pragma once

#include "particles/cindermill/graph/execloop.h"

// Ends the particles whose flag is not 0.
class TPrune : public TExecLoop<TPrune, 1, 0>
{
public:
    static int ClassId();
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;
};
