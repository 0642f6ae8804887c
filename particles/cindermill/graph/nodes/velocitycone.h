#pragma once

#include "particles/cindermill/graph/execloop.h"

// Gives particles a random velocity inside a cone.
class TVelocityCone : public TExecLoop<TVelocityCone, 4, 1>
{
public:
    static int ClassId();
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;
};
