#pragma once

#include "particles/cindermill/graph/engine/execloop.h"

// Passes its value on.
class TConstant : public TRegistered<TConstant, TExecLoop<TConstant, 1, 1>>
{
public:
    static constexpr const char* RegisteredName = "TConstant";
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;
};
