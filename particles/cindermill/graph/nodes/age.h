#pragma once

#include "particles/cindermill/graph/execloop.h"

// Ages particles, and ends them past a maximum age.
class TAge : public TExecLoop<TAge, 2, 1>
{
public:
    static int ClassId();
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;
};
