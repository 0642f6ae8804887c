#pragma once

#include "particles/cindermill/graph/engine/execloop.h"
#include "particles/cindermill/graph/nodes/componentmaths.h"

// The product of two values, component by component; a shorter second value repeats.
class TMultiply : public TRegistered<TMultiply, TExecLoop<TMultiply, 2, 1, TComponentMaths>>
{
public:
    static constexpr const char* RegisteredName = "TMultiply";
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;
};
