#pragma once

#include "particles/cindermill/graph/execloop.h"

// An acceleration along a vector; it does not pull towards the wind's speed.
class TWind : public TExecLoop<TWind, 3, 1>
{
public:
    static int ClassId();
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;
};
