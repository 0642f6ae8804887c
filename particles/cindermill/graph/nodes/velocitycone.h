#pragma once

#include "particles/cindermill/graph/engine/execloop.h"

// Gives particles a random velocity inside a cone.
class TVelocityCone : public TRegistered<TVelocityCone, TExecLoop<TVelocityCone, 4, 1>>
{
public:
    static constexpr const char* RegisteredName = "TVelocityCone";
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;
};
