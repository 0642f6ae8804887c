#pragma once

#include "particles/cindermill/graph/engine/execloop.h"
#include "particles/cindermill/graph/nodes/componentmaths.h"

// The sum of two values, of the first one's type.
class TAdd : public TRegistered<TAdd, TExecLoop<TAdd, 2, 1, TComponentMaths>>
{
public:
    static constexpr const char* RegisteredName = "TAdd";
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;
};
