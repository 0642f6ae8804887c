#pragma once

#include "particles/cindermill/graph/execloop.h"

// A spring towards a point: the pull grows with the distance.
class TAttractor : public TExecLoop<TAttractor, 4, 1>
{
public:
    static int ClassId();
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;
};
