#pragma once

#include "particles/cindermill/graph/engine/execloop.h"

// A spring towards a point: the pull grows with the distance.
class TAttractor : public TRegistered<TAttractor, TExecLoop<TAttractor, 4, 1>>
{
public:
    static constexpr const char* RegisteredName = "TAttractor";
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;
};
