#pragma once

#include "particles/cindermill/graph/engine/particlenode.h"

// The base of the sums and products, which work component by component.
class TComponentMaths : public TParticleNode
{
protected:
    // One command for each component of input 0; the components of input 1 repeat.
    void ExportComponents(TExportData& exportData, const char* command) const;
    // Where a wire gives input 0 fewer components than its port has: the others pass as they are converted.
    void ExportRest(TExportData& exportData) const;
};
