#pragma once

#include "particles/cindermill/graph/engine/execloop.h"

// Ages particles, and ends them past a maximum age.
class TAge : public TRegistered<TAge, TExecLoop<TAge, 2, 1>>
{
public:
    static constexpr const char* RegisteredName = "TAge";
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;
};
