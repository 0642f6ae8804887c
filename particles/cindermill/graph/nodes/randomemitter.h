#pragma once

#include "particles/cindermill/graph/execloop.h"

// A random value between two bounds, each component on its own.
class TRandomEmitter : public TExecLoop<TRandomEmitter, 2, 1>
{
public:
    static int ClassId();
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;
};
