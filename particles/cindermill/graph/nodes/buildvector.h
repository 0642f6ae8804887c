#pragma once

#include "particles/cindermill/graph/engine/execloop.h"

// A vector from three numbers.
class TBuildVector : public TRegistered<TBuildVector, TExecLoop<TBuildVector, 3, 1>>
{
public:
    static constexpr const char* RegisteredName = "TBuildVector";
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;
};
