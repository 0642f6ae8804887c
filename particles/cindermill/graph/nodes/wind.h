#pragma once

#include "particles/cindermill/graph/engine/execloop.h"

// An acceleration along a vector; it does not pull towards the wind's speed.
class TWind : public TRegistered<TWind, TExecLoop<TWind, 3, 1>>
{
public:
    static constexpr const char* RegisteredName = "TWind";
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;
};
