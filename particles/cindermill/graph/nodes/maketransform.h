#pragma once

#include "particles/cindermill/graph/execloop.h"

// A transform from a translation and a rotation.
class TMakeTransform : public TExecLoop<TMakeTransform, 2, 1>
{
public:
    static int ClassId();
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;
};
