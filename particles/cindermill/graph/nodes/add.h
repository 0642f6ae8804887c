#pragma once

#include "particles/cindermill/graph/nodes/componentmaths.h"

// The sum of two values, of the first one's type.
class TAdd : public TComponentMaths
{
public:
    static int ClassId();
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;
};
