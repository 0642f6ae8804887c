#pragma once

#include "particles/cindermill/graph/engine/execloop.h"

// A transform from a translation and a rotation.
class TMakeTransform : public TRegistered<TMakeTransform, TExecLoop<TMakeTransform, 2, 1>>
{
public:
    static constexpr const char* RegisteredName = "TMakeTransform";
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;
};
