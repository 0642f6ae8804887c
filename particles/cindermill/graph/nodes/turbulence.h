#pragma once

#include "particles/cindermill/graph/engine/execloop.h"

// A push in a random direction, another one for each particle and frame.
class TTurbulence : public TRegistered<TTurbulence, TExecLoop<TTurbulence, 2, 1>>
{
public:
    static constexpr const char* RegisteredName = "TTurbulence";
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;
};
