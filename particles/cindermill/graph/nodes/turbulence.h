#pragma once

#include "particles/cindermill/graph/execloop.h"

// A push in a random direction, another one for each particle and frame.
class TTurbulence : public TExecLoop<TTurbulence, 2, 1>
{
public:
    static int ClassId();
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;
};
