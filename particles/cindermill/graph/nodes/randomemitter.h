#pragma once

#include "particles/cindermill/graph/engine/execloop.h"

// A random value between two bounds, each component on its own.
class TRandomEmitter : public TRegistered<TRandomEmitter, TExecLoop<TRandomEmitter, 2, 1>>
{
public:
    static constexpr const char* RegisteredName = "TRandomEmitter";
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;
};
