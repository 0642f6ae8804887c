#pragma once

#include "particles/cindermill/graph/engine/execloop.h"

// Ends the particles whose flag is not 0.
class TPrune : public TRegistered<TPrune, TExecLoop<TPrune, 1, 0>>
{
public:
    static constexpr const char* RegisteredName = "TPrune";
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;
};
